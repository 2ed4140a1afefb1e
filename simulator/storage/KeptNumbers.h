#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/storage/IniStore.h"

namespace simulator {

/** Which values a number may have, and what it is when a set leaves the factory. */
struct Limits {
    int64_t least;
    int64_t most;
    int64_t factory;
};

/** As many numbers as there are limits, each within its own. */
bool within(const std::vector<int64_t>& values, const std::vector<Limits>& limits);

std::vector<int64_t> factoryNumbers(const std::vector<Limits>& limits);

/** The numbers of a text, separated by blanks; none when there are others than as many, each within its
 * limits. */
std::optional<std::vector<int64_t>> parseNumbers(const std::string& text, const std::vector<Limits>& limits);

/**
 * Settings that the board's flash keeps: groups of whole numbers, each group set as a whole and one parameter
 * of an INI file.
 *
 * A change that was answered with kOk is on the disk. The file may be edited by hand; load() sees it. Any
 * thread.
 */
class KeptNumbers {
  public:
    using Values = std::vector<int64_t>;

    /** What a group is called in the file ("section:key"), and its numbers. */
    struct Group {
        std::string parameter;
        std::vector<Limits> numbers;
    };

    /** The factory's, until they are loaded. Groups are numbered in their order. */
    KeptNumbers(IniStore& store, const char* file, std::vector<Group> groups);

    /**
     * Takes all groups from the file. A group that it does not have, or not as many numbers within their
     * limits, gets the factory's. The latter, lines that mean nothing and a file that cannot be read are said
     * on standard error; then the status is another than kOk.
     */
    int32_t load();

    /** All groups as they were at one moment. */
    std::shared_ptr<const std::vector<Values>> get() const;

    /**
     * Lets edit change a group; changes of one group or several come one after the other. kOutOfRange when a
     * number has left its limits, or a status of the file: then nothing has changed.
     */
    int32_t change(size_t group, const std::function<void(Values&)>& edit);

    /** Sets several groups, all or none, as change() does. */
    int32_t set(const std::vector<std::pair<size_t, Values>>& changes);

    /** A line for each group, as in the file. */
    std::string describe() const;

  private:
    int32_t setLocked(const std::vector<std::pair<size_t, Values>>& changes);

    IniStore& mStore;
    const char* const mFile;
    const std::vector<Group> mGroups;

    // Held across a whole change.
    std::mutex mChanging;
    mutable std::mutex mMutex;
    std::shared_ptr<const std::vector<Values>> mValues;  // guarded by mMutex
};

}  // namespace simulator
