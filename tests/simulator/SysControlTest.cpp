#include <zlib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "simulator/board/Events.h"
#include "tests/simulator/SysFixture.h"

using namespace simulator;
using testing::HasSubstr;

namespace {

using Object = const fapi_core::ZvtTvFApiEventCommonObject&;

/** The events that the module has raised. */
struct Seen {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> events;
} sSeen;

int see(unsigned type, Object first, Object second, Object third, Object) {
    const std::lock_guard<std::mutex> lock(sSeen.mutex);
    sSeen.events.push_back(std::to_string(type) + " " + std::to_string(first.u32Value) + " " +
                           first.strValue + " " + second.strValue + " " +
                           std::to_string(static_cast<int>(third.u32Value)));
    sSeen.changed.notify_all();
    return type == 0x1ffff ? -1 : 0;
}

class SysControlTest : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        sSeen.events.clear();
        ASSERT_EQ(a_zvttvfapi_sys_reg_callback(see), kOk);
        ASSERT_EQ(a_zvttvfapi_sys_init(), kOk);
    }
    void TearDown() override {
        force("clear");
        a_zvttvfapi_sys_deinit();
        EXPECT_EQ(a_zvttvfapi_sys_unreg_callback(), kOk);
        unsetenv("ZVTTV_BOARD_UPGRADE_MS");
    }

    static std::string reg(uint32_t bank, uint32_t offset) {
        uint32_t value = 77;
        const int32_t status = a_zvttvfapi_sys_read_reg(bank, offset, &value);
        return std::to_string(status == kOk ? static_cast<int64_t>(value) : status);
    }
    static void waitForEvents(size_t count) {
        std::unique_lock<std::mutex> lock(sSeen.mutex);
        EXPECT_TRUE(sSeen.changed.wait_for(lock, std::chrono::seconds(30),
                                           [&] { return sSeen.events.size() >= count; }));
    }

    static void append(std::string& image, size_t number) {
        for (int i = 0; i < 4; ++i) {
            image += static_cast<char>(number >> 8 * i);
        }
    }
    static std::string image(uint32_t target, const std::string& payload) {
        const auto sum = [](const std::string& text) {
            return crc32(0, bytes(text), static_cast<unsigned>(text.size()));
        };
        std::string head = "BOARDFW1";
        append(head, target);
        append(head, payload.size());
        append(head, sum(payload));
        head += std::string("v1.2").append(20, '\0');
        append(head, sum(head));
        return head + payload;
    }
    static std::string installed(size_t size) {
        std::string content(size, '?');
        char area[] = "fw_panel";
        EXPECT_EQ(a_zvttvfapi_sys_read_emmc(reinterpret_cast<unsigned char*>(area), 0,
                                            static_cast<unsigned>(size),
                                            reinterpret_cast<unsigned char*>(content.data())),
                  kOk);
        return content;
    }
};

}  // namespace

TEST_F(SysControlTest, RegistersKeepWhatIsWrittenUntilTheBoardStartsAnew) {
    const struct {
        uint32_t bank;
        uint32_t offset;
        int32_t written;
        const char* before;
        const char* after;
    } rows[] = {{0, 0, kDenied, "1397312817", "1397312817"},
                {1, 0, kOk, "0", "4294967295"},
                {1, 255, kOk, "0", "4294967295"},
                {1, 256, kOutOfRange, "-102", "-102"},
                {2, 127, kOk, "65535", "4294967295"},
                {3, 1, kOk, "3735928559", "4294967295"},
                {4, 0, kOutOfRange, "-102", "-102"},
                {UINT32_MAX, UINT32_MAX, kOutOfRange, "-102", "-102"}};
    for (const auto& row : rows) {
        EXPECT_EQ(reg(row.bank, row.offset), row.before);
        EXPECT_EQ(a_zvttvfapi_sys_write_reg(row.bank, row.offset, UINT32_MAX), row.written) << &row - rows;
    }
    EXPECT_EQ(a_zvttvfapi_sys_set_wdt(2), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_sys_get_wdt_status(), 0);
    EXPECT_EQ(a_zvttvfapi_sys_set_wdt(1), kOk);
    EXPECT_EQ(a_zvttvfapi_sys_get_wdt_status(), 1);
    for (const auto& row : rows) {
        EXPECT_EQ(reg(row.bank, row.offset), row.after);
    }
    a_zvttvfapi_sys_deinit();
    a_zvttvfapi_sys_init();
    EXPECT_EQ(a_zvttvfapi_sys_get_wdt_status(), 0);
    EXPECT_EQ(reg(2, 127), "65535");
}

