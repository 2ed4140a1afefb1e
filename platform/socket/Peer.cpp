#define LOG_TAG "hidl.transport"

#include "platform/socket/Peer.h"

#include <log/log.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>
#include <thread>

#include "platform/binding/StatusText.h"
#include "platform/socket/Call.h"
#include "platform/socket/Encoder.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Transport.h"

namespace android::hardware {

namespace {

bool endsWithin(pid_t pid, int milliseconds) {
    const UniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (!process.ok()) {
        return errno == ESRCH;
    }
    pollfd end{process.get(), POLLIN, 0};
    return poll(&end, 1, milliseconds) > 0;
}

/** What came of an attempt to connect: nobody is there, or we lack what it takes. */
status_t failureOf(int error) {
    return error == ECONNREFUSED || error == EPERM ? DEAD_OBJECT : FAILED_TRANSACTION;
}

}  // namespace

Peer::~Peer() {
    if (mGeneration != processGeneration()) {
        return;  // a forked child's copy: the parent's locks may be taken for ever
    }
    mTransport.exports().releaseAll(&holds);
    if (mKeptProcess != nullptr) {
        mKeptProcess->removeEndpoint();
    }
}

const char* Peer::admit(const Credentials& credentials) {
    std::shared_ptr<Process> process = mTransport.processes().get(credentials);
    const CheckedLock lock(mLock);
    if (mKeptProcess != nullptr) {
        const Credentials& known = mKeptProcess->credentials();
        return known.pid == credentials.pid && known.uid == credentials.uid
                       ? nullptr
                       : "an endpoint belongs to one process";
    }
    if (!process->addEndpoint()) {
        return "a process has one endpoint, or a few";
    }
    mKeptProcess = std::move(process);
    mProcess.store(mKeptProcess.get(), std::memory_order_release);
    return nullptr;
}

Credentials Peer::credentials() const {
    const Process* known = process();
    return known == nullptr ? Credentials{} : known->credentials();
}

// Calling its objects.

/** A new connection before its hello; none, with a status and errno, when there can be none. */
UniqueFd Peer::connect(status_t* status) {
    *status = mTransport.listenOnce();
    if (*status != OK) {
        errno = -*status;
        return UniqueFd();
    }
    Credentials who;
    UniqueFd fd = connectTo(mEndpoint, &who);
    if (!fd.ok()) {
        const int error = errno;
        *status = failureOf(error);
        if (*status != DEAD_OBJECT && error != EAGAIN && mTransport.complaints().count(credentials()) != 0) {
            ALOGW("no connection to pid %d: %s", credentials().pid, strerror(error));
        }
        errno = error;
        return fd;
    }
    if (const char* rule = admit(who); rule != nullptr) {
        if (mTransport.complaints().count(who) != 0) {
            ALOGW("no connection to pid %d uid %u: it breaks the rule that %s", who.pid, who.uid, rule);
        }
        *status = FAILED_TRANSACTION;
        errno = EPERM;
        return UniqueFd();
    }
    *status = OK;
    return fd;
}

/** The same for calls, with the hello out. */
UniqueFd Peer::connectForCalls(status_t* status) {
    UniqueFd fd = connect(status);
    if (fd.ok() && !mTransport.sendHello(fd.get(), MessageKind::HelloCall)) {
        *status = FAILED_TRANSACTION;
        errno = EPIPE;
        return UniqueFd();
    }
    return fd;
}

/** What a connection that broke during a call tells about the peer. */
status_t Peer::afterBreak(bool proven) {
    bool gone = proven ||
                mState != State::Alive;  // a peer that serves us ends a connection only with all of them
    if (!gone) {
        Credentials who;
        gone = (!connectTo(mEndpoint, &who).ok() && errno == ECONNREFUSED) ||
               endsWithin(credentials().pid, kExitPatienceMilliseconds);
    }
    if (!gone) {
        return FAILED_TRANSACTION;
    }
    noteGone();
    return DEAD_OBJECT;
}

status_t Peer::call(MessageHeader head, const Parcel& data, Parcel* reply) {
    if (!data.objects().empty()) {
        const status_t status = ensureControl();  // its death ends what it holds
        if (status != OK) {
            return status;
        }
    }
    // A thread of the peer that waits for this one serves its calls.
    CallConnections::Lease lease;
    int fd = ServedCall::connectionTo(*this);
    const bool isNested = fd >= 0;
    if (!isNested) {
        const status_t status = borrow(&lease);
        if (status != OK) {
            return status;
        }
        fd = lease.fd();
    }
    const bool descriptors = data.descriptorCount() > 0;
    {
        SentObjects objects(*this);
        Encoder encoder;
        head.kind = MessageKind::Call;
        status_t status = encoder.encode(head, data, &objects);
        if (status == OK && descriptors) {
            status = announceDescriptors(fd);
            if (status == DEAD_OBJECT) {
                return afterBreak(isNested || lease.isProven());
            }
        }
        if (status != OK) {
            if (!isNested) {
                lease.giveBack(lease.isProven());
            }
            return status;
        }
        if (!sendAll(fd, encoder.gather())) {
            if (areRefused(errno)) {
                return FAILED_TRANSACTION;
            }
            return afterBreak(isNested || lease.isProven());
        }
        objects.sent();
    }
    OwnedMessage message;
    const status_t status = awaitReply(*this, fd, descriptors, &message);
    if (status == DEAD_OBJECT) {
        return afterBreak(isNested || lease.isProven());
    }
    if (!isNested) {
        lease.giveBack(true);
    }
    if (status != OK || message.head.status != OK) {
        return status != OK ? status : message.head.status;
    }
    readFrom(*this, std::move(message), reply);
    return OK;
}

/** Has the peer look for descriptors with the next call on a connection. DEAD_OBJECT when that broke. */
status_t Peer::announceDescriptors(int fd) {
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Descriptors;
    encoder.encode(head);
    if (!sendAll(fd, encoder.gather())) {
        return DEAD_OBJECT;
    }
    OwnedMessage ready;
    const status_t status = awaitReply(*this, fd, false, &ready);
    return status != OK ? status : ready.head.status;
}

status_t Peer::borrow(CallConnections::Lease* lease) {
    const status_t status = mConnections.borrow(
            [](void* peer, status_t* why) {
                auto* const self = static_cast<Peer*>(peer);
                UniqueFd fd = self->connectForCalls(why);
                for (int waited = 0; !fd.ok() && errno == EAGAIN && waited < kConnectPatienceMilliseconds;
                     ++waited) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    fd = self->connectForCalls(why);
                }
                return fd;
            },
            this, lease);
    if (status == DEAD_OBJECT) {
        noteGone();
    }
    return status;
}

