#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "chiplayer/types.h"

// Module disptst: test patterns, layer switches and burn-in.
//
// Functions run on any thread and side by side, the same one included. They return 0, or a negative status of
// the library's own: then nothing has changed. A flag is 0 or 1. What is called a number of the library's is
// the library's to define; the service passes it unchecked, so the library refuses what it does not know.
//
// Seen from below, the panel shows the video or, in its place, a video test pattern or the burn-in colours;
// then the graphics plane, on which the functions named gop draw; then the OSD.

namespace fapi_core {

// Records arrive by value, in the layout that clients know too. The reserved bytes, which clients do not see,
// are fields so that they are zero: what happens to padding in a copy is the compiler's choice.

/** A colour of the video path. */
struct ZvtTvFApiDispTstColor {
    /** levels of 10 bits, 0 to 1023 */
    uint32_t u32Red;
    uint32_t u32Green;
    uint32_t u32Blue;
    /** opacity over the video: 0 not seen, 255 opaque */
    uint8_t u8Alpha;
    uint8_t au8Reserved[3];
};
static_assert(sizeof(ZvtTvFApiDispTstColor) == 16, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstColor, u32Blue) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstColor, u8Alpha) == 12, "record layout is the library's");

/** What a video test pattern is drawn from. Which fields a pattern uses is the library's to define. */
struct ZvtTvFApiDispTstPattern {
    /** the pattern's own colour: a plain area, the first colour of a ramp, every other cell */
    ZvtTvFApiDispTstColor stForeground;
    /** the pattern's area in pixels; a width or height of 0 reaches to the panel's edge */
    uint32_t u32X;
    uint32_t u32Y;
    uint32_t u32Width;
    uint32_t u32Height;
    /** cells of a board or grid, bars, or steps of a ramp, across and down; 0 is the pattern's own number */
    uint32_t u32Columns;
    uint32_t u32Rows;
    /** width of lines and borders in pixels; 0 is 1 */
    uint16_t u16LineWidth;
    /** which way a ramp or bars go on: 0 from left to right, 1 from top to bottom */
    uint8_t u8Vertical;
    /** 1: foreground and background change places */
    uint8_t u8Invert;
    /** what is around or between the foreground: the last colour of a ramp, the other cells */
    ZvtTvFApiDispTstColor stBackground;
    /** grid lines, and the border of a window */
    ZvtTvFApiDispTstColor stLine;
    /** how long the pattern stays, in milliseconds; 0 is until another one is asked for */
    uint32_t u32Duration;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiDispTstPattern>, "no padding");
static_assert(sizeof(ZvtTvFApiDispTstPattern) == 80, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u32X) == 16, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u32Columns) == 32, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u16LineWidth) == 40, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u8Vertical) == 42, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u8Invert) == 43, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, stBackground) == 44, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, stLine) == 60, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiDispTstPattern, u32Duration) == 76, "record layout is the library's");

/** A line on the graphics plane. Colours of the graphics plane are 0xAARRGGBB, 0xFF the opaque alpha. */
struct ZvtTvFApiGOPPatternLine_t {
    /** first and last pixel, both drawn; what lies beyond the plane is not */
    uint32_t u32StartX;
    uint32_t u32StartY;
    uint32_t u32EndX;
    uint32_t u32EndY;
    uint32_t u32Color;
};
static_assert(sizeof(ZvtTvFApiGOPPatternLine_t) == 20, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternLine_t, u32Color) == 16, "record layout is the library's");

/** A rectangle on the graphics plane. */
struct ZvtTvFApiGOPPatternRect_t {
    /** in pixels, the border included; what lies beyond the plane is not drawn */
    uint32_t u32X;
    uint32_t u32Y;
    uint32_t u32Width;
    uint32_t u32Height;
    /** 0xAARRGGBB */
    uint32_t u32FillColor;
    /** 0xAARRGGBB */
    uint32_t u32BorderColor;
    /** 0 leaves what is inside the border as it is */
    uint8_t u8Fill;
    /** in pixels, inwards; 0 is none */
    uint8_t u8BorderWidth;
    /** radius of the corners in pixels; 0 is square */
    uint8_t u8CornerRadius;
    /** 0 replaces the plane's pixels, 1 blends into them by the colours' alpha */
    uint8_t u8Blend;
};
static_assert(sizeof(ZvtTvFApiGOPPatternRect_t) == 28, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u32FillColor) == 16, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u32BorderColor) == 20, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u8Fill) == 24, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u8BorderWidth) == 25, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u8CornerRadius) == 26, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternRect_t, u8Blend) == 27, "record layout is the library's");

