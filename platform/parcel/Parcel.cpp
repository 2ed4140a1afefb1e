#include <hwbinder/Parcel.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace android::hardware {

namespace {

constexpr size_t padded8(size_t size) {
    return (size + 7) & ~size_t{7};
}

/** Bytes of a native handle; false when it is none. */
bool sizeOf(const native_handle_t& handle, size_t* size) {
    if (handle.version != static_cast<int>(sizeof(handle)) || handle.numFds < 0 ||
        handle.numFds > NATIVE_HANDLE_MAX_FDS || handle.numInts < 0 ||
        handle.numInts > NATIVE_HANDLE_MAX_INTS) {
        return false;
    }
    *size = sizeof(handle) + static_cast<size_t>(handle.numFds + handle.numInts) * sizeof(int);
    return true;
}

}  // namespace

/** Keeps the first failure. */
status_t Parcel::fail(status_t status) {
    if (mError == OK) {
        mError = status;
    }
    return status;
}

status_t Parcel::writeInterfaceToken(const char* descriptor) {
    return writeCString(descriptor);
}

bool Parcel::enforceInterface(const char* descriptor) const {
    const auto* token = reinterpret_cast<const char*>(mReceived.scalars);
    for (size_t at = mScalarCursor; at < mReceived.scalarBytes; ++at, ++descriptor) {
        if (token[at] != *descriptor) {
            return false;
        }
        if (*descriptor == '\0') {
            mScalarCursor = std::min(paddedScalar(at + 1), mReceived.scalarBytes);
            return true;
        }
    }
    return false;
}

status_t Parcel::writeCString(const char* text) {
    const size_t size = std::strlen(text) + 1;
    if (size - 1 > UINT16_MAX) {
        return fail(BAD_VALUE);
    }
    uint8_t* place = mScalars.grow(paddedScalar(size));
    if (place == nullptr) {
        return fail(NO_MEMORY);
    }
    std::memset(place + paddedScalar(size) - 4, 0, 4);
    std::memcpy(place, text, size);
    return OK;
}

const char* Parcel::readCString() const {
    const size_t left = mReceived.scalarBytes - mScalarCursor;
    if (left == 0) {
        return nullptr;
    }
    const char* text = reinterpret_cast<const char*>(mReceived.scalars + mScalarCursor);
    const size_t length = strnlen(text, left);
    if (length == left) {
        return nullptr;
    }
    mScalarCursor += std::min(paddedScalar(length + 1), left);
    return text;
}

status_t Parcel::readBool(bool* value) const {
    uint8_t byte;
    const status_t status = readScalar(&byte);
    if (status == OK) {
        *value = byte != 0;
    }
    return status;
}

inline status_t Parcel::appendPiece(const void* data, size_t size, uint32_t parent, size_t parentOffset,
                                    size_t* handle) {
    *handle = mPieces.size();
    const ParcelPiece piece{static_cast<uint32_t>(size), parent, static_cast<uint32_t>(parentOffset),
                            static_cast<uint32_t>(mScalars.size())};
    return mPieces.push(piece) && mMemory.push(data) ? OK : fail(NO_MEMORY);
}

status_t Parcel::writeBuffer(const void* data, size_t size, size_t* handle) {
    if (size > kMaxTransactionBytes) {
        return fail(FAILED_TRANSACTION);
    }
    mBufferBytes += padded8(size);
    mLongest = std::max(mLongest, size);
    return appendPiece(data, size, kNoParent, 0, handle);
}

status_t Parcel::writeEmbeddedBuffer(const void* data, size_t size, size_t* handle, size_t parentHandle,
                                     size_t parentOffset) {
    if (size > kMaxTransactionBytes) {
        return fail(FAILED_TRANSACTION);
    }
    if (parentHandle >= mPieces.size() || !isBuffer(mPieces[parentHandle]) ||
        mPieces[parentHandle].size < sizeof(void*) ||
        parentOffset > mPieces[parentHandle].size - sizeof(void*) || parentOffset % sizeof(void*) != 0) {
        return fail(BAD_VALUE);
    }
    mBufferBytes += padded8(size);
    mLongest = std::max(mLongest, size);
    return appendPiece(data, size, static_cast<uint32_t>(parentHandle), parentOffset, handle);
}

