#define LOG_TAG "Frame(server)"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "service/frame/Call.h"
#include "service/frame/Log.h"
#include "service/frame/Scratch.h"
#include "service/frame/Text.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"

// A pair of enumerations whose values from 2 on are one to the chip layer.
enum class HidlMode : int8_t {};
enum ChipMode : int8_t { MODE_0, MODE_1, MODE_OTHER };
struct Record {
    uint32_t u32Value;
};

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

template <>
struct ChipTwin<HidlMode> {
    using type = ChipMode;
    static constexpr type last = MODE_OTHER;
};

namespace {

using ::android::hardware::hidl_vec;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr char kAskStatus[] = "a_zvttvfapi_common_get_fapi_status()";

// What the functions below, declared as chip-layer functions are, have received.
const void* sPointer;
std::vector<uint64_t> sValues;

int32_t takeNumbers(unsigned char a, bool b, signed char c, unsigned short d, unsigned int e,
                    unsigned long long f, ChipMode g) {
    sValues = {a, b, static_cast<uint64_t>(c), d, e, f, static_cast<uint64_t>(g)};
    return 0;
}
int32_t takeCells(unsigned char* a, unsigned short* b, unsigned int* c) {
    sValues = {*a, *b, *c};
    return 0;
}
int32_t takeText(const char* text) {
    sPointer = text;
    return 0;
}
int32_t takeUnsignedText(const unsigned char* text) {
    sPointer = text;
    return 0;
}
int32_t takeLentText(unsigned char* text) {
    sPointer = text;
    return 0;
}
int32_t takeLentWords(unsigned int* text) {
    sPointer = text;
    return 0;
}
int32_t fillReference(unsigned int& value, Record& record) {
    value = 7;
    record.u32Value = 8;
    return 9;
}

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
        EXPECT_EQ(forward(a_zvttvfapi_net_init), row.status);
        const std::vector<std::string> asked = {kAskStatus};
        const std::vector<std::string> askedAndCalled = {kAskStatus, "a_zvttvfapi_net_init()"};
        EXPECT_EQ(chip.takeCalls(), row.status == FAPI_NOT_READY ? asked : askedAndCalled);
    }
}

TEST(Guard, ReadinessIsNeverRemembered) {
    FakeChipLayer chip;
    for (const int32_t readiness : {-5, 0, -5}) {
        chip.returns(a_zvttvfapi_common_get_fapi_status, readiness);
        EXPECT_EQ(fapiReady(), readiness == 0);
    }
}

TEST(Conversion, NumbersKeepTheirBitsAndEnumerationsEndAtTheLastTwin) {
    struct {
        bool flag;
        int8_t s8;
        int16_t s16;
        int32_t s32;
        uint64_t u64;
        int8_t mode;
        std::vector<uint64_t> received;
    } const rows[] = {
            {true, -1, -1, -1, UINT64_MAX, 1, {1, 1, UINT64_MAX, 0xFFFF, 0xFFFFFFFF, UINT64_MAX, 1}},
            {false, 127, 5, INT_MIN, 1ULL << 32, 2, {0, 0, 127, 5, 0x80000000, 1ULL << 32, 2}},
            {false, 0, 0, 0, 0, 3, {0, 0, 0, 0, 0, 0, 2}},
            {false, 0, 0, 0, 0, -1, {0, 0, 0, 0, 0, 0, 2}},
    };
    for (const auto& row : rows) {
        callChip(takeNumbers, row.flag, row.flag, row.s8, row.s16, row.s32, row.u64, HidlMode{row.mode});
        EXPECT_EQ(sValues, row.received);
        callChip(takeCells, cell(row.flag), cell(row.s16), cell(row.s32));
        EXPECT_THAT(sValues, ElementsAre(row.received[0], row.received[3], row.received[4]));
    }
}

TEST(Conversion, TextsAreLentWithoutACopyInEveryPointerType) {
    for (const char* characters : {"", "text"}) {
        const hidl_string text(characters);
        callChip(takeText, text);
        EXPECT_EQ(sPointer, text.c_str());
        callChip(takeUnsignedText, text);
        EXPECT_EQ(sPointer, text.c_str());
        callChip(takeLentText, lend(text));
        EXPECT_EQ(sPointer, text.c_str());
        callChip(takeLentWords, lend(text));
        EXPECT_EQ(sPointer, text.c_str());
    }
}

TEST(Conversion, ReferencesReachTheCallersOwnVariables) {
    uint32_t u32Value = 0;
    Record record = {};
    EXPECT_EQ(callChip(fillReference, u32Value, record), 9);
    EXPECT_EQ(u32Value, 7u);
    EXPECT_EQ(record.u32Value, 8u);
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

TEST(Text, EndsAtTheFirstNulAndNeverBeyondTheBuffer) {
    struct {
        const char* what;
        std::string written;
        std::string read;
    } const rows[] = {
            {"nothing written", "", ""},
            {"a text", "abc", "abc"},
            {"a NUL inside", std::string("ab\0cd", 5), "ab"},
            {"one byte short of the end", "1234567", "1234567"},
            {"filled to the end, no terminator", "12345678", "1234567"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        TextBuffer<8> text;
        ASSERT_EQ(text.size(), 8u);
        std::memcpy(toChip<unsigned char*>(text), row.written.data(), row.written.size());
        EXPECT_STREQ(text.c_str(), row.read.c_str());
        EXPECT_EQ(std::string(text.text()), row.read);
    }
}

TEST(Scratch, TakesAsManyElementsAsBothSidesHold) {
    const hidl_vec<uint16_t> vecData = {1, 2, 3};
    for (const size_t count : {0, 2, 3, 5}) {
        auto pu16Data = Scratch<uint16_t>::zeroed(count);
        ASSERT_TRUE(pu16Data);
        pu16Data.copyFrom(vecData);
        std::vector<uint16_t> expected = {1, 2, 3};
        expected.resize(count);
        EXPECT_THAT(std::vector<uint16_t>(pu16Data.get(), pu16Data.get() + count),
                    ElementsAreArray(expected));
    }
}

TEST(Scratch, ARefusedAllocationIsANullBufferAndLeavesTheOthersAlone) {
    for (const int refused : {1, 2, 3}) {
        FailingAllocation failing(refused);
        auto first = Scratch<uint8_t>::zeroed(4);
        auto second = Scratch<uint16_t>::uncleared(4);
        auto third = Scratch<Record>::zeroed(1);
        // Seen from outside: an allocation that nobody sees may be optimised away.
        const void* volatile seen[] = {first.get(), second.get(), third.get()};
        static_cast<void>(seen);
        EXPECT_EQ(failing.asked(), 3);
        EXPECT_EQ(!first, refused == 1);
        EXPECT_EQ(!second, refused == 2);
        EXPECT_EQ(!third, refused == 3);
        EXPECT_EQ(toChip<Record*>(third) == nullptr, refused == 3);
        EXPECT_EQ(third.size(), refused == 3 ? 0u : 1u);
    }
    EXPECT_FALSE(Scratch<uint16_t>::uncleared(SIZE_MAX)) << "more bytes than can be counted";
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
