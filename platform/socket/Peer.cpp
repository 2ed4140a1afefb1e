#define LOG_TAG "hidl.transport"

#include "platform/socket/Peer.h"

#include <errno.h>
#include <log/log.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <thread>

#include "platform/hidl/StatusText.h"
#include "platform/socket/Encoder.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Transport.h"

namespace android::hardware {

namespace {

/** Exports objects for one message, and takes them back if it is not sent. */
class ExportScope final : public ObjectExporter {
  public:
    ExportScope(Transport& transport, Peer& peer) : mTransport(transport), mPeer(peer) {}
    ~ExportScope() {
        for (const uint64_t object : mExported) {
            mTransport.exports().release(object, 1, &mPeer.holds);
        }
    }

    status_t exportObject(const sp<IBinder>& object, ObjectReference* reference) override {
        const status_t status = mTransport.exportTo(mPeer, object, reference);
        if (status == OK && reference->endpoint == mTransport.endpoint()) {
            mExported.push_back(reference->object);
        }
        return status;
    }

    void sent() { mExported.clear(); }

  private:
    Transport& mTransport;
    Peer& mPeer;
    std::vector<uint64_t> mExported;
};

/** The first message on a connection: who we are. It always fits in an empty socket. */
bool sendHello(int fd, MessageKind kind, const Endpoint& self) {
    MessageHeader head{};
    head.kind = kind;
    std::memcpy(&head.object, self.data(), sizeof(head.object));
    std::memcpy(&head.nonce, self.data() + sizeof(head.object), sizeof(head.nonce));
    Encoder encoder;
    encoder.encode(head);
    Gather gather = encoder.gather();
    return sendSome(fd, &gather, MSG_DONTWAIT) > 0 && gather.bytes == 0;
}

bool endsWithin(pid_t pid, int milliseconds) {
    const UniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (!process.ok()) {
        return errno == ESRCH;
    }
    pollfd end{process.get(), POLLIN, 0};
    return poll(&end, 1, milliseconds) > 0;
}

}  // namespace

Peer::~Peer() = default;

status_t Peer::Resolver::resolve(const ObjectReference& reference, sp<IBinder>* object) {
    return mPeer.mTransport.resolveFrom(mPeer, reference, object);
}

// Calling its objects.

/** Counts a call in progress, until endCall(), and takes a connection for it. */
status_t Peer::beginCall(CallConnection* connection) {
    {
        const std::lock_guard<std::mutex> lock(mLock);
        ++mCalls;
    }
    const status_t status = borrow(connection);
    if (status != OK) {
        endCall();
    }
    return status;
}

void Peer::endCall() {
    std::unordered_map<uint64_t, uint64_t> releases;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        if (--mCalls > 0 || mReleases.empty()) {
            return;
        }
        releases.swap(mReleases);
    }
    for (const auto& [object, count] : releases) {
        // Checked against what it holds when it came.
        mTransport.exports().release(object, count, &holds);
    }
}

const char* Peer::release(uint64_t object, uint64_t count) {
    constexpr const char* kRule = "a peer releases what it holds";
    {
        const std::lock_guard<std::mutex> lock(mLock);
        if (mCalls > 0) {
            const auto waiting = mReleases.find(object);
            const uint64_t all = count + (waiting == mReleases.end() ? 0 : waiting->second);
            if (all < count || mTransport.exports().heldBy(object, holds) < all) {
                return kRule;
            }
            mReleases[object] = all;
            return nullptr;
        }
    }
    return mTransport.exports().release(object, count, &holds) ? nullptr : kRule;
}

