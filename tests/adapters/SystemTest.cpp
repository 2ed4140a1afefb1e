#include "adapters/system/ZvtTvFApiSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "chiplayer/common.h"
#include "chiplayer/sys.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

std::string show(const hidl_string& text) {
    return "'" + std::string(text) + "'";
}
std::string show(uint64_t number) {
    return std::to_string(number);
}
std::string show(const hidl_vec<uint8_t>& bytes) {
    std::ostringstream out;
    for (const uint8_t byte : bytes) {
        out << std::hex << (byte >> 4) << (byte & 15);
    }
    return '<' + out.str() + '>';
}

class System : public ::testing::Test {
  protected:
    /// What a call delivers, "results status"; strLines is what it logs until then, "priority text" each.
    template <typename Call>
    std::string answerOf(Call call) {
        strAnswer.clear();
        strLines.clear();
        log.takeLines();
        chip.takeCalls();
        const auto returned = call();
        EXPECT_TRUE(returned.isOk());
        if constexpr (std::is_same_v<decltype(call()), Return<void>>) {
            EXPECT_TRUE(log.takeLines().empty()) << "written after the delivery";
        } else {
            strAnswer = std::to_string(returned);
            takeLines();
        }
        return strAnswer;
    }
    auto results() {
        return [this](const auto& result, int32_t s32Status) {
            strAnswer += show(result) + ' ' + std::to_string(s32Status);
            takeLines();
        };
    }
    /// Every line bears the name of the method that writes it.
    void takeLines() {
        for (const std::string& line : log.takeLines()) {
            const std::string tag = " ZvtTvFApiSystem(server): <";
            EXPECT_EQ(line.compare(1, tag.size(), tag), 0) << line;
            const size_t end = line.find(":#> ");
            strMethod = line.substr(1 + tag.size(), end - tag.size() - 1);
            strLines += line.substr(0, 2) + line.substr(end + 4);
        }
    }
    /// The chip-layer call of the last method, after the question for readiness.
    std::string calls() {
        const std::vector<std::string> taken = chip.takeCalls();
        EXPECT_EQ(taken.at(0), "a_zvttvfapi_common_get_fapi_status()");
        EXPECT_LE(taken.size(), 2u);
        return taken.size() < 2 ? "" : taken[1];
    }
    /// Lets every function that fills a buffer write these bytes, no terminator, as far as the buffer goes.
    void libraryWrites(const std::string& bytes, uint32_t u32Count, int32_t s32Status) {
        const auto fill = [=](unsigned char* pu8Data, size_t size, unsigned int* pu32Count = nullptr) {
            EXPECT_EQ(std::count(pu8Data, pu8Data + std::min<size_t>(size, 4), 0), std::min<long>(size, 4));
            std::copy_n(bytes.begin(), std::min(bytes.size(), size), pu8Data);
            if (pu32Count != nullptr) {
                EXPECT_EQ(std::exchange(*pu32Count, u32Count), 0u);
            }
            return s32Status;
        };
        chip.on(a_zvttvfapi_sys_read_file,
                [=](auto, auto data, auto size, auto, auto count) { return fill(data, size, count); });
        chip.on(a_zvttvfapi_sys_read_file_one_line,
                [=](auto, auto data, auto size, auto) { return fill(data, size); });
        chip.on(a_zvttvfapi_sys_get_emmc_env_var,
                [=](auto, auto data, auto size) { return fill(data, size); });
        chip.on(a_zvttvfapi_sys_read_emmc, [=](unsigned char* pu8Name, auto, auto size, auto data) {
            EXPECT_EQ(static_cast<void*>(pu8Name), strPath.c_str()) << "lent, not copied";
            return fill(data, size);
        });
        chip.on(a_zvttvfapi_sys_get_customer_hash,
                [=](auto size, auto data, auto count) { return fill(data, size, count); });
        chip.on(a_zvttvfapi_sys_get_dataindex_path, [=](auto data, auto size) { return fill(data, size); });
    }

    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiSystem> object = new ZvtTvFApiSystem();
    ZvtTvFApiSystem& sys = *object;
    const hidl_string strPath{"/p\0cut", 6};
    std::string strAnswer;
    std::string strLines;
    std::string strMethod;
};

