#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "service/frame/Call.h"
#include "service/frame/StatePage.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// What the classes of the service have in common, each for its interface: the guard at the head of a method,
/// the number of calls served, and the page of state. No data in the object.
///
/// Each method counts its call once on each way through it: the guard does so, and a method without one calls
/// countCall().
template <typename Interface>
class FapiInterface : public Interface {
  public:
    /// Writes the page of state to the handle's first descriptor, if it has one; always succeeds. Options:
    /// none. Any number of calls may run side by side; no lock is held while a reader is waited for.
    ::android::hardware::Return<void> debug(
            const ::android::hardware::hidl_handle& handle,
            const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options) override {
        statePage(options).writeTo(handle);
        return ::android::hardware::Void();
    }

  protected:
    /// The readiness guard at the head of a method: asks the chip-layer library once, and never remembers the
    /// answer. A method whose guard says false calls nothing else of the library.
    [[nodiscard]] static bool fapiReady() {
        countCall();
        return chipLayerReady();
    }

    /// A whole method in one statement: the guard, then the call. Returns the function's status, or
    /// FAPI_NOT_READY with the function not called and the results that the arguments point to untouched (so
    /// give them the value that an unready library is to deliver).
    ///
    ///     return forward(a_zvttvfapi_sys_set_emmc_env_var, strVarName, strVarValue);
    template <typename Result, typename... Parameters, typename... Arguments>
    [[nodiscard]] static int32_t forward(Result (*function)(Parameters...), Arguments&&... arguments) {
        static_assert(std::is_same_v<Result, int32_t>, "the function's result is not a status");
        return fapiReady() ? callChip(function, std::forward<Arguments>(arguments)...) : FAPI_NOT_READY;
    }

    static void countCall() { sCalls.fetch_add(1, std::memory_order_relaxed); }
    /// Of this interface's own methods, since the process started.
    static uint64_t callsServed() { return sCalls.load(std::memory_order_relaxed); }

    /// The lines that every interface's page has. Of the library, only its readiness is asked.
    static StatePage statePage(const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options,
                               const char* known = "there are none; this is all that there is to know") {
        StatePage page(Interface::descriptor);
        if (options.size() > 0) {
            page.line("options: %s", known);
        }
        page.line("chip-layer library: %s", chipLayerReady() ? "ready" : "not ready");
        page.line("calls served: %" PRIu64, callsServed());
        return page;
    }

  private:
    // Orders nothing.
    static inline std::atomic<uint64_t> sCalls{0};
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
