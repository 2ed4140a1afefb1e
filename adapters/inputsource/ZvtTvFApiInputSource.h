#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInputSource.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiInputSource, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiInputSource : public IZvtTvFApiInputSource {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