status_t Peer::borrow(CallConnection* connection) {
    {
        std::unique_lock<std::mutex> lock(mLock);
        mConnectionFree.wait(
                lock, [this] { return mDead || !mIdle.empty() || mCallConnections < kMaxCallConnections; });
        if (mDead) {
            return DEAD_OBJECT;
        }
        if (!mIdle.empty()) {
            // The last one used: its server thread may still be waiting for it.
            *connection = std::move(mIdle.back());
            mIdle.pop_back();
            return OK;
        }
        ++mCallConnections;
    }
    Credentials who;
    UniqueFd fd;
    for (int waited = 0;; ++waited) {
        fd = connectTo(mEndpoint, &who);
        if (fd.ok() || errno != EAGAIN || waited >= kConnectPatienceMilliseconds) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const int error = errno;
    if (fd.ok() && mTransport.admit(*this, who) &&
        sendHello(fd.get(), MessageKind::HelloCall, mTransport.endpoint())) {
        *connection = {std::move(fd), false};
        return OK;
    }
    discard({});
    if (!fd.ok() && (error == ECONNREFUSED || error == EPERM)) {
        markGone();
        return DEAD_OBJECT;
    }
    ALOGW("no connection to pid %d: %s", credentials.pid, strerror(error));
    return FAILED_TRANSACTION;
}

void Peer::giveBack(CallConnection connection) {
    const std::lock_guard<std::mutex> lock(mLock);
    if (mDead) {
        --mCallConnections;
        return;
    }
    mIdle.push_back(std::move(connection));
    mConnectionFree.notify_one();
}

void Peer::discard(CallConnection) {
    const std::lock_guard<std::mutex> lock(mLock);
    --mCallConnections;
    mConnectionFree.notify_one();
}

/** What a connection that broke during a call tells about the peer. */
status_t Peer::afterBreak(CallConnection connection) {
    bool gone = connection.proven;  // a peer that serves us ends a connection only with all of them
    discard(std::move(connection));
    if (!gone) {
        Credentials who;
        gone = (!connectTo(mEndpoint, &who).ok() && errno == ECONNREFUSED) ||
               endsWithin(credentials.pid, kExitPatienceMilliseconds);
    }
    if (gone) {
        markGone();
        return DEAD_OBJECT;
    }
    return FAILED_TRANSACTION;
}

status_t Peer::receiveReply(int fd, Message* message) {
    SizedBlock space = takeSpareBlock();
    Block& block = space.block;
    if (block == nullptr) {
        return NO_MEMORY;
    }
    size_t have = 0;
    while (have < sizeof(MessageHeader)) {
        const ssize_t got = receiveSome(fd, block.get() + have, space.capacity - have, 0);
        if (got <= 0) {
            return DEAD_OBJECT;
        }
        have += static_cast<size_t>(got);
    }
    MessageHeader head;
    std::memcpy(&head, block.get(), sizeof(head));
    const char* rule = Message::checkHeader(head);
    if (rule == nullptr && (head.kind != MessageKind::Reply || have > head.totalBytes)) {
        rule = "a call is answered with one reply";
    }
    if (rule == nullptr && head.totalBytes > space.capacity) {
        Block whole = allocateBlock(head.totalBytes);
        if (whole == nullptr) {
            return NO_MEMORY;
        }
        std::memcpy(whole.get(), block.get(), have);
        space = {std::move(whole), head.totalBytes};
    }
    while (rule == nullptr && have < head.totalBytes) {
        const ssize_t got = receiveSome(fd, block.get() + have, head.totalBytes - have, MSG_WAITALL);
        if (got <= 0) {
            return DEAD_OBJECT;
        }
        have += static_cast<size_t>(got);
    }
    if (rule == nullptr) {
        rule = Message::check(block.get());
    }
    if (rule != nullptr) {
        drop(rule);
        return DEAD_OBJECT;
    }
    *message = Message(std::move(space));
    return OK;
}

status_t Peer::call(MessageHeader head, const Parcel& data, Parcel* reply) {
    if (!data.objects().empty()) {
        const status_t status = ensureControl();  // its death ends what it holds
        if (status != OK) {
            return status;
        }
    }
    CallConnection connection;
    status_t status = beginCall(&connection);
    if (status != OK) {
        return status;
    }
    Message message;
    status = exchange(head, data, std::move(connection), &message);
    if (status == OK) {
        status = message.header().status;
    }
    if (status == OK) {
        reply->receive(std::move(message), &mReplyResolver, true);  // whose end ends the call
    } else {
        endCall();
    }
    return status;
}

/** Sends a call and receives its answer, on a connection that is given back or, if it breaks, closed. */
status_t Peer::exchange(MessageHeader head, const Parcel& data, CallConnection connection, Message* message) {
    status_t status;
    {
        ExportScope objects(mTransport, *this);
        Encoder encoder;
        head.kind = MessageKind::Call;
        status = encoder.encode(head, data, &objects);
        if (status != OK) {
            giveBack(std::move(connection));
            return status;
        }
        Gather gather = encoder.gather();
        while (gather.bytes > 0) {
            if (sendSome(connection.fd.get(), &gather, 0) < 0) {
                return afterBreak(std::move(connection));
            }
        }
        objects.sent();
    }
    status = receiveReply(connection.fd.get(), message);
    if (status == DEAD_OBJECT) {
        return afterBreak(std::move(connection));
    }
    if (status != OK) {
        discard(std::move(connection));  // the rest of the reply is still in it
        return status;
    }
    connection.proven = true;
    giveBack(std::move(connection));
    return OK;
}

status_t Peer::post(MessageHeader head, const Parcel& data) {
    status_t status = ensureControl();
    if (status != OK) {
        return status;
    }
    ExportScope objects(mTransport, *this);
    Encoder encoder;
    head.kind = MessageKind::OneWay;
    status = encoder.encode(head, data, &objects);
    if (status == OK) {
        status = mControl.send(encoder.gather());
    }
    if (status == OK) {
        objects.sent();
    }
    return status;
}

status_t Peer::reach() {
    CallConnection connection;
    const status_t status = borrow(&connection);
    if (status == OK) {
        giveBack(std::move(connection));
    }
    return status;
}

status_t Peer::ensureControl() {
    if (mControl.isOpen()) {
        return OK;
    }
    const std::lock_guard<std::mutex> opening(mControlOpening);
    {
        const std::lock_guard<std::mutex> lock(mLock);
        if (mDead) {
            return DEAD_OBJECT;
        }
    }
    if (mControl.isOpen()) {
        return OK;
    }
    if (mControl.isBroken()) {
        return DEAD_OBJECT;
    }
    Credentials who;
    UniqueFd fd = connectTo(mEndpoint, &who);
    if (!fd.ok()) {
        if (errno == EAGAIN || errno == EMFILE || errno == ENFILE) {
            ALOGW("no connection to pid %d: %s", credentials.pid, strerror(errno));
            return FAILED_TRANSACTION;
        }
        markGone();
        return DEAD_OBJECT;
    }
    if (!mTransport.admit(*this, who) ||
        !sendHello(fd.get(), MessageKind::HelloControl, mTransport.endpoint()) ||
        !mTransport.watchControl(shared_from_this(), std::move(fd))) {
        return FAILED_TRANSACTION;
    }
    return OK;
}

// Proxies.

sp<IBinder> Peer::proxyFor(const ObjectReference& reference, uint64_t received) {
    const std::lock_guard<std::mutex> lock(mLock);
    Known& known = mProxies[reference.object];
    sp<Proxy> proxy = known.proxy.promote();
    if (proxy == nullptr) {
        proxy = new Proxy(shared_from_this(), reference.object, reference.nonce);
        // A proxy that is being destroyed at this moment releases what it has counted itself.
        known = {proxy.get(), proxy, known.received, {}};
    }
    known.received += received;
    return proxy;
}

status_t Peer::proxyOf(const ObjectReference& reference, bool sentByPeer, sp<IBinder>* proxy) {
    const status_t status = ensureControl();
    if (status != OK) {
        return status;
    }
    if (!sentByPeer) {
        MessageHeader head{};
        head.kind = MessageKind::Acquire;
        head.object = reference.object;
        head.nonce = reference.nonce;
        Encoder encoder;
        encoder.encode(head);
        const status_t told = mControl.send(encoder.gather());
        if (told != OK) {
            return told;
        }
    }
    *proxy = proxyFor(reference, 1);
    return OK;
}

sp<IBinder> Peer::proxyOfPinned(const ObjectReference& reference) {
    return proxyFor(reference, 0);
}

void Peer::forgetProxy(Proxy* proxy) {
    uint64_t received = 0;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        const auto known = mProxies.find(proxy->object());
        // A successor has taken over what its predecessor counted.
        if (known == mProxies.end() || known->second.address != proxy) {
            return;
        }
        received = known->second.received;
        mProxies.erase(known);
    }
    // The code of a release is 32 bits wide: one message carries at most that many.
    while (received > 0) {
        const uint64_t count = std::min<uint64_t>(received, UINT32_MAX);
        received -= count;
        MessageHeader head{};
        head.kind = MessageKind::Release;
        head.object = proxy->object();
        head.code = static_cast<uint32_t>(count);
        Encoder encoder;
        encoder.encode(head);
        if (mControl.send(encoder.gather()) == FAILED_TRANSACTION) {
            drop("a peer reads its one-way messages: there is no room for the release of an object");
            return;
        }
    }
}

