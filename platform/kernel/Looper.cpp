#define LOG_TAG "hidl.kernel"

#include "platform/kernel/Looper.h"

#include <log/log.h>
#include <unistd.h>

#include <cstring>
#include <new>

#include "platform/binding/StatusText.h"
#include "platform/kernel/KernelTransport.h"

namespace android::hardware {

namespace {

thread_local const Credentials* tCaller = nullptr;

/** What the calling thread serves, while it does. */
class ServedCaller {
  public:
    explicit ServedCaller(const Credentials& who) : mOuter(tCaller) { tCaller = &who; }
    ~ServedCaller() { tCaller = mOuter; }

  private:
    const Credentials* const mOuter;
};

/** A request of so many bytes is freed before its method runs: others may need the room. */
constexpr size_t kLargeRequest = 64 * 1024;

/** Of newer kernels, for BR_TRANSACTION_COMPLETE: the process that a one-way call goes to is frozen. */
constexpr uint32_t kTakenByFrozen = _IO('r', 20);

template <typename T>
T payloadOf(const uint8_t* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

}  // namespace

Looper::~Looper() {
    if (mTransport != nullptr && mGeneration == processGeneration()) {
        mTransport->driver().write(&mOut);
        mTransport->driver().forgetThread();
    }
}

Looper& Looper::ofThread(KernelTransport& transport) {
    thread_local Looper tLooper;
    if (tLooper.mTransport != &transport) {
        // Its first use, or the first one in a child that was forked: what waited there was the parent's.
        tLooper.mTransport = &transport;
        tLooper.mGeneration = processGeneration();
        tLooper.mOut.consumed(tLooper.mOut.size());
        tLooper.mAwaited = nullptr;
        tLooper.mDepth = 0;
    }
    return tLooper;
}

const Credentials* Looper::caller() {
    return tCaller;
}

template <typename... Payload>
void Looper::put(uint32_t command, const Payload&... payload) {
    if (!mOut.hasRoom()) {
        const status_t status = mTransport->driver().write(&mOut);
        LOG_ALWAYS_FATAL_IF(!mOut.hasRoom(), "the driver takes no commands: %s", statusText(status).c_str());
    }
    mOut.put(command, payload...);
}

status_t Looper::transact(uint32_t handle, uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    const bool oneWay = (flags & IBinder::FLAG_ONEWAY) != 0;
    if (oneWay && data.descriptorCount() > 0) {
        return INVALID_OPERATION;
    }
    WrittenTransaction written;
    const status_t status = written.write(data, mTransport, oneWay ? kMaxOneWayBytes : kMaxTransactionBytes);
    if (status != OK) {
        return status;
    }
    binder_transaction_data_sg call{};
    written.fill(&call);
    call.transaction_data.target.handle = handle;
    call.transaction_data.code = code;
    call.transaction_data.flags = oneWay ? TF_ONE_WAY : TF_ACCEPT_FDS;
    Awaited awaited{!oneWay, code, reply};
    const status_t sent = send(BC_TRANSACTION_SG, call, &awaited);
    writeOut();
    return sent;
}

/** Writes what the driver waits for: this thread may not come back to it for long. */
void Looper::writeOut() {
    if (!mOut.empty()) {
        mTransport->driver().write(&mOut);
    }
}

/** Makes something the innermost that the thread waits for. */
class Looper::Waiting {
  public:
    Waiting(Looper& looper, Awaited* awaited) : mLooper(looper) {
        awaited->outer = looper.mAwaited;
        looper.mAwaited = awaited;
    }
    ~Waiting() { mLooper.mAwaited = mLooper.mAwaited->outer; }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

