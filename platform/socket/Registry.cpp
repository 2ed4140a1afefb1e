#define LOG_TAG "hidl.registry"

#include "platform/socket/Registry.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <log/log.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <tuple>

namespace android::hardware {

namespace {

/** What a file holds, written at one go by the holder of the name. */
struct Record {
    uint32_t magic;
    uint32_t version;
    ObjectReference reference;
    int32_t pid;
    uint32_t reserved;
    uint64_t checksum;  // of all before
};
static_assert(sizeof(Record) == 56);

constexpr uint32_t kRecordMagic = 0x4e5a5448;  // "HTZN"
constexpr uint32_t kRecordVersion = 1;

// Bytes of a file that are locked by the holder of its name.
constexpr off_t kNameByte = 0;
constexpr off_t kRecordByte = 1;

/** Between interface and instance in a file's name; interface names do not have it. */
constexpr char kSeparator = '+';

/** FNV-1a: tells a record from a torn or foreign one; it is no protection against its owner. */
uint64_t checksumOf(const Record& record) {
    uint64_t sum = 0xcbf29ce484222325u;
    const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
    for (size_t i = 0; i < offsetof(Record, checksum); ++i) {
        sum = (sum ^ bytes[i]) * 0x100000001b3u;
    }
    return sum;
}

bool isInterfaceName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               (c != 0 && std::strchr("._@:", c) != nullptr);
    });
}

bool isInstanceName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(),
                        [](unsigned char c) { return c == '/' || c < ' ' || c == 127; });
}

/** The file of a name; empty when the name is none. */
std::string fileOf(std::string_view fqName, std::string_view instance) {
    if (!isInterfaceName(fqName) || !isInstanceName(instance) ||
        fqName.size() + 1 + instance.size() > NAME_MAX) {
        return {};
    }
    return std::string(fqName) + kSeparator + std::string(instance);
}

