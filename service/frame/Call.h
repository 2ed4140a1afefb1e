#pragma once

#include <cstdint>
#include <utility>

#include "chiplayer/common.h"
#include "service/frame/Convert.h"
#include "service/frame/Status.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Asks the chip-layer library whether it is ready, which it is unless it says FAPI_NOT_READY.
[[nodiscard]] inline bool chipLayerReady() {
    return a_zvttvfapi_common_get_fapi_status() != FAPI_NOT_READY;
}

/// Calls a chip-layer function, each argument converted to the function's own parameter type by toChip(), and
/// returns its result as it is. No guard: for a method that has done something between the guard and the
/// call, or that has none.
///
///     const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_volume, cell(s32First), cell(s32Second));
template <typename Result, typename... Parameters, typename... Arguments>
[[nodiscard]] Result callChip(Result (*function)(Parameters...), Arguments&&... arguments) {
    static_assert(sizeof...(Parameters) == sizeof...(Arguments), "too many or too few arguments");
    return function(toChip<Parameters>(std::forward<Arguments>(arguments))...);
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