  private:
    Looper& mLooper;
};

/** Sends a message and waits for what comes of it. Objects of ours in it are the driver's, too, by then. */
status_t Looper::send(uint32_t command, const binder_transaction_data_sg& message, Awaited* awaited) {
    put(command, message);
    const Waiting waiting(*this, awaited);
    while (!awaited->done) {
        const status_t status = exchange();
        if (status != OK) {
            ALOGE("%s can not be used: %s", mTransport->driver().path().c_str(), statusText(status).c_str());
            if (!mOut.empty()) {
                mOut.takeBack(sizeof(command) + sizeof(message));
            }
            return status == -ENOMEM ? NO_MEMORY : FAILED_TRANSACTION;
        }
    }
    return awaited->status;
}

/** Writes what waits, reads what comes and carries it out. */
status_t Looper::exchange() {
    // A block of this call's own: what is carried out may have to wait for something else meanwhile.
    uint8_t block[2 * Driver::kLeastRead];
    size_t got = 0;
    const status_t status = mTransport->driver().exchange(&mOut, block, sizeof(block), &got);
    size_t at = 0;
    while (got - at >= sizeof(uint32_t)) {
        const auto command = payloadOf<uint32_t>(block + at);
        at += sizeof(command);
        const size_t size = _IOC_SIZE(command);
        LOG_ALWAYS_FATAL_IF(size > got - at, "the driver's command %x is cut", command);
        carryOut(command, block + at);
        at += size;
    }
    return status;
}

/**
 * What an answer of the driver's is for. One read may bring that the driver has taken the reply of a call
 * that was served meanwhile, and the end of the call for which the thread waited before.
 *
 * @param reply it is a reply; else a failure, of a call or of what was sent
 * @return null when nothing waits for it
 */
Looper::Awaited* Looper::awaited(bool reply) {
    Awaited* each = mAwaited;
    while (each != nullptr && (each->done || (reply && !each->isReply))) {
        each = each->outer;
    }
    return each;
}

void Looper::carryOut(uint32_t command, const uint8_t* payload) {
    switch (command) {
        case BR_NOOP:
        case BR_OK:
        case BR_CLEAR_DEATH_NOTIFICATION_DONE:
            break;
        case BR_SPAWN_LOOPER:
            mTransport->spawn();
            break;
        case BR_TRANSACTION_COMPLETE:
        case BR_ONEWAY_SPAM_SUSPECT:
        case kTakenByFrozen:
            if (mAwaited != nullptr && !mAwaited->isReply) {
                finish(mAwaited, OK);
            }
            break;
        case BR_REPLY: {
            const auto received = payloadOf<binder_transaction_data>(payload);
            if (Awaited* const call = awaited(true); call != nullptr) {
                finish(call, takeReply(received, call->code, call->reply));
            } else {
                dropTransaction(received, mTransport->driver().memory());
            }
            put(BC_FREE_BUFFER, received.data.ptr.buffer);
            break;
        }
        case BR_DEAD_REPLY:
            finish(awaited(false), DEAD_OBJECT);
            break;
        case BR_FAILED_REPLY:
        case BR_FROZEN_REPLY:
            finish(awaited(false), FAILED_TRANSACTION);
            break;
        case BR_TRANSACTION:
            serve(payloadOf<binder_transaction_data>(payload));
            break;
        case BR_INCREFS:
        case BR_ACQUIRE: {
            const auto object = payloadOf<binder_ptr_cookie>(payload);
            mTransport->count(command, object);
            put(command == BR_INCREFS ? uint32_t{BC_INCREFS_DONE} : uint32_t{BC_ACQUIRE_DONE}, object);
            break;
        }
        case BR_RELEASE:
        case BR_DECREFS:
            mTransport->count(command, payloadOf<binder_ptr_cookie>(payload));
            break;
        case BR_DEAD_BINDER:
            report(payloadOf<binder_uintptr_t>(payload));
            break;
        default:
            ALOGE("the driver says %x, which is not known here", command);
            break;
    }
}

void Looper::finish(Awaited* awaited, status_t status) {
    if (awaited != nullptr) {
        awaited->done = true;
        awaited->status = status;
    }
}

status_t Looper::takeReply(const binder_transaction_data& received, uint32_t code, Parcel* reply) {
    if ((received.flags & TF_STATUS_CODE) != 0) {
        dropTransaction(received, mTransport->driver().memory());
        const auto* const bytes = reinterpret_cast<const uint8_t*>(received.data.ptr.buffer);
        return received.data_size < sizeof(status_t) ? FAILED_TRANSACTION : payloadOf<status_t>(bytes);
    }
    Parcel unwanted;
    const char* rule = nullptr;
    const status_t status = readTransaction(received, mTransport->driver().memory(), mTransport,
                                            reply != nullptr ? reply : &unwanted, &rule);
    if (rule != nullptr) {
        mTransport->complain({received.sender_pid, received.sender_euid}, "a reply to", code, status, rule);
    }
    return status;
}

void Looper::serve(const binder_transaction_data& received) {
    const Credentials who{received.sender_pid, received.sender_euid};
    const bool oneWay = (received.flags & TF_ONE_WAY) != 0;
    const ServedCaller served(who);
    ++mDepth;
    status_t status = OK;
    bool replied = oneWay;
    {
        Parcel data;
        const char* rule = nullptr;
        // The message holds it, so before that is given back.
        const sp<BHwBinder> object = mTransport->find(received.target.ptr, received.cookie);
        if (who.uid != geteuid() && who.uid != 0) {
            status = PERMISSION_DENIED;
            rule = "callers run under our user or root's";
        } else if (mDepth > kMaxNestedTransactions) {
            status = FAILED_TRANSACTION;
            rule = "a thread serves so many calls inside each other";
        }
        if (rule == nullptr) {
            status = readTransaction(received, mTransport->driver().memory(), mTransport, &data, &rule);
        } else {
            dropTransaction(received, mTransport->driver().memory());
        }
        if (!oneWay) {
            // There is a copy, and what it refers to is held. With a one-way message, the next one for this
            // object would come.
            put(BC_FREE_BUFFER, received.data.ptr.buffer);
            if (data.receivedBytes() > kLargeRequest) {
                writeOut();
            }
        }
        if (status == OK) {
            status = run(received, object, data, &replied);
        }
        if (status != OK) {
            mTransport->complain(who, "a call of", received.code, status, rule);
        }
    }
    if (!replied) {
        replyStatus(status);
    }
    if (oneWay) {
        put(BC_FREE_BUFFER, received.data.ptr.buffer);
    }
    --mDepth;
}

/** @param replied true for a one-way message; else it becomes so when a reply has been sent */
status_t Looper::run(const binder_transaction_data& received, const sp<BHwBinder>& object, Parcel& data,
                     bool* replied) {
    if (object == nullptr) {
        return DEAD_OBJECT;
    }
    Parcel results;
    const bool oneWay = *replied;
    const auto onResults = [&](Parcel& given) {
        if (!*replied) {
            *replied = true;
            reply(given, received);
        }
    };
    status_t status;
    try {
        status = object->transact(received.code, data, &results, oneWay ? IBinder::FLAG_ONEWAY : 0u,
                                  onResults);
    } catch (const std::bad_alloc&) {
        status = NO_MEMORY;
    }
    // A stub that answers with an exception status writes it without asking for the reply to be sent.
    if (status == OK && !*replied) {
        onResults(results);
    }
    return status;
}

/** Sends results; what can not be sent becomes a status. */
void Looper::reply(const Parcel& results, const binder_transaction_data& received) {
    const bool expected = results.descriptorCount() == 0 || (received.flags & TF_ACCEPT_FDS) != 0;
    status_t status;
    try {
        WrittenTransaction written;
        status = expected ? written.write(results, mTransport, kMaxTransactionBytes) : INVALID_OPERATION;
        if (status == OK) {
            binder_transaction_data_sg message{};
            written.fill(&message);
            Awaited awaited{false};
            send(BC_REPLY_SG, message, &awaited);
            return;
        }
    } catch (const std::bad_alloc&) {
        status = NO_MEMORY;
    }
    mTransport->complain(*tCaller, "a reply to", received.code, status,
                         !expected                      ? "who gets descriptors has said that it takes them"
                         : status == FAILED_TRANSACTION ? "results fit in one transaction"
                                                        : nullptr);
    replyStatus(status);
}

void Looper::replyStatus(status_t status) {
    binder_transaction_data_sg message{};
    message.transaction_data.flags = TF_STATUS_CODE;
    message.transaction_data.data_size = sizeof(status);
    message.transaction_data.data.ptr.buffer = reinterpret_cast<uintptr_t>(&status);
    Awaited awaited{false};
    send(BC_REPLY_SG, message, &awaited);
}

/** Tells of a death, without locks. */
void Looper::report(binder_uintptr_t cookie) {
    DeathLinks links;
    mTransport->handles().takeLinks(cookie, &links);
    while (!links.empty()) {
        links.front().report();
        links.pop_front();
    }
    put(BC_DEAD_BINDER_DONE, cookie);
}

void Looper::run(bool asked) {
    if (asked) {
        put(BC_REGISTER_LOOPER);
    } else {
        put(BC_ENTER_LOOPER);
    }
    while (true) {
        const status_t status = exchange();
        LOG_ALWAYS_FATAL_IF(status != OK, "%s can not be used: %s", mTransport->driver().path().c_str(),
                            statusText(status).c_str());
        mTransport->spawnOwed();
    }
}

}  // namespace android::hardware
