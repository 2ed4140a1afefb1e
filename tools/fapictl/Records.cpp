#include "tools/fapictl/Records.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kSeparators = ", \t";

struct Key {
    const char* name;
    const char* field;
};
/** In the order of RecordPart::Key. */
constexpr Key kKeys[] = {{"value", "u32Value"}, {"text", "strValue"}, {"bytes", "vecValue"}};

[[noreturn]] void refuse(const std::string& where, const std::string& reason) {
    throw Failure(Exit::Usage, where + ": " + reason);
}

/** The letters before a '=', or one of the other signs, at the start of the text; empty when there is no key.
 */
std::string_view keyAt(std::string_view text, std::string_view signs) {
    const auto letters = std::find_if_not(text.begin(), text.end(),
                                          [](unsigned char c) { return std::isalnum(c) || c == '_'; });
    return letters == text.end() || signs.find(*letters) == std::string_view::npos
                   ? std::string_view()
                   : text.substr(0, static_cast<size_t>(letters - text.begin()));
}

size_t skipSeparators(std::string_view text, size_t from) {
    return std::min(text.find_first_not_of(kSeparators, from), text.size());
}

/** Where an unquoted text ends: before the separators in front of the next key. */
size_t endOfText(std::string_view text, std::string_view signs) {
    for (size_t at = text.find_first_of(kSeparators); at < text.size();) {
        const size_t next = skipSeparators(text, at);
        if (!keyAt(text.substr(next), signs).empty()) {
            return at;
        }
        at = text.find_first_of(kSeparators, next);
    }
    return text.size();
}

/** Behind the closing quote, given where the opening one is; the end of the text when there is none. */
size_t endOfQuoted(std::string_view text, size_t quote) {
    for (size_t i = quote + 1; i < text.size(); ++i) {
        if (text[i] == '"') {
            return i + 1;
        }
        i += text[i] == '\\' ? 1 : 0;
    }
    return text.size();
}

/** Takes ("text") from the front, which eventLine() shows behind bytes that are one. */
void skipRemark(std::string_view& rest, const std::string& where) {
    const size_t start = skipSeparators(rest, 0);
    if (rest.substr(start, 2) == "(\"") {
        rest.remove_prefix(start + 1);
        takeQuoted(rest, where);
        if (rest.empty() || rest[0] != ')') {
            refuse(where, "the closing bracket is missing");
        }
        rest.remove_prefix(1);
    }
}

RecordPart::Key findKey(std::string_view name, bool afterText, const std::string& where) {
    std::vector<std::string> names;
    for (size_t i = 0; i < std::size(kKeys); ++i) {
        if (equalIgnoringCase(name, kKeys[i].name)) {
            return static_cast<RecordPart::Key>(i);
        }
        names.push_back(kKeys[i].name);
    }
    refuse(where, "no key " + inQuotes(name) + suggestion(name, names) +
                          (afterText ? "; if it belongs to the text, put the text in double quotes" : ""));
}

}  // namespace

std::vector<RecordPart> splitRecord(std::string_view record, bool patterns, const std::string& where) {
    const std::string_view signs = patterns ? "=~" : "=";
    std::vector<RecordPart> parts;
    bool afterText = false;
    std::string_view rest = record == "-" ? std::string_view() : record;
    while (true) {
        rest.remove_prefix(skipSeparators(rest, 0));
        if (rest.empty()) {
            return parts;
        }
        const std::string_view name = keyAt(rest, signs);
        if (name.empty()) {
            refuse(where,
                   patterns ? "value=NUMBER, text=TEXT, text~PATTERN or bytes=HEX, not " + inQuotes(rest)
                            : "value=NUMBER, text=TEXT or bytes=HEX, or - for an empty record, not " +
                                      inQuotes(rest));
        }
        RecordPart part;
        part.key = findKey(name, afterText, where);
        part.pattern = rest[name.size()] == '~';
        if (part.pattern && part.key != RecordPart::Key::Text) {
            refuse(where, "only a text can match a pattern, not " + inQuotes(name));
        }
        if (!part.pattern && std::any_of(parts.begin(), parts.end(), [&](const RecordPart& one) {
                return one.key == part.key && !one.pattern;
            })) {
            refuse(where, std::string(nameOf(part.key)) + " is given twice");
        }
        rest.remove_prefix(name.size() + 1);
        if (!rest.empty() && rest[0] == '"') {
            part.value = takeQuoted(rest, where);
            if (!rest.empty() && kSeparators.find(rest[0]) == std::string_view::npos) {
                refuse(where,
                       "a comma or blank must follow the closing quote, not " + inQuotes(rest.substr(0, 1)));
            }
        } else {
            afterText = part.key == RecordPart::Key::Text;
            const size_t end = afterText ? endOfText(rest, signs)
                                         : std::min(rest.find_first_of(kSeparators), rest.size());
            part.value = rest.substr(0, end);
            rest.remove_prefix(end);
        }
        if (part.key == RecordPart::Key::Bytes) {
            skipRemark(rest, where);
        }
        parts.push_back(std::move(part));
    }
}

const char* nameOf(RecordPart::Key key) {
    return kKeys[static_cast<size_t>(key)].name;
}

std::vector<std::string_view> splitRecords(std::string_view text) {
    std::vector<std::string_view> records;
    size_t start = 0;
    for (size_t at = 0; (at = skipSeparators(text, at)) < text.size();) {
        const std::string_view rest = text.substr(at);
        const auto isBlank = [](char c) { return kBlanks.find(c) != std::string_view::npos; };
        if (rest[0] == '|' && (at == 0 || isBlank(text[at - 1])) && (rest.size() == 1 || isBlank(rest[1]))) {
            records.push_back(text.substr(start, at - start));
            start = ++at;
            continue;
        }
        const size_t value = keyAt(rest, "=").size() + 1;
        if (rest.substr(0, 2) == "(\"") {
            at += endOfQuoted(rest, 1);
        } else if (value > 1 && value < rest.size() && rest[value] == '"') {
            at += endOfQuoted(rest, value);
        }
        at = text.find_first_of(kSeparators, at);
    }
    records.push_back(text.substr(start));
    for (std::string_view& one : records) {
        one.remove_prefix(skipSeparators(one, 0));
        if (records.size() > 1) {
            one = one.substr(0, one.find_last_not_of(kBlanks) + 1);
        }
    }
    return records;
}

Json parseEventRecord(const Type& type, std::string_view word, const std::string& where) {
    Json record = zeroValue(type);
    for (const RecordPart& part : splitRecord(word, false, where)) {
        const char* const name = kKeys[static_cast<size_t>(part.key)].field;
        const auto field = std::find_if(type.fields.begin(), type.fields.end(),
                                        [&](const Field& one) { return one.label.name == name; });
        record[name] = parseValue(*field->type, part.value, where + ", " + nameOf(part.key));
    }
    return record;
}

Json parseEventRecords(const Type& type, const std::vector<std::string>& words) {
    Json records = Json::array();
    for (const std::string& word : words) {
        for (const std::string_view record : splitRecords(word)) {
            const std::string where = "record " + std::to_string(records.size() + 1);
            if (records.size() == kEventRecords) {
                refuse(where, "an event has " + std::to_string(kEventRecords));
            }
            records.push_back(parseEventRecord(type, record, where));
        }
    }
    while (records.size() < kEventRecords) {
        records.push_back(zeroValue(type));
    }
    return records;
}

}  // namespace fapictl
