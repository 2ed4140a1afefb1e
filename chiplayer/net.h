#pragma once

#include "chiplayer/types.h"

// Module net: network interfaces and their addresses.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_net_init();
int32_t a_zvttvfapi_net_deinit();
int32_t a_zvttvfapi_net_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_net_unreg_callback();
