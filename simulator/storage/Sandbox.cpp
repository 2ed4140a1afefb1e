#include "simulator/storage/Sandbox.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "files";

// The kernel gives up on a path with ".." when something else on the machine is renamed meanwhile.
constexpr int kAttempts = 64;

/** Length of a path that is not too long, and its number of names; false for others. */
bool measure(const char* path, size_t* length, unsigned* depth) {
    *length = strnlen(path, PATH_MAX);
    *depth = 0;
    for (size_t i = 0; i < *length; ++i) {
        *depth += path[i] != '/' && (i == 0 || path[i - 1] == '/');
    }
    return *length > 0 && *length < PATH_MAX && *depth <= Sandbox::kMaxDepth;
}

/** As the kernel knows it; empty when it does not tell. */
std::string pathOf(int file) {
    char path[PATH_MAX];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof(path));
    return std::string(path, length > 0 ? static_cast<size_t>(length) : 0);
}

int openInRoot(int root, const char* path, int flags, mode_t mode) {
    open_how how{};
    // With a place alone, the kernel takes no flags about reading and writing.
    how.flags =
            static_cast<uint64_t>(flags) | O_CLOEXEC | ((flags & O_PATH) != 0 ? 0 : O_NOCTTY | O_NONBLOCK);
    how.mode = (flags & O_CREAT) != 0 ? mode : 0;
    how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
    long opened = -1;
    for (int i = 0; i < kAttempts; ++i) {
        opened = syscall(SYS_openat2, root, path, &how, sizeof(how));
        if (opened >= 0 || (errno != EAGAIN && errno != EINTR)) {
            break;
        }
    }
    return static_cast<int>(opened);
}

}  // namespace

int32_t readAt(int file, unsigned char* data, size_t length, uint64_t offset, size_t* count) {
    *count = 0;
    if (offset > static_cast<uint64_t>(INT64_MAX) - length) {
        return kOutOfRange;
    }
    while (*count < length) {
        const ssize_t got = pread(file, data + *count, length - *count, static_cast<off_t>(offset + *count));
        if (got < 0 && errno != EINTR) {
            return statusOf(errno);
        }
        if (got == 0) {
            break;
        }
        *count += got < 0 ? 0 : static_cast<size_t>(got);
    }
    return kOk;
}

Opened Sandbox::open(const char* path, int flags, mode_t mode) const {
    size_t length = 0;
    unsigned depth = 0;
    if (path == nullptr) {
        return {Descriptor(), kOutOfRange};
    }
    if (!measure(path, &length, &depth)) {
        return {Descriptor(), kBadName};
    }
    Opened root = mState.openFolder(kFolder);
    if (root.status != kOk) {
        return root;
    }
    Descriptor file(openInRoot(root.file.get(), path, flags, mode));
    if (file) {
        return {std::move(file), kOk};
    }
    if (errno == ENOSYS) {
        static std::atomic<bool> sSaid{false};
        if (!sSaid.exchange(true)) {
            fprintf(stderr, "board: this kernel, or what it runs in, has no openat2: no files\n");
        }
    }
    return {Descriptor(), statusOf(errno)};
}

Opened Sandbox::openFile(const char* path, int flags, mode_t mode) const {
    Opened opened = open(path, flags, mode);
    struct stat status {};
    if (opened.status != kOk) {
        return opened;
    }
    if (fstat(opened.file.get(), &status) != 0) {
        return {Descriptor(), statusOf(errno)};
    }
    return S_ISREG(status.st_mode) ? std::move(opened) : Opened{Descriptor(), kBadFile};
}

Sandbox::Place Sandbox::placeOf(const char* path) const {
    Place place;
    place.status = kOutOfRange;
    if (path == nullptr) {
        return place;
    }
    place.status = kBadName;
    size_t length = 0;
    if (!measure(path, &length, &place.depth)) {
        return place;
    }
    const std::string_view whole(path, length);
    const size_t end = whole.find_last_not_of('/');
    if (end == std::string_view::npos) {
        return place;
    }
    place.asFolder = end + 1 < length;
    const size_t slash = whole.find_last_of('/', end);
    const size_t begin = slash == std::string_view::npos ? 0 : slash + 1;
    place.name = whole.substr(begin, end + 1 - begin);
    if (place.name == "." || place.name == ".." || place.name.size() > NAME_MAX) {
        return place;
    }
    const std::string parent = begin == 0 ? "/" : std::string(whole.substr(0, begin));
    Opened folder = open(parent.c_str(), O_PATH | O_DIRECTORY);
    place.status = folder.status;
    return {std::move(folder.file), std::move(place.name), place.asFolder, place.depth, place.status};
}

Sandbox::Place Sandbox::placeOf(const Opened& file) const {
    const Opened root = mState.openFolder(kFolder);
    Place place;
    place.status = root.status;
    if (root.status != kOk) {
        return place;
    }
    const std::string top = pathOf(root.file.get()) + "/";
    const std::string path = pathOf(file.file.get());
    place.status = kBusy;
    if (path.compare(0, top.size(), top) != 0) {
        return place;
    }
    const size_t slash = path.find_last_of('/');
    place.name = path.substr(slash + 1);
    const std::string parent = path.substr(top.size() - 1, slash + 1 - (top.size() - 1));
    place.folder = Descriptor(openInRoot(root.file.get(), parent.c_str(), O_PATH | O_DIRECTORY, 0));
    struct stat there {};
    struct stat status {};
    if (place.folder && fstatat(place.folder.get(), place.name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0 &&
        fstat(file.file.get(), &status) == 0 && there.st_dev == status.st_dev &&
        there.st_ino == status.st_ino) {
        place.status = kOk;
    }
    return place;
}

bool Sandbox::isRoot(const struct stat& status) const {
    const Opened root = mState.openFolder(kFolder);
    struct stat found {};
    return root.status != kOk || fstat(root.file.get(), &found) != 0 ||
           (found.st_dev == status.st_dev && found.st_ino == status.st_ino);
}

const Sandbox& boardFiles() {
    static const Sandbox& sFiles = *new Sandbox(boardState());
    return sFiles;
}

}  // namespace simulator
