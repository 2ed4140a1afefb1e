#include "platform/binding/Backend.h"

#include <atomic>
#include <memory>

#include "platform/binding/UniqueFd.h"
#include "platform/socket/SocketBackend.h"

namespace android::hardware {

namespace {

std::atomic<Backend*> gBackend{nullptr};

}  // namespace

Backend& Backend::self() {
    // What the parent has is not the child's: its threads are not there, and its locks may be taken for ever.
    static const bool watchesForks = [] {
        atForkInChild([] { gBackend = nullptr; });
        return true;
    }();
    (void)watchesForks;
    Backend* known = gBackend;
    if (known == nullptr) {
        std::unique_ptr<Backend> made = makeSocketBackend();
        if (gBackend.compare_exchange_strong(known, made.get())) {
            known = made.release();
        }
    }
    return *known;
}

}  // namespace android::hardware
