#pragma once

#include <cutils/native_handle.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/InlineVector.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace android::hardware {

/**
 * Largest transaction, with everything in it: what a process of the device maps for those that it receives.
 * See Parcel::transactionBytes().
 */
constexpr size_t kMaxTransactionBytes = 1024 * 1024 - 2 * 4096;

/** Of the same memory, what one-way messages may take. */
constexpr size_t kMaxOneWayBytes = kMaxTransactionBytes / 2;

/**
 * What a parcel holds beside its scalars: a buffer, an object or the descriptors of a native handle, numbered
 * together in the order of writing. A buffer's handle is its number. The descriptors come right after the
 * buffer with their native handle, and lie in it, at its data.
 */
struct ParcelPiece {
    uint32_t size;    // of a buffer: its bytes; of an object: 1, or 0 for null; descriptors: their number
    uint32_t parent;  // number of the buffer that points to this one, or one of the three below
    uint32_t parentOffset;  // where in it the pointer lies; else 0
    uint32_t place;         // written: bytes of scalars before it. Received: where it lies, from the base
};
static_assert(sizeof(ParcelPiece) == 16);

constexpr uint32_t kNoParent = UINT32_MAX;
constexpr uint32_t kIsObject = UINT32_MAX - 1;
constexpr uint32_t kIsDescriptors = UINT32_MAX - 2;

constexpr bool isBuffer(const ParcelPiece& piece) {
    return piece.parent != kIsObject && piece.parent != kIsDescriptors;
}

/** Makes objects of what stands for them in a received message. */
class ObjectSource {
  public:
    /**
     * Makes the object that a piece stands for; each is asked for once at most.
     *
     * @param form what the transport has put at the piece's place
     */
    virtual status_t takeObject(const uint8_t* form, sp<IBinder>* object) = 0;
    /** Gives up an object that nobody has read. */
    virtual void dropObject(const uint8_t* form) = 0;
    /**
     * Where null objects are no pieces, but lie among the scalars: how many of these stand for a null object,
     * 0 if something else lies here.
     */
    virtual size_t nullBytes(const uint8_t* /* scalars */, size_t /* left */) const { return 0; }

  protected:
    ~ObjectSource() = default;
};

/** Memory that a parcel keeps until its end, and how it is given back then. */
class ParcelMemory {
  public:
    using Release = void (*)(void* memory, size_t size);

    ParcelMemory() = default;
    ParcelMemory(void* memory, size_t size, Release release)
        : mMemory(memory), mSize(size), mRelease(release) {}
    ParcelMemory(ParcelMemory&& other) noexcept { *this = std::move(other); }
    ParcelMemory& operator=(ParcelMemory&& other) noexcept {
        std::swap(mMemory, other.mMemory);
        std::swap(mSize, other.mSize);
        std::swap(mRelease, other.mRelease);
        return *this;
    }
    ~ParcelMemory() {
        if (mRelease != nullptr) {
            mRelease(mMemory, mSize);
        }
    }
    size_t size() const { return mSize; }

  private:
    void* mMemory = nullptr;
    size_t mSize = 0;
    Release mRelease = nullptr;
};

/** A received message as a parcel reads it. Everything lies in the memory, or outlives the parcel. */
struct ReceivedParcel {
    const uint8_t* scalars = nullptr;
    size_t scalarBytes = 0;
    const ParcelPiece* pieces = nullptr;
    size_t pieceCount = 0;
    // Of each piece, the bytes of scalars before it, where the transport knows: it is read there, or not.
    const uint32_t* scalarsBefore = nullptr;
    uint8_t* base = nullptr;                // what the pieces' places count from; 8-aligned
    std::shared_ptr<ObjectSource> objects;  // null when no piece is an object
    ParcelMemory memory;
    ParcelMemory descriptors;  // its release closes those of native handles; none when that is not ours to do
};

/**
 * The arguments or results of one call: scalars, each padded to 4 bytes, buffers that lie where their owner
 * keeps them until the message is sent, and objects. How they travel is the transport's business.
 *
 * A parcel is written once and sent, or received and read once, front to back. Writing copies scalars and
 * refers to buffers: they must live until the call returns. Reading gives pointers into the received memory,
 * which live as long as the parcel; objects that nobody has read by then are given up.
 *
 * Reading trusts nothing: each read checks that the next piece is the one asked for, and fails with BAD_VALUE
 * or NOT_ENOUGH_DATA otherwise. Pointers inside received records are written by this process, and only when
 * the stub asks for the buffer that they refer to.
 */
