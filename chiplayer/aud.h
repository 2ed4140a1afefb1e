#pragma once

#include "chiplayer/types.h"

// Module aud: sound effects, parameters and volume tables.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_aud_init();
int32_t a_zvttvfapi_aud_deinit();
int32_t a_zvttvfapi_aud_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_aud_unreg_callback();
