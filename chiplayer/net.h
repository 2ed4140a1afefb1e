#pragma once

#include "chiplayer/types.h"

// Module net: network interfaces and their addresses.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_net_init();
int32_t a_zvttvfapi_net_deinit();
int32_t a_zvttvfapi_net_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_net_unreg_callback();

/**
 * Sets the television's MAC address: six groups of two hexadecimal digits of either case, all separated by
 * ':' or all by '-'. A text of another form, and a group address (lowest bit of the first group set), is
 * refused with a status of the library's own, and the address stays.
 *
 * The type notwithstanding, the pointer is the address of a NUL-terminated text of any length, the client's
 * own: without alignment, lent for the call, and not to be written to. Read it as characters.
 */
int32_t a_zvttvfapi_net_set_mac(unsigned int* pu32Mac);

/**
 * Brings a network interface up (true) or down. Returns 0 as well when it is so already; an unknown name is
 * refused with a status of the library's own. The name is NUL-terminated and lent for the call.
 */
int32_t a_zvttvfapi_net_set_interface_updown(char const* pcIfName, bool bUp);