/** How the graphics plane is shown and drawn on. */
struct ZvtTvFApiGOPPatternAttr_t {
    /** opacity of the whole plane: 0 not seen, 255 as it was drawn */
    uint8_t u8Alpha;
    uint8_t u8Reserved;
    /** where on the panel the plane is stretched to, in pixels; a width or height of 0 reaches to its edge */
    uint16_t u16X;
    uint16_t u16Y;
    uint16_t u16Width;
    uint16_t u16Height;
    /** width of the lines drawn from now on, in pixels; 0 is 1 */
    uint16_t u16LineWidth;
    /** 0xAARRGGBB, seen through what is transparent on the plane */
    uint32_t u32BackColor;
};
static_assert(std::has_unique_object_representations_v<ZvtTvFApiGOPPatternAttr_t>, "no padding");
static_assert(sizeof(ZvtTvFApiGOPPatternAttr_t) == 16, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternAttr_t, u16X) == 2, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternAttr_t, u16Height) == 8, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternAttr_t, u16LineWidth) == 10, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiGOPPatternAttr_t, u32BackColor) == 12, "record layout is the library's");

/** A burn-in colour: levels of 10 bits, 0 to 1023. */
struct ZvtTvFApiColor {
    uint16_t u16Red;
    uint16_t u16Green;
    uint16_t u16Blue;
};
static_assert(sizeof(ZvtTvFApiColor) == 6, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiColor, u16Green) == 2, "record layout is the library's");
static_assert(offsetof(ZvtTvFApiColor, u16Blue) == 4, "record layout is the library's");

}  // namespace fapi_core

/** The colours of a burn-in and their pace. */
struct _ZvtFApiDisptstBurnModeParam {
    /** u8ColorCount colours, shown in turn; the service's, for the call only. Never null, not even for none.
     */
    fapi_core::ZvtTvFApiColor* pColorTable;
    /** 0 is possible, with nothing in the table: the library refuses it or takes colours of its own */
    uint8_t u8ColorCount;
    /** how long each colour is shown, in seconds; 0 is the library's own pace */
    uint8_t u8Interval;
};
static_assert(offsetof(_ZvtFApiDisptstBurnModeParam, u8ColorCount) == sizeof(void*),
              "layout is the library's");
static_assert(offsetof(_ZvtFApiDisptstBurnModeParam, u8Interval) == sizeof(void*) + 1,
              "layout is the library's");

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_disptst_init();
int32_t a_zvttvfapi_disptst_deinit();
int32_t a_zvttvfapi_disptst_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_disptst_unreg_callback();

/** Starts or ends the burn-in: the panel goes through plain colours of the library's own, without end. */
int32_t a_zvttvfapi_disptst_set_burning_mode(unsigned char u8Enable);

/**
 * Shows the video test pattern of the library's number, drawn from the record, in place of the video. Number
 * 0 shows the video again, whatever the record.
 */
int32_t a_zvttvfapi_disptst_gen_test_pattern(unsigned int u32Pattern,
                                             fapi_core::ZvtTvFApiDispTstPattern stPattern);

/**
 * Draws a BMP file on the graphics plane, its upper left pixel at this place of the plane. The path is
 * NUL-terminated and lent for the call.
 */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(unsigned char const* pu8Path, unsigned int u32X,
                                                        unsigned int u32Y);

/** Puts an empty, wholly transparent graphics plane of this size in pixels up and shows it; 0 is the panel's.
 */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_on(unsigned int u32Width, unsigned int u32Height);

/** Takes the graphics plane away, with what is drawn on it. */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_off();

/** Shows the graphics plane again, as it was drawn. */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_show();

/** Hides the graphics plane; what is drawn on it stays, and it can be drawn on. */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_hide();

/** Shows or hides the OSD layer of the library's number. */
int32_t a_zvttvfapi_disptst_set_osd_layer_on_off(unsigned int u32Layer, unsigned char u8On);

/** Switches picture-quality processing on or off as a whole; its settings stay. */
int32_t a_zvttvfapi_disptst_set_pq_on_off(unsigned char u8On);

/** Draws a line on the graphics plane. */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(fapi_core::ZvtTvFApiGOPPatternLine_t stLine);

/** Draws a rectangle on the graphics plane. */
int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(fapi_core::ZvtTvFApiGOPPatternRect_t stRect);

/** Sets how the graphics plane is shown and drawn on. */
int32_t a_zvttvfapi_disptst_gop_pattern_set_attr(fapi_core::ZvtTvFApiGOPPatternAttr_t stAttr);

/**
 * Starts the burn-in with the given colours, or ends it (the record is there then too). Record and table are
 * freed when the call returns: the library copies what it goes on using.
 */
int32_t a_zvttvfapi_disptst_set_burning_mode_adv(unsigned char u8Enable,
                                                 _ZvtFApiDisptstBurnModeParam* pstParam);
