#pragma once

#include "chiplayer/types.h"

// Module sys: files, storage, keys and environment, board control.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_sys_init();
int32_t a_zvttvfapi_sys_deinit();
int32_t a_zvttvfapi_sys_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_sys_unreg_callback();
