#include <functional>
#include <thread>
#include <vector>

#include "chiplayer/aud.h"
#include "tests/simulator/SysFixture.h"

using namespace fapi_core;
using namespace simulator;
using testing::HasSubstr;
using testing::Not;

namespace {

using State = ZvtTvFApiAudPathState_t;

class Sound : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        restart();
    }
    void TearDown() override { a_zvttvfapi_aud_deinit(); }

    static void restart() {
        a_zvttvfapi_aud_deinit();
        ASSERT_EQ(a_zvttvfapi_aud_init(), kOk);
    }

    /** Of the loudspeakers, or of another path. */
    static State pathState(unsigned char path = 0) {
        // No more room than what a client's record has, and none for anything else.
        std::vector<unsigned char> input{path}, output(sizeof(State), 0xee);
        EXPECT_EQ(a_zvttvfapi_aud_get_attr(AUD_ATTR_PATH_STATE, input.data(), output.data()), kOk);
        State state;
        memcpy(&state, output.data(), sizeof(state));
        return state;
    }

    static std::string described() {
        EXPECT_EQ(command(2, "aud"), kOk);
        return contentOf(state() / "state.txt");
    }

    // The functions with their arguments by value; signed ones as clients give them.
    static int32_t volume(uint32_t path, uint32_t value) {
        return a_zvttvfapi_aud_adv_set_volume(&path, &value);
    }
    static int32_t delay(uint32_t value) { return a_zvttvfapi_aud_adv_set_speaker_delay(&value); }
    static int32_t processing(uint32_t number) { return a_zvttvfapi_aud_adv_snd_enable(&number); }
    static int32_t part(uint32_t number, uint32_t part, uint8_t on) {
        return a_zvttvfapi_aud_adv_snd_enable_sub(&number, &part, &on);
    }
    static int32_t paramSet(uint32_t number) { return a_zvttvfapi_aud_adv_snd_set_param(&number); }
    static int32_t prescale(uint8_t on, int gain) {
        auto cell = static_cast<uint16_t>(gain);
        return a_zvttvfapi_aud_adv_set_prescale(&on, &cell);
    }
    static int32_t noiseReduction(uint8_t on, uint16_t level) {
        return a_zvttvfapi_aud_adv_set_NR(&on, &level);
    }
    static int32_t band(uint16_t number, uint16_t q, uint16_t frequency, int gain) {
        auto cell = static_cast<uint16_t>(gain);
        return a_zvttvfapi_aud_adv_set_peq_value(&number, &q, &frequency, &cell);
    }
    static int32_t effect(int type, uint8_t on) {
        return a_zvttvfapi_aud_adv_enable_basic_sound_effect(
                static_cast<e_zvttvfapi_aud_basic_snd_type>(type), on);
    }
    static int32_t parameters(int type, const std::function<void(ZvtTvFApiAudBasicSoundParam_t&)>& fill) {
        ZvtTvFApiAudBasicSoundParam_t record{};
        fill(record);
        return a_zvttvfapi_aud_basic_snd_set_param(static_cast<e_zvttvfapi_aud_basic_snd_type>(type),
                                                   &record);
    }
    static int32_t table(uint32_t path, std::vector<uint16_t> gains, const std::string& name = "t") {
        return a_zvttvfapi_aud_set_volume_table(static_cast<ZvtTvFApiAudioOutPathEnum>(path), gains.data(),
                                                static_cast<uint16_t>(gains.size()), bytes(name));
    }
};

}  // namespace