// What a method answers, once its call has ended.
#define ANSWER(...) answerOf([&] { return sys.__VA_ARGS__; })

// The first two cells of a row: a method's name, and its call.
#define SYS(name, arguments) ROW(a_hidl_zvttvfapi_sys_##name, arguments)
#define A_SYS(name, arguments) ROW(a_hidl_a_zvttvfapi_sys_##name, arguments)
#define ROW(name, arguments) #name, [&] { return ANSWER(name arguments); }

// One row per method: the call that it makes; what it answers to a library that returns -7, its lines then;
// what it answers to one that is not ready.
TEST_F(System, AsksForReadinessThenPassesArgumentsOnAndTheStatusBack) {
    using Cmd = ZvtTvFApiSysFactorySvcCmd_e;
    const std::string status = "D s32Ret=fffffff9\n";
    const hidl_vec<uint8_t> vecData = {1, 0, 0xFE};
    struct {
        std::string name;
        std::function<std::string()> call;
        std::string chipCall;
        std::string failed = "-7";
        std::string lines = "";
        std::string unready = "-5";
    } const rows[] = {
            {SYS(get_emmc_env_var, (strPath, results())), "get_emmc_env_var(\"/p\", *, 1024)", "'' -7",
             "D /p = \n", "'' -5"},
            {SYS(set_emmc_env_var, (strPath, "v")), "set_emmc_env_var(\"/p\", \"v\")"},
            {A_SYS(update_system_key, (strPath, true)), "update_sys_key(\"/p\", 1)"},
            {A_SYS(secure_storage_encrypt_key, (strPath, "k", vecData)),
             "secure_storage_encrypt_key(\"/p\", \"k\", <0100fe>, 3)", "-7",
             "D a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key()...\nI u8UserKeySize = 3.\n"
             "E [0] vec[1], usrKey[1]E [1] vec[0], usrKey[0]E [2] vec[254], usrKey[254]"},
            {A_SYS(check_file, (strPath)), "check_file(\"/p\")", "-7", status},
            {A_SYS(copy_file, (strPath, "d", true)), "copy_file(\"/p\", \"d\", 1)"},
            {SYS(set_wdt, (true)), "set_wdt(1)"},
            {SYS(get_wdt_status, ()), "get_wdt_status()", "1", "", "0"},
            {SYS(set_miu_ssc, (255, 65535, 2, false)), "set_miu_ssc(255, 65535, 2, 0)"},
            {SYS(upgrade_fw, (200, strPath)), "upgrade_fw(200, \"/p\")", "-7",
             "D start to upgrad 200 at /p\n"},
            {SYS(write_emmc, (strPath, 4000000000, vecData)), "write_emmc(*, 4000000000, 3, <0100fe>)"},
            {SYS(read_emmc, (strPath, 4000000000, 2, results())), "read_emmc(*, 4000000000, 2, *)",
             "<0000> -7", "", "<> -5"},
            {A_SYS(remove_file, (strPath)), "remove_file(\"/p\")"},
            {A_SYS(create_file, (strPath)), "create_file(\"/p\")", "-7", status},
            {A_SYS(create_folder, (strPath)), "create_folder(\"/p\")", "-7", status},
            {A_SYS(check_folder, (strPath)), "check_folder(\"/p\")", "-7", status},
            {A_SYS(read_file_one_line, (strPath, 9, 1ULL << 40, results())),
             "read_file_one_line(\"/p\", *, 9, 1099511627776)", "'' -7", status, "'' -5"},
            {A_SYS(read_file, (strPath, 9, 1ULL << 40, results())),
             "read_file(\"/p\", *, 9, 1099511627776, *)", "'' -7", "D strData=\n" + status, "'' -5"},
            {A_SYS(read_file_byte, (strPath, 9, 1ULL << 40, results())),
             "read_file(\"/p\", *, 9, 1099511627776, *)", "<> -7", "D s32Ret=fffffff9, data read: 0\n",
             "<> -5"},
            {A_SYS(get_file_checksum, (strPath, results())), "get_file_checksum(\"/p\", *)", "0 -7",
             "D s32Ret=fffffff9, u32Checksum: 0\n", "0 -5"},
            {A_SYS(write_file, (strPath, "a", true, false)), "write_file(\"/p\", <61>, 1, \"a+\")", "-7",
             status},
            {A_SYS(write_file_byte, (strPath, vecData, hidl_string("r+bx\0t", 6))),
             "write_file(\"/p\", <0100fe>, 3, \"r+bx\")", "-7", status},
            {A_SYS(change_file_mode, (strPath, 0xFFFFFFFF)), "change_file_mode(\"/p\", 4294967295)", "-7",
             status},
            {A_SYS(read_reg, (1, 0xFFFFFFFF, results())), "read_reg(1, 4294967295, *)", "0 -7",
             "D s32Ret=fffffff9 \n", "0 -5"},
            {A_SYS(write_reg, (1, 2, 0xFFFFFFFF)), "write_reg(1, 2, 4294967295)", "-7",
             "D s32Ret=fffffff9 \n"},
            {A_SYS(send_cmd_to_factory_svc, (Cmd{1}, strPath)), "send_cmd_to_factory_svc(1, \"/p\")"},
            {A_SYS(get_rtc_time, (results())), "get_rtc_time(*)", "0 -7",
             "D a_zvttvfapi_sys_get_rtc_time s32Ret -7", "0 -5"},
            {SYS(sync_fs, ()), "sync_fs()"},
            {SYS(get_customer_hash, (results())), "get_customer_hash(16, *, *)", "<> -1",
             "D u32ReadLength 0E a_hidl_zvttvfapi_sys_get_customer_hash fail.\n", "<> -5"},
            {SYS(get_dataindex_path, (results())), "get_dataindex_path(*, 128)", "'' -7", "", "'' -5"},
    };
    chip.returnsOtherwise(-7);
    chip.on(a_zvttvfapi_sys_upgrade_fw, [&](unsigned char, const char*) {
        takeLines();
        EXPECT_FALSE(strLines.empty()) << "the line announces the upgrade";
        return -7;
    });
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
        EXPECT_EQ(row.call(), row.failed);
        EXPECT_EQ(calls(), "a_zvttvfapi_sys_" + row.chipCall);
        EXPECT_EQ(strLines, row.lines);
        EXPECT_TRUE(row.lines.empty() || strMethod == row.name) << strMethod;
        chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
        EXPECT_EQ(row.call(), row.unready);
        EXPECT_EQ(calls(), "");
        EXPECT_EQ(strLines, "");
    }
}

