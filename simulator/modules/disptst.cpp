// Module disptst: what is shown in place of the video and over it.

#include <fcntl.h>

#include <algorithm>

#include "simulator/board/ChipCall.h"
#include "simulator/board/DriveOrders.h"
#include "simulator/board/Module.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/panel/BmpFile.h"
#include "simulator/panel/Panel.h"
#include "simulator/storage/Sandbox.h"

using namespace simulator;

namespace {

constexpr Light kOwnColours[] = {{kMaxLevel, kMaxLevel, kMaxLevel},
                                 {kMaxLevel, 0, 0},
                                 {0, kMaxLevel, 0},
                                 {0, 0, kMaxLevel},
                                 {0, 0, 0}};
constexpr std::chrono::seconds kOwnPace{2};

std::string describe() {
    std::string text = "clock " + std::string(PanelClock::stopped() ? "stopped at " : "") +
                       std::to_string(PanelClock::now().time_since_epoch().count()) + " ms\n";
    panel().lookAtLayers([&](const Layers& layers) {
        text += "test pattern " + std::to_string(static_cast<unsigned>(layers.pattern.kind())) + "\n";
        text += "burn-in " +
                (layers.burnIn ? std::to_string(layers.burnIn->colours.size()) + " colours, " +
                                         std::to_string(layers.burnIn->interval.count()) + " s each"
                               : "off") +
                "\n";
        text += "graphics plane " +
                (layers.plane ? std::to_string(layers.plane->surface.width()) + "x" +
                                        std::to_string(layers.plane->surface.height()) +
                                        (layers.plane->shown ? "" : ", hidden")
                              : "off") +
                "\n";
        for (unsigned layer = 0; layer < kOsdLayers; ++layer) {
            text += "OSD layer " + std::to_string(layer) + (layers.osd[layer] ? " on\n" : " off\n");
        }
    });
    return text;
}

Module& self() {
    static Module& sModule = *new Module("disptst", describe);
    return sModule;
}

/** Calls body with the graphics plane, or returns kAbsent when it is off. */
template <typename Body>
int32_t withPlane(Body body) {
    return guarded([&] {
        return panel().withLayers(
                [&](Layers& layers) { return layers.plane == nullptr ? kAbsent : body(*layers.plane); });
    });
}

int32_t burn(std::vector<Light> colours, std::chrono::seconds interval) {
    return panel().withLayers([&](Layers& layers) {
        layers.burnIn = BurnIn{std::move(colours), interval, PanelClock::now()};
        return kOk;
    });
}

int32_t endBurning() {
    return panel().withLayers([](Layers& layers) {
        layers.burnIn.reset();
        return kOk;
    });
}

/** One jump leads no further than a day: nothing that a client sets lasts longer than 50. */
constexpr uint64_t kLongestJump = 24 * 60 * 60 * 1000;

std::string obeyClock(const std::vector<std::string>& words) {
    const std::string word = words.empty() ? "" : words[0];
    uint64_t time = 0;
    if (word == "forward" && words.size() == 2 && readDriveNumber(words[1], kLongestJump, &time)) {
        PanelClock::forward(std::chrono::milliseconds(time));
    } else if (word == "stop" && words.size() == 1) {
        PanelClock::stop();
    } else if (word == "go" && words.size() == 1) {
        PanelClock::go();
    } else {
        return "neither \"stop\" nor \"go\" nor \"forward\" and at most a day's milliseconds";
    }
    return "";
}

int32_t showPlane(bool shown) {
    return withPlane([=](Plane& plane) {
        plane.shown = shown;
        return kOk;
    });
}

}  // namespace

int32_t a_zvttvfapi_disptst_init() {
    return guarded([] {
        const int32_t result = self().init();
        if (result == kOk) {
            static const bool sAdded = [] {
                addDriveOrders({{"clock", "clock stop, clock go, or clock forward MILLISECONDS", obeyClock}});
                return true;
            }();
            (void)sAdded;
        }
        return result;
    });
}
int32_t a_zvttvfapi_disptst_deinit() {
    return guarded([] {
        const int32_t result = self().deinit();
        return result != kOk ? result : panel().withLayers([](Layers& layers) {
            Layers none;
            none.window = layers.window;
            none.freeRun = layers.freeRun;
            layers = std::move(none);
            return kOk;
        });
    });
}
int32_t a_zvttvfapi_disptst_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}
int32_t a_zvttvfapi_disptst_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_disptst_set_burning_mode(unsigned char u8Enable) {
    return guarded([=] {
        return u8Enable == 0 ? endBurning()
                             : burn({std::begin(kOwnColours), std::end(kOwnColours)}, kOwnPace);
    });
}