TEST_F(SysControlTest, TheSpreadSpectrumHasRangesAndIsSeenInTheStatusRegisters) {
    const struct {
        uint8_t miu;
        uint16_t modulation;
        uint16_t deviation;
        uint8_t enable;
        int32_t status;
    } rows[] = {{1, 30, 150, 1, kOk},         {1, 20, 0, 0, kOk},          {1, 100, 300, 1, kOk},
                {2, 30, 150, 1, kOutOfRange}, {0, 19, 0, 1, kOutOfRange},  {0, 101, 0, 1, kOutOfRange},
                {0, 30, 301, 1, kOutOfRange}, {0, 30, 150, 2, kOutOfRange}};
    for (const auto& row : rows) {
        EXPECT_EQ(a_zvttvfapi_sys_set_miu_ssc(row.miu, row.modulation, row.deviation, row.enable), row.status)
                << &row - rows;
    }
    EXPECT_EQ(reg(0, 20) + "," + reg(0, 21) + "," + reg(0, 22), "1,100,300");
    EXPECT_EQ(reg(0, 16) + "," + reg(0, 17) + "," + reg(0, 18), "0,0,0");
}

TEST_F(SysControlTest, TheClockRunsFromTheHostsAndIsSetByAVariable) {
    const auto read = [](const char* offset, unsigned* seconds) {
        a_zvttvfapi_sys_set_emmc_env_var(bytes("rtc_offset"), bytes(offset));
        return a_zvttvfapi_sys_get_rtc_time(seconds);
    };
    unsigned here = 0;
    unsigned ahead = 0;
    EXPECT_EQ(read("", &here), kOk);
    EXPECT_LE(std::abs(static_cast<int64_t>(here) - time(nullptr)), 1);
    EXPECT_EQ(read("1000000", &ahead), kOk);
    EXPECT_LE(ahead - here - 1000000, 1U);
    for (const char* bad : {"-9000000000", "9000000000", "9223372036854775807", "soon", "1s"}) {
        EXPECT_EQ(read(bad, &ahead), kOutOfRange) << bad;
    }
}

TEST_F(SysControlTest, AnUpgradeTellsItsProgressAndInstallsTheImageOneAtATime) {
    setenv("ZVTTV_BOARD_UPGRADE_MS", "200", 1);
    const std::string good = image(1, std::string(100000, 'f'));
    write(state() / "files/good.fw", good);
    std::thread caller([&] {
        EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kOk);
        const std::lock_guard<std::mutex> lock(sSeen.mutex);
        EXPECT_EQ(sSeen.events.size(), 21U) << "the last one comes before the result";
    });
    waitForEvents(3);
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(0, "/good.fw"), kBusy);
    EXPECT_THAT(printed(), HasSubstr("upgrade of target 1 with /good.fw: "));
    caller.join();
    for (int i = 0; i <= 20; ++i) {
        EXPECT_EQ(sSeen.events[i], std::to_string(kSysUpgradeProgress) + " " + std::to_string(5 * i) +
                                           " /good.fw " + (i == 20 ? "done" : "running") + " 0");
    }
    EXPECT_TRUE(installed(good.size()) == good);
    EXPECT_THAT(printed(), HasSubstr("firmware 1 in fw_panel: version v1.2\n"));

    const auto changed = [&](size_t place) {
        std::string bad = good;
        bad[place] ^= 1;
        return bad;
    };
    const std::string rows[] = {changed(0),    changed(8),
                                changed(12),   changed(16),
                                changed(20),   changed(44),
                                changed(48),   changed(good.size() - 1),
                                good + "x",    "",
                                "BOARDFW1",    good.substr(0, good.size() - 1),
                                image(0, "x"), image(257, "x"),
                                image(1, ""),  image(1, std::string(4 << 20, 'x'))};
    for (const std::string& bad : rows) {
        write(state() / "files/bad.fw", bad);
        EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/bad.fw"), kBadImage) << &bad - rows;
    }
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(3, "/good.fw"), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/none"), kNotFound);
    EXPECT_EQ(sSeen.events.size(), 21U);
    EXPECT_TRUE(installed(good.size()) == good);
}

TEST_F(SysControlTest, AnUpgradeThatFailsAtTheDiskSaysSoAndLeavesTheOldFirmware) {
    setenv("ZVTTV_BOARD_UPGRADE_MS", "0", 1);
    write(state() / "files/good.fw", image(1, "new"));
    std::filesystem::create_directories(state() / "emmc/fw_panel.bin");  // in the way of the file
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kBadFile);
    EXPECT_EQ(sSeen.events.back(), "65537 95 /good.fw failed -109");
    std::filesystem::remove(state() / "emmc/fw_panel.bin");
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kOk);
}

