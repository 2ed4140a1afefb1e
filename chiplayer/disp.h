#pragma once

#include "chiplayer/types.h"

// Module disp: picture quality, panel, timing and screen capture.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_disp_init();
int32_t a_zvttvfapi_disp_deinit();
int32_t a_zvttvfapi_disp_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_disp_unreg_callback();
