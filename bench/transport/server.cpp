// bench-server <instance> <threads>: the Information interface as the service has it, on a chip layer that
// costs nothing, and IBenchServer, both under this name, with so many threads that serve calls.

#include <hidl/HidlTransportSupport.h>
#include <service/trace/TracedInterfaces.h>
#include <zvttv/bench/1.0/IBenchServer.h>

#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/information/ZvtTvFApiInformation.h"
#include "bench/transport/Allocations.h"
#include "service/frame/Debug.h"

namespace {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::android::hidl::base::V1_0::IBase;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::implementation::Traced;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::implementation::ZvtTvFApiInformation;
using ::zvttv::bench::V1_0::IBenchProbe;
using ::zvttv::bench::V1_0::IBenchServer;

class BenchServer final : public IBenchServer, public hidl_death_recipient {
  public:
    Return<void> bytes(uint32_t count, bytes_cb callback) override {
        // Filled by the first call: the memory of an idle server is what the runtime takes.
        static std::vector<uint8_t> bytes(1024 * 1024, 'b');
        if (count > bytes.size()) {
            return Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT, "more than one message holds");
        }
        hidl_vec<uint8_t> result;
        result.setToExternal(bytes.data(), count);
        callback(result);
        return Void();
    }

    Return<void> countAllocations() override {
        bench::startCountingAllocations();
        return Void();
    }

    Return<uint64_t> allocations() override {
        const uint64_t count = bench::stopCountingAllocations();
        return count;
    }

    Return<void> keep(const sp<IBenchProbe>& probe) override {
        uint64_t cookie;
        {
            const std::lock_guard<std::mutex> lock(mLock);
            cookie = mNextCookie++;
            mProbes[cookie] = probe;
        }
        const bool linked = probe->linkToDeath(this, cookie);
        return linked ? Status()
                      : Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT,
                                                  "can not be linked to its death");
    }

    void serviceDied(uint64_t cookie, const wp<IBase>&) override {
        const std::lock_guard<std::mutex> lock(mLock);
        mProbes.erase(cookie);
    }

  private:
    std::mutex mLock;  // guards the next two
    std::map<uint64_t, sp<IBenchProbe>> mProbes;
    uint64_t mNextCookie = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench-server <instance> <threads>\n");
        return 2;
    }
    const std::string instance = argv[1];
    u8TvFactoryDebug = 0;
    android::hardware::configureRpcThreadpool(std::stoul(argv[2]), true);
    const sp<ZvtTvFApiInformation> information = new Traced<ZvtTvFApiInformation>;
    const sp<BenchServer> server = new BenchServer;
    if (information->registerAsService(instance) != android::OK ||
        server->registerAsService(instance) != android::OK) {
        std::fprintf(stderr, "bench-server: can not register\n");
        return 2;
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}
