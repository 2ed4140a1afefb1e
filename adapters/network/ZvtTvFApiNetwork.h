#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiNetwork.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiNetwork, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiNetwork : public IZvtTvFApiNetwork {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
