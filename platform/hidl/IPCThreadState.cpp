#include <hwbinder/IPCThreadState.h>

#include "platform/binding/Backend.h"

namespace android::hardware {

IPCThreadState* IPCThreadState::self() {
    static IPCThreadState state;  // what there is to know, the transport keeps
    return &state;
}

pid_t IPCThreadState::getCallingPid() const {
    return Backend::self().caller().pid;
}

uid_t IPCThreadState::getCallingUid() const {
    return Backend::self().caller().uid;
}

}  // namespace android::hardware
