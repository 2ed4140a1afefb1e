#include "simulator/storage/IniText.h"

#include <algorithm>
#include <optional>

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
    bool atTop = true;  // in the comment that opens the file
    if (section.empty()) {
        place.sectionEnd = 0;
    }
    for (const IniLine& line : iniLines(text)) {
        const bool inSection = line.section == section;
        atTop = atTop && line.kind == IniLine::Comment;
        if ((atTop && section.empty()) ||
            (inSection && (line.kind == IniLine::Heading || line.kind == IniLine::Parameter))) {
            place.sectionEnd = line.next;
        }
        if (inSection && line.kind == IniLine::Parameter && line.key == key) {
            place.valueBegin = std::min(text.find_first_not_of(kBlanks, line.equals + 1), line.end);
            place.valueEnd = line.end;
        }
    }
    return place;
}

}  // namespace

std::string_view withoutMark(std::string_view text) {
    const bool marked = text.substr(0, kByteOrderMark.size()) == kByteOrderMark;
    return text.substr(marked ? kByteOrderMark.size() : 0);
}

std::vector<IniLine> iniLines(std::string_view text) {
    std::vector<IniLine> lines;
    std::optional<std::string_view> section = "";
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        const size_t next = std::min(end + (text.substr(end, 2) == "\r\n" ? 2 : 1), text.size());
        const std::string_view content = trimmed(text.substr(begin, end - begin));
        const size_t equals = text.substr(0, end).find('=', begin);
        IniLine line{IniLine::Junk, end, next, equals, section, {}};
        if (content.empty()) {
            line.kind = IniLine::Blank;
        } else if (content[0] == ';' || content[0] == '#') {
            line.kind = IniLine::Comment;
        } else if (content[0] == '[') {
            // A heading without its end bracket names no section: what follows it cannot be reached.
            const size_t bracket = content.find(']');
            section =
                    bracket == kNone ? std::nullopt : std::optional(trimmed(content.substr(1, bracket - 1)));
            line.kind = bracket == kNone ? IniLine::Junk : IniLine::Heading;
            line.section = section;
        } else if (equals != kNone) {
            line.key = trimmed(text.substr(begin, equals - begin));
            line.kind = line.key.empty() || !section ? IniLine::Junk : IniLine::Parameter;
        }
        lines.push_back(line);
        begin = next;
    }
    return lines;
}

std::string withIniValue(std::string_view text, std::string_view section, std::string_view key,
                         std::string_view value) {
    std::string quoted(value);
    if (needsQuotes(value)) {
        quoted = '"' + quoted + '"';
    }
    std::string result(text.substr(0, text.size() - withoutMark(text).size()));
    text = withoutMark(text);
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