TEST_F(Sound, ThatWasSetIsThatOfEachPathBeforeAndAfterARestart) {
    const int32_t statuses[] = {
            volume(0, 75),     volume(5, 0),  delay(250),           processing(1),
            part(1, 3, 1),     part(1, 0, 1), part(1, 0, 0),        part(2, 2, 1),
            prescale(1, -200), paramSet(7),   noiseReduction(0, 9), effect(6, 1),
            effect(0, 1),      effect(0, 0),  effect(3, 1),         table(0, {0, 1, 2, 3, 4096})};
    EXPECT_THAT(statuses, testing::Each(kOk));
    for (int start = 0; start < 2; ++start, restart()) {
        const State speaker = pathState();
        const State expected{0, 75, 250, 0x48, 1, 0x8, 7, -200, 9, 1, 0, 0, 0, 5, 3};
        EXPECT_EQ(memcmp(&speaker, &expected, sizeof(State)), 0);
        EXPECT_TRUE(pathState(5).u8Mute) << "its volume is 0";
        EXPECT_EQ(pathState(5).u32Delay, 0u) << "it has none";
        uint32_t path = 0, found = 0;
        EXPECT_EQ(a_zvttvfapi_aud_adv_get_volume(&path, &found), kOk);
        EXPECT_EQ(found, 75u);
        EXPECT_EQ(a_zvttvfapi_aud_adv_get_speaker_delay(&found), kOk);
        EXPECT_EQ(found, 250u);
    }
}

TEST_F(Sound, RefusesWhatLiesOutsideItsRangesAndChangesNothing) {
    ASSERT_EQ(band(32, 2000, 20000, -120), kOk);
    ASSERT_EQ(band(0, 10, 20, 120), kOk);
    const std::string before = described();
    const auto geq = [](uint16_t count, uint32_t last) {
        return parameters(5, [=](auto& record) {
            record.u16GeqBandCount = count;
            record.au32GeqLevel[0] = 7;
            record.au32GeqLevel[7] = last;
        });
    };
    const auto peq = [](uint16_t count, uint32_t last) {
        return parameters(6, [=](auto& record) {
            record.u16PeqBandCount = count;
            std::fill(std::begin(record.astPeqBand), std::end(record.astPeqBand),
                      ZvtTvFApiAudPeqBand_t{500, 1, 50});
            record.astPeqBand[32].u32Frequency = last;
        });
    };
    const std::pair<const char*, int32_t> rows[] = {
            {"path 9", volume(9, 1)},
            {"volume 101", volume(0, 101)},
            {"volume -1", volume(0, UINT32_MAX)},
            {"delay", delay(251)},
            {"processing", processing(5)},
            {"part of none", part(0, 0, 1)},
            {"switch 2 of 2", part(3, 2, 1)},
            {"part -1", part(1, UINT32_MAX, 1)},
            {"part switched to 2", part(1, 0, 2)},
            {"parameter set", paramSet(8)},
            {"prescale", prescale(1, 201)},
            {"prescale below", prescale(0, -201)},
            {"prescale switched to 2", prescale(2, 0)},
            {"noise reduction", noiseReduction(1, 101)},
            {"band 33", band(33, 10, 20, 0)},
            {"Q", band(1, 9, 100, 5)},
            {"frequency", band(1, 10, 19, 5)},
            {"gain", band(1, 10, 100, -121)},
            {"effect 7", effect(7, 1)},
            {"effect -1", effect(-1, 1)},
            {"effect switched to 2", effect(0, 2)},
            {"level", parameters(4, [](auto& record) { record.u32Level = 101; })},
            {"type", parameters(-1, [](auto&) {})},
            {"9 graphic bands", geq(9, 50)},
            {"the last graphic band", geq(8, 101)},
            {"34 parametric bands", peq(34, 500)},
            {"the last parametric band", peq(33, 20001)},
            {"table of path 9", table(9, {1})},
            {"table without entries", table(0, {})},
            {"table with a line in its name", table(0, {1}, "a\nb")},
            {"table with a long name", table(0, {1}, std::string(256, 'n'))}};
    for (const auto& [what, status] : rows) {
        EXPECT_EQ(status, kOutOfRange) << what;
    }
    unsigned char path = 9, output[40] = {};
    EXPECT_EQ(a_zvttvfapi_aud_get_attr(AUD_ATTR_PATH_STATE, &path, output), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_aud_get_attr(4098, &path, output), kOutOfRange);
    EXPECT_EQ(described(), before);
    EXPECT_EQ(geq(7, 101), kOk) << "the eighth is not given";
    EXPECT_EQ(peq(32, 0), kOk);
    EXPECT_THAT(described(),
                AllOf(HasSubstr("graphic_eq = 7 0 0 0 0 0 0 50"), HasSubstr("500 1 50 20000 -120 2000")));
}

