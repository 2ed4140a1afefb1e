#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "chiplayer/common.h"
#include "service/frame/Convert.h"
#include "service/frame/Status.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// The readiness guard at the head of a method: asks the chip-layer library once, and never remembers the
/// answer. A method whose guard says false calls nothing else of the library.
inline bool fapiReady() {
    return a_zvttvfapi_common_get_fapi_status() != FAPI_NOT_READY;
}

/// Calls a chip-layer function, each argument converted to the function's own parameter type by toChip(), and
/// returns its result as it is. No guard: for a method that has done something between the guard and the
/// call, or that has none.
///
///     const int32_t s32Ret = callChip(a_zvttvfapi_aud_adv_set_volume, cell(s32First), cell(s32Second));
template <typename Result, typename... Parameters, typename... Arguments>
Result callChip(Result (*function)(Parameters...), Arguments&&... arguments) {
    static_assert(sizeof...(Parameters) == sizeof...(Arguments), "too many or too few arguments");
    return function(toChip<Parameters>(std::forward<Arguments>(arguments))...);
}

/// A whole method in one statement: the guard, then the call. Returns the function's status, or
/// FAPI_NOT_READY with the function not called and the results that the arguments point to untouched (so give
/// them the value that an unready library is to deliver).
///
///     return forward(a_zvttvfapi_sys_set_emmc_env_var, strVarName, strVarValue);
template <typename Result, typename... Parameters, typename... Arguments>
int32_t forward(Result (*function)(Parameters...), Arguments&&... arguments) {
    static_assert(std::is_same_v<Result, int32_t>, "the function's result is not a status");
    return fapiReady() ? callChip(function, std::forward<Arguments>(arguments)...) : FAPI_NOT_READY;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
