#include "fuzz/Input.h"

#include <android/log.h>

#include <cstdlib>
#include <cstring>

using namespace android;
using namespace android::hardware;

namespace {

// Refusals are logged, and refusals are most of what happens here.
const bool sQuiet = [] {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    return true;
}();

class Foreign final : public IBinder {
    status_t transact(uint32_t code, const Parcel&, Parcel*, uint32_t, TransactCallback) override {
        return code % 2 == 0 ? DEAD_OBJECT : OK;
    }
    status_t linkToDeath(const sp<DeathRecipient>&) override { return OK; }
    status_t unlinkToDeath(const sp<DeathRecipient>&) override { return NAME_NOT_FOUND; }
};

}  // namespace

/** A client may ask for 4 GiB: that there is no memory for it is as good a try, and a fast one. */
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=512";
}

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

android::status_t Objects::takeObject(const uint8_t* form, android::sp<IBinder>* object) {
    dropObject(form);
    *object = foreignObject();
    return android::OK;
}

void Objects::dropObject(const uint8_t* form) {
    require(form == mNext && form != mEnd);
    mNext += sizeof(ObjectReference);
}

sp<IBinder> foreignObject() {
    return new Foreign;
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
