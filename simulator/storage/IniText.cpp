#include "simulator/storage/IniText.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";
constexpr size_t kNone = std::string_view::npos;

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    return first == kNone ? std::string_view()
                          : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

bool needsQuotes(std::string_view value) {
    const auto blank = [](char c) { return kBlanks.find(c) != kNone; };
    return !value.empty() && (blank(value.front()) || blank(value.back()) ||
                              (value.size() > 1 && value.front() == '"' && value.back() == '"'));
}

/** Where a parameter is, or where it would be added. Positions count from the start of the text. */
struct Place {
    size_t valueBegin = kNone;
    size_t valueEnd = kNone;
    // After the section's last parameter or its heading.
    size_t sectionEnd = kNone;
};

Place find(std::string_view text, std::string_view section, std::string_view key) {
    Place place;
    bool inSection = section.empty();
    bool atTop = true;  // in the comment that opens the file
    size_t begin = 0;
    if (inSection) {
        place.sectionEnd = 0;
    }
    while (begin < text.size()) {
        const size_t lineEnd = std::min(text.find_first_of("\r\n", begin), text.size());
        size_t next = std::min(lineEnd + 1, text.size());
        if (lineEnd + 1 < text.size() && text[lineEnd] == '\r' && text[lineEnd + 1] == '\n') {
            ++next;
        }
        const std::string_view line = text.substr(begin, lineEnd - begin);
        const std::string_view content = trimmed(line);
        const size_t equals = line.find('=');
        const bool comment = !content.empty() && (content[0] == ';' || content[0] == '#');
        atTop = atTop && comment;
        if (comment) {
            if (atTop && section.empty()) {
                place.sectionEnd = next;
            }
        } else if (!content.empty() && content[0] == '[') {
            // A heading without its end bracket names no section: what follows it cannot be reached.
            const size_t bracket = content.find(']');
            inSection = bracket != kNone && trimmed(content.substr(1, bracket - 1)) == section;
            place.sectionEnd = inSection ? next : place.sectionEnd;
        } else if (inSection && equals != kNone && !trimmed(line.substr(0, equals)).empty()) {
            place.sectionEnd = next;
            if (trimmed(line.substr(0, equals)) == key) {
                const size_t value = line.find_first_not_of(kBlanks, equals + 1);
                place.valueBegin = begin + std::min(value, line.size());
                place.valueEnd = lineEnd;
            }
        }
        begin = next;
    }
    return place;
}

}  // namespace

std::string withIniValue(std::string_view text, std::string_view section, std::string_view key,
                         std::string_view value) {
    std::string quoted(value);
    if (needsQuotes(value)) {
        quoted = '"' + quoted + '"';
    }
    std::string result;
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        result = kByteOrderMark;
        text.remove_prefix(kByteOrderMark.size());
    }
    const Place place = find(text, section, key);
    if (place.valueBegin != kNone) {
        return result.append(text.substr(0, place.valueBegin))
                .append(quoted)
                .append(text.substr(place.valueEnd));
    }

    const size_t firstEnd = text.find_first_of("\r\n");
    const bool dos = firstEnd != kNone && text.substr(firstEnd, 2) == "\r\n";
    const std::string_view lineEnd = dos ? "\r\n" : "\n";
    const size_t at = std::min(place.sectionEnd, text.size());
    result.append(text.substr(0, at));
    if (at > 0 && text[at - 1] != '\n' && text[at - 1] != '\r') {
        result.append(lineEnd);
    }
    if (place.sectionEnd == kNone) {
        if (at > 0) {
            result.append(lineEnd);
        }
        result.append("[").append(section).append("]").append(lineEnd);
    }
    result.append(key).append(" = ").append(quoted).append(lineEnd);
    return result.append(text.substr(at));
}

}  // namespace simulator
