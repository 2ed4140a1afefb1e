#pragma once

#include <cstddef>
#include <string_view>

namespace simulator {

/** Whether a text can name a file or a variable: 1 to most bytes of A-Z a-z 0-9 and the marks. */
inline bool isName(std::string_view text, size_t most, std::string_view marks) {
    constexpr std::string_view kLettersAndDigits =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    for (const char c : text) {
        if (kLettersAndDigits.find(c) == std::string_view::npos && marks.find(c) == std::string_view::npos) {
            return false;
        }
    }
    return !text.empty() && text.size() <= most;
}

}  // namespace simulator