/** There is a next piece, and what has been read reaches up to it. */
inline bool Parcel::isNextHere() const {
    return mReceived.scalarsBefore == nullptr || mReceived.scalarsBefore[mPieceCursor] == mScalarCursor;
}

inline status_t Parcel::takePiece(size_t size, uint32_t parent, size_t parentOffset, size_t* handle,
                                  uint8_t** data) const {
    if (mPieceCursor >= mReceived.pieceCount) {
        return NOT_ENOUGH_DATA;
    }
    const ParcelPiece& piece = mReceived.pieces[mPieceCursor];
    if (piece.size != size || piece.parent != parent || piece.parentOffset != parentOffset || !isNextHere()) {
        return BAD_VALUE;
    }
    *handle = mPieceCursor++;
    *data = mReceived.base + piece.place;
    return OK;
}

status_t Parcel::readBuffer(size_t size, size_t* handle, const void** data) const {
    uint8_t* bytes = nullptr;
    const status_t status = takePiece(size, kNoParent, 0, handle, &bytes);
    if (status == OK) {
        *data = bytes;
    }
    return status;
}

status_t Parcel::readEmbeddedBuffer(size_t size, size_t* handle, size_t parentHandle, size_t parentOffset,
                                    const void** data) const {
    // A parent is a buffer with room for the pointer: of its children the transport has checked that.
    if (parentHandle >= mPieceCursor) {
        return BAD_VALUE;
    }
    uint8_t* bytes = nullptr;
    const status_t status =
            takePiece(size, static_cast<uint32_t>(parentHandle), parentOffset, handle, &bytes);
    if (status != OK) {
        return status;
    }
    if (size == 0) {
        bytes = nullptr;
    }
    std::memcpy(mReceived.base + mReceived.pieces[parentHandle].place + parentOffset, &bytes, sizeof(bytes));
    *data = bytes;
    return OK;
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& object) {
    if (object != nullptr) {
        try {
            mObjects.push_back(object);
        } catch (const std::bad_alloc&) {
            return fail(NO_MEMORY);
        }
    }
    size_t handle = 0;
    return appendPiece(nullptr, object == nullptr ? 0 : 1, kIsObject, 0, &handle);
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* object) const {
    object->clear();
    size_t handle = 0;
    uint8_t* form = nullptr;
    if (takePiece(0, kIsObject, 0, &handle, &form) == OK) {
        return OK;
    }
    const status_t status = takePiece(1, kIsObject, 0, &handle, &form);
    if (status == OK) {
        return mReceived.objects->takeObject(form, object);
    }
    if (mReceived.scalarsBefore == nullptr) {
        return status;
    }
    const size_t end = mPieceCursor < mReceived.pieceCount ? mReceived.scalarsBefore[mPieceCursor]
                                                           : mReceived.scalarBytes;
    const size_t null = end <= mScalarCursor ? 0
                                             : mReceived.objects->nullBytes(mReceived.scalars + mScalarCursor,
                                                                            end - mScalarCursor);
    mScalarCursor += null;
    return null > 0 ? OK : status;
}

/** @param writeBytes writes the handle's bytes as a buffer, of the size that it is given */
template <typename WriteBytes>
status_t Parcel::writeHandle(const native_handle_t* handle, const WriteBytes& writeBytes) {
    size_t size = 0;
    if (handle != nullptr && !sizeOf(*handle, &size)) {
        return fail(BAD_VALUE);
    }
    status_t status = writeUint64(size);
    if (status != OK || handle == nullptr) {
        return status;
    }
    size_t number = 0;
    status = writeBytes(size, &number);
    return status == OK ? writeDescriptors(*handle) : status;
}

status_t Parcel::writeNativeHandleNoDup(const native_handle_t* handle) {
    return writeHandle(handle,
                       [&](size_t size, size_t* number) { return writeBuffer(handle, size, number); });
}