status_t Peer::link(Proxy* proxy, const sp<IBinder::DeathRecipient>& recipient) {
    status_t status = ensureControl();
    if (status != OK && status != DEAD_OBJECT) {
        return status;
    }
    {
        const std::lock_guard<std::mutex> lock(mLock);
        if (mBuried) {
            status = DEAD_OBJECT;
        }
        mProxies[proxy->object()].links.push_back(recipient);
    }
    if (status == DEAD_OBJECT) {
        mTransport.buryLater(shared_from_this());  // the caller may hold a lock that its recipient takes
    }
    return OK;
}

status_t Peer::unlink(Proxy* proxy, const sp<IBinder::DeathRecipient>& recipient) {
    const std::lock_guard<std::mutex> lock(mLock);
    auto& links = mProxies[proxy->object()].links;
    const auto link = std::find(links.rbegin(), links.rend(), recipient);
    if (link == links.rend()) {
        return NAME_NOT_FOUND;
    }
    links.erase(std::next(link).base());
    return OK;
}

// Its side.

const char* Peer::addInbound(int fd, bool control) {
    const std::lock_guard<std::mutex> lock(mLock);
    if (mDead) {
        return "a peer that has ended does not come back";
    }
    if (control && mInboundControl) {
        return "a peer has one connection for one-way messages";
    }
    if (!control && mInbound.size() >= kMaxCallConnections + (mInboundControl ? 1 : 0)) {
        return "a peer has a limited number of connections";
    }
    mInboundControl |= control;
    mInbound.insert(fd);
    return nullptr;
}

