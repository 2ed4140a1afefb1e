#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "simulator/board/StateDirectory.h"

namespace simulator {

/** How a serial device sends characters. */
struct LineSettings {
    static constexpr uint32_t kMinBaud = 50;
    static constexpr uint32_t kMaxBaud = 4'000'000;
    /** Formats by their number: 8N1, 8E1, 8O1, 7E1, 7O1, 8N2. */
    static constexpr unsigned kFormats = 6;

    uint32_t baud = 115'200;
    uint8_t format = 0;

    bool good() const { return baud >= kMinBaud && baud <= kMaxBaud && format < kFormats; }
    /** "115200 8N1" */
    std::string text() const;
};

/**
 * A serial device of the board: a pseudo-terminal whose other side a terminal program opens. Bytes pass as
 * they are, at once, whatever the rate; of a 7-bit format the eighth bit is lost.
 *
 * Holds no lock: its owner does.
 */
class SerialDevice {
  public:
    /** What is sent and not read: so much here, and some KiB more in the kernel. */
    static constexpr size_t kOutputBytes = 64 * 1024;

    /** Null when the system gives no pseudo-terminal; errno says why. */
    static std::unique_ptr<SerialDevice> open();

    /** The path for terminal programs. */
    const std::string& path() const { return mPath; }
    const LineSettings& settings() const { return mSettings; }

    /** Requires good settings. The other side sees the rate; it has no notion of parity. False: errno. */
    bool configure(const LineSettings& settings);

    /** Takes all of the bytes, to be sent by flush(), or none when they do not fit. */
    bool put(const char* bytes, size_t count);
    bool hasOutput() const { return !mOutput.empty(); }

    /** Sends what the other side takes. Never waits. */
    void flush();
    /** What has come in, empty for nothing. Never waits. */
    std::string receive();

    /** To be polled. */
    int descriptor() const { return mBoardSide.get(); }

  private:
    SerialDevice(Descriptor boardSide, Descriptor terminalSide, std::string path);
    char onLine(char c) const { return static_cast<char>(c & mMask); }

    const Descriptor mBoardSide;
    // Kept open, or the board's side would report a hang-up whenever the last terminal program ends.
    const Descriptor mTerminalSide;
    const std::string mPath;
    LineSettings mSettings;
    int mMask = 0xff;
    std::string mOutput;
};

}  // namespace simulator
