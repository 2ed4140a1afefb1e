#include "simulator/storage/FileTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Sandbox.h"

namespace simulator {
namespace {

constexpr mode_t kCopiedModes = 0777;

/** Calls body with each name in the folder until it returns something else than kOk. */
template <typename Body>
int32_t forEach(int folder, Body body) {
    // A descriptor of its own: the position in the folder belongs to the open file.
    const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(own < 0 ? nullptr : fdopendir(own), closedir);
    if (entries == nullptr) {
        const int32_t status = statusOf(errno);
        Descriptor closes(own);
        return status;
    }
    for (;;) {
        errno = 0;
        const dirent* const entry = readdir(entries.get());
        if (entry == nullptr) {
            return errno == 0 ? kOk : statusOf(errno);
        }
        const std::string name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        if (const int32_t status = body(name); status != kOk) {
            return status;
        }
    }
}

// Not to put its buffer on the stack of each level.
[[gnu::noinline]] int32_t copyContent(int source, int target) {
    char buffer[64 * 1024];
    struct stat status {};
    if (fstat(source, &status) != 0) {
        return statusOf(errno);
    }
    // Not beyond what it holds now: it may grow, were it by this very copy.
    for (off_t left = status.st_size; left > 0;) {
        const size_t wanted = left < off_t{sizeof(buffer)} ? static_cast<size_t>(left) : sizeof(buffer);
        const ssize_t got = read(source, buffer, wanted);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return got == 0 ? kOk : statusOf(errno);
        }
        left -= got;
        for (ssize_t done = 0; done < got;) {
            const ssize_t written = write(target, buffer + done, static_cast<size_t>(got - done));
            if (written < 0 && errno != EINTR) {
                return statusOf(errno);
            }
            done += written < 0 ? 0 : written;
        }
    }
    return kOk;
}

/** Copies what is open; top, null for the copy's own beginning, is where the copy begins. */
int32_t copyInto(int source, int folder, const std::string& name, unsigned levels, const struct stat* top) {
    struct stat status {};
    struct stat made {};
    if (fstat(source, &status) != 0) {
        return statusOf(errno);
    }
    const mode_t mode = status.st_mode & kCopiedModes;
    if (S_ISREG(status.st_mode)) {
        const Descriptor target(
                openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!target) {
            return statusOf(errno);
        }
        const int32_t copied = copyContent(source, target.get());
        return copied != kOk || fchmod(target.get(), mode) == 0 ? copied : statusOf(errno);
    }
    if (!S_ISDIR(status.st_mode) || levels == 0) {
        return kBadFile;
    }
    if (mkdirat(folder, name.c_str(), 0700) != 0) {
        return statusOf(errno);
    }
    const Descriptor target(openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!target || fstat(target.get(), &made) != 0) {
        return statusOf(errno);
    }
    const struct stat& copy = top == nullptr ? made : *top;
    const int32_t copied = forEach(source, [&](const std::string& entry) {
        const Descriptor file(
                openat(source, entry.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat found {};
        if (!file || fstat(file.get(), &found) != 0) {
            return statusOf(errno);
        }
        if (found.st_dev == copy.st_dev && found.st_ino == copy.st_ino) {
            return kOutOfRange;
        }
        return copyInto(file.get(), target.get(), entry, levels - 1, &copy);
    });
    return copied != kOk || fchmod(target.get(), mode) == 0 ? copied : statusOf(errno);
}

}  // namespace

int32_t removeTree(int folder, const std::string& name, unsigned levels) {
    if (unlinkat(folder, name.c_str(), 0) == 0) {
        return kOk;
    }
    if (errno != EISDIR) {
        return statusOf(errno);
    }
    if (unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0) {
        return kOk;
    }
    if (errno != ENOTEMPTY && errno != EEXIST) {
        return statusOf(errno);
    }
    if (levels == 0) {
        return kBadFile;
    }
    const Descriptor inner(openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!inner) {
        return statusOf(errno);
    }
    const int32_t emptied = forEach(inner.get(), [&](const std::string& entry) {
        const int32_t removed = removeTree(inner.get(), entry, levels - 1);
        return removed == kNotFound ? kOk : removed;  // somebody else did
    });
    if (emptied != kOk) {
        return emptied;
    }
    return unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0 ? kOk : statusOf(errno);
}

int32_t copyTree(int source, int folder, const std::string& name, unsigned levels) {
    const int32_t copied = copyInto(source, folder, name, levels, nullptr);
    if (copied != kOk && copied != kExists) {
        removeTree(folder, name, levels);
    }
    return copied;
}

}  // namespace simulator
