#include "adapters/peripheral/ZvtTvFApiPeripheral.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "chiplayer/prphrl.h"
#include "tests/adapters/Adapter.h"
#include "tests/fake/FailingAllocation.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using Config = ZvtTvFApiStdFactoryUartConfig;
using Attr = ZvtTvFApiPwmAttr;
using Channel = ZvtTvFApiPwmChannel;

// count bytes that differ from their neighbours, none of them 0, and their period is no power of 2.
Bytes numbered(size_t count) {
    Bytes bytes(count);
    std::generate(bytes.begin(), bytes.end(), [n = 0]() mutable { return uint8_t(n++ % 251 + 1); });
    return bytes;
}
Bytes first(size_t count, Bytes bytes) {
    bytes.resize(count);
    return bytes;
}

// The lines that tell bytes one by one.
std::string byteLines(const std::string& text, const Bytes& bytes) {
    std::ostringstream out;
    for (size_t i = 0; i < bytes.size(); ++i) {
        out << " D " << text << '[' << i << "] = 0x" << std::hex << +bytes[i] << std::dec << '\n';
    }
    return out.str();
}

class Peripheral : public Adapter<ZvtTvFApiPeripheral> {
  protected:
    Peripheral() : Adapter("ZvtTvFApiPeripheral", "prphrl") {}

    const hidl_string strName{"n\0cut", 5};
};

