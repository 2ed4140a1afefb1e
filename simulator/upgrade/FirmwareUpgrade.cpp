#include "simulator/upgrade/FirmwareUpgrade.h"

#include <chrono>
#include <cstring>
#include <thread>

#include "simulator/board/Events.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Emmc.h"
#include "simulator/storage/Files.h"
#include "simulator/upgrade/Image.h"

namespace simulator {
namespace {

constexpr char kMark[] = "BOARDFW1";
constexpr unsigned kStepPercent = 5;
constexpr size_t kTargets = sizeof(kFirmwareAreas) / sizeof(kFirmwareAreas[0]);

/** What is wrong with a whole image, or empty. */
std::string faultOf(const std::string& image, uint8_t target) {
    FirmwareHead head;
    if (!head.read(image)) {
        return "it has not the head of an image, or a damaged one";
    }
    if (head.target != target) {
        return "it is for target " + std::to_string(head.target);
    }
    if (head.length == 0 || head.length != image.size() - FirmwareHead::kBytes) {
        return "its payload has not the length that its head tells";
    }
    if (head.checksum != checksumOf(image, FirmwareHead::kBytes, image.size())) {
        return "its payload does not match its checksum";
    }
    return {};
}

}  // namespace

bool FirmwareHead::read(const std::string& image) {
    constexpr size_t kVersionAt = 20;
    constexpr size_t kChecksumAt = 44;
    if (image.size() < kBytes || image.compare(0, strlen(kMark), kMark) != 0 ||
        wordAt(image, kChecksumAt) != checksumOf(image, 0, kChecksumAt)) {
        return false;
    }
    target = wordAt(image, 8);
    length = wordAt(image, 12);
    checksum = wordAt(image, 16);
    version.assign(image, kVersionAt, kChecksumAt - kVersionAt);
    version.resize(strnlen(version.c_str(), version.size()));
    return true;
}

void FirmwareUpgrade::enable() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mEnabled = true;
}

void FirmwareUpgrade::disable() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mEnabled = false;
    if (mRunning != nullptr && !mRunning->writing) {
        mRunning->ended = true;
        mRunning->status = kGivenUp;
        mRunning = nullptr;
        mEnded.notify_all();
    }
}

int32_t FirmwareUpgrade::load(Job& job, const char* path) {
    const EmmcArea& area = *Emmc::findArea(kFirmwareAreas[job.target]);
    job.path = path;
    const int32_t status = files::load(path, area.size, &job.image);
    if (status != kOk && status != kTooLong) {
        return status;
    }
    const std::string fault =
            status == kOk ? faultOf(job.image, job.target)
                          : "it is larger than the target's " + std::to_string(area.size) + " bytes";
    if (!fault.empty()) {
        complain("no upgrade of target " + std::to_string(job.target) + " with " + path + ": " + fault);
        return kBadImage;
    }
    return kOk;
}

int32_t FirmwareUpgrade::upgrade(uint8_t target, const char* path) {
    if (target >= kTargets || path == nullptr) {
        return kOutOfRange;
    }
    // Taken before the image is read, so that only one is.
    const auto job = std::make_shared<Job>();
    job->target = target;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!mEnabled || mRunning != nullptr) {
            return mEnabled ? kBusy : kNotSetUp;
        }
        mRunning = job;
    }
    int32_t status = kNoMemory;
    try {
        job->milliseconds = upgradeMilliseconds("ZVTTV_BOARD_UPGRADE_MS");
        status = load(*job, path);
        if (status == kOk) {
            // A thread of its own, for which nobody waits: a module that is shut down answers the caller at
            // once, whatever the thread is doing.
            std::thread([this, job] { run(job); }).detach();
        }
    } catch (const std::exception&) {
        status = kNoMemory;
    }
    if (status != kOk) {
        release(job);
        return status;
    }
    std::unique_lock<std::mutex> lock(mMutex);
    mEnded.wait(lock, [&] { return job->ended; });
    return job->status;
}

void FirmwareUpgrade::release(const std::shared_ptr<Job>& job) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mRunning == job) {
        mRunning = nullptr;
    }
}

void FirmwareUpgrade::run(const std::shared_ptr<Job>& job) {
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(mMutex);
    for (unsigned percent = 0; percent < 100; percent += kStepPercent) {
        if (job->ended) {
            return;
        }
        job->percent = percent;
        lock.unlock();
        tell(*job, percent, "running", kOk);
        lock.lock();
        // Deadlines from the beginning: slow listeners do not add up.
        const auto part =
                std::chrono::milliseconds(uint64_t{job->milliseconds} * (percent + kStepPercent) / 100);
        mEnded.wait_until(lock, begin + part, [&] { return job->ended; });
    }
    if (job->ended) {
        return;
    }
    job->writing = true;
    lock.unlock();
    int32_t status = kNoMemory;
    try {
        status = boardEmmc().replace(*Emmc::findArea(kFirmwareAreas[job->target]), job->image);
    } catch (const std::bad_alloc&) {
        // as it stands
    }
    // Before the last event: who gets it can start the next one. The caller, after it.
    release(job);
    tell(*job, status == kOk ? 100 : 100 - kStepPercent, status == kOk ? "done" : "failed", status);
    lock.lock();
    job->ended = true;
    job->status = status;
    mEnded.notify_all();
}

void FirmwareUpgrade::tell(const Job& job, unsigned percent, const char* phase, int32_t status) {
    tellProgress(mModule, kSysUpgradeProgress, percent, job.path, job.target, phase, status);
}

std::string FirmwareUpgrade::describe() const {
    std::string text;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        text = mRunning == nullptr
                       ? "upgrade none\n"
                       : "upgrade of target " + std::to_string(mRunning->target) + " with " + mRunning->path +
                                 ": " + std::to_string(mRunning->percent) + " %\n";
    }
    for (size_t target = 0; target < kTargets; ++target) {
        const EmmcArea& area = *Emmc::findArea(kFirmwareAreas[target]);
        std::string bytes(FirmwareHead::kBytes, '\0');
        const int32_t status = boardEmmc().read(area.name, 0, FirmwareHead::kBytes,
                                                reinterpret_cast<unsigned char*>(bytes.data()));
        FirmwareHead head;
        text += "firmware " + std::to_string(target) + " in " + area.name + ": " +
                (status != kOk      ? "cannot be read"
                 : head.read(bytes) ? "version " + head.version
                                    : "none installed") +
                "\n";
    }
    return text;
}

}  // namespace simulator