class Parcel {
  public:
    Parcel() = default;
    ~Parcel() {
        if (mReceived.objects != nullptr) {
            dropUnread();
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
    /**
     * The receiver gets descriptors of its own. These stay the caller's, and must be open until the call
     * returns. Null is allowed; BAD_VALUE for what is no native handle.
     */
    status_t writeNativeHandleNoDup(const native_handle_t* handle);
    /** The same for one whose address the record at parentOffset of buffer parentHandle holds. */
    status_t writeEmbeddedNativeHandle(const native_handle_t* handle, size_t parentHandle,
                                       size_t parentOffset);

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
    /** A native handle, null if null was written. It and its descriptors are the parcel's. */
    status_t readNullableNativeHandleNoDup(const native_handle_t** handle) const;
    status_t readNullableEmbeddedNativeHandle(size_t parentHandle, size_t parentOffset,
                                              const native_handle_t** handle) const;

    // The rest is for transports. What was written:

    const InlineVector<uint8_t, 192>& scalars() const { return mScalars; }
    const InlineVector<ParcelPiece, 16>& pieces() const { return mPieces; }
    /** Where the pieces that are buffers or descriptors lie, by their numbers. */
    const InlineVector<const void*, 16>& memory() const { return mMemory; }
    /** Of all buffers together, each padded to 8 bytes; and of the longest, without. */
    size_t bufferBytes() const { return mBufferBytes; }
    size_t longestBuffer() const { return mLongest; }
    /** The pieces that are objects and not null, in the order of writing. */
    const std::vector<sp<IBinder>>& objects() const { return mObjects; }
    /** Of all native handles together. */
    size_t descriptorCount() const { return mDescriptorCount; }
    /** What the message takes of a receiver's memory on the device; at most kMaxTransactionBytes may be sent.
     */
    size_t transactionBytes() const;
    /** The first failure of a write, which the sender reports: generated code does not look at each. */
    status_t error() const { return mError; }
    /** Forgets what was written. */
    void clear();

    /** Of the memory that a received message lies in; 0 when it is another's. */
    size_t receivedBytes() const { return mReceived.memory.size(); }
    /** Makes this the reader of a message, once. */
    void receive(ReceivedParcel received) { mReceived = std::move(received); }

  private:
    static constexpr size_t paddedScalar(size_t size) { return (size + 3) & ~size_t{3}; }

    template <typename T>
    status_t writeScalar(T value) {
        uint8_t* place = mScalars.grow(paddedScalar(sizeof(value)));
        if (place == nullptr) {
            return fail(NO_MEMORY);
        }
        if constexpr (sizeof(value) < 4) {
            std::memset(place, 0, 4);
        }
        std::memcpy(place, &value, sizeof(value));
        return OK;
    }
    template <typename T>
    status_t readScalar(T* value) const {
        if (paddedScalar(sizeof(*value)) > mReceived.scalarBytes - mScalarCursor) {
            return NOT_ENOUGH_DATA;
        }
        std::memcpy(value, mReceived.scalars + mScalarCursor, sizeof(*value));
        mScalarCursor += paddedScalar(sizeof(*value));
        return OK;
    }
    status_t fail(status_t status);
    status_t appendPiece(const void* data, size_t size, uint32_t parent, size_t parentOffset, size_t* handle);
    bool isNextHere() const;
    status_t takePiece(size_t size, uint32_t parent, size_t parentOffset, size_t* handle,
                       uint8_t** data) const;
    template <typename WriteBytes>
    status_t writeHandle(const native_handle_t* handle, const WriteBytes& writeBytes);
    status_t writeDescriptors(const native_handle_t& handle);
    status_t readNativeHandleSize(size_t* size) const;
    status_t takeDescriptors(size_t size, const native_handle_t& handle) const;
    void dropUnread();

    // Writing.
    InlineVector<uint8_t, 192> mScalars;
    InlineVector<ParcelPiece, 16> mPieces;
    InlineVector<const void*, 16> mMemory;
    size_t mBufferBytes = 0;
    size_t mLongest = 0;
    std::vector<sp<IBinder>> mObjects;
    size_t mDescriptorCount = 0;
    status_t mError = OK;

    // Reading. Cursors move under const, as generated stubs read from const parcels.
    ReceivedParcel mReceived;
    mutable size_t mScalarCursor = 0;
    mutable size_t mPieceCursor = 0;
};

}  // namespace android::hardware
