#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/Status.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "chiplayer/common.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FakeChipLayer.h"
#include "tests/support/SoiledStack.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using Bytes = std::vector<uint8_t>;

/// The memory image of a record, padding included.
template <typename Record>
Bytes imageOf(const Record& record) {
    Bytes image(sizeof(record));
    std::memcpy(image.data(), static_cast<const void*>(&record), sizeof(record));
    return image;
}

/// The bytes 1, 2, 3 and so on, but for zeros at the given places.
inline Bytes sequence(size_t size, std::initializer_list<size_t> zeros = {}) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    for (const size_t at : zeros) {
        bytes[at] = 0;
    }
    return bytes;
}

/// Fills a record with that sequence, padding included.
template <typename Record>
void number(Record& record) {
    std::memcpy(static_cast<void*>(&record), sequence(sizeof(record)).data(), sizeof(record));
}

/// Numbers as they are, texts in 'quotes', bytes, and records of plain data by their
/// memory image, as <hexadecimal digits>.
template <typename T>
std::string show(const T& value) {
    if constexpr (std::is_arithmetic_v<T>) {
        return std::to_string(value);
    } else if constexpr (std::is_same_v<T, ::android::hardware::hidl_string>) {
        return "'" + std::string(value.c_str(), value.size()) + "'";
    } else if constexpr (std::is_same_v<T, Bytes> ||
                         std::is_same_v<T, ::android::hardware::hidl_vec<uint8_t>>) {
        std::string digits;
        for (const uint8_t byte : value) {
            digits += {"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
        }
        return '<' + digits + '>';
    } else if constexpr (std::is_trivially_destructible_v<T>) {
        return show(imageOf(value));
    } else {
        return toString(value);
    }
}

/// An object of the service on a fake chip layer, with its log.
template <typename Object>
class Adapter : public ::testing::Test {
  protected:
    /// What a call has delivered ("result status") or returned, and the log lines (" P text" each), a bar
    /// where the delivery was unless nothing follows it.
    struct Outcome {
        std::string answer;
        std::string lines;
    };
    /// One method and way through it: what it calls, what it answers and logs when the library returns -7,
    /// and what it does when the library is not ready.
    struct Row {
        std::function<Outcome()> call;
        std::string chipCall;
        std::string answer = "-7";
        std::string lines = "";
        std::string unready = "-5";
        bool guarded = true;
        std::string unreadyLines = "";
    };

    /// The name in the log, and the module whose functions the object calls.
    Adapter(const std::string& name, const std::string& module)
        : mTag(" " + name + "(server): <"), mPrefix("a_zvttvfapi_" + module + "_") {}

    void expectRows(const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            const std::string guard = row.guarded ? "?" : "";
            chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
            chip.returnsOtherwise(-7);
            const Outcome outcome = row.call();
            SCOPED_TRACE(mMethod);
            EXPECT_EQ(outcome.answer, row.answer);
            EXPECT_EQ(outcome.lines, row.lines);
            EXPECT_EQ(calls(), guard + row.chipCall);
            chip.returnsOtherwise(-5);
            EXPECT_EQ(row.call().lines.empty(), row.lines.empty())
                    << "-5 of a library that is ready is a result";
            calls();
            chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
            chip.returnsOtherwise(-7);
            const Outcome unready = row.call();
            EXPECT_EQ(unready.answer, row.unready);
            EXPECT_EQ(unready.lines, row.guarded ? row.unreadyLines : row.lines);
            EXPECT_EQ(calls(), row.guarded ? "?" : row.chipCall);
            chip.returns(a_zvttvfapi_common_get_fapi_status, 0);
        }
    }

    /// The callback of a method with results.
    auto results() {
        return [this](const auto& first, const auto&... rest) {
            mOutcome.answer += show(first);
            ((mOutcome.answer += ' ' + show(rest)), ...);
            collectLines();
            mOutcome.lines += '|';
        };
    }
    template <typename Call>
    Outcome outcomeOf(const std::string& method, Call call) {
        mMethod = method;
        mOutcome = {};
        log.takeLines();
        soilStack();
        const uint64_t served = Counted::callsServed();
        const auto returned = call();
        EXPECT_TRUE(returned.isOk());
        EXPECT_EQ(Counted::callsServed(), served + 1) << method;
        addReturned(returned);
        collectLines();
        if (!mOutcome.lines.empty() && mOutcome.lines.back() == '|') {
            mOutcome.lines.pop_back();
        }
        return mOutcome;
    }
    /// The calls since the last time, one behind the other; "?" is the question for readiness.
    std::string calls() {
        std::string all;
        for (const std::string& call : chip.takeCalls()) {
            all += call == "a_zvttvfapi_common_get_fapi_status()" ? "?"
                   : call.rfind(mPrefix, 0) == 0                  ? call.substr(mPrefix.size())
                                                                  : call;
        }
        return all;
    }

    void collectLines() {
        for (const std::string& line : log.takeLines()) {
            const std::string prefix = mTag + mMethod + ":#>";
            EXPECT_EQ(line.substr(1, prefix.size()), prefix);
            mOutcome.lines += std::string(" ") + line[0] + line.substr(1 + prefix.size());
        }
    }

    FakeChipLayer chip;
    DeviceLog log;
    ::android::sp<Object> object = new Object();
    std::string mMethod;
    Outcome mOutcome;

  private:
    template <typename T>
    void addReturned(const ::android::hardware::Return<T>& returned) {
        mOutcome.answer = show(static_cast<T>(returned));
    }
    void addReturned(const ::android::hardware::Return<void>&) {}

    struct Counted : Object {
        using Object::callsServed;
    };

    const std::string mTag;
    const std::string mPrefix;
};

/// The outcome of a call of the fixture's object, and a function that makes the call, for a row.
/// A method without arguments has a comma behind its name.
#define OUTCOME(name, ...) outcomeOf(#name, [&] { return object->name(__VA_ARGS__); })
#define METHOD(name, ...) [&] { return OUTCOME(name, __VA_ARGS__); }

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
