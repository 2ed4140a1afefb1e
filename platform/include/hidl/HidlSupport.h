#pragma once

// The value types of generated code.

#include <cutils/native_handle.h>
#include <hidl/HidlArray.h>
#include <hidl/HidlString.h>
#include <hidl/HidlVec.h>
#include <sched.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Generated code names the default scheduling policy as the kernel does; the C library has its older name
// only.
#ifndef SCHED_NORMAL
#define SCHED_NORMAL SCHED_OTHER
#endif

namespace android::hidl::base::V1_0 {
struct IBase;
}

namespace android::hardware {

/** Told of the death of the process behind an object that it was linked to. */
struct hidl_death_recipient : public virtual RefBase {
    /**
     * Called once per link, on a thread of the platform. The link keeps no strong reference to the recipient.
     *
     * @param cookie what linkToDeath() was given
     * @param who the object that the link was made on
     */
    virtual void serviceDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) = 0;
};

/**
 * A native handle, or null, in the layout that travels between processes. It refers to one that outlives it
 * (a received one refers to the message), or owns it with its descriptors.
 */
class hidl_handle {
  public:
    hidl_handle() = default;
    /** Refers to it. */
    hidl_handle(const native_handle_t* handle) : mHandle(handle) {}  // NOLINT(google-explicit-constructor)
    /** Owns a copy, with duplicates of the descriptors; ends the process when there is no means for that. */
    hidl_handle(const hidl_handle& other);
    hidl_handle(hidl_handle&& other) noexcept { take(other); }
    ~hidl_handle() { release(); }

    hidl_handle& operator=(const native_handle_t* handle) {
        release();
        mHandle = handle;
        mOwnsHandle = false;
        return *this;
    }
    hidl_handle& operator=(const hidl_handle& other);
    hidl_handle& operator=(hidl_handle&& other) noexcept {
        if (this != &other) {
            release();
            take(other);
        }
        return *this;
    }
    /** Refers to it, or owns it if asked to: it comes from native_handle_create() then. */
    void setTo(native_handle_t* handle, bool shouldOwn = false) {
        *this = handle;
        mOwnsHandle = shouldOwn;
    }

    const native_handle_t* getNativeHandle() const { return mHandle; }
    const native_handle_t* operator->() const { return mHandle; }
    operator const native_handle_t*() const { return mHandle; }  // NOLINT(google-explicit-constructor)

  private:
    friend status_t readEmbeddedFromParcel(hidl_handle& handle, const Parcel& parcel, size_t parentHandle,
                                           size_t parentOffset);

    void take(hidl_handle& other) {
        mHandle = other.mHandle;
        mOwnsHandle = other.mOwnsHandle;
        other.mHandle = nullptr;
        other.mOwnsHandle = false;
    }
    void release();

    alignas(8) const native_handle_t* mHandle = nullptr;
    bool mOwnsHandle = false;
    uint8_t mPad[7] = {};  // sent with the rest, so never left unset
};
static_assert(sizeof(hidl_handle) == 16, "the layout is part of the wire format");

/** Place of shared memory in a record. The host does not carry it: it is always empty. */
class hidl_memory {
  public:
    uint64_t size() const { return 0; }

  private:
    [[maybe_unused]] uint64_t mReserved[5] = {};
};

/** Any combination of the values of an enumeration, as a number. */
template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
using hidl_bitfield = std::underlying_type_t<Enum>;

namespace details {

// Tell the classes that the compiler makes of an interface from each other.
struct i_tag {};     // the interface itself
struct bphw_tag {};  // a proxy
struct bnhw_tag {};  // a stub
struct bs_tag {};    // a pass-through wrapper

/** Base of proxies and stubs. Calls are not instrumented on the host. */
class HidlInstrumentor {
  public:
    HidlInstrumentor(std::string_view /* package */, std::string_view /* interface */) {}

    /** What IBase::setHALInstrumentation() does: there are no settings to read here. */
    void configureInstrumentation() {}
};

/** The process to name in IBase::getDebugInfo(). */
int32_t getPidIfSharable();

/** Whether that may tell an object's address: always, as who calls us could read our memory anyway. */
constexpr bool debuggable() {
    return true;
}

template <typename T>
std::string toHexString(T value) {
    static_assert(std::is_integral_v<T>);
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    auto rest = static_cast<std::make_unsigned_t<T>>(value);
    do {
        text.insert(text.begin(), kDigits[rest & 0xf]);
        rest = static_cast<std::make_unsigned_t<T>>(rest >> 4);
    } while (rest != 0);
    return "0x" + text;
}

namespace {
/** Makes each translation unit's specialisations of what has it as a parameter its own. */
struct ThisUnit {};
}  // namespace

/**
 * The values of an enumeration in the order of declaration; generated headers specialise it. They neither say
 * `inline` nor `static`, and some compilers would then define the same variable in every object file.
 */
template <typename Enum, typename = ThisUnit>
constexpr std::array<Enum, 0> hidl_enum_values{};

}  // namespace details

/** For loops over the values of an enumeration, in the order of declaration. */
template <typename Enum, typename = details::ThisUnit>
class hidl_enum_range {
  public:
    constexpr const Enum* begin() const { return details::hidl_enum_values<Enum>.data(); }
    constexpr const Enum* end() const { return begin() + details::hidl_enum_values<Enum>.size(); }
};

// Texts for people. Records and enumerations have theirs in generated code.

template <typename T>
std::enable_if_t<std::is_arithmetic_v<T>, std::string> toString(T value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else {
        return std::to_string(value);
    }
}

inline std::string toString(const hidl_string& text) {
    return "\"" + std::string(text) + "\"";
}

/** The numbers of descriptors and of integers that it has. */
std::string toString(const hidl_handle& handle);

inline std::string toString(const hidl_memory&) {
    return "[memory]";
}

template <typename T>
std::string toString(const hidl_vec<T>& vec);
template <typename T, size_t First, size_t... Rest>
std::string toString(const hidl_array<T, First, Rest...>& array);

namespace details {

template <typename T, size_t First, size_t... Rest>
std::string toString(const ArrayRow<T, First, Rest...>& row);

template <typename Sequence>
std::string listOf(const Sequence& sequence) {
    using ::android::hardware::toString;
    std::string text = "{";
    for (size_t i = 0; i < sequence.size(); ++i) {
        text += (i == 0 ? "" : ", ") + toString(sequence[i]);
    }
    return text + "}";
}

template <typename T, size_t First, size_t... Rest>
std::string toString(const ArrayRow<T, First, Rest...>& row) {
    return listOf(row);
}

}  // namespace details

template <typename T>
std::string toString(const hidl_vec<T>& vec) {
    return "[" + std::to_string(vec.size()) + "]" + details::listOf(vec);
}

template <typename T, size_t First, size_t... Rest>
std::string toString(const hidl_array<T, First, Rest...>& array) {
    return details::listOf(array);
}

}  // namespace android::hardware
