#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiAudio.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiAudio, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiAudio : public IZvtTvFApiAudio {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
