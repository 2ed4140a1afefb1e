// Modules that do nothing: the manager under measurement raises its events itself.

#include "chiplayer/chiplayer.h"

#define MODULE(name)                                                              \
    int32_t a_zvttvfapi_##name##_init() {                                         \
        return 0;                                                                 \
    }                                                                             \
    int32_t a_zvttvfapi_##name##_deinit() {                                       \
        return 0;                                                                 \
    }                                                                             \
    int32_t a_zvttvfapi_##name##_reg_callback(fapi_core::ZvtTvFApiEventHandler) { \
        return 0;                                                                 \
    }                                                                             \
    int32_t a_zvttvfapi_##name##_unreg_callback() {                               \
        return 0;                                                                 \
    }

MODULE(sys)
MODULE(aud)
MODULE(disp)
MODULE(disptst)
MODULE(info)
MODULE(inpsrc)
MODULE(net)
MODULE(prphrl)
