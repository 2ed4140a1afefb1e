// What several threads do at once.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "simulator/board/Status.h"
#include "tests/simulator/Picture.h"
#include "tests/simulator/Support.h"
#include "tests/support/Eventually.h"

using namespace simulator;
using testing::HasSubstr;

namespace {

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

std::string described(const char* module) {
    EXPECT_EQ(
            a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::SYS_FACTORY_SVC_CMD_DUMP_STATE, bytes(module)),
            kOk);
    return contentOf(ownState() / "state.txt");
}

void inThreads(unsigned count, const std::function<void(unsigned number)>& work) {
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < count; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

using Object = const fapi_core::ZvtTvFApiEventCommonObject&;
std::atomic<unsigned> sGpioEvents{0}, sKeys{0};
int count(unsigned type, Object, Object, Object, Object) {
    ++(type == 0x100003 ? sGpioEvents : sKeys);
    return 0;
}

}  // namespace

TEST(Parallel, WritesOfThreadsLoseNoneOfEachOther) {
    inThreads(8, [](unsigned number) {
        const std::string writer = std::to_string(number);
        for (unsigned round = 0; round < 20; ++round) {
            const std::string key = writer + "-" + std::to_string(round);
            std::string digit = writer, area = "misc";
            EXPECT_EQ(a_zvttvfapi_sys_set_emmc_env_var(bytes("t" + key), bytes(writer)), kOk);
            EXPECT_EQ(a_zvttvfapi_info_set_ini_para(bytes("count"), bytes("t" + key), bytes(writer)), kOk);
            EXPECT_EQ(a_zvttvfapi_sys_write_emmc(reinterpret_cast<unsigned char*>(area.data()),
                                                 8 * round + number, 1,
                                                 reinterpret_cast<unsigned char*>(digit.data())),
                      kOk);
        }
    });
    const std::string variables = contentOf(ownState() / "emmc/env.txt"),
                      counted = contentOf(ownState() / "ini/count.ini");
    const std::string area = contentOf(ownState() / "emmc/misc.bin");
    for (unsigned i = 0; i < 160; ++i) {
        const std::string writer = std::to_string(i % 8);
        const std::string key = "t" + writer + "-" + std::to_string(i / 8);
        EXPECT_THAT(variables, HasSubstr(key + "=" + writer + "\n"));
        EXPECT_THAT(counted, HasSubstr(key + " = " + writer + "\n"));
        EXPECT_EQ(area[i], writer[0]) << i;
    }
}

TEST(Parallel, NothingExchangedBetweenALookAndItsUseLeadsOutOfTheSandbox) {
    namespace fs = std::filesystem;
    const fs::path files = ownState() / "files";
    const fs::path outside = ownState() / "outside";
    for (const fs::path& folder : {files / "in", outside}) {
        fs::create_directories(folder);
        std::ofstream(folder / "target") << (folder == outside ? "secret" : "");
    }
    fs::create_directory_symlink(outside, files / "link");
    const fs::perms mode = fs::status(outside / "target").permissions();
    std::atomic<bool> ends{false};
    std::thread exchanging([&] {
        while (!ends) {
            renameat2(AT_FDCWD, (files / "in").c_str(), AT_FDCWD, (files / "link").c_str(), RENAME_EXCHANGE);
        }
    });
    std::atomic<unsigned> done{0}, refused{0};
    inThreads(2, [&](unsigned) {
        for (unsigned round = 0; round < 2000; ++round) {
            unsigned char read[16] = {};
            unsigned got = 0;
            const std::string target = "/in/target";
            const unsigned char* const path = bytes(target);
            const int32_t statuses[] = {
                    a_zvttvfapi_sys_write_file(path, bytes("mine"), 4, bytes(round % 2 == 0 ? "w" : "a")),
                    a_zvttvfapi_sys_read_file(path, read, sizeof(read) - 1, 0, &got),
                    a_zvttvfapi_sys_change_file_mode(path, 0777),
                    a_zvttvfapi_sys_copy_file(path, bytes("/copy"), true),
                    a_zvttvfapi_sys_remove_file(path),
                    a_zvttvfapi_sys_create_file(path),
            };
            for (const int32_t status : statuses) {
                ++(status == kOk ? done : refused);
            }
            EXPECT_EQ(std::string(reinterpret_cast<char*>(read)).find("secret"), std::string::npos);
        }
    });
    ends = true;
    exchanging.join();
    EXPECT_GT(done, 100u);
    EXPECT_GT(refused, 100u);
    EXPECT_EQ(contentOf(outside / "target"), "secret");
    EXPECT_EQ(std::distance(fs::directory_iterator(outside), fs::directory_iterator()), 1);
    EXPECT_EQ(fs::status(outside / "target").permissions(), mode);
}

