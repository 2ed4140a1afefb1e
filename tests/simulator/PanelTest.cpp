#include <algorithm>
#include <functional>
#include <thread>

#include "tests/simulator/PanelFixture.h"

using namespace simulator;

namespace {

constexpr uint32_t kNoInput = 0x000096;

struct Pixel {
    int x;
    int y;
    uint32_t colour;
};

std::vector<uint16_t> gamma(const std::function<int(int)>& level) {
    std::vector<uint16_t> table(256);
    for (int i = 0; i < 256; ++i) {
        table[static_cast<size_t>(i)] = static_cast<uint16_t>(level(i));
    }
    return table;
}

int32_t setGamma(std::vector<uint16_t> red, std::vector<uint16_t> green, std::vector<uint16_t> blue) {
    return a_zvttvfapi_disp_set_gamma_curve(red.data(), green.data(), blue.data());
}

int32_t setRecord(uint32_t type, std::vector<int32_t> numbers) {
    return a_zvttvfapi_disp_set_picture_param_struct(type, static_cast<unsigned>(numbers.size() * 4),
                                                     numbers.data());
}

}  // namespace

using PanelTest = PanelFixture;

TEST_F(PanelTest, ShowsEachPatternWhereItsRecordPutsIt) {
    const uint32_t a = 0xFF8000, b = 0x204060, c = 0x00FF00;
    const auto with = [](Pattern record, const std::function<void(Pattern&)>& change) {
        change(record);
        return record;
    };
    const Pattern plain = pattern(a, b, c);
    const struct {
        const char* what;
        uint32_t kind;
        Pattern record;
        std::vector<Pixel> pixels;
    } rows[] = {
            {"off", 0, plain, {{0, 0, kNoInput}, {1919, 1079, kNoInput}}},
            {"plain", 1, plain, {{0, 0, a}, {1919, 1079, a}}},
            {"area",
             1,
             with(plain, [](Pattern& p) { p.u32X = 100, p.u32Y = 50, p.u32Width = 10, p.u32Height = 20; }),
             {{99, 50, b}, {100, 50, a}, {109, 69, a}, {110, 69, b}, {109, 70, b}}},
            {"area beyond every edge",
             1,
             with(plain, [](Pattern& p) { p.u32X = 1900, p.u32Width = p.u32Height = UINT32_MAX; }),
             {{1899, 0, b}, {1900, 0, a}, {1919, 1079, a}}},
            {"area out of sight", 1, with(plain, [](Pattern& p) { p.u32X = UINT32_MAX; }), {{0, 0, b}}},
            {"half seen through",
             1,
             with(pattern(0xFFFFFF), [](Pattern& p) { p.stForeground.u8Alpha = 128; }),
             {{5, 5, 0x8080CA}}},
            {"ramp", 2, pattern(0, 0xFFFFFF), {{0, 0, 0}, {960, 9, 0x808080}, {1919, 1079, 0xFFFFFF}}},
            {"two steps down",
             2,
             with(pattern(0, 0xFFFFFF), [](Pattern& p) { p.u8Vertical = 1, p.u32Rows = 2; }),
             {{1919, 539, 0}, {0, 540, 0xFFFFFF}}},
            {"bars", 3, plain, {{0, 0, 0xFFFFFF}, {240, 0, 0xFFFF00}, {1679, 0, 0x0000FF}, {1919, 0, 0}}},
            {"bars backwards",
             3,
             with(plain, [](Pattern& p) { p.u8Invert = 1; }),
             {{0, 0, 0}, {1919, 0, 0xFFFFFF}}},
            {"board", 4, plain, {{0, 0, a}, {120, 0, b}, {120, 120, a}, {1919, 1079, b}}},
            {"board of more cells than pixels",
             4,
             with(plain, [](Pattern& p) { p.u32Columns = p.u32Rows = UINT32_MAX; }),
             {}},
            {"grid",
             5,
             with(plain, [](Pattern& p) { p.u16LineWidth = 3; }),
             {{2, 60, c}, {3, 60, b}, {119, 60, b}, {120, 60, c}, {122, 60, c}, {123, 60, b}, {1917, 60, c}}},
            {"window",
             6,
             with(plain, [](Pattern& p) { p.u16LineWidth = 4; }),
             {{479, 540, b}, {480, 540, c}, {484, 540, a}, {1435, 540, a}, {1439, 540, c}, {1440, 540, b}}},
            {"circle",
             7,
             plain,
             {{960, 540, c}, {960 - 519, 545, c}, {960 - 500, 545, b}, {960 + 518, 535, c}}},
            {"stripes", 8, plain, {{31, 0, a}, {32, 0, b}, {1600, 0, a}, {1601, 0, b}, {1602, 0, a}}},
            {"rings", 9, pattern(0xFFFFFF), {{960, 540, 0xFFFFFF}, {960 + 43, 540, 0x000000}}},
    };
    for (const auto& row : rows) {
        show(row.kind, row.record);
        const Picture picture = capture(1);
        for (const Pixel& pixel : row.pixels) {
            EXPECT_EQ(picture.at(pixel.x, pixel.y), pixel.colour)
                    << row.what << " " << pixel.x << "," << pixel.y;
        }
    }
}