void Peer::removeInbound(int fd, bool control) {
    bool ended = control;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mInbound.erase(fd);
        ended = ended || (mInbound.empty() && mCallConnections == 0 && mProxies.empty());
    }
    // With its one-way messages all is said; and without any connection nothing would tell us of its end.
    if (ended && (control || !mControl.isOpen())) {
        end();
    }
}

void Peer::complain(const MessageHeader& head, status_t status) {
    constexpr uint32_t kAlwaysLogged = 16;
    const uint32_t count = ++mComplaints;
    if (count > kAlwaysLogged && (count & (count - 1)) != 0) {
        return;
    }
    ALOGW("refused method %u on object %llu for pid %d uid %u: %s (refusal %u)", head.code,
          static_cast<unsigned long long>(head.object), credentials.pid, credentials.uid,
          statusText(status).c_str(), count);
}

// Its end.

void Peer::markGone() {
    bool more;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mDead = true;
        mCallConnections -= mIdle.size();
        mIdle.clear();
        more = mInboundControl && !mEnded;
        mConnectionFree.notify_all();
    }
    mControl.shutdown();
    if (!more) {
        end();
    }
}

void Peer::end() {
    {
        const std::lock_guard<std::mutex> lock(mLock);
        if (mEnded) {
            return;
        }
        mEnded = true;
        for (const int fd : mInbound) {
            ::shutdown(fd, SHUT_RDWR);
        }
    }
    markGone();
    mTransport.exports().releaseAll(&holds);
    mTransport.forget(*this);
}

void Peer::drop(const char* rule) {
    ALOGW("dropped pid %d uid %u: it broke the rule that %s", credentials.pid, credentials.uid, rule);
    end();
}

void Peer::bury() {
    markGone();
    std::vector<std::pair<sp<IBinder::DeathRecipient>, wp<IBinder>>> links;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mBuried = true;
        for (auto& [object, known] : mProxies) {
            for (const auto& link : known.links) {
                links.emplace_back(link.promote(), known.proxy);
            }
            known.links.clear();
        }
    }
    for (const auto& [recipient, proxy] : links) {
        if (recipient != nullptr) {
            recipient->binderDied(proxy);
        }
    }
}

// Proxy.

status_t Proxy::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags, TransactCallback) {
    MessageHeader head{};
    head.code = code;
    head.object = mObject;
    head.nonce = mNonce;
    return (flags & FLAG_ONEWAY) != 0 ? mPeer->post(head, data) : mPeer->call(head, data, reply);
}

}  // namespace android::hardware
