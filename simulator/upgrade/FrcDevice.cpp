#include "simulator/upgrade/FrcDevice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

#include "simulator/board/Board.h"
#include "simulator/board/Events.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Sandbox.h"

namespace simulator {
namespace {

constexpr unsigned kDefaultMilliseconds = 3000;
constexpr unsigned long kMostMilliseconds = 60 * 60 * 1000;
constexpr unsigned kSteps = 10;
// Of the time that the writing takes, how much it takes to start again.
constexpr unsigned kRestartShare = 5;

constexpr char kMagic[] = {'V', 'E', 'X', 'A'};
constexpr size_t kHeader = 16;
constexpr off_t kMaxPayload = 8 * 1024 * 1024;

unsigned upgradeMilliseconds() {
    const char* text = getenv("ZVTTV_FRC_UPGRADE_MS");
    if (text == nullptr || text[0] == '\0') {
        return kDefaultMilliseconds;
    }
    char* end = nullptr;
    errno = 0;
    const unsigned long milliseconds = strtoul(text, &end, 10);
    if (text[0] < '0' || text[0] > '9' || *end != '\0' || errno != 0 || milliseconds > kMostMilliseconds) {
        fprintf(stderr, "board: ZVTTV_FRC_UPGRADE_MS is \"%s\", not a number up to %lu: %u is used\n", text,
                kMostMilliseconds, kDefaultMilliseconds);
        return kDefaultMilliseconds;
    }
    return static_cast<unsigned>(milliseconds);
}

uint32_t littleWord(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

/** How many bytes of the file came, less than asked for only at its end; -1 after a fault. */
ssize_t readFully(int file, uint8_t* bytes, size_t count) {
    size_t done = 0;
    while (done < count) {
        const ssize_t got = read(file, bytes + done, count - done);
        if (got == 0) {
            break;
        }
        if (got < 0 && errno != EINTR) {
            return -1;
        }
        done += got < 0 ? 0 : static_cast<size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace

bool FrcDevice::answers() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mAnswers;
}

bool FrcDevice::upgrading() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mUpgrading;
}

int32_t FrcDevice::readImage(const char* path, Image* image) {
    const Sandbox::Opened opened = Sandbox(boardState()).openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    struct stat status {};
    uint8_t bytes[16 * 1024];
    const int file = opened.file.get();
    if (fstat(file, &status) != 0 || readFully(file, bytes, kHeader) < 0) {
        return kIoError;
    }
    const off_t payload = status.st_size - off_t{kHeader};
    if (payload < 1 || payload > kMaxPayload || memcmp(bytes, kMagic, sizeof(kMagic)) != 0 ||
        littleWord(bytes + 8) != static_cast<uint32_t>(payload)) {
        return kBadImage;
    }
    image->path = path;
    image->version = littleWord(bytes + 4);
    const uint32_t expected = littleWord(bytes + 12);
    uLong sum = crc32(0, nullptr, 0);
    for (off_t left = payload; left > 0;) {
        const size_t wanted = left < off_t{sizeof(bytes)} ? static_cast<size_t>(left) : sizeof(bytes);
        const ssize_t got = readFully(file, bytes, wanted);
        if (got <= 0) {
            return got == 0 ? kBadImage : kIoError;
        }
        sum = crc32(sum, bytes, static_cast<uInt>(got));
        left -= got;
    }
    return sum == expected ? kOk : kBadImage;
}

int32_t FrcDevice::beginUpgrade(const char* path) {
    Image image;
    if (const int32_t result = readImage(path, &image); result != kOk) {
        return result;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mUpgrading) {
        return kBusy;
    }
    // Throws when there is no thread: nothing has changed then.
    std::thread([this, image, round = mRound + 1] {
        try {
            upgrade(image, round);
        } catch (const std::bad_alloc&) {
            fprintf(stderr, "board: no memory to upgrade the frame-rate converter: it keeps its firmware\n");
            enter(false, true, round);
        }
    }).detach();
    ++mRound;
    mUpgrading = true;
    return kOk;
}

void FrcDevice::abort() {
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mRound;
    mUpgrading = false;
    mAnswers = true;
    mAborted.notify_all();
}

/** False when the upgrade has been aborted. */
bool FrcDevice::pause(unsigned milliseconds, unsigned round) {
    std::unique_lock<std::mutex> lock(mMutex);
    return !mAborted.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return mRound != round; });
}

/** False when the upgrade has been aborted; then nothing has changed. */
bool FrcDevice::enter(bool upgrading, bool answers, unsigned round) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mRound != round) {
        return false;
    }
    mUpgrading = upgrading;
    mAnswers = answers;
    return true;
}

void FrcDevice::tellConnection(bool answers) {
    Module::Payload payload;
    payload.objects[0].u32Value = answers ? 1 : 0;
    mModule.raise(kDispFrcConnection, payload);
}

void FrcDevice::tellProgress(const Image& image, unsigned percent, const char* state, int32_t status) {
    Module::Payload payload;
    payload.objects[0].u32Value = percent;
    payload.objects[0].strValue = image.path;
    payload.objects[1].u32Value = image.version;
    payload.objects[1].strValue = state;
    payload.objects[2].u32Value = static_cast<uint32_t>(status);
    mModule.raise(kDispFrcUpgradeProgress, payload);
}

void FrcDevice::upgrade(const Image& image, unsigned round) {
    const unsigned milliseconds = upgradeMilliseconds();
    for (unsigned step = 0; step <= kSteps; ++step) {
        if (!pause(step == 0 ? 0 : milliseconds / kSteps, round)) {
            return;
        }
        tellProgress(image, step * 100 / kSteps, "running", kOk);
    }
    if (!enter(true, false, round)) {
        return;
    }
    tellConnection(false);
    if (!pause(milliseconds / kRestartShare, round)) {
        return;
    }
    const int32_t status = mStore(image.version);
    if (!enter(false, true, round)) {
        return;
    }
    tellConnection(true);
    tellProgress(image, 100, status == kOk ? "done" : "failed", status);
}

}  // namespace simulator
