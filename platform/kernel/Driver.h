#pragma once

#include <linux/android/binder.h>
#include <linux/ioctl.h>
#include <utils/Errors.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "platform/binding/UniqueFd.h"

namespace android::hardware {

/**
 * Commands for the driver that wait for the next exchange. They lie in a fixed block: what a thread leaves
 * there between two exchanges is an answer or two for each entry that it has read.
 */
class Commands {
  public:
    /** Most that one command takes: a call, with its code. */
    static constexpr size_t kLongest = 4 + sizeof(binder_transaction_data_sg);

    bool hasRoom() const { return sizeof(mBytes) - mSize >= kLongest; }
    bool empty() const { return mSize == 0; }
    size_t size() const { return mSize; }
    const uint8_t* data() const { return mBytes; }

    /** hasRoom() is true. The payload is what the code says that it is. */
    template <typename Payload>
    void put(uint32_t code, const Payload& payload) {
        static_assert(sizeof(Payload) + sizeof(code) <= kLongest);
        append(&code, sizeof(code));
        append(&payload, sizeof(payload));
    }
    void put(uint32_t code) { append(&code, sizeof(code)); }

    /** Takes the last command back, of so many bytes with its code. */
    void takeBack(size_t size) { mSize -= size; }

    /** Drops so many bytes from the front. */
    void consumed(size_t size) {
        std::memmove(mBytes, mBytes + size, mSize - size);
        mSize -= size;
    }

  private:
    void append(const void* bytes, size_t size) {
        std::memcpy(mBytes + mSize, bytes, size);
        mSize += size;
    }

    uint8_t mBytes[2048];
    size_t mSize = 0;
};

/** Where the driver puts received messages: read-only, and shared by all threads. */
struct ReceivedMemory {
    const uint8_t* begin = nullptr;
    size_t size = 0;
};

/** The binder driver, as one process has it open. Any thread. */
class Driver {
  public:
    /**
     * Opens a device.
     *
     * @param problem what is wrong and what to do about it, when the result is null
     */
    static std::unique_ptr<Driver> open(const std::string& path, std::string* problem);
    ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    /** Of its device, for messages. */
    const std::string& path() const { return mPath; }
    const ReceivedMemory& memory() const { return mMemory; }

    /** How many threads the driver may ask for. */
    status_t setMaxThreads(uint32_t count);

    /**
     * Makes this process the context manager of its device: what is sent to handle 0 comes here.
     *
     * @return ALREADY_EXISTS when another process is; PERMISSION_DENIED when one of another user was
     */
    status_t becomeContextManager();

    /**
     * Writes commands, and reads what comes for this thread, waiting for it. Commands that the driver has not
     * taken, because one before them was refused, stay: that refusal has been read, so they go with the next
     * exchange.
     *
     * @param size of the block; at least kLeastRead, else the driver waits for ever
     * @param got bytes that were read
     */
    status_t exchange(Commands* commands, uint8_t* block, size_t size, size_t* got);
    static constexpr size_t kLeastRead = 256;

    /** Writes commands that the driver does not refuse, without reading. */
    status_t write(Commands* commands);

    /** The calling thread ends, or goes where it has no more to do with the driver. */
    void forgetThread();

  private:
    Driver(std::string path, UniqueFd fd) : mPath(std::move(path)), mFd(std::move(fd)) {}

    const std::string mPath;
    const UniqueFd mFd;
    ReceivedMemory mMemory;
};

}  // namespace android::hardware
