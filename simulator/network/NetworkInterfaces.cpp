#include "simulator/network/NetworkInterfaces.h"

#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>

#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/Emmc.h"
#include "simulator/storage/Identity.h"

namespace simulator {
namespace {

// Where the boot loader and the drivers look for the television's address.
constexpr char kMacVariable[] = "mac_address";
using Mac = NetworkInterfaces::Mac;
constexpr size_t kMacBytes = NetworkInterfaces::kMacBytes;

struct Interface {
    const char* name;
    bool upAfterStart;
};
constexpr Interface kInterfaces[] = {{"eth0", true}, {"wlan0", false}};

/** Six groups of two hexadecimal digits, all separated by ':' or all by '-', of an address that one station
 * may have. */
std::optional<Mac> parseMac(const char* text) {
    Mac mac{};
    const size_t length = strnlen(text, 3 * kMacBytes);
    if (length != 3 * kMacBytes - 1 || (text[2] != ':' && text[2] != '-')) {
        return std::nullopt;
    }
    for (size_t i = 0; i < kMacBytes; ++i) {
        const int high = digitOf(text[3 * i]);
        const int low = digitOf(text[3 * i + 1]);
        if (high < 0 || low < 0 || (i + 1 < kMacBytes && text[3 * i + 2] != text[2])) {
            return std::nullopt;
        }
        mac[i] = static_cast<unsigned char>(high * 16 + low);
    }
    const bool group = (mac[0] & 1) != 0;
    return group || mac == Mac{} ? std::nullopt : std::optional(mac);
}

std::string textOf(const Mac& mac) {
    char text[3 * kMacBytes];
    snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4],
             mac[5]);
    return text;
}

/** The address of a board that none has been set on: of the local kind, the same after every start. */
Mac deliveredMac() {
    Identity identity;
    if (const int32_t status = readIdentity(&identity); status != kOk) {
        fprintf(stderr, "board: the serial number cannot be read (status %d)\n", status);
    }
    const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(identity.serial.data()),
                            static_cast<uInt>(identity.serial.size()));
    const auto byte = [&](unsigned shift) { return static_cast<unsigned char>(sum >> shift); };
    return {0x02, 0x53, byte(24), byte(16), byte(8), byte(0)};
}

Mac readMac() {
    char text[Emmc::kMaxValueBytes + 1];
    const int32_t status = boardEmmc().get(kMacVariable, text, sizeof(text));
    const std::optional<Mac> mac = status == kOk ? parseMac(text) : std::nullopt;
    if (!mac && status != kNotFound) {
        fprintf(stderr, "board: the variable %s %s: the address it was delivered with is used\n",
                kMacVariable, status == kOk ? "is no MAC address" : "cannot be read");
    }
    return mac ? *mac : deliveredMac();
}

}  // namespace

void NetworkInterfaces::start() {
    static_assert(std::size(kInterfaces) == kCount, "one for each number");
    const std::lock_guard<std::mutex> lock(mMutex);
    mMac = readMac();
    for (size_t i = 0; i < kCount; ++i) {
        mUp[i] = kInterfaces[i].upAfterStart;
    }
}

int32_t NetworkInterfaces::setMac(const char* text) {
    const std::optional<Mac> mac = parseMac(text);
    if (!mac) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    const int32_t status = boardEmmc().set(kMacVariable, textOf(*mac).c_str());
    mMac = status == kOk ? *mac : mMac;
    return status;
}

int32_t NetworkInterfaces::setUp(const char* name, bool up) {
    for (size_t i = 0; i < kCount; ++i) {
        if (strcmp(name, kInterfaces[i].name) == 0) {
            const std::lock_guard<std::mutex> lock(mMutex);
            mUp[i] = up;
            return kOk;
        }
    }
    return kNotFound;
}

std::string NetworkInterfaces::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (size_t i = 0; i < kCount; ++i) {
        text += std::string(kInterfaces[i].name) + (mUp[i] ? " up" : " down") +
                (i == 0 ? " " + textOf(mMac) : "") + "\n";
    }
    return text;
}

}  // namespace simulator