TEST_F(Sound, LosesNoBandWhenSeveralThreadsSetTheirsAtOnce) {
    std::vector<std::thread> threads;
    for (uint16_t first : {0, 8, 16, 24}) {
        threads.emplace_back([first] {
            for (uint16_t number = first; number < first + 8; ++number) {
                uint16_t q = static_cast<uint16_t>(1000 + number);
                EXPECT_EQ(a_zvttvfapi_aud_adv_set_peq_q_value(&number, &q), kOk);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    restart();
    const std::string text = described();
    for (int number = 0; number < 32; ++number) {
        EXPECT_THAT(text, HasSubstr(" 0 " + std::to_string(1000 + number) + " "));
    }
}

TEST_F(Sound, FindsTheEntryForAVolumeInATableOfAnyLength) {
    std::vector<uint16_t> longest(65535);
    for (size_t i = 0; i < longest.size(); ++i) {
        longest[i] = static_cast<uint16_t>(i);
    }
    const struct {
        std::vector<uint16_t> gains;
        uint32_t volume;
        unsigned entry;
    } rows[] = {{{9}, 100, 9},        {{0, 4096}, 99, 0},    {{0, 4096}, 100, 4096}, {longest, 100, 65534},
                {longest, 99, 64878}, {{5, 6, 7, 8}, 34, 6}, {{5, 6, 7, 8}, 33, 5}};
    for (const auto& row : rows) {
        ASSERT_EQ(table(8, row.gains), kOk);
        ASSERT_EQ(volume(8, row.volume), kOk);
        restart();
        EXPECT_EQ(pathState(8).u16TableEntry, row.entry) << row.gains.size() << " " << row.volume;
        EXPECT_EQ(pathState(8).u16TableSize, row.gains.size());
        EXPECT_EQ(pathState(8).u8Mute, row.entry == 0);
    }
    for (const char* damaged : {"", "name\n", "name\n5\n65536\n", "name\n5\nx\n"}) {
        write(state() / "audio/subwoofer.table", damaged);
        restart();
        EXPECT_EQ(pathState(8).u16TableSize, 0) << damaged;
    }
}

TEST_F(Sound, LoadsAnAqFileWholeOrLeavesEverythingAsItWas) {
    const auto load = [](const std::string& text) {
        write(state() / "files/aq.ini", text);
        return a_zvttvfapi_aud_load_aq_params(bytes("/aq.ini"));
    };
    const std::string head = "[aq]\nformat = 1\nname = hall\n";
    ASSERT_EQ(load(head + "[drc]\nratio = 35\n[speaker_eq]\nband9 = 80 -15 300\n"), kOk);
    const std::string loaded = described();
    EXPECT_THAT(loaded,
                AllOf(HasSubstr("\"hall\""), HasSubstr("drc:ratio = 35"), HasSubstr("band9 = 80 -15 300")));
    for (const std::string& bad :
         {std::string("not INI at all"), std::string(), std::string("[drc]\nratio = 20\n"),
          std::string("[aq]\nformat = 2\n"), head + "author = me\n", head + "[drc]\nratio = 201\n",
          head + "[drc]\nratio = 20x\n", head + "[drc]\nratio =\n", head + "[drc]\nratio\n",
          head + "[drc]\nratio = 20 20\n", head + "[drc]\nratio = 20\nratio = 30\n",
          head + "[drc]\nratoi = 20\n", head + "[drx]\nratio = 20\n", head + "[speaker_eq]\nband9 = 80 -15\n",
          "ratio = 20\n" + head, head + "[drc]\nratio = 20" + '\0', head + std::string(64 * 1024, ';')}) {
        EXPECT_EQ(load(bad), kBadFile) << bad.substr(0, 80);
    }
    EXPECT_EQ(a_zvttvfapi_aud_load_aq_params(bytes("/absent.ini")), kNotFound);
    EXPECT_EQ(described(), loaded);
    std::filesystem::remove(state() / "files/aq.ini");
    restart();
    EXPECT_EQ(described(), loaded) << "the board has a copy";
    EXPECT_EQ(load(head), kOk);
    EXPECT_THAT(described(), AllOf(HasSubstr("drc:ratio = 10"), Not(HasSubstr("80 -15"))));
}
