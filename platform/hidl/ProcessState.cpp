#include <hwbinder/ProcessState.h>

#include "platform/binding/Backend.h"

namespace android::hardware {

sp<ProcessState> ProcessState::self() {
    // Never released: generated code may ask for it while the process ends.
    static ProcessState* const state = [] {
        auto* made = new ProcessState;
        made->incStrong(made);
        return made;
    }();
    return state;
}

void ProcessState::startThreadPool() {
    Backend::self().startThreadPool();
}

}  // namespace android::hardware
