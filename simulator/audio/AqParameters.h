#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "simulator/storage/KeptNumbers.h"

namespace simulator {

/** One parameter of an AQ file: numbers separated by blanks. */
struct AqParameter {
    std::string name;  // "section:key"
    std::vector<Limits> numbers;
};

/** All that an AQ file may hold besides its section "aq". */
const std::vector<AqParameter>& aqFileParameters();

/** What an AQ file says: numbers for each of aqFileParameters(), the factory's for those that it leaves out.
 */
struct AqFile {
    std::string name;
    std::vector<KeptNumbers::Values> values;
};

/**
 * Reads an AQ file: INI text whose section "aq" says "format = 1" and may give a "name" of up to 64 bytes.
 * Sections, keys and lines that it does not know, numbers beyond their limits, and parameters given twice are
 * refused.
 *
 * @return empty, or what is wrong with it
 */
std::string parseAqFile(const std::string& text, AqFile* file);

/**
 * The AQ parameters that the sound processor works with: those of the last file that was loaded. The board
 * keeps a copy of it, audio/aq.ini in the state folder. Any thread.
 */
class AqParameters {
  public:
    static constexpr size_t kMaxFileBytes = 64 * 1024;

    /** Takes the parameters of the copy. */
    AqParameters();

    /** The same again: those of the factory without a copy, or when it is bad, which is said on standard
     * error. */
    void restart();

    /**
     * Loads a file of the board's file system. kBadFile, with what is wrong said on standard error, or a
     * status of the file: then the parameters stay.
     */
    int32_t load(const char* path);

    std::string describe() const;

  private:
    StateFolder mFolder;
    // Held across a whole change.
    std::mutex mChanging;
    mutable std::mutex mMutex;
    std::shared_ptr<const AqFile> mFile;  // guarded by mMutex
};

/** The board's; made on first use, never destroyed. */
AqParameters& aqParameters();

}  // namespace simulator
