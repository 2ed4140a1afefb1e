#include "tools/fapictl/Values.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

/** Far above what one call can carry; keeps an endless file from filling the memory. */
constexpr size_t kLargestFile = 16 << 20;
constexpr size_t kLongestQuote = 60;

[[noreturn]] void refuse(const Type& type, const std::string& where, std::string_view given,
                         const std::string& reason) {
    std::string shown = inQuotes(given.substr(0, kLongestQuote));
    if (given.size() > kLongestQuote) {
        shown += "... (" + std::to_string(given.size()) + " bytes)";
    }
    throw Failure(Exit::Usage, where + " (" + type.name + "): " + reason + "; given " + shown);
}

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
    refuse(type, where, word, "no such name" + suggestion(word, choices(type)));
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

void checkCount(const Type& type, size_t count, std::string_view word, const std::string& where) {
    if (type.count && count != *type.count) {
        refuse(type, where, word,
               "needs " + std::to_string(*type.count) + " elements, not " + std::to_string(count));
    }
}

std::string at(const std::string& where, size_t index) {
    return where + "[" + std::to_string(index) + "]";
}

/** The pieces between the separators, without the blanks around them; a blank text has none. */
std::vector<std::string_view> split(std::string_view text, std::string_view separators) {
    std::vector<std::string_view> pieces;
    constexpr std::string_view kBlanks = " \t\r\n";
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        if (text.empty() && pieces.empty()) {
            return pieces;
        }
        const size_t end = std::min(text.find_first_of(separators), text.size());
        const std::string_view piece = text.substr(0, end);
        pieces.push_back(piece.substr(0, piece.find_last_not_of(kBlanks) + 1));
        if (end == text.size()) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

Json parseList(const Type& type, std::string_view word, const std::string& where) {
    // Lists and records hold commas of their own.
    const bool nested = type.element->kind == Type::Kind::List || type.element->kind == Type::Kind::Record;
    Json list = Json::array();
    for (const std::string_view piece : split(word, nested ? ";" : ",")) {
        // Numbers in a file stand on lines as often as between commas.
        const bool inner = !nested && !piece.empty() && type.element->kind != Type::Kind::Text;
        for (const std::string_view element :
             inner ? split(piece, " \t\r\n") : std::vector<std::string_view>{piece}) {
            list.push_back(parseValue(*type.element, element, at(where, list.size())));
        }
    }
    return list;
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
    refuse(type, where, given, "no field " + inQuotes(name) + suggestion(name, names));
}

Json parseRecord(const Type& type, std::string_view word, const std::string& where) {
    Json record = zeroValue(type);
    std::string_view rest = word;
    do {
        const size_t end = std::min(rest.find(','), rest.size());
        const std::string_view part = rest.substr(0, end);
        const size_t equals = part.find('=');
        if (equals == std::string_view::npos) {
            refuse(type, where, word, "neither JSON nor field=value,field=value");
        }
        assign(type, record, "." + std::string(part.substr(0, equals)), part.substr(equals + 1), where);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    } while (!rest.empty());
    return record;
}

bool isJson(std::string_view word) {
    const size_t first = word.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && (word[first] == '{' || word[first] == '[');
}

}  // namespace

Json parseValue(const Type& type, std::string_view word, const std::string& where) {
    std::string contents;
    std::string_view text = word;
    if ((type.kind == Type::Kind::List || type.kind == Type::Kind::Record) && !word.empty() &&
        word[0] == '@') {
        contents = readFile(type, word, where);
        if (type.isBytes()) {
            checkCount(type, contents.size(), word, where);
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
    if (isJson(text)) {
        const Json json = Json::parse(text, nullptr, false);
        if (json.is_discarded()) {
            refuse(type, where, word, "not valid JSON");
        }
        return checkValue(type, json, where);
    }
    if (type.kind == Type::Kind::Record) {
        return parseRecord(type, text, where);
    }
    Json list = type.isBytes() ? parseBytes(type, text, where) : parseList(type, text, where);
    checkCount(type, list.is_binary() ? list.get_binary().size() : list.size(), word, where);
    return list;
}

Json checkValue(const Type& type, const Json& json, const std::string& where) {
    if (json.is_string()) {
        return parseValue(type, json.get_ref<const std::string&>(), where);
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
                checkCount(type, json.size(), json.dump(), where);
                Json list = Json::array();
                for (const Json& element : json) {
                    list.push_back(checkValue(*type.element, element, at(where, list.size())));
                }
                return type.isBytes() ? Json::binary(list.get<std::vector<uint8_t>>()) : list;
            }
            break;
        case Type::Kind::Record:
            if (json.is_object()) {
                Json record = zeroValue(type);
                for (const auto& [name, value] : json.items()) {
                    const Field& field = findField(type, name, json.dump(), where);
                    record[field.label.name] = checkValue(*field.type, value, where + "." + field.label.name);
                }
                return record;
            }
            break;
        case Type::Kind::Text:
            break;
    }
    refuse(type, where, json.dump(), std::string("a JSON ") + json.type_name() + " does not fit");
}

void assign(const Type& type, Json& value, std::string_view path, std::string_view word,
            const std::string& where) {
    if (path.empty()) {
        value = parseValue(type, word, where);
        return;
    }
    const size_t end = std::min(path.find_first_of(".[", 1), path.size());
    std::string_view step = path.substr(1, end - 1);
    if (path[0] == '.' && type.kind == Type::Kind::Record) {
        const Field& field = findField(type, step, word, where);
        assign(*field.type, value[field.label.name], path.substr(end), word, where + "." + field.label.name);
        return;
    }
    uint64_t index = 0;
    bool overflow = false;
    if (path[0] != '[' || type.kind != Type::Kind::List || step.empty() || step.back() != ']' ||
        !parseDigits(step.substr(0, step.size() - 1), index, overflow)) {
        refuse(type, where, word, "has no part " + inQuotes(path));
    }
    if (type.isBytes()) {
        refuse(type, where, word, "is given whole, not byte by byte");
    }
    // A list grows one by one, so that a slip of the hand does not make it a billion long.
    if (overflow || index > value.size() || (type.count && index == value.size())) {
        refuse(type, where, word,
               "has " + std::to_string(value.size()) + " elements, no number " +
                       std::string(step.substr(0, step.size() - 1)));
    }
    if (index == value.size()) {
        value.push_back(zeroValue(*type.element));
    }
    assign(*type.element, value[index], path.substr(end), word, at(where, index));
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
