#define LOG_TAG "hidl.kernel"

#include "platform/kernel/KernelBackend.h"

#include <log/log.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/kernel/KernelNames.h"
#include "platform/kernel/KernelTransport.h"
#include "platform/kernel/Looper.h"

using ::android::hidl::manager::V1_0::IServiceManager;

namespace android::hardware {

namespace {

std::unique_ptr<Driver> openDevice() {
    const char* const named = getenv("HIDL_BINDER_DEVICE");
    std::string problem;
    auto driver = Driver::open(named != nullptr && *named != '\0' ? named : "/dev/hwbinder", &problem);
    LOG_ALWAYS_FATAL_IF(driver == nullptr, "%s", problem.c_str());
    return driver;
}

class KernelBackend final : public Backend {
  public:
    KernelBackend() : mTransport(openDevice()), mNames(mTransport) {}

    void setMaxThreads(size_t maxThreads, bool callerWillJoin) override {
        mTransport.setMaxThreads(maxThreads, callerWillJoin);
    }
    void startThreadPool() override { mTransport.start(); }
    void joinThreadPool() override { mTransport.join(); }
    Names& names() override { return mNames; }
    Credentials caller() override {
        const Credentials* const who = Looper::caller();
        return who != nullptr ? *who : Credentials{getpid(), getuid()};
    }
    KernelTransport& transport() { return mTransport; }

  private:
    KernelTransport mTransport;
    KernelNames mNames;
};

}  // namespace

std::unique_ptr<Backend> makeKernelBackend() {
    return std::make_unique<KernelBackend>();
}

status_t becomeContextManager(const sp<IServiceManager>& manager) {
    auto* const backend = dynamic_cast<KernelBackend*>(&Backend::self());
    if (backend == nullptr) {
        return INVALID_OPERATION;
    }
    const sp<BHwBinder> object = localObjectOf(manager);
    return object == nullptr ? BAD_VALUE : backend->transport().becomeManager(object);
}

}  // namespace android::hardware