struct flock lockOf(off_t byte, short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

status_t lockByte(int fd, off_t byte) {
    struct flock lock = lockOf(byte, F_WRLCK);
    if (fcntl(fd, F_OFD_SETLK, &lock) == 0) {
        return OK;
    }
    return errno == EAGAIN || errno == EACCES ? ALREADY_EXISTS : -errno;
}

/** Whether any open file has the byte locked, one of our own included; takes no lock to find out. */
bool isLocked(int fd, off_t byte) {
    struct flock lock = lockOf(byte, F_RDLCK);
    return fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

/** Opens a file without following links or waiting for a pipe's other end, and checks what it is. */
status_t openTrusted(int directory, const std::string& file, int flags, UniqueFd* result) {
    UniqueFd fd(
            openat(directory, file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600));
    struct stat info {};
    if (!fd.ok() || fstat(fd.get(), &info) != 0) {
        const int error = errno;
        ALOGW_IF(error == ELOOP, "%s is refused: it is a symbolic link", file.c_str());
        return error == ENOENT ? NAME_NOT_FOUND : error == ELOOP ? PERMISSION_DENIED : -error;
    }
    if (!S_ISREG(info.st_mode) || (info.st_uid != geteuid() && info.st_uid != 0)) {
        ALOGW("%s is refused: mode %o, user %u", file.c_str(), info.st_mode, info.st_uid);
        return PERMISSION_DENIED;
    }
    *result = std::move(fd);
    return OK;
}

}  // namespace

Registry::Registry(std::string path) : mPath(std::move(path)) {}

std::string Registry::defaultPath() {
    if (const char* path = std::getenv("HIDL_RUNTIME_DIR"); path != nullptr && *path != '\0') {
        return path;
    }
    // A relative path in it is to be ignored, by the convention that it comes from.
    if (const char* path = std::getenv("XDG_RUNTIME_DIR"); path != nullptr && *path == '/') {
        return std::string(path) + "/hidl";
    }
    return "/tmp/hidl-" + std::to_string(geteuid());
}

status_t Registry::directory(int* fd) {
    const std::lock_guard lock(mLock);
    if (!mDirectory.ok()) {
        std::string path = mPath;
        while (path.size() > 1 && path.back() == '/') {
            path.pop_back();  // with it, a link would be followed
        }
        UniqueFd opened;
        struct stat info {};
        if ((mkdir(path.c_str(), 0700) == 0 || errno == EEXIST)) {
            opened = UniqueFd(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        }
        if (!opened.ok() || fstat(opened.get(), &info) != 0) {
            const int error = errno;
            ALOGE("%s can not be used as registry: %s", path.c_str(), strerror(error));
            return -error;
        }
        if (info.st_uid != geteuid() || (info.st_mode & 077) != 0) {
            ALOGE("%s is refused as registry: mode %o, user %u; it must be ours and closed to others",
                  path.c_str(), info.st_mode & 07777, info.st_uid);
            return PERMISSION_DENIED;
        }
        mDirectory = std::move(opened);
    }
    *fd = mDirectory.get();
    return OK;
}

status_t Registry::take(std::string_view fqName, std::string_view instance,
                        const ObjectReference& reference) {
    const std::string file = fileOf(fqName, instance);
    if (file.empty()) {
        return BAD_VALUE;
    }
    int dir = -1;
    UniqueFd fd;
    status_t status = directory(&dir);
    if (status == OK) {
        status = openTrusted(dir, file, O_RDWR | O_CREAT, &fd);
    }
    if (status == OK) {
        status = lockByte(fd.get(), kNameByte);
    }
    if (status != OK) {
        return status;
    }
    Record record{kRecordMagic, kRecordVersion, reference, getpid(), 0, 0};
    record.checksum = checksumOf(record);
    // The record comes last: its writing is what watches notice.
    if (ftruncate(fd.get(), 0) != 0) {
        return -errno;
    }
    status = lockByte(fd.get(), kRecordByte);
    if (status != OK) {
        return status;
    }
    const ssize_t written = pwrite(fd.get(), &record, sizeof(record), 0);
    if (written != sizeof(record)) {
        return written < 0 ? -errno : -ENOSPC;
    }
    const std::lock_guard lock(mLock);
    mHeld[file] = std::move(fd);
    return OK;
}

void Registry::release(std::string_view fqName, std::string_view instance) {
    const std::lock_guard lock(mLock);
    const auto held = mHeld.find(fileOf(fqName, instance));
    if (held == mHeld.end()) {
        return;
    }
    // For the watches; that the name is free does not depend on it.
    if (ftruncate(held->second.get(), 0) != 0) {
        ALOGW("%s keeps its record: %s", held->first.c_str(), strerror(errno));
    }
    mHeld.erase(held);
}

status_t Registry::look(int dir, const std::string& file, ObjectReference* reference, pid_t* pid) {
    UniqueFd fd;
    const status_t status = openTrusted(dir, file, O_RDONLY, &fd);
    if (status != OK) {
        // What is not trusted is as good as not there.
        return status == PERMISSION_DENIED ? NAME_NOT_FOUND : status;
    }
    // In this order: a record that is read after the lock was seen is its holder's, or not yet written.
    if (!isLocked(fd.get(), kRecordByte)) {
        return NAME_NOT_FOUND;
    }
    Record record;
    const ssize_t got = pread(fd.get(), &record, sizeof(record), 0);
    if (got == 0) {
        return NAME_NOT_FOUND;
    }
    if (got != sizeof(record) || record.magic != kRecordMagic || record.version != kRecordVersion ||
        record.pid <= 0 || record.checksum != checksumOf(record)) {
        ALOGW("%s is refused: its record is damaged", file.c_str());
        return NAME_NOT_FOUND;
    }
    *reference = record.reference;
    *pid = record.pid;
    return OK;
}

status_t Registry::find(std::string_view fqName, std::string_view instance, ObjectReference* reference,
                        pid_t* pid) {
    const std::string file = fileOf(fqName, instance);
    if (file.empty()) {
        return BAD_VALUE;
    }
    int dir = -1;
    const status_t status = directory(&dir);
    return status != OK ? status : look(dir, file, reference, pid);
}

status_t Registry::list(std::vector<RegistryEntry>* entries) {
    int dir = -1;
    const status_t status = directory(&dir);
    if (status != OK) {
        return status;
    }
    // A descriptor of its own, as reading moves its position.
    UniqueFd own(openat(dir, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> files(own.ok() ? fdopendir(own.get()) : nullptr, closedir);
    if (files == nullptr) {
        return -errno;
    }
    own.release();
    entries->clear();
    while (const dirent* item = readdir(files.get())) {
        const std::string_view file = item->d_name;
        const size_t separator = file.find(kSeparator);
        if (separator == std::string_view::npos) {
            continue;
        }
        RegistryEntry entry{
                std::string(file.substr(0, separator)), std::string(file.substr(separator + 1)), {}, 0};
        if (fileOf(entry.fqName, entry.instance) == file &&
            look(dir, std::string(file), &entry.reference, &entry.pid) == OK) {
            entries->push_back(std::move(entry));
        }
    }
    std::sort(entries->begin(), entries->end(), [](const RegistryEntry& left, const RegistryEntry& right) {
        return std::tie(left.fqName, left.instance) < std::tie(right.fqName, right.instance);
    });
    return OK;
}

status_t Registry::Watch::start(Registry& registry) {
    int dir = -1;
    const status_t status = registry.directory(&dir);
    if (status != OK) {
        return status;
    }
    UniqueFd fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    // By descriptor, as the path may lead elsewhere by now.
    const std::string path = "/proc/self/fd/" + std::to_string(dir);
    if (!fd.ok() || inotify_add_watch(fd.get(), path.c_str(), IN_MODIFY | IN_ONLYDIR) < 0) {
        return -errno;
    }
    mFd = std::move(fd);
    return OK;
}

bool Registry::Watch::wait(int milliseconds) {
    pollfd waiting{mFd.get(), POLLIN, 0};
    if (poll(&waiting, 1, milliseconds) <= 0) {
        return false;
    }
    alignas(inotify_event) char events[4096];
    while (read(mFd.get(), events, sizeof(events)) > 0) {
        // Which file it was does not matter.
    }
    return true;
}

}  // namespace android::hardware
