// A transaction as the binder driver would deliver it, then the reads of a stub that expects whatever the
// first bytes of the input say. The next eight are the sizes of data and table. What follows is the memory:
// data, table and buffers. Buffers whose address is 0 in the input get the one that the driver gives them.

#include <hwbinder/Parcel.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "fuzz/Input.h"
#include "fuzz/Reads.h"
#include "platform/kernel/Transaction.h"

using namespace android;
using namespace android::hardware;

namespace {

class Object final : public BHwBinder {
    status_t onTransact(uint32_t, const Parcel&, Parcel*, uint32_t, TransactCallback) override { return OK; }
};

/** Counts what it gives away: all of it has to end with its parcel. */
class Objects final : public ObjectTranslator {
  public:
    status_t describe(const sp<IBinder>&, flat_binder_object*) override { return INVALID_OPERATION; }
    status_t resolve(const flat_binder_object& form, sp<IBinder>* object) override {
        *object = form.handle % 8 == 7 ? nullptr : mObject;
        return *object == nullptr ? BAD_VALUE : OK;
    }
    bool allEnded() const { return mObject->getStrongCount() == 1; }

  private:
    const sp<Object> mObject = new Object;
};

/** The driver's part: writes the buffers' addresses. */
void deliver(uint8_t* memory, size_t size, size_t dataBytes, size_t tableBytes) {
    const size_t tableAt = (dataBytes + 7) & ~size_t{7};
    size_t next = tableAt + tableBytes;
    for (size_t at = tableAt; at + sizeof(binder_size_t) <= tableAt + tableBytes;
         at += sizeof(binder_size_t)) {
        binder_size_t place;
        binder_buffer_object form;
        if (at + sizeof(place) > size) {
            return;
        }
        std::memcpy(&place, memory + at, sizeof(place));
        if (place > size || size - place < sizeof(form)) {
            continue;
        }
        std::memcpy(&form, memory + place, sizeof(form));
        if (form.hdr.type == BINDER_TYPE_PTR && form.buffer == 0) {
            form.buffer = reinterpret_cast<uintptr_t>(memory) + next;
            std::memcpy(memory + place, &form, sizeof(form));
            next += (form.length + 7) & ~binder_size_t{7};
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    uint32_t sizes[2];
    if (size <= fuzz::kReads + sizeof(sizes)) {
        return 0;
    }
    std::memcpy(sizes, data + fuzz::kReads, sizeof(sizes));
    size -= fuzz::kReads + sizeof(sizes);
    // Of exactly that size, so that one byte too far is noticed.
    const std::unique_ptr<uint8_t, decltype(&std::free)> memory(static_cast<uint8_t*>(std::malloc(size)),
                                                                std::free);
    std::memcpy(memory.get(), data + fuzz::kReads + sizeof(sizes), size);
    deliver(memory.get(), size, sizes[0], sizes[1]);

    binder_transaction_data received{};
    received.data_size = sizes[0];
    received.offsets_size = sizes[1];
    received.data.ptr.buffer = reinterpret_cast<uintptr_t>(memory.get());
    received.data.ptr.offsets = received.data.ptr.buffer + ((received.data_size + 7) & ~binder_size_t{7});
    Objects objects;
    {
        Parcel parcel;
        const char* rule = nullptr;
        if (readTransaction(received, {memory.get(), size}, &objects, &parcel, &rule) == OK) {
            for (size_t i = 0; i < fuzz::kReads; ++i) {
                fuzz::read(parcel, data[i]);
            }
        } else {
            fuzz::require(rule != nullptr);
        }
    }
    fuzz::require(objects.allEnded());
    return 0;
}
