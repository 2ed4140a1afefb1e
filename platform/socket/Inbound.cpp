#define LOG_TAG "hidl.transport"

#include "platform/socket/Inbound.h"

#include <errno.h>
#include <log/log.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "platform/hidl/StatusText.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Transport.h"

namespace android::hardware {

namespace {

/** Exports the objects of a reply; those of one that can not be sent stay with the peer until it ends. */
class ReplyExporter final : public ObjectExporter {
  public:
    ReplyExporter(Transport& transport, Peer& peer) : mTransport(transport), mPeer(peer) {}

    status_t exportObject(const sp<IBinder>& object, ObjectReference* reference) override {
        return mTransport.exportTo(mPeer, object, reference);
    }

  private:
    Transport& mTransport;
    Peer& mPeer;
};

/**
 * Where a thread waits for the next message of a stream of one-way messages: when that comes, it does not
 * push aside the thread that sent it, which is often about to send to other clients, and finds several
 * messages at once. Nobody waits for an answer to them; where a processor is free, it runs at once all the
 * same. The messages themselves are served as always: what their handlers start inherits nothing.
 */
class StreamWait {
  public:
    /** Leaves a thread alone that runs under another policy than the ordinary one. */
    explicit StreamWait(bool inStream)
        : mSet(inStream && sched_getscheduler(0) == SCHED_OTHER && setPolicy(SCHED_BATCH)) {}
    ~StreamWait() {
        if (mSet) {
            setPolicy(SCHED_OTHER);
        }
    }
    StreamWait(const StreamWait&) = delete;
    StreamWait& operator=(const StreamWait&) = delete;

  private:
    static bool setPolicy(int policy) {
        const sched_param param{};
        return sched_setscheduler(0, policy, &param) == 0;
    }

