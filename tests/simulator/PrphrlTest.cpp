#include <atomic>
#include <thread>

#include "tests/simulator/PrphrlFixture.h"

using namespace simulator;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class PrphrlTest : public PrphrlFixture {
  protected:
    /** The level, or the status of a failure. */
    static int32_t gpio(unsigned line) {
        unsigned char level = 7;
        const int32_t status = a_zvttvfapi_prphrl_get_gpio_status(line, &level);
        return status == kOk ? level : status;
    }

    static int32_t writeI2c(int port, unsigned short slave, const std::string& address,
                            const std::string& data) {
        return a_zvttvfapi_prphrl_write_to_iic(port, slave, static_cast<unsigned short>(address.size()),
                                               bytes(address), static_cast<unsigned short>(data.size()),
                                               bytes(data));
    }
    static std::string readI2c(int port, unsigned short slave, const std::string& address,
                               unsigned short count, unsigned short mode = 0) {
        std::string data(count, '?');
        const int32_t status = a_zvttvfapi_prphrl_read_from_iic(
                port, slave, mode, static_cast<unsigned short>(address.size()), bytes(address), count,
                reinterpret_cast<unsigned char*>(data.data()));
        return status == kOk ? data : std::to_string(status);
    }
};

}  // namespace

TEST_F(PrphrlTest, AGpioLineIsDrivenByTheBoardOrByTheWorld) {
    EXPECT_EQ(gpio(63), 0);
    EXPECT_EQ(drive("gpio 63 1"), kOk);
    EXPECT_EQ(gpio(63), 1);
    EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(63, 0), kOk);
    EXPECT_EQ(gpio(63), 0);
    EXPECT_EQ(drive("gpio 63 1"), kOutOfRange) << "the board drives it";
    EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(63, 2), kOk);
    EXPECT_EQ(gpio(63), 1) << "let go, it is what the world makes it";
    EXPECT_EQ(gpio(64), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(64, 0), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(0, 3), kOutOfRange);
    for (const char* order :
         {"gpio", "gpio 1", "gpio 1 2", "gpio 64 1", "gpio x 1", "gpio 1 1 1", "gpio -1 1"}) {
        EXPECT_EQ(drive(order), kOutOfRange) << order;
    }
}

