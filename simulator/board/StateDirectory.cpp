#include "simulator/board/StateDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr mode_t kFolderMode = 0700;

// How long a writer waits for those of other processes, and how often it looks. There is no queue, so that
// the patience must outlast a writer that keeps coming back; a write takes milliseconds on a slow disk.
constexpr int kLockPatienceMilliseconds = 5000;
constexpr int kLockPauseMilliseconds = 1;

std::string environment(const char* name) {
    const char* value = getenv(name);
    return value == nullptr ? "" : value;
}

std::string absolute(const std::string& path) {
    if (!path.empty() && path[0] == '/') {
        return path;
    }
    char* here = getcwd(nullptr, 0);
    std::string result = here == nullptr ? path : std::string(here) + "/" + path;
    free(here);
    return result;
}

void complainOnce(const std::string& path, const char* reason) {
    static std::atomic<bool> sSaid{false};
    if (!sSaid.exchange(true)) {
        fprintf(stderr, "board: cannot keep state in %s: %s\n", path.c_str(), reason);
    }
}

bool writeAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(fd, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count < 0 ? 0 : static_cast<size_t>(count);
    }
    return true;
}

}  // namespace

int32_t statusOf(int error) {
    switch (error) {
        case ENOENT:
            return kNotFound;
        case EEXIST:
            return kExists;
        case EACCES:
        case EPERM:
        case EROFS:
            return kDenied;
        case EISDIR:
        case ENOTDIR:
        case ELOOP:
        case ENXIO:
        case ENODEV:
            return kBadFile;
        case ENAMETOOLONG:
            return kBadName;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
        case EMLINK:
            return kFull;
        case EAGAIN:
        case EBUSY:
        case ETXTBSY:
        case ENOTEMPTY:  // something is put into a folder faster than it is emptied
            return kBusy;
        case ENOMEM:
            return kNoMemory;
        default:
            return kIoError;
    }
}

Descriptor::~Descriptor() {
    if (mFd >= 0) {
        close(mFd);
    }
}

StateDirectory::StateDirectory(const std::string& path, bool inSharedFolder)
    : mPath(absolute(path)), mInSharedFolder(inSharedFolder) {}

StateDirectory StateDirectory::fromEnvironment() {
    if (const std::string chosen = environment("ZVTTV_STATE_DIR"); !chosen.empty()) {
        return StateDirectory(chosen);
    }
    // A relative one is to be ignored, as that variable's definition asks.
    if (const std::string states = environment("XDG_STATE_HOME"); !states.empty() && states[0] == '/') {
        return StateDirectory(states + "/zvttvfactory");
    }
    if (const std::string home = environment("HOME"); !home.empty()) {
        return StateDirectory(home + "/.local/state/zvttvfactory");
    }
    return StateDirectory("/tmp/zvttvfactory-" + std::to_string(geteuid()), true);
}

Descriptor StateDirectory::openRoot() const {
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (mInSharedFolder ? O_NOFOLLOW : 0);
    Descriptor root(::open(mPath.c_str(), flags));
    if (!root && errno == ENOENT) {
        for (size_t slash = mPath.find('/', 1); slash != std::string::npos;
             slash = mPath.find('/', slash + 1)) {
            mkdir(mPath.substr(0, slash).c_str(), kFolderMode);
        }
        mkdir(mPath.c_str(), kFolderMode);
        // What could not be made shows here.
        root = Descriptor(::open(mPath.c_str(), flags));
    }
    struct stat status {};
    if (!root || fstat(root.get(), &status) != 0) {
        complainOnce(mPath, strerror(errno));
        return Descriptor();
    }
    if (mInSharedFolder && (status.st_uid != geteuid() || (status.st_mode & 077) != 0)) {
        complainOnce(mPath, "it belongs to another user or is open to others");
        return Descriptor();
    }
    return root;
}

