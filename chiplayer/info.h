#pragma once

#include "chiplayer/types.h"

// Module info: configuration parameters and what the chip offers.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_info_init();
int32_t a_zvttvfapi_info_deinit();
int32_t a_zvttvfapi_info_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_info_unreg_callback();

/**
 * Reads a configuration parameter into pu8Value, a buffer of u32Size bytes.
 *
 * The two texts name the parameter; what they denote is the library's to define, the same here and in
 * a_zvttvfapi_info_set_ini_para. Both are NUL-terminated, may be empty, and are lent for the call.
 *
 * Writes at most u32Size bytes, the terminating NUL among them; the service passes 2048 bytes, zeroed.
 * Returns 0, or a status of the library's own; a text that it leaves in the buffer then still reaches the
 * client.
 */
int32_t a_zvttvfapi_info_get_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char* pu8Value, unsigned int u32Size);

/** Writes a configuration parameter, named as above. Returns 0 only when the value will be read back. */
int32_t a_zvttvfapi_info_set_ini_para(unsigned char const* pu8Arg1, unsigned char const* pu8Arg2,
                                      unsigned char const* pu8Value);

/**
 * Tells whether the IP of the given number, in the library's numbering, is enabled: *pu8Enable becomes 1 or
 * 0. Returns 0, or a status of the library's own, in which case *pu8Enable may be left as it was.
 */
int32_t a_zvttvfapi_info_get_ip_enable_status(unsigned int u32IpId, unsigned char* pu8Enable);
