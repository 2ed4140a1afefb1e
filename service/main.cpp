#define LOG_TAG "vendor.zentrovi.tv.zvttvfactory@1.0-service"

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>
#include <service/trace/TracedInterfaces.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "adapters/audio/ZvtTvFApiAudio.h"
#include "adapters/display/ZvtTvFApiDisplay.h"
#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"
#include "adapters/information/ZvtTvFApiInformation.h"
#include "adapters/information/ZvtTvFApiTv.h"
#include "adapters/inputsource/ZvtTvFApiInputSource.h"
#include "adapters/network/ZvtTvFApiNetwork.h"
#include "adapters/peripheral/ZvtTvFApiPeripheral.h"
#include "adapters/system/ZvtTvFApiSystem.h"
#include "chiplayer/custom.h"
#include "manager/ZvtTvFApiManager.h"
#include "service/frame/Debug.h"

using ::android::OK;
using ::android::sp;
using ::android::status_t;
using ::android::hardware::configureRpcThreadpool;
using ::android::hardware::joinRpcThreadpool;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0::implementation;

/// What the transport takes from its environment, as the custom library's help has it; it may lack it.
extern "C" [[gnu::weak]] const char* hidl_transport_help();

namespace {

constexpr const char* kInstance = "default";

// Creates one interface object and registers it under "default". A refusal ends the process, whatever the
// debug flag says: half a service is worse than one that the init system starts again. Its calls can be
// looked at.
template <typename Object>
sp<Object> registered(const char* name) {
    sp<Object> object = new Traced<Object>();
    const status_t status = object->registerAsService(kInstance);
    if (status != OK) {
        __android_log_assert("status != OK", LOG_TAG, "Could not register %s as service", name);
    }
    return object;
}

// Answers arguments in place of serving. Returns the exit code.
int answer(int argc, char** argv) {
    if (argc != 2 || strcmp(argv[1], "--help") != 0) {
        fprintf(stderr, "%s takes no arguments but --help\n", LOG_TAG);
        return 2;
    }
    printf("Usage: %s\n\nServes a television's factory interfaces until it is ended, under the instance name "
           "\"%s\":\n\n",
           LOG_TAG, kInstance);
    for (const char* descriptor :
         {ZvtTvFApiAudio::descriptor, ZvtTvFApiDisplayTest::descriptor, ZvtTvFApiDisplay::descriptor,
          ZvtTvFApiNetwork::descriptor, ZvtTvFApiPeripheral::descriptor, ZvtTvFApiInputSource::descriptor,
          ZvtTvFApiSystem::descriptor, ZvtTvFApiInformation::descriptor, ZvtTvFApiTv::descriptor,
          ZvtTvFApiManager::descriptor}) {
        printf("  %s\n", descriptor);
    }
    printf("\nIt takes no arguments but --help. What its libraries take from the environment:\n\n%s%s",
           hidl_transport_help != nullptr ? hidl_transport_help() : "",
           _a_zvttvfapi_custom_help != nullptr ? _a_zvttvfapi_custom_help() : "");
    return fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        return answer(argc, argv);
    }
    // The most calls that are served at once; this thread is one of those that serve them.
    configureRpcThreadpool(10, true /* callerWillJoin */);
    u8TvFactoryDebug = static_cast<uint8_t>(_a_zvttvfapi_custom_init_debug_level());

    // Clients can call an object as soon as it is registered. The chip-layer modules are up only with the
    // manager, which comes last: until then only the library's readiness answer keeps calls from them.
    const auto zvtTvFApiAudio = registered<ZvtTvFApiAudio>("zvtTvFApiAudio");
    const auto zvtTvFApiDisplayTest = registered<ZvtTvFApiDisplayTest>("zvtTvFApiDisplayTest");
    const auto zvtTvFApiDisplay = registered<ZvtTvFApiDisplay>("zvtTvFApiDisplay");
    const auto zvtTvFApiNetwork = registered<ZvtTvFApiNetwork>("zvtTvFApiNetwork");
    const auto zvtTvFApiPeripheral = registered<ZvtTvFApiPeripheral>("zvtTvFApiPeripheral");
    const auto zvtTvFApiInputSource = registered<ZvtTvFApiInputSource>("zvtTvFApiInputSource");
    const auto zvtTvFApiSystem = registered<ZvtTvFApiSystem>("zvtTvFApiSystem");
    const auto zvtTvFApiInformation = registered<ZvtTvFApiInformation>("zvtTvFApiInformation");
    const auto zvtTvFApiTv = registered<ZvtTvFApiTv>("zvtTvFApiTv");
    const auto zvtTvFApiManager = registered<ZvtTvFApiManager>("zvtTvFApiManager");

    _a_zvttvfapi_custom_init();
    joinRpcThreadpool();
    return 0;  // the objects are released in the reverse order of their creation
}
