#define LOG_TAG "Frame(server)"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "service/frame/FapiInterface.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Text.h"
#include "service/frame/Twin.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"

// An enumeration and a record with padding, as the chip layer and as clients have them.
namespace fapi_core {
enum Mode : int8_t { MODE_0, MODE_1, MODE_OTHER };
struct Pair {
    uint8_t u8First;
    uint16_t u16Second;
    uint8_t u8Third;
};
}  // namespace fapi_core

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

enum class Mode : int8_t {};
template <>
struct ChipTwin<Mode> {
    using type = fapi_core::Mode;
    static constexpr type last = fapi_core::MODE_OTHER;
};
struct Pair : fapi_core::Pair {};
FAPI_TWIN(Pair, u8First, u16Second, u8Third);

namespace {

using ::testing::IsEmpty;

struct INothing {
    [[maybe_unused]] static constexpr char descriptor[] = "nothing@1.0::INothing";
    virtual ~INothing() = default;
    virtual ::android::hardware::Return<void> debug(
            const ::android::hardware::hidl_handle& handle,
            const ::android::hardware::hidl_vec<hidl_string>& options) = 0;
};
struct Nothing : FapiInterface<INothing> {
    using FapiInterface::forward;
};

TEST(Guard, OnlyMinusFiveStopsACallAndReadinessIsAskedOncePerCall) {
    FakeChipLayer chip;
    chip.returns("net_init", 33);
    // Never remembered.
    for (const int32_t readiness : {0, -5, -1, -4, 1, INT_MIN, -5, INT_MAX}) {
        chip.returns("common_get_fapi_status", readiness);
        EXPECT_EQ(Nothing::forward(a_zvttvfapi_net_init), readiness == -5 ? -5 : 33);
        std::vector<std::string> calls = {"a_zvttvfapi_common_get_fapi_status()", "a_zvttvfapi_net_init()"};
        calls.resize(readiness == -5 ? 1 : 2);
        EXPECT_EQ(chip.takeCalls(), calls) << readiness;
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
static_assert(!isChipArgument<fapi_core::Mode, int8_t>, "a number as an enumeration");
static_assert(!isChipArgument<unsigned int, Mode>, "an enumeration as a number");
static_assert(!isChipArgument<unsigned int&, uint32_t>, "an output that nobody would see");
static_assert(!isChipArgument<unsigned short*, Cell<uint32_t>>, "a cell of another width");
static_assert(isChipArgument<void*, uint8_t*> && isChipArgument<unsigned long long, uint64_t>);

TEST(Convert, ValuesBeyondTheLastBecomeTheLastNegativeOnesToo) {
    for (int value = INT8_MIN; value <= INT8_MAX; ++value) {
        EXPECT_EQ(toTwin(Mode(value)), value == 0 || value == 1 ? value : fapi_core::MODE_OTHER);
    }
}

TEST(Convert, OnlyFieldsCrossBothWaysAndPaddingIsZero) {
    const auto cross = [](auto stFrom, auto stTo) {
        constexpr uint8_t kSoiled[] = {1, 2, 3, 4, 5, 6}, kFields[] = {1, 0, 3, 4, 5, 0};
        std::memcpy(static_cast<void*>(&stFrom), kSoiled, sizeof(stFrom));
        std::memset(static_cast<void*>(&stTo), 0xA5, sizeof(stTo));
        copyTwin(stFrom, stTo);
        EXPECT_EQ(0, std::memcmp(&stTo, kFields, sizeof(kFields)));
    };
    cross(Pair(), fapi_core::Pair());
    cross(fapi_core::Pair(), Pair());
}

TEST(Convert, ALentTextIsTheClientsOwn) {
    const hidl_string text("text");
    EXPECT_EQ(static_cast<const void*>(static_cast<unsigned char*>(lend(text))), text.c_str());
    EXPECT_EQ(static_cast<const void*>(static_cast<unsigned int*>(lend(text))), text.c_str());
}

TEST(Text, WhatNoHidlTextCanHoldIsRefused) {
    // More than memory is worth: the same pages again and again.
    constexpr size_t kPart = 16 << 20, kAll = size_t{UINT32_MAX} + 1;
    const int fd = memfd_create("part", MFD_CLOEXEC);
    ASSERT_EQ(0, ftruncate(fd, kPart));
    auto* const text = static_cast<uint8_t*>(
            mmap(nullptr, kAll, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    ASSERT_NE(MAP_FAILED, static_cast<void*>(text));
    for (size_t at = 0; at < kAll; at += kPart) {
        ASSERT_NE(MAP_FAILED, mmap(text + at, kPart, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, fd, 0));
    }
    std::memset(text, 'x', kPart);
    hidl_string copy("as it was");
    EXPECT_FALSE(copyText(text, UINT32_MAX, &copy));
    EXPECT_EQ(copy, "as it was");
    munmap(text, kAll);
    close(fd);
}

TEST(Scratch, ASizeIsCountedToTheByteAndNeverZero) {
    EXPECT_FALSE(Scratch<uint16_t>::uncleared(SIZE_MAX / 2 + 2)) << "two bytes, if nobody looks";
    EXPECT_FALSE(Scratch<uint16_t>::zeroed(SIZE_MAX));
    for (const auto make : {Scratch<uint16_t>::zeroed, Scratch<uint16_t>::uncleared}) {
        for (const uint64_t count : {0, 1, 3}) {
            EXPECT_EQ(make(count).size(), count);
            const FailingAllocation refused(1);
            EXPECT_FALSE(make(count));
            EXPECT_EQ(refused.refusedBytes(), count == 0 ? 2 : 2 * count);
        }
    }
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

TEST(Log, TheFlagIsTestedAtEachLineAndAnyValueButZeroLetsItThrough) {
    int counter = 0;
    DeviceLog log(0);
    const auto writeLines = [&] {
        FAPI_LOGD("%d%d%d%d%d%d%d%d", ++counter, 2, 3, 4, 5, 6, 7, 8);
        FAPI_LOG_OUTCOME("text", counter);
    };
    writeLines();
    EXPECT_THAT(log.takeLines(), IsEmpty());
    EXPECT_EQ(counter, 0) << "a line that is not written computes nothing";
    u8TvFactoryDebug = 0x80;
    writeLines();
    EXPECT_EQ(log.takeLines(), (std::vector<std::string>{"D Frame(server): <operator():#> 12345678",
                                                         "E Frame(server): <operator():#> text Fail!\n"}));
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