int32_t a_zvttvfapi_disptst_gen_test_pattern(unsigned int u32Pattern,
                                             fapi_core::ZvtTvFApiDispTstPattern stPattern) {
    return guarded([&] {
        return panel().withLayers([&](Layers& layers) {
            const int32_t result = layers.pattern.set(u32Pattern, stPattern);
            if (result == kOk) {
                layers.patternEnd.reset();
                if (stPattern.u32Duration != 0) {
                    layers.patternEnd = PanelClock::now() + std::chrono::milliseconds(stPattern.u32Duration);
                }
            }
            return result;
        });
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(unsigned char const* pu8Path, unsigned int u32X,
                                                        unsigned int u32Y) {
    return withPlane([=](Plane& plane) {
        const Opened opened = boardFiles().openFile(text(pu8Path), O_RDONLY);
        return opened.status == kOk ? drawBmp(opened.file.get(), u32X, u32Y, plane.surface) : opened.status;
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_on(unsigned int u32Width, unsigned int u32Height) {
    return guarded([=]() -> int32_t {
        if (u32Width > kPictureWidth || u32Height > kPictureHeight) {
            return kOutOfRange;
        }
        const int width = u32Width == 0 ? kPictureWidth : static_cast<int>(u32Width);
        const int height = u32Height == 0 ? kPictureHeight : static_cast<int>(u32Height);
        auto plane = std::make_unique<Plane>(Plane{Surface(width, height)});
        return panel().withLayers([&](Layers& layers) {
            layers.plane = std::move(plane);
            return kOk;
        });
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_off() {
    return guarded([] {
        return panel().withLayers([](Layers& layers) {
            layers.plane.reset();
            return kOk;
        });
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_show() {
    return showPlane(true);
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_hide() {
    return showPlane(false);
}

int32_t a_zvttvfapi_disptst_set_osd_layer_on_off(unsigned int u32Layer, unsigned char u8On) {
    return guarded([=]() -> int32_t {
        if (u32Layer >= kOsdLayers) {
            return kOutOfRange;
        }
        return panel().withLayers([=](Layers& layers) {
            layers.osd[u32Layer] = u8On != 0;
            return kOk;
        });
    });
}

int32_t a_zvttvfapi_disptst_set_pq_on_off(unsigned char u8On) {
    return guarded([=] {
        return panel().withLayers([=](Layers& layers) {
            layers.pqOn = u8On != 0;
            return kOk;
        });
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line(fapi_core::ZvtTvFApiGOPPatternLine_t stLine) {
    return withPlane([&](Plane& plane) {
        plane.surface.line(stLine.u32StartX, stLine.u32StartY, stLine.u32EndX, stLine.u32EndY,
                           plane.lineWidth, stLine.u32Color);
        return kOk;
    });
}

int32_t a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(fapi_core::ZvtTvFApiGOPPatternRect_t stRect) {
    if (stRect.u8Fill > 1 || stRect.u8Blend > 1) {
        return kOutOfRange;
    }
    return withPlane([&](Plane& plane) {
        const int64_t x = stRect.u32X;
        const int64_t y = stRect.u32Y;
        plane.surface.draw({{x, y, x + stRect.u32Width, y + stRect.u32Height},
                            stRect.u8Fill == 1,
                            stRect.u32FillColor,
                            stRect.u8BorderWidth,
                            stRect.u32BorderColor,
                            stRect.u8CornerRadius,
                            stRect.u8Blend == 1});
        return kOk;
    });
}

int32_t a_zvttvfapi_disptst_gop_pattern_set_attr(fapi_core::ZvtTvFApiGOPPatternAttr_t stAttr) {
    const Box place = {stAttr.u16X, stAttr.u16Y,
                       stAttr.u16Width == 0 ? kPictureWidth : stAttr.u16X + stAttr.u16Width,
                       stAttr.u16Height == 0 ? kPictureHeight : stAttr.u16Y + stAttr.u16Height};
    return withPlane([&](Plane& plane) {
        plane.alpha = stAttr.u8Alpha;
        plane.place = place;
        plane.lineWidth = std::max<uint16_t>(stAttr.u16LineWidth, 1);
        plane.back = stAttr.u32BackColor;
        return kOk;
    });
}

int32_t a_zvttvfapi_disptst_set_burning_mode_adv(unsigned char u8Enable,
                                                 _ZvtFApiDisptstBurnModeParam* pstParam) {
    return guarded([=]() -> int32_t {
        if (u8Enable == 0) {
            return endBurning();
        }
        if (pstParam == nullptr || pstParam->pColorTable == nullptr || pstParam->u8ColorCount == 0) {
            return kOutOfRange;
        }
        std::vector<Light> colours;
        for (unsigned i = 0; i < pstParam->u8ColorCount; ++i) {
            const fapi_core::ZvtTvFApiColor& colour = pstParam->pColorTable[i];
            if (std::max({colour.u16Red, colour.u16Green, colour.u16Blue}) > kMaxLevel) {
                return kOutOfRange;
            }
            colours.push_back({static_cast<float>(colour.u16Red), static_cast<float>(colour.u16Green),
                               static_cast<float>(colour.u16Blue)});
        }
        const std::chrono::seconds asked{pstParam->u8Interval};
        return burn(std::move(colours), asked.count() == 0 ? kOwnPace : asked);
    });
}
