#include "fuzz/Loopback.h"

#include <cstring>
#include <vector>

#include "fuzz/Input.h"
#include "platform/kernel/Transaction.h"
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

/** Forms of objects. */
class Handles final : public ObjectTranslator {
  public:
    status_t describe(const sp<IBinder>&, flat_binder_object* form) override {
        *form = {};
        form->hdr.type = BINDER_TYPE_HANDLE;
        form->handle = ++mLast;
        return OK;
    }
    status_t resolve(const flat_binder_object&, sp<IBinder>* object) override {
        *object = fuzz::foreignObject();
        return OK;
    }

  private:
    uint32_t mLast = 0;
};

/** A transaction as the driver lays it out for its receiver: data, table, buffers. */
class Delivery {
  public:
    explicit Delivery(const WrittenTransaction& sent) {
        append(sent.data(), sent.dataBytes());
        const size_t tableBytes = sent.placeCount() * sizeof(binder_size_t);
        const uint8_t* const table = append(sent.places(), tableBytes);
        std::vector<uint8_t*> buffers;
        for (size_t i = 0; i < sent.placeCount(); ++i) {
            uint8_t* const place = mMemory.get() + sent.places()[i];
            binder_buffer_object form;
            std::memcpy(&form.hdr, place, sizeof(form.hdr));
            buffers.push_back(nullptr);
            if (form.hdr.type != BINDER_TYPE_PTR) {
                continue;
            }
            std::memcpy(&form, place, sizeof(form));
            buffers.back() = append(reinterpret_cast<const void*>(form.buffer), form.length);
            form.buffer = reinterpret_cast<uintptr_t>(buffers.back());
            if ((form.flags & BINDER_BUFFER_FLAG_HAS_PARENT) != 0) {
                std::memcpy(buffers[form.parent] + form.parent_offset, &form.buffer, sizeof(form.buffer));
            }
            std::memcpy(place, &form, sizeof(form));
        }
        mReceived.data_size = sent.dataBytes();
        mReceived.offsets_size = tableBytes;
        mReceived.data.ptr.buffer = reinterpret_cast<uintptr_t>(mMemory.get());
        mReceived.data.ptr.offsets = reinterpret_cast<uintptr_t>(table);
    }

    /** Whatever was sent can be read. */
    void read(Handles* handles, Parcel* parcel) const {
        const char* rule = nullptr;
        fuzz::require(readTransaction(mReceived, {mMemory.get(), mUsed}, handles, parcel, &rule) == OK);
    }

  private:
    uint8_t* append(const void* bytes, size_t size) {
        uint8_t* const begin = mMemory.get() + mUsed;
        mUsed += padded(size);
        fuzz::require(mUsed <= kMostBytes);
        if (size != 0) {  // then bytes may be null
            std::memcpy(begin, bytes, size);
        }
        return begin;
    }

    // A transaction, and the forms that come on top.
    static constexpr size_t kMostBytes = 2 * kMaxTransactionBytes;
    const Block mMemory = allocateBlock(kMostBytes);
    size_t mUsed = 0;
    binder_transaction_data mReceived{};
};

/** The call as the driver carries it. */
status_t transactThroughDriver(const sp<IBinder>& object, uint32_t code, const Parcel& data, Parcel* reply,
                               uint32_t flags, bool* sound) {
    Handles handles;
    WrittenTransaction sent;
    *sound = sent.write(data, &handles, kMaxTransactionBytes) == OK;
    if (!*sound) {
        return FAILED_TRANSACTION;
    }
    Parcel call;
    Parcel results;
    Delivery(sent).read(&handles, &call);
    return object->transact(code, call, &results, flags, [&](Parcel& filled) {
        WrittenTransaction answer;
        *sound = answer.write(filled, &handles, kMaxTransactionBytes) == OK;
        if (*sound) {
            Delivery(answer).read(&handles, reply);
        }
    });
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
    if (mDriver) {
        return transactThroughDriver(mObject, code, data, reply, flags, &mSound);
    }
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