    const bool mSet;
};

}  // namespace

Inbound::Inbound(Transport& transport, std::shared_ptr<Peer> peer, UniqueFd fd, bool control)
    : mTransport(transport),
      mPeer(std::move(peer)),
      mFd(std::move(fd)),
      mControl(control),
      mBlockBytes(control ? kControlBlockBytes : kSmallBlockBytes) {
    setWaitLimits(mFd.get(), kLingerMilliseconds);
}

Inbound::~Inbound() {
    mPeer->removeInbound(mFd.get(), mControl);
}

bool Inbound::serve() {
    mTurns.load(std::memory_order_acquire);
    bool justServed = false;
    uint64_t served = 0;
    int waits = 0;
    bool inStream = false;
    while (!mBroken) {
        if (!flush()) {
            break;
        }
        if (!mOut.empty()) {
            mTransport.armInbound(this, EPOLLOUT);
            return true;
        }
        const uint64_t before = served;
        bool turnOver = false;
        const char* rule = serveBuffered(&served, &turnOver);
        if (rule != nullptr) {
            mPeer->drop(rule);
            break;
        }
        if (mBroken || !mOut.empty()) {
            continue;
        }
        if (turnOver) {
            // More may be buffered than the kernel knows of: room to write wakes us at once.
            mTransport.armInbound(this, EPOLLIN | EPOLLOUT);
            return true;
        }
        justServed = served > before;
        const bool wait = justServed && mTransport.mayLinger();
        if (wait && !inStream && ++waits == kWaitsUntilStream) {
            inStream = true;
            mTransport.unwatchInbound(this);
        }
        const StreamWait policy(wait && inStream && mControl);
        const Read read = readMore(wait);
        if (read == Read::End) {
            break;
        }
        if (read == Read::Nothing) {
            mTransport.armInbound(this, EPOLLIN);
            return true;
        }
    }
    return false;
}

Inbound::Read Inbound::readMore(bool wait) {
    if (mCapacity == 0) {
        mBlock = allocateBlock(mBlockBytes);
        mCapacity = mBlock == nullptr ? 0 : mBlockBytes;
    }
    if (mHave == mCapacity) {
        // A message that has announced its length: the head is checked.
        MessageHeader head;
        if (mCapacity != 0) {
            std::memcpy(&head, mBlock.get(), sizeof(head));
        }
        Block larger = mCapacity == 0 ? nullptr : allocateBlock(head.totalBytes);
        if (larger == nullptr) {
            mPeer->drop("a message is dropped when there is no memory for it");
            return Read::End;
        }
        std::memcpy(larger.get(), mBlock.get(), mHave);
        mBlock = std::move(larger);
        mCapacity = head.totalBytes;
    }
    const ssize_t got =
            receiveSome(mFd.get(), mBlock.get() + mHave, mCapacity - mHave, wait ? 0 : MSG_DONTWAIT);
    if (got > 0) {
        mHave += static_cast<size_t>(got);
        return Read::Some;
    }
    return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? Read::Nothing : Read::End;
}

/**
 * Serves the whole messages among what has been read, but no more than kMaxServedInARow while no thread is
 * free for others: then their turn has come, and a message may be left. Null, or the rule that one breaks.
 */
const char* Inbound::serveBuffered(uint64_t* served, bool* turnOver) {
    size_t start = 0;
    const char* rule = nullptr;
    while (rule == nullptr && !mBroken && mOut.empty() && mHave - start >= sizeof(MessageHeader)) {
        uint8_t* bytes = mBlock.get() + start;
        MessageHeader head;
        std::memcpy(&head, bytes, sizeof(head));
        rule = Message::checkHeader(head);
        if (rule != nullptr || mHave - start < head.totalBytes) {
            break;
        }
        if (*served >= kMaxServedInARow && !mTransport.mayLinger()) {
            *turnOver = true;
            break;
        }
        rule = Message::check(bytes);
        if (rule == nullptr) {
            rule = serveMessage(head, bytes);
        }
        start += head.totalBytes;
        ++*served;
    }
    if (start > 0) {
        mHave -= start;
        if (mHave > 0) {
            std::memmove(mBlock.get(), mBlock.get() + start, mHave);
        }
        if (mCapacity > mBlockBytes && mHave <= mBlockBytes) {
            Block small = allocateBlock(mBlockBytes);
            if (small != nullptr) {
                std::memcpy(small.get(), mBlock.get(), mHave);
                mBlock = std::move(small);
                mCapacity = mBlockBytes;
            }
        }
    }
    return rule;
}

const char* Inbound::serveMessage(const MessageHeader& head, uint8_t* bytes) {
    if (!mControl) {
        if (head.kind != MessageKind::Call) {
            return "a connection for calls carries calls";
        }
        serveCall(head, bytes);
        return nullptr;
    }
    switch (head.kind) {
        case MessageKind::OneWay:
            serveOneWay(head, bytes);
            return nullptr;
        case MessageKind::Acquire:
            // False when its last holder let go meanwhile: calls on it will say so.
            mTransport.exports().hold(head.object, head.nonce, &mPeer->holds);
            return nullptr;
        case MessageKind::Release:
            return mPeer->release(head.object, head.code);
        default:
            return "a connection for one-way messages carries no calls";
    }
}

void Inbound::serveCall(const MessageHeader& head, uint8_t* bytes) {
    mReplied = false;
    const sp<BHwBinder> object = mTransport.exports().find(head.object, head.nonce);
    status_t status = DEAD_OBJECT;
    if (object != nullptr) {
        Parcel data;
        Parcel reply;
        data.receive(Message(bytes), &mPeer->resolver);
        try {
            status = object->transact(head.code, data, &reply, 0,
                                      [this](Parcel& results) { sendReply(results); });
        } catch (const std::bad_alloc&) {
            status = NO_MEMORY;
        }
        // A stub that answers with an exception status writes it without asking for the reply to be sent.
        if (status == OK && !mReplied) {
            if (reply.scalars().empty()) {
                status = UNKNOWN_TRANSACTION;
            } else {
                sendReply(reply);
            }
        }
    }
    if (status != OK) {
        mPeer->complain(head, status);
        if (!mReplied) {
            sendStatus(status);
        }
    }
}

void Inbound::serveOneWay(const MessageHeader& head, uint8_t* bytes) {
    const sp<BHwBinder> object = mTransport.exports().find(head.object, head.nonce);
    status_t status = DEAD_OBJECT;
    if (object != nullptr) {
        Parcel data;
        Parcel reply;
        data.receive(Message(bytes), &mPeer->resolver);
        try {
            status = object->transact(head.code, data, &reply, IBinder::FLAG_ONEWAY, [](Parcel&) {});
        } catch (const std::bad_alloc&) {
            status = NO_MEMORY;
        }
    }
    if (status != OK) {
        mPeer->complain(head, status);
    }
}

// Replies.

void Inbound::sendReply(const Parcel& reply) {
    ReplyExporter exporter(mTransport, *mPeer);
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Reply;
    const status_t status = encoder.encode(head, reply, &exporter);
    if (status != OK) {
        ALOGW("no reply to pid %d uid %u: %s", mPeer->credentials.pid, mPeer->credentials.uid,
              status == FAILED_TRANSACTION ? "the results exceed one message" : statusText(status).c_str());
        sendStatus(status);
        return;
    }
    send(encoder.gather());
}

void Inbound::sendStatus(status_t status) {
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Reply;
    head.status = status;
    encoder.encode(head);
    send(encoder.gather());
}

void Inbound::send(Gather gather) {
    mReplied = true;
    // Waits at most kLingerMilliseconds, and only for results that the socket's buffer can not hold.
    bool wait = mTransport.mayLinger();
    while (gather.bytes > 0) {
        const size_t before = gather.bytes;
        const ssize_t sent = sendSome(mFd.get(), &gather, wait ? 0 : MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
            mBroken = true;
            return;
        }
        if (sent < 0 || gather.bytes == before || (wait && gather.bytes > 0)) {
            mBroken = !queueReply(gather);
            return;
        }
    }
}

bool Inbound::queueReply(Gather rest) {
    try {
        mOut.reserve(rest.bytes);
    } catch (const std::bad_alloc&) {
        return false;
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
        return errno == EAGAIN || errno == EWOULDBLOCK;
    }
    mOutStart = mOut.size() - gather.bytes;
    if (gather.bytes == 0) {
        std::vector<uint8_t>().swap(mOut);
    }
    return true;
}

}  // namespace android::hardware