TEST_F(Peripheral, PassesArgumentsOnAndTheResultBackAndSaysNothingWhileNotReady) {
    const std::string zeros = show(Bytes(256));
    const hidl_vec<uint8_t> vecThree = {1, 0, 0xFE};
    expectRows({
            {METHOD(a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff, true, -1, 2, 127),
             "start_factory_uart(-1, 2, 127)", "0", " E set_factory_uart_start s32Ret 249", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff, false, -1, 2, 127),
             "stop_factory_uart(2)", "0", " E set_factory_uart_stop s32Ret 249", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_write_factory_uart, strName, 1), "write_factory_uart(\"n\", 1)",
             "1", " D write_factory_uart s32Ret 249", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff, true, -1, 2, Config::CUSTOM),
             "std_factory_uart_start(-1, 2, 2)"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff, false, -1, 2, Config::CUSTOM),
             "std_factory_uart_stop()"},
            {METHOD(a_hidl_zvttvfapi_prphrl_write_std_factory_uart, vecThree),
             "std_factory_uart_write(<0100fe>, 3)", "-7",
             " D a_hidl_zvttvfapi_prphrl_write_std_factory_uart()...\n I Writting data Size = 3.\n"
             " E a_hidl_zvttvfapi_prphrl_write_std_factory_uart Fail!\n"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_std_factory_uart_custom_config, -1, 255, 4000000000),
             "std_factory_uart_custom_config(-1, 255, 4000000000)"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_keypad_code, true), "start_keypad()", "1",
             " E get_keypad_code s32Ret 1", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_keypad_code, false), "stop_keypad()", "1",
             " E get_keypad_code s32Ret 1", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_adc_in_keypad, true), "start_adc(1)", "-7",
             " D get_adc_in_keypad s32Ret -7", "0"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_rc_format, strName, results()), "get_rc_format(\"n\", *)",
             "255 -7", " D ZvtTvFApiPeripheral u8Protocol 255", "255 -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_enable_iic, -1), "enable_iic(-1)", "-7",
             " D a_zvttvfapi_prphrl_enable_iic port=-1 s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_disable_iic, 3), "disable_iic(3)", "-7",
             " D a_zvttvfapi_prphrl_disable_iic port=3 s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_read_from_i2c, -1, 80, 65535, vecThree, 2, results()),
             "read_from_iic(-1, 80, 65535, 3, <0100fe>, 2, *)", "<0000> -7",
             " D a_hidl_zvttvfapi_prphrl_read_from_iic s32Ret=-7" + byteLines("IIC Return Read data", {0, 0}),
             "<> -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_write_to_i2c, -1, 65535, vecThree, 2, vecThree),
             "write_to_iic(-1, 65535, 3, <0100fe>, 2, <0100>)", "-7",
             " D a_hidl_zvttvfapi_prphrl_write_to_iic s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_control_gpio, 4000000000, 2), "control_gpio(4000000000, 2)", "-7",
             " D a_hidl_zvttvfapi_prphrl_control_gpio s32Ret=-7"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_get_gpio_status, 9, results()), "get_gpio_status(9, *)", "0 -7",
             " D a_zvttvfapi_prphrl_get_gpio_status s32Ret=-7 D u8GpioStatus 0", "0 -7", false},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff, true, 1, 2, 3),
             "gpio_monitor_start(1, 2, 3)"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff, false, 1, 2, 3), "gpio_monitor_stop()"},
            {METHOD(a_hidl_zvttvfapi_prphrl_reload_hdcp_key, strName, "k"), "reload_hdcp_key(\"n\", \"k\")",
             "-7", " D a_hidl_zvttvfapi_prphrl_reload_hdcp_key s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_enable_cec, true), "enable_cec(1)", "-7",
             " D a_hidl_zvttvfapi_prphrl_enable_cec s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_cec_status, results()), "get_cec_status(*)", "0 -7",
             " D CEC status 0 D a_hidl_zvttvfapi_prphrl_get_cec_status s32Ret=-7", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_earc_status, results()), "get_earc_status(*)", "0 -7",
             " D EArc status 0 D a_hidl_zvttvfapi_prphrl_get_earc_status s32Ret=-7", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_get_iic_slave_address, 65535, 1, results()),
             "get_iic_slave_address(65535, 1, *)", "0 -7",
             " D a_zvttvfapi_prphrl_get_iic_slave_address s32Ret -7", "0 -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_pwm_set_attr, Attr::DUTY, Channel::CHANNEL_9, 4000000000),
             "pwm_set_attr(1, 9, 4000000000)", "-7", " D a_zvttvfapi_prphrl_pwm_set_attr s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_pwm_get_attr, Attr::DUTY, Channel::CHANNEL_9, results()),
             "pwm_get_attr(1, 9, *)", "0 -7", " D value: 0 D a_zvttvfapi_prphrl_pwm_get_attr s32Ret=-7",
             "0 -5"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_hdmi_edid_version, -1, -2),
             "set_hdmi_edid_version(4294967295, -2)"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_uart_pipe_mode, true, strName),
             "set_uart_pipe_mode(1, \"n\")", "-7", " D a_zvttvfapi_prphrl_set_uart_pipe_mode s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_enable_ir_block_key, false), "enable_ir_block_key(0)", "-7",
             " D a_zvttvfapi_prphrl_enable_ir_block_key s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_add_ir_block_key, 1ULL << 32, ~0ULL),
             "add_ir_block_key(4294967296, 18446744073709551615)", "-7",
             " D a_zvttvfapi_prphrl_add_ir_block_key s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_invert_ir_block_key, true), "invert_ir_block_key(1)", "-7",
             " D a_zvttvfapi_prphrl_invert_ir_block_key s32Ret=-7"},
            {METHOD(a_hidl_zvttvfapi_prphrl_set_hdmi_hpd, 255, true), "set_hdmi_hpd(255, 1)", "-7", "", "-7",
             false},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data, 4000000000, results()),
             "get_hdmi_edid_data(4000000000, *)", zeros + " -7",
             " D a_hidl_zvttvfapi_prphrl_get_hdmi_edid_data s32Ret=-7" + byteLines("Edid data", Bytes(256)),
             zeros + " -5"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data, -1, -2, -3, vecThree),
             "set_hdmi_edid_data(4294967295, -2, 4294967293, " + show(first(256, {1, 0, 0xFE})) + ")", "-7",
             " D a_zvttvfapi_prphrl_set_hdmi_edid_data s32Ret=-7"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_get_sar_adc, -1, 2), "get_sar_adc(4294967295, 2)", "249", "",
             "0"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_reload_hdcp, ZvtTvFApiReloadHdcp::STATE), "reload_hdcp(0)"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_reload_hdcp, ZvtTvFApiReloadHdcp{1}), "", "-2"},
            {METHOD(a_hidl_zvttvfapi_prphrl_switch_to_ttys1, true), "switch_to_ttys1(1)", "0"},
    });
}

TEST_F(Peripheral, TakesTheLowEightBitsOfAResultThatIsNoStatus) {
    for (const int32_t result : {0, 1, 2, 0xFF, 0x100, 0x101, 300, -256, -255}) {
        SCOPED_TRACE(result);
        chip.returnsOtherwise(result);
        const int low = result & 0xFF;
        for (const bool on : {false, true}) {
            EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff, on, 1, 2, 3).answer,
                      show(low == 1));
            EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_get_keypad_code, on).answer, show(low != 0));
            EXPECT_EQ(mOutcome.lines, " E get_keypad_code s32Ret " + show(low != 0));
        }
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_write_factory_uart, "", 0).answer, show(low != 0));
        EXPECT_EQ(mOutcome.lines, " D write_factory_uart s32Ret " + show(low));
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_prphrl_get_sar_adc, 1, 2).answer, show(low));
    }
}

