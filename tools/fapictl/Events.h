#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Model.h"

// Events as people and programs write and read them. A payload record is value=7 text="two\nlines"
// bytes=de:ad with any of the three left out, or - for none.
namespace fapictl {

struct Event {
    struct Record {
        uint32_t value = 0;
        std::string text;
        std::vector<uint8_t> bytes;
    };

    std::chrono::system_clock::time_point time;  // of arrival
    const char* module = "";                     // one of eventModules()
    uint32_t type = 0;
    std::array<Record, 4> records;
};

/** "sys", "disp", ...: what raises events, in the order of the callback's methods. */
const std::vector<std::string>& eventModules();

/** One line, without its end, on which long texts and bytes are cut and their whole length is given. */
std::string eventLine(uint64_t number, const Event& event);

/** The whole event; texts may still hold any bytes. */
Json eventJson(uint64_t number, const Event& event);

/**
 * Parses one payload record into a value of the interface's record type: KEY=VALUE, separated by commas or
 * blanks. A text without quotes runs to the next KEY= or to the end, any other value to the next separator;
 * between double quotes everything may stand, with the escapes that eventLine() writes.
 *
 * Throws Failure (Usage) whose message names `where`.
 */
Json parseEventRecord(const Type& type, std::string_view word, const std::string& where);

}  // namespace fapictl
