#pragma once

#include <hwbinder/IBinder.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include <hwbinder/InlineVector.h>
#include "platform/socket/Message.h"

namespace android::hardware {

/**
 * The arguments or results of one call: scalars, buffers that lie where their owner keeps them until the
 * message is sent, and objects.
 *
 * A parcel is written once and sent, or received and read once, front to back. Writing copies scalars and
 * refers to buffers: they must live until the call returns. Reading gives pointers into the received block,
 * which live as long as the parcel.
 *
 * Reading trusts nothing: each read checks that the next entry is the one asked for, and fails with BAD_VALUE
 * or NOT_ENOUGH_DATA otherwise. Pointers inside received records are written by this process, and only when
 * the stub asks for the buffer that they refer to.
 */
class Parcel {
  public:
    Parcel() = default;
    ~Parcel() {
        if (mTellsEnd) {
            mResolver->messageRead();
        }
    }
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    status_t writeInterfaceToken(const char* descriptor);
    status_t writeInt8(int8_t value) { return writeScalar(value); }
    status_t writeUint8(uint8_t value) { return writeScalar(value); }
    status_t writeInt16(int16_t value) { return writeScalar(value); }
    status_t writeUint16(uint16_t value) { return writeScalar(value); }
    status_t writeInt32(int32_t value) { return writeScalar(value); }
    status_t writeUint32(uint32_t value) { return writeScalar(value); }
    status_t writeInt64(int64_t value) { return writeScalar(value); }
    status_t writeUint64(uint64_t value) { return writeScalar(value); }
    status_t writeFloat(float value) { return writeScalar(value); }
    status_t writeDouble(double value) { return writeScalar(value); }
    status_t writeBool(bool value) { return writeScalar(static_cast<uint8_t>(value ? 1 : 0)); }
    /** A NUL-terminated text of at most UINT16_MAX bytes, for statuses. */
    status_t writeCString(const char* text);

    /** Adds a buffer that no other buffer points to. Its number goes to *handle. */
    status_t writeBuffer(const void* data, size_t size, size_t* handle);
    /** Adds a buffer whose address the record at parentOffset of buffer parentHandle holds. */
    status_t writeEmbeddedBuffer(const void* data, size_t size, size_t* handle, size_t parentHandle,
                                 size_t parentOffset);
    /** Null is allowed. */
    status_t writeStrongBinder(const sp<IBinder>& object);

    bool enforceInterface(const char* descriptor) const;
    status_t readInt8(int8_t* value) const { return readScalar(value); }
    status_t readUint8(uint8_t* value) const { return readScalar(value); }
    status_t readInt16(int16_t* value) const { return readScalar(value); }
    status_t readUint16(uint16_t* value) const { return readScalar(value); }
    status_t readInt32(int32_t* value) const { return readScalar(value); }
    status_t readUint32(uint32_t* value) const { return readScalar(value); }
    status_t readInt64(int64_t* value) const { return readScalar(value); }
    status_t readUint64(uint64_t* value) const { return readScalar(value); }
    status_t readFloat(float* value) const { return readScalar(value); }
    status_t readDouble(double* value) const { return readScalar(value); }
    /** Any non-zero byte is true. */
    status_t readBool(bool* value) const;
    /** @return a text inside the parcel, or null when there is none that ends within it. */
    const char* readCString() const;

    /** Gives the next buffer, which must have no parent and exactly this size. */
    status_t readBuffer(size_t size, size_t* handle, const void** data) const;
    /**
     * Gives the next buffer, which must have this size, parent and parent offset, and writes its address
     * (null when size is 0) into the parent. Both buffers stay writable by the caller through const_cast.
     */
    status_t readEmbeddedBuffer(size_t size, size_t* handle, size_t parentHandle, size_t parentOffset,
                                const void** data) const;
    /** The object itself when it lives in this process, else a proxy; null if null was written. */
    status_t readNullableStrongBinder(sp<IBinder>* object) const;

    /** The rest is for the transport. */
    const InlineVector<uint8_t, 192>& scalars() const { return mScalars; }
    /** What was written to be sent from where it lies: the entries as they go out, and their memory. */
    const InlineVector<BufferEntry, 16>& entries() const { return mOutEntries; }
    const InlineVector<const void*, 16>& memory() const { return mOutMemory; }
    /** Of all buffers together, each with its padding; and of the longest, without. */
    size_t bufferBytes() const { return mOutBytes; }
    size_t longestBuffer() const { return mLongest; }
    const std::vector<OutgoingObject>& objects() const { return mObjects; }
    /** The first failure of a write, which the encoder reports: generated code does not look at each. */
    status_t error() const { return mError; }
    /** Forgets what was written. */
    void clear();
    /**
     * Makes this the reader of a message, once. Objects in it are resolved by the given resolver, in read
     * order; it must live as long as the parcel, and is told of the parcel's end if it asks for that.
     */
    void receive(Message message, ObjectResolver* resolver, bool tellEnd = false);

  private:
    template <typename T>
    status_t writeScalar(T value) {
        uint8_t* place = mScalars.grow(sizeof(value));
        if (place == nullptr) {
            return fail(NO_MEMORY);
        }
        std::memcpy(place, &value, sizeof(value));
        return OK;
    }
    template <typename T>
    status_t readScalar(T* value) const {
        if (sizeof(*value) > mScalarBytes - mScalarCursor) {
            return NOT_ENOUGH_DATA;
        }
        std::memcpy(value, mInScalars + mScalarCursor, sizeof(*value));
        mScalarCursor += sizeof(*value);
        return OK;
    }
    status_t fail(status_t status);
    status_t appendBuffer(const void* data, const BufferEntry& entry, size_t* handle);
    status_t takeBuffer(size_t size, uint32_t parent, size_t parentOffset, size_t* handle,
                        uint8_t** data) const;

    // Writing.
    InlineVector<uint8_t, 192> mScalars;
    InlineVector<BufferEntry, 16> mOutEntries;
    InlineVector<const void*, 16> mOutMemory;
    size_t mOutBytes = 0;
    size_t mLongest = 0;
    std::vector<OutgoingObject> mObjects;
    status_t mError = OK;

    // Reading: the message and where its parts lie. Cursors move under const, as generated stubs read from
    // const parcels.
    Message mMessage;
    uint8_t* mBytes = nullptr;
    const BufferEntry* mEntries = nullptr;
    const uint8_t* mInScalars = nullptr;
    size_t mEntryCount = 0;
    size_t mScalarBytes = 0;
    mutable size_t mScalarCursor = 0;
    mutable size_t mBufferCursor = 0;
    ObjectResolver* mResolver = nullptr;
    bool mTellsEnd = false;
};

}  // namespace android::hardware