TEST_F(System, DeliversWhatTheLibraryWroteAndNothingBeyondItOrTheBuffer) {
    const auto bound = [](const std::string& count) {
        return "D u32DataLengthRead(" + count + ") is out of bound\n";
    };
    const auto quoted = [](size_t size) { return "'" + std::string(size, 'x') + "'"; };
    const std::string nulInside("ab\0cd", 5);
    const std::string long129(129, 'x');
    struct {
        std::string name;
        std::function<std::string()> call;
        std::string written;
        uint32_t count;
        int32_t status;
        std::string answer;
        std::string lines;
    } const rows[] = {
            {A_SYS(read_file, (strPath, 5, 0, results())), "abcde", 5, 0, "'abcde' 0",
             "D pu8Data=abcde\nD strData=abcde\nD s32Ret=0\n"},
            {A_SYS(read_file, (strPath, 9, 0, results())), nulInside, 5, 0, "'ab' 0",
             "D pu8Data=ab\nD strData=ab\nD s32Ret=0\n"},
            {A_SYS(read_file, (strPath, 5, 0, results())), "abc", 0, 0, "'' -1",
             bound("0") + "D strData=\nD s32Ret=ffffffff\n"},
            {A_SYS(read_file, (strPath, 5, 0, results())), "abcde", 6, 0, "'' -1",
             bound("6") + "D strData=\nD s32Ret=ffffffff\n"},
            {A_SYS(read_file, (strPath, 0, 0, results())), "", 0xFFFFFFFF, 0, "'' -1",
             bound("-1") + "D strData=\nD s32Ret=ffffffff\n"},
            {A_SYS(read_file, (strPath, 5, 0, results())), "ab", 2, -7, "'' -7",
             "D strData=\nD s32Ret=fffffff9\n"},
            // Counted but not written: what lay in the memory before does not get out.
            {A_SYS(read_file, (strPath, 5, 0, results())), "", 5, 0, "'' 0",
             "D pu8Data=\nD strData=\nD s32Ret=0\n"},
            {A_SYS(read_file_byte, (strPath, 5, 0, results())), nulInside, 5, 0, "<6162006364> 0",
             "D s32Ret=0, data read: 5\n"},
            {A_SYS(read_file_byte, (strPath, 5, 0, results())), "abc", 0, 0, "<> 0",
             "D s32Ret=0, data read: 0\n"},
            {A_SYS(read_file_byte, (strPath, 5, 0, results())), "ab", 5, -7, "<6162000000> -7",
             "D s32Ret=fffffff9, data read: 5\n"},
            {A_SYS(read_file_byte, (strPath, 5, 0, results())), "abcde", 6, 0, "<> -1",
             bound("6") + "D s32Ret=ffffffff, data read: 6\n"},
            {A_SYS(read_file_byte, (strPath, 0, 0, results())), "", 1, -7, "<> -1",
             bound("1") + "D s32Ret=ffffffff, data read: 1\n"},
            {A_SYS(read_file_one_line, (strPath, 3, 0, results())), "xxxx", 0, 0, quoted(3) + " 0",
             "D s32Ret=0\n"},
            {A_SYS(read_file_one_line, (strPath, 9, 0, results())), "xxxx", 0, 0, quoted(4) + " 0",
             "D s32Ret=0\n"},
            {A_SYS(read_file_one_line, (strPath, 0, 0, results())), "x", 0, 0, "'' 0", "D s32Ret=0\n"},
            {A_SYS(read_file_one_line, (strPath, 9, 0, results())), "x", 0, -7, "'' -7",
             "D s32Ret=fffffff9\n"},
            {SYS(get_emmc_env_var, ("n", results())), "v", 0, 0, "'v' 0", "D n = v\n"},
            {SYS(get_emmc_env_var, ("n", results())), "v", 0, -7, "'' -7", "D n = v\n"},
            {SYS(get_emmc_env_var, (hidl_string(std::string(1024, 'n')), results())), std::string(1024, 'x'),
             0, 0, quoted(1023) + " 0", "D " + std::string(976, 'n')},
            {SYS(read_emmc, (strPath, 0, 3, results())), "ab", 0, -7, "<616200> -7", ""},
            {SYS(read_emmc, (strPath, 0, 0, results())), "ab", 0, 0, "<> 0", ""},
            {SYS(get_customer_hash, (results())), "xxxxxxxx", 8, 0, "<7878787878787878> 0",
             "D u32ReadLength 8"},
            {SYS(get_customer_hash, (results())), "xx", 16, 0, "<78780000000000000000000000000000> 0",
             "D u32ReadLength 16"},
            {SYS(get_customer_hash, (results())), "xx", 17, 0, "<> -1", "D u32ReadLength 17" + bound("17")},
            {SYS(get_dataindex_path, (results())), "xx", 0, 0, quoted(2) + " 0", ""},
            {SYS(get_dataindex_path, (results())), long129, 0, 0, quoted(128) + " 0", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name + " " + row.written + " " + std::to_string(row.count));
        libraryWrites(row.written, row.count, row.status);
        EXPECT_EQ(row.call(), row.answer);
        // The log itself cuts a line at 1023 bytes, its prefix included.
        EXPECT_EQ(row.lines.size() < 900 ? strLines : strLines.substr(0, row.lines.size()), row.lines);
    }
}

