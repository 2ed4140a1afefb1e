#include "simulator/board/StateDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr mode_t kFolderMode = 0700;
constexpr int kClaimPatienceMilliseconds = 500;
constexpr int kClaimPauseMilliseconds = 10;

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

/** Says why there is no state, but only the first time. */
void complainOnce(const std::string& path, const char* reason) {
    static std::atomic<bool> sSaid{false};
    const std::string complaint = "cannot keep state in " + path + ": " + reason;
    sSaid.exchange(true) ? giveReason(complaint) : complain(complaint);
}

/** The failure that errno tells of. */
Opened failed(const std::string& path) {
    const int error = errno;
    complainOnce(path, strerror(error));
    return {Descriptor(), statusOf(error)};
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

/** Who has locked the open folder: 0 when the kernel does not tell. */
int holderOf(int folder) {
    struct stat status {};
    fstat(folder, &status);
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        int pid = 0;
        unsigned deviceMajor = 0, deviceMinor = 0;
        unsigned long inode = 0;
        if (sscanf(line.c_str(), "%*d: FLOCK %*s WRITE %d %x:%x:%lu", &pid, &deviceMajor, &deviceMinor,
                   &inode) == 4 &&
            inode == status.st_ino && makedev(deviceMajor, deviceMinor) == status.st_dev) {
            return pid;
        }
    }
    return 0;
}

int32_t readOpened(int folder, const std::string& name, size_t limit, std::string& text,
                   struct stat* status) {
    // Not to wait for the other end when it is a FIFO.
    const Descriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) {
        return statusOf(errno);
    }
    struct stat found {};
    if (fstat(file.get(), &found) != 0) {
        return statusOf(errno);
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
            return statusOf(errno);
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

/** As StateFolder::replace(), but for the line on standard error; a failure's reason is in errno. */
bool replaceOpened(int folder, const std::string& name, const std::string& text, mode_t mode) {
    // A left-over of a writer that died is in the way of nobody but the exclusive open.
    const std::string temporary = "." + name + ".tmp";
    unlinkat(folder, temporary.c_str(), 0);
    Descriptor file(openat(folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                           mode & 0777));
    if (!file) {
        return false;
    }
    if (!writeAll(file.get(), text) || fsync(file.get()) != 0 ||
        renameat(folder, temporary.c_str(), folder, name.c_str()) != 0) {
        const int error = errno;
        unlinkat(folder, temporary.c_str(), 0);
        file = Descriptor();
        errno = error;
        return false;
    }
    return fsync(folder) == 0;
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
        case EMFILE:
        case ENFILE:
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

int32_t StateDirectory::hold(int folder, const struct stat& status) const {
    const std::lock_guard<std::mutex> lock(mHolding);
    if (!mClaimed || (mHeld && mDevice == status.st_dev && mInode == status.st_ino)) {
        return kOk;
    }
    // A holder that is just being killed is waited for.
    for (int waited = 0; flock(folder, LOCK_EX | LOCK_NB) != 0; waited += kClaimPauseMilliseconds) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            fprintf(stderr, "board: %s cannot be locked: see that no other service uses it\n", mPath.c_str());
            break;
        }
        if (waited >= kClaimPatienceMilliseconds) {
            const int holder = holderOf(folder);
            const std::string process = holder == 0 ? "" : ", process " + std::to_string(holder) + ",";
            fprintf(stderr,
                    "board: another service%s keeps its state in %s: set ZVTTV_STATE_DIR to a folder of this "
                    "one's own\n",
                    process.c_str(), mPath.c_str());
            return kBusy;
        }
        usleep(kClaimPauseMilliseconds * 1000);
    }
    // The lock stays with any descriptor of what was opened.
    mHeld = Descriptor(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    mDevice = status.st_dev;
    mInode = status.st_ino;
    return kOk;
}

Opened StateDirectory::openRoot() const {
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
        return failed(mPath);
    }
    if (mInSharedFolder && (status.st_uid != geteuid() || (status.st_mode & 077) != 0)) {
        complainOnce(mPath, "it belongs to another user or is open to others");
        return {Descriptor(), kDenied};
    }
    const int32_t held = hold(root.get(), status);
    return {held == kOk ? std::move(root) : Descriptor(), held};
}

