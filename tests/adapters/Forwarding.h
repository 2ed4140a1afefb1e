#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/Status.h>

#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "chiplayer/common.h"
#include "tests/fake/FakeChipLayer.h"

/// How the fake records the readiness guard.
inline const std::string kGuard = "a_zvttvfapi_common_get_fapi_status()";

/// Checks a method whose result is the function's status: after the guard it makes the one call, and hands
/// the status back whatever it is; while the library is not ready it makes none and returns -5.
template <typename Function, typename Method>
void expectForwarded(FakeChipLayer& chip, Function* function, const std::string& call, Method method) {
    SCOPED_TRACE(call);
    for (const int32_t status : {0, 12345, -2, -5}) {
        chip.returns(function, status);
        const ::android::hardware::Return<int32_t> result = method();
        EXPECT_EQ(int32_t{result}, status);
        EXPECT_THAT(chip.takeCalls(), ::testing::ElementsAre(kGuard, call));
    }
    chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
    const ::android::hardware::Return<int32_t> result = method();
    EXPECT_EQ(int32_t{result}, -5);
    EXPECT_THAT(chip.takeCalls(), ::testing::ElementsAre(kGuard));
    chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
}

/// The memory image of a record, padding included.
template <typename Record>
std::vector<uint8_t> imageOf(const Record& record) {
    std::vector<uint8_t> image(sizeof(record));
    std::memcpy(image.data(), static_cast<const void*>(&record), sizeof(record));
    return image;
}

/// Fills a record, padding included, with the bytes 1, 2, 3 and so on.
template <typename Record>
void number(Record& record) {
    auto* const bytes = reinterpret_cast<uint8_t*>(&record);
    std::iota(bytes, bytes + sizeof(record), uint8_t{1});
}
