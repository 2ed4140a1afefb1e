#pragma once

#include <string>
#include <vector>

namespace simulator {

// What the world around the board does to it: cables, keys, levels. Modules bring the orders that they obey.

struct DriveOrder {
    /** Its first word, and how the whole of it is written. */
    const char* word;
    const char* usage;
    /** Obeys, given the words behind the first; returns empty, or what is wrong. On any thread. */
    std::string (*obey)(const std::vector<std::string>& arguments);
};

/** Makes the orders known, for good. */
void addDriveOrders(const std::vector<DriveOrder>& orders);

/** Whether the line's first word is a known order's. */
bool isDriveOrder(const std::string& line);

/** Obeys a line; empty, or what is wrong with it. */
std::string drive(const std::string& line);

/** How the known orders are written, a line each. */
std::string driveUsage();

/** Reads a number, decimal or hexadecimal after 0x, of at most the given size. */
bool readDriveNumber(const std::string& text, uint64_t most, uint64_t* number);

}  // namespace simulator