status_t Parcel::writeEmbeddedNativeHandle(const native_handle_t* handle, size_t parentHandle,
                                           size_t parentOffset) {
    return writeHandle(handle, [&](size_t size, size_t* number) {
        return writeEmbeddedBuffer(handle, size, number, parentHandle, parentOffset);
    });
}

status_t Parcel::writeDescriptors(const native_handle_t& handle) {
    const auto count = static_cast<size_t>(handle.numFds);
    mDescriptorCount += count;
    size_t number = 0;
    return appendPiece(handle.data, count, kIsDescriptors, 0, &number);
}

status_t Parcel::readNativeHandleSize(size_t* size) const {
    uint64_t announced = 0;
    const status_t status = readScalar(&announced);
    if (status == OK && announced != 0 && announced < sizeof(native_handle_t)) {
        return BAD_VALUE;
    }
    *size = announced;
    return status;
}

/** The buffer of that size is a native handle, whose descriptors come next. */
status_t Parcel::takeDescriptors(size_t size, const native_handle_t& handle) const {
    size_t expected = 0;
    if (!sizeOf(handle, &expected) || expected != size) {
        return BAD_VALUE;
    }
    size_t number = 0;
    uint8_t* unused = nullptr;
    return takePiece(static_cast<size_t>(handle.numFds), kIsDescriptors, 0, &number, &unused);
}

status_t Parcel::readNullableNativeHandleNoDup(const native_handle_t** handle) const {
    *handle = nullptr;
    size_t size = 0;
    status_t status = readNativeHandleSize(&size);
    if (status != OK || size == 0) {
        return status;
    }
    size_t number = 0;
    const void* data = nullptr;
    status = readBuffer(size, &number, &data);
    if (status == OK) {
        const auto* read = static_cast<const native_handle_t*>(data);
        status = takeDescriptors(size, *read);
        *handle = status == OK ? read : nullptr;
    }
    return status;
}

status_t Parcel::readNullableEmbeddedNativeHandle(size_t parentHandle, size_t parentOffset,
                                                  const native_handle_t** handle) const {
    *handle = nullptr;
    size_t size = 0;
    status_t status = readNativeHandleSize(&size);
    if (status != OK || size == 0) {
        return status;
    }
    size_t number = 0;
    const void* data = nullptr;
    status = readEmbeddedBuffer(size, &number, parentHandle, parentOffset, &data);
    if (status == OK) {
        const auto* read = static_cast<const native_handle_t*>(data);
        status = takeDescriptors(size, *read);
        *handle = status == OK ? read : nullptr;
    }
    return status;
}

size_t Parcel::transactionBytes() const {
    // The driver's forms: an object of a transaction takes 24 bytes among the data, a buffer 40, an array of
    // descriptors 32, and each but a null object 8 in the table of them.
    constexpr size_t kObjectBytes = 24;
    constexpr size_t kBufferBytes = 40;
    constexpr size_t kDescriptorsBytes = 32;
    size_t data = mScalars.size();
    size_t listed = 0;
    for (const ParcelPiece& piece : mPieces) {
        data += piece.parent == kIsObject        ? kObjectBytes
                : piece.parent == kIsDescriptors ? kDescriptorsBytes
                                                 : kBufferBytes;
        listed += piece.parent == kIsObject && piece.size == 0 ? 0 : 1;
    }
    return padded8(data) + 8 * listed + mBufferBytes;
}

void Parcel::dropUnread() {
    for (size_t i = mPieceCursor; i < mReceived.pieceCount; ++i) {
        const ParcelPiece& piece = mReceived.pieces[i];
        if (piece.parent == kIsObject && piece.size != 0) {
            mReceived.objects->dropObject(mReceived.base + piece.place);
        }
    }
}

void Parcel::clear() {
    mScalars.clear();
    mPieces.clear();
    mMemory.clear();
    mBufferBytes = 0;
    mLongest = 0;
    mObjects.clear();
    mDescriptorCount = 0;
    mError = OK;
}

}  // namespace android::hardware
