#include "tools/fapictl/Values.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <set>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

/** Far above what one call can carry; keeps an endless file from filling the memory. */
constexpr size_t kLargestFile = 16 << 20;
constexpr size_t kLongestQuote = 60;
/** Of JSON: no value has so many, and what shows one calls itself for each. */
constexpr int kDeepest = 64;

[[noreturn]] void refuse(const Type& type, const std::string& where, std::string_view given,
                         const std::string& reason) {
    std::string shown = inQuotes(given.substr(0, kLongestQuote));
    if (given.size() > kLongestQuote) {
        shown += "... (" + std::to_string(given.size()) + " bytes)";
    }
    throw Failure(Exit::Usage, where + " (" + type.name + "): " + reason + "; given " + shown);
}

[[noreturn]] void refuseJson(const Type& type, const std::string& where, const Json& given,
                             const std::string& reason) {
    refuse(type, where, given.dump(), reason);
}

/** The contents of what @FILE names. */
std::string readFile(const Type& type, std::string_view word, const std::string& where) {
    const std::string path(word.substr(1));
    // Not a stream: some standard libraries' take a read error, as of a directory, for the end of the file.
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(
            path == "-" ? nullptr : std::fopen(path.c_str(), "rb"), std::fclose);
    std::FILE* const file = path == "-" ? stdin : opened.get();
    std::string contents(kLargestFile + 1, '\0');
    if (file != nullptr) {
        contents.resize(std::fread(contents.data(), 1, contents.size(), file));
    }
    if (file == nullptr || std::ferror(file)) {
        refuse(type, where, word, std::string("cannot read the file: ") + std::strerror(errno));
    }
    if (contents.size() > kLargestFile) {
        refuse(type, where, word, "the file is too large");
    }
    return contents;
}

/** Throws nothing for what is not a number: returns false. `overflow` tells a number of too many digits. */
bool parseDigits(std::string_view digits, uint64_t& magnitude, bool& overflow) {
    int base = 10;
    const auto prefix = [&](const char* text) { return equalIgnoringCase(digits.substr(0, 2), text); };
    if (prefix("0x") || prefix("0o")) {
        base = prefix("0x") ? 16 : 8;
        digits.remove_prefix(2);
    }
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
    overflow = error == std::errc::result_out_of_range;
    return !digits.empty() && end == digits.data() + digits.size() && (overflow || error == std::errc());
}

Json parseInteger(const Type& type, std::string_view word, const std::string& where) {
    std::string_view digits = word;
    const bool negative = !digits.empty() && digits[0] == '-';
    if (negative || (!digits.empty() && digits[0] == '+')) {
        digits.remove_prefix(1);
    }
    if (digits.size() > 1 && digits[0] == '0' &&
        digits.find_first_not_of("01234567") == std::string_view::npos) {
        refuse(type, where, word, "a leading zero is ambiguous, write 0o for octal");
    }
    uint64_t magnitude = 0;
    bool overflow = false;
    if (!parseDigits(digits, magnitude, overflow)) {
        refuse(type, where, word, "not a whole number");
    }
    // The magnitude of the minimum, which a negated int64_t could not hold.
    const uint64_t lowest = 0 - static_cast<uint64_t>(type.minimum);
    if (overflow || magnitude > (negative ? lowest : type.maximum)) {
        refuse(type, where, word,
               "out of range " + std::to_string(type.minimum) + " to " + std::to_string(type.maximum));
    }
    return negative ? Json(static_cast<int64_t>(0 - magnitude)) : Json(magnitude);
}

Json parseBoolean(const Type& type, std::string_view word, const std::string& where) {
    for (const char* yes : {"true", "on", "1"}) {
        if (equalIgnoringCase(word, yes)) {
            return true;
        }
    }
    for (const char* no : {"false", "off", "0"}) {
        if (equalIgnoringCase(word, no)) {
            return false;
        }
    }
    refuse(type, where, word, "neither true, on, 1 nor false, off, 0");
}