TEST_F(PanelTest, ATimedPatternGivesWayToTheVideo) {
    Pattern record = pattern(0xFFFFFF);
    record.u32Duration = 1;
    show(1, record);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(capture().at(0, 0), kNoInput);
}

TEST_F(PanelTest, WhatIsSetIsSeenInThePicture) {
    const auto inverse = gamma([](int i) { return 1023 - i * 1023 / 255; });
    const auto linear = gamma([](int i) { return i * 1023 / 255; });
    const uint32_t grey = 0x808080, skin = 0xC08060;
    const struct {
        const char* what;
        std::function<int32_t()> set;
        uint32_t shown;
        std::vector<Pixel> pixels;
    } rows[] = {
            {"brightness",
             [] { return a_zvttvfapi_disp_set_picture_param(0, 60); },
             grey,
             {{9, 9, 0x9A9A9A}}},
            {"contrast", [] { return a_zvttvfapi_disp_set_picture_param(1, 25); }, grey, {{9, 9, 0x404040}}},
            {"no colour", [] { return a_zvttvfapi_disp_set_picture_param(2, 0); }, skin, {{9, 9, 0x8B8B8B}}},
            {"all at once",
             [] {
                 return setRecord(0, {60, 50, 0, 50, 50, 80});
             },
             grey,
             {{9, 9, 0x9A9A9A}}},
            {"luma item", [] { return a_zvttvfapi_disp_set_pq_value(2, -50); }, grey, {{9, 9, 0x404040}}},
            {"PQ record",
             [] {
                 return setRecord(2, {0, 0, -50, 0, 0, 0});
             },
             grey,
             {{9, 9, 0x404040}}},
            {"PQ off",
             [] {
                 return setRecord(2, {0, 0, -50, 0, 0, 0}) | a_zvttvfapi_disptst_set_pq_on_off(0);
             },
             grey,
             {{9, 9, grey}}},
            {"white gain",
             [] { return a_zvttvfapi_disp_set_color_temperature(512, 1024, 0, 1024, 1024, 1024); },
             grey,
             {{9, 9, 0x408000}}},
            {"white offset",
             [] {
                 return setRecord(1, {1024, 1024, 1024, 1024 + 102, 0, 2047});
             },
             grey,
             {{9, 9, 0x9A00FF}}},
            {"gamma", [&] { return setGamma(inverse, linear, inverse); }, 0x2020FF, {{9, 9, 0xDF2000}}},
            {"6 bits",
             [] { return a_zvttvfapi_disp_panel_set_attr(0, 4, 6, 0, 350, 0); },
             0x818385,
             {{9, 9, 0x828286}}},
            {"margin",
             [] { return a_zvttvfapi_disp_set_over_scan(-100, 0, -200, 0); },
             grey,
             {{174, 600, 0}, {175, 600, grey}, {600, 179, 0}, {600, 180, grey}, {1919, 1079, grey}}},
            {"second window",
             [] { return a_zvttvfapi_disp_switch_window(1); },
             grey,
             {{959, 540, 0}, {960, 539, 0}, {960, 540, grey}}},
            {"third window",
             [] { return a_zvttvfapi_disp_switch_window(2); },
             grey,
             {{960, 0, grey}, {960, 539, grey}, {960, 540, 0}}},
    };
    for (const auto& row : rows) {
        SetUp();
        show(1, pattern(row.shown));
        ASSERT_EQ(row.set(), 0) << row.what;
        const Picture picture = capture();
        for (const Pixel& pixel : row.pixels) {
            EXPECT_EQ(picture.at(pixel.x, pixel.y), pixel.colour)
                    << row.what << " " << pixel.x << "," << pixel.y;
        }
    }
}

