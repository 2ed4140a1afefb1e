// The service's calls as another process is shown them, and as it makes them again.

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/process/ServiceFixture.h"

namespace {

using nlohmann::ordered_json;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;

class TraceTest : public ServiceFixture {
  protected:
    static std::string call(std::vector<std::string> words) {
        words.insert(words.begin(), {"call", "--json"});
        return tool(words, testing::AnyOf(0, 1));
    }
};

TEST_F(TraceTest, ShowsWhatACallerGaveAndGotAndMakesTheCallAgain) {
    std::string bands = R"({"u32Level":4294967295,"u16GeqBandCount":2,"au32GeqLevel":[9,8,7,6,5,4,3,2],)"
                        R"("u16PeqBandCount":1,"astPeqBand":[{"u32Frequency":20,"s16Gain":-120,"u16Q":7})";
    for (int i = 1; i < 33; ++i) {
        bands += R"(,{"u32Frequency":0,"s16Gain":0,"u16Q":)" + std::to_string(i) + "}";
    }
    bands += "]}";
    const std::string path = "/a\"\\\n\x01\x7fü";
    const std::string escapedPath = R"("/a\"\\\n\u0001)"
                                    "\x7fü\"";
    const struct {
        std::vector<std::string> words;
        std::string arguments;
    } rows[] = {
            {{"peripheral", "control_gpio", "4294967295", "0"}, R"({"u32Gpio":4294967295,"u32Level":0})"},
            {{"peripheral", "set_hdmi_hpd", "1", "true"}, R"({"u8Port":1,"bPlugged":true})"},
            {{"peripheral", "set_hdmi_edid_version", "-2147483648", "-128"},
             R"({"s32Port":-2147483648,"s8Version":-128})"},
            {{"peripheral", "add_ir_block_key", "18446744073709551615", "0"},
             R"({"u64CustomCode":18446744073709551615,"u64KeyCode":0})"},
            {{"peripheral", "pwm_set_attr", "duty", "77", "5"},
             R"({"eAttr":"DUTY","eChannel":77,"u32Value":5})"},
            {{"system", "write_file_byte", path, "41c3bc0a", "w"},
             R"({"strPath":)" + escapedPath + R"(,"vecData":"41c3bc0a","strMode":"w"})"},
            {{"system", "read_file", path, "9", "1"},
             R"({"strPath":)" + escapedPath + R"(,"u32Length":9,"u64Offset":1})"},
            {{"system", "check_file", "/\xff"}, R"({"strPath":{"hex":"2fff"}})"},
            {{"system", "check_file", "/\xed\xa0\x80"}, R"({"strPath":{"hex":"2feda080"}})"},
            {{"system", "secure_storage_encrypt_key", "a", "b", "c0ffee"},
             R"({"strStorageName":"a","strKeyName":"b","vecUserKey":"<3 bytes withheld>"})"},
            {{"audio", "basic_snd_set_param", "-1", bands}, R"({"s32Type":-1,"stParam":)" + bands + "}"},
            {{"manager", "set_callback", "null"}, R"({"callback":null})"},
    };
    startAndWait();
    const ChildProcess listening = monitor();
    std::vector<ordered_json> answers;
    for (const auto& row : rows) {
        answers.push_back(ordered_json::parse(call(row.words)));
        answers.back().erase("status");  // the name
        answers.back().erase("reason");
    }
    ASSERT_TRUE(eventually([&] { return callsReported().size() == answers.size(); }));
    const std::vector<ordered_json> calls = callsReported();
    for (size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(rows[i].arguments, calls[i]["arguments"].dump());
        EXPECT_EQ(answers[i], calls[i]["results"]) << calls[i];
    }
    std::filesystem::remove_all(mState);
    startAndWait();
    EXPECT_THAT(tool({"replay", mReport}), testing::HasSubstr(" 0 with other results, 1 not made\n"));
}

TEST_F(TraceTest, OneWhoDoesNotReadCostsNobodyAndIsToldHowManyCallsItMissed) {
    startAndWait();
    const std::string bytes = mState + ".bytes";
    std::ofstream(bytes) << std::string(500'000, 'x');
    const ChildProcess listening = monitor();
    listening.signal(SIGSTOP);
    constexpr int kCalls = 20;  // of a MB each, of which 8 wait
    const std::vector<std::string> large = {"system", "write_file_byte", "/x", "@" + bytes, "w"};
    for (int i = 0; i < kCalls; ++i) {
        call(large);
    }
    listening.signal(SIGCONT);
    const auto lost = [this] {  // as the last line says
        const std::string text = contentOf(mReport);
        const size_t end = text.rfind('\n');
        if (end == std::string::npos) {
            return 0;
        }
        const size_t start = text.rfind('\n', end - 1) + 1;
        return ordered_json::parse(text.substr(start, end - start)).value("lost", 0);
    };
    EXPECT_TRUE(eventually([&] { return lost() > 0; }));
    EXPECT_EQ(kCalls, static_cast<int>(callsReported().size()) + lost());
    EXPECT_GT(callsReported().size(), 7u);
    call(large);
    EXPECT_TRUE(eventually([&] { return lost() == 0; })) << "there is room again";
    std::filesystem::remove(bytes);
}

TEST_F(TraceTest, FourMayLookAndOneWhoGoesMakesRoom) {
    startAndWait();
    std::vector<ChildProcess> listening;
    while (listening.size() < 4) {
        listening.push_back(monitor());
    }
    const auto codeOfAnother = [] {
        return ChildProcess({getenv("ZVTTV_TEST_FAPICTL"), "monitor", "--timeout", "2"}, "/dev/null").wait();
    };
    EXPECT_EQ(1, codeOfAnother());
    listening.pop_back();
    EXPECT_TRUE(eventually([&] { return codeOfAnother() == 0; }));
    listening.front().signal(SIGTERM);
    EXPECT_EQ(0, listening.front().wait());
    service().stop(SIGKILL);
    EXPECT_EQ(4, listening.back().wait());
}

TEST_F(TraceTest, APipeThatHasAReaderForEverIsRefused) {
    startAndWait();
    const std::string path = mState + "/fifo";
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    const int both = open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(both, 0);
    native_handle_t* const native = native_handle_create(1, 0);
    native->data[0] = both;
    ASSERT_TRUE(IZvtTvFApiManager::getService()->debug(native, {"trace"}).isOk());
    native_handle_delete(native);
    std::string page(4096, '\0');
    page.resize(static_cast<size_t>(std::max<ssize_t>(0, read(both, page.data(), page.size()))));
    close(both);
    EXPECT_THAT(page, testing::HasSubstr("\ntrace: refused, it goes to the writing end of a pipe alone\n"));
}

}  // namespace
