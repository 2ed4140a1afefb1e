#pragma once

#include <hwbinder/InlineVector.h>
#include <hwbinder/Parcel.h>

#include "platform/socket/Message.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/** Gives the reference under which the receiver of a message will know an object. */
class ObjectExporter {
  public:
    virtual status_t exportObject(const sp<IBinder>& object, ObjectReference* reference) = 0;

  protected:
    ~ObjectExporter() = default;
};

/**
 * A parcel laid out for one sendmsg(). Small buffers are copied behind the head, large ones are sent from
 * where they lie: they and the encoder must live until the bytes are out.
 *
 * Addresses of this process do not leave it: where a record holds a pointer to another buffer, zeros are
 * sent.
 */
class Encoder {
  public:
    Encoder() = default;
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    /**
     * Lays out head and parcel; magic, lengths and counts of the head are filled in here. Objects are
     * exported once it is certain that the message can be sent.
     *
     * @param most bytes that the transaction may have
     * @return FAILED_TRANSACTION when it has more, or the message exceeds kMaxMessageBytes or
     * kMaxDescriptors, BAD_VALUE when a descriptor of a native handle is not open, NO_MEMORY, the failure of
     * an earlier write to the parcel, or the exporter's failure
     */
    status_t encode(MessageHeader head, const Parcel& parcel, ObjectExporter* exporter,
                    size_t most = kMaxTransactionBytes);

    /** Lays out a head, alone or with an endpoint as its body. Can not fail. */
    void encode(MessageHeader head, const Endpoint* body = nullptr);

    Gather gather() {
        return {mVectors.data(), mVectors.size(), mBytes, mDescriptors.data(), mDescriptors.size()};
    }

  private:
    // A buffer this long is worth an iovec of its own; shorter ones are cheaper to copy. It also bounds the
    // vectors of one message: 1 MiB / 4 KiB buffers and as many gaps, below the kernel's 1024.
    static constexpr size_t kCopyBytes = 4096;

    InlineVector<uint8_t, 2048> mStaging;
    InlineVector<iovec, 8> mVectors;
    InlineVector<int, kMaxDescriptors> mDescriptors;  // the sender's: they stay its own
    size_t mBytes = 0;
};

}  // namespace android::hardware
