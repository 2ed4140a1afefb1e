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

/** Place of a handle in a record. The host carries no descriptors between processes: it is always null. */
class hidl_handle {
  public:
    const native_handle_t* getNativeHandle() const { return nullptr; }

  private:
    [[maybe_unused]] uint64_t mReserved[2] = {};
};

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
};

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

inline std::string toString(const hidl_handle&) {
    return "[handle]";
}

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
