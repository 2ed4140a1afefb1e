#pragma once

#include "chiplayer/types.h"

// Module prphrl: UART, buses, GPIO, PWM, keys, HDMI, CEC and infrared.

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_prphrl_init();
int32_t a_zvttvfapi_prphrl_deinit();
int32_t a_zvttvfapi_prphrl_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_prphrl_unreg_callback();
