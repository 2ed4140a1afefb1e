#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Stands in for the chip-layer libraries while it lives, one at a time: every chip-layer function records
/// its call and returns what the test has scripted for it, 0 by default. For one thread.
///
///     FakeChipLayer chip;
///     chip.returns("common_get_fapi_status", -5);
///     chip.writes({{"pu8Enable", "\1"}});
///     chip.returnsOtherwise(7);
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

    /// The result, from now on, of a function for which no action is scripted, by its name without
    /// a_zvttvfapi_.
    void returns(const std::string& function, int32_t result) { mResults[function] = result; }

    /// The result of all others, instead of 0.
    void returnsOtherwise(int32_t status) { mOtherwise = status; }

    /// What such functions write into their outputs, by the parameters' names, each once: as many of the
    /// bytes as the output holds.
    void writes(std::map<std::string, std::string> outputs) { mOutputs = std::move(outputs); }
    bool hasWrittenAll() const { return mOutputs.empty(); }

    /// Called with each call before anything else is done for it.
    void onCall(std::function<void(const std::string& call)> observer) { mObserver = std::move(observer); }

    /// The calls since the last time, in order: numbers as they are; read-only texts in quotes; records, and
    /// data that comes with its length, as <hexadecimal bytes> of memory, shortened; outputs as *, and what
    /// they are preset to if it is not zero, as in a_zvttvfapi_prphrl_get_rc_format("name", *<ff>).
    std::vector<std::string> takeCalls() { return std::exchange(mCalls, {}); }

  private:
    friend class FakeCall;
    using Key = void (*)();

    template <typename Function>
    static Key keyOf(Function* function) {
        return reinterpret_cast<Key>(function);
    }

    std::map<Key, std::any> mActions;
    std::map<std::string, int32_t> mResults;
    std::map<std::string, std::string> mOutputs;
    std::function<void(const std::string&)> mObserver;
    std::vector<std::string> mCalls;
    int32_t mOtherwise = 0;
};

/// What a fake function tells of its call: its arguments in order, then that it is made.
class FakeCall {
  public:
    explicit FakeCall(const char* name);

    template <typename T>
    FakeCall& value(const T& value) {
        if constexpr (std::is_class_v<T>) {
            return bytes(&value, sizeof(value));
        } else if constexpr (std::is_pointer_v<T>) {
            return add("*");
        } else if constexpr (std::is_enum_v<T>) {
            return add(std::to_string(static_cast<int64_t>(value)));
        } else {
            return add(std::to_string(value));
        }
    }
    FakeCall& text(const void* text);
    template <typename T>
    FakeCall& data(const T* data, size_t count) {
        if constexpr (std::is_void_v<T>) {
            return bytes(data, count);
        } else {
            return bytes(data, count * sizeof(T));
        }
    }
    FakeCall& output(const char* name, void* output, size_t size);

    template <typename Function, typename... Arguments>
    typename std::function<Function>::result_type made(Function* function, Arguments&&... arguments) {
        record();
        const auto action = mChip.mActions.find(FakeChipLayer::keyOf(function));
        if (action != mChip.mActions.end()) {
            return std::any_cast<std::function<Function>&>(action->second)(
                    std::forward<Arguments>(arguments)...);
        }
        return answered();
    }

  private:
    struct Output {
        const char* name;
        void* place;
        size_t size;
    };

    FakeCall& add(const std::string& argument);
    FakeCall& bytes(const void* bytes, size_t size);
    void record();
    int32_t answered();

    FakeChipLayer& mChip;
    const std::string mName;
    std::string mText;
    std::vector<Output> mOutputs;
};
