#include "simulator/peripheral/SerialDevice.h"

// The kernel's own: the C library's header knows no rates but its constants', and the two exclude each other.
#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace simulator {
namespace {

constexpr size_t kInputBytes = 4096;

constexpr const char* kFormatNames[LineSettings::kFormats] = {"8N1", "8E1", "8O1", "7E1", "7O1", "8N2"};

bool hasSevenBits(uint8_t format) {
    return kFormatNames[format][0] == '7';
}

/** The rates that programs know a constant for; any other is told as a number. */
tcflag_t rateFlag(uint32_t baud) {
    switch (baud) {
        case 1200:
            return B1200;
        case 2400:
            return B2400;
        case 4800:
            return B4800;
        case 9600:
            return B9600;
        case 19'200:
            return B19200;
        case 38'400:
            return B38400;
        case 57'600:
            return B57600;
        case 115'200:
            return B115200;
        case 230'400:
            return B230400;
        case 460'800:
            return B460800;
        case 921'600:
            return B921600;
        case 1'000'000:
            return B1000000;
        default:
            return BOTHER;
    }
}

}  // namespace

std::string LineSettings::text() const {
    return std::to_string(baud) + " " + kFormatNames[format];
}

SerialDevice::SerialDevice(Descriptor boardSide, Descriptor terminalSide, std::string path)
    : mBoardSide(std::move(boardSide)), mTerminalSide(std::move(terminalSide)), mPath(std::move(path)) {}

std::unique_ptr<SerialDevice> SerialDevice::open() {
    Descriptor boardSide(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    char path[64];
    if (!boardSide || grantpt(boardSide.get()) != 0 || unlockpt(boardSide.get()) != 0 ||
        ptsname_r(boardSide.get(), path, sizeof(path)) != 0) {
        return nullptr;
    }
    Descriptor terminalSide(::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminalSide) {
        return nullptr;
    }
    std::unique_ptr<SerialDevice> device(
            new SerialDevice(std::move(boardSide), std::move(terminalSide), path));
    return device->configure(LineSettings()) ? std::move(device) : nullptr;
}

bool SerialDevice::configure(const LineSettings& settings) {
    struct termios2 line {};
    if (ioctl(mTerminalSide.get(), TCGETS2, &line) != 0) {
        return false;
    }
    // A wire: no echo, no editing, nothing translated, for programs that do not ask for that themselves.
    line.c_iflag = 0;
    line.c_oflag = 0;
    line.c_lflag = 0;
    line.c_cflag = CS8 | CREAD | CLOCAL | rateFlag(settings.baud);
    line.c_ispeed = settings.baud;
    line.c_ospeed = settings.baud;
    line.c_cc[VMIN] = 1;
    line.c_cc[VTIME] = 0;
    if (ioctl(mTerminalSide.get(), TCSETS2, &line) != 0) {
        return false;
    }
    mSettings = settings;
    mMask = hasSevenBits(settings.format) ? 0x7f : 0xff;
    return true;
}

bool SerialDevice::put(const char* bytes, size_t count) {
    if (count > kOutputBytes - mOutput.size()) {
        return false;
    }
    mOutput.reserve(mOutput.size() + count);  // all of it, or without memory nothing
    for (size_t i = 0; i < count; ++i) {
        mOutput += onLine(bytes[i]);
    }
    return true;
}

void SerialDevice::flush() {
    while (!mOutput.empty()) {
        const ssize_t sent = write(mBoardSide.get(), mOutput.data(), mOutput.size());
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return;
        }
        mOutput.erase(0, static_cast<size_t>(sent));
    }
}

std::string SerialDevice::receive() {
    // A program that turns the echo on would have what the board says come back to it, over and over.
    struct termios2 line {};
    if (ioctl(mTerminalSide.get(), TCGETS2, &line) == 0 && (line.c_lflag & ECHO) != 0) {
        line.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ioctl(mTerminalSide.get(), TCSETS2, &line);
    }
    std::string bytes(kInputBytes, '\0');
    const ssize_t count = read(mBoardSide.get(), bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    for (char& c : bytes) {
        c = onLine(c);
    }
    return bytes;
}

}  // namespace simulator
