#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiSystem.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiSystem, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiSystem : public IZvtTvFApiSystem {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
