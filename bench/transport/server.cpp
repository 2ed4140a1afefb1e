// bench-server: the Information interface as the service has it, on a chip layer that costs nothing, and
// IBenchServer.

#include <hidl/HidlTransportSupport.h>
#include <zvttv/bench/1.0/IBenchServer.h>

#include <cstdio>
#include <vector>

#include "adapters/information/ZvtTvFApiInformation.h"
#include "bench/transport/Allocations.h"
#include "service/frame/Debug.h"

namespace {

using ::android::sp;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::implementation::ZvtTvFApiInformation;

class BenchServer final : public zvttv::bench::V1_0::IBenchServer {
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
};

}  // namespace

int main() {
    u8TvFactoryDebug = 0;
    android::hardware::configureRpcThreadpool(10, true);
    const sp<ZvtTvFApiInformation> information = new ZvtTvFApiInformation;
    const sp<BenchServer> server = new BenchServer;
    if (information->registerAsService("default") != android::OK ||
        server->registerAsService("default") != android::OK) {
        std::fprintf(stderr, "bench-server: can not register\n");
        return 2;
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}
