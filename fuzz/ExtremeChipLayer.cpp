// A chip-layer library that uses its contract to the extreme.

#include "fuzz/ExtremeChipLayer.h"

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "chiplayer/custom.h"

namespace {

uint8_t sOutputs = 0;
uint8_t sResults = 0;
uint32_t sNext = 1;
std::vector<fapi_core::ZvtTvFApiEventHandler> sHandlers;
volatile uint8_t sSeen;  // so that what is read is read

uint32_t next() {
    sNext = sNext * 1664525 + 1013904223;
    return sNext >> 8;
}

void see(const void* bytes, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        sSeen = static_cast<const uint8_t*>(bytes)[i];
    }
}

}  // namespace

void setAnswers(uint8_t outputs, uint8_t results) {
    sOutputs = outputs;
    sResults = results;
    sNext = 1;
}

void raiseEvent(uint8_t module, uint32_t type, const std::string& text) {
    const fapi_core::ZvtTvFApiEventCommonObject extreme{UINT32_MAX, std::string(100'000, '\xff'),
                                                        std::vector<uint8_t>(100'000, 0xFF)};
    const fapi_core::ZvtTvFApiEventCommonObject chosen{0, text, {text.begin(), text.end()}};
    if (!sHandlers.empty()) {
        sHandlers[module % sHandlers.size()](type, module < 128 ? chosen : extreme, chosen, {}, {});
    }
}

// Named by what the functions are generated with.
class FakeCall {
  public:
    explicit FakeCall(const char* name)
        : mSaysReady(std::strcmp(name, "a_zvttvfapi_common_get_fapi_status") == 0) {}

    template <typename T>
    FakeCall& value(const T& value) {
        see(&value, sizeof(value));
        if constexpr (std::is_same_v<T, fapi_core::ZvtTvFApiEventHandler>) {
            sHandlers.push_back(value);
        }
        return *this;
    }
    FakeCall& text(const void* text) {
        see(text, std::strlen(static_cast<const char*>(text)));
        return *this;
    }
    template <typename T>
    FakeCall& data(const T* data, size_t count) {
        if constexpr (std::is_void_v<T>) {
            see(data, count);
        } else {
            see(data, count * sizeof(T));
        }
        if constexpr (std::is_same_v<T, _ZvtFApiDisptstBurnModeParam>) {
            see(data->pColorTable, data->u8ColorCount * sizeof(*data->pColorTable));
        }
        return *this;
    }
    FakeCall& output(const char*, void* output, size_t size) {
        // Of what is beyond any message, the ends.
        constexpr size_t kEnd = 1 << 20;
        for (size_t i = 0; i < size && sOutputs != 0; ++i) {
            i = i == kEnd && size > 2 * kEnd ? size - kEnd : i;
            static_cast<uint8_t*>(output)[i] = sOutputs == 1 ? static_cast<uint8_t>(next()) : sOutputs;
        }
        return *this;
    }

    template <typename Function, typename... Arguments>
    int32_t made(Function*, const Arguments&...) {
        static constexpr int32_t kResults[] = {0, -1, -5, 1, INT32_MIN, INT32_MAX, -100, 0x100};
        const uint32_t choice = sResults == 1 ? next() : sResults;
        return mSaysReady ? 0 : kResults[choice % 8];
    }

  private:
    const bool mSaysReady;
};

#include "FakeFunctions.inc"