Json parseEnumeration(const Type& type, std::string_view word, const std::string& where) {
    for (const Enumerator& enumerator : type.enumerators) {
        if (equalIgnoringCase(word, enumerator.name)) {
            return enumerator.value;
        }
    }
    if (!word.empty() &&
        (std::isdigit(static_cast<unsigned char>(word[0])) || word[0] == '-' || word[0] == '+')) {
        return parseInteger(type, word, where);
    }
    refuse(type, where, word, "no such name" + choiceOf(word, choices(type)));
}

Json parseBytes(const Type& type, std::string_view word, const std::string& where) {
    std::vector<uint8_t> bytes;
    std::string_view rest = word;
    while (!rest.empty()) {
        if (!bytes.empty() && std::string_view(":- ").find(rest[0]) != std::string_view::npos) {
            rest.remove_prefix(1);
        }
        uint8_t byte = 0;
        const char* pair = rest.data();
        if (rest.size() < 2 || std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2) {
            refuse(type, where, word, "not pairs of hexadecimal digits, nor @FILE");
        }
        bytes.push_back(byte);
        rest.remove_prefix(2);
    }
    return Json::binary(std::move(bytes));
}

/** Of an array of bytes, which are given whole. */
void checkSize(const Type& type, size_t size, std::string_view word, const std::string& where) {
    if (type.count && size != *type.count) {
        refuse(type, where, word,
               "needs " + std::to_string(*type.count) + " bytes, not " + std::to_string(size));
    }
}

/** Of any other array the last elements may be left out. */
void fillUp(const Type& type, Json& list) {
    while (type.count && list.size() < *type.count) {
        list.push_back(zeroValue(*type.element));
    }
}

std::string at(const std::string& where, size_t index) {
    return where + "[" + std::to_string(index) + "]";
}

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view withoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool startsWithAny(std::string_view text, std::string_view characters) {
    return !text.empty() && characters.find(text[0]) != std::string_view::npos;
}

/** The length of the quoted text or of the brackets that the text begins with; npos when they do not end. */
size_t closedLength(std::string_view text) {
    std::string closing;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool inside = !closing.empty() && closing.back() == '"';
        if (inside && c == '\\') {
            ++i;
        } else if (!closing.empty() && c == closing.back()) {
            closing.pop_back();
        } else if (!inside && (c == '"' || c == '[' || c == '{')) {
            closing += c == '"' ? '"' : c == '[' ? ']' : '}';
        }
        if (closing.empty()) {
            return i + 1;
        }
    }
    return std::string_view::npos;
}

/** Where one of the separators is, outside of what is quoted or in brackets behind a '='. */
size_t findSeparator(std::string_view text, std::string_view separators) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (separators.find(text[i]) != std::string_view::npos) {
            return i;
        }
        if (text[i] == '=' && startsWithAny(text.substr(i + 1), "\"[{")) {
            const size_t length = closedLength(text.substr(i + 1));
            i += length == std::string_view::npos ? 0 : length;
        }
    }
    return text.size();
}

/**
 * Takes a value from the front of the text: between quotes, between brackets if it has parts, or up to one of
 * the separators, which stays.
 */
