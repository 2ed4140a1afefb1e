// What the adapters leave in memory that is not theirs alone.

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "adapters/display/ZvtTvFApiDisplay.h"
#include "adapters/inputsource/ZvtTvFApiInputSource.h"
#include "adapters/system/ZvtTvFApiSystem.h"
#include "chiplayer/chiplayer.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"
#include "tests/support/SoiledStack.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

TEST(Memory, TheCopyOfAKeyIsWiped) {
    FakeChipLayer chip;
    DeviceLog log;
    std::optional<FreedBlock> freed;
    chip.on(a_zvttvfapi_sys_secure_storage_encrypt_key,
            [&](auto, auto, const unsigned char* pu8Key, unsigned char u8Size) {
                freed.emplace(pu8Key, u8Size);
                return -7;
            });
    const ::android::sp<ZvtTvFApiSystem> object = new ZvtTvFApiSystem();
    EXPECT_EQ(-7, int32_t(object->a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key("s", "k", {1, 2, 3})));
    EXPECT_EQ(freed->bytes(), std::vector<uint8_t>(3));
}

TEST(Memory, NoClientSeesWhatLayBetweenARecordsFields) {
    FakeChipLayer chip;
    DeviceLog log;
    const ::android::sp<ZvtTvFApiDisplay> display = new ZvtTvFApiDisplay();
    const ::android::sp<ZvtTvFApiInputSource> source = new ZvtTvFApiInputSource();
    const auto expectZeros = [](const auto& stRecord, int32_t) {
        std::vector<uint8_t> bytes(sizeof(stRecord));
        std::memcpy(bytes.data(), &stRecord, bytes.size());
        EXPECT_EQ(bytes, std::vector<uint8_t>(bytes.size()));
    };
    for (const int32_t readiness : {0, -5}) {
        chip.returns("common_get_fapi_status", readiness);
        soilStack();
        display->a_hidl_a_zvttvfapi_disp_get_tcon_info(expectZeros);
        soilStack();
        source->a_hidl_zvttvfapi_inpsrc_get_input_timing(expectZeros);
    }
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
