#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/StrongPointer.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

// The calls that clients make, written down for whoever looks: one line of JSON for each, to a pipe. While
// nobody looks a call costs one load more. The classes that write are generated; see TracedInterfaces.h.

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Orders nothing: a call that has begun when somebody comes may have no line, and one that is under way when
/// the last one goes is written for nobody.
extern std::atomic<size_t> sTraceObservers;

[[nodiscard]] inline bool tracing() {
    return sTraceObservers.load(std::memory_order_relaxed) != 0;
}

/// From the moment at which this returns, writes a line for each call to the handle's first descriptor, a
/// pipe, until its reader goes. The lines of calls come in the order in which the calls ended, and that of a
/// call comes before its caller has the results. Before them all comes {"tracing":PACKAGE,"pid":NUMBER}.
///
/// The reader may be slow: 8 MiB of lines wait for it. What finds no room there, or no memory, is left out,
/// and the next line is {"lost":CALLS}. No call ever waits for a reader.
///
/// Null, or why nobody is let in, in words; then the pipe is left alone.
[[nodiscard]] const char* traceTo(const ::android::hardware::hidl_handle& handle);

/// The text of a line while it is written. Whatever finds no memory throws.
class TraceText {
  public:
    void open(char bracket);
    void close(char bracket) { mText += bracket; }
    /// The name of the member whose value comes next.
    void name(const char* name);
    void number(int64_t value);
    void number(uint64_t value);
    void boolean(bool value);
    void null();
    /// A text as it is when it is UTF-8, else {"hex":"..."}.
    void text(const char* characters, size_t size);
    /// As hexadecimal text.
    void bytes(const uint8_t* bytes, size_t size);
    /// "<16 bytes withheld>"
    void withheld(size_t size);

    std::string take() { return std::move(mText); }

  private:
    void separate();
    void hex(const uint8_t* bytes, size_t size);

    std::string mText;
};

/// How a value is written: `static void write(TraceText&, const T&)`. Records' are generated.
template <typename T, typename = void>
struct TraceForm;

/// An argument or result and how it is written, for as long as the value lives.
class TracedValue {
  public:
    template <typename T>
    TracedValue(const char* name, const T& value)
        : mName(name), mValue(&value), mWrite([](TraceText& line, const void* written) {
              TraceForm<T>::write(line, *static_cast<const T*>(written));
          }) {}

    void write(TraceText& line) const {
        line.name(mName);
        mWrite(line, mValue);
    }

  private:
    const char* mName;
    const void* mValue;
    void (*mWrite)(TraceText& line, const void* value);
};

/// One line: made when the call begins, which must be while tracing(), and queued before its results go out.
///
///     TracedCall call("IZvtTvFApiSystem", "a_hidl_a_zvttvfapi_sys_check_file");
///     call.arguments({{"strPath", strPath}});
///     return call.returned("s32Status", Object::a_hidl_a_zvttvfapi_sys_check_file(strPath));
class TracedCall {
  public:
    // Cold: what a method does to be looked at is kept small, and out of the way of what it does else.
    __attribute__((cold)) TracedCall(const char* interface, const char* method);
    /// Queues the line of a call that delivered no results.
    ~TracedCall();
    TracedCall(const TracedCall&) = delete;
    TracedCall& operator=(const TracedCall&) = delete;

    /// Just before the call: its time begins.
    void arguments(std::initializer_list<TracedValue> values);
    /// Once, with what the caller is about to get.
    void results(std::initializer_list<TracedValue> values);

    template <typename T>
    __attribute__((cold, noinline)) ::android::hardware::Return<T> returned(
            const char* name, ::android::hardware::Return<T> result) {
        if (result.isOk()) {
            const T value = result;
            results({{name, value}});
        }
        return result;
    }

  private:
    using Clock = std::chrono::steady_clock;

    void members(const char* group, std::initializer_list<TracedValue> values);
    void finish(Clock::time_point end);

    TraceText mLine;
    Clock::time_point mStart;
    bool mComplete = true;  // so far; else it counts as lost
    bool mFinished = false;
};

/// The size of what is not to be seen: it stands in a secret's place.
struct Withheld {
    size_t size;
};

template <>
struct TraceForm<Withheld> {
    static void write(TraceText& line, const Withheld& value) { line.withheld(value.size); }
};

template <>
struct TraceForm<bool> {
    static void write(TraceText& line, const bool& value) {
        // The peer may have sent any byte, which is no bool to be looked at.
        line.boolean(*reinterpret_cast<const unsigned char*>(&value) != 0);
    }
};

template <typename T>
struct TraceForm<T, std::enable_if_t<std::is_integral_v<T>>> {
    static void write(TraceText& line, const T& value) {
        line.number(static_cast<std::conditional_t<std::is_signed_v<T>, int64_t, uint64_t>>(value));
    }
};

template <typename T>
struct TraceForm<T, std::enable_if_t<std::is_enum_v<T>>> {
    static void write(TraceText& line, const T& value) {
        using Number = std::underlying_type_t<T>;
        TraceForm<Number>::write(line, static_cast<Number>(value));
    }
};

template <>
struct TraceForm<::android::hardware::hidl_string> {
    static void write(TraceText& line, const ::android::hardware::hidl_string& value) {
        line.text(value.c_str(), value.size());
    }
};

/// Whether there is one.
template <typename T>
struct TraceForm<::android::sp<T>> {
    static void write(TraceText& line, const ::android::sp<T>& value) {
        if (value == nullptr) {
            line.null();
        } else {
            line.text("object", 6);
        }
    }
};

namespace details {

/// Elements that lie one after the other.
template <typename T>
void traceList(TraceText& line, const T* elements, size_t count) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        line.bytes(elements, count);
    } else {
        line.open('[');
        for (size_t i = 0; i < count; ++i) {
            TraceForm<T>::write(line, elements[i]);
        }
        line.close(']');
    }
}

template <size_t Count, size_t... Inner, typename T>
void traceArray(TraceText& line, const T* elements) {
    if constexpr (sizeof...(Inner) == 0) {
        traceList(line, elements, Count);
    } else {
        line.open('[');
        for (size_t i = 0; i < Count; ++i) {
            traceArray<Inner...>(line, elements + i * (Inner * ...));
        }
        line.close(']');
    }
}

}  // namespace details

template <typename T>
struct TraceForm<::android::hardware::hidl_vec<T>> {
    static void write(TraceText& line, const ::android::hardware::hidl_vec<T>& value) {
        details::traceList(line, value.data(), value.size());
    }
};

template <typename T, size_t... Counts>
struct TraceForm<::android::hardware::hidl_array<T, Counts...>> {
    static void write(TraceText& line, const ::android::hardware::hidl_array<T, Counts...>& value) {
        details::traceArray<Counts...>(line, value.data());
    }
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