TEST_F(System, WritesATextToItsFirstNulInTheModeAndWithTheEndThatTheClientChose) {
    const std::string prefix = "a_zvttvfapi_sys_write_file(\"/p\", ";
    struct {
        hidl_string text;
        bool append;
        bool crLf;
        std::string chipCall;
    } const rows[] = {
            {"abc", false, true, prefix + "<6162630d0a>, 5, \"w+\")"},
            {{"ab\0cd", 5}, false, false, prefix + "<6162>, 2, \"w+\")"},
            {{"ab\0cd", 5}, true, true, prefix + "<61620d0a>, 4, \"a+\")"},
            {"", false, true, prefix + "<0d0a>, 2, \"w+\")"},
    };
    for (const auto& row : rows) {
        chip.on(a_zvttvfapi_sys_write_file,
                [](const unsigned char*, const unsigned char* pu8Data, unsigned int u32Length,
                   const unsigned char*) { return pu8Data[u32Length]; });  // the terminator: 0
        EXPECT_EQ(ANSWER(a_hidl_a_zvttvfapi_sys_write_file(strPath, row.text, row.append, row.crLf)), "0");
        EXPECT_EQ(calls(), row.chipCall);
    }
    const hidl_vec<uint8_t> vecEmpty;
    for (const auto& call : std::vector<std::function<Return<int32_t>()>>{
                 [&] {
                     return sys.a_hidl_a_zvttvfapi_sys_write_file(strPath, {"\0x", 2}, true, false);
                 },
                 [&] { return sys.a_hidl_a_zvttvfapi_sys_write_file_byte(strPath, vecEmpty, "w"); },
                 [&] { return sys.a_hidl_zvttvfapi_sys_write_emmc("a", 0, vecEmpty); }}) {
        EXPECT_EQ(answerOf(call), "-2");
        EXPECT_EQ(calls(), "");
        EXPECT_EQ(strLines, "E Invalid u32Length.\n");
    }
}

