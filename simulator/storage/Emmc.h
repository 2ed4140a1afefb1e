#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/board/StateDirectory.h"

namespace simulator {

/** A named stretch of the eMMC. What was never written reads as zeros. */
struct EmmcArea {
    const char* name;
    uint32_t size;
    /** The firmware's areas are written by an upgrade alone. */
    bool writable;
    const char* what;
};

constexpr EmmcArea kEmmcAreas[] = {
        {"misc", 64 * 1024, true, "messages to the boot loader"},
        {"panel", 64 * 1024, true, "panel data"},
        {"factory", 256 * 1024, true, "calibration and test records"},
        {"logo", 1024 * 1024, true, "boot picture"},
        {"fw_main", 4 * 1024 * 1024, false, "firmware image of target 0"},
        {"fw_panel", 4 * 1024 * 1024, false, "firmware image of target 1"},
        {"fw_tuner", 4 * 1024 * 1024, false, "firmware image of target 2"},
};

/**
 * The board's storage beside its file system: named areas and environment variables, in the folder emmc/ of
 * the state folder. What a write has acknowledged is on the disk; one that is cut off, however little of an
 * area it writes, has happened whole or not at all. Any thread.
 */
class Emmc {
  public:
    static constexpr size_t kMaxNameBytes = 64;
    static constexpr size_t kMaxValueBytes = 1023;
    /** All variables together. */
    static constexpr size_t kEnvironmentBytes = 64 * 1024;

    Emmc();

    /** The area of that name, or null. */
    static const EmmcArea* findArea(const char* name);

    /** kNotFound for an unknown area, kOutOfRange beyond its end, kDenied for a write-protected one. */
    int32_t read(const char* area, uint32_t offset, uint32_t length, unsigned char* data) const;
    int32_t write(const char* area, uint32_t offset, uint32_t length, const unsigned char* data);
    /** Puts new content, at most the area's size, in place of all that was there, write-protected or not. */
    int32_t replace(const EmmcArea& area, const std::string& content);

    /**
     * A variable's value, NUL-terminated; on failure the buffer holds an empty text: kNotFound, kBadName,
     * kTooLong. Names are made of A-Z a-z 0-9 . _ -.
     */
    int32_t get(const char* name, char* buffer, size_t size) const;
    /** Sets it; an empty value removes it. kBadName, kOutOfRange (the value), kFull. */
    int32_t set(const char* name, const char* value);

    /** The variables as they are stored, and what is written of each area: for people. */
    std::string describe() const;

  private:
    StateFolder mFolder;
};

/** The board's own; made on first use, never destroyed. */
Emmc& boardEmmc();

}  // namespace simulator
