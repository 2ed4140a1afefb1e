#include "adapters/audio/ZvtTvFApiAudio.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "chiplayer/aud.h"
#include "tests/adapters/Forwarding.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

class Audio : public ::testing::Test {
  protected:
    // "D text" as the line that a_hidl_zvttvfapi_aud_<name> logs; "D ]text" for one with a doubled prefix.
    static Lines linesOf(const std::string& name, const Lines& texts) {
        const std::string method = "a_hidl_zvttvfapi_aud_" + name;
        Lines lines;
        for (const std::string& text : texts) {
            const std::string again = text[2] == ']' ? "[" + method + "(#)" : "";
            lines.push_back(text.substr(0, 2) + "ZvtTvFApiAudio(server): <" + method + ":#> " + again +
                            text.substr(2));
        }
        return lines;
    }
    static std::string outcome(const std::string& function, int32_t status) {
        return (status == 0 ? "D " + function + " OK!\n" : "E " + function + " Fail!\n");
    }

    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiAudio> audio = new ZvtTvFApiAudio();
};

TEST_F(Audio, SettersPassEveryArgumentsBitsInItsOwnCellAndLogBehindTheGuard) {
    struct {
        std::string name;
        std::string arguments;
        std::function<Return<int32_t>()> call;
    } const rows[] = {
            {"adv_snd_enable", "<ffffffff>", [&] { return audio->a_hidl_zvttvfapi_aud_adv_snd_enable(-1); }},
            {"adv_snd_enable_sub", "<01>, <80000000>, <01>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_snd_enable_sub(1, INT32_MIN, true); }},
            {"adv_snd_set_param", "<03>", [&] { return audio->a_hidl_zvttvfapi_aud_adv_snd_set_param(3); }},
            {"adv_set_prescale", "<01>, <ffff>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_prescale(true, -1); }},
            {"adv_set_NR", "<00>, <8000>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_NR(false, INT16_MIN); }},
            {"adv_set_speaker_delay", "<fffffffe>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_speaker_delay(-2); }},
            {"adv_set_volume", "<06>, <ffffffff>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_volume(6, -1); }},
            {"adv_set_peq_q_value", "<01>, <fffe>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_peq_q_value(1, -2); }},
            {"adv_set_peq_freq_value", "<03>, <4e20>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_peq_freq_value(3, 20000); }},
            {"adv_set_peq_gain_value", "<05>, <ff88>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_peq_gain_value(5, -120); }},
            {"adv_set_peq_value", "<01>, <02>, <03>, <fffc>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_set_peq_value(1, 2, 3, -4); }},
            {"adv_enable_basic_sound_effect", "-7, 1",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect(-7, true); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string function = "a_zvttvfapi_aud_" + row.name;
        const std::string entry =
                row.name == "adv_snd_enable" ? function : "a_hidl_zvttvfapi_aud_" + row.name;
        for (const int32_t status : {0, 3, -1}) {
            chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
            chip.returnsOtherwise(status);
            EXPECT_EQ(int32_t{row.call()}, status);
            EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, function + "(" + row.arguments + ")"));
            EXPECT_EQ(log.takeLines(),
                      linesOf(row.name, {"D " + entry + "()...\n", outcome(function, status)}));
        }
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        EXPECT_EQ(int32_t{row.call()}, -5);
        EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard));
        EXPECT_THAT(log.takeLines(), IsEmpty());
    }
}

TEST_F(Audio, GettersDeliverTheStatusFirstAndTheCellWhateverItHolds) {
    std::vector<int32_t> delivered;
    const auto deliver = [&](int32_t s32Status, int32_t s32Value) {
        delivered.insert(delivered.end(), {s32Status, s32Value});
    };
    struct {
        std::string name;
        std::string arguments;
        std::function<Return<void>()> call;
    } const rows[] = {
            {"adv_get_speaker_delay", "<00>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_get_speaker_delay(deliver); }},
            {"adv_get_volume", "<03>, <00>",
             [&] { return audio->a_hidl_zvttvfapi_aud_adv_get_volume(3, deliver); }},
    };
    int32_t status = 0;
    const auto answer = [&](unsigned int* cell) {
        *cell = 0xFFFFFFFE;
        return status;
    };
    chip.on(a_zvttvfapi_aud_adv_get_speaker_delay, answer);
    chip.on(a_zvttvfapi_aud_adv_get_volume, [&](unsigned int*, unsigned int* cell) { return answer(cell); });
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string function = "a_zvttvfapi_aud_" + row.name;
        const std::string entry = "D a_hidl_zvttvfapi_aud_" + row.name + "()...\n";
        chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
        for (const int32_t answered : {0, 9}) {
            status = answered;
            delivered.clear();
            EXPECT_TRUE(row.call().isOk());
            EXPECT_THAT(delivered, ElementsAre(status, -2));
            EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, function + "(" + row.arguments + ")"));
            EXPECT_EQ(log.takeLines(), linesOf(row.name, {entry, outcome(function, status)}));
        }
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        delivered.clear();
        EXPECT_TRUE(row.call().isOk());
        EXPECT_THAT(delivered, ElementsAre(-5, 0));
        EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard));
        EXPECT_EQ(log.takeLines(), linesOf(row.name, {entry}));
    }
}

TEST_F(Audio, TheBasicSoundRecordArrivesByteForByteWithZeroPadding) {
    ZvtTvFApiAudBasicSoundParam_t stParam;
    number(stParam);
    std::vector<uint8_t> expected = imageOf(stParam), received;
    for (const size_t padding : {6, 7, 42, 43}) {
        expected[padding] = 0;
    }
    int32_t status = 0;
    chip.on(a_zvttvfapi_aud_basic_snd_set_param, [&](e_zvttvfapi_aud_basic_snd_type, const auto* record) {
        received = imageOf(*record);
        return status;
    });
    for (const int32_t answered : {0, 4}) {
        status = answered;
        EXPECT_EQ(int32_t{audio->a_hidl_zvttvfapi_aud_basic_snd_set_param(-1, stParam)}, status);
        EXPECT_EQ(received, expected);
        EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, "a_zvttvfapi_aud_basic_snd_set_param(-1, *)"));
        EXPECT_EQ(log.takeLines(),
                  linesOf("basic_snd_set_param",
                          {"D a_hidl_zvttvfapi_aud_basic_snd_set_param()...\n", "D ]Type = [4294967295]\n",
                           outcome("a_zvttvfapi_aud_basic_snd_set_param", status)}));
    }
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    EXPECT_EQ(int32_t{audio->a_hidl_zvttvfapi_aud_basic_snd_set_param(-1, stParam)}, -5);
    EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard));
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(Audio, DolbyParametersAreRefusedWithALinePerField) {
    Lines lines(8, "E ]FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n");
    lines.insert(lines.begin(), "D a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param()...\n");
    lines.push_back("E Parsing parameters from hidl to fapi_core FAIL!\n");
    lines.push_back("E a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param Fail!\n");
    EXPECT_EQ(int32_t{audio->a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param({})}, -2);
    EXPECT_EQ(log.takeLines(), linesOf("adv_snd_set_dolby_dap_param", lines));
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    EXPECT_EQ(int32_t{audio->a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param({})}, -5);
    EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, kGuard));
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST_F(Audio, AttributesAreTestedInOrderAndOnlyTheSupportedOneReachesTheLibrary) {
    const Lines invalidInput = {"E ]Invalid input param from Java!\n"};
    const Lines invalidType = {"E ]Invalid attr type!\n"};
    const Lines unsupported = {"E ]Not implement in hidl interface yet!!\n", "E ]Please implement it!!\n"};
    const Lines ok = {"D a_zvttvfapi_aud_get_attr OK!\n"}, fail = {"E a_zvttvfapi_aud_get_attr Fail!\n"};
    struct {
        uint32_t type;
        size_t input;
        uint32_t size;
        int32_t libraryStatus;
        int32_t status;
        Lines lines;
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
    std::vector<uint8_t> record(40);
    std::iota(record.begin(), record.end(), uint8_t{1});
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.type << ", " << row.input << ", " << row.size);
        std::vector<uint8_t> input(row.input);
        std::iota(input.begin(), input.end(), uint8_t{1});
        chip.on(a_zvttvfapi_aud_get_attr, [&](unsigned int, void* pInput, void* pOutput) {
            auto* const bytes = static_cast<uint8_t*>(pOutput);
            EXPECT_TRUE(std::equal(input.begin(), input.begin() + row.size, static_cast<uint8_t*>(pInput)));
            EXPECT_EQ(std::count(bytes, bytes + record.size(), 0), 40);
            std::copy(record.begin(), record.end(), bytes);
            return row.libraryStatus;
        });
        int count = 0;
        audio->a_hidl_zvttvfapi_aud_get_attr(row.type, input, row.size,
                                             [&](const auto& output, int32_t status) {
                                                 EXPECT_EQ(std::vector<uint8_t>(output),
                                                           row.status == 0 ? record : std::vector<uint8_t>());
                                                 EXPECT_EQ(status, row.status);
                                                 ++count;
                                             })
                .isOk();
        EXPECT_EQ(count, 1);
        const bool called = row.lines == ok || row.lines == fail;
        EXPECT_EQ(chip.takeCalls(),
                  called ? (Lines{kGuard, "a_zvttvfapi_aud_get_attr(4097, *, *)"}) : Lines{kGuard});
        Lines lines = row.lines;
        lines.insert(lines.begin(), "D a_hidl_zvttvfapi_aud_get_attr()...\n");
        EXPECT_EQ(log.takeLines(), linesOf("get_attr", lines));
    }
}

