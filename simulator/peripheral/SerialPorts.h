#pragma once

#include <functional>
#include <mutex>
#include <thread>

#include "simulator/peripheral/Console.h"
#include "simulator/peripheral/SerialDevice.h"

namespace simulator {

/**
 * The board's two serial ports, and who has them: the factory UART, the standard factory UART, or, where
 * neither is, the system's console.
 *
 * Their paths are links in the folder uart/ of the state folder: ttyS0 and ttyS1; factory and std while these
 * run; pipe-NAME for the pipe that the console is connected to. Any thread; nothing waits for whoever is at
 * the other side.
 */
class SerialPorts {
  public:
    static constexpr int kPorts = 2;
    static constexpr size_t kMaxLine = 256;

    enum Uart { kFactory = 0, kStd = 1 };
    /** How incoming bytes are reported. */
    enum Mode {
        /** as they come */
        kBytes = 0,
        /** by lines, without their ends (CR, LF or both), or kMaxLine bytes of a longer one */
        kLines = 1,
    };
    /** Told of bytes that have come in on the port while the UART has it. Holding no lock; never two at once.
     */
    using Report = std::function<void(Uart uart, int port, const std::string& bytes)>;

    explicit SerialPorts(Report report);
    ~SerialPorts() { close(); }

    /** Makes the ports. kIoError: the system gives no pseudo-terminals, which is said on standard error. */
    int32_t open();
    /** Ends them with all that they do; the console is on port 0 again. Not from inside the report. */
    void close();

    /**
     * Gives the port to the UART, anew when it has it already. kOutOfRange; kBusy when the other one has the
     * port, or this one the other port; kSwitchedOff before open().
     */
    int32_t start(Uart uart, int port, int mode, const LineSettings& settings);
    /** Ends it, on the port that it must have, or on kAnyPort. kSwitchedOff when it does not run there. */
    int32_t stop(Uart uart, int port);
    static constexpr int kAnyPort = -1;
    /** kFull, with nothing sent, when what nobody has read yet leaves no room; kSwitchedOff. */
    int32_t send(Uart uart, const unsigned char* bytes, size_t count);

    /** Settings that a client chose for a port, kept until close(). Requires a port, and good settings to
     * set. */
    void setCustom(int port, const LineSettings& settings);
    LineSettings custom(int port);

    /** Puts the console on that port, with its pipe. */
    void moveConsole(int port);
    /**
     * Connects the console to a pipe, a pseudo-terminal too: what comes in on its port goes into the pipe and
     * the other way, while no UART has the port. kBadName; kBusy while it is connected to another.
     */
    int32_t connectPipe(const std::string& name);
    /** kNotFound when it is not connected to this one. */
    int32_t disconnectPipe(const std::string& name);

    /** The state, a line for each port. */
    std::string describe();

  private:
    struct Owner {
        int port = kAnyPort;  // none
        int mode = kBytes;
        std::string line;  // its beginning, in mode kLines
        bool afterReturn = false;

        std::vector<std::string> take(const std::string& bytes);
    };
    using Device = std::shared_ptr<SerialDevice>;
    static constexpr int kPipe = kPorts;  // its place among the devices

    void serve();
    void receive(int from, SerialDevice& device);
    Owner* ownerOf(int port);
    void forward(int to, const std::string& bytes);
    void publish(const std::string& name, const std::string& target) const;
    void withdraw(const std::string& name) const;
    void wake() const;

    const Report mReport;
    const Descriptor mWake;
    std::mutex mLifecycle;  // of open() and close(); taken before mMutex
    std::thread mThread;    // guarded by mLifecycle
    Console mConsole;       // the thread's

    std::mutex mMutex;
    // All below guarded by mMutex. The thread keeps the devices that it polls, hence the shared pointers.
    Device mDevices[kPorts + 1];
    bool mClosing = false;
    Owner mOwners[2];
    LineSettings mCustom[kPorts];
    int mConsolePort = 0;
    std::string mPipeName;
    uint64_t mLost = 0;  // bytes that console or pipe had no room for
};

}  // namespace simulator
