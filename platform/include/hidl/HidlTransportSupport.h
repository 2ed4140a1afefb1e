#pragma once

// What generated proxies and stubs call, and the size of the pool that serves calls.

#include <android/hidl/base/1.0/BnHwBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace android::hardware {

/**
 * Sizes the pool that runs methods for other processes. Call it once, before the first object is registered.
 *
 * @param callerWillJoin one of the threads will come through joinRpcThreadpool()
 */
void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin);

/** Serves calls on the calling thread; does not return while the process can serve. */
void joinRpcThreadpool();

/** The part of a proxy that knows the remote object. */
class IInterface : public virtual RefBase {
  public:
    static const sp<IBinder>& asBinder(const IInterface* proxy) { return proxy->mRemote; }

  protected:
    explicit IInterface(const sp<IBinder>& remote) : mRemote(remote) {}
    IBinder* remote() const { return mRemote.get(); }

  private:
    const sp<IBinder> mRemote;
};

/** Base of the proxies of one interface. */
template <typename Interface>
class BpInterface : public Interface, public IInterface {
  public:
    explicit BpInterface(const sp<IBinder>& remote) : IInterface(remote) {}
};

/** Passes the death of an object's process on to who asked for it, with the cookie given. */
class hidl_binder_death_recipient : public IBinder::DeathRecipient {
  public:
    hidl_binder_death_recipient(const sp<hidl_death_recipient>& recipient, uint64_t cookie,
                                const wp<::android::hidl::base::V1_0::IBase>& base)
        : mRecipient(recipient), mCookie(cookie), mBase(base) {}

    void binderDied(const wp<IBinder>& who) override;
    /** Null when it is gone. */
    sp<hidl_death_recipient> getRecipient() const { return mRecipient.promote(); }

  private:
    const wp<hidl_death_recipient> mRecipient;
    const uint64_t mCookie;
    const wp<::android::hidl::base::V1_0::IBase> mBase;
};

/**
 * The object to send for an interface: the remote one behind a proxy, or the stub of a local object, which is
 * made when it is first sent and lives as long as others hold it.
 *
 * @return null, with an error logged, when the object's interface has no generated stub in this process, or
 *     there is no memory for it
 */
sp<IBinder> getOrCreateCachedBinder(::android::hidl::base::V1_0::IBase* object);

template <typename Interface>
sp<IBinder> toBinder(const sp<Interface>& object) {
    return object == nullptr ? nullptr : getOrCreateCachedBinder(object.get());
}

/**
 * The interface of a received object: the local object itself, or a proxy.
 *
 * @return null for null and for a local object of another interface, as a peer may send any of ours
 */
template <typename Interface, typename Proxy, typename Stub>
sp<Interface> fromBinder(const sp<IBinder>& object) {
    if (object == nullptr) {
        return nullptr;
    }
    if (object->localBinder() == nullptr) {
        return new Proxy(object);
    }
    // The stub of a derived interface is no stub of ours, but its object is one of our interface.
    auto* stub = dynamic_cast<::android::hidl::base::V1_0::BnHwBase*>(object->localBinder());
    return stub == nullptr ? nullptr : dynamic_cast<Interface*>(stub->getImpl().get());
}

/**
 * Reads the text that the record at parentOffset of buffer parentHandle announces.
 *
 * @return BAD_VALUE when the next buffer is not that text or lacks its final NUL
 */
status_t readEmbeddedFromParcel(hidl_string& text, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_string& text, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset);

/**
 * Reads the native handle of the record at parentOffset of buffer parentHandle. It and its descriptors are
 * the parcel's.
 *
 * @return BAD_VALUE when what comes next is none
 */
status_t readEmbeddedFromParcel(hidl_handle& handle, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_handle& handle, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset);

namespace details {
/** Makes any non-zero byte of received booleans the value true. */
void normaliseBooleans(uint8_t* bytes, size_t count);

/** The object behind a proxy of any interface; null if it is none. */
sp<IBinder> remoteOf(::android::hidl::base::V1_0::IBase* object);

/** Asks an object whether it has an interface; *answer is false unless the status is fine. */
Status hasInterface(::android::hidl::base::V1_0::IBase* object, const char* descriptor, bool* answer);
}  // namespace details

/** The same for the elements of a sequence; what they refer to is left to the caller. */
template <typename T>
status_t readEmbeddedFromParcel(hidl_vec<T>& vec, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset, size_t* handle) {
    size_t bytes = 0;
    if (__builtin_mul_overflow(size_t{vec.mSize}, sizeof(T), &bytes)) {
        return BAD_VALUE;
    }
    const void* data = nullptr;
    const status_t status = parcel.readEmbeddedBuffer(bytes, handle, parentHandle, parentOffset, &data);
    if (status != OK) {
        return status;
    }
    vec.mBuffer = static_cast<T*>(const_cast<void*>(data));
    vec.mOwnsBuffer = false;
    if constexpr (std::is_same_v<T, bool>) {
        details::normaliseBooleans(static_cast<uint8_t*>(const_cast<void*>(data)), bytes);
    }
    return OK;
}

template <typename T>
status_t writeEmbeddedToParcel(const hidl_vec<T>& vec, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset, size_t* handle) {
    return parcel->writeEmbeddedBuffer(vec.data(), vec.size() * sizeof(T), handle, parentHandle,
                                       parentOffset);
}

namespace details {

/**
 * The object as another interface that it has.
 *
 * @param emitError whether a failed question to a remote object is returned as such, or as null
 */
template <typename Child, typename Parent, typename Proxy>
Return<sp<Child>> castInterface(const sp<Parent>& parent, const char* descriptor, bool emitError) {
    if (parent == nullptr) {
        return nullptr;
    }
    if (!parent->isRemote()) {
        return dynamic_cast<Child*>(parent.get());
    }
    bool answer = false;
    const Status status = hasInterface(parent.get(), descriptor, &answer);
    if (!status.isOk() && emitError) {
        return status;
    }
    const sp<IBinder> object = remoteOf(parent.get());
    return answer && object != nullptr ? new Proxy(object) : nullptr;
}

}  // namespace details

}  // namespace android::hardware
