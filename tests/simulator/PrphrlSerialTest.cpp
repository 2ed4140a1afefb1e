#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "tests/simulator/PrphrlFixture.h"

using namespace simulator;
using fapi_core::ZvtTvFApiStdFactoryUartConfig;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** What a terminal program has open. */
class Terminal {
  public:
    explicit Terminal(const std::string& path) : mFd(open(path.c_str(), O_RDWR | O_NOCTTY)) {
        EXPECT_GE(mFd, 0) << path;
    }
    ~Terminal() { close(mFd); }

    void say(const std::string& text) const {
        EXPECT_EQ(write(mFd, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /** So many bytes, or those that came before the patience ended without any more. */
    std::string hear(size_t count, int milliseconds = 10'000) const {
        std::string heard;
        for (pollfd polled{mFd, POLLIN, 0}; heard.size() < count && poll(&polled, 1, milliseconds) > 0;) {
            char chunk[4096];
            const ssize_t got = read(mFd, chunk, std::min(sizeof(chunk), count - heard.size()));
            heard.append(chunk, got > 0 ? static_cast<size_t>(got) : 0);
        }
        return heard;
    }
    void turnEchoOn() const {
        termios line{};
        EXPECT_EQ(tcgetattr(mFd, &line), 0);
        line.c_lflag |= ICANON | ECHO;
        EXPECT_EQ(tcsetattr(mFd, TCSANOW, &line), 0);
    }
    speed_t speed() const {
        termios line{};
        EXPECT_EQ(tcgetattr(mFd, &line), 0);
        return cfgetospeed(&line);
    }

  private:
    int mFd;
};

class PrphrlSerialTest : public PrphrlFixture {
  protected:
    static std::string uart(const std::string& name) { return state() / ("uart/" + name); }
    static int32_t startStd(int port, int mode, int config) {
        return a_zvttvfapi_prphrl_std_factory_uart_start(static_cast<signed char>(port),
                                                         static_cast<signed char>(mode),
                                                         static_cast<ZvtTvFApiStdFactoryUartConfig>(config));
    }
    static int32_t startFactory(int port, int mode = 0, int speed = 0) {
        return a_zvttvfapi_prphrl_start_factory_uart(static_cast<signed char>(mode),
                                                     static_cast<signed char>(port),
                                                     static_cast<signed char>(speed));
    }
    static int32_t writeStd(const std::string& text) {
        return a_zvttvfapi_prphrl_std_factory_uart_write(bytes(text),
                                                         static_cast<unsigned char>(text.size()));
    }
    static int32_t writeFactory(const std::string& text) {
        return a_zvttvfapi_prphrl_write_factory_uart(bytes(text), static_cast<unsigned>(text.size()));
    }
};

}  // namespace

TEST_F(PrphrlSerialTest, ATerminalOnAUartHearsWhatIsWrittenAndItsBytesAreEvents) {
    ASSERT_EQ(startFactory(0), 1);
    ASSERT_EQ(startStd(1, 0, 0), kOk);
    const Terminal factory(uart("factory")), std(uart("std"));
    const std::string raw("a\0\xff\r\n\x03\x11z", 8);
    EXPECT_EQ(writeFactory(raw), 1);
    EXPECT_EQ(writeStd(raw + raw), kOk);
    EXPECT_EQ(factory.hear(8), raw);
    EXPECT_EQ(std.hear(16), raw + raw);
    factory.say(raw);
    EXPECT_THAT(events(1), ElementsAre("1 0 0 " + raw));
    std.say("x");
    EXPECT_THAT(events(1), ElementsAre("2 1 0 x"));

    ASSERT_EQ(startStd(1, 1, 0), kOk) << "again, by lines";
    std.say("one\r\ntwo\n\n" + std::string(256, 'w') + "\r" + std::string(257, 'v') + "\rhalf");
    EXPECT_THAT(events(6), ElementsAre("2 1 0 one", "2 1 0 two", "2 1 0", "2 1 0 " + std::string(256, 'w'),
                                       "2 1 0 " + std::string(256, 'v'), "2 1 0 v"));
}

TEST_F(PrphrlSerialTest, TheLineHasTheRateOfItsConfiguration) {
    const Terminal port(uart("ttyS1"));
    const struct {
        int custom, format, config;
        int32_t status;
        speed_t speed;
    } rows[] = {{0, 0, 0, kOk, B115200},
                {0, 0, 1, kOk, B9600},
                {0, 0, 2, kOk, B115200},
                {19200, 1, 2, kOk, B19200},
                {230400, 5, 2, kOk, B230400},
                {49, 0, 2, kOutOfRange, B230400},
                {4000001, 0, 2, kOutOfRange, B230400},
                {9600, 6, 2, kOutOfRange, B230400},
                {0, 0, 3, kOutOfRange, B230400}};
    for (const auto& row : rows) {
        const int32_t set = row.custom == 0 ? kOk
                                            : a_zvttvfapi_prphrl_std_factory_uart_custom_config(
                                                      1, static_cast<unsigned char>(row.format),
                                                      static_cast<unsigned>(row.custom));
        EXPECT_EQ(set == kOk ? startStd(1, 0, row.config) : set, row.status)
                << row.custom << " " << row.config;
        EXPECT_EQ(port.speed(), row.speed) << row.custom << " " << row.config;
    }
    // A rate that no constant stands for, seven bits, parity.
    ASSERT_EQ(a_zvttvfapi_prphrl_std_factory_uart_custom_config(1, 4, 31250), kOk);
    ASSERT_EQ(startStd(1, 0, 2), kOk);
    EXPECT_THAT(described(), HasSubstr("31250 7O1 std"));
    port.say("\xc1");
    EXPECT_THAT(events(1), ElementsAre("2 1 0 A"));
}

TEST_F(PrphrlSerialTest, AWriteThatNobodyReadsIsRefusedAtOnceAndNothingOfWhatWasTakenIsLost) {
    ASSERT_EQ(startStd(0, 0, 0), kOk);
    std::string taken;
    for (int i = 0; i < 10'000; ++i) {
        std::string piece = std::to_string(i) + ",";
        piece.resize(255, '.');
        const int32_t status = writeStd(piece);
        if (status != kOk) {
            ASSERT_EQ(status, kFull);
            break;
        }
        taken += piece;
    }
    EXPECT_LT(taken.size(), 255U * 10'000);
    const Terminal terminal(uart("std"));
    EXPECT_TRUE(terminal.hear(taken.size()) == taken);
    EXPECT_EQ(writeStd("again"), kOk);
    EXPECT_EQ(terminal.hear(5), "again");
    EXPECT_EQ(a_zvttvfapi_prphrl_std_factory_uart_stop(), kOk);
    ASSERT_EQ(startFactory(0), 1);
    EXPECT_EQ(writeFactory(std::string(1 << 20, 'x')), 0);
    EXPECT_EQ(writeFactory(std::string(60'000, 'x')), 1);
    EXPECT_EQ(terminal.hear(60'000).size(), 60'000U);
}

TEST_F(PrphrlSerialTest, AUartHasOnePortAndAPortOneUart) {
    EXPECT_EQ(writeFactory("x"), 0);
    EXPECT_EQ(writeStd("x"), kSwitchedOff);
    EXPECT_EQ(a_zvttvfapi_prphrl_std_factory_uart_stop(), kSwitchedOff);
    EXPECT_EQ(a_zvttvfapi_prphrl_stop_factory_uart(0), 0);
    for (const auto& [port, mode, speed] : std::vector<std::tuple<int, int, int>>{
                 {2, 0, 0}, {-1, 0, 0}, {0, 2, 0}, {0, -1, 0}, {0, 0, 7}, {0, 0, -1}}) {
        EXPECT_EQ(startFactory(port, mode, speed), 0) << port << mode << speed;
    }
    EXPECT_EQ(startStd(2, 0, 0), kOutOfRange);
    EXPECT_EQ(startStd(0, 2, 0), kOutOfRange);
    ASSERT_EQ(startFactory(0), 1);
    EXPECT_EQ(startStd(0, 0, 0), kBusy);
    EXPECT_EQ(startFactory(1), 0);
    EXPECT_EQ(a_zvttvfapi_prphrl_stop_factory_uart(1), 0);
    ASSERT_EQ(startStd(1, 0, 0), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_stop_factory_uart(0), 1);
    EXPECT_FALSE(std::filesystem::is_symlink(uart("factory")));
    EXPECT_EQ(startFactory(1), 0);
    EXPECT_EQ(startFactory(0), 1);
}

TEST_F(PrphrlSerialTest, TheConsoleObeysWhereItIsAndGivesWayToAUart) {
    const Terminal first(uart("ttyS0")), second(uart("ttyS1"));
    first.say("gpio 12x\x7f 1\r\n");
    const std::string answer = "gpio 12x\b \b 1\r\nok\r\nboard> ";
    EXPECT_EQ(first.hear(answer.size()), answer);
    unsigned char level = 0;
    EXPECT_EQ(a_zvttvfapi_prphrl_get_gpio_status(12, &level), kOk);
    EXPECT_EQ(level, 1);
    ASSERT_EQ(startFactory(0), 1);
    first.say("gpio 12 0\r");
    EXPECT_THAT(events(1), ElementsAre("1 0 0 gpio 12 0\r"));
    EXPECT_EQ(a_zvttvfapi_prphrl_switch_to_ttys1(true), kOk);
    second.say("gpio 99 0\r");
    EXPECT_THAT(second.hear(40), HasSubstr("there is no such line"));
    EXPECT_EQ(a_zvttvfapi_prphrl_get_gpio_status(12, &level), kOk);
    EXPECT_EQ(level, 1);

    // A program that has the line echo would otherwise answer the console's own words for ever.
    second.turnEchoOn();
    second.say("gpio 12 0\n");
    EXPECT_THAT(second.hear(4096, 300).size(), testing::Lt(300U));
}

TEST_F(PrphrlSerialTest, APipeJoinsTheConsoleToAnotherProgram) {
    const auto pipe = [](unsigned char on, const std::string& name) {
        return a_zvttvfapi_prphrl_set_uart_pipe_mode(on, bytes(name));
    };
    const Terminal console(uart("ttyS0"));
    for (const std::string& name :
         {std::string(), std::string("../x"), std::string("a b"), std::string(33, 'a')}) {
        EXPECT_EQ(pipe(1, name), kBadName) << name;
    }
    EXPECT_EQ(pipe(0, "modem"), kNotFound);
    ASSERT_EQ(pipe(1, "modem"), kOk);
    EXPECT_EQ(pipe(1, "modem"), kOk);
    EXPECT_EQ(pipe(1, "other"), kBusy);
    {
        const Terminal program(uart("pipe-modem"));
        console.say("to the modem\r");
        EXPECT_EQ(program.hear(13), "to the modem\r");
        program.say("from it");
        EXPECT_EQ(console.hear(7), "from it");
    }
    EXPECT_EQ(pipe(0, "other"), kNotFound);
    EXPECT_EQ(pipe(0, "modem"), kOk);
    EXPECT_FALSE(std::filesystem::is_symlink(uart("pipe-modem")));
    console.say("\r");
    EXPECT_EQ(console.hear(9), "\r\nboard> ");
}
