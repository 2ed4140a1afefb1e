#define LOG_TAG "hidl.registry"

#include "platform/socket/Registry.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <log/log.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <tuple>

namespace android::hardware {

namespace {

constexpr uint32_t kRecordMagic = 0x4e5a5448;  // "HTZN"
constexpr uint32_t kRecordVersion = 2;

// Bytes of a file that are locked by the holder of its name.
constexpr off_t kNameByte = 0;
constexpr off_t kRecordByte = 1;

/** Between interface and instance in a file's name; interface names do not have it. */
constexpr char kSeparator = '+';

// How often a name is tried whose file or directory is deleted at that very moment; each time somebody has to
// be that quick again.
constexpr int kAttempts = 8;

// How soon what could not be put back, or be watched, is tried again.
constexpr int kRetryMilliseconds = 200;

// What a holder is to know of: a file deleted, moved or replaced, and the same of the directory.
constexpr uint32_t kFilesChange =
        IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
// What ends a wait: a record written or withdrawn, and the directory deleted or moved.
constexpr uint32_t kRecordsChange = IN_MODIFY | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

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
status_t askLock(int fd, off_t byte, bool* locked) {
    struct flock lock = lockOf(byte, F_RDLCK);
    if (fcntl(fd, F_OFD_GETLK, &lock) != 0) {
        return -errno;
    }
    *locked = lock.l_type != F_UNLCK;
    return OK;
}

uint64_t nanosecondsNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000u + static_cast<uint64_t>(now.tv_nsec);
}

/** Makes a file that belongs to the directory's owner, unless there is one of that name. */
status_t makeFile(int directory, uid_t owner, const std::string& file) {
    const UniqueFd fd(
            openat(directory, file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!fd.ok()) {
        return errno == EEXIST ? OK : -errno;
    }
    if (owner != geteuid() && fchown(fd.get(), owner, static_cast<gid_t>(-1)) != 0) {
        const status_t status = -errno;
        unlinkat(directory, file.c_str(), 0);
        return status;
    }
    return OK;
}

}  // namespace

Registry::Registry(std::string path)
    : mPath([&] {
          while (path.size() > 1 && path.back() == '/') {
              path.pop_back();  // with it, a link would be followed
          }
          return std::move(path);
      }()),
      mOwner(geteuid()) {}

std::string Registry::defaultPath() {
    if (const char* path = std::getenv("HIDL_RUNTIME_DIR"); path != nullptr && *path != '\0') {
        return path;
    }
    return "/tmp/hidl-" + std::to_string(geteuid());
}

// Files.

/** FNV-1a: tells a record from a torn, foreign or moved one; it is no protection against its owner. */
uint64_t Registry::checksumOf(const Record& record, const std::string& file) {
    uint64_t sum = 0xcbf29ce484222325u;
    const auto add = [&](const void* memory, size_t size) {
        for (size_t i = 0; i < size; ++i) {
            sum = (sum ^ static_cast<const uint8_t*>(memory)[i]) * 0x100000001b3u;
        }
    };
    add(&record, offsetof(Record, checksum));
    add(file.data(), file.size());
    return sum;
}

status_t Registry::directory(Missing missing, Directory* result) {
    const char* path = mPath.c_str();
    const auto opened = [&] {
        result->fd = UniqueFd(open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        return result->fd.ok();
    };
    struct stat info {};
    bool there = opened();
    const bool makes = missing == Missing::Made && mOwner == geteuid();
    for (int attempt = 0; makes && !there && errno == ENOENT && attempt < kAttempts; ++attempt) {
        there = (mkdir(path, 0700) == 0 || errno == EEXIST) && opened();
    }
    if (!there || fstat(result->fd.get(), &info) != 0) {
        const int error = errno;
        if (error == ENOENT && missing == Missing::NotFound) {
            return NAME_NOT_FOUND;
        }
        if (mRefusal.exchange(error) != error) {
            ALOGE("%s can not be used as registry: %s", path, strerror(error));
        }
        return -error;
    }
    const bool foreign = info.st_uid != geteuid() && geteuid() != 0;
    if (foreign || (info.st_mode & 077) != 0) {
        if (mRefusal.exchange(EPERM) == EPERM) {
            return PERMISSION_DENIED;
        }
        if (foreign) {
            ALOGE("%s is refused as registry: it belongs to user %u and not to us, user %u; "
                  "HIDL_RUNTIME_DIR names another",
                  path, info.st_uid, geteuid());
        } else if ((info.st_mode & S_ISVTX) != 0) {
            ALOGE("%s is refused as registry: it is there for everyone to share, its mode is %o; "
                  "HIDL_RUNTIME_DIR is to name one in it",
                  path, info.st_mode & 07777);
        } else {
            ALOGE("%s is refused as registry: others may enter it, its mode is %o; chmod 700 %s", path,
                  info.st_mode & 07777, path);
        }
        return PERMISSION_DENIED;
    }
    mRefusal = 0;
    mOwner = result->owner = info.st_uid;
    return OK;
}

/** Opens a file without following links or waiting for a pipe's other end, and checks what it is. */
status_t Registry::openFile(const Directory& directory, const std::string& file, int flags,
                            UniqueFd* result) {
    UniqueFd fd(
            openat(directory.fd.get(), file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!fd.ok() || fstat(fd.get(), &info) != 0) {
        const int error = errno;
        switch (error) {
            case EACCES:
            case EISDIR:
            case ELOOP:  // a symbolic link
            case ENXIO:  // a socket
                ALOGW("%s is refused: %s", file.c_str(), strerror(error));
                return PERMISSION_DENIED;
            default:
                return -error;
        }
    }
    const bool trusted = info.st_uid == directory.owner || (info.st_uid == 0 && directory.owner == geteuid());
    if (!S_ISREG(info.st_mode) || !trusted) {
        ALOGW("%s is refused: mode %o, user %u", file.c_str(), info.st_mode, info.st_uid);
        return PERMISSION_DENIED;
    }
    *result = std::move(fd);
    return OK;
}

/** What the live holder of a name has written, if it has. */
status_t Registry::look(const Directory& directory, const std::string& file, Record* record) {
    UniqueFd fd;
    status_t status = openFile(directory, file, O_RDONLY, &fd);
    if (status != OK) {
        // What is not trusted is as good as not there.
        return status == PERMISSION_DENIED ? NAME_NOT_FOUND : status;
    }
    // In this order: a record that is read after the lock was seen is its holder's, or not yet written.
    bool locked = false;
    status = askLock(fd.get(), kRecordByte, &locked);
    if (status != OK || !locked) {
        return status != OK ? status : NAME_NOT_FOUND;
    }
    const ssize_t got = pread(fd.get(), record, sizeof(*record), 0);
    if (got <= 0) {
        return got < 0 ? -errno : NAME_NOT_FOUND;
    }
    if (got != sizeof(*record) || record->magic != kRecordMagic || record->version != kRecordVersion ||
        record->pid <= 0 || record->checksum != checksumOf(*record, file)) {
        ALOGW("%s is refused: its record is damaged", file.c_str());
        return NAME_NOT_FOUND;
    }
    return OK;
}

/** Whether the name still leads to the file that we have open. */
bool Registry::leadsTo(const std::string& file, int fd) const {
    struct stat ours {};
    struct stat named {};
    return fstat(fd, &ours) == 0 && lstat((mPath + "/" + file).c_str(), &named) == 0 &&
           ours.st_ino == named.st_ino && ours.st_dev == named.st_dev;
}

/** Makes the name lead to a file that we have locked and that holds the record. */
status_t Registry::occupy(const std::string& file, Record* record, UniqueFd* result) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        Directory dir;
        status_t status = directory(Missing::Made, &dir);
        if (status != OK) {
            return status;
        }
        UniqueFd fd;
        status = makeFile(dir.fd.get(), dir.owner, file);
        if (status == OK) {
            status = openFile(dir, file, O_RDWR, &fd);
        }
        if (status == NAME_NOT_FOUND) {
            continue;  // it was deleted, or its directory was, since it was made
        }
        if (status == OK) {
            status = lockByte(fd.get(), kNameByte);
        }
        if (status != OK) {
            return status;
        }
        if (record->takenAt == 0) {
            record->takenAt = nanosecondsNow();
        }
        record->checksum = checksumOf(*record, file);
        // The record comes last: its writing is what watches notice.
        if (ftruncate(fd.get(), 0) != 0) {
            return -errno;
        }
        status = lockByte(fd.get(), kRecordByte);
        if (status != OK) {
            return status;
        }
        const ssize_t written = pwrite(fd.get(), record, sizeof(*record), 0);
        if (written != sizeof(*record)) {
            return written < 0 ? -errno : -ENOSPC;
        }
        if (leadsTo(file, fd.get())) {
            *result = std::move(fd);
            return OK;
        }
    }
    return WOULD_BLOCK;
}

// Names.

status_t Registry::take(std::string_view fqName, std::string_view instance,
                        const ObjectReference& reference) {
    const std::string file = fileOf(fqName, instance);
    if (file.empty()) {
        return BAD_VALUE;
    }
    // All the while, so that no deletion is noticed between the file's making and its entry.
    const CheckedLock lock(mLock);
    const auto [held, isNew] = mHeld.try_emplace(file);
    if (!isNew) {
        return ALREADY_EXISTS;
    }
    held->second.record = {kRecordMagic, kRecordVersion, reference, getpid(), sizeof(void*), 0, 0};
    const status_t status = occupy(file, &held->second.record, &held->second.fd);
    if (status != OK) {
        mHeld.erase(held);
    }
    return status;
}

void Registry::release(std::string_view fqName, std::string_view instance) {
    const CheckedLock lock(mLock);
    const auto held = mHeld.find(fileOf(fqName, instance));
    if (held == mHeld.end()) {
        return;
    }
    // For the watches; that the name is free does not depend on it.
    if (ftruncate(held->second.fd.get(), 0) != 0) {
        ALOGW("%s keeps its record: %s", held->first.c_str(), strerror(errno));
    }
    mHeld.erase(held);
}

status_t Registry::find(std::string_view fqName, std::string_view instance, ObjectReference* reference,
                        pid_t* pid) {
    const std::string file = fileOf(fqName, instance);
    if (file.empty()) {
        return BAD_VALUE;
    }
    Directory dir;
    Record record;
    status_t status = directory(Missing::NotFound, &dir);
    if (status == OK) {
        status = look(dir, file, &record);
    }
    if (status == OK) {
        *reference = record.reference;
        *pid = record.pid;
    }
    return status;
}

status_t Registry::list(std::vector<RegistryEntry>* entries) {
    entries->clear();
    Directory dir;
    status_t status = directory(Missing::NotFound, &dir);
    if (status != OK) {
        return status == NAME_NOT_FOUND ? OK : status;
    }
    // A descriptor of its own, which goes with the stream.
    UniqueFd own(openat(dir.fd.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> files(own.ok() ? fdopendir(own.get()) : nullptr, closedir);
    if (files == nullptr) {
        return -errno;
    }
    own.release();
    std::vector<RegistryEntry> found;
    while (true) {
        errno = 0;
        const dirent* item = readdir(files.get());
        if (item == nullptr) {
            break;
        }
        const std::string file = item->d_name;
        const size_t separator = file.find(kSeparator);
        if (separator == std::string::npos) {
            continue;
        }
        RegistryEntry entry{file.substr(0, separator), file.substr(separator + 1), {}, 0, 0};
        if (fileOf(entry.fqName, entry.instance) != file) {
            continue;
        }
        Record record;
        status = look(dir, file, &record);
        if (status == NAME_NOT_FOUND) {
            continue;
        }
        if (status != OK) {
            return status;
        }
        entry.reference = record.reference;
        entry.pid = record.pid;
        entry.pointerBytes = record.pointerBytes;
        found.push_back(std::move(entry));
    }
    if (errno != 0) {
        return -errno;
    }
    std::sort(found.begin(), found.end(), [](const RegistryEntry& left, const RegistryEntry& right) {
        return std::tie(left.fqName, left.instance) < std::tie(right.fqName, right.instance);
    });
    *entries = std::move(found);
    return OK;
}

// Keeping names.

status_t Registry::Events::follow(Registry& registry, Missing missing, uint32_t mask) {
    if (!mFd.ok()) {
        mFd = UniqueFd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!mFd.ok()) {
            return -errno;
        }
    }
    while (true) {
        Directory dir;
        const status_t status = registry.directory(missing, &dir);
        if (status != OK) {
            return status;
        }
        // By descriptor, as the path may lead elsewhere by now.
        char path[32];
        std::snprintf(path, sizeof(path), "/proc/self/fd/%d", dir.fd.get());
        const int watched = inotify_add_watch(mFd.get(), path, mask);
        if (watched < 0) {
            return -errno;
        }
        if (watched == mWatched) {
            return OK;  // the path has led to it since its watch began
        }
        if (mWatched >= 0) {
            inotify_rm_watch(mFd.get(), mWatched);  // there is none any more if its directory was deleted
        }
        mWatched = watched;
    }
}

void Registry::Events::drain() {
    alignas(inotify_event) char events[4096];
    while (read(mFd.get(), events, sizeof(events)) > 0) {
        // Which file it was does not matter.
    }
}

status_t Registry::changes(int* fd) {
    const CheckedLock lock(mLock);
    if (!mChanges.ok()) {
        const status_t status = mEvents.follow(*this, Missing::Made, kFilesChange);
        if (status != OK) {
            return status;
        }
        UniqueFd retry(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
        UniqueFd changes(epoll_create1(EPOLL_CLOEXEC));
        for (const int source : {mEvents.fd(), retry.get()}) {
            epoll_event event{};
            event.events = EPOLLIN;
            if (source < 0 || !changes.ok() || epoll_ctl(changes.get(), EPOLL_CTL_ADD, source, &event) != 0) {
                return -errno;
            }
        }
        mRetry = std::move(retry);
        mChanges = std::move(changes);
        if (!mHeld.empty()) {
            restoreLater();  // what happened to them so far was not noticed
        }
    }
    *fd = mChanges.get();
    return OK;
}

void Registry::restore() noexcept {
    const CheckedLock lock(mLock);
    if (!mChanges.ok()) {
        return;
    }
    bool complete = false;
    try {
        complete = restoreAll();
    } catch (const std::exception& error) {
        ALOGE("names can not be put back: %s", error.what());
    }
    if (!complete) {
        restoreLater();
    }
}

void Registry::restoreLater() {
    itimerspec soon{};
    soon.it_value.tv_sec = kRetryMilliseconds / 1000;
    soon.it_value.tv_nsec = kRetryMilliseconds % 1000 * 1'000'000L;
    timerfd_settime(mRetry.get(), 0, &soon, nullptr);
}

/** The lock is held. False when it is to be tried again. */
bool Registry::restoreAll() {
    uint64_t expirations;
    (void)!read(mRetry.get(), &expirations, sizeof(expirations));
    mEvents.drain();
    // First of all, so that what happens from here on is an event.
    bool complete = mEvents.follow(*this, Missing::Made, kFilesChange) == OK;
    for (auto held = mHeld.begin(); held != mHeld.end();) {
        auto& [file, name] = *held;
        bool lost = false;
        if (!leadsTo(file, name.fd.get())) {
            ALOGW_IF(!name.missing, "%s was deleted or replaced while its name is held", file.c_str());
            name.missing = true;
            const status_t status = putBack(file, &name);
            lost = status == ALREADY_EXISTS;
            ALOGI_IF(status == OK, "%s is back", file.c_str());
            name.missing = status != OK;
            complete = complete && (status == OK || lost);
        }
        held = lost ? mHeld.erase(held) : std::next(held);
    }
    return complete;
}

/** The lock is held. ALREADY_EXISTS when a live process took the name before us. */
status_t Registry::putBack(const std::string& file, Held* name) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        // The old file stays locked until another is.
        status_t status = occupy(file, &name->record, &name->fd);
        if (status != ALREADY_EXISTS && status != PERMISSION_DENIED) {
            return status;
        }
        Directory dir;
        status = directory(Missing::Made, &dir);
        if (status != OK) {
            return status;
        }
        Record other;
        status = look(dir, file, &other);
        if (status != OK && status != NAME_NOT_FOUND) {
            return status;
        }
        if (status == OK && std::tie(other.takenAt, other.reference.endpoint) <
                                    std::tie(name->record.takenAt, name->record.reference.endpoint)) {
            ALOGE("%s is given up: process %d took the name before us", file.c_str(), other.pid);
            return ALREADY_EXISTS;
        }
        ALOGW("%s is removed: %s", file.c_str(),
              status == OK ? "its process took the name while we held it" : "it is no registration");
        if (unlinkat(dir.fd.get(), file.c_str(), 0) != 0 && errno != ENOENT) {
            return -errno;
        }
    }
    return WOULD_BLOCK;
}

// Waiting.

status_t Registry::Watch::start(Registry& registry) {
    Waiting& shared = registry.mWaiting;
    const CheckedLock lock(shared.lock);
    if (!shared.polled) {
        if (!shared.wake.ok()) {
            shared.wake = UniqueFd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
            if (!shared.wake.ok()) {
                return -errno;
            }
        }
        if (shared.events.fd() >= 0) {
            shared.events.drain();
        }
        const status_t status = shared.events.follow(registry, Missing::Made, kRecordsChange);
        shared.following = status == OK;
        if (status != OK && status != NAME_NOT_FOUND) {
            return status;
        }
    }
    mRegistry = &registry;
    mSeen = shared.changes;
    return OK;
}

bool Registry::Watch::wait(int milliseconds) {
    using std::chrono::steady_clock;
    Waiting& shared = mRegistry->mWaiting;
    const auto deadline = steady_clock::now() + std::chrono::milliseconds(std::max(milliseconds, 0));
    CheckedLock lock(shared.lock);
    bool late = false;
    while (shared.changes == mSeen && !late) {
        if (!shared.polled) {
            const auto left =
                    std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
            shared.polled = true;
            lock.unlock();
            const bool changed = mRegistry->pollOnce(
                    milliseconds < 0 ? -1 : static_cast<int>(std::max<decltype(left)>(left, 0)));
            lock.lock();
            shared.polled = false;
            shared.changes += changed ? 1 : 0;
            // Also when nothing has changed: another is to poll if this one leaves.
            shared.changed.notify_all();
            late = milliseconds >= 0 && steady_clock::now() >= deadline;
        } else if (milliseconds < 0) {
            shared.changed.wait(lock);
        } else {
            late = shared.changed.wait_until(lock, deadline) == std::cv_status::timeout;
        }
    }
    const bool changed = shared.changes != mSeen;
    mSeen = shared.changes;
    return changed;
}

/** For the one thread that polls, without the lock. Whether something may have changed. */
bool Registry::pollOnce(int milliseconds) {
    if (!mWaiting.following && (milliseconds < 0 || milliseconds > kRetryMilliseconds)) {
        milliseconds = kRetryMilliseconds;
    }
    pollfd waiting[] = {{mWaiting.events.fd(), POLLIN, 0}, {mWaiting.wake.get(), POLLIN, 0}};
    const bool changed = poll(waiting, 2, milliseconds) > 0;
    if (!changed && mWaiting.following) {
        return false;
    }
    eventfd_t count = 0;
    eventfd_read(mWaiting.wake.get(), &count);
    mWaiting.events.drain();
    const bool followed = mWaiting.following;
    mWaiting.following = mWaiting.events.follow(*this, Missing::NotFound, kRecordsChange) == OK;
    return changed || (mWaiting.following && !followed);
}

void Registry::wakeWatches() {
    const CheckedLock lock(mWaiting.lock);
    ++mWaiting.changes;
    if (mWaiting.polled) {
        eventfd_write(mWaiting.wake.get(), 1);
    }
    mWaiting.changed.notify_all();
}

}  // namespace android::hardware