status_t Peer::post(MessageHeader head, const Parcel& data) {
    status_t status = ensureControl();
    if (status != OK) {
        return status;
    }
    if (!data.objects().empty() && !mControl.hasRoomFor(data.transactionBytes())) {
        return FAILED_TRANSACTION;  // before anybody is told of references that would not arrive
    }
    if (data.descriptorCount() > 0) {
        ALOGE("a native handle can not be sent one-way over sockets");
        return INVALID_OPERATION;
    }
    SentObjects objects(*this);
    Encoder encoder;
    head.kind = MessageKind::OneWay;
    status = encoder.encode(head, data, &objects, kMaxOneWayBytes);
    if (status == OK) {
        status = mControl.send(encoder.gather());
    }
    if (status == OK) {
        objects.sent();
    }
    return status;
}

status_t Peer::reach() {
    CallConnections::Lease lease;
    const status_t status = borrow(&lease);
    if (status == OK) {
        lease.giveBack(lease.isProven());
    }
    return status;
}

status_t Peer::ensureControl() {
    switch (mControl.state()) {
        case OneWayChannel::State::Greeting:
        case OneWayChannel::State::Open:
            return OK;
        case OneWayChannel::State::Ended:
            return DEAD_OBJECT;
        case OneWayChannel::State::Closed:
            break;
    }
    status_t status = OK;
    {
        const std::lock_guard<std::mutex> opening(mControlOpening);
        if (mControl.state() != OneWayChannel::State::Closed) {
            return mControl.state() == OneWayChannel::State::Ended ? DEAD_OBJECT : OK;
        }
        const bool wanted = mWantsControl.exchange(true);
        UniqueFd fd = connect(&status);
        if (fd.ok()) {
            status = mTransport.watchControl(shared_from_this(), std::move(fd));
        }
        mWantsControl = wanted || status == OK;
    }
    if (status == DEAD_OBJECT) {
        noteGone();
    }
    return status;
}

void Peer::reopenControl() {
    if (mWantsControl && mControl.state() == OneWayChannel::State::Closed) {
        if (ensureControl() != OK && mState == State::Alive) {
            mTransport.retryLater();
        }
    }
    payOwed();
}

status_t Peer::watchDeath() {
    const status_t status = ensureControl();
    return status == DEAD_OBJECT && mState == State::Draining ? OK : status;
}

