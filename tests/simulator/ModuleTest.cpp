#include "simulator/board/Module.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "simulator/board/Status.h"

using namespace simulator;
using fapi_core::ZvtTvFApiEventCommonObject;

namespace {

using Handler = fapi_core::ZvtTvFApiEventHandler;
using Object = const ZvtTvFApiEventCommonObject&;

/** What a handler of the tests shares with them. */
struct Stage {
    Module module;
    std::atomic<int> calls{0};
    std::promise<void> entered;
    std::promise<void> release;
};
Stage* sStage = nullptr;

class ModuleTest : public testing::Test {
  protected:
    ModuleTest() { sStage = &mStage; }
    ~ModuleTest() override { sStage = nullptr; }

    void setUp(Handler handler) {
        ASSERT_EQ(mStage.module.registerHandler(handler), kOk);
        ASSERT_EQ(mStage.module.init(), kOk);
    }

    Stage mStage;
};

constexpr unsigned kSlow = 1;

int waitAtTheSlowOne(unsigned type, Object, Object, Object, Object) {
    if (type == kSlow) {
        ++sStage->calls;
        sStage->entered.set_value();
        sStage->release.get_future().wait();
    }
    return 0;
}

}  // namespace

TEST_F(ModuleTest, AnEventReachesTheHandlerWithItsFourRecordsAndReturnsItsResult) {
    setUp([](unsigned type, Object a, Object b, Object c, Object d) {
        const bool right = type == 0x10005 && a.u32Value == 1 && b.strValue == "two" &&
                           c.vecValue.size() == 3 && d.u32Value == 4;
        return right ? 17 : 0;
    });
    Module::Payload payload;
    payload.objects[0].u32Value = 1;
    payload.objects[1].strValue = "two";
    payload.objects[2].vecValue = {3, 3, 3};
    payload.objects[3].u32Value = 4;
    EXPECT_EQ(mStage.module.raise(0x10005, payload), 17);
}

TEST_F(ModuleTest, RaisesNothingUnlessInitialisedWithAHandler) {
    const auto count = [](unsigned, Object, Object, Object, Object) { return ++sStage->calls, 0; };
    EXPECT_EQ(mStage.module.raise(1, {}), kNotSetUp);
    EXPECT_EQ(mStage.module.registerHandler(count), kOk);
    EXPECT_EQ(mStage.module.raise(1, {}), kNotSetUp);
    EXPECT_EQ(mStage.module.init(), kOk);
    EXPECT_EQ(mStage.module.raise(1, {}), kOk);
    EXPECT_EQ(mStage.module.deinit(), kOk);
    EXPECT_EQ(mStage.module.raise(1, {}), kNotSetUp);
    EXPECT_EQ(mStage.calls, 1);
}

TEST_F(ModuleTest, UnregisteringAndDeinitialisingWaitForADeliveryInProgress) {
    for (int32_t (Module::*const end)() : {&Module::unregisterHandler, &Module::deinit}) {
        Stage stage;
        sStage = &stage;
        stage.module.registerHandler(waitAtTheSlowOne);
        stage.module.init();
        std::thread library([&] { stage.module.raise(kSlow, {}); });
        stage.entered.get_future().wait();
        std::atomic<bool> ended{false};
        std::thread service([&] {
            EXPECT_EQ((stage.module.*end)(), kOk);
            ended = true;
        });
        // New events stop at once; the end itself comes only with the delivery's.
        while (stage.module.raise(2, {}) != kNotSetUp) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(ended);
        stage.release.set_value();
        library.join();
        service.join();
        EXPECT_EQ(stage.calls, 1);
    }
}

TEST_F(ModuleTest, AHandlerMayEndItsOwnModuleAndRaiseFurtherEvents) {
    setUp([](unsigned type, Object, Object, Object, Object) {
        ++sStage->calls;
        if (type == 1) {
            return sStage->module.raise(2, {});
        }
        EXPECT_EQ(sStage->module.unregisterHandler(), kOk);
        EXPECT_EQ(sStage->module.deinit(), kOk);
        return 0;
    });
    EXPECT_EQ(mStage.module.raise(1, {}), 0);
    EXPECT_EQ(mStage.calls, 2);
}
