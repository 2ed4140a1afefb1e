#include "fuzz/Loopback.h"

#include <cstring>

#include "fuzz/Input.h"
#include "platform/socket/Encoder.h"

using namespace android;
using namespace android::hardware;

namespace {

/** Objects by numbers: nothing that is called here gives one back. */
class Numbers final : public ObjectExporter {
  public:
    status_t exportObject(const sp<IBinder>&, ObjectReference* reference) override {
        *reference = {{1}, ++mLast, 1};
        return OK;
    }

  private:
    uint64_t mLast = 0;
};

/** The bytes of a message; null when it is not one that may be sent. */
Block bytesOf(const MessageHeader& head, const Parcel& parcel, size_t* size) {
    Encoder encoder;
    Numbers numbers;
    if (encoder.encode(head, parcel, &numbers) != OK) {
        return nullptr;
    }
    const Gather gather = encoder.gather();
    Block block = allocateBlock(gather.bytes);
    *size = gather.bytes;
    uint8_t* end = block.get();
    for (size_t i = 0; i < gather.count; ++i) {
        std::memcpy(end, gather.vectors[i].iov_base, gather.vectors[i].iov_len);
        end += gather.vectors[i].iov_len;
    }
    return block;
}

}  // namespace

namespace fuzz {

status_t deliver(const sp<IBinder>& object, uint8_t* bytes, Parcel* reply, bool* fits) {
    const Message message(bytes);
    const uint32_t flags = message.header().kind == MessageKind::OneWay ? IBinder::FLAG_ONEWAY : 0;
    Parcel call;
    Parcel results;
    call.receive(received(message));
    return object->transact(message.header().code, call, &results, flags, [&](Parcel& filled) {
        MessageHeader head{};
        head.kind = MessageKind::Reply;
        size_t size = 0;
        const Block sent = bytesOf(head, filled, &size);
        *fits = sent != nullptr;
        if (sent != nullptr) {
            Block answer = receive(sent.get(), size);
            require(answer != nullptr);
            ReceivedParcel parcel = received(Message(answer.get()));
            parcel.memory = {answer.release(), size, [](void* memory, size_t) { std::free(memory); }};
            reply->receive(std::move(parcel));
        }
    });
}

status_t Loopback::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                            TransactCallback) {
    MessageHeader head{};
    head.kind = (flags & FLAG_ONEWAY) != 0 ? MessageKind::OneWay : MessageKind::Call;
    head.code = code;
    size_t size = 0;
    const Block sent = bytesOf(head, data, &size);
    mSound = sent != nullptr && mSpoil.atEnd();
    if (sent == nullptr) {
        return FAILED_TRANSACTION;
    }
    while (!mSpoil.atEnd()) {
        const size_t place = mSpoil.number(2) % size;
        sent.get()[place] = mSpoil.byte();
    }
    const Block message = receive(sent.get(), size);
    require(message != nullptr || !mSound);
    bool fits = true;
    const status_t status =
            message == nullptr ? FAILED_TRANSACTION : deliver(mObject, message.get(), reply, &fits);
    mSound = mSound && fits;
    return status;
}

}  // namespace fuzz
