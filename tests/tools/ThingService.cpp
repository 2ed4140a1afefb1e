#include <hidl/HidlTransportSupport.h>

#include "tests/tools/Information.h"
#include "tests/tools/Manager.h"
#include "tests/tools/Thing.h"

/** Serves a Thing, an event manager and parameters under each instance name that it is given, until it is
 * killed. */
int main(int argc, char** argv) {
    android::hardware::configureRpcThreadpool(8, true);
    const android::sp<test::fapictl::V1_0::Thing> thing = new test::fapictl::V1_0::Thing;
    const android::sp<fapictl::Manager> manager = new fapictl::Manager;
    const android::sp<fapictl::Information> information = new fapictl::Information;
    for (int i = 1; i < argc; ++i) {
        if (information->registerAsService(argv[i]) != android::OK ||
            manager->registerAsService(argv[i]) != android::OK ||
            thing->registerAsService(argv[i]) != android::OK) {
            return 1;
        }
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}
