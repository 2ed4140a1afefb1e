#include "simulator/peripheral/SerialPorts.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "simulator/board/Board.h"
#include "simulator/board/ChipCall.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr const char* kFolder = "uart";
constexpr const char* kUartNames[] = {"factory", "std"};
constexpr size_t kMaxPipeName = 32;
/** Before another attempt without memory. */
constexpr int kPauseMilliseconds = 10;

std::string portName(int port) {
    return "ttyS" + std::to_string(port);
}

bool isPipeName(const std::string& name) {
    return isName(name, kMaxPipeName, "_-");
}

}  // namespace

SerialPorts::SerialPorts(Report report)
    : mReport(std::move(report)), mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

int32_t SerialPorts::open() {
    const std::lock_guard<std::mutex> lifecycle(mLifecycle);
    if (mThread.joinable()) {
        return kOk;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    Device ports[kPorts];
    for (Device& port : ports) {
        port = SerialDevice::open();
        if (port == nullptr || !mWake) {
            fprintf(stderr, "board: no serial ports: %s\n", strerror(errno));
            return kIoError;
        }
    }
    // First of all, since there may be no thread; it waits for the lock.
    mClosing = false;
    mThread = std::thread([this] { serve(); });
    // A process that was killed leaves the names of its own.
    for (const char* name : kUartNames) {
        withdraw(name);
    }
    for (int i = 0; i < kPorts; ++i) {
        mDevices[i] = ports[i];
        publish(portName(i), ports[i]->path());
    }
    return kOk;
}

void SerialPorts::close() {
    const std::lock_guard<std::mutex> lifecycle(mLifecycle);
    if (!mThread.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mClosing = true;
        wake();
    }
    mThread.join();
    mConsole = Console();
    const std::lock_guard<std::mutex> lock(mMutex);
    for (int i = 0; i < kPorts; ++i) {
        withdraw(portName(i));
    }
    for (const char* name : kUartNames) {
        withdraw(name);
    }
    if (!mPipeName.empty()) {
        withdraw("pipe-" + mPipeName);
        mPipeName.clear();
    }
    for (Device& device : mDevices) {
        device.reset();
    }
    for (Owner& owner : mOwners) {
        owner = Owner();
    }
    for (LineSettings& settings : mCustom) {
        settings = LineSettings();
    }
    mConsolePort = 0;
}

int32_t SerialPorts::start(Uart uart, int port, int mode, const LineSettings& settings) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (port < 0 || port >= kPorts || (mode != kBytes && mode != kLines) || !settings.good()) {
        return kOutOfRange;
    }
    if (mDevices[port] == nullptr) {
        return kSwitchedOff;
    }
    Owner& owner = mOwners[uart];
    const Owner* const present = ownerOf(port);
    if ((present != nullptr && present != &owner) || (owner.port != kAnyPort && owner.port != port)) {
        return kBusy;
    }
    if (!mDevices[port]->configure(settings)) {
        return kIoError;
    }
    owner = Owner();
    owner.port = port;
    owner.mode = mode;
    // The port's too, should the folder have been emptied.
    publish(portName(port), mDevices[port]->path());
    publish(kUartNames[uart], portName(port));
    return kOk;
}

int32_t SerialPorts::stop(Uart uart, int port) {
    const std::lock_guard<std::mutex> lock(mMutex);
    Owner& owner = mOwners[uart];
    if (owner.port == kAnyPort || (port != kAnyPort && port != owner.port)) {
        return kSwitchedOff;
    }
    const int freed = owner.port;
    owner = Owner();
    withdraw(kUartNames[uart]);
    return mDevices[freed]->configure(LineSettings()) ? kOk : kIoError;
}

int32_t SerialPorts::send(Uart uart, const unsigned char* bytes, size_t count) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const int port = mOwners[uart].port;
    if (port == kAnyPort) {
        return kSwitchedOff;
    }
    if (!mDevices[port]->put(reinterpret_cast<const char*>(bytes), count)) {
        return kFull;
    }
    wake();
    return kOk;
}

void SerialPorts::setCustom(int port, const LineSettings& settings) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mCustom[port] = settings;
}

LineSettings SerialPorts::custom(int port) {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mCustom[port];
}

void SerialPorts::moveConsole(int port) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mConsolePort = port;
}

int32_t SerialPorts::connectPipe(const std::string& name) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!isPipeName(name)) {
        return kBadName;
    }
    if (mDevices[0] == nullptr) {
        return kSwitchedOff;
    }
    if (!mPipeName.empty()) {
        return mPipeName == name ? kOk : kBusy;
    }
    Device pipe = SerialDevice::open();
    if (pipe == nullptr) {
        return kIoError;
    }
    mDevices[kPipe] = std::move(pipe);
    mPipeName = name;
    publish("pipe-" + name, mDevices[kPipe]->path());
    wake();
    return kOk;
}

int32_t SerialPorts::disconnectPipe(const std::string& name) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!isPipeName(name)) {
        return kBadName;
    }
    if (mPipeName != name) {
        return kNotFound;
    }
    withdraw("pipe-" + name);
    mDevices[kPipe].reset();
    mPipeName.clear();
    wake();
    return kOk;
}

std::string SerialPorts::describe() {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (int i = 0; i < kPorts; ++i) {
        if (mDevices[i] == nullptr) {
            continue;
        }
        text += portName(i) + " " + mDevices[i]->path() + " " + mDevices[i]->settings().text();
        const Owner* const owner = ownerOf(i);
        if (owner != nullptr) {
            text += std::string(" ") + kUartNames[owner - mOwners] +
                    (owner->mode == kLines ? " by lines" : "");
        } else if (i == mConsolePort) {
            text += " console" + (mPipeName.empty() ? "" : " connected to pipe-" + mPipeName);
        }
        text += "\n";
    }
    return mLost == 0 ? text : text + "lost for lack of room: " + std::to_string(mLost) + " bytes\n";
}

