#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "chiplayer/prphrl.h"
#include "simulator/board/Events.h"
#include "tests/simulator/SysFixture.h"

/** A board whose peripherals have just been started, and the events that they raise. */
class PrphrlFixture : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        sEvents.clear();
        ASSERT_EQ(a_zvttvfapi_prphrl_reg_callback(see), simulator::kOk);
        ASSERT_EQ(a_zvttvfapi_prphrl_init(), simulator::kOk);
    }
    void TearDown() override {
        EXPECT_EQ(a_zvttvfapi_prphrl_deinit(), simulator::kOk);
        EXPECT_EQ(a_zvttvfapi_prphrl_unreg_callback(), simulator::kOk);
    }

    /** What is wrong with an order shows as a status. */
    static int32_t drive(const std::string& order) { return command(0, order); }
    static std::string described() {
        EXPECT_EQ(command(2, "prphrl"), simulator::kOk);
        return contentOf(state() / "state.txt");
    }

    /** "TYPE FIRST[ TEXT] SECOND[ BYTES]" with the last digit of the type, in the order of arrival, once
     * there are so many; then none is left. */
    static std::vector<std::string> events(size_t count) {
        std::unique_lock<std::mutex> lock(sMutex);
        EXPECT_TRUE(
                sChanged.wait_for(lock, std::chrono::seconds(30), [=] { return sEvents.size() >= count; }))
                << sEvents.size() << " of " << count;
        return std::exchange(sEvents, {});
    }

  private:
    using Object = fapi_core::ZvtTvFApiEventCommonObject;
    static int see(unsigned type, const Object& first, const Object& second, const Object&, const Object&) {
        const std::lock_guard<std::mutex> lock(sMutex);
        std::string line = std::to_string(type - 0x100000) + " " + std::to_string(first.u32Value) +
                           (first.strValue.empty() ? "" : " " + first.strValue) + " " +
                           std::to_string(second.u32Value);
        if (!first.vecValue.empty()) {
            line += " " + std::string(first.vecValue.begin(), first.vecValue.end());
        }
        sEvents.push_back(line);
        sChanged.notify_all();
        return 0;
    }

    static inline std::mutex sMutex;
    static inline std::condition_variable sChanged;
    static inline std::vector<std::string> sEvents;  // guarded by sMutex
};
