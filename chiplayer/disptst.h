#pragma once

#include "chiplayer/types.h"

// Module disptst: test patterns, layer switches and burn-in.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_disptst_init();
int32_t a_zvttvfapi_disptst_deinit();
int32_t a_zvttvfapi_disptst_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_disptst_unreg_callback();