Descriptor StateDirectory::openFolder(const std::string& name) const {
    const Descriptor root = openRoot();
    if (!root) {
        return Descriptor();
    }
    const auto open = [&] {
        return Descriptor(openat(root.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    };
    Descriptor folder = open();
    bool lost = false;
    if (!folder && errno == ENOENT) {
        // A new one is put on the disk: what is written into it may be acknowledged before anything else is.
        lost = mkdirat(root.get(), name.c_str(), kFolderMode) == 0 && fsync(root.get()) != 0;
        folder = open();
    }
    if (lost) {
        complainOnce(mPath + "/" + name, "it does not reach the disk");
        return Descriptor();
    }
    if (!folder) {
        complainOnce(mPath + "/" + name, strerror(errno));
    }
    return folder;
}

FileStamp::FileStamp(const struct stat& status)
    : mDevice(status.st_dev),
      mInode(status.st_ino),
      mSize(status.st_size),
      mModified(status.st_mtim),
      mChanged(status.st_ctim) {}

bool FileStamp::operator==(const FileStamp& other) const {
    const auto same = [](const timespec& a, const timespec& b) {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    };
    return mDevice == other.mDevice && mInode == other.mInode && mSize == other.mSize &&
           same(mModified, other.mModified) && same(mChanged, other.mChanged);
}

int32_t readFile(int folder, const std::string& name, size_t limit, std::string& text, struct stat* status) {
    // Not to wait for the other end when it is a FIFO.
    const Descriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) {
        return errno == ENOENT ? kNotFound : errno == ELOOP ? kBadFile : kIoError;
    }
    struct stat found {};
    if (fstat(file.get(), &found) != 0) {
        return kIoError;
    }
    if (!S_ISREG(found.st_mode) || static_cast<uintmax_t>(found.st_size) > limit) {
        return kBadFile;
    }
    if (status != nullptr) {
        *status = found;
    }
    // It may grow while it is read, hence one byte more than its size, and more rounds.
    text.clear();
    size_t done = 0;
    for (;;) {
        text.resize(done + (done == 0 ? static_cast<size_t>(found.st_size) : 0) + 1);
        const ssize_t count = read(file.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            return kIoError;
        }
        if (count == 0) {
            text.resize(done);
            return kOk;
        }
        done += count < 0 ? 0 : static_cast<size_t>(count);
        if (done > limit) {
            return kBadFile;
        }
    }
}

int32_t replaceFile(int folder, const std::string& name, const std::string& text, mode_t mode) {
    // A left-over of a writer that died is in the way of nobody but the exclusive open.
    const std::string temporary = "." + name + ".tmp";
    unlinkat(folder, temporary.c_str(), 0);
    const Descriptor file(openat(folder, temporary.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode & 0777));
    if (!file) {
        return kIoError;
    }
    if (!writeAll(file.get(), text) || fsync(file.get()) != 0 ||
        renameat(folder, temporary.c_str(), folder, name.c_str()) != 0) {
        unlinkat(folder, temporary.c_str(), 0);
        return kIoError;
    }
    return fsync(folder) == 0 ? kOk : kIoError;
}

int32_t createFile(int folder, const std::string& name, const std::string& text, mode_t mode) {
    struct stat status {};
    if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return kOk;
    }
    return replaceFile(folder, name, text, mode);
}

FolderLock::FolderLock(int folder) : mFolder(folder), mStatus(kBusy) {
    for (int waited = 0; waited <= kLockPatienceMilliseconds; waited += kLockPauseMilliseconds) {
        if (flock(mFolder, LOCK_EX | LOCK_NB) == 0) {
            mStatus = kOk;
            return;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            mStatus = kIoError;
            return;
        }
        usleep(kLockPauseMilliseconds * 1000);
    }
}

FolderLock::~FolderLock() {
    if (mStatus == kOk) {
        flock(mFolder, LOCK_UN);
    }
}

int32_t replaceFile(const StateDirectory& state, const std::string& folder, const std::string& name,
                    const std::string& text, mode_t mode) {
    const Descriptor opened = state.openFolder(folder);
    if (!opened) {
        return kIoError;
    }
    const FolderLock lock(opened.get());
    return lock.status() == kOk ? replaceFile(opened.get(), name, text, mode) : lock.status();
}

}  // namespace simulator
