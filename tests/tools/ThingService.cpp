#include <hidl/HidlTransportSupport.h>

#include "tests/tools/Manager.h"
#include "tests/tools/Thing.h"

/** Serves a Thing and an event manager under each instance name that it is given, until it is killed. */
int main(int argc, char** argv) {
    android::hardware::configureRpcThreadpool(8, true);
    const android::sp<test::fapictl::V1_0::Thing> thing = new test::fapictl::V1_0::Thing;
    const android::sp<fapictl::Manager> manager = new fapictl::Manager;
    for (int i = 1; i < argc; ++i) {
        if (manager->registerAsService(argv[i]) != android::OK ||
            thing->registerAsService(argv[i]) != android::OK) {
            return 1;
        }
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}
