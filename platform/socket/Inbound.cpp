#include "platform/socket/Inbound.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <time.h>

#include <cstring>
#include <new>

#include "platform/socket/Encoder.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Pool.h"
#include "platform/socket/Transport.h"
#include "platform/socket/Wait.h"

namespace android::hardware {

namespace {

int64_t monotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

}  // namespace

Inbound::Inbound(Pool& pool, std::shared_ptr<Peer> peer, UniqueFd fd, bool control)
    : mPool(pool),
      mPeer(std::move(peer)),
      mFd(std::move(fd)),
      mControl(control),
      mReader(control ? kControlBlockBytes : kSmallBlockBytes) {
    setWaitLimits(mFd.get(), kLingerMilliseconds);
}

Inbound::~Inbound() {
    if (mBegun) {
        mPeer->removeInbound(mFd.get(), mControl, mWelcomed);
    }
}

const char* Inbound::begin() {
    const char* const rule = mPeer->addInbound(mFd.get(), mControl);
    mBegun = rule == nullptr;
    return rule;
}

void Inbound::welcome() {
    mWelcomed = true;
    if (!mControl) {
        return;
    }
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Welcome;
    encoder.encode(head);
    sendAll(mFd.get(), encoder.gather());  // fits at once, or the peer is gone, which its end will tell
}

bool Inbound::serve() {
    mTurnBegan = 0;
    Wait wait(mPool, *this);
    bool served = false;
    while (flush()) {
        if (!mOut.empty()) {
            mPool.arm(this, EPOLLOUT);
            return true;
        }
        const Step step = serveNext();
        if (step == Step::Ended || mBroken) {
            return false;
        }
        if (step == Step::Served) {
            served = true;
            if (mOut.empty() && isTurnOver()) {
                // More may be buffered than the kernel knows of: room to write wakes us at once.
                mPool.arm(this, mReader.hasMore() ? uint32_t{EPOLLIN | EPOLLOUT} : uint32_t{EPOLLIN});
                return true;
            }
            continue;
        }
        size_t size = 0;
        uint8_t* const space = mReader.space(&size);
        const ssize_t got = wait.receive(space, size, served, mDescriptors.get());
        if (got < 0 && wouldBlock(errno)) {
            mPool.arm(this, EPOLLIN);
            return true;
        }
        if (got <= 0) {
            return false;
        }
        mReader.filled(static_cast<size_t>(got), *mPeer);
        served = false;
    }
    return false;
}

/** Others wait for a thread, and this connection has had one for long enough. */
bool Inbound::isTurnOver() {
    if (mPool.hasIdleThread() && !othersWait()) {
        mTurnBegan = 0;
        return false;
    }
    const int64_t now = monotonicNanoseconds();
    if (mTurnBegan == 0) {
        mTurnBegan = now;
    }
    return now - mTurnBegan >= kTurnNanoseconds;
}

/** Serves the next message of what has been read. */
Inbound::Step Inbound::serveNext() {
    MessageHeader head;
    uint8_t* bytes = nullptr;
    const char* rule = nullptr;
    switch (mReader.next(&head, &bytes, &rule, *mPeer)) {
        case MessageReader::Found::Nothing:
            return Step::MoreIsNeeded;
        case MessageReader::Found::NoMemory:
            mPeer->complain(head, NO_MEMORY);
            mDescriptors.reset();
            if (!mControl) {
                sendStatus(NO_MEMORY);
            }
            return Step::Served;
        case MessageReader::Found::Message:
            rule = serveMessage(head, bytes);
            break;
        case MessageReader::Found::BrokenRule:
            break;
    }
    if (rule == nullptr) {
        return Step::Served;
    }
    mPeer->drop(rule);
    return Step::Ended;
}

/** Null, or the rule that it breaks. */
const char* Inbound::serveMessage(const MessageHeader& head, uint8_t* bytes) {
    if (!mControl) {
        return serveCall(head, bytes);
    }
    if (head.descriptorCount > 0) {
        return "descriptors come with calls that are answered";
    }
    try {
        switch (head.kind) {
            case MessageKind::OneWay:
                runCall(*mPeer, Message(bytes), nullptr, nullptr);
                return nullptr;
            case MessageKind::HandOver: {
                Endpoint receiver;
                if (head.scalarBytes != receiver.size()) {
                    return "a reference is handed over to an endpoint";
                }
                std::memcpy(receiver.data(), Message(bytes).scalars(), receiver.size());
                mPeer->handedOver(head.object, head.nonce, receiver);
                return nullptr;
            }
            case MessageKind::Release:
                mPeer->givenBack({head.object, head.nonce}, head.code);
                return nullptr;
            default:
                return "a connection for one-way messages carries no calls";
        }
    } catch (const std::bad_alloc&) {
        mPeer->complain(head, NO_MEMORY);
        return nullptr;
    }
}

const char* Inbound::serveCall(const MessageHeader& head, uint8_t* bytes) {
    if (head.kind == MessageKind::Descriptors) {
        try {
            mDescriptors = std::make_unique<Descriptors>();
            sendStatus(OK);
        } catch (const std::bad_alloc&) {
            sendStatus(NO_MEMORY);
        }
        return nullptr;
    }
    if (head.kind != MessageKind::Call) {
        return "a connection for calls carries calls";
    }
    std::unique_ptr<Descriptors> descriptors = std::move(mDescriptors);
    mTakesDescriptors = head.descriptorCount > 0;
    if (descriptors != nullptr || mTakesDescriptors) {
        const char* rule = nullptr;
        const status_t status = checkDescriptors(head, descriptors.get(), &rule);
        if (rule != nullptr) {
            return rule;
        }
        if (status != OK) {
            Parcel unread;  // gives its objects up
            ReceivedParcel received = Message(bytes).received();
            received.objects = mPeer;
            unread.receive(std::move(received));
            mPeer->complain(head, status);
            sendStatus(status);
            return nullptr;
        }
        Message(bytes).placeDescriptors(*descriptors);
    }
    if (mReader.hasMore()) {
        runCall(*mPeer, Message(bytes), this,
                std::move(descriptors));  // its caller does not wait for us alone
    } else {
        const ServedCall served(*mPeer, mFd.get());
        runCall(*mPeer, Message(bytes), this, std::move(descriptors));
    }
    return nullptr;
}

// Replies.

bool Inbound::send(Gather gather) {
    // Waits at most kLingerMilliseconds, and only for results that the socket's buffer can not hold.
    const bool wait = mPool.hasIdleThread() && !othersWait();
    while (gather.bytes > 0) {
        const size_t before = gather.bytes;
        const ssize_t sent = sendSome(mFd.get(), &gather, wait ? 0 : MSG_DONTWAIT);
        if (sent < 0 && !wouldBlock(errno) && !isLack(errno)) {
            mBroken = !areRefused(errno);
            return false;
        }
        if (sent < 0 && gather.descriptorCount > 0) {
            // They are the method's, and closed when it returns.
            const bool all = sendAll(mFd.get(), gather);
            mBroken = !all && !areRefused(errno);
            return all;
        }
        if (sent < 0 || gather.bytes == before || (wait && gather.bytes > 0)) {
            return queueRest(gather);
        }
    }
    return true;
}

/** Keeps what the peer does not take at once; where there is no memory for that, waits for the peer. */
bool Inbound::queueRest(const Gather& rest) {
    try {
        mOut.reserve(rest.bytes);
    } catch (const std::bad_alloc&) {
        mBroken = !sendAll(mFd.get(), rest);
        return !mBroken;
    }
    for (size_t i = 0; i < rest.count; ++i) {
        const auto* bytes = static_cast<const uint8_t*>(rest.vectors[i].iov_base);
        mOut.insert(mOut.end(), bytes, bytes + rest.vectors[i].iov_len);
    }
    mOutStart = 0;
    return true;
}

/** Sends what is kept of a reply. False when the connection has ended. */
bool Inbound::flush() {
    if (mOut.empty()) {
        return true;
    }
    iovec vector{mOut.data() + mOutStart, mOut.size() - mOutStart};
    Gather gather{&vector, 1, vector.iov_len};
    if (sendSome(mFd.get(), &gather, MSG_DONTWAIT) < 0) {
        return wouldBlock(errno) || isLack(errno);
    }
    mOutStart = mOut.size() - gather.bytes;
    if (gather.bytes == 0) {
        std::vector<uint8_t>().swap(mOut);
    }
    return true;
}

}  // namespace android::hardware
