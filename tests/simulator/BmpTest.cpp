#include "tests/simulator/PanelFixture.h"

using namespace simulator;

namespace {

/** A BMP file of two rows of two pixels, and what may be wrong with it. */
struct Bmp {
    std::string type = "BM";
    uint32_t offset = 0;  // 0: right behind the headers
    uint32_t infoBytes = 40;
    uint32_t width = 2;
    uint32_t height = 2;
    uint32_t planes = 1;
    uint32_t bits = 24;
    uint32_t compression = 0;
    std::vector<uint32_t> masks = {};
    std::string pixels = std::string(
            "\1\2\3\4\5\6\0\0"
            "\x11\x12\x13\x14\x15\x16\0\0",
            16);

    std::string file() const {
        std::string text = type;
        const auto put = [&](uint32_t value, int bytes) {
            for (int i = 0; i < bytes; ++i) {
                text += static_cast<char>(i < 4 ? value >> (8 * i) : 0);
            }
        };
        put(0, 8);
        put(offset != 0 ? offset : 54 + static_cast<uint32_t>(masks.size()) * 4, 4);
        put(infoBytes, 4);
        put(width, 4);
        put(height, 4);
        put(planes, 2);
        put(bits, 2);
        put(compression, 4);
        put(0, 10);
        put(0, 10);
        for (const uint32_t mask : masks) {
            put(mask, 4);
        }
        return text + pixels;
    }
};

const std::string kFour("\1\2\3\x80\4\5\6\x40\x11\x12\x13\xFF\x14\x15\x16\0", 16);

}  // namespace

class BmpTest : public PanelFixture {
  protected:
    int32_t draw(const Bmp& bmp, uint32_t x, uint32_t y) {
        write(state() / "files/picture.bmp", bmp.file());
        return a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(bytes("/picture.bmp"), x, y);
    }
};

TEST_F(BmpTest, DrawsTheUsualFilesEitherWayUpAndClipsThem) {
    const std::vector<uint32_t> masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    const struct {
        const char* what;
        Bmp bmp;
        uint32_t topLeft, bottomRight;
    } rows[] = {
            {"24 bits", {}, 0x131211, 0x060504},
            {"top down", {"BM", 0, 40, 2, UINT32_MAX - 1}, 0x030201, 0x161514},
            {"32 bits, whose fourth byte means nothing",
             {"BM", 0, 40, 2, 2, 1, 32, 0, {}, kFour},
             0x131211,
             0x060504},
            {"32 bits with alpha", {"BM", 0, 56, 2, 2, 1, 32, 3, masks, kFour}, 0x131211, 0x010101},
            {"a header without alpha", {"BM", 0, 40, 2, 2, 1, 32, 3, masks, kFour}, 0x131211, 0x060504},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
        EXPECT_EQ(draw(row.bmp, 10, 20), 0) << row.what;
        EXPECT_EQ(draw(row.bmp, 1919, 1079), 0) << row.what;
        EXPECT_EQ(draw(row.bmp, UINT32_MAX, UINT32_MAX), 0) << row.what;
        const Picture picture = capture(2);
        EXPECT_EQ(picture.at(10, 20), row.topLeft) << row.what;
        EXPECT_EQ(picture.at(11, 21), row.bottomRight) << row.what;
        EXPECT_EQ(picture.at(12, 20), 0U) << row.what;
        EXPECT_EQ(picture.at(1919, 1079), row.topLeft) << row.what;
    }
}

TEST_F(BmpTest, RefusesHostileFilesAndLeavesThePlaneAsItWas) {
    EXPECT_EQ(draw({}, 0, 0), kAbsent) << "there is no plane";
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
    const Bmp bad[] = {
            {"MB"},
            {"BM", 55},
            {"BM", UINT32_MAX},
            {"BM", 0, 39},
            {"BM", 0, 40, 0},
            {"BM", 0, 40, UINT32_MAX},
            {"BM", 0, 40, 0x80000000},
            {"BM", 0, 40, 4097, 1},
            {"BM", 0, 40, 2, 0},
            {"BM", 0, 40, 2, 3},
            {"BM", 0, 40, 2, 0x80000000},
            {"BM", 0, 40, 0x7FFFFFFF, 0x7FFFFFFF},
            {"BM", 0, 40, 2, 2, 2},
            {"BM", 0, 40, 2, 2, 1, 8},
            {"BM", 0, 40, 2, 2, 1, 24, 1},
            {"BM", 0, 40, 2, 2, 1, 24, 3, {0xFF0000, 0xFF00, 0xFF, 0}},
            {"BM", 0, 40, 2, 2, 1, 32, 3, {0xFF, 0xFF00, 0xFF0000, 0}},
            {"BM", 0, 40, 2, 2, 1, 32, 3, {}, ""},
            {"BM", 0, 40, 2, 2, 1, 24, 0, {}, std::string(15, 'x')},
    };
    for (size_t i = 0; i < std::size(bad); ++i) {
        EXPECT_EQ(draw(bad[i], 0, 0), kBadFile) << i;
    }
    for (const std::string& text : {std::string(), std::string("BM"), Bmp().file().substr(0, 53)}) {
        write(state() / "files/picture.bmp", text);
        EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(bytes("picture.bmp"), 0, 0), kBadFile);
    }
    write(state() / "secret.bmp", Bmp().file());
    EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(bytes("../secret.bmp"), 0, 0), kNotFound);
    EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp(bytes("/"), 0, 0), kBadFile);
    EXPECT_EQ(capture(2).at(0, 0), 0U);
}
