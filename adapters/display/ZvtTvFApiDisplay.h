#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiDisplay.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiDisplay, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiDisplay : public IZvtTvFApiDisplay {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
