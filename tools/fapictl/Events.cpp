#include "tools/fapictl/Events.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <set>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

/** What a line shows of each at most; both come to about 64 columns. */
constexpr size_t kBytesShown = 32;
constexpr size_t kTextShown = 64;
/** Of the longest module's name. */
constexpr int kModuleColumns = 7;

constexpr std::string_view kSeparators = ", \t";

struct Key {
    const char* name;
    const char* field;
};
constexpr Key kKeys[] = {{"value", "u32Value"}, {"text", "strValue"}, {"bytes", "vecValue"}};

/** Local time to the millisecond; whole is with the date and the zone. */
std::string timeText(std::chrono::system_clock::time_point time, bool whole) {
    const auto start = std::chrono::floor<std::chrono::seconds>(time);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(start);
    std::tm local = {};
    localtime_r(&seconds, &local);
    char text[64];
    size_t length = whole ? std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local)
                          : std::strftime(text, sizeof text, "%H:%M:%S", &local);
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(time - start).count();
    length += static_cast<size_t>(
            std::snprintf(text + length, sizeof text - length, ".%03d", static_cast<int>(rest)));
    if (whole) {
        std::strftime(text + length, sizeof text - length, "%z", &local);
    }
    return text;
}

std::string length(size_t size) {
    return "…(" + std::to_string(size) + " bytes)";
}

std::string recordText(const Event::Record& record) {
    std::string out;
    if (record.value != 0) {
        out += " value=" + std::to_string(record.value);
    }
    if (!record.text.empty()) {
        size_t shown = record.text.size();
        if (shown > kTextShown) {
            shown = kTextShown;
            // A character is not cut in two; one has at most three bytes behind its first.
            for (int i = 0; i < 3 && (record.text[shown] & 0xc0) == 0x80; ++i) {
                --shown;
            }
        }
        out += " text=" + inQuotes(std::string_view(record.text).substr(0, shown));
        out += shown == record.text.size() ? "" : length(record.text.size());
    }
    if (!record.bytes.empty()) {
        const size_t shown = std::min(record.bytes.size(), kBytesShown);
        out += " bytes=" + toHex({record.bytes.data(), record.bytes.data() + shown});
        out += shown == record.bytes.size() ? "" : length(record.bytes.size());
    }
    return out.empty() ? "-" : out.substr(1);
}

[[noreturn]] void refuse(const std::string& where, const std::string& reason) {
    throw Failure(Exit::Usage, where + ": " + reason);
}

/** The letters before a '=' at the start of the text; empty when there is no key. */
std::string_view keyAt(std::string_view text) {
    const auto letters = std::find_if_not(text.begin(), text.end(),
                                          [](unsigned char c) { return std::isalnum(c) || c == '_'; });
    return letters == text.end() || *letters != '=' ? std::string_view()
                                                    : text.substr(0, letters - text.begin());
}

size_t skipSeparators(std::string_view text, size_t from) {
    return std::min(text.find_first_not_of(kSeparators, from), text.size());
}

/** Where an unquoted text ends: before the separators in front of the next key. */
size_t endOfText(std::string_view text) {
    for (size_t at = text.find_first_of(kSeparators); at < text.size();) {
        const size_t next = skipSeparators(text, at);
        if (!keyAt(text.substr(next)).empty()) {
            return at;
        }
        at = text.find_first_of(kSeparators, next);
    }
    return text.size();
}