TEST_F(SysControlTest, ShuttingDownGivesAnUpgradeUpAtOnceAndTheNextOneWorks) {
    setenv("ZVTTV_BOARD_UPGRADE_MS", "3600000", 1);
    write(state() / "files/good.fw", image(1, "new"));
    const auto begin = std::chrono::steady_clock::now();
    std::thread caller([] { EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kGivenUp); });
    waitForEvents(1);
    EXPECT_EQ(a_zvttvfapi_sys_deinit(), kOk);
    caller.join();
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kNotSetUp);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes(1));
    EXPECT_EQ(installed(8), std::string(8, '\0'));
    EXPECT_EQ(a_zvttvfapi_sys_init(), kOk);
    setenv("ZVTTV_BOARD_UPGRADE_MS", "0", 1);
    EXPECT_EQ(a_zvttvfapi_sys_upgrade_fw(1, "/good.fw"), kOk);
    EXPECT_EQ(installed(8), "BOARDFW1");
}

TEST_F(SysControlTest, ACommandRaisesAnEventAndTellsWhatIsWrongWithIt) {
    EXPECT_EQ(command(0, "sys 0x10005 value=3,text=one text=two"), kOk);
    EXPECT_EQ(sSeen.events.back(), "65541 3 one two 0");
    EXPECT_EQ(command(0, "sys 0x1ffff"), kNotTold);
    EXPECT_EQ(command(0, "nothing 1"), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::SYS_FACTORY_SVC_CMD_RAISE_EVENT, nullptr),
              kOutOfRange);
    EXPECT_EQ(command(3, ""), kOutOfRange);
    EXPECT_EQ(command(2, "nothing"), kNotFound);
    EXPECT_EQ(command(2, ""), kOk);
    EXPECT_THAT(contentOf(state() / "state.txt"),
                AllOf(HasSubstr("[board]\nversion "), HasSubstr("\n[sys]\n")));
}

TEST_F(SysControlTest, AForcedStatusIsReturnedAsOftenAsAsked) {
    const auto results = [] {
        std::string text;
        for (int i = 0; i < 4; ++i) {
            text += std::to_string(a_zvttvfapi_sys_check_folder(bytes("/"))) + " ";
        }
        return text;
    };
    const struct {
        const char* order;
        int32_t status;
        const char* results;
    } rows[] = {{"a_zvttvfapi_sys_check_folder -77", kOk, "-77 0 0 0 "},
                {"sys_check_folder 5 3", kOk, "5 5 5 0 "},
                {"sys_check_folder 0x100 always", kOk, "256 256 256 256 "},
                {"sys_check_folder 0xffffffff", kOk, "-1 0 0 0 "},  // in place of the order before
                {"sys_check_folder -2147483648 2", kOk, "-2147483648 -2147483648 0 0 "},
                {"sys_check_folder 1 always", kOk, "1 1 1 1 "},
                {"sys_check_folder clear", kOk, "0 0 0 0 "},
                {"sys_check_folder", kOutOfRange, "0 0 0 0 "},
                {"sys_check_folder 2147483648", kOutOfRange, "0 0 0 0 "},
                {"sys_check_folder -1 0", kOutOfRange, "0 0 0 0 "},
                {"sys_check_folder -1 -1", kOutOfRange, "0 0 0 0 "},
                {"sys_check_folder -1 2 3", kOutOfRange, "0 0 0 0 "},
                {"sys_check_folders -1", kOutOfRange, "0 0 0 0 "},
                {"", kOutOfRange, "0 0 0 0 "}};
    for (const auto& row : rows) {
        EXPECT_EQ(force(row.order), row.status) << row.order;
        EXPECT_EQ(results(), row.results) << row.order;
    }
    EXPECT_EQ(force("common_get_fapi_status -5 always"), kOk);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), -5);
    EXPECT_EQ(command(2, ""), kOk);
    EXPECT_THAT(contentOf(state() / "state.txt"),
                HasSubstr("a_zvttvfapi_common_get_fapi_status -5 always\n"));
    EXPECT_EQ(force("clear"), kOk);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), kOk);
    EXPECT_EQ(restarted("status", "ZVTTV_BOARD_FORCE='sys_init -1; common_get_fapi_status -9'"), "-9");
    EXPECT_THAT(restarted("status", "ZVTTV_BOARD_FORCE=nothing"),
                HasSubstr("there is no function \"nothing\""));
}

TEST_F(SysControlTest, TheBoardIsMadeNotReadyForAWhile) {
    EXPECT_EQ(force("not-ready 50"), kOk);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), -5);
    while (a_zvttvfapi_common_get_fapi_status() != kOk) {
        std::this_thread::yield();
    }
    EXPECT_EQ(force("not-ready"), kOk);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), -5);
    EXPECT_EQ(command(0, "force ready"), kOk);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), kOk);
    EXPECT_EQ(force("not-ready soon"), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_common_get_fapi_status(), kOk);
}
