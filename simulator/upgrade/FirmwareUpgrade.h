#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "simulator/board/Module.h"

namespace simulator {

// This room: new firmware, of the board and of the frame-rate converter beside it.

/**
 * A firmware image: a head of 48 bytes, then the payload to the file's end. Numbers are unsigned, 32 bits,
 * the lowest byte first; checksums are CRC-32.
 *
 *     0  "BOARDFW1"
 *     8  the target's number
 *    12  length of the payload
 *    16  checksum of the payload
 *    20  version, 24 bytes of text, NUL after it
 *    44  checksum of the 44 bytes before
 */
struct FirmwareHead {
    static constexpr size_t kBytes = 48;

    uint32_t target = 0;
    uint32_t length = 0;
    uint32_t checksum = 0;
    std::string version;

    /** Reads the head of an image; false when it is none, or damaged. */
    bool read(const std::string& image);
};

/** The areas that hold the firmware of targets 0, 1, ... */
constexpr const char* kFirmwareAreas[] = {"fw_main", "fw_panel", "fw_tuner"};

/**
 * Writes firmware images, one at a time, on a thread of its own. An image is checked as a whole, before
 * anything is written, and takes the old one's place at once: the area holds the one or the other, whatever
 * interrupts the upgrade. It takes $ZVTTV_BOARD_UPGRADE_MS milliseconds (3000 unless it says otherwise) and
 * raises kSysUpgradeProgress (simulator/board/Events.h) every twentieth of it. Any thread.
 */
class FirmwareUpgrade {
  public:
    explicit FirmwareUpgrade(Module& module) : mModule(module) {}

    /** Upgrades can be started from now on. */
    void enable();

    /** Gives up the one that is running, unless it is just being written; waits for nothing. */
    void disable();

    /**
     * Upgrades a target and waits for the end. kOutOfRange for an unknown target, kBusy while another is
     * running, kNotSetUp while disabled, kGivenUp, kBadImage with the reason on standard error, or a status
     * of the file or of the disk.
     */
    int32_t upgrade(uint8_t target, const char* path);

    /** Whether one is running, and which firmware each target has. */
    std::string describe() const;

  private:
    /** One upgrade. */
    struct Job {
        uint8_t target;
        std::string path;
        std::string image;
        uint32_t milliseconds;
        // Guarded by mMutex.
        unsigned percent = 0;
        bool writing = false;
        bool ended = false;
        int32_t status = 0;
    };

    static int32_t load(Job& job, const char* path);
    void run(const std::shared_ptr<Job>& job);
    void release(const std::shared_ptr<Job>& job);
    void tell(const Job& job, unsigned percent, const char* phase, int32_t status);

    Module& mModule;

    mutable std::mutex mMutex;
    // All below guarded by mMutex.
    std::condition_variable mEnded;
    bool mEnabled = false;
    std::shared_ptr<Job> mRunning;
};

}  // namespace simulator
