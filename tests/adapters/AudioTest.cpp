#include "adapters/audio/ZvtTvFApiAudio.h"

#include <algorithm>

#include "chiplayer/aud.h"
#include "tests/adapters/Adapter.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

class Audio : public Adapter<ZvtTvFApiAudio> {
  protected:
    Audio() : Adapter("ZvtTvFApiAudio", "aud") {}

    static std::string outcome(const std::string& function, int32_t status) {
        return status == 0 ? " D " + function + " OK!\n" : " E " + function + " Fail!\n";
    }
};

TEST_F(Audio, PassesEveryArgumentsBitsInItsOwnCellAndLogsBehindTheGuard) {
    struct {
        std::function<Outcome()> call;
        std::string name;
        std::string arguments;
    } const setters[] = {
            {METHOD(a_hidl_zvttvfapi_aud_adv_snd_enable, -1), "adv_snd_enable", "<ffffffff>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_snd_enable_sub, 1, INT32_MIN, true), "adv_snd_enable_sub",
             "<01>, <80000000>, <01>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_snd_set_param, 3), "adv_snd_set_param", "<03>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_prescale, true, -1), "adv_set_prescale", "<01>, <ffff>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_NR, false, INT16_MIN), "adv_set_NR", "<00>, <8000>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_speaker_delay, -2), "adv_set_speaker_delay", "<fffffffe>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_volume, 6, -1), "adv_set_volume", "<06>, <ffffffff>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_peq_q_value, 1, -2), "adv_set_peq_q_value", "<01>, <fffe>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_peq_freq_value, 3, 20000), "adv_set_peq_freq_value",
             "<03>, <4e20>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_peq_gain_value, 5, -120), "adv_set_peq_gain_value",
             "<05>, <ff88>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_set_peq_value, 1, 2, 3, -4), "adv_set_peq_value",
             "<01>, <02>, <03>, <fffc>"},
            {METHOD(a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect, -7, true),
             "adv_enable_basic_sound_effect", "-7, 1"},
    };
    for (const auto& setter : setters) {
        const std::string function = "a_zvttvfapi_aud_" + setter.name;
        const std::string entry = setter.name == "adv_snd_enable" ? function : "a_hidl" + function.substr(1);
        const std::string trace = " D " + entry + "()...\n";
        expectRows({{setter.call, setter.name + "(" + setter.arguments + ")", "-7",
                     trace + outcome(function, -7)}});
        chip.returnsOtherwise(0);
        EXPECT_EQ(setter.call().lines, trace + outcome(function, 0));
        calls();
    }
}

TEST_F(Audio, OtherMethodsPassTheirArgumentsOnAndDeliverTheStatusFirst) {
    const auto answer = [](unsigned int* cell) {
        *cell = 0xFFFFFFFE;
        return -7;
    };
    chip.on(a_zvttvfapi_aud_adv_get_speaker_delay, answer);
    chip.on(a_zvttvfapi_aud_adv_get_volume, [&](unsigned int*, unsigned int* cell) { return answer(cell); });
    ZvtTvFApiAudBasicSoundParam_t stParam;
    number(stParam);
    Bytes expected = imageOf(stParam);
    for (const size_t padding : {6, 7, 42, 43}) {
        expected[padding] = 0;
    }
    chip.on(a_zvttvfapi_aud_basic_snd_set_param, [&](e_zvttvfapi_aud_basic_snd_type, const auto* record) {
        EXPECT_EQ(imageOf(*record), expected);
        return -7;
    });
    const std::string delay = " D a_hidl_zvttvfapi_aud_adv_get_speaker_delay()...\n";
    const std::string volume = " D a_hidl_zvttvfapi_aud_adv_get_volume()...\n";
    const std::string dolby = "a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param";
    std::string refusal = " D " + dolby + "()...\n";
    for (int field = 0; field < 8; ++field) {
        refusal += " E [" + dolby + "(#)]FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n";
    }
    expectRows({
            {METHOD(a_hidl_zvttvfapi_aud_adv_get_speaker_delay, results()), "adv_get_speaker_delay(<00>)",
             "-7 -2", delay + outcome("a_zvttvfapi_aud_adv_get_speaker_delay", -7), "-5 0", true, delay},
            {METHOD(a_hidl_zvttvfapi_aud_adv_get_volume, 3, results()), "adv_get_volume(<03>, <00>)", "-7 -2",
             volume + outcome("a_zvttvfapi_aud_adv_get_volume", -7), "-5 0", true, volume},
            {METHOD(a_hidl_zvttvfapi_aud_basic_snd_set_param, -1, stParam), "basic_snd_set_param(-1, *)",
             "-7",
             " D a_hidl_zvttvfapi_aud_basic_snd_set_param()...\n"
             " D [a_hidl_zvttvfapi_aud_basic_snd_set_param(#)]Type = [4294967295]\n" +
                     outcome("a_zvttvfapi_aud_basic_snd_set_param", -7)},
            {METHOD(a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param, {}), "", "-2",
             refusal + " E Parsing parameters from hidl to fapi_core FAIL!\n" + outcome(dolby, -2)},
            {METHOD(a_hidl_zvttvfapi_aud_set_aq_param, hidl_string("aq.bin\0cut", 10)),
             "load_aq_params(\"aq.bin\")"},
    });
}