// References to its objects.

status_t Peer::proxyOf(const ObjectReference& reference, uint64_t counted, sp<IBinder>* proxy) {
    status_t status;
    try {
        // Without the connection for one-way messages, what it counts could not be given back.
        status = counted == 0 ? OK : ensureControl();
        if (status == OK) {
            *proxy = mProxies.get(shared_from_this(), {reference.object, reference.nonce}, counted);
            return *proxy == nullptr ? DEAD_OBJECT : OK;
        }
    } catch (const std::bad_alloc&) {
        status = NO_MEMORY;
    }
    giveBack({reference.object, reference.nonce}, counted);
    return status;
}

void Peer::forgetProxy(RemoteObject* proxy) {
    mProxies.forget(proxy);
    payOwed();
}

void Peer::giveBack(const ObjectName& object, uint64_t count) {
    if (count == 0 || mState != State::Alive) {
        return;
    }
    try {
        mProxies.owe(object, count);
        mWantsControl = true;
        if (const status_t status = ensureControl(); status != OK && status != DEAD_OBJECT) {
            mTransport.retryLater();
        }
    } catch (const std::bad_alloc&) {
        ALOGW("object %llu of pid %d stays held until the process ends: no memory",
              static_cast<unsigned long long>(object.number), credentials().pid);
    }
    payOwed();
}

void Peer::payOwed() {
    const std::lock_guard<std::mutex> paying(mPaying);
    MessageHeader head{};
    head.kind = MessageKind::Release;
    ObjectName object;
    while (mProxies.nextOwed(&object, &head.code)) {
        head.object = object.number;
        head.nonce = object.nonce;
        Encoder encoder;
        encoder.encode(head);
        if (const status_t status = mControl.send(encoder.gather()); status != OK) {
            if (status == NO_MEMORY) {
                mTransport.retryLater();
            }
            return;  // else when there is room again, or never
        }
        mProxies.paid(object, head.code);
    }
}

status_t Peer::handOver(const RemoteObject& object, const Endpoint& receiver) {
    const status_t status = ensureControl();
    if (status != OK) {
        return status;
    }
    // We may end as soon as the receiver has the reference: what it says must be out by then.
    mControl.awaitWelcome(kWelcomePatienceMilliseconds);
    MessageHeader head{};
    head.kind = MessageKind::HandOver;
    head.object = object.name().number;
    head.nonce = object.name().nonce;
    Encoder encoder;
    encoder.encode(head, &receiver);
    return mControl.send(encoder.gather());
}

// What it sends.

status_t Peer::takeObject(const uint8_t* form, sp<IBinder>* object) {
    ObjectReference reference;
    std::memcpy(&reference, form, sizeof(reference));
    if (reference.endpoint == mTransport.endpoint()) {
        *object = mTransport.exports().find(reference.object, reference.nonce);
        dropObject(form);
        return *object == nullptr ? NAME_NOT_FOUND : OK;
    }
    if (reference.endpoint == mEndpoint) {
        return proxyOf(reference, 1, object);
    }
    std::shared_ptr<Peer> owner;
    try {
        owner = mTransport.peerAt(reference.endpoint);
    } catch (const std::bad_alloc&) {
        dropObject(form);
        return NO_MEMORY;
    }
    const status_t status = owner->proxyOf(reference, 1, object);
    mTransport.forgetStranger(std::move(owner));
    return status;
}

void Peer::dropObject(const uint8_t* form) {
    ObjectReference reference;
    std::memcpy(&reference, form, sizeof(reference));
    try {
        if (reference.endpoint == mTransport.endpoint()) {
            // It was on its way to us; its sender said so before: see handOver().
            mTransport.exports().release(reference.object, 1, &holds);
        } else if (reference.endpoint == mEndpoint) {
            giveBack({reference.object, reference.nonce}, 1);
        } else {
            std::shared_ptr<Peer> owner = mTransport.peerAt(reference.endpoint);
            owner->giveBack({reference.object, reference.nonce}, 1);
            mTransport.forgetStranger(std::move(owner));
        }
    } catch (const std::bad_alloc&) {
        ALOGW("an object that pid %d sent stays held until it ends: no memory", credentials().pid);
    }
}

void Peer::givenBack(const ObjectName& object, uint64_t count) {
    Exports& exports = mTransport.exports();
    if (exports.find(object.number, object.nonce) != nullptr) {
        exports.release(object.number, count, &holds);
    }
}

