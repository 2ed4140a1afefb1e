#define LOG_TAG "hidl.kernel"

#include "platform/kernel/KernelTransport.h"

#include <log/log.h>
#include <pthread.h>

#include <algorithm>
#include <new>
#include <system_error>
#include <thread>

#include "platform/binding/StatusText.h"
#include "platform/kernel/Looper.h"

namespace android::hardware {

KernelTransport::KernelTransport(std::unique_ptr<Driver> driver)
    : mDriver(std::move(driver)), mHandles(*mDriver) {
    setMaxThreads(1, false);
}

void KernelTransport::setMaxThreads(size_t maxThreads, bool callerWillJoin) {
    // The first thread comes by itself, through start() or join(); the driver asks for the others.
    const size_t asked = std::clamp<size_t>(maxThreads, 1, UINT32_MAX) - 1;
    const CheckedLock lock(mLock);
    const status_t status = mDriver->setMaxThreads(static_cast<uint32_t>(asked));
    ALOGE_IF(status != OK, "the driver does not take a number of threads: %s", statusText(status).c_str());
    mCallerWillJoin = callerWillJoin;
}

void KernelTransport::start() {
    {
        const CheckedLock lock(mLock);
        if (mStarted || mCallerWillJoin) {
            return;
        }
        mStarted = true;
    }
    try {
        startThread(false);
    } catch (const std::exception& error) {  // for lack of threads or memory
        ALOGE("no thread for calls: %s", error.what());
        const CheckedLock lock(mLock);
        mStarted = false;
    }
}

void KernelTransport::join() {
    Looper::ofThread(*this).run(false);
}

void KernelTransport::spawn() {
    const bool wasOwed = mOwed.exchange(false);
    try {
        startThread(true);
    } catch (const std::exception& error) {  // for lack of threads or memory
        ALOGE_IF(!wasOwed, "no more threads for calls: %s", error.what());
        mOwed = true;
    }
}

void KernelTransport::startThread(bool asked) {
    std::thread thread([this, asked] { Looper::ofThread(*this).run(asked); });
    pthread_setname_np(thread.native_handle(), "hidl-pool");
    thread.detach();
}

status_t KernelTransport::describe(const sp<IBinder>& object, flat_binder_object* form) {
    if (BHwBinder* const local = object->localBinder(); local != nullptr) {
        LocalObject::describe(local, form);
        return OK;
    }
    // Only what this transport received can be handed on over it.
    auto* const remote = dynamic_cast<KernelProxy*>(object->remoteProxy());
    if (remote == nullptr) {
        return INVALID_OPERATION;
    }
    if (remote->handle() == 0) {
        // Handle 0 may be called without being held, but only what is held is handed on.
        if (const status_t status = mHandles.watch(remote); status != OK) {
            return status;
        }
    }
    form->hdr.type = BINDER_TYPE_HANDLE;
    form->handle = remote->handle();
    return OK;
}

status_t KernelTransport::resolve(const flat_binder_object& form, sp<IBinder>* object) {
    if (form.hdr.type == BINDER_TYPE_HANDLE) {
        *object = mHandles.get(*this, form.handle);
    } else {
        *object = find(form.binder, form.cookie);
    }
    return *object != nullptr ? OK : BAD_VALUE;
}

sp<BHwBinder> KernelTransport::find(binder_uintptr_t address, binder_uintptr_t cookie) {
    if (address == 0) {
        const CheckedLock lock(mLock);
        return mManager;
    }
    return LocalObject::find(address, cookie);
}

void KernelTransport::count(uint32_t command, const binder_ptr_cookie& object) {
    if (object.ptr != 0) {  // else the context manager's, which is kept
        LocalObject::count(command, object);
    }
}

sp<IBinder> KernelTransport::manager() {
    {
        const CheckedLock lock(mLock);
        if (mManager != nullptr) {
            return mManager;
        }
    }
    return mHandles.get(*this, 0);
}

status_t KernelTransport::becomeManager(const sp<BHwBinder>& object) {
    const CheckedLock lock(mLock);
    const status_t status = mDriver->becomeContextManager();
    if (status == OK) {
        mManager = object;
    }
    return status;
}

void KernelTransport::complain(const Credentials& who, const char* what, uint32_t code, status_t status,
                               const char* rule) {
    const uint32_t count = mComplaints.count(who);
    if (count == 0) {
        return;
    }
    std::string text;
    try {
        text = rule == nullptr ? statusText(status) : std::string("it breaks the rule that ") + rule;
    } catch (const std::bad_alloc&) {
        // The number says enough.
    }
    ALOGW("refused %s method %u for pid %d uid %u: %s (refusal %u)", what, code, who.pid, who.uid,
          text.c_str(), count);
}

}  // namespace android::hardware
