// A transaction as the binder driver would deliver it, then the reads of a stub that expects whatever the
// first bytes of the input say. The next eight are the sizes of data and table. What follows is the memory:
// data, table and buffers. Buffers whose address is 0 in the input get the one that the driver gives them,
// forms of descriptors real ones.

#include <errno.h>
#include <fcntl.h>
#include <hwbinder/Parcel.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

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

/** Descriptors as the driver gives them. In the end nobody may have one left. */
class Given {
  public:
    ~Given() {
        for (const int fd : mDrivers) {
            fuzz::require(close(fd) == 0);  // else somebody else has closed it
        }
        if (mEnds[0] >= 0) {
            char none;
            close(mEnds[1]);
            fuzz::require(::read(mEnds[0], &none, 1) == 0);  // else somebody has it open
            close(mEnds[0]);
        }
    }

    /** One that the receiver closes. */
    int toReceiver() {
        fuzz::require(mEnds[0] >= 0 || pipe2(mEnds, O_CLOEXEC | O_NONBLOCK) == 0);
        return fcntl(mEnds[1], F_DUPFD_CLOEXEC, 0);
    }
    /** One that the driver closes itself, when it gets the message's memory back. */
    int withMemory() {
        mDrivers.push_back(toReceiver());
        return mDrivers.back();
    }

  private:
    int mEnds[2] = {-1, -1};
    std::vector<int> mDrivers;
};

/** A delivered message: writes what the driver writes, as far as its forms are in order. */
void deliver(uint8_t* memory, size_t size, size_t dataBytes, size_t tableBytes, Given* given) {
    const size_t tableAt = (dataBytes + 7) & ~size_t{7};
    if (tableAt > size || tableBytes > size - tableAt || tableBytes % sizeof(binder_size_t) != 0) {
        return;
    }
    size_t next = tableAt + tableBytes;
    size_t end = 0;
    std::vector<std::pair<size_t, size_t>> buffers;  // of each form: where, how long
    for (size_t at = tableAt; at < tableAt + tableBytes; at += sizeof(binder_size_t)) {
        binder_size_t place;
        union {
            binder_object_header hdr;
            binder_buffer_object buffer;
            binder_fd_object fd;
            binder_fd_array_object fds;
        } form;
        std::memcpy(&place, memory + at, sizeof(place));
        if (place % 4 != 0 || place < end || place > dataBytes || dataBytes - place < sizeof(form.hdr)) {
            return;
        }
        std::memcpy(&form.hdr, memory + place, sizeof(form.hdr));
        const size_t bytes = form.hdr.type == BINDER_TYPE_PTR   ? sizeof(form.buffer)
                             : form.hdr.type == BINDER_TYPE_FDA ? sizeof(form.fds)
                                                                : sizeof(form.fd);
        if (dataBytes - place < bytes) {
            return;
        }
        end = place + bytes;
        std::memcpy(&form, memory + place, bytes);
        buffers.emplace_back(0, 0);
        if (form.hdr.type == BINDER_TYPE_PTR && form.buffer.buffer == 0) {
            form.buffer.buffer = reinterpret_cast<uintptr_t>(memory) + next;
            if (next <= size && form.buffer.length <= size - next) {
                buffers.back() = {next, form.buffer.length};
            }
            next += (form.buffer.length + 7) & ~binder_size_t{7};
        } else if (form.hdr.type == BINDER_TYPE_FD) {
            form.fd.fd = static_cast<uint32_t>(given->toReceiver());
        } else if (form.hdr.type == BINDER_TYPE_FDA && form.fds.parent < buffers.size()) {
            const auto& [where, length] = buffers[form.fds.parent];
            for (size_t i = 0; i < form.fds.num_fds && i < 64 && form.fds.parent_offset <= length &&
                               (i + 1) * sizeof(int) <= length - form.fds.parent_offset;
                 ++i) {
                const int fd = given->withMemory();
                std::memcpy(memory + where + form.fds.parent_offset + i * sizeof(fd), &fd, sizeof(fd));
            }
        }
        std::memcpy(memory + place, &form, bytes);
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
    Given given;
    deliver(memory.get(), size, sizes[0], sizes[1], &given);

    binder_transaction_data received{};
    received.data_size = sizes[0];
    received.offsets_size = sizes[1];
    received.data.ptr.buffer = reinterpret_cast<uintptr_t>(memory.get());
    received.data.ptr.offsets = received.data.ptr.buffer + ((received.data_size + 7) & ~binder_size_t{7});
    Objects objects;
    {
        Parcel parcel;
        const char* rule = nullptr;
        const status_t status = readTransaction(received, {memory.get(), size}, &objects, &parcel, &rule);
        if (status == OK) {
            for (size_t i = 0; i < fuzz::kReads; ++i) {
                fuzz::read(parcel, data[i]);
            }
        } else {
            // Descriptors that were not given, where the forms before are not in order.
            fuzz::require(rule != nullptr || status == -EBADF);
        }
    }
    fuzz::require(objects.allEnded());
    return 0;
}
