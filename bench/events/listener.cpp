// bench-listener default | threads <n> | often <n> | raw <message bytes>: one of several clients that receive
// events, with the pool of threads that a process has when it asks for none, or with one of n; one that is
// registered n times; or one that receives messages of this length from its standard input instead. Answers a
// byte there after every kBatch of them.

#include <hidl/HidlTransportSupport.h>
#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/events/Batch.h"
#include "bench/transport/Raw.h"

namespace {

using ::android::hardware::Return;
using ::android::hardware::Void;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;
using Record = ZvtTvFApiEventCommonObject;

class Listener : public IZvtTvFApiCallbackManager {
  public:
#define LISTENER_METHOD(name)                                                                               \
    Return<void> name(uint32_t type, const Record&, const Record&, const Record&, const Record&) override { \
        count(type);                                                                                        \
        return Void();                                                                                      \
    }
    LISTENER_METHOD(notifySysEvent)
    LISTENER_METHOD(notifyDispEvent)
    LISTENER_METHOD(notifyDispTstEvent)
    LISTENER_METHOD(notifyInfoEvent)
    LISTENER_METHOD(notifyInpSrcEvent)
    LISTENER_METHOD(notifyPrphrlEvent)
    LISTENER_METHOD(notifyAudEvent)
    LISTENER_METHOD(notifyNetEvent)
    LISTENER_METHOD(notifyTvEvent)
#undef LISTENER_METHOD

  private:
    void count(uint32_t type) {
        ++mCount;
        if (mCount % bench::kBatch == 0 || (type & bench::kAnswerAtOnce) != 0) {
            mCount = 0;
            bench::writeFully(STDIN_FILENO, "", 1);
        }
    }

    std::atomic<uint32_t> mCount{0};
};

}  // namespace

int main(int argc, char** argv) {
    const std::string kind = argc > 1 ? argv[1] : "";
    if (argc != (kind == "default" ? 2 : 3) ||
        (kind != "default" && kind != "threads" && kind != "often" && kind != "raw")) {
        std::fprintf(stderr,
                     "usage: bench-listener default | threads <n> | often <n> | raw <message bytes>\n");
        return 2;
    }
    if (kind == "raw") {
        std::vector<char> message(std::stoul(argv[2]));
        for (uint32_t count = 1; bench::readFully(STDIN_FILENO, message.data(), message.size()); ++count) {
            if (count % bench::kBatch == 0 && !bench::writeFully(STDIN_FILENO, "", 1)) {
                break;
            }
        }
        return 0;
    }
    if (kind == "threads") {
        android::hardware::configureRpcThreadpool(std::stoul(argv[2]), false);
    }
    const android::sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::getService();
    const android::sp<Listener> listener = new Listener;
    const unsigned long times = kind == "often" ? std::stoul(argv[2]) : 1;
    bool good = true;
    for (unsigned long i = 0; good && i < times; ++i) {
        good = manager->a_hidl_a_zvttvfapi_mngr_set_callback(listener).withDefault(-1) == 0;
    }
    if (!good || !bench::writeFully(STDIN_FILENO, "", 1)) {
        std::fprintf(stderr, "bench-listener: not registered\n");
        return 2;
    }
    pause();
    return 0;
}
