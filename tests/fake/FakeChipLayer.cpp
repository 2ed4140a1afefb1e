#include "tests/fake/FakeChipLayer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "chiplayer/chiplayer.h"
#include "tests/support/Shortened.h"

namespace {

FakeChipLayer* sCurrent = nullptr;

FakeChipLayer& current() {
    if (sCurrent == nullptr) {
        std::fputs("a chip-layer function was called without a FakeChipLayer\n", stderr);
        std::abort();
    }
    return *sCurrent;
}

std::string hexOf(const void* bytes, size_t size) {
    std::string digits;
    for (size_t i = 0; i < size; ++i) {
        const uint8_t byte = static_cast<const uint8_t*>(bytes)[i];
        digits += {"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
    }
    return '<' + shortened(digits, 2) + '>';
}

}  // namespace

FakeChipLayer::FakeChipLayer() {
    sCurrent = this;
}

FakeChipLayer::~FakeChipLayer() {
    sCurrent = nullptr;
}

FakeCall::FakeCall(const char* name)
    : mChip(current()), mName(name + sizeof("a_zvttvfapi_") - 1), mText(std::string(name) + '(') {}

FakeCall& FakeCall::text(const void* text) {
    return add('"' + shortened(static_cast<const char*>(text)) + '"');
}

// A record that points to others: what it points to is a part of it.
template <>
FakeCall& FakeCall::data(const _ZvtFApiDisptstBurnModeParam* data, size_t) {
    return value(data->u8Interval).data(data->pColorTable, data->u8ColorCount).value(data->u8ColorCount);
}

FakeCall& FakeCall::output(const char* name, void* output, size_t size) {
    mOutputs.push_back({name, output, size});
    const auto* const bytes = static_cast<const uint8_t*>(output);
    const bool zero = std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
    return add(zero ? "*" : '*' + hexOf(output, size));
}

FakeCall& FakeCall::add(const std::string& argument) {
    mText += (mText.back() == '(' ? "" : ", ") + argument;
    return *this;
}

FakeCall& FakeCall::bytes(const void* bytes, size_t size) {
    return add(hexOf(bytes, size));
}

void FakeCall::record() {
    mText += ')';
    if (mChip.mObserver) {
        mChip.mObserver(mText);
    }
    mChip.mCalls.push_back(mText);
}

int32_t FakeCall::answered() {
    for (const Output& output : mOutputs) {
        if (const auto written = mChip.mOutputs.extract(output.name)) {
            const std::string& bytes = written.mapped();
            std::memcpy(output.place, bytes.data(), std::min(bytes.size(), output.size));
        }
    }
    const auto result = mChip.mResults.find(mName);
    return result == mChip.mResults.end() ? mChip.mOtherwise : result->second;
}

// The fake functions, from the headers.
#include "FakeFunctions.inc"
