#include "tests/fake/FakeChipLayer.h"

#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <type_traits>

#include "chiplayer/chiplayer.h"

namespace {

FakeChipLayer* sCurrent = nullptr;

// Data that the service hands over with its length.
template <typename T>
struct Data {
    T* data;
    size_t size;
    operator T*() const { return data; }  // NOLINT(google-explicit-constructor)
};

template <typename T>
Data<T> data(T* data, size_t size) {
    return {data, size};
}

template <typename T>
void describe(std::ostream& out, const Data<T>& argument) {
    out << '<' << std::hex << std::setfill('0');
    for (size_t i = 0; i < argument.size; ++i) {
        out << std::setw(2) << +argument.data[i];
    }
    out << std::dec << '>';
}

template <typename T>
void describe(std::ostream& out, const T& argument) {
    if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, const unsigned char*>) {
        out << '"' << argument << '"';
    } else if constexpr (std::is_enum_v<T>) {
        out << +static_cast<std::underlying_type_t<T>>(argument);
    } else if constexpr (std::is_arithmetic_v<T>) {
        out << +argument;
    } else {
        out << (std::is_pointer_v<T> ? "*" : "{}");
    }
}

}  // namespace

FakeChipLayer::FakeChipLayer() {
    sCurrent = this;
}

FakeChipLayer::~FakeChipLayer() {
    sCurrent = nullptr;
}

FakeChipLayer& FakeChipLayer::current() {
    if (sCurrent == nullptr) {
        std::fputs("a chip-layer function was called without a FakeChipLayer\n", stderr);
        std::abort();
    }
    return *sCurrent;
}

template <typename Function, typename... Arguments>
typename std::function<Function>::result_type FakeChipLayer::called(const char* name, Function* function,
                                                                    Arguments&&... arguments) {
    std::ostringstream call;
    [[maybe_unused]] const char* separator = "";
    call << name << '(';
    ((call << std::exchange(separator, ", "), describe(call, arguments)), ...);
    call << ')';
    mCalls.push_back(call.str());
    const auto action = mActions.find(keyOf(function));
    if (action == mActions.end()) {
        return static_cast<typename std::function<Function>::result_type>(mOtherwise);
    }
    return std::any_cast<std::function<Function>&>(action->second)(std::forward<Arguments>(arguments)...);
}

// The fake functions, from the headers.
#include "FakeFunctions.inc"
