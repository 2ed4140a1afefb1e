#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/audio/Sound.h"
#include "simulator/board/StateDirectory.h"

namespace simulator {

/**
 * The volume tables of the audio paths, each a file in audio/ of the state folder, PATH.table: its name on
 * the first line, then a gain on each. Any thread.
 */
class VolumeTables {
  public:
    static constexpr size_t kMaxNameBytes = 255;
    static constexpr size_t kMaxEntries = 65535;

    struct Table {
        std::string name;
        std::vector<uint16_t> gains;  // one at least
    };

    /** Loads them. */
    VolumeTables();

    /** Reads the files again; one that is no table is said on standard error and ignored. */
    void load();

    /** Null for a path without one. */
    std::shared_ptr<const Table> get(uint32_t path) const;

    /** Replaces a path's table; kOutOfRange for a name that is too long or holds a control character. */
    int32_t set(uint32_t path, Table table);

    std::string describe() const;

  private:
    std::shared_ptr<const Table> read(uint32_t path) const;

    StateFolder mFolder;
    // Held across a whole change.
    std::mutex mChanging;
    mutable std::mutex mMutex;
    std::shared_ptr<const Table> mTables[kAudioPaths];  // guarded by mMutex
};

/** The board's; made on first use, never destroyed. */
VolumeTables& volumeTables();

}  // namespace simulator