TEST_F(PanelTest, MirrorsOverscansAndGoesDarkWithoutATiming) {
    show(3, {});
    ASSERT_EQ(a_zvttvfapi_disp_panel_set_attr(0, 4, 10, 0, 350, 1), 0);
    EXPECT_EQ(capture().at(1919, 0), 0xFFFFFFU);
    // A tenth of the picture beyond either edge: 8 bars on 10 eighths of the width.
    ASSERT_EQ(a_zvttvfapi_disp_panel_set_attr(0, 4, 10, 0, 350, 0), 0);
    ASSERT_EQ(a_zvttvfapi_disp_set_over_scan(100, 100, 0, 0), 0);
    EXPECT_EQ(capture().at(59, 0), 0xFFFFFFU);
    EXPECT_EQ(capture().at(61, 0), 0xFFFF00U);
    ASSERT_EQ(a_zvttvfapi_disp_set_freerun_control(2), 0);
    EXPECT_EQ(capture().at(59, 0), 0xFFFFFFU) << "the generator has a timing of its own";
    show(0, {});
    ASSERT_EQ(a_zvttvfapi_disptst_set_osd_layer_on_off(0, 1), 0);
    EXPECT_EQ(capture().at(70, 100), 0U);
}

TEST_F(PanelTest, LaysItsLayersOnEachOtherAndCapturesEachAlone) {
    fapi_core::ZvtTvFApiColor red = {1023, 0, 0};
    _ZvtFApiDisptstBurnModeParam burning = {&red, 1, 0};
    ASSERT_EQ(a_zvttvfapi_disptst_set_burning_mode_adv(1, &burning), 0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(960, 540), 0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect({0, 0, 480, 540, 0xFF0000FF, 0, 1, 0, 0, 0}),
              0);
    ASSERT_EQ(a_zvttvfapi_disptst_set_osd_layer_on_off(1, 1), 0);
    // The burn-in, the plane stretched over the panel's left half, the subtitle's box in the middle.
    const uint32_t box = 0x0A0F19;
    const struct {
        int option;
        uint32_t right, left, bottom;
    } rows[] = {{0, 0xFF0000, 0x0000FF, 0x690F19},
                {1, 0xFF0000, 0xFF0000, 0xFF0000},
                {2, 0, 0x0000FF, 0},
                {3, 0, 0, box}};
    for (const auto& row : rows) {
        const Picture picture = capture(row.option);
        EXPECT_EQ(picture.at(961, 540), row.right) << row.option;
        EXPECT_EQ(picture.at(959, 540), row.left) << row.option;
        EXPECT_EQ(picture.at(1000, 1015), row.bottom) << row.option;
    }
    ASSERT_EQ(a_zvttvfapi_disptst_gop_pattern_set_attr({128, 0, 100, 100, 10, 10, 0, 0xFF00FF00}), 0);
    const Picture small = capture();
    EXPECT_EQ(small.at(99, 100), 0xFF0000U);
    EXPECT_EQ(small.at(104, 104), 0x7F0080U);
    EXPECT_EQ(small.at(105, 104), 0x7F8000U) << "the back colour where the plane is transparent";
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_hide(), 0);
    EXPECT_EQ(capture().at(104, 104), 0xFF0000U);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_show(), 0);
    EXPECT_EQ(capture().at(104, 104), 0x7F0080U);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_off(), 0);
    EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_show(), kAbsent);
}

