#pragma once

#include "chiplayer/types.h"

// Module inpsrc: input sources, their timing and calibration.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_inpsrc_init();
int32_t a_zvttvfapi_inpsrc_deinit();
int32_t a_zvttvfapi_inpsrc_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_inpsrc_unreg_callback();