Json takeValue(const Type& type, std::string_view& rest, std::string_view separators,
               const std::string& where) {
    const bool text = type.kind == Type::Kind::Text;
    const bool parts = type.kind == Type::Kind::List || type.kind == Type::Kind::Record;
    const std::string_view start = rest.substr(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    if (startsWithAny(start, "\"")) {
        rest = start;
        const std::string value = takeQuoted(rest, where);
        return text ? Json(value) : parseValue(type, value, where);
    }
    if (parts && startsWithAny(start, "[{")) {
        const size_t length = closedLength(start);
        if (length == std::string_view::npos) {
            refuse(type, where, start, "a closing bracket is missing");
        }
        rest = start.substr(length);
        return parseValue(type, start.substr(0, length), where);
    }
    rest = text ? rest : start;
    const size_t end =
            parts ? findSeparator(rest, separators) : std::min(rest.find_first_of(separators), rest.size());
    const std::string_view value = rest.substr(0, end);
    rest.remove_prefix(end);
    return parseValue(type, text ? value : withoutBlanks(value), where);
}

Json parseList(const Type& type, std::string_view word, const std::string& where) {
    // Lists and records hold commas of their own, unless they stand in brackets.
    const bool nested = type.element->kind == Type::Kind::List || type.element->kind == Type::Kind::Record;
    std::string_view rest = withoutBlanks(word);
    const std::string_view marks = !nested ? "," : startsWithAny(rest, "[{") ? ",;" : ";";
    // Numbers in a file stand on lines as often as between commas.
    const bool lines = !nested && type.element->kind != Type::Kind::Text;
    const std::string separators = std::string(marks) + std::string(lines ? kBlanks : "");
    Json list = Json::array();
    bool more = !rest.empty();
    while (more) {
        if (type.count && list.size() == *type.count) {
            refuse(type, where, word, "has " + std::to_string(*type.count) + " elements, not more");
        }
        list.push_back(takeValue(*type.element, rest, separators, at(where, list.size())));
        const bool blank = startsWithAny(rest, kBlanks);
        rest = withoutBlanks(rest);
        more = !rest.empty();
        if (startsWithAny(rest, marks)) {
            rest.remove_prefix(1);
        } else if (more && !(lines && blank)) {
            refuse(type, where, rest, "a separator is missing");
        }
    }
    fillUp(type, list);
    return list;
}

/** "stPlace.s16X" for each field in a record inside this one whose own name it is. */
void findInside(const Type& type, std::string_view name, const std::string& path,
                std::vector<std::string>& found) {
    for (const Field& field : type.fields) {
        if (!path.empty() && equalIgnoringCase(field.label.name, name)) {
            found.push_back(path + field.label.name);
        }
        findInside(*field.type, name, path + field.label.name + ".", found);
    }
}

const Field& findField(const Type& type, std::string_view name, std::string_view given,
                       const std::string& where) {
    std::vector<std::string> names;
    for (const Field& field : type.fields) {
        if (equalIgnoringCase(field.label.name, name)) {
            return field;
        }
        names.push_back(field.label.name);
    }
    std::vector<std::string> inside;
    findInside(type, name, "", inside);
    refuse(type, where, given,
           "no field " + inQuotes(name) + (inside.empty() ? choiceOf(name, names) : choiceOf(name, inside)));
}

/** A part of a value. */
struct Place {
    const Type& type;
    Json& value;
    std::string where;
};

/** `path` is as assign() takes it; `given` is for the message. */
Place locate(const Type& type, Json& value, std::string_view path, std::string_view given,
             const std::string& where) {
    if (path.empty()) {
        return {type, value, where};
    }
    const size_t end = std::min(path.find_first_of(".[", 1), path.size());
    std::string_view step = path.substr(1, end - 1);
    if (path[0] == '.' && type.kind == Type::Kind::Record) {
        const Field& field = findField(type, step, given, where);
        return locate(*field.type, value[field.label.name], path.substr(end), given,
                      where + "." + field.label.name);
    }
    uint64_t index = 0;
    bool overflow = false;
    if (path[0] != '[' || type.kind != Type::Kind::List || step.empty() || step.back() != ']' ||
        !parseDigits(step.substr(0, step.size() - 1), index, overflow)) {
        refuse(type, where, given, "has no part " + inQuotes(path));
    }
    if (type.isBytes()) {
        refuse(type, where, given, "is given whole, not byte by byte");
    }
    // A list grows one by one, so that a slip of the hand does not make it a billion long.
    if (overflow || index > value.size() || (type.count && index == value.size())) {
        refuse(type, where, given,
               "has " + std::to_string(value.size()) + " elements, no number " +
                       std::string(step.substr(0, step.size() - 1)));
    }
    if (index == value.size()) {
        value.push_back(zeroValue(*type.element));
    }
    return locate(*type.element, value[index], path.substr(end), given, at(where, index));
}

Json parseRecord(const Type& type, std::string_view word, const std::string& where) {
    Json record = zeroValue(type);
    std::vector<std::string> set;
    std::string_view rest = withoutBlanks(word);
    do {
        const std::string_view part = rest.substr(0, findSeparator(rest, ","));
        const size_t equals = part.find('=');
        if (equals == std::string_view::npos) {
            refuse(type, where, word, "neither JSON nor field=value,field=value");
        }
        const Place place = locate(type, record, "." + std::string(withoutBlanks(part.substr(0, equals))),
                                   part.substr(equals + 1), where);
        // Neither twice, nor the whole behind its part.
        for (const std::string& one : set) {
            const std::string_view start = std::string_view(one).substr(0, place.where.size());
            if (start == place.where && (one == start || startsWithAny(one.substr(start.size()), ".["))) {
                refuse(place.type, place.where, part.substr(equals + 1), "is given twice");
            }
        }
        set.push_back(place.where);
        rest.remove_prefix(equals + 1);
        place.value = takeValue(place.type, rest, ",", place.where);
        rest = withoutBlanks(rest);
        if (!rest.empty() && rest[0] != ',') {
            refuse(place.type, place.where, rest, "a comma is missing");
        }
        rest = withoutBlanks(rest.substr(std::min<size_t>(1, rest.size())));
    } while (!rest.empty());
    return record;
}

/** A list or record that begins with a bracket: JSON, or what else may stand in brackets. */
Json parseInBrackets(const Type& type, std::string_view text, const std::string& where) {
    if (const std::optional<Json> json = parseJson(text, where)) {
        return checkValue(type, *json, where);
    }
    const std::string_view all = withoutBlanks(text);
    const size_t length = closedLength(all);
    if (length == std::string_view::npos) {
        refuse(type, where, text, "a closing bracket is missing");
    }
    const bool own = length == all.size() && (all[0] == '[') == (type.kind == Type::Kind::List);
    if (type.isBytes() || (type.kind == Type::Kind::Record && !own)) {
        refuse(type, where, text, "not valid JSON");
    }
    const std::string_view inside = own ? all.substr(1, length - 2) : all;
    return type.kind == Type::Kind::Record ? parseRecord(type, inside, where)
                                           : parseList(type, inside, where);
}

}  // namespace