TEST(Parallel, NoBandIsLostThatAnotherThreadSets) {
    a_zvttvfapi_aud_init();
    inThreads(4, [](unsigned number) {
        for (auto band = static_cast<uint16_t>(8 * number); band < 8 * number + 8; ++band) {
            auto q = static_cast<uint16_t>(1000 + band);
            EXPECT_EQ(a_zvttvfapi_aud_adv_set_peq_q_value(&band, &q), kOk);
        }
    });
    a_zvttvfapi_aud_deinit();
    a_zvttvfapi_aud_init();
    const std::string text = described("aud");
    for (int band = 0; band < 32; ++band) {
        EXPECT_THAT(text, HasSubstr(" 0 " + std::to_string(1000 + band) + " "));
    }
    a_zvttvfapi_aud_deinit();
}

TEST(Parallel, TheGpioMonitorIsStartedAndStoppedByAllThreads) {
    ASSERT_EQ(a_zvttvfapi_prphrl_reg_callback(count), kOk);
    ASSERT_EQ(a_zvttvfapi_prphrl_init(), kOk);
    std::atomic<bool> done{false};
    std::thread clock([&done] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        done = true;
    });
    inThreads(4, [&done](unsigned line) {
        for (unsigned i = 0; !done; ++i) {
            a_zvttvfapi_prphrl_gpio_monitor_start(line, 0, i % 3);
            a_zvttvfapi_prphrl_control_gpio(line, i % 2);
            a_zvttvfapi_prphrl_gpio_monitor_stop();
        }
    });
    clock.join();
    // So many changes may have been under way that more would have been refused.
    for (unsigned before = ~0U; before != sGpioEvents;) {
        before = sGpioEvents;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    const unsigned before = sGpioEvents;
    ASSERT_EQ(a_zvttvfapi_prphrl_control_gpio(9, 0), kOk);
    ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_start(9, 0, 0), kOk);
    ASSERT_EQ(a_zvttvfapi_prphrl_control_gpio(9, 1), kOk);
    EXPECT_TRUE(eventually([=] { return sGpioEvents == before + 1; }));
    ASSERT_EQ(a_zvttvfapi_prphrl_gpio_monitor_stop(), kOk);
    for (unsigned line = 0; line < 10; ++line) {
        a_zvttvfapi_prphrl_control_gpio(line, 0);
        a_zvttvfapi_prphrl_control_gpio(line, 1);
    }
    a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::SYS_FACTORY_SVC_CMD_RAISE_EVENT,
                                            bytes("irkey 1 1 press"));
    EXPECT_TRUE(eventually([] { return sKeys == 1; }));
    EXPECT_EQ(sGpioEvents, before + 1) << "nothing is monitored";
    EXPECT_EQ(a_zvttvfapi_prphrl_deinit(), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_unreg_callback(), kOk);
}

TEST(Parallel, ThePanelIsDrawnOnSetAndCapturedByMany) {
    a_zvttvfapi_disp_init();
    ASSERT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(0, 0), 0);
    inThreads(4, [](unsigned n) {
        const std::string name = std::to_string(n) + ".png";
        for (unsigned i = 0; i < 3; ++i) {
            EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_on(n == 0 ? 640 : 0, 0), 0);
            EXPECT_EQ(a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect({n, n, 99, 99, ~0U, 0, 1, 0, 9, 1}),
                      0);
            EXPECT_EQ(a_zvttvfapi_disp_set_picture_param(n, i), 0);
            EXPECT_EQ(a_zvttvfapi_disp_capture_screen_to_usb(bytes(name), 0), 0);
        }
        Picture(ownState() / ("files/usb/" + name));
    });
}
