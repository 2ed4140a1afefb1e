#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "service/frame/Convert.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Where the chip-layer library writes a text: Size bytes on the stack, zeroed, terminator included.
/// Converts to the char* or unsigned char* that the function asks for; the function is told size().
///
///     TextBuffer<128> strVersion;
///     const int32_t s32Ret = forward(a_zvttvfapi_common_get_fapi_version, strVersion, strVersion.size());
///     _hidl_cb(strVersion.text(), s32Ret);
template <uint32_t Size>
class TextBuffer {
  public:
    static constexpr uint32_t size() { return Size; }

    explicit operator char*() { return mBytes; }
    explicit operator unsigned char*() { return reinterpret_cast<unsigned char*>(mBytes); }

    /// What was written, as a NUL-terminated text: at most Size - 1 characters, even if the library filled
    /// the buffer to its end and left no room for the terminator.
    const char* c_str() {
        mBytes[Size - 1] = '\0';
        return mBytes;
    }

    /// c_str() as a HIDL text that refers to the buffer and must not outlive it.
    hidl_string text() {
        hidl_string result;
        const char* characters = c_str();
        result.setToExternal(characters, std::strlen(characters));
        return result;
    }

  private:
    static_assert(Size > 0, "no room for the terminator");
    char mBytes[Size] = {};
};

/// Copies a text of the library's to a HIDL text of its own: up to the first NUL byte, or to the buffer's end
/// if there is none. False, with the HIDL text as it was, when there is no memory for the copy or when no
/// HIDL text can be that long.
[[nodiscard]] inline bool copyText(const uint8_t* pu8Text, size_t size, hidl_string* text) {
    const void* const end = size == 0 ? nullptr : std::memchr(pu8Text, '\0', size);
    const size_t length =
            end == nullptr ? size : static_cast<size_t>(static_cast<const uint8_t*>(end) - pu8Text);
    if (length >= UINT32_MAX) {  // hidl_string would end the process
        return false;
    }
    try {
        *text = hidl_string(reinterpret_cast<const char*>(pu8Text), length);
    } catch (...) {
        return false;
    }
    return true;
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
