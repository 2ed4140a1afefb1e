#define LOG_TAG "Frame(server)"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "service/frame/FapiInterface.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FakeChipLayer.h"

// A pair of enumerations whose values from 2 on are one to the chip layer.
enum class HidlMode : int8_t {};
enum ChipMode : int8_t { MODE_0, MODE_1, MODE_OTHER };

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

template <>
struct ChipTwin<HidlMode> {
    using type = ChipMode;
    static constexpr type last = MODE_OTHER;
};

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct INothing {
    [[maybe_unused]] static constexpr char descriptor[] = "nothing@1.0::INothing";
    virtual ~INothing() = default;
    virtual ::android::hardware::Return<void> debug(
            const ::android::hardware::hidl_handle& handle,
            const ::android::hardware::hidl_vec<hidl_string>& options) = 0;
};
struct Nothing : FapiInterface<INothing> {
    using FapiInterface::fapiReady;
    using FapiInterface::forward;
};

constexpr char kAskStatus[] = "a_zvttvfapi_common_get_fapi_status()";

TEST(Guard, OnlyMinusFiveStopsACallAndReadinessIsAskedOncePerCall) {
    struct {
        int32_t readiness;
        int32_t status;
    } const rows[] = {{-5, FAPI_NOT_READY}, {0, 33},      {-1, 33}, {-4, 33}, {1, 33},
                      {INT_MIN, 33},        {INT_MAX, 33}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.readiness);
        FakeChipLayer chip;
        chip.returns(a_zvttvfapi_common_get_fapi_status, row.readiness);
        chip.returns(a_zvttvfapi_net_init, 33);
        EXPECT_EQ(Nothing::forward(a_zvttvfapi_net_init), row.status);
        const std::vector<std::string> asked = {kAskStatus};
        const std::vector<std::string> askedAndCalled = {kAskStatus, "a_zvttvfapi_net_init()"};
        EXPECT_EQ(chip.takeCalls(), row.status == FAPI_NOT_READY ? asked : askedAndCalled);
    }
}

TEST(Guard, ReadinessIsNeverRemembered) {
    FakeChipLayer chip;
    for (const int32_t readiness : {-5, 0, -5}) {
        chip.returns(a_zvttvfapi_common_get_fapi_status, readiness);
        EXPECT_EQ(Nothing::fapiReady(), readiness == 0);
    }
}

// What would lose bits, constness or an output behind the author's back does not compile.
static_assert(!isChipArgument<unsigned char, uint32_t>, "narrowing");
static_assert(!isChipArgument<unsigned int, uint16_t>, "widening");
static_assert(!isChipArgument<unsigned int, bool>, "a flag in another width");
static_assert(!isChipArgument<bool, int>, "a number as a flag");
static_assert(!isChipArgument<unsigned char*, const hidl_string&>, "writable text");
static_assert(!isChipArgument<unsigned int*, int32_t*>, "another sign behind a pointer");
static_assert(!isChipArgument<unsigned char*, const uint8_t*>, "constness lost");
static_assert(!isChipArgument<ChipMode, int8_t>, "a number as an enumeration");
static_assert(!isChipArgument<unsigned int, HidlMode>, "an enumeration as a number");
static_assert(!isChipArgument<unsigned int&, uint32_t>, "an output that nobody would see");
static_assert(!isChipArgument<unsigned short*, Cell<uint32_t>>, "a cell of another width");
static_assert(isChipArgument<void*, uint8_t*> && isChipArgument<unsigned long long, uint64_t>);

TEST(Scratch, MoreBytesThanCanBeCountedAreRefused) {
    EXPECT_FALSE(Scratch<uint16_t>::uncleared(SIZE_MAX / 2 + 2)) << "two bytes, if nobody looks";
}

size_t residentPages() {
    std::ifstream statm("/proc/self/statm");
    size_t all = 0, resident = 0;
    statm >> all >> resident;
    return resident;
}

TEST(Scratch, AZeroedBufferCostsNoMemoryUntilItIsTouched) {
    constexpr size_t kSize = 64 << 20;
    const size_t before = residentPages();
    // Nothing either, but for a sanitizer's.
    const std::unique_ptr<void, void (*)(void*)> plain(std::calloc(kSize, 1), std::free);
    const size_t between = residentPages();
    auto pu8Data = Scratch<uint8_t>::zeroed(kSize);
    ASSERT_TRUE(plain && pu8Data);
    EXPECT_EQ(pu8Data[kSize - 1], 0);
    EXPECT_LT(residentPages() - between, between - before + 1000);
}

void writeEveryKindOfLine(int32_t s32Status, int& counter) {
    FAPI_LOGD("text");
    FAPI_LOGI("%d values\n", ++counter);
    FAPI_LOGE("%d%d%d%d%d%d%d%d", 1, 2, 3, 4, 5, 6, 7, 8);
    FAPI_LOG(ANDROID_LOG_DEBUG, "chip_function", "()...\n");
    FAPI_LOGE_DOUBLED(FAPI_TEXT_INVALID_INPUT);
    FAPI_LOG_OUTCOME("chip_function", s32Status);
    FAPI_LOG_OUTCOME("chip_function", 0);
}

TEST(Log, LinesReachTheLogToTheLetter) {
    int counter = 0;
    DeviceLog log;
    writeEveryKindOfLine(3, counter);
    EXPECT_THAT(log.takeLines(),
                ElementsAre("D Frame(server): <writeEveryKindOfLine:#> text",
                            "I Frame(server): <writeEveryKindOfLine:#> 1 values\n",
                            "E Frame(server): <writeEveryKindOfLine:#> 12345678",
                            "D Frame(server): <chip_function:#> ()...\n",
                            "E Frame(server): <writeEveryKindOfLine:#> [writeEveryKindOfLine(#)]"
                            "Invalid input param from Java!\n",
                            "E Frame(server): <writeEveryKindOfLine:#> chip_function Fail!\n",
                            "D Frame(server): <writeEveryKindOfLine:#> chip_function OK!\n"));
}

TEST(Log, TheFlagIsTestedAtEachLineAndAnyValueButZeroLetsItThrough) {
    int counter = 0;
    DeviceLog log(0);
    writeEveryKindOfLine(-1, counter);
    EXPECT_THAT(log.takeLines(), IsEmpty());
    EXPECT_EQ(counter, 0) << "a line that is not written computes nothing";
    u8TvFactoryDebug = 0x80;
    writeEveryKindOfLine(-1, counter);
    EXPECT_EQ(log.takeLines().size(), 7u);
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