TEST_F(Peripheral, LendsAFactoryUartTextAndHoldsEveryByteOfALongerCount) {
    const hidl_string strText("ab\0d", 4);
    for (const uint32_t u32Count : {0u, 3u, 4u, 5u, 1u << 28}) {
        SCOPED_TRACE(u32Count);
        chip.on(a_zvttvfapi_prphrl_write_factory_uart,
                [&](const unsigned char* pu8Text, unsigned int u32Sent) {
                    EXPECT_EQ(u32Sent, u32Count);
                    EXPECT_EQ(Bytes(pu8Text, pu8Text + std::min(u32Count, 4u)),
                              first(std::min(u32Count, 4u), {'a', 'b', 0, 'd'}));
                    EXPECT_EQ(static_cast<const void*>(pu8Text) == strText.c_str(), u32Count <= 4);
                    return u32Count <= 4 ? 1 : 1 + pu8Text[4] + pu8Text[u32Count - 1];
                });
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_write_factory_uart, strText, u32Count).lines,
                  " D write_factory_uart s32Ret 1");
    }
}

TEST_F(Peripheral, CountsStandardUartBytesModulo256) {
    const std::string name = "a_hidl_zvttvfapi_prphrl_write_std_factory_uart";
    for (const size_t size : {0, 1, 255, 256, 300, 65537}) {
        SCOPED_TRACE(size);
        const std::string count = show(int64_t(size % 256));
        const std::string before = " D " + name + "()...\n I Writting data Size = " + count + ".\n";
        chip.on(a_zvttvfapi_prphrl_std_factory_uart_write, [&](auto&&...) {
            collectLines();
            EXPECT_EQ(mOutcome.lines, before);
            return 0;
        });
        const hidl_vec<uint8_t> vecData = numbered(size);
        const Outcome outcome = OUTCOME(a_hidl_zvttvfapi_prphrl_write_std_factory_uart, vecData);
        const Bytes sent = first(size % 256, vecData);
        EXPECT_EQ(outcome.answer, sent.empty() ? "-2" : "0");
        EXPECT_EQ(outcome.lines,
                  before + (sent.empty() ? " E Invalid data Size.\n" : " D " + name + " OK!\n"));
        EXPECT_EQ(calls(), sent.empty() ? "?" : "?std_factory_uart_write(" + show(sent) + ", " + count + ")");
    }
}

TEST_F(Peripheral, PassesUnknownEnumerationValuesAsTheLastOne) {
    for (const int value : {0, 2, 3, 5, 255}) {
        OUTCOME(a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff, true, 1, 2, Config(value));
        EXPECT_EQ(calls(), "?std_factory_uart_start(1, 2, " + show(std::min(value, 3)) + ")");
    }
    struct {
        int32_t attr;
        int32_t channel;
        std::string passed;
    } const rows[] = {
            {0, 0, "0, 0"}, {2, 17, "2, 17"}, {3, 18, "3, 18"}, {7, 40, "3, 18"}, {-1, INT32_MIN, "3, 18"}};
    for (const auto& row : rows) {
        const auto eAttr = Attr(row.attr);
        const auto eChannel = Channel(row.channel);
        OUTCOME(a_hidl_zvttvfapi_prphrl_pwm_set_attr, eAttr, eChannel, 5);
        OUTCOME(a_hidl_zvttvfapi_prphrl_pwm_get_attr, eAttr, eChannel, results());
        EXPECT_EQ(calls(), "?pwm_set_attr(" + row.passed + ", 5)?pwm_get_attr(" + row.passed + ", *)");
    }
}

