#include "simulator/board/EventRecords.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <vector>

#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr std::string_view kSeparators = ", \t\r\n\v\f";

size_t skip(std::string_view text, size_t at, std::string_view characters) {
    return std::min(text.find_first_not_of(characters, at), text.size());
}

size_t find(std::string_view text, size_t at, std::string_view characters) {
    return std::min(text.find_first_of(characters, at), text.size());
}

/** The length of the word at the start that a '=' follows; 0 without one. */
size_t keyLength(std::string_view text) {
    size_t length = 0;
    while (length < text.size() && isName(text.substr(length, 1), 1, "_")) {
        ++length;
    }
    return text.substr(length, 1) == "=" ? length : 0;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
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

/** The words between blanks that are not in quotes. */
std::vector<std::string_view> splitWords(std::string_view text) {
    std::vector<std::string_view> words;
    for (size_t start = 0; (start = skip(text, start, kBlanks)) < text.size();) {
        size_t at = start;
        while (at < text.size() && kBlanks.find(text[at]) == std::string_view::npos) {
            // A part of a record, or a remark, begins here.
            const std::string_view rest = text.substr(at);
            const size_t value = keyLength(rest) + 1;
            if (rest.substr(0, 2) == "(\"") {
                at += endOfQuoted(rest, 1);
            } else if (value > 1 && rest.substr(value, 1) == "\"") {
                at += endOfQuoted(rest, value);
            }
            at = find(text, at, kSeparators);
            at += text.substr(at, 1) == "," ? 1 : 0;
        }
        words.push_back(text.substr(start, at - start));
        start = at;
    }
    return words;
}

std::vector<std::string_view> splitRecords(std::string_view text) {
    const std::vector<std::string_view> words = splitWords(text);
    if (std::find(words.begin(), words.end(), "|") == words.end()) {
        return words;
    }
    std::vector<std::string_view> records;
    const char* start = text.data();
    for (const std::string_view word : words) {
        if (word == "|") {
            records.emplace_back(start, static_cast<size_t>(word.data() - start));
            start = word.data() + 1;
        }
    }
    records.emplace_back(start, static_cast<size_t>(text.data() + text.size() - start));
    return records;
}

/** Takes a quoted text from the front, which is a quote; empty, or what is wrong with it. */
std::string takeQuoted(std::string_view* rest, std::string* text) {
    text->clear();
    for (size_t i = 1; i < rest->size(); ++i) {
        const char c = (*rest)[i];
        if (c == '"') {
            rest->remove_prefix(i + 1);
            return {};
        }
        if (c != '\\') {
            *text += c;
            continue;
        }
        const std::string_view escape = rest->substr(++i, 3);
        const size_t name = std::string_view("ntr\\\"").find(escape.substr(0, 1));
        if (!escape.empty() && name != std::string_view::npos) {
            *text += "\n\t\r\\\""[name];
        } else if (escape.size() == 3 && escape[0] == 'x' && digitOf(escape[1]) >= 0 &&
                   digitOf(escape[2]) >= 0) {
            *text += static_cast<char>(digitOf(escape[1]) * 16 + digitOf(escape[2]));
            i += 2;
        } else {
            return "no escape \\" + std::string(escape.substr(0, 1)) +
                   R"(; there are \n \t \r \\ \" and \xNN)";
        }
    }
    return "the closing quote is missing";
}

/** Pairs of digits, with a ':', '-' or blank between pairs. */
bool readHex(std::string_view text, std::vector<uint8_t>* bytes) {
    while (!text.empty()) {
        if (!bytes->empty() && std::string_view(":- ").find(text[0]) != std::string_view::npos) {
            text.remove_prefix(1);
        }
        if (text.size() < 2 || digitOf(text[0]) < 0 || digitOf(text[1]) < 0) {
            return false;
        }
        bytes->push_back(static_cast<uint8_t>(digitOf(text[0]) * 16 + digitOf(text[1])));
        text.remove_prefix(2);
    }
    return true;
}

/** Where an unquoted text ends: before the separators in front of the next key. */
size_t endOfText(std::string_view text) {
    size_t at = find(text, 0, kSeparators);
    while (at < text.size() && keyLength(text.substr(skip(text, at, kSeparators))) == 0) {
        at = find(text, skip(text, at, kSeparators), kSeparators);
    }
    return at;
}

std::string readRecord(std::string_view rest, fapi_core::ZvtTvFApiEventCommonObject* record) {
    std::set<std::string> given;
    rest.remove_prefix(skip(rest, 0, kSeparators));
    rest = rest.substr(0, rest.find_last_not_of(kBlanks) + 1);
    rest = rest == "-" ? std::string_view() : rest;
    while (!rest.empty()) {
        const std::string_view part = rest.substr(0, find(rest, 0, kSeparators));
        const size_t length = keyLength(rest);
        const std::string key = lowerCase(rest.substr(0, length));
        rest.remove_prefix(length > 0 ? length + 1 : 0);
        std::string value;
        if (rest.substr(0, 1) == "\"") {
            const std::string fault = takeQuoted(&rest, &value);
            if (!fault.empty()) {
                return fault;
            }
            if (!rest.empty() && kSeparators.find(rest[0]) == std::string_view::npos) {
                return "a comma or blank must follow the closing quote";
            }
        } else {
            const size_t end = key == "text" ? endOfText(rest) : find(rest, 0, kSeparators);
            value = rest.substr(0, end);
            rest.remove_prefix(end);
        }
        bool good = true;
        if (key == "value") {
            good = readAnyNumber(value, &record->u32Value);
        } else if (key == "text") {
            record->strValue = value;
        } else if (key == "bytes") {
            good = readHex(value, &record->vecValue);
        } else {
            good = false;
        }
        if (!good) {
            return "\"" + std::string(part) + "\" is not value=NUMBER, text=TEXT or bytes=HEX";
        }
        if (!given.insert(key).second) {
            return key + " is given twice";
        }
        rest.remove_prefix(skip(rest, 0, kSeparators));
        // What the bytes read as text says nothing new.
        if (key == "bytes" && rest.substr(0, 2) == "(\"") {
            rest.remove_prefix(1);
            const std::string fault = takeQuoted(&rest, &value);
            if (!fault.empty() || rest.substr(0, 1) != ")") {
                return fault.empty() ? "the closing bracket is missing" : fault;
            }
            rest.remove_prefix(1);
            rest.remove_prefix(skip(rest, 0, kSeparators));
        }
    }
    return {};
}

}  // namespace

std::string readEventRecords(std::string_view text, Module::Payload* payload) {
    const std::vector<std::string_view> records = splitRecords(text);
    if (records.size() > std::size(payload->objects)) {
        return "an event has four records";
    }
    for (size_t i = 0; i < records.size(); ++i) {
        const std::string fault = readRecord(records[i], &payload->objects[i]);
        if (!fault.empty()) {
            return fault;
        }
    }
    return {};
}

}  // namespace simulator
