#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Stands in for the chip-layer libraries while it lives, one at a time: every chip-layer function records
/// its call and returns what the test has scripted for it, 0 by default. For one thread.
///
///     FakeChipLayer chip;
///     chip.returns(a_zvttvfapi_common_get_fapi_status, -5);
///     chip.on(a_zvttvfapi_info_get_ip_enable_status, [](unsigned int, unsigned char* pu8Enable) {
///         *pu8Enable = 1;
///         return 7;
///     });
class FakeChipLayer {
  public:
    FakeChipLayer();
    ~FakeChipLayer();
    FakeChipLayer(const FakeChipLayer&) = delete;
    FakeChipLayer& operator=(const FakeChipLayer&) = delete;

    /// What the function does from now on: sees the arguments, writes the outputs, returns the result.
    template <typename Function, typename Action>
    void on(Function* function, Action action) {
        mActions[keyOf(function)] = std::function<Function>(std::move(action));
    }

    /// The same result from now on, no outputs.
    template <typename Function>
    void returns(Function* function, typename std::function<Function>::result_type result) {
        on(function, [result](auto&&...) { return result; });
    }

    /// The status of every function for which nothing is scripted, instead of 0.
    void returnsOtherwise(int32_t status) { mOtherwise = status; }

    /// The calls since the last time, in order: numbers as they are, read-only texts in quotes, data that
    /// comes with its length as <hexadecimal digits>, other pointers as *, records as {}, as in
    /// a_zvttvfapi_info_get_ini_para("file", "key", *, 2048).
    std::vector<std::string> takeCalls() { return std::exchange(mCalls, {}); }

    /// For the fake functions: the one that lives, and what each of them does.
    static FakeChipLayer& current();
    template <typename Function, typename... Arguments>
    typename std::function<Function>::result_type called(const char* name, Function* function,
                                                         Arguments&&... arguments);

  private:
    using Key = void (*)();

    template <typename Function>
    static Key keyOf(Function* function) {
        return reinterpret_cast<Key>(function);
    }

    std::map<Key, std::any> mActions;
    std::vector<std::string> mCalls;
    int32_t mOtherwise = 0;
};
