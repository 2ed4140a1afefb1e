#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

#include "simulator/board/Module.h"

namespace simulator {

/**
 * The external frame-rate converter. It has two banks for its firmware: the one that it runs is left alone
 * while the other is written, so that an upgrade that ends in the middle, the service's death included,
 * changes nothing.
 *
 * An image is "VEXA", then three 32-bit numbers, the lowest byte first: the firmware's version, the number of
 * bytes behind them (1 to 8 MiB, to the file's end), and the CRC-32 of those bytes, as zlib computes it.
 *
 * Never destroyed: its upgrades run on threads of their own.
 */
class FrcDevice {
  public:
    /** Stores the version that it runs from now on. */
    using Store = int32_t (*)(uint32_t version);

    FrcDevice(Module& module, Store store) : mModule(module), mStore(store) {}
    FrcDevice(const FrcDevice&) = delete;
    FrcDevice& operator=(const FrcDevice&) = delete;

    /** It does not while it starts again behind an upgrade. */
    bool answers() const;
    bool upgrading() const;

    /**
     * Begins to write the image at the path, which takes 3 seconds, or the milliseconds in
     * $ZVTTV_FRC_UPGRADE_MS, and raises the events in simulator/board/Events.h. kBusy while another one is
     * under way; kBadImage, or a status of the file.
     */
    int32_t beginUpgrade(const char* path);

    /** Ends an upgrade under way; nothing has changed, and no more is said about it. Does not wait. */
    void abort();

  private:
    struct Image {
        std::string path;
        uint32_t version = 0;
    };

    static int32_t readImage(const char* path, Image* image);
    void upgrade(const Image& image, unsigned round);
    bool pause(unsigned milliseconds, unsigned round);
    bool enter(bool upgrading, bool answers, unsigned round);
    void tellConnection(bool answers);
    void tell(const Image& image, unsigned percent, const char* phase, int32_t status);

    Module& mModule;
    const Store mStore;
    mutable std::mutex mMutex;
    // All below guarded by mMutex.
    std::condition_variable mAborted;
    bool mUpgrading = false;
    bool mAnswers = true;
    // Counts upgrades and aborts: a thread whose number has passed has nothing to say any more.
    unsigned mRound = 0;
};

}  // namespace simulator
