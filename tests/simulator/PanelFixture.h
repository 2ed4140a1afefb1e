#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chiplayer/disp.h"
#include "chiplayer/disptst.h"
#include "tests/simulator/Picture.h"
#include "tests/simulator/SysFixture.h"

/** A panel as it leaves the factory, with nothing on it. */
class PanelFixture : public SysFixture {
  protected:
    using Pattern = fapi_core::ZvtTvFApiDispTstPattern;

    void SetUp() override {
        SysFixture::SetUp();
        ASSERT_EQ(a_zvttvfapi_disp_nty_drv_reload_param(), 0);
        ASSERT_EQ(a_zvttvfapi_disp_update_pq_ini_files(), 0);
        // Takes the layers off.
        a_zvttvfapi_disptst_init();
        ASSERT_EQ(a_zvttvfapi_disptst_deinit(), 0);
        a_zvttvfapi_disp_init();
        ASSERT_EQ(a_zvttvfapi_disp_deinit(), 0);
    }

    static Picture capture(int option = 0) {
        EXPECT_EQ(a_zvttvfapi_disp_capture_screen_to_usb(bytes("shot.png"), option), 0);
        return Picture(state() / "files/usb/shot.png");
    }

    /** A record of opaque colours: foreground, background, line. */
    static Pattern pattern(uint32_t fore, uint32_t back = 0, uint32_t line = 0) {
        const auto colour = [](uint32_t rgb) {
            const auto level = [](uint32_t byte) { return (byte * 1023 + 127) / 255; };
            return fapi_core::ZvtTvFApiDispTstColor{
                    level(rgb >> 16), level(rgb >> 8 & 0xFF), level(rgb & 0xFF), 255, {}};
        };
        Pattern made{};
        made.stForeground = colour(fore);
        made.stBackground = colour(back);
        made.stLine = colour(line);
        return made;
    }
    static void show(uint32_t kind, const Pattern& record) {
        ASSERT_EQ(a_zvttvfapi_disptst_gen_test_pattern(kind, record), 0);
    }
};
