#define LOG_TAG "hidl.kernel"

#include "platform/kernel/Objects.h"

#include <log/log.h>

#include "platform/binding/StatusText.h"
#include "platform/kernel/KernelTransport.h"
#include "platform/kernel/Looper.h"

namespace android::hardware {

namespace {

/** Who holds an object for the driver, where references are traced. */
const void* const kDriver = &kDriver;

/** The number of IBase::ping(). */
constexpr uint32_t kPing = 0x0f504e47;

bool isGone(KernelProxy* proxy) {
    Parcel ping;
    Parcel answer;
    ping.writeInterfaceToken("android.hidl.base@1.0::IBase");
    return proxy->transact(kPing, ping, &answer, 0, nullptr) == DEAD_OBJECT;
}

}  // namespace

KernelProxy::~KernelProxy() {
    if (!isParents()) {
        mTransport.handles().forget(this);
    }
}

status_t KernelProxy::send(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    const status_t status = Looper::ofThread(mTransport).transact(mHandle, code, data, reply, flags);
    ALOGE_IF(mHandle == 0 && status == DEAD_OBJECT, "no context manager on %s: start hwservicemanager",
             mTransport.driver().path().c_str());
    return status;
}

status_t KernelProxy::watch() {
    return mTransport.handles().watch(this);
}

void Handles::write(uint32_t command, uint32_t handle) {
    Commands commands;
    commands.put(command, handle);
    const status_t status = mDriver.write(&commands);
    ALOGE_IF(status != OK, "the count of handle %u is wrong from now on: %s", handle,
             statusText(status).c_str());
}

sp<KernelProxy> Handles::get(KernelTransport& transport, uint32_t handle) {
    const CheckedLock lock(mLock);
    Known& known = mKnown[handle];
    sp<KernelProxy> proxy = known.address == nullptr ? nullptr : known.proxy.promote();
    if (proxy != nullptr) {
        return proxy;
    }
    try {
        proxy = new KernelProxy(transport, handle);
    } catch (...) {
        if (known.address == nullptr) {
            mKnown.erase(handle);
        }
        throw;
    }
    // One that is ending at this moment finds that it has a successor. Handle 0 needs no reference to be
    // called, and can not be held while there is no context manager.
    known.address = proxy.get();
    known.proxy = proxy;
    if (handle != 0) {
        write(BC_ACQUIRE, handle);
    }
    return proxy;
}

void Handles::forget(KernelProxy* proxy) {
    const uint32_t handle = proxy->handle();
    const CheckedLock lock(mLock);
    const auto known = mKnown.find(handle);
    if (known != mKnown.end() && known->second.address == proxy) {
        unask(known);
    }
    if (handle != 0) {
        write(BC_RELEASE, handle);
    }
}

status_t Handles::watch(KernelProxy* proxy) {
    const status_t status = ask(proxy);
    // What is asked of handle 0 while there is no context manager is lost without a word.
    if (status != OK || proxy->handle() != 0 || !isGone(proxy)) {
        return status;
    }
    const CheckedLock lock(mLock);
    const auto known = mKnown.find(0);
    if (known != mKnown.end() && known->second.address == proxy) {
        unask(known);
    }
    return DEAD_OBJECT;
}

/** Asks for the notice, once. */
status_t Handles::ask(KernelProxy* proxy) {
    const uint32_t handle = proxy->handle();
    const CheckedLock lock(mLock);
    const auto known = mKnown.find(handle);
    if (known == mKnown.end() || known->second.address != proxy || known->second.isDead) {
        return DEAD_OBJECT;
    }
    if (known->second.cookie != 0) {
        return OK;
    }
    mWatched.emplace(++mLastCookie, handle);
    known->second.cookie = mLastCookie;
    Commands commands;
    if (handle == 0) {
        commands.put(BC_ACQUIRE, handle);
    }
    commands.put(BC_REQUEST_DEATH_NOTIFICATION, binder_handle_cookie{handle, known->second.cookie});
    return mDriver.write(&commands);
}

/** Takes back what was asked of the driver for a handle, and forgets its proxy. */
void Handles::unask(std::unordered_map<uint32_t, Known>::iterator known) {
    const auto& [handle, asked] = *known;
    if (asked.cookie != 0) {
        Commands commands;
        commands.put(BC_CLEAR_DEATH_NOTIFICATION, binder_handle_cookie{handle, asked.cookie});
        if (handle == 0) {
            commands.put(BC_RELEASE, handle);  // held longer, it would hide the next context manager
        }
        mDriver.write(&commands);
        mWatched.erase(asked.cookie);
    }
    mKnown.erase(known);
}

void Handles::takeLinks(binder_uintptr_t cookie, DeathLinks* links) {
    const CheckedLock lock(mLock);
    const auto watched = mWatched.find(cookie);
    if (watched == mWatched.end()) {
        return;  // the last who wanted to know has gone
    }
    // One that is ending waits for our lock, with its memory in place.
    const auto known = mKnown.find(watched->second);
    if (known != mKnown.end() && known->second.cookie == cookie) {
        known->second.isDead = true;
        known->second.address->takeLinks(links);
        if (known->first == 0) {
            unask(known);
        }
    }
}

void LocalObject::describe(BHwBinder* object, flat_binder_object* form) {
    form->hdr.type = BINDER_TYPE_BINDER;
    // Calls run at their caller's nice value, and may bring descriptors.
    form->flags = 0x7f | FLAT_BINDER_FLAG_ACCEPTS_FDS;
    form->binder = reinterpret_cast<uintptr_t>(object->getWeakRefs());
    form->cookie = reinterpret_cast<uintptr_t>(object);
}

sp<BHwBinder> LocalObject::find(binder_uintptr_t address, binder_uintptr_t cookie) {
    auto* const references = reinterpret_cast<RefBase::weakref_type*>(static_cast<uintptr_t>(address));
    auto* const object = reinterpret_cast<BHwBinder*>(static_cast<uintptr_t>(cookie));
    if (!references->attemptIncStrong(kDriver)) {
        return nullptr;
    }
    const sp<BHwBinder> found(object);
    object->decStrong(kDriver);
    return found;
}

void LocalObject::count(uint32_t command, const binder_ptr_cookie& object) {
    auto* const references = reinterpret_cast<RefBase::weakref_type*>(static_cast<uintptr_t>(object.ptr));
    auto* const address = reinterpret_cast<BHwBinder*>(static_cast<uintptr_t>(object.cookie));
    switch (command) {
        case BR_INCREFS:
            references->incWeak(kDriver);
            break;
        case BR_ACQUIRE:
            address->incStrong(kDriver);
            break;
        case BR_RELEASE:
            address->decStrong(kDriver);
            break;
        case BR_DECREFS:
            references->decWeak(kDriver);
            break;
    }
}

}  // namespace android::hardware
