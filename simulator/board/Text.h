#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>

namespace simulator {

// How rooms read texts by other hands: names, numbers, digits.

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

/** Reads a text that is one number of the type, decimal, and nothing else. */
template <typename Number>
bool readNumber(std::string_view text, Number* number, int base = 10) {
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), *number, base);
    return error == std::errc() && rest == text.data() + text.size();
}

/** The same, or hexadecimal after 0x. */
template <typename Number>
bool readAnyNumber(std::string_view text, Number* number) {
    const bool hexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    return readNumber(text.substr(hexadecimal ? 2 : 0), number, hexadecimal ? 16 : 10);
}

/** Of a hexadecimal digit; -1 for another character. */
inline int digitOf(char letter) {
    const auto digit = static_cast<unsigned>(letter - '0');
    const auto high = static_cast<unsigned>((letter | 0x20) - 'a');
    return digit < 10 ? static_cast<int>(digit) : high < 6 ? static_cast<int>(high) + 10 : -1;
}

}  // namespace simulator
