#include <hwbinder/Parcel.h>

#include <cstring>

namespace android::hardware {

/** Keeps the first failure. */
status_t Parcel::fail(status_t status) {
    if (mError == OK) {
        mError = status;
    }
    return status;
}

status_t Parcel::appendScalar(const void* value, size_t size) {
    uint8_t* place = mScalars.grow(size);
    if (place == nullptr) {
        return fail(NO_MEMORY);
    }
    std::memcpy(place, value, size);
    return OK;
}

status_t Parcel::takeScalar(void* value, size_t size) const {
    if (mMessage.empty() || size > mMessage.header().scalarBytes - mScalarCursor) {
        return NOT_ENOUGH_DATA;
    }
    std::memcpy(value, mMessage.scalars() + mScalarCursor, size);
    mScalarCursor += size;
    return OK;
}

status_t Parcel::writeInterfaceToken(const char* descriptor) {
    return writeCString(descriptor);
}

bool Parcel::enforceInterface(const char* descriptor) const {
    const char* token = readCString();
    return token != nullptr && std::strcmp(token, descriptor) == 0;
}

status_t Parcel::writeCString(const char* text) {
    const size_t length = std::strlen(text);
    if (length > UINT16_MAX) {
        return fail(BAD_VALUE);
    }
    return appendScalar(text, length + 1);
}

const char* Parcel::readCString() const {
    if (mMessage.empty()) {
        return nullptr;
    }
    const char* text = reinterpret_cast<const char*>(mMessage.scalars() + mScalarCursor);
    const size_t left = mMessage.header().scalarBytes - mScalarCursor;
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

status_t Parcel::appendBuffer(const MessageBuffer& buffer, size_t* handle) {
    *handle = mBuffers.size();
    return mBuffers.push(buffer) ? OK : fail(NO_MEMORY);
}

status_t Parcel::writeBuffer(const void* data, size_t size, size_t* handle) {
    if (size > kMaxMessageBytes) {
        return fail(FAILED_TRANSACTION);
    }
    return appendBuffer({data, {static_cast<uint32_t>(size), kNoParent, 0, 0}}, handle);
}

status_t Parcel::writeEmbeddedBuffer(const void* data, size_t size, size_t* handle, size_t parentHandle,
                                     size_t parentOffset) {
    if (size > kMaxMessageBytes) {
        return fail(FAILED_TRANSACTION);
    }
    if (parentHandle >= mBuffers.size() || mBuffers[parentHandle].entry.size < sizeof(void*) ||
        parentOffset > mBuffers[parentHandle].entry.size - sizeof(void*)) {
        return fail(BAD_VALUE);
    }
    return appendBuffer({data,
                         {static_cast<uint32_t>(size), static_cast<uint32_t>(parentHandle),
                          static_cast<uint32_t>(parentOffset), 0}},
                        handle);
}

status_t Parcel::takeBuffer(size_t size, uint32_t parent, size_t parentOffset, size_t* handle,
                            uint8_t** data) const {
    if (mMessage.empty() || mBufferCursor >= mMessage.header().bufferCount) {
        return NOT_ENOUGH_DATA;
    }
    const BufferEntry& entry = mMessage.entries()[mBufferCursor];
    if (entry.size != size || entry.parent != parent || entry.parentOffset != parentOffset) {
        return BAD_VALUE;
    }
    *handle = mBufferCursor++;
    *data = mMessage.bytes() + entry.offset;
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
    const BufferEntry& parent = mMessage.entries()[parentHandle];
    std::memcpy(mMessage.bytes() + parent.offset + parentOffset, &bytes, sizeof(bytes));
    *data = bytes;
    return OK;
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& object) {
    ObjectSlot slot{};
    if (object != nullptr) {
        slot.present = 1;
        mObjects.push_back({mScalars.size(), object});
    }
    return appendScalar(&slot, sizeof(slot));
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* object) const {
    ObjectSlot slot;
    const status_t status = takeScalar(&slot, sizeof(slot));
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
    mBuffers.clear();
    mObjects.clear();
    mError = OK;
}

void Parcel::receive(Message message, ObjectResolver* resolver) {
    mMessage = std::move(message);
    mScalarCursor = 0;
    mBufferCursor = 0;
    mResolver = resolver;
}

}  // namespace android::hardware
