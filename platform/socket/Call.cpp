#define LOG_TAG "hidl.transport"

#include "platform/socket/Call.h"

#include <log/log.h>
#include <sys/socket.h>

#include <cstring>
#include <new>
#include <utility>

#include "platform/binding/StatusText.h"
#include "platform/socket/Limits.h"
#include "platform/socket/MessageReader.h"
#include "platform/socket/Transport.h"

namespace android::hardware {

namespace {

thread_local ServedCall* tInnermost = nullptr;
thread_local int tDepth = 0;
thread_local const Peer* tPeerServed = nullptr;

/** What the calling thread runs for a peer, while it does. */
class ServedPeer {
  public:
    explicit ServedPeer(const Peer& peer) : mOuter(std::exchange(tPeerServed, &peer)) {}
    ~ServedPeer() { tPeerServed = mOuter; }
    ServedPeer(const ServedPeer&) = delete;
    ServedPeer& operator=(const ServedPeer&) = delete;

  private:
    const Peer* const mOuter;
};

/** Answers over a connection whose other end waits for nothing else. */
class WaitedAnswer final : public Answer {
  public:
    WaitedAnswer(int fd, bool descriptors) : mFd(fd), mDescriptors(descriptors) {}

    bool send(Gather gather) override {
        const bool sent = sendAll(mFd, gather);
        mBroken = !sent && !areRefused(errno);
        return sent;
    }
    bool takesDescriptors() const override { return mDescriptors; }
    bool isBroken() const override { return mBroken; }

