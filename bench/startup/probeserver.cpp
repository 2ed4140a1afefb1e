// bench-probe-server: a server of one interface of one method, which one thread serves, as it does in the
// server over D-Bus beside it.

#include <hidl/HidlTransportSupport.h>
#include <zvttv/bench/1.0/IBenchProbe.h>

#include <cstdio>

namespace {

using ::android::hardware::Return;
using ::android::hardware::Void;

class Probe final : public zvttv::bench::V1_0::IBenchProbe {
  public:
    Return<void> isOdd(uint32_t number, isOdd_cb callback) override {
        callback(number % 2 == 1, 0);
        return Void();
    }
};

}  // namespace

int main() {
    android::hardware::configureRpcThreadpool(1, true);
    const android::sp<Probe> probe = new Probe;
    if (probe->registerAsService("default") != android::OK) {
        std::fprintf(stderr, "bench-probe-server: can not register\n");
        return 2;
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}
