#define LOG_TAG "hidl.kernel"

#include "platform/kernel/Driver.h"

#include <errno.h>
#include <fcntl.h>
#include <hwbinder/Parcel.h>
#include <log/log.h>
#include <sys/ioctl.h>
#include <sys/mman.h>

#include <cstring>

namespace android::hardware {

namespace {

const char kLoadModule[] = "modprobe binder_linux devices=hwbinder,vndbinder,binder";

/** Repeats what a signal interrupted. */
int control(int fd, unsigned long request, void* argument) {
    int result;
    do {
        result = ioctl(fd, request, argument);
    } while (result < 0 && errno == EINTR);
    return result;
}

}  // namespace

std::unique_ptr<Driver> Driver::open(const std::string& path, std::string* problem) {
    UniqueFd fd(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!fd.ok()) {
        const int error = errno;
        *problem = path + " can not be opened: " + strerror(error);
        if (error == EACCES || error == EPERM) {
            *problem += "; its owner has to let this user in";
        } else {
            *problem += std::string("; load the driver, as root: ") + kLoadModule;
        }
        return nullptr;
    }
    binder_version version{};
    if (control(fd.get(), BINDER_VERSION, &version) < 0) {
        *problem = path + " is no device of the binder driver: " + strerror(errno) +
                   "; HIDL_BINDER_DEVICE names the one to use, and this loads the driver, as root: " +
                   kLoadModule;
        return nullptr;
    }
    if (version.protocol_version != BINDER_CURRENT_PROTOCOL_VERSION) {
        *problem = path + " speaks version " + std::to_string(version.protocol_version) +
                   " of the driver's protocol, this program version " +
                   std::to_string(BINDER_CURRENT_PROTOCOL_VERSION) +
                   "; a kernel for 64-bit programs has that";
        return nullptr;
    }
    std::unique_ptr<Driver> driver(new Driver(path, std::move(fd)));
    // The driver refuses memory that its user could write to.
    void* const memory =
            mmap(nullptr, kMaxTransactionBytes, PROT_READ, MAP_PRIVATE | MAP_NORESERVE, driver->mFd.get(), 0);
    if (memory == MAP_FAILED) {
        *problem = path + " gives no memory for messages: " + strerror(errno);
        return nullptr;
    }
    driver->mMemory = {static_cast<const uint8_t*>(memory), kMaxTransactionBytes};
    return driver;
}

Driver::~Driver() {
    if (mMemory.begin != nullptr) {
        munmap(const_cast<uint8_t*>(mMemory.begin), mMemory.size);
    }
}

status_t Driver::setMaxThreads(uint32_t count) {
    return control(mFd.get(), BINDER_SET_MAX_THREADS, &count) < 0 ? -errno : OK;
}

status_t Driver::becomeContextManager() {
    int32_t unused = 0;
    if (control(mFd.get(), BINDER_SET_CONTEXT_MGR, &unused) < 0) {
        return errno == EBUSY ? ALREADY_EXISTS : -errno;
    }
    return OK;
}

status_t Driver::exchange(Commands* commands, uint8_t* block, size_t size, size_t* got) {
    *got = 0;
    while (true) {
        binder_write_read work{};
        work.write_buffer = reinterpret_cast<uintptr_t>(commands->data());
        work.write_size = commands->size();
        work.read_buffer = reinterpret_cast<uintptr_t>(block);
        work.read_size = size;
        const int result = ioctl(mFd.get(), BINDER_WRITE_READ, &work);
        const int error = errno;
        commands->consumed(work.write_consumed);
        *got = work.read_consumed;
        if (result >= 0 || (error == EINTR && *got > 0)) {
            return OK;
        }
        if (error != EINTR) {
            return -error;
        }
    }
}

status_t Driver::write(Commands* commands) {
    size_t left = commands->size() + 1;
    while (!commands->empty()) {
        if (commands->size() >= left) {
            // It takes nothing because this thread has not read a refusal: they go with the next exchange.
            return WOULD_BLOCK;
        }
        left = commands->size();
        binder_write_read work{};
        work.write_buffer = reinterpret_cast<uintptr_t>(commands->data());
        work.write_size = commands->size();
        const int result = ioctl(mFd.get(), BINDER_WRITE_READ, &work);
        const int error = errno;
        commands->consumed(work.write_consumed);
        if (result < 0 && error != EINTR) {
            return -error;
        }
        if (result < 0) {
            ++left;  // interrupted: once more
        }
    }
    return OK;
}

void Driver::forgetThread() {
    int32_t unused = 0;
    ALOGW_IF(control(mFd.get(), BINDER_THREAD_EXIT, &unused) < 0, "the driver keeps a thread: %s",
             strerror(errno));
}

}  // namespace android::hardware
