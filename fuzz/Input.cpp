#include "fuzz/Input.h"

#include <android/log.h>

#include <cstdlib>
#include <cstring>

using namespace android::hardware;

namespace {

// Refusals are logged, and refusals are most of what happens here.
const bool sQuiet = [] {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    return true;
}();

}  // namespace

namespace fuzz {

Block receive(const uint8_t* data, size_t size) {
    MessageHeader head;
    if (size < sizeof(head)) {
        return nullptr;
    }
    std::memcpy(&head, data, sizeof(head));
    if (Message::checkHeader(head) != nullptr || head.totalBytes > size) {
        return nullptr;
    }
    Block block = allocateBlock(head.totalBytes);
    std::memcpy(block.get(), data, head.totalBytes);
    if (Message::check(block.get()) != nullptr) {
        return nullptr;
    }
    return block;
}

Objects::Objects(const Message& message)
    : mNext(reinterpret_cast<const uint8_t*>(message.references())), mEnd(message.scalars()) {}

Objects::~Objects() {
    require(mNext == mEnd);
}

android::status_t Objects::takeObject(const uint8_t* form, android::sp<IBinder>*) {
    dropObject(form);
    return android::DEAD_OBJECT;
}

void Objects::dropObject(const uint8_t* form) {
    require(form == mNext && form != mEnd);
    mNext += sizeof(ObjectReference);
}

ReceivedParcel received(const Message& message) {
    ReceivedParcel parcel = message.received();
    parcel.objects = std::make_shared<Objects>(message);
    return parcel;
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace fuzz
