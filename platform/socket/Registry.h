#pragma once

#include <sys/types.h>
#include <utils/Errors.h>

#include <atomic>
#include <condition_variable>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/Message.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/** A name that a live process holds. */
struct RegistryEntry {
    std::string fqName;  // of the interface
    std::string instance;
    ObjectReference reference;
    pid_t pid;
    uint32_t pointerBytes;  // of that process; 0 when it does not say
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
 * A file that is deleted or replaced while its name is held, or the whole directory, is put back by
 * restore(). Until then the name can not be found, and another process can take it. Of two live processes
 * that have taken a name, the one that took it first keeps it: it removes the other's file, and the other
 * one's restore() gives the name up and logs that. So no more than one of them is found at any time, and in
 * the end the first.
 *
 * The directory is trusted only if it is closed to others and ours; root also trusts another user's, and what
 * it creates there belongs to that user. A file is trusted only if it is the directory's owner's, or root's
 * in a directory of ours. Taking a name and starting a watch make a missing directory, looking does not; root
 * does not make another user's anew, but waits for a process of that user to do so.
 *
 * Nothing but what is held is kept open: each call goes by the directory that the path leads to then. Any
 * method may be called on any thread. Methods return -errno for what the system refuses, PERMISSION_DENIED
 * for what is not trusted and BAD_VALUE for names that are none: an interface name has letters, digits and
 * ._@: only; an instance is not empty, "." or "..", and has no '/' and no control characters; both together
 * are at most 254 bytes.
 */
class Registry {
  public:
    explicit Registry(std::string path);

    /**
     * $HIDL_RUNTIME_DIR, else /tmp/hidl- and the effective user's number: nothing that a service started by
     * cron or sudo and a client in a desktop's session could see differently, and that is there before the
     * user logs in and after.
     */
    static std::string defaultPath();

    const std::string& path() const { return mPath; }

    /** Takes a name for as long as this registry lives. ALREADY_EXISTS when a live process, or we, hold it.
     */
    status_t take(std::string_view fqName, std::string_view instance, const ObjectReference& reference);
    /** Gives a name back; nothing if it is not held through this registry. */
    void release(std::string_view fqName, std::string_view instance);

    /** NAME_NOT_FOUND when no live process holds the name. */
    status_t find(std::string_view fqName, std::string_view instance, ObjectReference* reference, pid_t* pid);
    /** Sorted by names. All of them or, with an error, none. */
    status_t list(std::vector<RegistryEntry>* entries);

    /**
     * Starts to notice what is done to the directory; best before names are taken. The descriptor is
     * the registry's, and readable when restore() is to be called.
     */
    status_t changes(int* fd);
    /** Puts back what is missing of the names that are held. What fails is logged and tried again later. */
    void restore() noexcept;

    /**
     * Notices changes. To wait for something, start the watch, then look, then wait, and look again: a change
     * after the start ends the wait. All watches share what the kernel needs for them, which stays open:
     * closing it takes the kernel 10 ms. One thread may use a watch at a time, and the registry outlives it.
     */
    class Watch {
      public:
        status_t start(Registry& registry);
        /**
         * Waits for changes since the start or the last wait.
         *
         * @param milliseconds forever if negative
         * @return false when none came in time
         */
        bool wait(int milliseconds);

      private:
        Registry* mRegistry = nullptr;
        uint64_t mSeen = 0;
    };
    /** Ends the waits of all watches as a change does. */
    void wakeWatches();

  private:
    /** A file's content, written at one go by the holder of the name. */
    struct Record {
        uint32_t magic;
        uint32_t version;
        ObjectReference reference;
        int32_t pid;
        uint32_t pointerBytes;
        uint64_t takenAt;   // nanoseconds of the monotonic clock; 0 until then
        uint64_t checksum;  // of all before, and of the file's name
    };
    static_assert(sizeof(Record) == 64);

    struct Directory {
        UniqueFd fd;
        uid_t owner = 0;
    };

    struct Held {
        UniqueFd fd;
        Record record;
        bool missing = false;  // that it was is logged once
    };

    /** What is done about a directory that is not there. */
    enum class Missing { Made, NotFound };

    /** What happens to the directory that a path leads to, whichever that is by now. */
    class Events {
      public:
        /** Until it is called again, events are those of the directory that was there last. */
        status_t follow(Registry& registry, Missing missing, uint32_t mask);
        /** Drops what has come. */
        void drain();
        int fd() const { return mFd.get(); }

      private:
        UniqueFd mFd;
        int mWatched = -1;  // the kernel's number of the directory, which it never uses twice
    };

    /** What threads that wait share: one of them polls, the others wait for that one. */
    struct Waiting {
        CheckedMutex lock;
        std::condition_variable changed;
        uint64_t changes GUARDED_BY(lock) = 0;
        bool polled GUARDED_BY(lock) = false;
        // Used under the lock too, but while one polls by that one alone, without it.
        Events events;
        UniqueFd wake;  // an eventfd
        bool following = false;
    };

    status_t directory(Missing missing, Directory* result);
    static status_t openFile(const Directory& directory, const std::string& file, int flags,
                             UniqueFd* result);
    static status_t look(const Directory& directory, const std::string& file, Record* record);
    static uint64_t checksumOf(const Record& record, const std::string& file);
    bool leadsTo(const std::string& file, int fd) const;
    status_t occupy(const std::string& file, Record* record, UniqueFd* result);
    status_t putBack(const std::string& file, Held* name) REQUIRES(mLock);
    bool restoreAll() REQUIRES(mLock);
    void restoreLater();
    bool pollOnce(int milliseconds);

    const std::string mPath;
    std::atomic<uid_t> mOwner;     // of the directory when it was last seen; ours before
    std::atomic<int> mRefusal{0};  // why the directory was last refused, an errno: each reason is logged once

    CheckedMutex mLock;
    std::map<std::string, Held> mHeld GUARDED_BY(mLock);  // by file name
    Events mEvents GUARDED_BY(mLock);
    UniqueFd mRetry;    // a timer
    UniqueFd mChanges;  // an epoll instance with both

    Waiting mWaiting;
};

}  // namespace android::hardware
