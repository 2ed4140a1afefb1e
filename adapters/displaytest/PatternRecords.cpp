#include "adapters/displaytest/PatternRecords.h"

#include <cstddef>

#include "service/frame/Twin.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

namespace {

// The chip layer's header pins where each field of its form lies; these pin the clients' form to it.
FAPI_TWIN_SIZE(ZvtTvFApiDispTstColor);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstColor, u32Red);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstColor, u32Green);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstColor, u32Blue);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstColor, u8Alpha);

fapi_core::ZvtTvFApiDispTstColor chipRecord(const ZvtTvFApiDispTstColor& stColor) {
    return {stColor.u32Red, stColor.u32Green, stColor.u32Blue, stColor.u8Alpha, {}};
}

}  // namespace

FAPI_TWIN_SIZE(ZvtTvFApiDispTstPattern);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, stForeground);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32X);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Y);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Width);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Height);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Columns);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Rows);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u16LineWidth);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u8Vertical);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u8Invert);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, stBackground);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, stLine);
FAPI_TWIN_FIELD(ZvtTvFApiDispTstPattern, u32Duration);

fapi_core::ZvtTvFApiDispTstPattern chipRecord(const ZvtTvFApiDispTstPattern& stPattern) {
    return {
            chipRecord(stPattern.stForeground),
            stPattern.u32X,
            stPattern.u32Y,
            stPattern.u32Width,
            stPattern.u32Height,
            stPattern.u32Columns,
            stPattern.u32Rows,
            stPattern.u16LineWidth,
            stPattern.u8Vertical,
            stPattern.u8Invert,
            chipRecord(stPattern.stBackground),
            chipRecord(stPattern.stLine),
            stPattern.u32Duration,
    };
}

FAPI_TWIN_SIZE(ZvtTvFApiGOPPatternLine_t);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternLine_t, u32StartX);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternLine_t, u32StartY);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternLine_t, u32EndX);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternLine_t, u32EndY);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternLine_t, u32Color);

fapi_core::ZvtTvFApiGOPPatternLine_t chipRecord(const ZvtTvFApiGOPPatternLine_t& stLine) {
    return {stLine.u32StartX, stLine.u32StartY, stLine.u32EndX, stLine.u32EndY, stLine.u32Color};
}

FAPI_TWIN_SIZE(ZvtTvFApiGOPPatternRect_t);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32X);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32Y);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32Width);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32Height);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32FillColor);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u32BorderColor);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u8Fill);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u8BorderWidth);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u8CornerRadius);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternRect_t, u8Blend);

fapi_core::ZvtTvFApiGOPPatternRect_t chipRecord(const ZvtTvFApiGOPPatternRect_t& stRect) {
    return {
            stRect.u32X,           stRect.u32Y,           stRect.u32Width, stRect.u32Height,
            stRect.u32FillColor,   stRect.u32BorderColor, stRect.u8Fill,   stRect.u8BorderWidth,
            stRect.u8CornerRadius, stRect.u8Blend,
    };
}

FAPI_TWIN_SIZE(ZvtTvFApiGOPPatternAttr_t);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u8Alpha);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u16X);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u16Y);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u16Width);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u16Height);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u16LineWidth);
FAPI_TWIN_FIELD(ZvtTvFApiGOPPatternAttr_t, u32BackColor);

fapi_core::ZvtTvFApiGOPPatternAttr_t chipRecord(const ZvtTvFApiGOPPatternAttr_t& stAttr) {
    return {
            stAttr.u8Alpha,      0,
            stAttr.u16X,         stAttr.u16Y,
            stAttr.u16Width,     stAttr.u16Height,
            stAttr.u16LineWidth, stAttr.u32BackColor,
    };
}

FAPI_TWIN_SIZE(ZvtTvFApiColor);
FAPI_TWIN_FIELD(ZvtTvFApiColor, u16Red);
FAPI_TWIN_FIELD(ZvtTvFApiColor, u16Green);
FAPI_TWIN_FIELD(ZvtTvFApiColor, u16Blue);

fapi_core::ZvtTvFApiColor chipRecord(const ZvtTvFApiColor& stColor) {
    return {stColor.u16Red, stColor.u16Green, stColor.u16Blue};
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
