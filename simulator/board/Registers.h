#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace simulator {

/** A bank of 32-bit registers, at offsets 0 to count - 1. */
struct RegisterBank {
    uint32_t bank;
    const char* name;
    uint32_t count;
    uint32_t reset;
    /** The board alone writes those that are not. */
    bool writable;
};

constexpr RegisterBank kRegisterBanks[] = {
        {0, "status", 64, 0, false},
        {1, "control", 256, 0, true},
        {2, "pads", 128, 0x0000ffff, true},
        {3, "scratch", 16, 0xdeadbeef, true},
};

// Offsets in the bank "status".
constexpr uint32_t kStatusBank = 0;
constexpr uint32_t kChipIdRegister = 0;  // always kChipId
constexpr uint32_t kWatchdogRegister = 1;
/** For memory interface n, at kMiuRegisters + 4 n: on, modulation, deviation. */
constexpr uint32_t kMiuRegisters = 16;
constexpr uint32_t kChipId = 0x53494d31;

/** The board's registers. They are as after power-on whenever the process starts. Any thread. */
class Registers {
  public:
    /** All get their reset values. */
    void reset();

    /** kOutOfRange for a bank or an offset that there is not; kDenied for one that a client may not write. */
    int32_t read(uint32_t bank, uint32_t offset, uint32_t* value) const;
    int32_t write(uint32_t bank, uint32_t offset, uint32_t value);

    /** Sets registers of the bank "status", all at once to whoever reads. */
    struct Setting {
        uint32_t offset;
        uint32_t value;
    };
    void report(std::initializer_list<Setting> settings);

    /** What differs from its reset value. */
    std::string describe() const;

  private:
    mutable std::mutex mMutex;
    // Guarded by mMutex: bank and offset of those that were written.
    std::map<std::pair<uint32_t, uint32_t>, uint32_t> mWritten;
};

}  // namespace simulator
