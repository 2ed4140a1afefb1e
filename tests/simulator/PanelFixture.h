#pragma once

#include <png.h>

#include <cstdint>
#include <string>
#include <vector>

#include "chiplayer/disp.h"
#include "chiplayer/disptst.h"
#include "tests/simulator/SysFixture.h"

/** A captured picture, decoded. */
class Picture {
  public:
    explicit Picture(const std::string& path) : mRgb(1920 * 1080 * 3) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&image, path.c_str()) == 0 || image.width != 1920 ||
            image.height != 1080) {
            ADD_FAILURE() << path << ": " << image.message << ", " << image.width << "x" << image.height;
            return;
        }
        image.format = PNG_FORMAT_RGB;
        EXPECT_NE(png_image_finish_read(&image, nullptr, mRgb.data(), 0, nullptr), 0) << image.message;
    }

    /** 0xRRGGBB */
    uint32_t at(int x, int y) const {
        const uint8_t* pixel = &mRgb[static_cast<size_t>(y * 1920 + x) * 3];
        return static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
    }

  private:
    std::vector<uint8_t> mRgb;
};

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
