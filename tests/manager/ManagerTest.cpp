#include "manager/ZvtTvFApiManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/fake/DeviceLog.h"
#include "tests/fake/FakeChipLayer.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using Lines = std::vector<std::string>;

/// One of the four steps that the manager takes with all modules.
struct Step {
    Return<int32_t> (ZvtTvFApiManager::*take)();
    std::string name;
    std::string function;  // of each module
    std::string arguments;
    std::string by;       // who takes it
    std::string failure;  // as the log tells it
    Lines modules = {"aud", "disp", "disptst", "info", "inpsrc", "net", "prphrl", "sys"};

    Lines calls() const {
        Lines all;
        for (const std::string& module : modules) {
            all.push_back("a_zvttvfapi_" + module + '_' + function + '(' + arguments + ')');
        }
        return all;
    }
    Lines lines(bool failed) const {
        const std::string tag = " ZvtTvFApiManager(server): <";
        Lines all = {'D' + tag + name + ":#> ."};
        if (failed) {
            all.push_back('E' + tag + by + ":#> [" + by + "] " + failure + " mdoules failed\n");
        }
        return all;
    }
};

const Step kSteps[] = {
        {&ZvtTvFApiManager::initCallback, "initCallback", "reg_callback", "*", "ZvtTvFApiManager",
         "Register callback to"},
        {&ZvtTvFApiManager::initModules,
         "initModules",
         "init",
         "",
         "ZvtTvFApiManager",
         "Initialized",
         {"sys", "aud", "disp", "disptst", "info", "inpsrc", "net", "prphrl"}},
        {&ZvtTvFApiManager::deinitModules, "deinitModules", "deinit", "", "~ZvtTvFApiManager",
         "Deinitialized"},
        {&ZvtTvFApiManager::deinitCallback, "deinitCallback", "unreg_callback", "", "~ZvtTvFApiManager",
         "Unregister callback to"},
};

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(Manager, AStepTakesAllModulesInOrderAndItsResultIsTheBitsOfAll) {
    for (const Step& step : kSteps) {
        SCOPED_TRACE(step.name);
        FakeChipLayer chip;
        DeviceLog log;
        const ::android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager();
        const auto take = [&] { return int32_t{(manager.get()->*step.take)()}; };
        const auto nameOf = [&](size_t module) { return step.modules[module] + '_' + step.function; };
        for (size_t i = 0; i < step.modules.size(); ++i) {
            chip.returns(nameOf(i), 1);
            EXPECT_EQ(take(), 1) << "this and all before it alike: " << nameOf(i);
        }
        for (size_t i = 0; i < step.modules.size(); ++i) {
            chip.returns(nameOf(i), 1 << i);
        }
        chip.takeCalls();
        EXPECT_EQ(take(), 0xFF);
        EXPECT_EQ(chip.takeCalls(), step.calls());
    }
}

TEST(Manager, AFailedStepWritesOneLineAndStopsNothing) {
    for (size_t failed = 0; failed <= std::size(kSteps); ++failed) {
        for (const uint8_t flag : {0, 1}) {
            FakeChipLayer chip;
            DeviceLog log(flag);
            if (failed < std::size(kSteps)) {
                chip.returns("disp_" + kSteps[failed].function, 0x100);
            }
            const auto lines = [&](size_t step) { return kSteps[step].lines(step == failed); };
            ::android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager();
            EXPECT_EQ(chip.takeCalls(), kSteps[0].calls() + kSteps[1].calls());
            EXPECT_EQ(log.takeLines(),
                      flag == 0 ? Lines{}
                                : Lines{"D ZvtTvFApiManager(server): <ZvtTvFApiManager:#> ."} + lines(0) +
                                          lines(1) +
                                          Lines{"E ZvtTvFApiManager(server): <ZvtTvFApiManager:#> "
                                                "[ZvtTvFApiManager] Start ZvtTvFApi SDK Service: "
                                                "version:v1.0.0.13\n"});
            manager.clear();
            EXPECT_EQ(chip.takeCalls(), kSteps[2].calls() + kSteps[3].calls());
            EXPECT_EQ(log.takeLines(), flag == 0 ? Lines{} : lines(2) + lines(3));
        }
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