  private:
    const int mFd;
    const bool mDescriptors;
    bool mBroken = false;
};

/** Sends results; what can not be sent becomes a status. */
void sendResults(Peer& peer, const Parcel& results, Answer& answer) {
    MessageHeader head{};
    head.kind = MessageKind::Reply;
    status_t status;
    try {
        SentObjects objects(peer);
        Encoder encoder;
        const bool expected = results.descriptorCount() == 0 || answer.takesDescriptors();
        status = expected ? encoder.encode(head, results, &objects) : INVALID_OPERATION;
        if (status == OK) {
            ServedCall::noteAnswered();
            if (answer.send(encoder.gather())) {
                objects.sent();
                return;
            }
            if (answer.isBroken()) {
                return;
            }
            status = -ETOOMANYREFS;
        }
    } catch (const std::bad_alloc&) {
        status = NO_MEMORY;
    }
    const Credentials who = peer.credentials();
    if (peer.transport().complaints().count(who) != 0) {
        // Without a text of its own, which would take memory: a method is on the stack, see runCall().
        ALOGW("no reply to pid %d uid %u: %s (%d)", who.pid, who.uid,
              status == FAILED_TRANSACTION  ? "the results exceed one transaction"
              : status == INVALID_OPERATION ? "they have descriptors, and the call had none"
              : status == NO_MEMORY         ? "no memory for the results"
                                            : "they could not be sent",
              status);
    }
    answer.sendStatus(status);
}

/** Reads so many bytes, waiting for them. False when the connection has ended. */
bool receiveAll(int fd, uint8_t* memory, size_t size, Descriptors* descriptors) {
    while (size > 0) {
        const ssize_t got = receiveSome(fd, memory, size, MSG_WAITALL, descriptors);
        if (got > 0) {
            memory += got;
            size -= static_cast<size_t>(got);
        } else if (got < 0 && wouldBlock(errno)) {
            waitForInput(fd);
        } else {
            return false;
        }
    }
    return true;
}

/** Reads the rest of a message that there is no memory for. */
status_t skip(Peer& peer, int fd, const MessageHeader& head, const uint8_t* bytes, size_t have) {
    SkippedMessage skipped(head);
    skipped.take(bytes + sizeof(head), have - sizeof(head), peer);
    uint8_t passing[1024];
    while (skipped.left() > 0) {
        const size_t part = std::min(skipped.left(), sizeof(passing));
        if (!receiveAll(fd, passing, part, nullptr)) {
            return DEAD_OBJECT;
        }
        skipped.take(passing, part, peer);
    }
    return NO_MEMORY;
}

/** The message gets those that came with it, which must be as many as it says. */
status_t claimDescriptors(Peer& peer, OwnedMessage* message, const char** rule) {
    const status_t status = checkDescriptors(message->head, message->descriptors.get(), rule);
    if (*rule != nullptr || message->head.descriptorCount == 0) {
        message->descriptors.reset();
        return OK;
    }
    if (status != OK) {
        Parcel unread;  // gives its objects up
        readFrom(peer, std::move(*message), &unread);
        return status;
    }
    Message(message->block.block.get()).placeDescriptors(*message->descriptors);
    return OK;
}

/**
 * Reads one message from a connection that carries one at a time.
 *
 * @param descriptors it may bring some
 * @param rule the broken one; then the status means nothing
 * @return OK; NO_MEMORY or, for lack of descriptors, -EMFILE when it has passed by, with its head in the
 *     message; DEAD_OBJECT
 */
status_t receiveOne(Peer& peer, int fd, bool descriptors, OwnedMessage* message, const char** rule) {
    if (descriptors) {
        message->descriptors = std::make_unique<Descriptors>();
    }
    Descriptors* const came = message->descriptors.get();
    uint8_t headBytes[sizeof(MessageHeader)];
    message->block = takeSpareBlock();
    SizedBlock& space = message->block;
    uint8_t* bytes = space.block != nullptr ? space.block.get() : headBytes;
    const size_t most = space.block != nullptr ? space.capacity : sizeof(headBytes);
    size_t have = 0;
    while (have < sizeof(MessageHeader)) {
        const ssize_t got = receiveSome(fd, bytes + have, most - have, 0, came);
        if (got > 0) {
            have += static_cast<size_t>(got);
        } else if (got < 0 && wouldBlock(errno)) {
            waitForInput(fd);
        } else {
            return DEAD_OBJECT;
        }
    }
    MessageHeader& head = message->head;
    std::memcpy(&head, bytes, sizeof(head));
    *rule = Message::checkHeader(head);
    if (*rule == nullptr && have > head.totalBytes) {
        *rule = "a connection for calls carries one message at a time";
    }
    if (*rule != nullptr) {
        return BAD_VALUE;
    }
    if (head.totalBytes > space.capacity) {
        Block whole = allocateBlock(head.totalBytes);
        if (whole == nullptr) {
            return skip(peer, fd, head, bytes, have);
        }
        std::memcpy(whole.get(), bytes, have);
        space = {std::move(whole), head.totalBytes};
    }
    if (!receiveAll(fd, space.block.get() + have, head.totalBytes - have, came)) {
        return DEAD_OBJECT;
    }
    *rule = Message::check(space.block.get());
    return *rule == nullptr ? claimDescriptors(peer, message, rule) : OK;
}

/** Runs, or refuses, a call that came while this thread waits for a reply. False when the connection broke.
 */
bool serveNested(Peer& peer, int fd, status_t received, OwnedMessage& message) {
    WaitedAnswer answer(fd, message.head.descriptorCount > 0);
    if (received == OK && ServedCall::depth() < kMaxNestedCalls) {
        const ServedCall served(peer, fd);
        runCall(peer, Message(message.block.block.get()), &answer, std::move(message.descriptors));
        return !answer.isBroken();
    }
    const ServedCall refused(peer, fd);
    const status_t status = received == OK ? FAILED_TRANSACTION : received;
    if (received == OK) {
        Parcel unread;  // gives its objects up
        readFrom(peer, std::move(message), &unread);
    }
    peer.complain(message.head, status);
    return answer.sendStatus(status);
}

}  // namespace

ServedCall::ServedCall(Peer& peer, int fd) : mPeer(peer), mFd(fd), mOuter(tInnermost) {
    tInnermost = this;
    ++tDepth;
}

ServedCall::~ServedCall() {
    tInnermost = mOuter;
    --tDepth;
}

int ServedCall::connectionTo(const Peer& peer) {
    for (const ServedCall* call = tInnermost; call != nullptr; call = call->mOuter) {
        if (&call->mPeer == &peer) {
            // What its waiting thread does once it has the answer, nobody here knows: so no further out
            // either.
            return call->mAnswered ? -1 : call->mFd;
        }
    }
    return -1;
}

void ServedCall::noteAnswered() {
    if (tInnermost != nullptr) {
        tInnermost->mAnswered = true;
    }
}

int ServedCall::depth() {
    return tDepth;
}

bool Answer::sendStatus(status_t status) {
    ServedCall::noteAnswered();
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Reply;
    head.status = status;
    encoder.encode(head);
    return send(encoder.gather());
}

SentObjects::~SentObjects() {
    for (const uint64_t number : mExported) {
        mReceiver.transport().exports().release(number, 1, &mReceiver.holds);
    }
}

status_t SentObjects::exportObject(const sp<IBinder>& object, ObjectReference* reference) {
    if (object->localBinder() != nullptr) {
        mExported.reserve(mExported.size() + 1);
    }
    const status_t status = mReceiver.transport().exportTo(mReceiver, object, reference);
    if (status == OK && object->localBinder() != nullptr) {
        mExported.push_back(reference->object);
    }
    return status;
}

void runCall(Peer& peer, Message message, Answer* answer, std::unique_ptr<Descriptors> descriptors) {
    const ServedPeer served(peer);
    const MessageHeader& head = message.header();
    Parcel data;
    ReceivedParcel received = message.received();
    if (head.objectCount > 0) {
        received.objects = peer.shared_from_this();
    }
    received.descriptors = keeperOf(std::move(descriptors));
    data.receive(std::move(received));
    bool replied = false;
    status_t status = DEAD_OBJECT;
    const sp<BHwBinder> object = peer.transport().exports().find(head.object, head.nonce);
    if (object != nullptr) {
        Parcel reply;
        const auto onResults = [&](Parcel& results) {
            if (answer != nullptr && !replied) {
                replied = true;
                sendResults(peer, results, *answer);
            }
        };
        try {
            status = object->transact(head.code, data, &reply, answer == nullptr ? IBinder::FLAG_ONEWAY : 0u,
                                      onResults);
        } catch (const std::bad_alloc&) {
            // What the generated code itself asked for, or a method that should have caught it. Built without
            // exceptions, its frames are passed over and clean nothing up: what they held is lost. Where they
            // have no unwind tables either, the process has ended instead.
            status = NO_MEMORY;
        }
        // A stub that answers with an exception status writes it without asking for the reply to be sent.
        if (status == OK && !replied && !reply.scalars().empty()) {
            onResults(reply);
        } else if (status == OK && !replied && answer != nullptr) {
            status = UNKNOWN_TRANSACTION;
        }
    }
    if (status != OK) {
        peer.complain(head, status);
        if (answer != nullptr && !replied) {
            answer->sendStatus(status);
        }
    }
}

const Peer* peerServed() {
    return tPeerServed;
}

status_t awaitReply(Peer& peer, int fd, bool descriptors, OwnedMessage* reply) {
    bool announced = false;  // for the next call of the peer's
    while (true) {
        OwnedMessage message;
        const char* rule = nullptr;
        const status_t status = receiveOne(peer, fd, descriptors || announced, &message, &rule);
        if (status == DEAD_OBJECT) {
            return status;
        }
        if (rule == nullptr && message.head.kind == MessageKind::Reply) {
            *reply = std::move(message);
            return status;
        }
        if (rule == nullptr && message.head.kind == MessageKind::Descriptors) {
            announced = true;
            WaitedAnswer ready(fd, false);
            if (!ready.sendStatus(status)) {
                return DEAD_OBJECT;
            }
            continue;
        }
        if (rule == nullptr && message.head.kind != MessageKind::Call) {
            rule = "a call is answered with a reply";
        }
        if (rule != nullptr) {
            peer.drop(rule);
            return DEAD_OBJECT;
        }
        if (!serveNested(peer, fd, status, message)) {
            return DEAD_OBJECT;
        }
        announced = false;
    }
}

void readFrom(Peer& peer, OwnedMessage message, Parcel* parcel) {
    ReceivedParcel received = Message(message.block.block.get()).received();
    if (message.head.objectCount > 0) {
        received.objects = peer.shared_from_this();
    }
    received.descriptors = keeperOf(std::move(message.descriptors));
    const size_t size = std::exchange(message.block.capacity, 0);
    received.memory = ParcelMemory(message.block.block.release(), size, [](void* memory, size_t capacity) {
        returnSpareBlock({Block(static_cast<uint8_t*>(memory)), capacity});
    });
    parcel->receive(std::move(received));
}

}  // namespace android::hardware
