// The peripherals of the real service, called and watched with the tool, on the real terminals of the board.

#include <gmock/gmock.h>
#include <poll.h>

#include "tests/process/ServiceFixture.h"

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class PeripheralTest : public ServiceFixture {
  protected:
    PeripheralTest() { startAndWait(); }

    static std::string call(std::vector<std::string> words, int code = 0) {
        words.insert(words.begin(), {"call", "peripheral"});
        words.push_back("--json");
        return tool(words, code);
    }
};

TEST_F(PeripheralTest, ATerminalOnTheFactoryUartAndAGpioLineReachAWatchingClient) {
    const std::string errors = mState + "/watch";
    ChildProcess watching({getenv("ZVTTV_TEST_FAPICTL"), "watch", "--module", "prphrl", "--count", "2",
                           "--timeout", "60", "--json"},
                          errors);
    ASSERT_TRUE(eventually([&] { return contentOf(errors).find("watching") != std::string::npos; }));
    EXPECT_THAT(call({"set_factory_uart_onoff", "true", "0", "1", "0"}), HasSubstr("true"));
    const int terminal = open((mState + "/uart/factory").c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);

    // Two bytes more than the text has: they are sent, as zeros.
    EXPECT_THAT(call({"write_factory_uart", "hello", "7"}), HasSubstr("true"));
    std::string heard;
    for (pollfd polled{terminal, POLLIN, 0}; heard.size() < 7 && poll(&polled, 1, 10'000) > 0;) {
        char c;
        heard.append(&c, read(terminal, &c, 1) == 1 ? 1 : 0);
    }
    EXPECT_EQ(heard, std::string("hello\0\0", 7));

    EXPECT_EQ(4, write(terminal, "\x01\x02\xff\n", 4));
    ASSERT_TRUE(eventually([&] {
        pollfd polled{watching.output(), POLLIN, 0};
        return poll(&polled, 1, 0) > 0;
    }));
    call({"set_gpio_monitor_onoff", "true", "12", "1", "0"});
    std::ofstream(mState + "/raise") << "gpio 12 1" << std::endl;
    const std::string events = watching.readAll();
    const size_t second = events.find('\n') + 1;
    EXPECT_THAT(events.substr(0, second), AllOf(HasSubstr(R"("type":1048577)"), HasSubstr("0102ff0a")));
    EXPECT_THAT(events.substr(second), AllOf(HasSubstr(R"("type":1048579)"), HasSubstr(R"("value":12)")));
    EXPECT_EQ(0, watching.wait());
    close(terminal);
}

TEST_F(PeripheralTest, TheToolBringsAnEdidThatTheServiceKeepsOverARestart) {
    const std::string file = mState + "/edid.bin";
    EXPECT_THAT(tool({"edid", "2"}),
                AllOf(HasSubstr("Source physical address: 2.0.0.0"), HasSubstr("3840x2160")));
    tool({"edid", "2", file});
    EXPECT_EQ(contentOf(file).size(), 256U);
    // Port 3 becomes like it; what is no EDID is refused.
    call({"set_hdmi_edid_data", "3", "1", "256", "@" + file});
    call({"set_hdmi_edid_data", "3", "1", "256", "00"}, 1);
    start();
    ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); }));
    EXPECT_EQ(tool({"edid", "3", "-"}), contentOf(file));
    // One without a second block is as short as it says.
    std::string block = contentOf(file).substr(0, 128);
    block[127] = static_cast<char>(block[127] + std::exchange(block[126], '\0'));
    std::ofstream(file + "1") << block;
    call({"set_hdmi_edid_data", "3", "1", "128", "@" + file + "1"});
    EXPECT_EQ(tool({"edid", "3", "-"}), block);
    tool({"edid", "9"}, 1);
    tool({"edid", "two"}, 2);
}

}  // namespace
