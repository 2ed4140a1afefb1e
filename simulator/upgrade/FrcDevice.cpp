#include "simulator/upgrade/FrcDevice.h"

#include <chrono>
#include <cstdio>
#include <new>
#include <thread>

#include "simulator/board/Events.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Files.h"
#include "simulator/upgrade/Image.h"

namespace simulator {
namespace {

constexpr unsigned kSteps = 10;
// Of the time that the writing takes, how much it takes to start again.
constexpr unsigned kRestartShare = 5;

constexpr char kMagic[] = {'V', 'E', 'X', 'A'};
constexpr size_t kHeader = 16;
constexpr size_t kMaxPayload = 8 * 1024 * 1024;

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
    std::string bytes;
    const int32_t status = files::load(path, kHeader + kMaxPayload, &bytes);
    if (status != kOk) {
        return status == kTooLong ? kBadImage : status;
    }
    if (bytes.size() <= kHeader || bytes.compare(0, sizeof(kMagic), kMagic, sizeof(kMagic)) != 0 ||
        wordAt(bytes, 8) != bytes.size() - kHeader ||
        wordAt(bytes, 12) != checksumOf(bytes, kHeader, bytes.size())) {
        return kBadImage;
    }
    *image = {path, wordAt(bytes, 4)};
    return kOk;
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

void FrcDevice::tell(const Image& image, unsigned percent, const char* phase, int32_t status) {
    tellProgress(mModule, kDispFrcUpgradeProgress, percent, image.path, image.version, phase, status);
}

void FrcDevice::upgrade(const Image& image, unsigned round) {
    const unsigned milliseconds = upgradeMilliseconds("ZVTTV_FRC_UPGRADE_MS");
    for (unsigned step = 0; step <= kSteps; ++step) {
        if (!pause(step == 0 ? 0 : milliseconds / kSteps, round)) {
            return;
        }
        tell(image, step * 100 / kSteps, "running", kOk);
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
    tell(image, 100, status == kOk ? "done" : "failed", status);
}

}  // namespace simulator