TEST_F(Peripheral, DeliversWhatTheLibraryWroteWhateverTheStatus) {
    for (const int32_t status : {0, -7}) {
        const auto writes = [&](auto value) {
            return [=](auto&&... arguments) {
                auto* const cell = std::get<sizeof...(arguments) - 1>(std::tuple(arguments...));
                EXPECT_EQ(*cell, sizeof...(arguments) == 2 && value == 7 ? 255 : 0) << "the preset";
                *cell = value;
                return status;
            };
        };
        chip.on(a_zvttvfapi_prphrl_get_rc_format, writes(uint8_t{7}));
        chip.on(a_zvttvfapi_prphrl_get_gpio_status, writes(uint8_t{200}));
        chip.on(a_zvttvfapi_prphrl_get_cec_status, writes(int8_t{-1}));
        chip.on(a_zvttvfapi_prphrl_get_earc_status, writes(-1));
        chip.on(a_zvttvfapi_prphrl_get_iic_slave_address, writes(uint16_t{65535}));
        chip.on(a_zvttvfapi_prphrl_pwm_get_attr, writes(4000000000u));
        chip.on(a_zvttvfapi_prphrl_get_hdmi_edid_data,
                [&](unsigned int, fapi_core::ZvtTvFApiHDMI_EDID_Data_t* pstEdid) {
                    std::iota(pstEdid->au8EdidData, pstEdid->au8EdidData + 256, uint8_t{5});
                    return status;
                });
        Bytes edid(256);
        std::iota(edid.begin(), edid.end(), uint8_t{5});
        const std::string end = ' ' + show(status);
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_get_rc_format, "", results()).answer, "7" + end);
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_prphrl_get_gpio_status, 0, results()).answer, "200" + end);
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_get_cec_status, results()).answer, "255" + end);
        EXPECT_EQ(mOutcome.lines.substr(0, 18), " D CEC status 255 ");
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_get_earc_status, results()).answer, "-1" + end);
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_get_iic_slave_address, 0, 0, results()).answer,
                  "65535" + end);
        EXPECT_EQ(OUTCOME(a_hidl_zvttvfapi_prphrl_pwm_get_attr, Attr{}, Channel{}, results()).answer,
                  "4000000000" + end);
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data, 0, results()).answer,
                  show(edid) + end);
        EXPECT_EQ(mOutcome.lines, " D a_hidl_zvttvfapi_prphrl_get_hdmi_edid_data s32Ret=" + show(status) +
                                          byteLines("Edid data", edid));
    }
}

