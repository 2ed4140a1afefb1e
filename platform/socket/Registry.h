#pragma once

#include <sys/types.h>
#include <utils/Errors.h>

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/socket/Message.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/** A name that a live process holds. */
struct RegistryEntry {
    std::string fqName;  // of the interface
    std::string instance;
    ObjectReference reference;
    pid_t pid;
};

/**
 * Names of services in a private directory, a file per interface and instance, without a process of its own.
 *
 * Who holds a name has its file open and its first byte locked, which the kernel undoes with the process; so
 * the name of a dead process can be taken, and that of a live one can not. The second byte is locked once the
 * file no longer tells of an earlier holder. Looking only asks about locks and takes none, so it is never in
 * the way of a process that takes the name. Files stay when names are given back.
 *
 * The locks belong to the open file: a child that is forked and does not call exec keeps its parent's names
 * alive.
 *
 * The directory is trusted only if it is ours and closed to others, and a file only if it is ours or root's.
 * It is opened when first needed, and again at the next call if that failed. Any method may be called on any
 * thread. Methods return -errno for what the system refuses, PERMISSION_DENIED for what is not trusted and
 * BAD_VALUE for names that are none: an interface name has letters, digits and ._@: only; an instance is not
 * empty, "." or "..", and has no '/' and no control characters; both together are at most 254 bytes.
 */
class Registry {
  public:
    explicit Registry(std::string path);

    /** $HIDL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/hidl, else /tmp/hidl- and the effective user's number. */
    static std::string defaultPath();

    /** Takes a name for as long as this registry lives. ALREADY_EXISTS when a live process, or we, hold it.
     */
    status_t take(std::string_view fqName, std::string_view instance, const ObjectReference& reference);
    /** Gives a name back; nothing if it is not held through this registry. */
    void release(std::string_view fqName, std::string_view instance);

    /** NAME_NOT_FOUND when no live process holds the name. */
    status_t find(std::string_view fqName, std::string_view instance, ObjectReference* reference, pid_t* pid);
    /** Sorted by names. */
    status_t list(std::vector<RegistryEntry>* entries);

    /**
     * Notices changes. To wait for something, start the watch, then look, then wait, and look again: a change
     * after the start ends the wait. Not for several threads at one time.
     */
    class Watch {
      public:
        status_t start(Registry& registry);
        /** Readable when something may have changed. */
        int fd() const { return mFd.get(); }
        /**
         * Waits for changes since the last wait.
         *
         * @param milliseconds forever if negative
         * @return false when none came in time
         */
        bool wait(int milliseconds);

      private:
        UniqueFd mFd;
    };

  private:
    status_t directory(int* fd);
    status_t look(int directory, const std::string& file, ObjectReference* reference, pid_t* pid);

    const std::string mPath;
    std::mutex mLock;  // guards the rest
    UniqueFd mDirectory;
    std::map<std::string, UniqueFd> mHeld;  // by file name
};

}  // namespace android::hardware
