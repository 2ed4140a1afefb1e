#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

// Events as people and programs read them; their records are written as tools/fapictl/Records.h has it.
namespace fapictl {

constexpr size_t kEventRecords = 4;

struct Event {
    struct Record {
        uint32_t value = 0;
        std::string text;
        std::vector<uint8_t> bytes;
    };

    std::chrono::system_clock::time_point time;  // of arrival
    const char* module = "";                     // one of eventModules()
    uint32_t type = 0;
    std::array<Record, kEventRecords> records;
};

/** Local time to the millisecond; whole is with the date and the zone. */
std::string timeText(std::chrono::system_clock::time_point time, bool whole);

/** "sys", "disp", ...: what raises events, in the order of the callback's methods. */
const std::vector<std::string>& eventModules();

/**
 * The records, " | " between them. All up to the last one with content show their value, 0 too; an empty
 * record behind it is -, unless it is the first. Bytes that are a text show it behind them: bytes=6869
 * ("hi"). Long texts and bytes are cut and their whole length is given.
 */
std::string recordsText(const Event& event);

/** One line, without its end: the number, the time, the module, the type and the records. */
std::string eventLine(uint64_t number, const Event& event);

/** The whole event; texts may still hold any bytes. Bytes that are a text have it beside them. */
Json eventJson(uint64_t number, const Event& event);

}  // namespace fapictl