TEST_F(Audio, AttributesAreTestedInOrderAndOnlyTheSupportedOneReachesTheLibrary) {
    const std::string error = " E [a_hidl_zvttvfapi_aud_get_attr(#)]";
    const std::string invalidInput = error + "Invalid input param from Java!\n";
    const std::string invalidType = error + "Invalid attr type!\n";
    const std::string unsupported =
            error + "Not implement in hidl interface yet!!\n" + error + "Please implement it!!\n";
    const std::string ok = outcome("a_zvttvfapi_aud_get_attr", 0),
                      fail = outcome("a_zvttvfapi_aud_get_attr", 7);
    struct {
        uint32_t type;
        size_t input;
        uint32_t size;
        int32_t libraryStatus;
        int32_t status;
        std::string lines;
    } const rows[] = {
            {4097, 3, 3, 0, 0, ok},
            {4097, 3, 1, 0, 0, ok},
            {4097, 1, 1, 7, 7, fail},
            {4097, 1, 1, -2, -2, fail},
            {4097, 3, 0, 0, -2, invalidInput},
            {4097, 0, 3, 0, -2, invalidInput},
            {4097, 3, 4, 0, -2, invalidInput},
            {4097, 3, UINT32_MAX, 0, -2, invalidInput},
            {0, 3, 0, 0, -2, invalidInput},
            {4610, 0, 0, 0, -2, invalidInput},
            {1, 3, 4, 0, -2, invalidInput},
            {0, 1, 1, 0, -1, unsupported},
            {4099, 1, 1, 0, -1, unsupported},
            {4100, 1, 1, 0, -1, unsupported},
            {4610, 1, 1, 0, -1, unsupported},
            {1, 1, 1, 0, -2, invalidType},
            {4098, 1, 1, 0, -2, invalidType},
            {0x10001001, 1, 1, 0, -2, invalidType},
            {UINT32_MAX, 1, 1, 0, -2, invalidType},
    };
    const Bytes record = sequence(40);
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.type << ", " << row.input << ", " << row.size);
        const Bytes input = sequence(row.input);
        chip.on(a_zvttvfapi_aud_get_attr, [&](unsigned int, void* pInput, void* pOutput) {
            auto* const bytes = static_cast<uint8_t*>(pOutput);
            EXPECT_TRUE(std::equal(input.begin(), input.begin() + row.size, static_cast<uint8_t*>(pInput)));
            EXPECT_EQ(std::count(bytes, bytes + record.size(), 0), 40);
            std::copy(record.begin(), record.end(), bytes);
            return row.libraryStatus;
        });
        const Outcome result = OUTCOME(a_hidl_zvttvfapi_aud_get_attr, row.type, input, row.size, results());
        EXPECT_EQ(result.answer, show(row.status == 0 ? record : Bytes()) + ' ' + show(row.status));
        const bool called = row.lines == ok || row.lines == fail;
        EXPECT_EQ(calls(), called ? "?get_attr(4097, *, *)" : "?");
        EXPECT_EQ(result.lines, " D a_hidl_zvttvfapi_aud_get_attr()...\n" + row.lines);
    }
}