Json parseValue(const Type& type, std::string_view word, const std::string& where) {
    std::string contents;
    std::string_view text = word;
    const bool isText = type.kind == Type::Kind::Text;
    if (isText && word.substr(0, 2) == "@@") {
        return std::string(word.substr(1));
    }
    if ((isText || type.kind == Type::Kind::List || type.kind == Type::Kind::Record) &&
        startsWithAny(word, "@")) {
        contents = readFile(type, word, where);
        if (type.isBytes()) {
            checkSize(type, contents.size(), word, where);
            return Json::binary(std::vector<uint8_t>(contents.begin(), contents.end()));
        }
        text = contents;
    }
    switch (type.kind) {
        case Type::Kind::Boolean:
            return parseBoolean(type, text, where);
        case Type::Kind::Integer:
            return parseInteger(type, text, where);
        case Type::Kind::Enumeration:
            return parseEnumeration(type, text, where);
        case Type::Kind::Text:
            return std::string(text);
        case Type::Kind::Interface:
            if (text != "null") {
                refuse(type, where, word, "the command line has no objects, only null");
            }
            return Json();
        case Type::Kind::List:
        case Type::Kind::Record:
            break;
    }
    if (startsWithAny(withoutBlanks(text), "[{")) {
        return parseInBrackets(type, text, where);
    }
    if (type.kind == Type::Kind::Record) {
        return parseRecord(type, text, where);
    }
    if (!type.isBytes()) {
        return parseList(type, text, where);
    }
    Json bytes = parseBytes(type, text, where);
    checkSize(type, bytes.get_binary().size(), word, where);
    return bytes;
}

