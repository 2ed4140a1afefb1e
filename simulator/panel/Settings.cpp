#include "simulator/panel/Settings.h"

#include <cstdio>
#include <optional>
#include <sstream>

#include "simulator/board/Board.h"
#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"
#include "simulator/storage/KeptNumbers.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "display";
constexpr char kFile[] = "settings.txt";
// Some six times what all the settings take.
constexpr size_t kMaxFileBytes = 32 * 1024;
constexpr mode_t kFileMode = 0644;

constexpr Limits kPicture[] = {{0, 100, 50}, {0, 100, 50}, {0, 100, 50},
                               {0, 100, 50}, {0, 100, 50}, {0, 100, 80}};
constexpr Limits kOverscan[] = {{-200, 200, 0}, {-200, 200, 0}, {-200, 200, 0}, {-200, 200, 0}};
constexpr Limits kWhitePoint[] = {{0, 2047, 1024}, {0, 2047, 1024}, {0, 2047, 1024},
                                  {0, 2047, 1024}, {0, 2047, 1024}, {0, 2047, 1024}};
constexpr Limits kPq[] = {{-100, 100, 0}, {-100, 100, 0}, {-100, 100, 0}, {0, 3, 0}, {0, 3, 0}, {0, 3, 0}};
constexpr Limits kLink[] = {{0, 1, 0}, {1, 16, 4}, {6, 10, 10}, {0, 1, 0}, {100, 600, 350}, {0, 3, 0}};
constexpr Limits kTiming[] = {{0, std::size(kTimings) - 1, 0}};
constexpr Limits kFirmware[] = {{0, UINT32_MAX, 0x010000}};
constexpr int64_t kMaxGamma = 1023;

struct Shape {
    const char* name;
    const Limits* fields;  // null for a gamma table
    size_t count;
};
constexpr Shape kShapes[] = {{"picture_main", kPicture, std::size(kPicture)},
                             {"picture_sub", kPicture, std::size(kPicture)},
                             {"picture_third", kPicture, std::size(kPicture)},
                             {"overscan", kOverscan, std::size(kOverscan)},
                             {"white_point", kWhitePoint, std::size(kWhitePoint)},
                             {"pq", kPq, std::size(kPq)},
                             {"link", kLink, std::size(kLink)},
                             {"timing", kTiming, std::size(kTiming)},
                             {"gamma_red", nullptr, kGammaEntries},
                             {"gamma_green", nullptr, kGammaEntries},
                             {"gamma_blue", nullptr, kGammaEntries},
                             {"frc_firmware", kFirmware, std::size(kFirmware)}};
static_assert(std::size(kShapes) == kSettings, "a shape for each");
static_assert(std::size(kPicture) == kPictureParameters && std::size(kPq) == kPqItems, "a field for each");

std::vector<Limits> limitsOf(const Shape& shape) {
    if (shape.fields != nullptr) {
        return std::vector<Limits>(shape.fields, shape.fields + shape.count);
    }
    std::vector<Limits> limits;
    for (size_t i = 0; i < shape.count; ++i) {
        const int64_t linear = (static_cast<int64_t>(i) * kMaxGamma * 2 + 255) / 510;
        limits.push_back({0, kMaxGamma, linear});
    }
    return limits;
}

int32_t readSettings(int folder, Settings* settings) {
    std::string text;
    const int32_t result = readFile(folder, kFile, kMaxFileBytes, text, nullptr);
    if (result != kOk) {
        return result == kNotFound ? kOk : result;
    }
    Settings found;
    if (const std::string fault = found.read(text); !fault.empty()) {
        fprintf(stderr, "board: %s/%s: %s\n", kFolder, kFile, fault.c_str());
        return kBadFile;
    }
    *settings = found;
    return kOk;
}

}  // namespace

Settings::Settings() {
    for (size_t i = 0; i < kSettings; ++i) {
        mValues[i] = factoryNumbers(limitsOf(kShapes[i]));
    }
}

int32_t Settings::set(Setting setting, const Values& values) {
    if (!within(values, limitsOf(kShapes[static_cast<size_t>(setting)]))) {
        return kOutOfRange;
    }
    mValues[static_cast<size_t>(setting)] = values;
    return kOk;
}

std::string Settings::text() const {
    std::string text =
            "; What the display keeps. Have the driver reload its parameters after a change by hand.\n";
    for (size_t i = 0; i < kSettings; ++i) {
        text += std::string(kShapes[i].name) + " =";
        for (const int64_t value : mValues[i]) {
            text += " " + std::to_string(value);
        }
        text += "\n";
    }
    return text;
}

std::string Settings::read(const std::string& text) {
    std::istringstream lines(text);
    unsigned number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string where = "line " + std::to_string(++number) + ": ";
        if (line.empty() || line[0] == ';') {
            continue;
        }
        const size_t equals = line.find('=');
        const std::string name = line.substr(0, line.find_last_not_of(" =", equals) + 1);
        size_t i = 0;
        while (i < kSettings && name != kShapes[i].name) {
            ++i;
        }
        if (equals == std::string::npos || i == kSettings) {
            return where + "no setting of the display";
        }
        std::optional<Values> values = parseNumbers(line.substr(equals + 1), limitsOf(kShapes[i]));
        if (!values) {
            return where + "not " + std::to_string(kShapes[i].count) + " numbers within the limits of " +
                   name;
        }
        mValues[i] = *std::move(values);
    }
    return {};
}

int32_t loadSettings(Settings* settings) {
    const Descriptor folder = boardState().openFolder(kFolder);
    return folder ? readSettings(folder.get(), settings) : kIoError;
}

int32_t changeSettings(Settings* settings, const std::vector<std::pair<Setting, Settings::Values>>& changes) {
    const Descriptor folder = boardState().openFolder(kFolder);
    if (!folder) {
        return kIoError;
    }
    const FolderLock lock(folder.get());
    if (lock.status() != kOk) {
        return lock.status();
    }
    Settings changed = *settings;
    if (const int32_t result = readSettings(folder.get(), &changed); result != kOk) {
        return result;
    }
    for (const auto& [setting, values] : changes) {
        if (const int32_t result = changed.set(setting, values); result != kOk) {
            return result;
        }
    }
    const int32_t result = replaceFile(folder.get(), kFile, changed.text(), kFileMode);
    if (result == kOk) {
        *settings = std::move(changed);
    }
    return result;
}

}  // namespace simulator
