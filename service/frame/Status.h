#pragma once

#include <cstdint>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// Status codes that the service itself reports. Every other value that a client sees is the chip-layer
// library's own result, passed on unchanged.

/// Success.
inline constexpr int32_t FAPI_OK = 0;
/// The service could not do it: a record that cannot be converted, a kind of request that is not supported or
/// is switched off, a result that could not be turned into its HIDL form or exceeds its buffer, among others.
inline constexpr int32_t FAPI_FAIL = -1;
/// An argument from the client is unusable: nothing to write, an unknown kind. The library was not called.
inline constexpr int32_t FAPI_INVALID_ARGUMENT = -2;
/// A scratch buffer could not be allocated. The library was not called.
inline constexpr int32_t FAPI_NO_MEMORY = -4;
/// The chip-layer library is not ready. Nothing but its readiness was asked.
inline constexpr int32_t FAPI_NOT_READY = -5;

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
