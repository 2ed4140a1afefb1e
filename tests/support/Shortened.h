#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/**
 * A text, or digits of which so many make up one piece, with what repeats itself written once: (ab)*20. What
 * is shorter than sixteen pieces stays.
 */
inline std::string shortened(std::string_view text, size_t piece = 1) {
    constexpr size_t kLongestPeriod = 6, kFewest = 16;  // pieces
    std::string all;
    while (!text.empty()) {
        size_t taken = std::min(piece, text.size());
        std::string shown(text.substr(0, taken));
        for (size_t period = piece; period <= std::min(kLongestPeriod * piece, text.size());
             period += piece) {
            size_t end = period;
            while (text.substr(end, period) == text.substr(0, period)) {
                end += period;
            }
            if (end >= kFewest * piece && end > taken) {
                taken = end;
                shown = '(' + std::string(text.substr(0, period)) + ")*" + std::to_string(end / period) +
                        (end < text.size() ? " " : "");
            }
        }
        all += shown;
        text.remove_prefix(taken);
    }
    return all;
}