TEST_F(PanelTest, DrawingIsClippedWhateverTheNumbers) {
    constexpr uint32_t kMost = UINT32_MAX;
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
    const uint32_t ink = 0xFF112233;
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect({1910, 0, kMost, kMost, ink, 0, 1, 0, 0, 0}),
              0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(
                      {kMost, kMost, kMost, kMost, ink, ink, 1, 255, 255, 1}),
              0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line({0, 0, kMost, kMost, ink}), 0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line({kMost, 20, 5, 20, ink}), 0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect({200, 200, 101, 101, 0, ink, 0, 3, 50, 0}),
              0);
    const Picture picture = capture(2);
    for (const Pixel& pixel : {Pixel{1909, 9, 0},
                               {1910, 9, 0x112233},
                               {1919, 1079, 0x112233},
                               {777, 777, 0x112233},
                               {777, 778, 0},
                               {4, 20, 0},
                               {5, 20, 0x112233},
                               {1000, 20, 0x112233},
                               // A ring: its corner cut, its border drawn, nothing inside.
                               {205, 203, 0},
                               {250, 200, 0x112233},
                               {250, 202, 0x112233},
                               {250, 203, 0},
                               {300, 250, 0x112233},
                               {301, 250, 0}}) {
        EXPECT_EQ(picture.at(pixel.x, pixel.y), pixel.colour) << pixel.x << "," << pixel.y;
    }
}

TEST_F(PanelTest, RefusesWhatIsOutOfRangeAndKeepsWhatItHad) {
    ASSERT_EQ(a_zvttvfapi_disp_set_picture_param(0, 60), 0);
    const std::string before = contentOf(state() / "settings/display.ini");
    const auto linear = gamma([](int i) { return i; });
    const auto bright = gamma([](int i) { return i * 5; });
    const std::function<int32_t()> calls[] = {
            [] { return a_zvttvfapi_disp_switch_window(3); },
            [] { return a_zvttvfapi_disp_set_picture_param(6, 0); },
            [] { return a_zvttvfapi_disp_set_picture_param(0, 101); },
            [] { return a_zvttvfapi_disp_set_picture_param(0, UINT32_MAX); },
            [] { return a_zvttvfapi_disp_panel_set_attr(2, 4, 10, 0, 350, 0); },
            [] { return a_zvttvfapi_disp_panel_set_attr(0, 4, 31, 0, 350, 0); },
            [] { return a_zvttvfapi_disp_set_over_scan(0, 0, 0, 201); },
            [] { return a_zvttvfapi_disp_set_over_scan(INT32_MIN, 0, 0, 0); },
            [] { return a_zvttvfapi_disp_set_color_temperature(2048, 0, 0, 0, 0, 0); },
            [] {
                return setRecord(0, {50, 50, 50, 50, 50, 101});
            },
            [] {
                return setRecord(0, {50, 50, 50, 50, 50});
            },
            [] {
                return setRecord(3, {50, 50, 50, 50, 50, 50});
            },
            [] {
                return setRecord(2, {-51, 0, 0, 0, 0, 0});
            },
            [] { return a_zvttvfapi_disp_set_pq_value(6, 0); },
            [] { return a_zvttvfapi_disp_set_pq_value(0, 51); },
            [] { return a_zvttvfapi_disp_set_output_timing(5); },
            [] { return a_zvttvfapi_disp_set_freerun_control(3); },
            [] { return a_zvttvfapi_disp_capture_screen_to_usb(bytes("x.png"), 4); },
            [] { return a_zvttvfapi_disp_capture_screen_to_usb(bytes("x.png"), -1); },
            [&] { return setGamma(linear, linear, bright); },
            [] { return a_zvttvfapi_disptst_gen_test_pattern(10, {}); },
            [] {
                Pattern p{};
                p.stForeground.u32Red = 1024;
                return a_zvttvfapi_disptst_gen_test_pattern(1, p);
            },
            [] {
                Pattern p{};
                p.u8Vertical = 2;
                return a_zvttvfapi_disptst_gen_test_pattern(2, p);
            },
            [] { return a_zvttvfapi_disptst_gen_gop_test_pattern_on(1921, 1); },
            [] { return a_zvttvfapi_disptst_gen_gop_test_pattern_on(1, UINT32_MAX); },
            [] { return a_zvttvfapi_disptst_set_osd_layer_on_off(2, 1); },
            [] {
                fapi_core::ZvtTvFApiColor bad[] = {{0, 0, 0}, {0, 0, 1024}};
                _ZvtFApiDisptstBurnModeParam two = {bad, 2, 1};
                return a_zvttvfapi_disptst_set_burning_mode_adv(1, &two);
            },
            [] {
                fapi_core::ZvtTvFApiColor none{};
                _ZvtFApiDisptstBurnModeParam empty = {&none, 0, 1};
                return a_zvttvfapi_disptst_set_burning_mode_adv(1, &empty);
            },
    };
    int number = 0;
    for (const auto& call : calls) {
        EXPECT_EQ(call(), kOutOfRange) << number;
        ++number;
    }
    EXPECT_EQ(contentOf(state() / "settings/display.ini"), before);
    const Picture picture = capture();
    EXPECT_EQ(picture.at(0, 0), picture.at(1919, 1079));
}

