#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiTv.h>

#include "service/frame/FapiInterface.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Implements IZvtTvFApiTv, an interface without methods of its own: being registered is all it does.
class ZvtTvFApiTv : public FapiInterface<IZvtTvFApiTv> {};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
