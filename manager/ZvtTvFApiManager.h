#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <cstdint>

#include "chiplayer/types.h"
#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::sp;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

/// Owns the lifecycle of the eight chip-layer modules: made once at start-up, it gives each module its event
/// handler and then initialises it; destroyed, it undoes both. A module that fails stops neither: the step
/// that failed is logged, and clients meet the library's own results.
class ZvtTvFApiManager : public FapiInterface<IZvtTvFApiManager> {
  public:
    using ChipEventObject = fapi_core::ZvtTvFApiEventCommonObject;

    /// The service's version, as the log's start line shows it.
    static constexpr char kVersion[] = "v1.0.0.13";

    ZvtTvFApiManager();
    ~ZvtTvFApiManager() override;

    /// The constructor's and destructor's steps, public so that a failing library can be met step by step.
    /// Each calls its function of all eight modules, whatever the earlier ones returned. The result is the
    /// bitwise OR of the eight results: 0 exactly when every module succeeded.
    Return<int32_t> initCallback();
    Return<int32_t> initModules();
    Return<int32_t> deinitCallback();
    Return<int32_t> deinitModules();

    // Methods from ::android::hidl::base::V1_0::IBase follow.

    /// The page of state as every interface writes it, with the events and the registered clients: so many of
    /// them, those with the lowest cookies, as fit. Waits for a delivery in progress.
    ///
    /// With the option "trace", all calls from now on in its place, see traceTo(); a refusal is a line of the
    /// page.
    Return<void> debug(const hidl_handle& handle, const hidl_vec<hidl_string>& options) override;

    // Methods from ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager follow.

    /// Registers a client under the next cookie. Null is refused with -2, and -1 is the answer without
    /// memory for it: neither takes a cookie.
    Return<int32_t> a_hidl_a_zvttvfapi_mngr_set_callback(
            const sp<IZvtTvFApiCallbackManager>& callback) override;
    /// Runs the handler that the type's bits choose, on this thread; its result, or -2 if none is chosen, or
    /// -1 without memory for the records.
    Return<int32_t> a_hidl_a_zvttvfapi_mngr_post_event(uint32_t u32EvtType,
                                                       const ZvtTvFApiEventCommonObject& stObj1,
                                                       const ZvtTvFApiEventCommonObject& stObj2,
                                                       const ZvtTvFApiEventCommonObject& stObj3,
                                                       const ZvtTvFApiEventCommonObject& stObj4) override;

    /// The modules' event handlers, called on the library's threads, from the moment when they are
    /// registered: even while the constructor still runs. onTvEvent belongs to no module; posted events alone
    /// reach it. Result: 0 when every client was told or there is none, -1 when at least one could not be
    /// told, or when there was no memory for the event's bytes: then none was.
    static int onAudEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                          const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                          const ChipEventObject& stObj4);
    static int onDispEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                           const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                           const ChipEventObject& stObj4);
    static int onDispTstEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                              const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                              const ChipEventObject& stObj4);
    static int onInfoEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                           const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                           const ChipEventObject& stObj4);
    static int onInpSrcEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                             const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                             const ChipEventObject& stObj4);
    static int onNetEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                          const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                          const ChipEventObject& stObj4);
    static int onPrphrlEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                             const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                             const ChipEventObject& stObj4);
    static int onSysEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                          const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                          const ChipEventObject& stObj4);
    static int onTvEvent(unsigned int u32EvtType, const ChipEventObject& stObj1,
                         const ChipEventObject& stObj2, const ChipEventObject& stObj3,
                         const ChipEventObject& stObj4);

  private:
    // Set by the constructor, read-only after.
    sp<hidl_death_recipient> mDeathRecipient;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