TEST_F(Peripheral, ReadsFromI2cOnlyWithBothBuffersAndTellsOfEachThatIsMissing) {
    const std::string noOut = " E Allocate pu8Out failed.\n";
    const std::string noAddr = " E Allocate pcAddr failed.\n";
    struct {
        size_t addr;
        uint16_t size;
        int refused;
        std::string lines;
    } const rows[] = {
            {1, 1, 0, ""},
            {65536, 300, 0, ""},
            {65537, 3, 0, ""},
            {1, 0, 0, " E Invalid u16Size.\n" + noOut},
            {2, 3, 1, noOut},
            {0, 0, 0, " E Invalid u16Size.\n" + noOut + " E Invalid u32Length.\n" + noAddr},
            {2, 3, 2, noAddr},
            {0, 3, 0, " E Invalid u32Length.\n" + noAddr},
            {2, 0, 1, " E Invalid u16Size.\n" + noOut + noAddr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(show(int64_t(row.addr)) + ' ' + show(row.size) + ' ' + show(row.refused));
        const hidl_vec<uint8_t> vecAddr = numbered(row.addr);
        const Bytes read = first(row.size, numbered(row.size / 2));
        chip.on(a_zvttvfapi_prphrl_read_from_iic,
                [&](int, unsigned short, unsigned short, unsigned short, const unsigned char* pu8Addr,
                    unsigned short, unsigned char* pu8Data) {
                    EXPECT_TRUE(std::equal(vecAddr.begin(), vecAddr.end(), pu8Addr)) << "every byte";
                    std::copy_n(read.begin(), row.size / 2, pu8Data);
                    return -7;
                });
        const FailingAllocation failing(row.refused);
        const Outcome outcome =
                OUTCOME(a_hidl_zvttvfapi_prphrl_read_from_i2c, 1, 2, 3, vecAddr, row.size, results());
        const uint16_t count = static_cast<uint16_t>(row.addr);
        EXPECT_EQ(outcome.answer, row.lines.empty() ? show(read) + " -7" : "<> -1");
        EXPECT_EQ(outcome.lines, row.lines.empty() ? " D a_hidl_zvttvfapi_prphrl_read_from_iic s32Ret=-7" +
                                                             byteLines("IIC Return Read data", read)
                                                   : row.lines);
        EXPECT_EQ(calls(), row.lines.empty()
                                   ? "?read_from_iic(1, 2, 3, " + show(count) + ", " +
                                             show(first(count, vecAddr)) + ", " + show(row.size) + ", *)"
                                   : "?");
    }
}

TEST_F(Peripheral, WritesToI2cWithoutAnAddressTooAndFillsMissingDataWithZeros) {
    const std::string noAddress = " D No specific address. Get I2C data directly\n";
    const std::string noBuf = " E Allocate pu8Buf failed.\n";
    struct {
        size_t addr;
        uint16_t size;
        size_t data;
        int refused;
        std::string lines;
        bool sent = true;
    } const rows[] = {
            {3, 5, 5, 0, ""},
            {65536, 2, 70000, 0, ""},
            {65537, 65535, 300, 0, ""},
            {0, 4, 0, 0, noAddress},
            {0, 0, 4, 0, " E Invalid u16Size.\n" + noBuf + noAddress, false},
            {3, 5, 5, 1, noBuf, false},
            {3, 5, 5, 2, " E Allocate pu8Addr failed.\n", false},
            {0, 5, 5, 2, noAddress + " E Allocate pu8Addr failed.\n", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(show(int64_t(row.addr)) + ' ' + show(row.size) + ' ' + show(row.refused));
        const hidl_vec<uint8_t> vecAddr = numbered(row.addr);
        const hidl_vec<uint8_t> vecData = numbered(row.data);
        chip.on(a_zvttvfapi_prphrl_write_to_iic,
                [&](int, unsigned short, unsigned short, const unsigned char* pu8Addr, auto&&...) {
                    EXPECT_TRUE(std::equal(vecAddr.begin(), vecAddr.end(), pu8Addr)) << "every byte";
                    return row.addr == 0 ? pu8Addr[0] : 0;
                });
        const FailingAllocation failing(row.refused);
        const Outcome outcome =
                OUTCOME(a_hidl_zvttvfapi_prphrl_write_to_i2c, 1, 2, vecAddr, row.size, vecData);
        const uint16_t count = static_cast<uint16_t>(row.addr);
        EXPECT_EQ(outcome.answer, row.sent ? "0" : "-1");
        EXPECT_TRUE(row.refused < 2 || failing.refusedBytes() == std::max<size_t>(row.addr, 1));
        EXPECT_EQ(outcome.lines,
                  row.lines + (row.sent ? " D a_hidl_zvttvfapi_prphrl_write_to_iic s32Ret=0" : ""));
        EXPECT_EQ(calls(), row.sent ? "?write_to_iic(1, 2, " + show(count) + ", " +
                                              show(first(count, vecAddr)) + ", " + show(row.size) + ", " +
                                              show(first(row.size, vecData)) + ")"
                                    : "?");
    }
}

TEST_F(Peripheral, GivesTheLibraryAWholeEdidOfWhateverLengthTheClientsIs) {
    for (const size_t size : {0, 1, 256, 300}) {
        SCOPED_TRACE(size);
        const hidl_vec<uint8_t> vecData = numbered(size);
        chip.on(a_zvttvfapi_prphrl_set_hdmi_edid_data,
                [&](unsigned int, signed char, unsigned int, const unsigned char* pu8Data) {
                    return std::equal(vecData.begin(), vecData.end(), pu8Data) ? 0 : -7;
                });
        EXPECT_EQ(OUTCOME(a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data, 1, 2, 3, vecData).lines,
                  std::string(size == 0 ? " D No specific data !!\n" : "") +
                          " D a_zvttvfapi_prphrl_set_hdmi_edid_data s32Ret=0");
        EXPECT_EQ(calls(), "?set_hdmi_edid_data(1, 2, 3, " + show(first(256, vecData)) + ")");
    }
}

TEST_F(Peripheral, CallsNothingWhenTheOneBufferOfACallIsRefused) {
    const hidl_vec<uint8_t> vecEmpty, vecOne = {1};
    struct {
        std::function<Outcome()> call;
        std::string answer;
        std::string lines;
    } const rows[] = {
            {METHOD(a_hidl_zvttvfapi_prphrl_write_factory_uart, strName, 0xFFFFFFFF), "0", ""},
            {METHOD(a_hidl_zvttvfapi_prphrl_write_std_factory_uart, vecOne), "-4",
             " D a_hidl_zvttvfapi_prphrl_write_std_factory_uart()...\n I Writting data Size = 1.\n"
             " E Allocate pu16Data failed.\n"},
            {METHOD(a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data, 1, 2, 3, vecEmpty), "-1",
             " D No specific data !!\n E Allocate pu8Data failed.\n"},
    };
    for (const auto& row : rows) {
        const FailingAllocation failing(1);
        const Outcome outcome = row.call();
        SCOPED_TRACE(mMethod);
        EXPECT_EQ(outcome.answer, row.answer);
        EXPECT_EQ(outcome.lines, row.lines);
        EXPECT_EQ(calls(), "?");
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