TEST_F(PrphrlTest, TheMonitorTellsOfTheChangesThatItWasAskedFor) {
    const struct {
        unsigned trigger;
        std::vector<std::string> events;
    } rows[] = {{0, {"3 5 1", "3 5 0", "3 5 1", "4 9 ir 1"}},
                {1, {"3 5 1", "3 5 1", "4 9 ir 1"}},
                {2, {"3 5 0", "4 9 ir 1"}}};
    for (const auto& row : rows) {
        ASSERT_EQ(drive("gpio 5 0"), kOk);
        ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(5, row.trigger, 0), kOk);
        for (const char* order : {"gpio 6 1", "gpio 5 1", "gpio 5 1", "gpio 5 0"}) {
            EXPECT_EQ(drive(order), kOk);
        }
        EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(5, 1), kOk);
        EXPECT_EQ(drive("irkey 1 9 press"), kOk);
        EXPECT_EQ(events(row.events.size()), row.events) << row.trigger;
        EXPECT_EQ(a_zvttvfapi_prphrl_gpio_monitor_stop(), kOk);
        EXPECT_EQ(a_zvttvfapi_prphrl_control_gpio(5, 2), kOk);
    }
    EXPECT_EQ(a_zvttvfapi_prphrl_gpio_monitor_stop(), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(64, 0, 0), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(0, 3, 0), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(0, 0, 60'001), kOutOfRange);

    // Looking only now and then, it misses a pulse and sees what stays.
    ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(7, 0, 500), kOk);
    const auto start = std::chrono::steady_clock::now();
    for (const char* order : {"gpio 7 1", "gpio 7 0", "gpio 7 1"}) {
        EXPECT_EQ(drive(order), kOk);
    }
    EXPECT_THAT(events(1), ElementsAre("3 7 1"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(400));
}

TEST_F(PrphrlTest, TheMonitorCanBeStartedAndStoppedByAllThreadsAtOnce) {
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t) {
        threads.emplace_back([&done, t] {
            for (unsigned i = 0; !done; ++i) {
                a_zvttvfapi_prphrl_gpio_monitor_start(t, 0, i % 3);
                a_zvttvfapi_prphrl_control_gpio(t, i % 2);
                a_zvttvfapi_prphrl_gpio_monitor_stop();
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    done = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    // So many changes may have been under way that more would have been refused.
    do {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    } while (!events(0).empty());
    ASSERT_EQ(a_zvttvfapi_prphrl_control_gpio(9, 0), kOk);
    ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(9, 0, 0), kOk);
    ASSERT_EQ(a_zvttvfapi_prphrl_control_gpio(9, 1), kOk);
    EXPECT_THAT(events(1), ElementsAre("3 9 1"));
    ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_stop(), kOk);
    for (unsigned line = 0; line < 10; ++line) {
        a_zvttvfapi_prphrl_control_gpio(line, 0);
        a_zvttvfapi_prphrl_control_gpio(line, 1);
    }
    drive("irkey 1 1 press");
    EXPECT_THAT(events(1), ElementsAre("4 1 ir 1")) << "nothing is monitored";
}

TEST_F(PrphrlTest, KeysAreToldOfWhileTheKeypadIsRead) {
    EXPECT_EQ(drive("key 0x73"), kOk);
    EXPECT_EQ(drive("adc 0 256"), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_start_keypad(), 1);
    EXPECT_THAT(events(1), ElementsAre("4 227 keypad 1")) << "held when it started";
    EXPECT_EQ(a_zvttvfapi_prphrl_start_adc(1), kOk);
    EXPECT_EQ(drive("key 116 press"), kOk);
    EXPECT_EQ(drive("adc 0 41"), kOk);
    EXPECT_EQ(drive("adc 1 300"), kOk);
    EXPECT_THAT(events(5),
                ElementsAre("5 0 0", "4 227 keypad 0", "4 116 keypad 1", "5 0 41", "4 116 keypad 0"));
    EXPECT_EQ(a_zvttvfapi_prphrl_start_adc(0), kOk);
    EXPECT_EQ(drive("key 0x73"), kOk);
    EXPECT_THAT(events(2), ElementsAre("4 115 keypad 1", "4 115 keypad 0"));
    EXPECT_EQ(a_zvttvfapi_prphrl_stop_keypad(), 1);
    for (const char* order :
         {"key 1", "key", "key 116 hold", "key 116 press release", "adc 4 0", "adc 0 1024"}) {
        EXPECT_EQ(drive(order), kOutOfRange) << order;
    }
    const std::pair<std::pair<unsigned, unsigned>, int32_t> readings[] = {
            {{0, 0}, 255}, {{0, 1}, 255}, {{1, 0}, 75}, {{1, 1}, 255}, {{4, 0}, 0}, {{0, 2}, 0}};
    for (const auto& [at, value] : readings) {
        EXPECT_EQ(a_zvttvfapi_prphrl_get_sar_adc(at.first, at.second), value) << at.first << " " << at.second;
    }
}

TEST_F(PrphrlTest, ABlockedKeyOfARemoteControlIsNotHeard) {
    constexpr unsigned long long kWide = 0x1'0000'0001;
    EXPECT_EQ(a_zvttvfapi_prphrl_add_ir_block_key(kWide, 0x1d), kOk);
    const auto press = [] {
        for (const char* order : {"irkey 0x100000001 0x1d", "irkey 1 0x1d", "irkey 0x100000001 2"}) {
            drive(order);
        }
        drive("irkey 9 9 press");  // what comes last, or would
        drive("irkey 9 9 release");
    };
    const std::vector<std::string> other = {"4 29 ir 1", "4 29 ir 0", "4 2 ir 1",
                                            "4 2 ir 0",  "4 9 ir 1",  "4 9 ir 0"};
    press();
    EXPECT_EQ(events(8).size(), 8U) << "the list counts once it is switched on";
    EXPECT_EQ(a_zvttvfapi_prphrl_enable_ir_block_key(1), kOk);
    press();
    EXPECT_EQ(events(6), other);
    EXPECT_EQ(a_zvttvfapi_prphrl_invert_ir_block_key(1), kOk);
    press();
    EXPECT_THAT(events(2), ElementsAre("4 29 ir 1", "4 29 ir 0"));
    EXPECT_EQ(drive("irkey 9 9"), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_prphrl_enable_ir_block_key(0), kOk);
    EXPECT_EQ(drive("irkey 9 9"), kOk);
    EXPECT_EQ(events(2).size(), 2U);
    for (unsigned i = 1; i < 256; ++i) {
        ASSERT_EQ(a_zvttvfapi_prphrl_add_ir_block_key(0, i), kOk);
    }
    EXPECT_EQ(a_zvttvfapi_prphrl_add_ir_block_key(0, 256), kFull);
    EXPECT_EQ(a_zvttvfapi_prphrl_add_ir_block_key(0, 255), kOk);
}

TEST_F(PrphrlTest, AnI2cDeviceAnswersAtItsAddressWhileItsBusIsEnabled) {
    const std::string blank(256, '\xff');
    EXPECT_EQ(readI2c(0, 0x50, std::string(1, '\0'), 256), blank);
    EXPECT_EQ(writeI2c(0, 0x50, "\x10", "abc"), kOk);
    EXPECT_EQ(writeI2c(0, 0x50, "",
                       "\xfe"
                       "yz"),
              kOk)
            << "the place may come with the data";
    const std::string after = std::string(16, '\xff') + "abc" + std::string(235, '\xff') + "yz";
    EXPECT_EQ(contentOf(state() / "i2c/eeprom.bin"), after) << "on the disk when it is acknowledged";
    EXPECT_EQ(readI2c(0, 0x50, "\xfe", 4, 1), std::string("yz\xff\xff"));
    EXPECT_EQ(readI2c(0, 0x50, "", 2), "\xff\xff") << "goes on where it was";
    EXPECT_EQ(readI2c(1, 0x2c, std::string(1, '\0'), 2), "\x5a\x01");
    EXPECT_EQ(writeI2c(1, 0x2c, "\x1e", "no"), kOk);
    EXPECT_EQ(readI2c(1, 0x2c, "\x1e", 3), "no\x5a");
    EXPECT_EQ(readI2c(0, 0x2c, "\x1e", 2), std::string(2, '\0')) << "another device";

    const struct {
        int32_t status, expected;
    } refused[] = {
            {writeI2c(0, 0x50, "\xff", "12"), kOutOfRange},  {writeI2c(1, 0x2c, "\x1f", "12"), kOutOfRange},
            {writeI2c(1, 0x2c, "\x0f", "1"), kDenied},       {writeI2c(0, 0x51, "\x10", "1"), kAbsent},
            {writeI2c(2, 0x50, "\x10", "1"), kAbsent},       {writeI2c(4, 0x50, "\x10", "1"), kOutOfRange},
            {writeI2c(-1, 0x50, "\x10", "1"), kOutOfRange},  {writeI2c(0, 0xa0, "\x10", "1"), kOutOfRange},
            {a_zvttvfapi_prphrl_enable_iic(4), kOutOfRange}, {a_zvttvfapi_prphrl_disable_iic(0), kOk},
            {writeI2c(0, 0x50, "\x10", "1"), kSwitchedOff}};
    for (const auto& row : refused) {
        EXPECT_EQ(row.status, row.expected) << "row " << &row - refused;
    }
    EXPECT_EQ(readI2c(0, 0x50, "\x10", 1), std::to_string(kSwitchedOff));
    EXPECT_EQ(readI2c(1, 0x2c, "\x10", 1, 2), std::to_string(kOutOfRange));
    EXPECT_EQ(readI2c(1, 0x2c, "\x10\x11", 1), std::to_string(kOutOfRange));
    EXPECT_EQ(a_zvttvfapi_prphrl_enable_iic(0), kOk);
    EXPECT_EQ(contentOf(state() / "i2c/eeprom.bin"), after);

    const std::pair<std::pair<unsigned short, unsigned short>, int32_t> addresses[] = {
            {{0, 0}, 0x50}, {{1, 0}, 0x2c}, {{1, 1}, 0x2c}, {{0, 1}, kNotFound}, {{2, 0}, kNotFound}};
    for (const auto& [device, address] : addresses) {
        unsigned short slave = 0;
        const int32_t status = a_zvttvfapi_prphrl_get_iic_slave_address(device.first, device.second, &slave);
        EXPECT_EQ(status == kOk ? slave : status, address) << device.first << " " << device.second;
    }
}

TEST_F(PrphrlTest, APwmOutputKeepsEachAttributeWithinItsRange) {
    const struct {
        int attribute, channel;
        unsigned value;
        int32_t status;
        unsigned after;
    } rows[] = {{0, 17, 1, kOk, 1},
                {0, 17, 1'000'000, kOk, 1'000'000},
                {0, 17, 0, kOutOfRange, 1'000'000},
                {0, 17, 1'000'001, kOutOfRange, 1'000'000},
                {1, 17, 100, kOk, 100},
                {1, 17, 101, kOutOfRange, 100},
                {2, 17, 1, kOk, 1},
                {2, 17, 2, kOutOfRange, 1},
                {1, 16, 5, kOk, 5},
                {3, 0, 1, kOutOfRange, 0},
                {0, 18, 1, kOutOfRange, 0}};
    for (const auto& row : rows) {
        const auto attribute = static_cast<fapi_core::ZvtTvFApiPwmAttr>(row.attribute);
        const auto channel = static_cast<fapi_core::ZvtTvFApiPwmChannel>(row.channel);
        EXPECT_EQ(a_zvttvfapi_prphrl_pwm_set_attr(attribute, channel, row.value), row.status) << row.value;
        unsigned value = 0;
        a_zvttvfapi_prphrl_pwm_get_attr(attribute, channel, &value);
        EXPECT_EQ(value, row.after) << row.attribute << " " << row.value;
    }
    EXPECT_THAT(described(), HasSubstr("pwm 17 1000000 Hz 100 % on"));
}

TEST_F(PrphrlTest, ARemoteControlIsKnownByItsNameOrFromItsFile) {
    write(state() / "ini/remotes.ini", "[remotes]\nhotel = sirc\nnew = nec\nodd = morse\n");
    const std::pair<std::string, int32_t> rows[] = {{"factory", 0}, {"user", 2},       {"hotel", 3},
                                                    {"new", 0},     {"odd", kBadData}, {"none", kNotFound},
                                                    {"", kBadName}, {"a\nb", kBadName}};
    for (const auto& [name, expected] : rows) {
        unsigned char protocol = 255;
        const int32_t status = a_zvttvfapi_prphrl_get_rc_format(bytes(name), &protocol);
        EXPECT_EQ(status == kOk ? protocol : status, expected) << name;
        EXPECT_EQ(status != kOk, protocol == 255) << name;
    }
}
