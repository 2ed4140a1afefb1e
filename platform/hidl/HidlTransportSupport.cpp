#define LOG_TAG "hidl"

#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>
#include <log/log.h>

#include <new>

#include "platform/binding/Backend.h"

using ::android::hidl::base::V1_0::IBase;

namespace android::hardware {

void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin) {
    // The packaged log library drops debug lines unless told otherwise; a service decides by its own means.
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    Backend::self().setMaxThreads(maxThreads, callerWillJoin);
}

void joinRpcThreadpool() {
    Backend::self().joinThreadPool();
}

void hidl_binder_death_recipient::binderDied(const wp<IBinder>& /* who */) {
    if (const sp<hidl_death_recipient> recipient = getRecipient(); recipient != nullptr) {
        recipient->serviceDied(mCookie, mBase);
    }
}

namespace {

sp<IBinder> makeStub(IBase* object) {
    std::string descriptor;
    const Return<void> asked = object->interfaceDescriptor([&](const hidl_string& answer) {
        try {
            descriptor = answer;
        } catch (const std::bad_alloc&) {  // who calls this knows no exceptions; no stub has that name
        }
    });
    const auto make = details::getBnConstructorMap().get(descriptor);
    if (!asked.isOk() || make == nullptr) {
        ALOGE("no stub for objects of \"%s\" in this process", descriptor.c_str());
        return nullptr;
    }
    // Interfaces derive from each other singly, so the object's address as an IBase is the one that the maker
    // takes for its interface.
    const sp<IBinder> made = make(object);
    return details::gBnMap->getOrSet(object, made->localBinder());
}

}  // namespace

sp<IBinder> getOrCreateCachedBinder(IBase* object) {
    if (object->isRemote()) {
        return details::remoteOf(object);
    }
    if (sp<BHwBinder> stub = details::gBnMap->get(object); stub != nullptr) {
        return stub;
    }
    try {
        return makeStub(object);
    } catch (const std::bad_alloc&) {
        ALOGE("no memory for the stub of an object");
        return nullptr;
    }
}

status_t readEmbeddedFromParcel(hidl_string& text, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset) {
    size_t handle = 0;
    const void* data = nullptr;
    const size_t size = size_t{text.mSize} + 1;
    const status_t status = parcel.readEmbeddedBuffer(size, &handle, parentHandle, parentOffset, &data);
    if (status != OK) {
        return status;
    }
    const char* bytes = static_cast<const char*>(data);
    if (bytes[size - 1] != '\0') {
        return BAD_VALUE;
    }
    text.mBuffer = bytes;
    text.mOwnsBuffer = false;
    return OK;
}

status_t writeEmbeddedToParcel(const hidl_string& text, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset) {
    size_t handle = 0;
    return parcel->writeEmbeddedBuffer(text.c_str(), text.size() + 1, &handle, parentHandle, parentOffset);
}

status_t readEmbeddedFromParcel(hidl_handle& handle, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset) {
    // What came for these fields is no address of ours.
    handle.mHandle = nullptr;
    handle.mOwnsHandle = false;
    return parcel.readNullableEmbeddedNativeHandle(parentHandle, parentOffset, &handle.mHandle);
}

status_t writeEmbeddedToParcel(const hidl_handle& handle, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset) {
    return parcel->writeEmbeddedNativeHandle(handle, parentHandle, parentOffset);
}

namespace details {

void normaliseBooleans(uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        bytes[i] = bytes[i] != 0 ? 1 : 0;
    }
}

sp<IBinder> remoteOf(IBase* object) {
    const auto* proxy = dynamic_cast<const IInterface*>(object);
    return proxy == nullptr ? nullptr : IInterface::asBinder(proxy);
}

Status hasInterface(IBase* object, const char* descriptor, bool* answer) {
    *answer = false;
    const Return<void> asked = object->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
        for (const hidl_string& name : chain) {
            *answer = *answer || name == descriptor;
        }
    });
    return asked.isOk() ? Status::ok() : asked.status();
}

}  // namespace details

}  // namespace android::hardware