TEST_F(PanelTest, ARestartKeepsTheSettingsAndLosesTheLayers) {
    const auto inverse = gamma([](int i) { return 1023 - i * 1023 / 255; });
    ASSERT_EQ(a_zvttvfapi_disp_set_picture_param(2, 0), 0);
    ASSERT_EQ(setGamma(inverse, inverse, inverse), 0);
    show(1, pattern(0xFF0000));
    ASSERT_EQ(a_zvttvfapi_disptst_set_osd_layer_on_off(0, 1), 0);
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
    ASSERT_EQ(restarted("capture after.png"), "0");
    const Picture after(state() / "files/usb/after.png");
    // The blue of no input without its colour, inverted.
    EXPECT_EQ(after.at(0, 0), 0xF4F4F4U);
    EXPECT_EQ(after.at(100, 100), 0xF4F4F4U);
}

TEST_F(PanelTest, WhatIsWrongInTheSettingsFileIsToldOnceAndCountsAsAbsent) {
    show(1, pattern(0x808080));
    const std::string good = "[picture]\n; by hand\nmain = 40 50 50 50 50 80\n";
    const std::pair<const char*, const char*> rows[] = {
            {"sub = 50 50\n",
             "line 4: picture:sub is not 6 numbers within their limits: the factory's are used"},
            {"\nsub = 50 50 50 50 50 101\n", "line 5: picture:sub is not 6 numbers"},
            {"[link]\ntiming = 99999999999999999999\n", "line 5: link:timing is not 1 numbers"},
            {"mian = 1\n", "line 4: there is no setting picture:mian"},
            {"main\n", "line 4: neither a parameter nor a heading"}};
    for (const auto& [bad, told] : rows) {
        write(state() / "settings/display.ini", good + bad);
        testing::internal::CaptureStderr();
        EXPECT_EQ(a_zvttvfapi_disp_nty_drv_reload_param(), kBadFile) << bad;
        EXPECT_EQ(a_zvttvfapi_disp_nty_drv_reload_param(), kBadFile) << bad;
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(said.find(told), std::string("board: settings/display.ini: ").size()) << said;
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
        EXPECT_EQ(capture().at(0, 0), 0x676767U);
        EXPECT_EQ(a_zvttvfapi_disp_set_picture_param(1, 50), 0);
        EXPECT_EQ(contentOf(state() / "settings/display.ini"), good + bad);
    }
}

