#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * Records, enumerations and function types that the chip-layer modules share.
 *
 * Lifecycle of a module <m>, the same four functions for each of the eight (sys, aud, disp, disptst, info,
 * inpsrc, net, prphrl), each returning 0 or a status of the library's own:
 *
 *     a_zvttvfapi_<m>_reg_callback(handler)   puts the handler into the module's one slot
 *     a_zvttvfapi_<m>_init()                  readies the module
 *     a_zvttvfapi_<m>_deinit()                puts it back into the state before init
 *     a_zvttvfapi_<m>_unreg_callback()        empties the slot
 *
 * The service calls the first two at start-up, from the main thread; the other two when the manager is
 * destroyed, which in practice is never. The handler is therefore in place before init runs, and a library
 * may call it from then on, during init as well, until unreg_callback returns; after
 * that it must not be called again, so that unreg_callback waits for a call in progress.
 */

namespace fapi_core {

/**
 * One payload record of an event; each event carries four. It crosses the library's boundary by reference, so
 * that both sides must agree on its layout, the standard library's string and vector included.
 */
struct ZvtTvFApiEventCommonObject {
    uint32_t u32Value = 0;
    std::string strValue;
    std::vector<uint8_t> vecValue;
};

#ifdef _LIBCPP_VERSION
// The device's standard library. Under another one, whose strings are larger, library and service are built
// together.
static_assert(offsetof(ZvtTvFApiEventCommonObject, u32Value) == 0, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiEventCommonObject, strValue) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiEventCommonObject, vecValue) == 32, "record layout is the library's");
static_assert(sizeof(ZvtTvFApiEventCommonObject) == 56, "record layout is the library's");
#endif

/**
 * What a module calls when it raises an event of type u32EvtType.
 *
 * Called on any thread of the library, on several at once, and never with a lock held that a function of the
 * library takes: the handler may call the library. It may wait for another event's delivery to end. The
 * records stay the library's; the handler keeps no reference to them.
 *
 * Returns 0 when everyone who listens was told, -1 when somebody could not be told. Throws nothing.
 */
using ZvtTvFApiEventHandler = int (*)(unsigned int u32EvtType, const ZvtTvFApiEventCommonObject& stObj1,
                                      const ZvtTvFApiEventCommonObject& stObj2,
                                      const ZvtTvFApiEventCommonObject& stObj3,
                                      const ZvtTvFApiEventCommonObject& stObj4);

}  // namespace fapi_core
