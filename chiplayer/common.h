#pragma once

#include <cstdint>

/**
 * Tells whether the library can take calls: -5 while it is not ready, anything else when it is.
 *
 * Asked at the head of nearly every call that a client makes and never remembered, so it must cost next to
 * nothing. It may turn from not ready to ready, and back, at any time.
 */
int32_t a_zvttvfapi_common_get_fapi_status();

/**
 * Writes the library's version as a NUL-terminated text into pcVersion, a buffer of u32Size bytes, terminator
 * included; the service passes 128 bytes, zeroed. Returns 0 or a status of the library's own.
 */
int32_t a_zvttvfapi_common_get_fapi_version(char* pcVersion, unsigned int u32Size);
