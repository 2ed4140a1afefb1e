#include "simulator/storage/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>

#include "simulator/board/Status.h"
#include "simulator/storage/FileTree.h"
#include "simulator/storage/Sandbox.h"

namespace simulator::files {
namespace {

constexpr mode_t kFileMode = 0644;
constexpr mode_t kFolderMode = 0755;
constexpr unsigned kModeBits = 07777;
constexpr size_t kPiece = 64 * 1024;
constexpr int kAttempts = 8;

enum class Way { Replace, Append, Overwrite };
struct WriteMode {
    const char* text;
    Way way;
};
// As fopen() has them, without those that only read.
constexpr WriteMode kWriteModes[] = {{"w", Way::Replace},
                                     {"w+", Way::Replace},
                                     {"a", Way::Append},
                                     {"a+", Way::Append},
                                     {"r+", Way::Overwrite}};
constexpr char kWritten[] = ".write.tmp";

int32_t writeAll(int file, const unsigned char* data, size_t length) {
    for (size_t done = 0; done < length;) {
        const ssize_t written = ::write(file, data + done, length - done);
        if (written < 0 && errno != EINTR) {
            return statusOf(errno);
        }
        done += written < 0 ? 0 : static_cast<size_t>(written);
    }
    return kOk;
}

int32_t append(int file, const unsigned char* data, size_t length) {
    struct stat status {};
    if (fstat(file, &status) != 0) {
        return statusOf(errno);
    }
    const int32_t result = writeAll(file, data, length);
    if (result != kOk && ftruncate(file, status.st_size) != 0) {
        return kIoError;  // some of it may be there
    }
    return result;
}

/** Copies a file's content from the offset on, behind what the other one has. */
int32_t copyRest(int from, uint64_t offset, int to) {
    unsigned char piece[kPiece];
    int32_t result = kOk;
    for (size_t count = sizeof(piece); result == kOk && count == sizeof(piece); offset += count) {
        result = readAt(from, piece, sizeof(piece), offset, &count);
        result = result == kOk ? writeAll(to, piece, count) : result;
    }
    return result;
}

/**
 * Another file in the place of this one, so that whatever goes wrong leaves the old content or the new. kBusy
 * when somebody moves it meanwhile. One at a time, since they share the name that they make it under.
 */
int32_t replace(const Opened& file, const unsigned char* data, size_t length, bool keepRest) {
    const Sandbox::Place place = boardFiles().placeOf(file);
    struct stat status {};
    if (place.status != kOk) {
        return place.status;
    }
    if (fstat(file.file.get(), &status) != 0) {
        return statusOf(errno);
    }
    const int folder = place.folder.get();
    unlinkat(folder, kWritten, 0);  // of a process that was killed
    const Descriptor made(
            openat(folder, kWritten, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!made) {
        return statusOf(errno);
    }
    int32_t result = writeAll(made.get(), data, length);
    if (result == kOk && keepRest) {
        result = copyRest(file.file.get(), length, made.get());
    }
    if (result == kOk && status.st_uid != geteuid() &&
        fchown(made.get(), status.st_uid, status.st_gid) != 0 && errno != EPERM) {
        result = statusOf(errno);
    }
    if (result == kOk && (fchmod(made.get(), status.st_mode & kModeBits) != 0 ||
                          renameat(folder, kWritten, folder, place.name.c_str()) != 0)) {
        result = statusOf(errno);
    }
    if (result != kOk) {
        unlinkat(folder, kWritten, 0);
    }
    return result;
}

void removeOpened(const Opened& file) {
    const Sandbox::Place place = boardFiles().placeOf(file);
    if (place.status == kOk) {
        unlinkat(place.folder.get(), place.name.c_str(), 0);
    }
}

/** Puts what stands at the temporary name in the place of the path's own; what was there is removed. */
int32_t moveInto(const Sandbox::Place& place, const std::string& temporary, bool replace) {
    const int folder = place.folder.get();
    // Either there is something to exchange it with, or there is not: unless others make and remove it.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (replace &&
            renameat2(folder, temporary.c_str(), folder, place.name.c_str(), RENAME_EXCHANGE) == 0) {
            return removeTree(folder, temporary, Sandbox::kMaxDepth);
        }
        if (replace && errno != ENOENT) {
            return statusOf(errno);
        }
        if (renameat2(folder, temporary.c_str(), folder, place.name.c_str(), RENAME_NOREPLACE) == 0) {
            return kOk;
        }
        if (!replace || errno != EEXIST) {
            return statusOf(errno);
        }
    }
    return kBusy;
}

}  // namespace

