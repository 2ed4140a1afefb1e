#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace simulator {

/** The board's status for an errno value. */
int32_t statusOf(int error);

/** A file descriptor that closes itself. */
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : mFd(fd) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : mFd(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mFd, other.mFd);
        return *this;
    }

    int get() const { return mFd; }
    explicit operator bool() const { return mFd >= 0; }

    /** Leaves it open, to the caller. */
    int release() {
        const int fd = mFd;
        mFd = -1;
        return fd;
    }

  private:
    int mFd;
};

/**
 * The folder that stands for the board's flash.
 *
 * Every function may be called on any thread, and by several processes at once. The folder may be emptied or
 * removed while the board runs: nothing is kept open.
 */
class StateDirectory {
  public:
    /** The folder is made when it is first needed, with its parents, for its owner alone. */
    explicit StateDirectory(const std::string& path) : StateDirectory(path, false) {}

    /**
     * Where this process keeps the board's state: $ZVTTV_STATE_DIR, else $XDG_STATE_HOME/zvttvfactory, else
     * $HOME/.local/state/zvttvfactory, else /tmp/zvttvfactory-<uid>. An empty variable counts as absent.
     */
    static StateDirectory fromEnvironment();

    /**
     * Opens the state folder, or a folder in it; made when missing. Empty when that fails, with the reason on
     * standard error the first time.
     */
    Descriptor openRoot() const;
    Descriptor openFolder(const std::string& name) const;

    /** Absolute. */
    const std::string& path() const { return mPath; }

  private:
    StateDirectory(const std::string& path, bool inSharedFolder);

    const std::string mPath;
    // Others may make a folder of our name first, so that its owner and mode are checked.
    const bool mInSharedFolder;
};

// Files in an open folder. Names are plain names, without a slash; symbolic links are never followed.

/** What tells that a file has not been written since: replaced files change mInode, edited ones a time. */
struct FileStamp {
    explicit FileStamp(const struct stat& status);
    bool operator==(const FileStamp& other) const;

    dev_t mDevice;
    ino_t mInode;
    off_t mSize;
    timespec mModified;
    timespec mChanged;
};

/**
 * Reads a whole file of the folder. Returns kOk, kNotFound, kBadFile (a link, not a plain file, more than
 * limit bytes) or kIoError. status, when not null, is the file's as it was before the first byte was read.
 */
int32_t readFile(int folder, const std::string& name, size_t limit, std::string& text, struct stat* status);

/**
 * Replaces a file of the folder, or makes it with the given mode. On kOk the new content is on the disk; on
 * kIoError, or when the process or the machine ends in between, the file is either the old or the new one,
 * never a mixture. Callers that write the same file take turns (see FolderLock).
 */
int32_t replaceFile(int folder, const std::string& name, const std::string& text, mode_t mode);

/** As replaceFile, unless there is something of this name: then it is left alone, and the result is kOk. */
int32_t createFile(int folder, const std::string& name, const std::string& text, mode_t mode);

/**
 * Keeps everybody else who also takes it from writing into a folder. Meant between processes: threads had
 * better queue at a mutex first. Needs a descriptor of the folder that nobody else uses meanwhile.
 */
class FolderLock {
  public:
    explicit FolderLock(int folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /** kOk, or kBusy when somebody else has held it for five seconds, or kIoError. */
    int32_t status() const { return mStatus; }

  private:
    int mFolder;
    int32_t mStatus;
};

/** As replaceFile, in a folder of the state folder and with its FolderLock, whose statuses it may return. */
int32_t replaceFile(const StateDirectory& state, const std::string& folder, const std::string& name,
                    const std::string& text, mode_t mode);

}  // namespace simulator
