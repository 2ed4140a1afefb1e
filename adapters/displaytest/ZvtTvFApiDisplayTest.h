#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiDisplayTest.h>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiDisplayTest, which has no methods yet: for now, being registered is all it does.
class ZvtTvFApiDisplayTest : public IZvtTvFApiDisplayTest {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