TEST_F(Audio, AttributeQueriesWithoutReadinessOrMemoryAreAnsweredEmpty) {
    const hidl_vec<uint8_t> input = {1, 2, 3};
    std::vector<int64_t> delivered;
    const auto deliver = [&](const auto& output, int32_t status) {
        delivered.insert(delivered.end(), {static_cast<int64_t>(output.size()), status});
    };
    const std::string entry = "D a_hidl_zvttvfapi_aud_get_attr()...\n";
    {
        const FailingAllocation refused(1);
        audio->a_hidl_zvttvfapi_aud_get_attr(4097, input, 3, deliver).isOk();
        EXPECT_EQ(refused.refusedBytes(), 3u);
    }
    EXPECT_EQ(log.takeLines(), linesOf("get_attr", {entry, "E ]malloc pInputParam fail \n"}));
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    audio->a_hidl_zvttvfapi_aud_get_attr(4097, input, 3, deliver).isOk();
    audio->a_hidl_zvttvfapi_aud_get_attr(4097, {}, 0, deliver).isOk();
    EXPECT_EQ(log.takeLines(), linesOf("get_attr", {entry, entry}));
    EXPECT_THAT(delivered, ElementsAre(0, -1, 0, -5, 0, -5));
    EXPECT_THAT(chip.takeCalls(), ElementsAre(kGuard, kGuard, kGuard));
}