Json checkValue(const Type& type, const Json& json, const std::string& where) {
    if (json.is_string()) {
        const auto& text = json.get_ref<const std::string&>();
        if (type.kind == Type::Kind::Text) {
            return json;
        }
        if (text == "@-") {
            refuse(type, where, text, "standard input cannot be named in JSON");
        }
        return parseValue(type, text, where);
    }
    switch (type.kind) {
        case Type::Kind::Boolean:
            if (json.is_boolean()) {
                return json;
            }
            break;
        case Type::Kind::Integer:
        case Type::Kind::Enumeration:
            if (json.is_number_integer()) {
                return parseInteger(type, json.dump(), where);
            }
            break;
        case Type::Kind::Interface:
            if (json.is_null()) {
                return json;
            }
            break;
        case Type::Kind::List:
            if (json.is_array()) {
                if (type.count && json.size() > *type.count) {
                    refuseJson(type, where, json,
                               "has " + std::to_string(*type.count) + " elements, not " +
                                       std::to_string(json.size()));
                }
                Json list = Json::array();
                for (const Json& element : json) {
                    list.push_back(checkValue(*type.element, element, at(where, list.size())));
                }
                if (type.isBytes()) {
                    checkSize(type, list.size(), json.dump(), where);
                    return Json::binary(list.get<std::vector<uint8_t>>());
                }
                fillUp(type, list);
                return list;
            }
            break;
        case Type::Kind::Record:
            if (json.is_object()) {
                Json record = zeroValue(type);
                std::set<std::string> set;
                for (const auto& [name, value] : json.items()) {
                    const Field& field = findField(type, name, value.dump(), where);
                    if (!set.insert(field.label.name).second) {
                        refuseJson(*field.type, where + "." + field.label.name, value, "is given twice");
                    }
                    record[field.label.name] = checkValue(*field.type, value, where + "." + field.label.name);
                }
                return record;
            }
            break;
        case Type::Kind::Text:
            break;
    }
    refuseJson(type, where, json, std::string("a JSON ") + json.type_name() + " does not fit");
}

void assign(const Type& type, Json& value, std::string_view path, std::string_view word,
            const std::string& where) {
    const Place place = locate(type, value, path, word, where);
    place.value = parseValue(place.type, word, place.where);
}

std::optional<Json> parseJson(std::string_view text, const std::string& where) {
    std::vector<std::set<std::string>> objects;
    const auto check = [&](int depth, Json::parse_event_t event, Json& parsed) {
        if (depth > kDeepest) {
            throw Failure(Exit::Usage, where + ": JSON of more than " + std::to_string(kDeepest) + " levels");
        }
        if (event == Json::parse_event_t::object_start) {
            objects.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            objects.pop_back();
        } else if (event == Json::parse_event_t::key &&
                   !objects.back().insert(parsed.get<std::string>()).second) {
            throw Failure(Exit::Usage, where + ": " + parsed.dump() + " is given twice");
        }
        return true;
    };
    Json json = Json::parse(text, check, false);
    return json.is_discarded() ? std::nullopt : std::optional<Json>(std::move(json));
}

Json readJson(std::string_view word, const std::string& where) {
    static const Type kJson = {Type::Kind::Record, "JSON"};
    const std::string file = word == "-" ? "@-" : std::string(word);
    const std::string contents = startsWithAny(file, "@") ? readFile(kJson, file, where) : file;
    std::optional<Json> json = parseJson(contents, where);
    if (!json) {
        refuse(kJson, where, contents, "not valid JSON");
    }
    return std::move(*json);
}

Json zeroValue(const Type& type) {
    switch (type.kind) {
        case Type::Kind::Boolean:
            return false;
        case Type::Kind::Integer:
        case Type::Kind::Enumeration:
            return 0;
        case Type::Kind::Text:
            return "";
        case Type::Kind::Interface:
            return Json();
        case Type::Kind::List: {
            const size_t count = type.count.value_or(0);
            if (type.isBytes()) {
                return Json::binary(std::vector<uint8_t>(count));
            }
            Json list = Json::array();
            for (size_t i = 0; i < count; ++i) {
                list.push_back(zeroValue(*type.element));
            }
            return list;
        }
        case Type::Kind::Record: {
            Json record = Json::object();
            for (const Field& field : type.fields) {
                record[field.label.name] = zeroValue(*field.type);
            }
            return record;
        }
    }
    return Json();
}

std::vector<std::string> choices(const Type& type) {
    std::vector<std::string> names;
    if (type.kind == Type::Kind::Boolean) {
        return {"true", "false"};
    }
    for (const Enumerator& enumerator : type.enumerators) {
        names.push_back(enumerator.name);
    }
    return names;
}

}  // namespace fapictl
