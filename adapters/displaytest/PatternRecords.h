#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/types.h>

#include "chiplayer/disptst.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// The chip layer's form of a record: every field in the same place, reserved bytes zero.

fapi_core::ZvtTvFApiDispTstPattern chipRecord(const ZvtTvFApiDispTstPattern& stPattern);
fapi_core::ZvtTvFApiGOPPatternLine_t chipRecord(const ZvtTvFApiGOPPatternLine_t& stLine);
fapi_core::ZvtTvFApiGOPPatternRect_t chipRecord(const ZvtTvFApiGOPPatternRect_t& stRect);
fapi_core::ZvtTvFApiGOPPatternAttr_t chipRecord(const ZvtTvFApiGOPPatternAttr_t& stAttr);
fapi_core::ZvtTvFApiColor chipRecord(const ZvtTvFApiColor& stColor);

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
