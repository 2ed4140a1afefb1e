#include "simulator/upgrade/FirmwareUpgrade.h"

#include <fcntl.h>
#include <zlib.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "simulator/board/Events.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr char kMark[] = "BOARDFW1";
constexpr unsigned kStepPercent = 5;
constexpr uint32_t kDefaultMilliseconds = 3000;
constexpr uint32_t kMaxMilliseconds = 60 * 60 * 1000;
constexpr size_t kTargets = sizeof(kFirmwareAreas) / sizeof(kFirmwareAreas[0]);

uint32_t numberAt(const std::string& image, size_t position) {
    uint32_t number = 0;
    for (size_t i = 4; i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(image[position + i]);
    }
    return number;
}

uint32_t checksumOf(const std::string& image, size_t begin, size_t end) {
    return static_cast<uint32_t>(crc32(crc32(0, nullptr, 0),
                                       reinterpret_cast<const Bytef*>(image.data()) + begin,
                                       static_cast<uInt>(end - begin)));
}

uint32_t duration() {
    const char* const text = getenv("ZVTTV_BOARD_UPGRADE_MS");
    if (text == nullptr || text[0] == '\0') {
        return kDefaultMilliseconds;
    }
    uint32_t milliseconds = 0;
    const char* const end = text + strlen(text);
    const auto [rest, error] = std::from_chars(text, end, milliseconds);
    if (error != std::errc() || rest != end || milliseconds > kMaxMilliseconds) {
        fprintf(stderr,
                "board: ZVTTV_BOARD_UPGRADE_MS is \"%s\", not a number of milliseconds up to %u: %u is "
                "used\n",
                text, kMaxMilliseconds, kDefaultMilliseconds);
        return kDefaultMilliseconds;
    }
    return milliseconds;
}

std::string faultOf(uint64_t size, const EmmcArea& area) {
    return size <= area.size ? "" : "it is larger than the target's " + std::to_string(area.size) + " bytes";
}

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
        numberAt(image, kChecksumAt) != checksumOf(image, 0, kChecksumAt)) {
        return false;
    }
    target = numberAt(image, 8);
    length = numberAt(image, 12);
    checksum = numberAt(image, 16);
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

int32_t FirmwareUpgrade::load(Job& job, const char* path) const {
    const Sandbox::Opened opened = mSandbox.openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    struct stat status {};
    const EmmcArea& area = *Emmc::findArea(kFirmwareAreas[job.target]);
    if (fstat(opened.file.get(), &status) != 0) {
        return statusOf(errno);
    }
    job.path = path;
    std::string fault = faultOf(static_cast<uint64_t>(status.st_size), area);
    if (fault.empty()) {
        size_t count = 0;
        job.image.resize(static_cast<size_t>(status.st_size));
        const int32_t got = readAt(opened.file.get(), reinterpret_cast<unsigned char*>(job.image.data()),
                                   job.image.size(), 0, &count);
        if (got != kOk) {
            return got;
        }
        job.image.resize(count);
        fault = faultOf(job.image, job.target);
    }
    if (!fault.empty()) {
        fprintf(stderr, "board: no upgrade of target %u with %s: %s\n", job.target, path, fault.c_str());
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
        job->milliseconds = duration();
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
        status = mEmmc.replace(*Emmc::findArea(kFirmwareAreas[job->target]), job->image);
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
    try {
        Module::Payload payload;
        payload.objects[0].u32Value = percent;
        payload.objects[0].strValue = job.path;
        payload.objects[1].u32Value = job.target;
        payload.objects[1].strValue = phase;
        payload.objects[2].u32Value = static_cast<uint32_t>(status);
        const int32_t told = mModule.raise(kSysUpgradeProgress, payload);
        if (told != kOk && told != kNotSetUp) {
            fprintf(stderr, "board: event 0x%x: the handler's result is %d\n", kSysUpgradeProgress, told);
        }
    } catch (const std::bad_alloc&) {
        fprintf(stderr, "board: no memory for event 0x%x\n", kSysUpgradeProgress);
    }
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
        const int32_t status = mEmmc.read(area.name, 0, FirmwareHead::kBytes,
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
