#include "tests/adapters/Case.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "tests/cases/Method.h"

namespace {

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Takes what is before the separator off the text, all of it when there is none.
std::string takeUpTo(std::string& text, std::string_view separator) {
    const size_t at = text.find(separator);
    const std::string taken = text.substr(0, at);
    text.erase(0, at == std::string::npos ? at : at + separator.size());
    return taken;
}

std::string filled(std::string text, const std::map<std::string, std::string>& values) {
    for (const auto& [name, value] : values) {
        for (size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size()) {
            text.replace(at, name.size(), value);
        }
    }
    return text;
}

std::string hexOf(uint32_t number) {
    std::ostringstream digits;
    digits << std::hex << number;
    return digits.str();
}

/// The bytes of <hexadecimal digits>, with 01..0f for each byte from one to the other.
std::string bytesOf(const std::string& word) {
    std::string bytes;
    for (size_t at = 1; at + 1 < word.size(); at += 2) {
        const bool range = word[at] == '.';
        const int to = std::stoi(word.substr(range ? at + 2 : at, 2), nullptr, 16);
        for (int byte = range ? bytes.back() + 1 : to; byte <= to; ++byte) {
            bytes += static_cast<char>(byte);
        }
        at += range ? 2 : 0;
    }
    return bytes;
}

/// A number in eight bytes, <bytes>, or a text.
std::string written(const std::string& word) {
    if (word[0] == '<') {
        return bytesOf(word);
    }
    size_t end = 0;
    try {
        const auto number = static_cast<int64_t>(std::stoll(word, &end, 0));
        if (end == word.size()) {
            return {reinterpret_cast<const char*>(&number), sizeof(number)};
        }
    } catch (const std::invalid_argument&) {
    }
    return word;
}

void readCall(Case& one, std::string& line) {
    std::string writes = line;
    line = takeUpTo(writes, " returns ");
    if (!writes.empty()) {
        one.statuses.clear();
    }
    for (const std::string& status : cases::split(writes)) {
        one.statuses.push_back(std::stoi(status));
    }
    writes = line;
    line = takeUpTo(writes, " writes ");
    for (std::string word : cases::split(writes)) {
        const std::string name = takeUpTo(word, "=");
        one.writes[name] = written(word);
    }
}

void readEvent(Case& one, std::string line) {
    if (line == "unguarded") {
        one.guarded = false;
    } else if (startsWith(line, "unready ")) {
        one.unready = line.substr(8);
    } else if (startsWith(line, "refused ")) {
        one.refused = std::stoi(takeUpTo(line.erase(0, 8), " of "));
        one.refusedBytes = std::stoul(line);
    } else if (startsWith(line, "each ")) {
        const std::string bytes = bytesOf(cases::split(takeUpTo(line.erase(0, 5), ": ")).at(0));
        for (size_t i = 0; i < bytes.size(); ++i) {
            const auto byte = static_cast<uint8_t>(bytes[i]);
            one.events.push_back(filled(
                    line, {{"$i", std::to_string(i)}, {"$b", hexOf(byte)}, {"$d", std::to_string(byte)}}));
        }
    } else {
        if (line.find_first_of("( ") != std::string::npos && line[line.find_first_of("( ")] == '(') {
            readCall(one, line);
        }
        one.events.push_back(line);
    }
}

}  // namespace

std::vector<std::string> Case::expected(const std::string& method, int32_t status) const {
    const std::string outcome = status == 0 ? " OK!\\n" : " Fail!\\n";
    std::vector<std::string> all;
    bool asked = !guarded, answered = false;
    for (std::string event : events) {
        asked = asked || event == "?";
        answered = answered || event[0] == '=';
        if (startsWith(event, "outcome ")) {
            event = (status == 0 ? "D " : "E ") + event.substr(8) + outcome;
        } else if (startsWith(event, "error outcome ")) {
            event = "E " + event.substr(14) + outcome;
        }
        all.push_back(filled(event, {{"$m", method},
                                     {"$s", std::to_string(status)},
                                     {"$x", hexOf(static_cast<uint32_t>(status))}}));
    }
    if (!asked) {
        all.insert(all.begin(), "?");
    }
    if (!answered) {
        all.push_back("= " + std::to_string(status));
    }
    return all;
}

std::vector<Case> readCases(const std::string& path) {
    std::ifstream file(path);
    std::vector<Case> all;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        const size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos || line[start] == '#') {
            continue;
        }
        if (start == 0) {
            all.emplace_back();
            all.back().line = number;
            all.back().words = cases::split(takeUpTo(line, " -> "));
        }
        if (all.empty()) {
            throw std::invalid_argument(path + ": an event before the first method");
        }
        if (!line.empty()) {
            readEvent(all.back(), line.substr(line.find_first_not_of(' ')));
        }
    }
    return all;
}
