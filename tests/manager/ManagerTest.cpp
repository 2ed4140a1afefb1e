#include "manager/ZvtTvFApiManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "manager/ClientDeathRecipient.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FakeChipLayer.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

Lines callsOf(const std::string& action, const std::string& arguments, const Lines& modules) {
    Lines calls;
    for (const std::string& module : modules) {
        calls.push_back("a_zvttvfapi_" + module + "_" + action + arguments);
    }
    return calls;
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Lines kAlphabetical = {"aud", "disp", "disptst", "info", "inpsrc", "net", "prphrl", "sys"};
const Lines kSystemFirst = {"sys", "aud", "disp", "disptst", "info", "inpsrc", "net", "prphrl"};

std::string debug(const std::string& name) {
    return "D ZvtTvFApiManager(server): <" + name + ":#> .";
}

std::string error(const std::string& name, const std::string& text) {
    return "E ZvtTvFApiManager(server): <" + name + ":#> [" + name + "] " + text + "\n";
}

TEST(Manager, EachFailedStepWritesOneLineAndStopsNothing) {
    struct {
        const char* what;
        void (*fail)(FakeChipLayer&);
        bool registered, initialised, deinitialised, unregistered;
    } const rows[] = {
            {"nothing fails", [](FakeChipLayer&) {}, true, true, true, true},
            {"a registration", [](FakeChipLayer& chip) { chip.returns(a_zvttvfapi_disp_reg_callback, -1); },
             false, true, true, true},
            {"the first and the last initialisation, alike",
             [](FakeChipLayer& chip) {
                 chip.returns(a_zvttvfapi_sys_init, 0x100);
                 chip.returns(a_zvttvfapi_prphrl_init, 0x100);
             },
             true, false, true, true},
            {"two de-initialisations, opposite",
             [](FakeChipLayer& chip) {
                 chip.returns(a_zvttvfapi_info_deinit, 1);
                 chip.returns(a_zvttvfapi_net_deinit, -1);
             },
             true, true, false, true},
            {"an unregistration",
             [](FakeChipLayer& chip) { chip.returns(a_zvttvfapi_sys_unreg_callback, INT_MIN); }, true, true,
             true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        FakeChipLayer chip;
        DeviceLog log;
        row.fail(chip);
        const auto unless = [](bool done, const char* name, const char* text) {
            return done ? Lines{} : Lines{error(name, text)};
        };

        ::android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager();
        EXPECT_EQ(chip.takeCalls(),
                  callsOf("reg_callback", "(*)", kAlphabetical) + callsOf("init", "()", kSystemFirst));
        EXPECT_EQ(log.takeLines(),
                  Lines{debug("ZvtTvFApiManager")} + Lines{debug("initCallback")} +
                          unless(row.registered, "ZvtTvFApiManager", "Register callback to mdoules failed") +
                          Lines{debug("initModules")} +
                          unless(row.initialised, "ZvtTvFApiManager", "Initialized mdoules failed") +
                          Lines{error("ZvtTvFApiManager", "Start ZvtTvFApi SDK Service: version:v1.0.0.13")});

        manager.clear();
        EXPECT_EQ(chip.takeCalls(),
                  callsOf("deinit", "()", kAlphabetical) + callsOf("unreg_callback", "()", kAlphabetical));
        EXPECT_EQ(log.takeLines(),
                  Lines{debug("deinitModules")} +
                          unless(row.deinitialised, "~ZvtTvFApiManager", "Deinitialized mdoules failed") +
                          Lines{debug("deinitCallback")} +
                          unless(row.unregistered, "~ZvtTvFApiManager",
                                 "Unregister callback to mdoules failed"));
    }
}

TEST(Manager, IsSilentWithTheFlagAtZeroEvenWhenEverythingFails) {
    FakeChipLayer chip;
    DeviceLog log(0);
    chip.returns(a_zvttvfapi_sys_reg_callback, -1);
    chip.returns(a_zvttvfapi_sys_init, -1);
    chip.returns(a_zvttvfapi_sys_deinit, -1);
    chip.returns(a_zvttvfapi_sys_unreg_callback, -1);
    ::android::sp<ZvtTvFApiManager>(new ZvtTvFApiManager()).clear();
    ::android::sp<ClientDeathRecipient>(new ClientDeathRecipient())->serviceDied(0, nullptr);
    EXPECT_THAT(log.takeLines(), IsEmpty());
}

TEST(Manager, AStepsResultIsTheBitsOfAllEight) {
    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager();
    // A bit of its own for each module in each step.
    uint32_t bit = 1;
    const auto fail = [&](auto... functions) {
        ((chip.returns(functions, static_cast<int32_t>(bit)), bit <<= 1), ...);
    };
#define FAIL_STEP(step)                                                               \
    fail(a_zvttvfapi_aud_##step, a_zvttvfapi_disp_##step, a_zvttvfapi_disptst_##step, \
         a_zvttvfapi_info_##step, a_zvttvfapi_inpsrc_##step, a_zvttvfapi_net_##step,  \
         a_zvttvfapi_prphrl_##step, a_zvttvfapi_sys_##step)
    FAIL_STEP(reg_callback);
    FAIL_STEP(init);
    FAIL_STEP(deinit);
    FAIL_STEP(unreg_callback);
#undef FAIL_STEP
    EXPECT_EQ(int32_t{manager->initCallback()}, 0xFF);
    EXPECT_EQ(int32_t{manager->initModules()}, 0xFF00);
    EXPECT_EQ(int32_t{manager->deinitModules()}, 0xFF0000);
    EXPECT_EQ(int32_t{manager->deinitCallback()}, ~0xFFFFFF);
}

TEST(Manager, EachModuleGetsTheHandlerOfItsNameWhichMayRunAtOnce) {
    struct {
        int32_t (*registration)(fapi_core::ZvtTvFApiEventHandler);
        const char* handler;
    } const rows[] = {
            {a_zvttvfapi_aud_reg_callback, "onAudEvent"},
            {a_zvttvfapi_disp_reg_callback, "onDispEvent"},
            {a_zvttvfapi_disptst_reg_callback, "onDispTstEvent"},
            {a_zvttvfapi_info_reg_callback, "onInfoEvent"},
            {a_zvttvfapi_inpsrc_reg_callback, "onInpSrcEvent"},
            {a_zvttvfapi_net_reg_callback, "onNetEvent"},
            {a_zvttvfapi_prphrl_reg_callback, "onPrphrlEvent"},
            {a_zvttvfapi_sys_reg_callback, "onSysEvent"},
    };
    for (const auto& row : rows) {
        FakeChipLayer chip;
        DeviceLog log;
        // The event arrives while the manager's constructor is still running.
        chip.on(row.registration, [](fapi_core::ZvtTvFApiEventHandler handler) {
            const fapi_core::ZvtTvFApiEventCommonObject object;
            EXPECT_EQ(handler(0x10005, object, object, object, object), 0);
            return 0;
        });
        ::android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager();
        EXPECT_THAT(log.takeLines(), Contains("D ZvtTvFApiManager(server): <" + std::string(row.handler) +
                                              ":#> u32EvtType = 65541\n"));
    }
}

TEST(ClientDeathRecipient, LogsTheCookieOfTheLink) {
    DeviceLog log;
    ::android::sp<ClientDeathRecipient>(new ClientDeathRecipient())->serviceDied(UINT64_MAX, nullptr);
    EXPECT_THAT(log.takeLines(), ElementsAre("E ZvtTvFApiManager(server): <serviceDied:#> Client disconnect "
                                             "18446744073709551615"));
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