int32_t check(const char* path) {
    return boardFiles().openFile(path, O_RDONLY).status;
}

int32_t checkFolder(const char* path) {
    return boardFiles().open(path, O_RDONLY | O_DIRECTORY).status;
}

int32_t create(const char* path) {
    return boardFiles().open(path, O_WRONLY | O_CREAT | O_EXCL, kFileMode).status;
}

int32_t createFolder(const char* path) {
    const Sandbox::Place place = boardFiles().placeOf(path);
    if (place.status != kOk) {
        return place.status;
    }
    return mkdirat(place.folder.get(), place.name.c_str(), kFolderMode) == 0 ? kOk : statusOf(errno);
}

int32_t remove(const char* path) {
    const Sandbox::Place place = boardFiles().placeOf(path);
    if (place.status != kOk) {
        return place.status;
    }
    struct stat status {};
    if (place.asFolder &&
        (fstatat(place.folder.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 ||
         !S_ISDIR(status.st_mode))) {
        return kBadFile;
    }
    return removeTree(place.folder.get(), place.name, Sandbox::kMaxDepth);
}

int32_t read(const char* path, unsigned char* data, size_t length, uint64_t offset, unsigned* count) {
    if ((data == nullptr && length > 0) || count == nullptr) {
        return kOutOfRange;
    }
    *count = 0;
    const Opened opened = boardFiles().openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    size_t got = 0;
    const int32_t status = readAt(opened.file.get(), data, length, offset, &got);
    *count = static_cast<unsigned>(got);
    return status;
}

int32_t load(const char* path, size_t limit, std::string* content) {
    const Opened opened = boardFiles().openFile(path, O_RDONLY);
    struct stat status {};
    if (opened.status != kOk) {
        return opened.status;
    }
    if (fstat(opened.file.get(), &status) != 0) {
        return statusOf(errno);
    }
    if (static_cast<uintmax_t>(status.st_size) > limit) {
        return kTooLong;
    }
    // It may grow while it is read.
    content->clear();
    int32_t result = kOk;
    for (bool more = true; result == kOk && more && content->size() <= limit;) {
        const size_t done = content->size();
        const size_t wanted = done == 0 ? static_cast<size_t>(status.st_size) + 1 : kPiece;
        content->resize(done + wanted);
        size_t count = 0;
        result = readAt(opened.file.get(), reinterpret_cast<unsigned char*>(content->data()) + done, wanted,
                        done, &count);
        content->resize(done + count);
        more = count == wanted;
    }
    return result == kOk && content->size() > limit ? kTooLong : result;
}

int32_t write(const char* path, const unsigned char* data, size_t length, const char* modeText) {
    const WriteMode* mode = nullptr;
    for (const WriteMode& known : kWriteModes) {
        if (modeText != nullptr && strcmp(modeText, known.text) == 0) {
            mode = &known;
        }
    }
    if (mode == nullptr || (data == nullptr && length > 0)) {
        return kOutOfRange;
    }
    // One write after the other, so that two at once leave the one or the other, not a mixture.
    static std::mutex& sWriting = *new std::mutex;
    const std::lock_guard<std::mutex> writing(sWriting);
    int32_t result = kBusy;
    for (int attempt = 0; result == kBusy && attempt < kAttempts; ++attempt) {
        const int flags = mode->way == Way::Append      ? O_WRONLY | O_APPEND
                          : mode->way == Way::Overwrite ? O_RDWR
                                                        : O_WRONLY;
        Opened opened = boardFiles().openFile(path, flags);
        bool made = false;
        if (opened.status == kNotFound && mode->way != Way::Overwrite) {
            opened = boardFiles().openFile(path, flags | O_CREAT | O_EXCL, kFileMode);
            made = opened.status == kOk;
        }
        if (opened.status == kExists) {  // a link to what is not there
            opened = boardFiles().openFile(path, flags | O_CREAT, kFileMode);
        }
        result = opened.status != kOk       ? opened.status
                 : mode->way == Way::Append ? append(opened.file.get(), data, length)
                                            : replace(opened, data, length, mode->way == Way::Overwrite);
        if (made && result != kOk) {
            removeOpened(opened);
        }
    }
    return result;
}

int32_t readLine(const char* path, unsigned char* data, size_t length, uint64_t offset) {
    if (data == nullptr || length == 0) {
        return kOutOfRange;
    }
    data[0] = '\0';
    const Opened opened = boardFiles().openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    // In small pieces: the buffer may be large, and memory that no line needs is not to be touched.
    const size_t room = length - 1;
    unsigned char piece[4096];
    size_t used = 0;
    for (bool ended = false; !ended;) {
        size_t count = 0;
        const int32_t status = readAt(opened.file.get(), piece, sizeof(piece), offset + used, &count);
        const void* const feed = memchr(piece, '\n', count);
        const size_t found = feed == nullptr
                                     ? count
                                     : static_cast<size_t>(static_cast<const unsigned char*>(feed) - piece);
        const size_t taken = std::min(found, room - used);
        if (status != kOk && feed == nullptr && taken == found) {
            data[0] = '\0';
            return status;
        }
        memcpy(data + used, piece, taken);
        used += taken;
        ended = feed != nullptr || count < sizeof(piece) || taken < found;
        if (feed != nullptr && taken == found && used > 0 && data[used - 1] == '\r') {
            --used;
        }
    }
    data[used] = '\0';
    return kOk;
}

int32_t copy(const char* from, const char* to, bool replace) {
    static std::atomic<unsigned> sNumber{0};
    const Opened source = boardFiles().open(from, O_RDONLY);
    if (source.status != kOk) {
        return source.status;
    }
    const Sandbox::Place place = boardFiles().placeOf(to);
    struct stat status {};
    if (place.status != kOk) {
        return place.status;
    }
    if (fstat(source.file.get(), &status) != 0) {
        return statusOf(errno);
    }
    if (place.asFolder && !S_ISDIR(status.st_mode)) {
        return kBadName;
    }
    if (!replace && fstatat(place.folder.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return kExists;
    }
    // Beside its place under another name, so that the place never holds half a copy.
    const std::string temporary =
            ".copy-" + std::to_string(getpid()) + "-" + std::to_string(++sNumber) + ".tmp";
    const unsigned levels = Sandbox::kMaxDepth - place.depth;
    if (const int32_t copied = copyTree(source.file.get(), place.folder.get(), temporary, levels);
        copied != kOk) {
        return copied;
    }
    const int32_t moved = moveInto(place, temporary, replace);
    if (moved != kOk) {
        removeTree(place.folder.get(), temporary, Sandbox::kMaxDepth);
    }
    return moved;
}

int32_t setMode(const char* path, unsigned mode) {
    if (mode > kModeBits) {
        return kOutOfRange;
    }
    // The place alone, so that a file whose mode forbids reading can be given another.
    const Opened opened = boardFiles().open(path, O_PATH);
    struct stat status {};
    if (opened.status != kOk) {
        return opened.status;
    }
    if (fstat(opened.file.get(), &status) != 0) {
        return statusOf(errno);
    }
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        return kBadFile;
    }
    // It keeps other users of this machine out.
    if (boardFiles().isRoot(status)) {
        return kDenied;
    }
    const std::string self = "/proc/self/fd/" + std::to_string(opened.file.get());
    return chmod(self.c_str(), mode) == 0 ? kOk : statusOf(errno);
}

int32_t checksum(const char* path, unsigned* result) {
    if (result == nullptr) {
        return kOutOfRange;
    }
    const Opened opened = boardFiles().openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    unsigned char piece[64 * 1024];
    uLong crc = crc32(0, nullptr, 0);
    uint64_t offset = 0;
    for (size_t count = sizeof(piece); count == sizeof(piece); offset += count) {
        if (const int32_t status = readAt(opened.file.get(), piece, sizeof(piece), offset, &count);
            status != kOk) {
            return status;
        }
        crc = crc32(crc, piece, static_cast<uInt>(count));
    }
    *result = static_cast<unsigned>(crc);
    return kOk;
}

int32_t sync() {
    const Opened root = boardFiles().open("/", O_RDONLY | O_DIRECTORY);
    return root.status != kOk || syncfs(root.file.get()) == 0 ? root.status : statusOf(errno);
}

}  // namespace simulator::files
