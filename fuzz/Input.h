#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/socket/Message.h"

namespace fuzz {

/**
 * Takes the bytes as a connection does: the head is checked, then the whole. The copy has the announced size
 * exactly, so that one byte too far is noticed.
 *
 * @return null when they are refused, or shorter than they say
 */
android::hardware::Block receive(const uint8_t* data, size_t size);

/** Gives a received message's objects: stands for all that others own. Each is given or dropped once. */
class Objects final : public android::hardware::ObjectSource {
  public:
    /** @param message lives until all has been given or dropped */
    explicit Objects(const android::hardware::Message& message);
    /** Ends the process, with the input kept, when any was neither given nor dropped. */
    ~Objects();

    android::status_t takeObject(const uint8_t* form,
                                 android::sp<android::hardware::IBinder>* object) override;
    void dropObject(const uint8_t* form) override;

  private:
    const uint8_t* mNext;  // they come in the order of their references
    const uint8_t* const mEnd;
};

/** An object of another process, which has ended or answers nothing of use. */
android::sp<android::hardware::IBinder> foreignObject();

/** The message as a parcel's source; the caller keeps the block until the parcel has ended. */
android::hardware::ReceivedParcel received(const android::hardware::Message& message);

/** Ends the process, with the input kept, unless it holds. */
void require(bool condition);

}  // namespace fuzz
