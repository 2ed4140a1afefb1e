#pragma once

#include "platform/binding/Complaints.h"
#include "platform/kernel/Driver.h"
#include "platform/kernel/Transaction.h"

namespace android::hardware {

class KernelTransport;

/**
 * Calls that one thread serves inside each other, because the driver gives it what is called back while it
 * waits. The next one is refused with FAILED_TRANSACTION. Each takes about 8 KiB of stack.
 */
constexpr int kMaxNestedTransactions = 64;

/**
 * What one thread says to the driver, and what it gets from it: the replies to its calls, the calls that come
 * while it waits for them and, once it runs, the calls of everybody. Used by its own thread only.
 */
class Looper {
  public:
    Looper() = default;
    Looper(const Looper&) = delete;
    Looper& operator=(const Looper&) = delete;
    ~Looper();

    /** The calling thread's. */
    static Looper& ofThread(KernelTransport& transport);

    /** Makes a call; IBinder::transact() says what it returns. May throw std::bad_alloc. */
    status_t transact(uint32_t handle, uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags);

    /**
     * Serves calls; does not return.
     *
     * @param asked the driver has asked for this thread
     */
    [[noreturn]] void run(bool asked);

    /** Whose call this thread is serving; null when it serves none. The pid of a one-way call's is 0. */
    static const Credentials* caller();

  private:
    /** What the thread waits for while it reads. While it serves a call meanwhile, it waits for more. */
    struct Awaited {
        bool isReply;             // else that the driver has taken a message
        uint32_t code = 0;        // of the method that was called
        Parcel* reply = nullptr;  // where it goes to
        bool done = false;
        status_t status = OK;
        Awaited* outer = nullptr;  // for which it goes on waiting then
    };
    class Waiting;

    template <typename... Payload>
    void put(uint32_t command, const Payload&... payload);
    status_t send(uint32_t command, const binder_transaction_data_sg& message, Awaited* awaited);
    status_t exchange();
    void carryOut(uint32_t command, const uint8_t* payload);
    Awaited* awaited(bool reply);
    void finish(Awaited* awaited, status_t status);
    void writeOut();
    status_t takeReply(const binder_transaction_data& received, uint32_t code, Parcel* reply);
    void serve(const binder_transaction_data& received);
    status_t run(const binder_transaction_data& received, const sp<BHwBinder>& object, Parcel& data,
                 bool* replied);
    void reply(const Parcel& results, const binder_transaction_data& received);
    void replyStatus(status_t status);
    void report(binder_uintptr_t cookie);

    KernelTransport* mTransport = nullptr;
    uint32_t mGeneration = 0;
    Commands mOut;
    Awaited* mAwaited = nullptr;  // the innermost
    int mDepth = 0;
};

}  // namespace android::hardware
