#include "simulator/peripheral/HdmiPorts.h"

#include <zlib.h>

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <cstring>

#include "simulator/board/Board.h"
#include "simulator/board/Faults.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/storage/Files.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

constexpr const char* kEdidFolder = "hdmi";
constexpr const char* kKeyFolder = "hdcp";
constexpr const char* kIniFile = "prphrl";
constexpr int kDefaultVersion = 1;
constexpr mode_t kFileMode = 0600;

struct KeyType {
    const char* name;
    size_t bytes;
    /** Where the receiver's number is: five bytes, twenty of whose bits are set. */
    size_t receiver;
};
// The best first. Constant, certificate and private key of 2.2; selection vector and 40 keys of 1.4; each
// with the CRC-32 of all that, most significant byte first.
constexpr KeyType kKeyTypes[] = {{"2.2", 16 + 522 + 320 + 4, 16}, {"1.4", 8 + 280 + 4, 0}};
constexpr size_t kReceiverBytes = 5;
constexpr unsigned kReceiverOnes = 20;
constexpr size_t kChecksumBytes = 4;

const KeyType* keyType(const std::string& name) {
    for (const KeyType& type : kKeyTypes) {
        if (name == type.name) {
            return &type;
        }
    }
    return nullptr;
}

std::string keyFile(const KeyType& type) {
    return std::string(type.name) + ".key";
}

bool isKey(const KeyType& type, const std::string& content) {
    if (content.size() != type.bytes) {
        return false;
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(content.data());
    size_t ones = 0;
    for (size_t i = 0; i < kReceiverBytes; ++i) {
        ones += std::bitset<8>(bytes[type.receiver + i]).count();
    }
    const size_t covered = type.bytes - kChecksumBytes;
    uLong given = 0;
    for (size_t i = covered; i < type.bytes; ++i) {
        given = given << 8 | bytes[i];
    }
    return ones == kReceiverOnes && crc32(crc32(0, nullptr, 0), bytes, static_cast<uInt>(covered)) == given;
}

std::string edidFile(unsigned port, int version) {
    return "edid-" + std::to_string(port) + "-" + std::to_string(version) + ".bin";
}

std::string versionParameter(unsigned port) {
    return "hdmi:edid_version_" + std::to_string(port);
}

bool isPort(unsigned port) {
    return port >= 1 && port <= HdmiPorts::kPorts;
}

bool isVersion(int version) {
    return version >= 0 && version < HdmiPorts::kVersions;
}

}  // namespace

HdmiPorts::HdmiPorts(Report report)
    : mEdids(boardState(), kEdidFolder), mKeys(boardState(), kKeyFolder), mReport(std::move(report)) {}

int HdmiPorts::chosenVersion(unsigned port) const {
    char value[8];
    const int32_t status = boardIni().get(kIniFile, versionParameter(port).c_str(), value, sizeof(value));
    const bool good = status == kOk && strlen(value) == 1 && isVersion(value[0] - '0');
    tellFaults("ini/prphrl.ini, " + versionParameter(port),
               good || status == kNotFound
                       ? std::vector<std::string>()
                       : std::vector<std::string>{"it is not 0 or 1 (status " + std::to_string(status) +
                                                  "), and taken as 1"});
    return good ? value[0] - '0' : kDefaultVersion;
}

void HdmiPorts::reset() {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::fill(std::begin(mPorts), std::end(mPorts), Port());
    mCec = false;
    mAudioReturn = 0;
}

int32_t HdmiPorts::edid(unsigned port, Edid* edid) const {
    if (!isPort(port) || edid == nullptr) {
        return kOutOfRange;
    }
    const int version = chosenVersion(port);
    std::string content;
    const int32_t status = mEdids.read(edidFile(port, version), kEdidBytes, content);
    if (status == kNotFound) {
        *edid = makeEdid(port, version == 1);
        return kOk;
    }
    if (status != kOk) {
        return status;
    }
    const auto* const bytes = reinterpret_cast<const uint8_t*>(content.data());
    if (!edidFault(bytes, content.size()).empty()) {
        return kBadData;
    }
    edid->fill(0);
    std::copy(bytes, bytes + content.size(), edid->begin());
    return kOk;
}