TEST_F(Audio, AqParametersAreForwardedWithoutALine) {
    expectForwarded(chip, a_zvttvfapi_aud_load_aq_params, "a_zvttvfapi_aud_load_aq_params(\"aq.bin\")",
                    [&] { return audio->a_hidl_zvttvfapi_aud_set_aq_param(hidl_string("aq.bin\0cut", 10)); });
    EXPECT_THAT(log.takeLines(), IsEmpty());
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
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.path << ", " << row.entries);
        std::vector<uint16_t> table(row.entries);
        std::iota(table.begin(), table.end(), uint16_t{100});
        std::vector<std::vector<int64_t>> calls;
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        chip.on(a_zvttvfapi_aud_set_volume_table, [&](auto path, auto* data, auto count, auto* name) {
            EXPECT_EQ(std::vector<uint16_t>(data, data + count),
                      std::vector<uint16_t>(table.begin(), table.begin() + row.count));
            EXPECT_STREQ(reinterpret_cast<const char*>(name), "curve");
            calls.push_back({static_cast<int64_t>(path), count});
            return row.libraryStatus;
        });
        const Return<int32_t> status = audio->a_hidl_zvttvfapi_aud_set_volume_table(
                static_cast<ZvtTvFApiAudioOutPathEnum>(row.path), table, hidl_string("curve\0cut", 9));
        EXPECT_EQ(int32_t{status}, row.status);
        EXPECT_EQ(chip.takeCalls().size(), calls.size()) << "the library's readiness was asked";
        Lines lines = {"D " + method + "()...\n",
                       "I Volume Table Size = " + std::to_string(row.count) + ".\n"};
        if (row.count == 0) {
            EXPECT_THAT(calls, IsEmpty());
            lines.push_back("E Invalid Volume Table Size.\n");
        } else {
            EXPECT_THAT(calls, ElementsAre(ElementsAre(row.chipPath, row.count)));
            lines.push_back(outcome(method, row.status));
        }
        EXPECT_EQ(log.takeLines(), linesOf("set_volume_table", lines));
    }
    const hidl_vec<uint16_t> table = {1, 2, 3};
    const FailingAllocation refused(1);
    const Return<int32_t> status =
            audio->a_hidl_zvttvfapi_aud_set_volume_table(ZvtTvFApiAudioOutPathEnum::SPEAKER, table, "");
    EXPECT_EQ(int32_t{status}, -4);
    EXPECT_EQ(refused.refusedBytes(), 6u);
    EXPECT_THAT(chip.takeCalls(), IsEmpty());
    EXPECT_EQ(log.takeLines(),
              linesOf("set_volume_table", {"D " + method + "()...\n", "I Volume Table Size = 3.\n",
                                           "E Allocate pu16Data failed.\n"}));
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
