#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiPeripheral.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiPeripheral, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiPeripheral : public IZvtTvFApiPeripheral {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