Opened StateDirectory::openFolder(const std::string& name, bool make) const {
    Opened root = openRoot();
    if (root.status != kOk || name.empty()) {
        return root;
    }
    const auto open = [&] {
        return Descriptor(
                openat(root.file.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    };
    Descriptor folder = open();
    if (!folder && errno == ENOENT && !make) {
        return {Descriptor(), kNotFound};
    }
    if (!folder && errno == ENOENT) {
        // A new one is put on the disk: what is written into it may be acknowledged before anything else is.
        if (mkdirat(root.file.get(), name.c_str(), kFolderMode) == 0 ? fsync(root.file.get()) != 0
                                                                     : errno != EEXIST) {
            return failed(mPath + "/" + name);
        }
        folder = open();
    }
    return folder ? Opened{std::move(folder), kOk} : failed(mPath + "/" + name);
}

void StateDirectory::claim() const {
    {
        const std::lock_guard<std::mutex> lock(mHolding);
        mClaimed = true;
    }
    const int32_t status = openRoot().status;
    if (status == kBusy) {
        exit(EXIT_FAILURE);
    }
    if (status == kOk) {
        std::error_code unread;
        const bool anew = std::filesystem::is_empty(mPath, unread);
        fprintf(stderr, "board: %s its state in %s\n", anew ? "makes" : "goes on with", mPath.c_str());
    }
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

int32_t StateFolder::read(const std::string& file, size_t limit, std::string& content,
                          struct stat* status) const {
    const Opened folder = mState.openFolder(mName, false);
    return folder.status == kOk ? readOpened(folder.file.get(), file, limit, content, status) : folder.status;
}

int32_t StateFolder::replace(const std::string& file, const std::string& content, mode_t mode) {
    return write(file, [&](const Opened& folder) {
        return replaceOpened(folder.file.get(), file, content, mode) ? kOk : statusOf(errno);
    });
}

int32_t StateFolder::create(const std::string& file, const std::string& content, mode_t mode) {
    return write(file, [&](const Opened& folder) {
        struct stat status {};
        const bool there = fstatat(folder.file.get(), file.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
        return there || replaceOpened(folder.file.get(), file, content, mode) ? kOk : statusOf(errno);
    });
}

int32_t StateFolder::change(const std::string& file, size_t limit, mode_t mode,
                            const std::function<int32_t(std::string& content)>& edit) {
    int32_t edited = kOk;
    const int32_t written = write(file, [&](const Opened& folder) {
        std::string content;
        struct stat status {};
        const int32_t result = readOpened(folder.file.get(), file, limit, content, &status);
        if (result != kOk && result != kNotFound) {
            return result;
        }
        edited = edit(content);
        return edited != kOk || replaceOpened(folder.file.get(), file, content,
                                              result == kOk ? status.st_mode : mode)
                       ? kOk
                       : statusOf(errno);
    });
    return edited != kOk ? edited : written;
}

/** Calls body with the folder, one after the other. What fails is said. */
int32_t StateFolder::write(const std::string& file, const std::function<int32_t(const Opened&)>& body) {
    const std::lock_guard<std::mutex> writing(mWriting);
    const Opened folder = open();
    // Of what opened it on the second attempt.
    errno = folder.status == kOk ? 0 : errno;
    const int32_t status = folder.status == kOk ? body(folder) : folder.status;
    if (status != kOk) {
        const std::string reason = errno != 0 ? strerror(errno) : "status " + std::to_string(status);
        complain(mState.path() + "/" + mName + (mName.empty() ? "" : "/") + file +
                 " cannot be written: " + reason);
    }
    return status;
}

}  // namespace simulator
