#include <hwbinder/Parcel.h>

#include <algorithm>
#include <cstring>

namespace android::hardware {

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
    const auto* token = reinterpret_cast<const char*>(mInScalars);
    for (size_t at = mScalarCursor; at < mScalarBytes; ++at, ++descriptor) {
        if (token[at] != *descriptor) {
            return false;
        }
        if (*descriptor == '\0') {
            mScalarCursor = at + 1;
            return true;
        }
    }
    return false;
}

status_t Parcel::writeCString(const char* text) {
    const size_t length = std::strlen(text);
    if (length > UINT16_MAX) {
        return fail(BAD_VALUE);
    }
    uint8_t* place = mScalars.grow(length + 1);
    if (place == nullptr) {
        return fail(NO_MEMORY);
    }
    std::memcpy(place, text, length + 1);
    return OK;
}

const char* Parcel::readCString() const {
    const size_t left = mScalarBytes - mScalarCursor;
    if (left == 0) {
        return nullptr;
    }
    const char* text = reinterpret_cast<const char*>(mInScalars + mScalarCursor);
    const size_t length = strnlen(text, left);
    if (length == left) {
        return nullptr;
    }
    mScalarCursor += length + 1;
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

inline status_t Parcel::appendBuffer(const void* data, const BufferEntry& entry, size_t* handle) {
    *handle = mOutEntries.size();
    mOutBytes += padded(entry.size);
    mLongest = std::max<size_t>(mLongest, entry.size);
    return mOutEntries.push(entry) && mOutMemory.push(data) ? OK : fail(NO_MEMORY);
}

status_t Parcel::writeBuffer(const void* data, size_t size, size_t* handle) {
    if (size > kMaxMessageBytes) {
        return fail(FAILED_TRANSACTION);
    }
    return appendBuffer(data, {static_cast<uint32_t>(size), kNoParent, 0, 0}, handle);
}

status_t Parcel::writeEmbeddedBuffer(const void* data, size_t size, size_t* handle, size_t parentHandle,
                                     size_t parentOffset) {
    if (size > kMaxMessageBytes) {
        return fail(FAILED_TRANSACTION);
    }
    if (parentHandle >= mOutEntries.size() || mOutEntries[parentHandle].size < sizeof(void*) ||
        parentOffset > mOutEntries[parentHandle].size - sizeof(void*)) {
        return fail(BAD_VALUE);
    }
    return appendBuffer(data,
                        {static_cast<uint32_t>(size), static_cast<uint32_t>(parentHandle),
                         static_cast<uint32_t>(parentOffset), 0},
                        handle);
}

inline status_t Parcel::takeBuffer(size_t size, uint32_t parent, size_t parentOffset, size_t* handle,
                                   uint8_t** data) const {
    if (mBufferCursor >= mEntryCount) {
        return NOT_ENOUGH_DATA;
    }
    const BufferEntry& entry = mEntries[mBufferCursor];
    if (entry.size != size || entry.parent != parent || entry.parentOffset != parentOffset) {
        return BAD_VALUE;
    }
    *handle = mBufferCursor++;
    *data = mBytes + entry.offset;
    return OK;
}

status_t Parcel::readBuffer(size_t size, size_t* handle, const void** data) const {
    uint8_t* bytes = nullptr;
    const status_t status = takeBuffer(size, kNoParent, 0, handle, &bytes);
    if (status == OK) {
        *data = bytes;
    }
    return status;
}

status_t Parcel::readEmbeddedBuffer(size_t size, size_t* handle, size_t parentHandle, size_t parentOffset,
                                    const void** data) const {
    if (parentHandle >= mBufferCursor) {
        return BAD_VALUE;
    }
    uint8_t* bytes = nullptr;
    const status_t status =
            takeBuffer(size, static_cast<uint32_t>(parentHandle), parentOffset, handle, &bytes);
    if (status != OK) {
        return status;
    }
    if (size == 0) {
        bytes = nullptr;
    }
    std::memcpy(mBytes + mEntries[parentHandle].offset + parentOffset, &bytes, sizeof(bytes));
    *data = bytes;
    return OK;
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& object) {
    ObjectSlot slot{};
    if (object != nullptr) {
        slot.present = 1;
        mObjects.push_back({mScalars.size(), object});
    }
    return writeScalar(slot);
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* object) const {
    ObjectSlot slot;
    const status_t status = readScalar(&slot);
    if (status != OK) {
        return status;
    }
    object->clear();
    if (slot.present == 0) {
        return OK;
    }
    return mResolver == nullptr ? INVALID_OPERATION : mResolver->resolve(slot.reference, object);
}

void Parcel::clear() {
    mScalars.clear();
    mOutEntries.clear();
    mOutMemory.clear();
    mOutBytes = 0;
    mLongest = 0;
    mObjects.clear();
    mError = OK;
}

void Parcel::receive(Message message, ObjectResolver* resolver, bool tellEnd) {
    mMessage = std::move(message);
    mBytes = mMessage.bytes();
    mEntries = mMessage.entries();
    mInScalars = mMessage.scalars();
    mEntryCount = mMessage.header().bufferCount;
    mScalarBytes = mMessage.header().scalarBytes;
    mScalarCursor = 0;
    mBufferCursor = 0;
    mResolver = resolver;
    mTellsEnd = tellEnd;
}

}  // namespace android::hardware