void Peer::handedOver(uint64_t number, uint64_t nonce, const Endpoint& receiver) {
    Exports& exports = mTransport.exports();
    if (exports.find(number, nonce) == nullptr) {
        return;
    }
    if (receiver == mTransport.endpoint() || receiver == mEndpoint) {
        exports.holdFor(number, nonce, &holds);
        return;
    }
    std::shared_ptr<Peer> peer = mTransport.peerAt(receiver);
    const status_t status = peer->ensureControl();  // its death ends what it holds
    if (status == OK) {
        exports.holdFor(number, nonce, &peer->holds);
    } else if (status != DEAD_OBJECT) {
        exports.holdFor(number, nonce, &holds);  // for lack of means: at least as long as the giver lives
    }
    mTransport.forgetStranger(std::move(peer));
}

const char* Peer::addInbound(int fd, bool control) {
    const CheckedLock lock(mLock);
    if (mState == State::Ended || (mState == State::Draining && mHeardOut)) {
        return "a peer that has ended does not come back";
    }
    if (control && mInboundControl) {
        return "a peer has one connection for one-way messages";
    }
    mInbound.reserve(mInbound.size() + 1);
    if (!control && !mKeptProcess->addConnection()) {
        return "a process has a limited number of connections";
    }
    mInboundControl |= control;
    mInbound.push_back(fd);
    return nullptr;
}

void Peer::removeInbound(int fd, bool control, bool welcomed) {
    bool last;
    bool draining;
    {
        const CheckedLock lock(mLock);
        mInbound.erase(std::find(mInbound.begin(), mInbound.end(), fd));
        if (control) {
            mInboundControl = false;
        } else {
            mKeptProcess->removeConnection();
        }
        last = mInbound.empty();
        draining = mState == State::Draining && mHeardOut;
    }
    if (last && draining) {
        end();
    } else if (welcomed && (control || (last && isUnused() && mConnections.areDead()))) {
        // It closes that connection only with all of them; and with no connection left, nothing else would
        // tell of its end.
        noteGone();
    }
}

void Peer::complain(const MessageHeader& head, status_t status) {
    const Credentials who = credentials();
    const uint32_t count = mTransport.complaints().count(who);
    if (count == 0) {
        return;
    }
    try {
        ALOGW("refused method %u on object %llu for pid %d uid %u: %s (refusal %u)", head.code,
              static_cast<unsigned long long>(head.object), who.pid, who.uid, statusText(status).c_str(),
              count);
    } catch (const std::bad_alloc&) {
        ALOGW("refused method %u for pid %d uid %u: no memory (refusal %u)", head.code, who.pid, who.uid,
              count);
    }
}

// Its end.

void Peer::noteGone() {
    {
        const CheckedLock lock(mLock);
        if (mState != State::Alive) {
            return;
        }
        mState = State::Draining;
    }
    mConnections.end();
    mControl.end();
    mTransport.hearOut(*this);
}

void Peer::heardOut() {
    bool done;
    {
        const CheckedLock lock(mLock);
        mHeardOut = true;
        done = mInbound.empty();
    }
    if (done) {
        end();
    }
}

bool Peer::isUnused() {
    {
        const CheckedLock lock(mLock);
        if (!mInbound.empty()) {
            return false;
        }
    }
    return mControl.state() == OneWayChannel::State::Closed && !mWantsControl && mProxies.empty();
}

bool Peer::isAbandoned() {
    return mConnections.count() > 0 && isUnused() && mConnections.areDead();
}

void Peer::drop(const char* rule) {
    const Credentials who = credentials();
    if (const uint32_t count = mTransport.complaints().count(who); count != 0) {
        ALOGW("dropped pid %d uid %u: it broke the rule that %s (complaint %u)", who.pid, who.uid, rule,
              count);
    }
    end();
}

void Peer::end() {
    {
        const CheckedLock lock(mLock);
        if (mState == State::Ended) {
            return;
        }
        mState = State::Ended;
        for (const int fd : mInbound) {
            ::shutdown(fd, SHUT_RDWR);
        }
    }
    const std::shared_ptr<Peer> self = shared_from_this();
    mConnections.end();
    mControl.end();
    mTransport.forget(*this);
    if (!mTransport.pool().bury(self)) {
        mTransport.retryLater();
    }
}

void Peer::takeLinks(DeathLinks* links) {
    mProxies.end(links);
}

void Peer::releaseHeld() {
    mTransport.exports().releaseAll(&holds);
}

}  // namespace android::hardware