TEST_F(System, ARefusedAllocationEndsAsItsStepSaysAndNothingElseIsCalled) {
    const hidl_vec<uint8_t> vecData(std::vector<uint8_t>(70000, 1));
    const std::string memory = "E Allocate the memory failed.";
    const std::string data = "E Allocate pu8Data failed.\n";
    const std::string noMemory = "D s32Ret=fffffffc\n";
    const auto exception = [](const std::string& name) {
        return "E [" + name + "(#)]FAIL: Due to execption occurred, Please check it\n";
    };
    libraryWrites("xx", 2, 0);
    struct {
        std::string name;
        std::function<std::string()> call;
        int nth;
        uint64_t bytes;
        std::string answer;
        std::string lines;
    } const rows[] = {
            {A_SYS(read_file, (strPath, 0xFFFFFFFF, 0, results())), 1, 1ULL << 32, "'' -4",
             memory + noMemory},
            {A_SYS(read_file, (strPath, 5, 0, results())), 2, 3, "'' -1",
             "D pu8Data=xx\n" + exception("a_hidl_a_zvttvfapi_sys_read_file")},
            {A_SYS(read_file_one_line, (strPath, 0xFFFFFFFF, 0, results())), 1, 0xFFFFFFFF, "'' -4",
             memory + noMemory},
            {A_SYS(read_file_one_line, (strPath, 5, 0, results())), 2, 3, "'' -1",
             exception("a_hidl_a_zvttvfapi_sys_read_file_one_line")},
            {A_SYS(read_file_byte, (strPath, 0xFFFFFFFF, 0, results())), 1, 0xFFFFFFFF, "<> -4",
             memory + "D s32Ret=fffffffc, data read: 0\n"},
            {SYS(read_emmc, (strPath, 0, 0xFFFFFFFF, results())), 1, 0xFFFFFFFF, "<> -4", memory},
            {A_SYS(write_file, (strPath, strPath, false, true)), 1, 5, "-4", memory},
            {A_SYS(write_file_byte, (strPath, vecData, strPath)), 1, 70000, "-4", data},
            {SYS(write_emmc, (strPath, 0, vecData)), 1, 70000, "-4", data},
            {A_SYS(secure_storage_encrypt_key, (strPath, strPath, vecData)), 1, 70000 % 256, "-1",
             "D a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key()...\nI u8UserKeySize = 112.\n"
             "E Allocate pu8UserKey failed.\n"},
            {SYS(get_customer_hash, (results())), 1, 16, "<> -1", data},
            {SYS(get_dataindex_path, (results())), 1, 129, "'' -4", ""},
            {SYS(get_dataindex_path, (results())), 2, 3, "'' -1",
             exception("a_hidl_zvttvfapi_sys_get_dataindex_path")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name + " " + std::to_string(row.nth));
        FailingAllocation failing(row.nth);
        EXPECT_EQ(row.call(), row.answer);
        EXPECT_EQ(failing.refusedBytes(), row.bytes);
        EXPECT_EQ(strLines, row.lines);
        EXPECT_EQ(calls().empty(), row.nth == 1);
    }
}

