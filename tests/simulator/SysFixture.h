#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "chiplayer/sys.h"
#include "simulator/board/Status.h"
#include "tests/simulator/Support.h"

/** The state folder of this process's board, chosen before anything asks for it; empty at each test's start.
 */
class SysFixture : public testing::Test {
  protected:
    void SetUp() override {
        a_zvttvfapi_sys_unreg_callback();  // the board shows the state of modules that were used
        for (const auto& entry : std::filesystem::directory_iterator(state().path())) {
            std::filesystem::remove_all(entry);
        }
    }

    static const TemporaryFolder& state() {
        static const TemporaryFolder sState;
        return sState;
    }

    /** What a board of this state says after a restart. */
    static std::string restarted(const std::string& arguments, const std::string& environment = "") {
        return probe("ZVTTV_STATE_DIR=" + state().path() + " " + environment, arguments);
    }

    static const unsigned char* bytes(const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.c_str());
    }

    static int32_t command(uint32_t number, const std::string& text) {
        return a_zvttvfapi_sys_send_cmd_to_factory_svc(
                static_cast<fapi_core::ZvtTvFApiSysFactorySvcCmd_e>(number), bytes(text));
    }
    static int32_t force(const std::string& order) { return command(1, order); }
    static std::string printed() {
        EXPECT_EQ(command(2, "sys"), simulator::kOk);
        return contentOf(state() / "state.txt");
    }

  private:
    static inline const int sChosen = setenv("ZVTTV_STATE_DIR", state().path().c_str(), 1);
};
