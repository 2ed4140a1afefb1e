#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
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

/** An open file or folder, or why there is none. */
struct Opened {
    Descriptor file;
    /** kOk when file is open. */
    int32_t status;
};

/**
 * The folder that stands for the board's flash. It may be emptied or removed while the board runs: nothing in
 * it is kept open. Any thread.
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

    /** Opens a folder in it, or itself for an empty name; made when missing, unless it is not to be: then
     * that is kNotFound. The first failure of the process is said on standard error. */
    Opened openFolder(const std::string& name, bool make = true) const;

    /**
     * Keeps it for this process until that ends, and says on standard error where it is and whether anything
     * was in it. Ends the process, with the reason there, when another one has it: two services would
     * overwrite what the other has acknowledged. A folder that cannot be had yet, or is removed and made
     * anew, is claimed when it is next opened: kBusy when another has it then.
     */
    void claim() const;

    /** Absolute. */
    const std::string& path() const { return mPath; }

  private:
    StateDirectory(const std::string& path, bool inSharedFolder);
    Opened openRoot() const;
    int32_t hold(int folder, const struct stat& status) const;

    const std::string mPath;
    // Others may make a folder of our name first, so that its owner and mode are checked.
    const bool mInSharedFolder;

    mutable std::mutex mHolding;
    // All below guarded by mHolding: the folder that is locked.
    mutable bool mClaimed = false;
    mutable Descriptor mHeld;
    mutable dev_t mDevice = 0;
    mutable ino_t mInode = 0;
};

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
 * The files that the board keeps in a folder of the state folder. Their names are plain names, without a
 * slash; symbolic links are never followed.
 *
 * Writes come one after the other. On kOk the new content is on the disk; else, or when the process or the
 * machine ends in between, the file is the old or the new one, never a mixture. A write that fails is said on
 * standard error: kFull, kDenied (read only) or kIoError. Any thread.
 */
class StateFolder {
  public:
    /** An empty name stands for the state folder itself. */
    StateFolder(const StateDirectory& state, std::string name) : mState(state), mName(std::move(name)) {}

    const std::string& name() const { return mName; }
    Opened open() const { return mState.openFolder(mName); }

    /**
     * Reads a whole file. kNotFound, kBadFile (a link, not a plain file, more than limit bytes), or why it
     * cannot be read. status, when not null, is the file's as it was before the first byte was read.
     */
    int32_t read(const std::string& file, size_t limit, std::string& content,
                 struct stat* status = nullptr) const;

    /** Replaces a file, or makes it. */
    int32_t replace(const std::string& file, const std::string& content, mode_t mode);

    /** As replace(), unless there is something of this name: then it is left alone, and the result is kOk. */
    int32_t create(const std::string& file, const std::string& content, mode_t mode);

    /**
     * Replaces a file, which keeps its mode, by what edit makes of its content, an empty one when there is
     * none. A status of edit's other than kOk, or one of read(), changes nothing.
     */
    int32_t change(const std::string& file, size_t limit, mode_t mode,
                   const std::function<int32_t(std::string& content)>& edit);

  private:
    int32_t write(const std::string& file, const std::function<int32_t(const Opened&)>& body);

    const StateDirectory& mState;
    const std::string mName;
    std::mutex mWriting;  // held across a whole write
};

}  // namespace simulator
