#include "tools/fapictl/Events.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

/** Of the longest module's name. */
constexpr int kModuleColumns = 7;

/** The bytes as the text that they are; empty when they are none. */
std::string_view textOf(const std::vector<uint8_t>& bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return isReadable(text) ? text : std::string_view();
}

std::string recordText(const Event::Record& record) {
    std::string out = "value=" + std::to_string(record.value);
    if (!record.text.empty()) {
        out += " text=" + quotedInShort(record.text);
    }
    if (!record.bytes.empty()) {
        const std::string_view text = textOf(record.bytes);
        out += " bytes=" + toHexInShort(record.bytes);
        out += text.empty() ? "" : " (" + quotedInShort(text) + ")";
    }
    return out;
}

}  // namespace

const std::vector<std::string>& eventModules() {
    static const std::vector<std::string> modules = {"sys",    "disp", "disptst", "info", "inpsrc",
                                                     "prphrl", "aud",  "net",     "tv"};
    return modules;
}

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

std::string recordsText(const Event& event) {
    size_t used = event.records.size();
    const auto isEmpty = [](const Event::Record& one) {
        return one.value == 0 && one.text.empty() && one.bytes.empty();
    };
    while (used > 1 && isEmpty(event.records[used - 1])) {
        --used;
    }
    std::string out;
    for (size_t i = 0; i < event.records.size(); ++i) {
        out += (i == 0 ? "" : " | ") + (i < used ? recordText(event.records[i]) : "-");
    }
    return out;
}

std::string eventLine(uint64_t number, const Event& event) {
    char type[2 + 8 + 1];
    std::snprintf(type, sizeof type, "0x%08x", event.type);
    std::string module = event.module;
    module.resize(std::max<size_t>(module.size(), kModuleColumns), ' ');
    return std::to_string(number) + "  " + timeText(event.time, false) + "  " + module + "  " + type + "  " +
           recordsText(event);
}

Json eventJson(uint64_t number, const Event& event) {
    Json records = Json::array();
    for (const Event::Record& record : event.records) {
        records.push_back({{"value", record.value}, {"text", record.text}, {"bytes", toHex(record.bytes)}});
        if (const std::string_view text = textOf(record.bytes); !text.empty()) {
            records.back()["bytesText"] = text;
        }
    }
    return {{"number", number},
            {"time", timeText(event.time, true)},
            {"module", event.module},
            {"type", event.type},
            {"records", std::move(records)}};
}

}  // namespace fapictl