TEST_F(PanelTest, TakesUpItsIniFilesWhenItIsToldTo) {
    const auto pwm = [] {
        unsigned least = 0, most = 0;
        EXPECT_EQ(a_zvttvfapi_disp_get_pwm_range(least, most), 0);
        return std::to_string(least) + "-" + std::to_string(most);
    };
    const auto version = [](uint8_t window, uint8_t type) {
        char text[128];
        EXPECT_EQ(a_zvttvfapi_disp_get_pq_version(sizeof(text), text, fapi_core::ZvtTvFApiVideoWin{window},
                                                  fapi_core::ZvtTvFApiPqType{type}),
                  0);
        return std::string(text);
    };
    write(state() / "ini/panel.ini",
          "name = P\n[backlight]\npwm_min = 10\npwm_max = 90\n[frc]\npresent = 0\n");
    write(state() / "ini/pq.ini", "[range]\nhue_min = -20\n[version]\nmotion = 2.1\nsub_motion = 2.2\n");
    EXPECT_EQ(pwm() + version(0, 5), "5-1001.0.0");
    EXPECT_EQ(a_zvttvfapi_disp_nty_drv_reload_param(), 0);
    EXPECT_EQ(a_zvttvfapi_disp_update_pq_ini_files(), 0);
    EXPECT_EQ(pwm(), "10-90");
    EXPECT_EQ(version(0, 5) + version(1, 5) + version(2, 5) + version(1, 6), "2.12.22.11.0.0");
    EXPECT_EQ(a_zvttvfapi_disp_set_pq_value(0, -21), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_disp_set_pq_value(0, -20), 0);
    EXPECT_EQ(a_zvttvfapi_disp_get_frc_connect_status(), 0);
    fapi_core::ZvtTvFApiDispTconInfo tcon{};
    EXPECT_EQ(a_zvttvfapi_disp_get_tcon_info(&tcon), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(tcon.au8PanelName), 2), std::string("P\0", 2));

    for (const char* bad : {"[backlight]\npwm_min = 91\npwm_max = 90\n", "[backlight]\npwm_min = many\n"}) {
        write(state() / "ini/panel.ini", bad);
        EXPECT_EQ(a_zvttvfapi_disp_nty_drv_reload_param(), kBadFile) << bad;
    }
    write(state() / "ini/pq.ini", "[version]\nmotion = " + std::string(128, '9') + "\n");
    EXPECT_EQ(a_zvttvfapi_disp_update_pq_ini_files(), kBadFile);
    EXPECT_EQ(pwm() + version(0, 5), "10-902.1");

    char small[3] = {'x', 'x', 'x'};
    EXPECT_EQ(a_zvttvfapi_disp_get_pq_version(3, small, fapi_core::ZvtTvFApiVideoWin::MAIN,
                                              fapi_core::ZvtTvFApiPqType::MOTION),
              kTooLong);
    EXPECT_EQ(small[0], '\0');
}

TEST_F(PanelTest, CapturesOnlyOntoTheUsbStorageAndReplacesWhatIsThere) {
    const auto captured = [](const char* path) {
        return a_zvttvfapi_disp_capture_screen_to_usb(bytes(path), 0);
    };
    for (const char* path : {"", "..", "../x.png", "a/../../x.png", "folder/", "/", "."}) {
        EXPECT_EQ(captured(path), kBadName) << path;
    }
    EXPECT_EQ(captured("missing/x.png"), kNotFound);
    write(state() / "files/usb/folder/x.png", "old");
    EXPECT_EQ(captured("folder"), kBadName);
    // A link is replaced, not followed.
    write(state() / "precious", "precious");
    std::filesystem::create_symlink("../../precious", state() / "files/usb/link.png");
    EXPECT_EQ(captured("link.png"), 0);
    EXPECT_EQ(contentOf(state() / "precious"), "precious");
    EXPECT_EQ(captured("/folder/x.png"), 0);
    EXPECT_EQ(Picture(state() / "files/usb/folder/x.png").at(0, 0), kNoInput);
    // A disk that takes no more leaves what was there, and nothing else.
    EXPECT_NE(restarted("capture folder/x.png", "PROBE_FILE_LIMIT=1000"), "0");
    EXPECT_EQ(Picture(state() / "files/usb/folder/x.png").at(0, 0), kNoInput);
    const std::filesystem::directory_iterator files(state() / "files/usb/folder");
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(PanelTest, IsDrawnOnSetAndCapturedByManyAtOnce) {
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
    std::vector<std::thread> threads;
    for (unsigned n = 0; n < 4; ++n) {
        threads.emplace_back([n] {
            for (unsigned i = 0; i < 3; ++i) {
                EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(n == 0 ? 640 : 0, 0), 0);
                EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect(
                                  {n, n, 99, 99, ~0U, 0, 1, 0, 9, 1}),
                          0);
                EXPECT_EQ(a_zvttvfapi_disp_set_picture_param(n, i), 0);
                const std::string name = std::to_string(n) + ".png";
                EXPECT_EQ(a_zvttvfapi_disp_capture_screen_to_usb(bytes(name), 0), 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const char* name : {"0.png", "1.png", "2.png", "3.png"}) {
        Picture(state() / ("files/usb/" + std::string(name)));
    }
}
