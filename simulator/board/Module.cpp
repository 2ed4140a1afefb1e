#include "simulator/board/Module.h"

#include <vector>

#include "simulator/board/Status.h"

namespace simulator {

/** A handler's call while it lasts. The calling thread's form a chain, so that a wait can leave them out. */
class Module::Delivery {
  public:
    explicit Delivery(Module& module) : mModule(module), mOuter(sInnermost) { sInnermost = this; }

    ~Delivery() {
        sInnermost = mOuter;
        // Notified under the lock: whoever waits may unload the module's users as soon as it sees the count.
        std::lock_guard<std::mutex> lock(mModule.mMutex);
        --mModule.mDeliveries;
        mModule.mDelivered.notify_all();
    }

    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    static unsigned onThisThread(const Module& module) {
        unsigned count = 0;
        for (const Delivery* delivery = sInnermost; delivery != nullptr; delivery = delivery->mOuter) {
            count += &delivery->mModule == &module;
        }
        return count;
    }

  private:
    static thread_local const Delivery* sInnermost;

    Module& mModule;
    const Delivery* mOuter;
};

thread_local const Module::Delivery* Module::Delivery::sInnermost = nullptr;

namespace {

struct Named {
    const char* name;
    Module* module;
    Module::Describe describe;
};
std::mutex sNamedMutex;
std::vector<Named>& named() {  // guarded by sNamedMutex
    static auto& sNamed = *new std::vector<Named>;
    return sNamed;
}

}  // namespace

Module::Module(const char* name, Describe describe) {
    if (name != nullptr) {
        std::lock_guard<std::mutex> lock(sNamedMutex);
        named().push_back({name, this, describe});
    }
}

std::string Module::describeAll(const std::string& name) {
    std::vector<Named> modules;
    {
        std::lock_guard<std::mutex> lock(sNamedMutex);
        modules = named();
    }
    std::string text;
    for (const Named& known : modules) {
        if (known.describe != nullptr && (name.empty() || name == known.name)) {
            text += std::string("[") + known.name + "]\n" + known.describe() + "\n";
        }
    }
    return text;
}

Module* Module::find(const std::string& name) {
    std::lock_guard<std::mutex> lock(sNamedMutex);
    for (const Named& known : named()) {
        if (name == known.name) {
            return known.module;
        }
    }
    return nullptr;
}

int32_t Module::init() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mInitialised) {
        return kAlreadySetUp;
    }
    mInitialised = true;
    return kOk;
}

int32_t Module::deinit() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (!mInitialised) {
        return kNotSetUp;
    }
    mInitialised = false;
    waitForDeliveries(lock);
    return kOk;
}

int32_t Module::registerHandler(fapi_core::ZvtTvFApiEventHandler handler) {
    if (handler == nullptr) {
        return kOutOfRange;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (mHandler != nullptr) {
        return kAlreadySetUp;
    }
    mHandler = handler;
    return kOk;
}

int32_t Module::unregisterHandler() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mHandler == nullptr) {
        return kNotSetUp;
    }
    mHandler = nullptr;
    waitForDeliveries(lock);
    return kOk;
}

int32_t Module::raise(uint32_t type, const Payload& payload) {
    fapi_core::ZvtTvFApiEventHandler handler;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!mInitialised || mHandler == nullptr) {
            return kNotSetUp;
        }
        handler = mHandler;
        ++mDeliveries;
    }
    Delivery delivery(*this);
    return handler(type, payload.objects[0], payload.objects[1], payload.objects[2], payload.objects[3]);
}

void Module::waitForDeliveries(std::unique_lock<std::mutex>& lock) {
    const unsigned own = Delivery::onThisThread(*this);
    mDelivered.wait(lock, [&] { return mDeliveries <= own; });
}

}  // namespace simulator