int32_t HdmiPorts::replaceEdid(unsigned port, int version, size_t count, const uint8_t* bytes) {
    if (!isPort(port) || !isVersion(version) || (count != kEdidBlock && count != kEdidBytes) ||
        bytes == nullptr) {
        return kOutOfRange;
    }
    const std::string fault = edidFault(bytes, count);
    if (!fault.empty()) {
        complain("EDID for HDMI port " + std::to_string(port) + " refused: " + fault);
        return kBadData;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    return mEdids.replace(edidFile(port, version), std::string(reinterpret_cast<const char*>(bytes), count),
                          kFileMode);
}

int32_t HdmiPorts::chooseEdid(unsigned port, int version) {
    if (!isPort(port) || !isVersion(version)) {
        return kOutOfRange;
    }
    return boardIni().set(kIniFile, versionParameter(port).c_str(), std::to_string(version).c_str());
}

template <typename Change>
int32_t HdmiPorts::changePort(unsigned port, Change change) {
    if (!isPort(port)) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    Port& changed = mPorts[port - 1];
    const bool before = changed.up();
    change(changed);
    if (changed.up() != before) {
        changed.hdcp = changed.up() ? bestKey() : nullptr;
        mReport(port, changed.up());
    }
    return kOk;
}

int32_t HdmiPorts::setHotPlug(unsigned port, bool up) {
    return changePort(port, [up](Port& changed) { changed.hotPlug = up; });
}

int32_t HdmiPorts::setCable(unsigned port, bool in) {
    return changePort(port, [in](Port& changed) { changed.cable = in; });
}

int32_t HdmiPorts::installKey(const std::string& type, const char* path) {
    const KeyType* const known = keyType(type);
    if (known == nullptr) {
        return kBadName;
    }
    std::string content;
    const int32_t status = files::load(path, known->bytes, &content);
    if (status != kOk && status != kTooLong) {
        return status;
    }
    if (status == kTooLong || !isKey(*known, content)) {
        return kBadData;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    return mKeys.replace(keyFile(*known), content, kFileMode);
}

const char* HdmiPorts::bestKey() const {
    for (const KeyType& type : kKeyTypes) {
        std::string content;
        const int32_t status = mKeys.read(keyFile(type), type.bytes, content);
        if (status == kOk && isKey(type, content)) {
            return type.name;
        }
        if (status != kNotFound) {
            fprintf(stderr, "board: the HDCP key %s is spoiled (%d): not used\n", type.name, status);
        }
    }
    return nullptr;
}

int32_t HdmiPorts::authenticate() {
    const std::lock_guard<std::mutex> lock(mMutex);
    const char* const best = bestKey();
    for (Port& port : mPorts) {
        port.hdcp = port.up() ? best : nullptr;
    }
    return best == nullptr ? kNotFound : kOk;
}

void HdmiPorts::enableCec(bool on) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mCec = on;
}

int HdmiPorts::cecState() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const bool partner =
            std::any_of(std::begin(mPorts), std::end(mPorts), [](const Port& port) { return port.up(); });
    return !mCec ? 0 : partner ? 2 : 1;
}

int32_t HdmiPorts::setAudioReturn(int state) {
    if (state < 0 || state > 2) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mAudioReturn = state;
    return kOk;
}

int HdmiPorts::audioReturn() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mAudioReturn;
}

std::string HdmiPorts::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (unsigned port = 1; port <= kPorts; ++port) {
        const Port& shown = mPorts[port - 1];
        text += "hdmi " + std::to_string(port) + " edid " + std::to_string(chosenVersion(port)) +
                (shown.hotPlug ? " hpd up" : " hpd down") + (shown.cable ? " cable in" : "") +
                (shown.hdcp != nullptr ? std::string(" hdcp ") + shown.hdcp : "") + "\n";
    }
    const char* const best = bestKey();
    return text + "hdcp key " + (best != nullptr ? best : "none") + "\ncec " + (mCec ? "on" : "off") +
           "\nearc " + std::to_string(mAudioReturn) + "\n";
}

}  // namespace simulator