TEST_F(Audio, AttributeQueriesWithoutReadinessOrMemoryAreAnsweredEmpty) {
    const hidl_vec<uint8_t> input = {1, 2, 3};
    const std::string entry = " D a_hidl_zvttvfapi_aud_get_attr()...\n";
    {
        const FailingAllocation refused(1);
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_aud_get_attr, 4097, input, 3, results()).answer, "<> -1");
        EXPECT_EQ(refused.refusedBytes(), 3u);
    }
    EXPECT_EQ(mOutcome.lines, entry + " E [a_hidl_zvttvfapi_aud_get_attr(#)]malloc pInputParam fail \n");
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    for (const uint32_t size : {3, 0}) {
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_aud_get_attr, 4097, input, size, results()).answer, "<> -5");
        EXPECT_EQ(mOutcome.lines, entry);
    }
    EXPECT_EQ(calls(), "???");
}

TEST_F(Audio, VolumeTablesReachTheLibraryReadyOrNotWithA16BitCountAndAClampedPath) {
    struct {
        uint32_t path;
        uint32_t chipPath;
        size_t entries;
        uint16_t count;
        int32_t libraryStatus;
        int32_t status;
    } const rows[] = {
            {0, 0, 1, 1, 0, 0},         {8, 8, 101, 101, 6, 6},      {9, 9, 1, 1, 0, 0},
            {12, 9, 1, 1, -5, -5},      {UINT32_MAX, 9, 1, 1, 0, 0}, {256, 9, 1, 1, 0, 0},
            {1, 1, 65535, 65535, 0, 0}, {1, 1, 65537, 1, 0, 0},      {1, 1, 0, 0, 0, -2},
            {1, 1, 65536, 0, 0, -2},
    };
    const std::string method = "a_hidl_zvttvfapi_aud_set_volume_table";
    const std::string entry = " D " + method + "()...\n I Volume Table Size = ";
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.path << ", " << row.entries);
        std::vector<uint16_t> table(row.entries);
        std::iota(table.begin(), table.end(), uint16_t{100});
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        chip.on(a_zvttvfapi_aud_set_volume_table, [&](auto path, auto* data, auto count, auto* name) {
            EXPECT_EQ(std::vector<uint16_t>(data, data + count),
                      std::vector<uint16_t>(table.begin(), table.begin() + row.count));
            EXPECT_STREQ(reinterpret_cast<const char*>(name), "curve");
            EXPECT_EQ(static_cast<uint32_t>(path), row.chipPath);
            return row.libraryStatus;
        });
        const Outcome result = OUTCOME(a_hidl_zvttvfapi_aud_set_volume_table,
                                       static_cast<ZvtTvFApiAudioOutPathEnum>(row.path), table,
                                       hidl_string("curve\0cut", 9));
        EXPECT_EQ(result.answer, show(row.status));
        // The library's readiness is not asked.
        EXPECT_EQ(chip.takeCalls().size(), row.count == 0 ? 0u : 1u);
        EXPECT_EQ(result.lines,
                  entry + show(row.count) + ".\n" +
                          (row.count == 0 ? " E Invalid Volume Table Size.\n" : outcome(method, row.status)));
    }
    const hidl_vec<uint16_t> table = {1, 2, 3};
    const FailingAllocation refused(1);
    EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_aud_set_volume_table, {}, table, "").answer, "-4");
    EXPECT_EQ(refused.refusedBytes(), 6u);
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(mOutcome.lines, entry + "3.\n E Allocate pu16Data failed.\n");
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
