#include "simulator/audio/VolumeTables.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "simulator/board/Board.h"
#include "simulator/board/Faults.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "audio";
constexpr mode_t kMode = 0644;
// A gain takes five digits and a line end.
constexpr size_t kMaxFileBytes = VolumeTables::kMaxNameBytes + 1 + 6 * VolumeTables::kMaxEntries;

std::string fileOf(uint32_t path) {
    return std::string(kAudioPathNames[path]) + ".table";
}

bool goodName(const std::string& name) {
    return name.size() <= VolumeTables::kMaxNameBytes &&
           std::none_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

bool parse(const std::string& text, VolumeTables::Table* table) {
    std::istringstream lines(text);
    if (!std::getline(lines, table->name) || !goodName(table->name)) {
        return false;
    }
    for (std::string line; std::getline(lines, line);) {
        if (!readNumber(line, &table->gains.emplace_back()) ||
            table->gains.size() > VolumeTables::kMaxEntries) {
            return false;
        }
    }
    return !table->gains.empty();
}

}  // namespace

VolumeTables::VolumeTables() : mFolder(boardState(), kFolder) {
    load();
}

std::shared_ptr<const VolumeTables::Table> VolumeTables::read(uint32_t path) const {
    const std::string name = fileOf(path);
    std::string text;
    int32_t status = mFolder.read(name, kMaxFileBytes, text);
    const auto table = std::make_shared<Table>();
    if (status == kOk && !parse(text, table.get())) {
        status = kBadFile;
    }
    const bool bad = status != kOk && status != kNotFound;
    tellFaults(kFolder + ("/" + name),
               bad ? std::vector<std::string>{"is ignored (status " + std::to_string(status) + ")"}
                   : std::vector<std::string>());
    return status == kOk ? table : nullptr;
}

void VolumeTables::load() {
    const std::lock_guard<std::mutex> changing(mChanging);
    for (uint32_t path = 0; path < kAudioPaths; ++path) {
        const auto table = read(path);
        const std::lock_guard<std::mutex> lock(mMutex);
        mTables[path] = table;
    }
}

std::shared_ptr<const VolumeTables::Table> VolumeTables::get(uint32_t path) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mTables[path];
}

int32_t VolumeTables::set(uint32_t path, Table table) {
    if (!goodName(table.name)) {
        return kOutOfRange;
    }
    const auto changed = std::make_shared<const Table>(std::move(table));
    std::string text = changed->name + "\n";
    for (const uint16_t gain : changed->gains) {
        text += std::to_string(gain) + "\n";
    }
    const std::lock_guard<std::mutex> changing(mChanging);
    const int32_t status = mFolder.replace(fileOf(path), text, kMode);
    if (status == kOk) {
        const std::lock_guard<std::mutex> data(mMutex);
        mTables[path] = changed;
    }
    return status;
}

std::string VolumeTables::describe() const {
    std::string text;
    for (uint32_t path = 0; path < kAudioPaths; ++path) {
        if (const auto table = get(path)) {
            text += std::string("volume table of ") + kAudioPathNames[path] + ": \"" + table->name + "\", " +
                    std::to_string(table->gains.size()) + " entries, " +
                    std::to_string(table->gains.front()) + " to " + std::to_string(table->gains.back()) +
                    "\n";
        }
    }
    return text;
}

VolumeTables& volumeTables() {
    static VolumeTables& sTables = *new VolumeTables;
    return sTables;
}

}  // namespace simulator
