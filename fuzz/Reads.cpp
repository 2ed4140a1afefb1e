#include "fuzz/Reads.h"

#include <hidl/HidlTransportSupport.h>

#include <cstring>

#include "fuzz/Input.h"

using namespace android;
using namespace android::hardware;

namespace {

template <typename T>
void touch(const T* data, size_t count) {
    if (count != 0) {  // then data may be null
        std::memset(const_cast<void*>(static_cast<const void*>(data)), 0xA5, count * sizeof(T));
    }
}

template <typename T>
T* record(const Parcel& parcel, size_t* handle) {
    const void* data = nullptr;
    return parcel.readBuffer(sizeof(T), handle, &data) == OK ? const_cast<T*>(static_cast<const T*>(data))
                                                             : nullptr;
}

void readVector(const Parcel& parcel) {
    size_t parent = 0;
    size_t child = 0;
    auto* texts = record<hidl_vec<hidl_string>>(parcel, &parent);
    if (texts == nullptr || readEmbeddedFromParcel(*texts, parcel, parent, 0, &child) != OK) {
        return;
    }
    for (size_t i = 0; i < texts->size(); ++i) {
        hidl_string& text = (*texts)[i];
        if (readEmbeddedFromParcel(text, parcel, child, i * sizeof(hidl_string)) != OK) {
            return;
        }
        fuzz::require(text.c_str()[text.size()] == '\0');
        const hidl_string copy = text;
        fuzz::require(copy == text);
    }
}

}  // namespace

void fuzz::read(const Parcel& parcel, uint8_t what) {
    size_t handle = 0;
    switch (what % 7) {
        case 0: {
            uint32_t number;
            parcel.readUint32(&number);
            break;
        }
        case 1: {
            const char* text = parcel.readCString();
            fuzz::require(text == nullptr || std::strlen(text) < kMaxTransactionBytes);
            break;
        }
        case 2: {
            const void* data = nullptr;
            if (parcel.readBuffer(what / 7U * 8, &handle, &data) == OK) {
                touch(static_cast<const uint8_t*>(data), what / 7U * 8);
            }
            break;
        }
        case 3: {
            auto* numbers = record<hidl_vec<uint16_t>>(parcel, &handle);
            size_t child = 0;
            if (numbers != nullptr && readEmbeddedFromParcel(*numbers, parcel, handle, 0, &child) == OK) {
                touch(numbers->data(), numbers->size());
            }
            break;
        }
        case 4:
            readVector(parcel);
            break;
        case 5: {
            sp<IBinder> object;
            parcel.readNullableStrongBinder(&object);
            break;
        }
        case 6: {
            const native_handle_t* native = nullptr;
            if (parcel.readNullableNativeHandleNoDup(&native) == OK && native != nullptr) {
                touch(native->data, static_cast<size_t>(native->numFds + native->numInts));
            }
            break;
        }
    }
}