TEST_F(System, TakesTheUserKeysLengthModulo256AndWipesItsCopy) {
    for (const size_t size : {0, 1, 255, 256, 300}) {
        SCOPED_TRACE(size);
        std::vector<uint8_t> key(size);
        std::generate(key.begin(), key.end(), [n = 0]() mutable { return static_cast<uint8_t>(++n * 7); });
        const std::vector<uint8_t> used(key.begin(), key.begin() + static_cast<long>(size % 256));
        std::optional<FreedBlock> freed;
        chip.on(a_zvttvfapi_sys_secure_storage_encrypt_key,
                [&](const unsigned char*, const unsigned char*, const unsigned char* pu8Key,
                    unsigned char n) {
                    EXPECT_EQ(std::vector<uint8_t>(pu8Key, pu8Key + n), used);
                    freed.emplace(pu8Key, n);
                    return 0;
                });
        const hidl_vec<uint8_t> vecUserKey = key;
        EXPECT_EQ(ANSWER(a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key("s", "k", vecUserKey)),
                  used.empty() ? "-1" : "0");
        EXPECT_EQ(freed.has_value(), !used.empty());
        EXPECT_TRUE(!freed || freed->bytes() == std::vector<uint8_t>(used.size(), 0));
        EXPECT_EQ(strLines.find("E Allocate pu8UserKey failed.\n") != std::string::npos, used.empty());
    }
}

TEST_F(System, DeliversChecksumAndClockWhateverTheStatusButARegisterOnlyOnSuccess) {
    for (const int32_t status : {0, 3, -7}) {
        const auto write = [&](unsigned int* pu32Value) {
            EXPECT_EQ(*pu32Value, 0u);
            *pu32Value = 0xFFFFFFFF;
            return status;
        };
        chip.on(a_zvttvfapi_sys_get_file_checksum,
                [&](const unsigned char*, unsigned int* pu32Value) { return write(pu32Value); });
        chip.on(a_zvttvfapi_sys_read_reg,
                [&](unsigned int, unsigned int, unsigned int* pu32Value) { return write(pu32Value); });
        chip.on(a_zvttvfapi_sys_get_rtc_time, write);
        const std::string end = ' ' + std::to_string(status);
        EXPECT_EQ(ANSWER(a_hidl_a_zvttvfapi_sys_get_file_checksum(strPath, results())), "4294967295" + end);
        EXPECT_EQ(ANSWER(a_hidl_a_zvttvfapi_sys_get_rtc_time(results())), "4294967295" + end);
        EXPECT_EQ(ANSWER(a_hidl_a_zvttvfapi_sys_read_reg(1, 2, results())),
                  (status == 0 ? "4294967295" : "0") + end);
    }
}

TEST_F(System, ConvertsWhatTheLibraryTakesNarrower) {
    for (const auto& [result, answer] : {std::pair{0, "0"}, {1, "1"}, {0x80, "1"}, {0x100, "0"}, {-1, "1"}}) {
        chip.returns(a_zvttvfapi_sys_get_wdt_status, result);
        EXPECT_EQ(ANSWER(a_hidl_zvttvfapi_sys_get_wdt_status()), answer) << result;
    }
    const std::pair<uint32_t, uint32_t> commands[] = {{0, 0}, {1, 1}, {2, 2}, {7, 2}, {0xFFFFFFFF, 2}};
    for (const auto& command : commands) {
        const ZvtTvFApiSysFactorySvcCmd_e eCmd{command.first};
        ANSWER(a_hidl_a_zvttvfapi_sys_send_cmd_to_factory_svc(eCmd, ""));
        EXPECT_EQ(calls(), "a_zvttvfapi_sys_send_cmd_to_factory_svc(" + show(command.second) + ", \"\")");
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
