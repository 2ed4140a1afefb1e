#include "simulator/peripheral/I2cBuses.h"

#include <chrono>
#include <cstring>
#include <thread>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

constexpr unsigned kMaxSlave = 0x7f;
constexpr unsigned kMaxMode = 1;
/** Eight bits and the acknowledgement, at 400 kHz. */
constexpr std::chrono::nanoseconds kByteTime{9 * 2500};

class Eeprom : public I2cDevice {
  public:
    void reset() override { mPlace = 0; }

    int32_t write(const std::string& bytes) override {
        const size_t place = static_cast<unsigned char>(bytes[0]);
        if (place + bytes.size() - 1 > kBytes) {
            return kOutOfRange;
        }
        if (bytes.size() > 1) {
            const int32_t status = mFolder.change(kFile, kBytes, 0600, [&](std::string& content) {
                if (!fill(content)) {
                    return kBadFile;
                }
                content.replace(place, bytes.size() - 1, bytes, 1);
                return kOk;
            });
            if (status != kOk) {
                return status;
            }
        }
        mPlace = (place + bytes.size() - 1) % kBytes;
        return kOk;
    }

    int32_t read(unsigned char* bytes, size_t count) override {
        std::string content;
        const int32_t status = mFolder.read(kFile, kBytes, content);
        if (status != kOk && status != kNotFound) {
            return status;
        }
        if (!fill(content)) {
            return kBadFile;
        }
        for (size_t i = 0; i < count; ++i) {
            bytes[i] = static_cast<unsigned char>(content[(mPlace + i) % kBytes]);
        }
        mPlace = (mPlace + count) % kBytes;
        return kOk;
    }

  private:
    static constexpr const char* kFolder = "i2c";
    static constexpr const char* kFile = "eeprom.bin";
    static constexpr size_t kBytes = 256;

    /** A file that there is not is as a new one; false for one of another size. */
    static bool fill(std::string& content) {
        content = content.empty() ? std::string(kBytes, '\xff') : std::move(content);
        return content.size() == kBytes;
    }

    StateFolder mFolder{boardState(), kFolder};
    size_t mPlace = 0;
};

class RegisterDevice : public I2cDevice {
  public:
    void reset() override {
        memset(mValues, 0, sizeof(mValues));
        mValues[0] = kId;
        mValues[1] = kRevision;
        mPlace = 0;
    }

    int32_t write(const std::string& bytes) override {
        const size_t first = static_cast<unsigned char>(bytes[0]);
        const size_t count = bytes.size() - 1;
        if (first >= kRegisters || count > kRegisters - first) {
            return kOutOfRange;
        }
        if (count > 0 && first < kFirstFree) {
            return kDenied;
        }
        memcpy(mValues + first, bytes.data() + 1, count);
        mPlace = (first + count) % kRegisters;
        return kOk;
    }

    int32_t read(unsigned char* bytes, size_t count) override {
        for (size_t i = 0; i < count; ++i) {
            bytes[i] = mValues[(mPlace + i) % kRegisters];
        }
        mPlace = (mPlace + count) % kRegisters;
        return kOk;
    }

  private:
    static constexpr size_t kRegisters = 0x20;
    static constexpr size_t kFirstFree = 0x10;
    static constexpr unsigned char kId = 0x5a;
    static constexpr unsigned char kRevision = 0x01;

    unsigned char mValues[kRegisters] = {};
    size_t mPlace = 0;
};

}  // namespace

I2cBuses::I2cBuses()
    : mDevices{{0, 0x50, kEeprom, std::make_unique<Eeprom>()},
               {0, 0x2c, kRegisters, std::make_unique<RegisterDevice>()},
               {1, 0x2c, kRegisters, std::make_unique<RegisterDevice>()}} {
    reset();
}

I2cBuses::~I2cBuses() = default;

void I2cBuses::reset() {
    for (int port = 0; port < static_cast<int>(kPorts); ++port) {
        const std::lock_guard<std::mutex> lock(mPorts[port].mutex);
        mPorts[port].enabled = true;
        for (const Wired& wired : mDevices) {
            if (wired.port == port) {
                wired.device->reset();
            }
        }
    }
}

int32_t I2cBuses::enable(int port, bool on) {
    if (port < 0 || port >= static_cast<int>(kPorts)) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mPorts[port].mutex);
    mPorts[port].enabled = on;
    return kOk;
}

template <typename Transfer>
int32_t I2cBuses::transfer(int port, unsigned slave, size_t bytes, Transfer onDevice) {
    if (port < 0 || port >= static_cast<int>(kPorts) || slave > kMaxSlave) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mPorts[port].mutex);
    if (!mPorts[port].enabled) {
        return kSwitchedOff;
    }
    for (const Wired& wired : mDevices) {
        if (wired.port == port && wired.slave == slave) {
            std::this_thread::sleep_for(kByteTime * (bytes + 1));
            return onDevice(*wired.device);
        }
    }
    return kAbsent;
}

int32_t I2cBuses::read(int port, unsigned slave, unsigned mode, const unsigned char* address,
                       size_t addressCount, unsigned char* data, size_t count) {
    if (mode > kMaxMode || addressCount > 1 || count == 0 || data == nullptr ||
        (addressCount > 0 && address == nullptr)) {
        return kOutOfRange;
    }
    return transfer(port, slave, addressCount + count, [&](I2cDevice& device) {
        if (addressCount > 0) {
            const std::string place(reinterpret_cast<const char*>(address), addressCount);
            if (const int32_t status = device.write(place); status != kOk) {
                return status;
            }
        }
        return device.read(data, count);
    });
}

int32_t I2cBuses::write(int port, unsigned slave, const unsigned char* address, size_t addressCount,
                        const unsigned char* data, size_t count) {
    if (count == 0 || data == nullptr || (addressCount > 0 && address == nullptr)) {
        return kOutOfRange;
    }
    return transfer(port, slave, addressCount + count, [&](I2cDevice& device) {
        std::string bytes(reinterpret_cast<const char*>(address), addressCount);
        return device.write(bytes.append(reinterpret_cast<const char*>(data), count));
    });
}

int32_t I2cBuses::addressOf(unsigned kind, unsigned index, unsigned short* slave) const {
    for (const Wired& wired : mDevices) {
        if (static_cast<unsigned>(wired.kind) == kind && index-- == 0) {
            *slave = static_cast<unsigned short>(wired.slave);
            return kOk;
        }
    }
    return kNotFound;
}

std::string I2cBuses::describe() {
    std::string text = "i2c ports";
    for (Port& port : mPorts) {
        const std::lock_guard<std::mutex> lock(port.mutex);
        text += port.enabled ? " on" : " off";
    }
    return text + "\n";
}

}  // namespace simulator
