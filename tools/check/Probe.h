#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>

#include "chiplayer/types.h"
#include "tools/check/Fence.h"

// A library that stands between the service and the chip-layer libraries: loaded ahead of both, it defines
// each of their functions, calls the one that the loader finds next, and tells what comes of it (Report.h).
namespace check {

/** A function of the chip layer. */
struct Point {
    const char* name;
    const char* header;
    const char* module;  // "sys"
    void* own;           // this library's
    bool isStatus;       // its result is one
    void* next = nullptr;
};
/** What the generated table has, set up when this library is loaded. */
extern Point sPoints[];
extern const size_t kPoints;
/** The four functions of each module. */
struct Module {
    const char* name;
    unsigned number;  // the bit of its events' types
    int32_t (*init)();
    int32_t (*deinit)();
    int32_t (*registerHandler)(fapi_core::ZvtTvFApiEventHandler);
    int32_t (*unregisterHandler)();
};
extern const Module kModules[8];

/** A function has broken its word: appended to the report. Any thread. */
void report(const char* function, const std::string& text);

/** This thread ends the process. */
void reportEnd();

/** One call of a function, from the service into the library. */
class Call {
  public:
    /** caller is where the call returns to. */
    Call(Point& point, const void* caller);

    /** Whether the service calls: what the libraries call of each other is passed on as it is. */
    bool isChecked() const { return mChecked; }
    bool isMissing() const { return mPoint.next == nullptr; }

    template <typename Function>
    Function* next(Function*) const {
        return reinterpret_cast<Function*>(mPoint.next);
    }

    /** Makes the call and tells of it. A missing function answers kMissing. */
    template <typename Body>
    int32_t run(const Body& body) {
        if (isMissing()) {
            return kMissing;
        }
        begin();
        int32_t result = kMissing;
        try {
            result = body();
        } catch (const std::exception& error) {
            report(mPoint.name, std::string("throws an exception: ") + error.what());
        } catch (...) {
            report(mPoint.name, "throws an exception");
        }
        end(result);
        return result;
    }

    const char* name() const { return mPoint.name; }

    /** A text that the function has left in a buffer ends within it. */
    void mustEnd(const char* parameter, const Fence& text) const;
    /** It counts no more than there is room for. */
    void mustFit(const char* parameter, uint64_t count, uint64_t room) const;

    /** No library's own; what the service then tells its caller does not matter. */
    static constexpr int32_t kMissing = -32768;

  private:
    void begin();
    void end(int32_t result);

    Point& mPoint;
    const bool mChecked;
    uint64_t mBegin = 0;  // ns
};

/** The library's readiness, or what the tool has ordered in its place. */
int32_t readiness(int32_t own);

/** Waits with the first module until the tool lets the service start it. */
void awaitStart();

/** Puts a handler of this library's in front of the service's. */
fapi_core::ZvtTvFApiEventHandler handlerOf(const char* module, fapi_core::ZvtTvFApiEventHandler handler);
/** From now on, the module may call no handler. */
void forgetHandler(const char* module);

inline size_t sizeOfText(const void* text) {
    return std::strlen(static_cast<const char*>(text)) + 1;
}

/** What the first text in a buffer has without its end. */
inline size_t lengthIn(const Fence& buffer) {
    const void* const end = std::memchr(buffer.bytes(), '\0', buffer.size());
    return end == nullptr ? buffer.size()
                          : static_cast<size_t>(static_cast<const char*>(end) - buffer.bytes());
}

}  // namespace check
