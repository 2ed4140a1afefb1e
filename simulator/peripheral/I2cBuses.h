#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace simulator {

/** A device on a bus. Its bus lets one transfer after another through. */
class I2cDevice {
  public:
    virtual ~I2cDevice() = default;

    /**
     * Takes what is written in one transfer, at least one byte: the place in the device, and what is to be
     * put there and behind it. All of it, or nothing on failure.
     */
    virtual int32_t write(const std::string& bytes) = 0;
    /** Loses what it loses with its power. */
    virtual void reset() = 0;
    /** Reads on from the place that was written or reached last. Requires count above 0. */
    virtual int32_t read(unsigned char* bytes, size_t count) = 0;
};

/**
 * The board's I2C buses: four ports, at 400 kHz, enabled at the start. A transfer takes the time that its
 * bits take. Any thread; a port's transfers come one after another.
 *
 *     port  address  device
 *     0     0x50     EEPROM of 256 bytes, kept in i2c/eeprom.bin of the state folder, 0xff when new. One byte
 * names the place. A read goes on at 0 behind the last byte; a write beyond it is refused. 0     0x2c
 * registers 0x00 to 0x1f, one byte names the first: 0x00 is the device's id 0x5a and 0x01 its 1     0x2c
 * revision, both read-only, 0x10 to 0x1f are free, 0 at the start; the others read 0 and are read-only. A
 * read goes on at 0x00 behind the last one.
 */
class I2cBuses {
  public:
    static constexpr unsigned kPorts = 4;
    enum Device { kEeprom = 0, kRegisters = 1 };

    I2cBuses();
    ~I2cBuses();

    /** Turns all devices off and on, and enables all ports. */
    void reset();

    /** kOutOfRange for a port that there is not. */
    int32_t enable(int port, bool on);

    /**
     * kOutOfRange: port, address above 0x7f, mode above 1, more than one address byte; kSwitchedOff: the port
     * is disabled; kAbsent: no device has the address; or the device's status. Mode 0 goes from writing the
     * address to reading with a repeated start, mode 1 with a stop and a start, which is the same to these
     * devices.
     */
    int32_t read(int port, unsigned slave, unsigned mode, const unsigned char* address, size_t addressCount,
                 unsigned char* data, size_t count);
    /** As read(), without a mode, and with any count of address bytes. */
    int32_t write(int port, unsigned slave, const unsigned char* address, size_t addressCount,
                  const unsigned char* data, size_t count);

    /** The address of the index-th device of that kind, whatever its port. kNotFound. */
    int32_t addressOf(unsigned kind, unsigned index, unsigned short* slave) const;

    std::string describe();

  private:
    struct Port {
        std::mutex mutex;
        bool enabled = true;  // guarded by mutex
    };
    struct Wired {
        int port;
        unsigned slave;
        Device kind;
        std::unique_ptr<I2cDevice> device;
    };

    template <typename Transfer>
    int32_t transfer(int port, unsigned slave, size_t bytes, Transfer onDevice);

    Port mPorts[kPorts];
    Wired mDevices[3];  // each guarded by its port's mutex
};

}  // namespace simulator
