#include "simulator/audio/AqParameters.h"

#include <algorithm>

#include "simulator/audio/Sound.h"
#include "simulator/board/Board.h"
#include "simulator/board/Faults.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Files.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "audio";
constexpr char kCopy[] = "aq.ini";
constexpr mode_t kMode = 0644;

constexpr char kFormatParameter[] = "aq:format";
constexpr char kNameParameter[] = "aq:name";
constexpr char kFormat[] = "1";
constexpr size_t kMaxName = 64;
constexpr unsigned kSpeakerBands = 10;

AqFile factoryFile() {
    AqFile file{"factory", {}};
    for (const AqParameter& parameter : aqFileParameters()) {
        file.values.push_back(factoryNumbers(parameter.numbers));
    }
    return file;
}

std::string readParameter(const std::string& name, const std::string& text, AqFile* file) {
    const std::vector<AqParameter>& known = aqFileParameters();
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const AqParameter& parameter) { return name == parameter.name; });
    if (found == known.end()) {
        return "is not an AQ parameter";
    }
    const auto values = parseNumbers(text, found->numbers);
    if (!values) {
        std::string limits;
        for (const Limits& number : found->numbers) {
            limits += (limits.empty() ? "" : ", then ") + std::to_string(number.least) + " to " +
                      std::to_string(number.most);
        }
        return "is \"" + text + "\"; it takes a number from " + limits;
    }
    file->values[static_cast<size_t>(found - known.begin())] = *values;
    return {};
}

}  // namespace

const std::vector<AqParameter>& aqFileParameters() {
    static const auto& sParameters = *new std::vector<AqParameter>([] {
        std::vector<AqParameter> all = {// In 0.1 dB, in tenths to one, in ms.
                                        {"drc:threshold", {{-600, 0, 0}}},
                                        {"drc:ratio", {{10, 200, 10}}},
                                        {"drc:attack", {{1, 500, 10}}},
                                        {"drc:release", {{10, 5000, 200}}},
                                        {"limiter:threshold", {{-300, 0, -10}}},
                                        // In Hz, in 0.1 dB.
                                        {"subwoofer:crossover", {{40, 400, 120}}},
                                        {"subwoofer:gain", {{-120, 120, 0}}}};
        // Frequency, gain and Q as for the parametric equaliser. Bands of gain 0 do nothing.
        for (unsigned band = 0; band < kSpeakerBands; ++band) {
            all.push_back({"speaker_eq:band" + std::to_string(band), peqBandLimits(1000)});
        }
        return all;
    }());
    return sParameters;
}

std::string parseAqFile(const std::string& text, AqFile* file) {
    *file = factoryFile();
    IniContents contents;
    if (contents.read(text) != kOk) {
        return "it is not an INI file";
    }
    if (!contents.faults.empty()) {
        return contents.faultLines().front();
    }
    if (contents.get(kFormatParameter, "") != kFormat) {
        return std::string("it does not say that ") + kFormatParameter + " is " + kFormat;
    }
    file->name = contents.get(kNameParameter, "");
    if (file->name.size() > kMaxName) {
        return "its name is too long";
    }
    for (const auto& [name, value] : contents.parameters) {
        const bool heading = name == kFormatParameter || name == kNameParameter;
        const std::string fault = value.times > 1 ? "is given twice"
                                  : heading       ? ""
                                                  : readParameter(name, value.text, file);
        if (!fault.empty()) {
            return "line " + std::to_string(value.line) + ": " + name + " " + fault;
        }
    }
    return {};
}

AqParameters::AqParameters() : mFolder(boardState(), kFolder) {
    restart();
}

void AqParameters::restart() {
    const std::lock_guard<std::mutex> changing(mChanging);
    std::string text;
    const int32_t status = mFolder.read(kCopy, kMaxFileBytes, text);
    AqFile file;
    std::string fault;
    if (status == kOk) {
        fault = parseAqFile(text, &file);
    } else if (status != kNotFound) {
        fault = "status " + std::to_string(status);
    }
    if (status != kOk || !fault.empty()) {
        file = factoryFile();
    }
    tellFaults(std::string(kFolder) + "/" + kCopy,
               fault.empty() ? std::vector<std::string>() : std::vector<std::string>{"is ignored: " + fault});
    const std::lock_guard<std::mutex> lock(mMutex);
    mFile = std::make_shared<const AqFile>(std::move(file));
}

int32_t AqParameters::load(const char* path) {
    std::string text;
    const int32_t read = files::load(path, kMaxFileBytes, &text);
    if (read != kOk && read != kTooLong) {
        return read;
    }
    AqFile file;
    const std::string fault = read == kTooLong
                                      ? "it has more than " + std::to_string(kMaxFileBytes) + " bytes"
                                      : parseAqFile(text, &file);
    if (!fault.empty()) {
        complain(std::string("no AQ parameters loaded from ") + path + ": " + fault);
        return kBadFile;
    }

    const auto loaded = std::make_shared<const AqFile>(std::move(file));
    const std::lock_guard<std::mutex> changing(mChanging);
    const int32_t status = mFolder.replace(kCopy, text, kMode);
    if (status == kOk) {
        const std::lock_guard<std::mutex> data(mMutex);
        mFile = loaded;
    }
    return status;
}

std::string AqParameters::describe() const {
    std::shared_ptr<const AqFile> file;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        file = mFile;
    }
    std::string text = "AQ parameters \"" + file->name + "\"\n";
    for (size_t i = 0; i < file->values.size(); ++i) {
        const AqParameter& parameter = aqFileParameters()[i];
        text += "aq " + parameter.name + " =";
        for (const int64_t value : file->values[i]) {
            text += " " + std::to_string(value);
        }
        text += "\n";
    }
    return text;
}

AqParameters& aqParameters() {
    static AqParameters& sParameters = *new AqParameters;
    return sParameters;
}

}  // namespace simulator