/** Takes a quoted value from the front of the text, which starts with the quote. */
std::string takeQuoted(std::string_view& rest, const std::string& where) {
    std::string out;
    for (size_t i = 1; i < rest.size(); ++i) {
        const char c = rest[i];
        if (c == '"') {
            rest.remove_prefix(i + 1);
            if (!rest.empty() && kSeparators.find(rest[0]) == std::string_view::npos) {
                refuse(where,
                       "a comma or blank must follow the closing quote, not " + inQuotes(rest.substr(0, 1)));
            }
            return out;
        }
        if (c != '\\') {
            out += c;
            continue;
        }
        const std::string_view escape = rest.substr(++i, 3);
        constexpr std::string_view kNames = "ntr\\\"";
        const size_t name = escape.empty() ? std::string_view::npos : kNames.find(escape[0]);
        uint8_t byte = 0;
        if (name != std::string_view::npos) {
            out += "\n\t\r\\\""[name];
        } else if (escape.size() == 3 && escape[0] == 'x' &&
                   std::from_chars(escape.data() + 1, escape.data() + 3, byte, 16).ptr == escape.data() + 3) {
            out += static_cast<char>(byte);
            i += 2;
        } else {
            refuse(where,
                   "no escape \\" + escaped(escape.substr(0, 1)) + R"(; there are \n \t \r \\ \" and \xNN)");
        }
    }
    refuse(where, "the closing quote is missing");
}

const Key& findKey(std::string_view name, bool afterText, const std::string& where) {
    std::vector<std::string> names;
    for (const Key& key : kKeys) {
        if (equalIgnoringCase(name, key.name)) {
            return key;
        }
        names.push_back(key.name);
    }
    refuse(where, "no key " + inQuotes(name) + suggestion(name, names) +
                          (afterText ? "; if it belongs to the text, put the text in double quotes" : ""));
}

}  // namespace

const std::vector<std::string>& eventModules() {
    static const std::vector<std::string> modules = {"sys",    "disp", "disptst", "info", "inpsrc",
                                                     "prphrl", "aud",  "net",     "tv"};
    return modules;
}

std::string eventLine(uint64_t number, const Event& event) {
    char type[2 + 8 + 1];
    std::snprintf(type, sizeof type, "0x%08x", event.type);
    std::string module = event.module;
    module.resize(std::max<size_t>(module.size(), kModuleColumns), ' ');
    std::string line =
            std::to_string(number) + "  " + timeText(event.time, false) + "  " + module + "  " + type;
    const char* separator = "  ";
    for (const Event::Record& record : event.records) {
        line += separator + recordText(record);
        separator = " | ";
    }
    return line;
}

Json eventJson(uint64_t number, const Event& event) {
    Json records = Json::array();
    for (const Event::Record& record : event.records) {
        records.push_back({{"value", record.value}, {"text", record.text}, {"bytes", toHex(record.bytes)}});
    }
    return {{"number", number},
            {"time", timeText(event.time, true)},
            {"module", event.module},
            {"type", event.type},
            {"records", std::move(records)}};
}

Json parseEventRecord(const Type& type, std::string_view word, const std::string& where) {
    Json record = zeroValue(type);
    std::set<std::string> given;
    bool afterText = false;
    std::string_view rest = word == "-" ? std::string_view() : word;
    while (true) {
        rest.remove_prefix(skipSeparators(rest, 0));
        if (rest.empty()) {
            return record;
        }
        const std::string_view name = keyAt(rest);
        if (name.empty()) {
            refuse(where,
                   "value=NUMBER, text=TEXT or bytes=HEX, or - for an empty record, not " + inQuotes(rest));
        }
        const Key& key = findKey(name, afterText, where);
        if (!given.insert(key.name).second) {
            refuse(where, std::string(key.name) + " is given twice");
        }
        rest.remove_prefix(name.size() + 1);
        const auto field = std::find_if(type.fields.begin(), type.fields.end(),
                                        [&](const Field& one) { return one.label.name == key.field; });
        std::string value;
        if (!rest.empty() && rest[0] == '"') {
            value = takeQuoted(rest, where);
        } else {
            afterText = field->type->kind == Type::Kind::Text;
            const size_t end =
                    afterText ? endOfText(rest) : std::min(rest.find_first_of(kSeparators), rest.size());
            value = rest.substr(0, end);
            rest.remove_prefix(end);
        }
        record[key.field] = parseValue(*field->type, value, where + ", " + key.name);
    }
}

}  // namespace fapictl
