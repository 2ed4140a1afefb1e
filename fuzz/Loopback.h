#pragma once

#include <hwbinder/IBinder.h>

#include "fuzz/Choices.h"

namespace fuzz {

/**
 * An object of this process as another process has it: a call becomes the bytes of a message, some of which
 * are spoiled if that is chosen, is checked and read as a foreign one is, and so is its reply. Or it becomes
 * what the binder driver takes, and is read as the driver delivers it; nothing is spoiled then, as the driver
 * has checked what it delivers.
 */
class Loopback final : public android::hardware::IBinder {
  public:
    explicit Loopback(const android::sp<IBinder>& object) : mObject(object) {}

    /** What spoils the bytes of the next calls. */
    void spoilBy(const Choices& choices) { mSpoil = choices; }
    /** Whether the next calls go as they do through the driver. */
    void goThroughDriver(bool driver) { mDriver = driver; }
    /** Whether the last call's bytes came through as they were, and its results fit a message. */
    bool wasSound() const { return mSound; }

    /** FAILED_TRANSACTION where the message is refused. */
    android::status_t transact(uint32_t code, const android::hardware::Parcel& data,
                               android::hardware::Parcel* reply, uint32_t flags,
                               TransactCallback callback) override;
    android::status_t linkToDeath(const android::sp<DeathRecipient>&) override { return android::OK; }
    android::status_t unlinkToDeath(const android::sp<DeathRecipient>&) override {
        return android::NAME_NOT_FOUND;
    }

  private:
    const android::sp<IBinder> mObject;
    Choices mSpoil;
    bool mSound = true;
    bool mDriver = false;
};

/** Calls an object with a message that was received, and checks that its reply is one that can be received.
 */
android::status_t deliver(const android::sp<android::hardware::IBinder>& object, uint8_t* message,
                          android::hardware::Parcel* reply, bool* fits);

}  // namespace fuzz
