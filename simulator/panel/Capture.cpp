#include "simulator/panel/Capture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "simulator/board/Status.h"
#include "simulator/panel/Panel.h"
#include "simulator/panel/PngFile.h"
#include "simulator/storage/Sandbox.h"

namespace simulator {
namespace {

constexpr char kStorage[] = "/usb";
constexpr mode_t kFolderMode = 0755;
constexpr mode_t kFileMode = 0644;

bool climbs(const std::string& path) {
    return ("/" + path + "/").find("/../") != std::string::npos;
}

/** The storage is always plugged in. */
int32_t plugIn() {
    const Sandbox::Place place = boardFiles().placeOf(kStorage);
    if (place.status != kOk) {
        return place.status;
    }
    const int made = mkdirat(place.folder.get(), place.name.c_str(), kFolderMode);
    return made == 0 || errno == EEXIST ? kOk : statusOf(errno);
}

int32_t writePicture(int folder, const std::string& name, const std::vector<uint8_t>& rgb) {
    Descriptor made(
            openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    if (!made) {
        return statusOf(errno);
    }
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fdopen(made.get(), "wb"), fclose);
    if (file == nullptr) {
        return statusOf(errno);
    }
    made.release();
    const int32_t result = writePng(file.get(), rgb);
    return result != kOk || fsync(fileno(file.get())) == 0 ? result : statusOf(errno);
}

struct Last {
    std::mutex mutex;
    std::optional<Captured> captured;  // guarded by mutex
};

Last& last() {
    static Last& sLast = *new Last;
    return sLast;
}

}  // namespace

int32_t captureToUsb(const char* path, Seen seen) {
    if (path == nullptr) {
        return kOutOfRange;
    }
    if (climbs(path)) {
        return kBadName;
    }
    if (const int32_t result = plugIn(); result != kOk) {
        return result;
    }
    const Sandbox::Place place = boardFiles().placeOf((std::string(kStorage) + "/" + path).c_str());
    if (place.status != kOk) {
        return place.status;
    }
    struct stat status {};
    const int folder = place.folder.get();
    const bool there = fstatat(folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (path[0] == '\0' || place.asFolder || (there && S_ISDIR(status.st_mode))) {
        return kBadName;
    }

    // One at a time: a picture takes twice 6 MiB and a tenth of a second.
    static std::mutex& sCapturing = *new std::mutex;
    const std::lock_guard<std::mutex> capturing(sCapturing);
    Captured captured{path, PanelClock::now()};
    const std::vector<uint8_t> rgb = panel().picture(seen, captured.instant);
    const std::string temporary = ".capture-" + std::to_string(getpid()) + ".tmp";
    unlinkat(folder, temporary.c_str(), 0);
    int32_t result = writePicture(folder, temporary, rgb);
    if (result == kOk && renameat(folder, temporary.c_str(), folder, place.name.c_str()) != 0) {
        result = statusOf(errno);
    }
    if (result != kOk) {
        unlinkat(folder, temporary.c_str(), 0);
        return result;
    }
    // The place's own descriptor only names the folder.
    const Descriptor open(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!open || fsync(open.get()) != 0) {
        return statusOf(errno);
    }
    const std::lock_guard<std::mutex> lock(last().mutex);
    last().captured = std::move(captured);
    return kOk;
}

std::optional<Captured> lastCapture() {
    const std::lock_guard<std::mutex> lock(last().mutex);
    return last().captured;
}

}  // namespace simulator
