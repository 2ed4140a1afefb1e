#pragma once

#include <utils/Errors.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace android::hardware {

class Parcel;

/**
 * A text with its length, NUL-terminated, in the layout that travels between processes. It owns its bytes or
 * refers to some that outlive it (a received text refers to the message). NULs inside are kept.
 */
class hidl_string {
  public:
    hidl_string() = default;
    /** Null is the empty text. */
    hidl_string(const char* text);  // NOLINT(google-explicit-constructor)
    hidl_string(const char* text, size_t length);
    hidl_string(const std::string& text);  // NOLINT(google-explicit-constructor)
    hidl_string(const hidl_string& other);
    hidl_string(hidl_string&& other) noexcept;
    ~hidl_string() { clear(); }

    hidl_string& operator=(const char* text);
    hidl_string& operator=(const std::string& text);
    hidl_string& operator=(const hidl_string& other);
    hidl_string& operator=(hidl_string&& other) noexcept;

    operator std::string() const { return {mBuffer, mSize}; }  // NOLINT(google-explicit-constructor)

    const char* c_str() const { return mBuffer; }
    /** Bytes before the final NUL. */
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    /** Makes it the empty text. */
    void clear();
    /** Refers to a text that outlives this one or its next change; data[size] must be NUL. */
    void setToExternal(const char* data, size_t size);

  private:
    friend status_t readEmbeddedFromParcel(hidl_string& text, const Parcel& parcel, size_t parentHandle,
                                           size_t parentOffset);

    void assign(const char* text, size_t length);
    void take(hidl_string& other);

    alignas(8) const char* mBuffer = "";
    uint32_t mSize = 0;
    bool mOwnsBuffer = false;
    uint8_t mPad[3] = {};  // sent with the rest, so never left unset
};
static_assert(sizeof(hidl_string) == 16, "the layout is part of the wire format");

namespace details {
inline std::string_view viewOf(const hidl_string& text) {
    return {text.c_str(), text.size()};
}
inline std::string_view viewOf(const std::string& text) {
    return text;
}
inline std::string_view viewOf(const char* text) {
    return text;
}
/** Chosen when one side of a comparison is a hidl_string and the other any text. */
template <typename Left, typename Right>
using TextComparison =
        std::enable_if_t<std::is_same_v<Left, hidl_string> || std::is_same_v<Right, hidl_string>,
                         decltype(viewOf(std::declval<Left>()) == viewOf(std::declval<Right>()))>;
}  // namespace details

template <typename Left, typename Right>
details::TextComparison<Left, Right> operator==(const Left& left, const Right& right) {
    return details::viewOf(left) == details::viewOf(right);
}
template <typename Left, typename Right>
details::TextComparison<Left, Right> operator!=(const Left& left, const Right& right) {
    return details::viewOf(left) != details::viewOf(right);
}
template <typename Left, typename Right>
details::TextComparison<Left, Right> operator<(const Left& left, const Right& right) {
    return details::viewOf(left) < details::viewOf(right);
}

inline std::ostream& operator<<(std::ostream& out, const hidl_string& text) {
    return out << details::viewOf(text);
}

}  // namespace android::hardware