std::vector<std::string> SerialPorts::Owner::take(const std::string& bytes) {
    if (mode == kBytes) {
        return {bytes};
    }
    std::vector<std::string> lines;
    for (const char c : bytes) {
        const bool secondEnd = c == '\n' && afterReturn;
        afterReturn = c == '\r';
        const bool end = c == '\r' || c == '\n';
        if ((end && !secondEnd) || (!end && line.size() == kMaxLine)) {
            lines.push_back(std::move(line));
            line.clear();
        }
        if (!end) {
            line += c;
        }
    }
    return lines;
}

SerialPorts::Owner* SerialPorts::ownerOf(int port) {
    for (Owner& owner : mOwners) {
        if (owner.port == port) {
            return &owner;
        }
    }
    return nullptr;
}

void SerialPorts::serve() {
    for (;;) {
        Device devices[kPorts + 1];
        pollfd polled[kPorts + 2] = {};
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            if (mClosing) {
                return;
            }
            for (int i = 0; i <= kPipe; ++i) {
                devices[i] = mDevices[i];
                polled[i] = {-1, POLLIN, 0};
                if (devices[i] != nullptr) {
                    devices[i]->flush();
                    polled[i].fd = devices[i]->descriptor();
                    polled[i].events = static_cast<short>(POLLIN | (devices[i]->hasOutput() ? POLLOUT : 0));
                }
            }
        }
        pollfd& woken = polled[kPorts + 1];
        woken = {mWake.get(), POLLIN, 0};
        if (poll(polled, kPorts + 2, -1) < 0) {
            if (errno == EINTR || errno == EAGAIN || errno == ENOMEM) {
                poll(nullptr, 0, kPauseMilliseconds);
                continue;
            }
            fprintf(stderr, "board: the serial ports have ended: %s\n", strerror(errno));
            return;
        }
        uint64_t count = 0;
        if ((woken.revents & POLLIN) != 0 && read(mWake.get(), &count, sizeof(count)) < 0) {
            continue;  // another look at it all does no harm
        }
        for (int i = 0; i <= kPipe; ++i) {
            if ((polled[i].revents & POLLIN) == 0) {
                continue;
            }
            const auto take = [&] {
                receive(i, *devices[i]);
                return kOk;
            };
            if (guarded(take) != kOk) {
                fprintf(stderr, "board: no memory for what comes in on a serial port: some of it is lost\n");
                poll(nullptr, 0, kPauseMilliseconds);
            }
        }
    }
}

void SerialPorts::receive(int from, SerialDevice& device) {
    std::string bytes;
    {
        std::unique_lock<std::mutex> lock(mMutex);
        bytes = device.receive();
        if (mDevices[from].get() != &device || bytes.empty()) {
            return;
        }
        if (Owner* const owner = ownerOf(from); owner != nullptr) {
            const Uart uart = static_cast<Uart>(owner - mOwners);
            const std::vector<std::string> reports = owner->take(bytes);
            lock.unlock();
            for (const std::string& report : reports) {
                mReport(uart, from, report);
            }
            return;
        }
        if (from == kPipe || !mPipeName.empty()) {
            const bool connected =
                    ownerOf(mConsolePort) == nullptr && (from == kPipe || from == mConsolePort);
            if (connected) {
                forward(from == kPipe ? mConsolePort : kPipe, bytes);
            }
            return;
        }
        if (from != mConsolePort) {
            return;
        }
    }
    const std::string answer = mConsole.feed(bytes);
    const std::lock_guard<std::mutex> lock(mMutex);
    if (from == mConsolePort && ownerOf(from) == nullptr) {
        forward(from, answer);
    }
}

void SerialPorts::forward(int to, const std::string& bytes) {
    if (!mDevices[to]->put(bytes.data(), bytes.size())) {
        mLost += bytes.size();
    }
}

void SerialPorts::publish(const std::string& name, const std::string& target) const {
    const Opened opened = boardState().openFolder(kFolder);
    const int folder = opened.file.get();
    const std::string temporary = "." + name + ".tmp";
    if (opened.status == kOk) {
        unlinkat(folder, temporary.c_str(), 0);
    }
    if (opened.status != kOk || symlinkat(target.c_str(), folder, temporary.c_str()) != 0 ||
        renameat(folder, temporary.c_str(), folder, name.c_str()) != 0) {
        fprintf(stderr, "board: serial port %s is not linked in %s/%s: %s\n", target.c_str(),
                boardState().path().c_str(), kFolder, strerror(errno));
    }
}

void SerialPorts::withdraw(const std::string& name) const {
    const Opened folder = boardState().openFolder(kFolder);
    if (folder.status == kOk && unlinkat(folder.file.get(), name.c_str(), 0) != 0 && errno != ENOENT) {
        fprintf(stderr, "board: %s/%s/%s cannot be removed: %s\n", boardState().path().c_str(), kFolder,
                name.c_str(), strerror(errno));
    }
}

void SerialPorts::wake() const {
    const uint64_t one = 1;
    if (write(mWake.get(), &one, sizeof(one)) < 0 && errno != EAGAIN) {
        fprintf(stderr, "board: the serial ports are stuck: %s\n", strerror(errno));
    }
}

}  // namespace simulator
