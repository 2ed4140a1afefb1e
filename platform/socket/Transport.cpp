#define LOG_TAG "hidl.transport"

#include "platform/socket/Transport.h"

#include <log/log.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>
#include <system_error>

#include "platform/socket/Encoder.h"
#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"

namespace android::hardware {

Transport::Transport()
    : mEndpoint(randomEndpoint()),
      mEpoll(epoll_create1(EPOLL_CLOEXEC)),
      mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mListener(mEpoll.get(), mComplaints,
                [this](UniqueFd fd, const Credentials& who, const MessageHeader& hello) {
                    welcome(std::move(fd), who, hello);
                }) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = mWake.get();
    LOG_ALWAYS_FATAL_IF(!mEpoll.ok() || epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, mWake.get(), &event) != 0,
                        "no epoll instance: %s", strerror(errno));
}

Transport::~Transport() {
    mEnding = true;
    wake();
    if (mPlatformThread.joinable()) {
        mPlatformThread.join();
    }
    mPool.stop();
    forEachPeer([](Peer& peer) {
        peer.end();
        peer.control().close();
    });
    mPool.buryAll();
}

void Transport::wake() {
    if (eventfd_write(mWake.get(), 1) != 0) {
        ALOGE("can not wake the platform thread: %s", strerror(errno));
    }
}

// Objects.

status_t Transport::publish(const sp<IBinder>& object, ObjectReference* reference) {
    BHwBinder* local = object == nullptr ? nullptr : object->localBinder();
    if (local == nullptr) {
        return INVALID_OPERATION;
    }
    try {
        const status_t status = serveOthers();
        if (status != OK) {
            return status;
        }
        reference->endpoint = mEndpoint;
        mExports.pin(local, &reference->object, &reference->nonce);
        return OK;
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
}

status_t Transport::exportTo(Peer& peer, const sp<IBinder>& object, ObjectReference* reference) {
    if (BHwBinder* local = object->localBinder(); local != nullptr) {
        const status_t status = serveOthers();
        if (status != OK) {
            return status;
        }
        reference->endpoint = mEndpoint;
        return mExports.hold(local, &peer.holds, &reference->object, &reference->nonce) ? OK : DEAD_OBJECT;
    }
    // Only what a transport of this kind received can be handed on over it.
    const auto* remote = dynamic_cast<const RemoteObject*>(object->remoteProxy());
    if (remote == nullptr) {
        return INVALID_OPERATION;
    }
    *reference = {remote->peer().endpoint(), remote->name().number, remote->name().nonce};
    return remote->peer().handOver(*remote, peer.endpoint());
}

status_t Transport::resolve(const ObjectReference& reference, sp<IBinder>* object) {
    if (reference.endpoint == mEndpoint) {
        *object = mExports.find(reference.object, reference.nonce);
        return *object == nullptr ? NAME_NOT_FOUND : OK;
    }
    try {
        std::shared_ptr<Peer> peer = peerAt(reference.endpoint);
        const status_t status = peer->reach();
        if (status != OK) {
            forgetStranger(std::move(peer));
            return status;
        }
        return peer->proxyOf(reference, 0, object);
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
}

// Peers.

std::shared_ptr<Peer> Transport::peerAt(const Endpoint& endpoint) {
    {
        const CheckedLock lock(mLock);
        const auto known = mPeers.find(endpoint);
        if (known != mPeers.end()) {
            return known->second;
        }
    }
    // A new process: often one that takes the place of one that we have not noticed to be gone.
    forgetDeadPeers();
    auto peer = std::make_shared<Peer>(*this, endpoint);
    const CheckedLock lock(mLock);
    return mPeers.emplace(endpoint, std::move(peer)).first->second;
}

/** Calls a function for each peer, without locks. */
template <typename Function>
void Transport::forEachPeer(Function function) {
    Endpoint last{};
    while (true) {
        std::shared_ptr<Peer> peer;
        {
            const CheckedLock lock(mLock);
            const auto next = mPeers.upper_bound(last);
            if (next == mPeers.end()) {
                return;
            }
            peer = next->second;
            last = next->first;
        }
        function(*peer);
    }
}

void Transport::forgetDeadPeers() {
    forEachPeer([](Peer& peer) {
        if (peer.isAbandoned()) {
            peer.end();
        }
    });
}

void Transport::forget(const Peer& peer) {
    std::shared_ptr<Peer> last;  // released outside the lock
    const CheckedLock lock(mLock);
    const auto known = mPeers.find(peer.endpoint());
    if (known != mPeers.end() && known->second.get() == &peer) {
        last = std::move(known->second);
        mPeers.erase(known);
    }
}

void Transport::forgetStranger(std::shared_ptr<Peer>&& peer) {
    std::shared_ptr<Peer> last;  // released outside the lock
    const CheckedLock lock(mLock);
    const auto known = mPeers.find(peer->endpoint());
    peer.reset();
    // Whom another thread has, too, it may be connecting to at this moment.
    if (known != mPeers.end() && known->second->process() == nullptr && known->second.use_count() == 1) {
        last = std::move(known->second);
        mPeers.erase(known);
    }
}

size_t Transport::peerCount() {
    const CheckedLock lock(mLock);
    return mPeers.size();
}

// The platform thread.

status_t Transport::serveOthers() {
    status_t status = listenOnce();
    if (status == OK) {
        const CheckedLock lock(mLock);
        status = startPlatformThread();
    }
    return status;
}

status_t Transport::listenOnce() {
    const CheckedLock lock(mLock);
    if (mListening.ok()) {
        return OK;
    }
    UniqueFd listening = listenOn(mEndpoint);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = listening.get();
    if (!listening.ok() || epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, listening.get(), &event) != 0) {
        const int error = errno;
        ALOGE("can not listen: %s", strerror(error));
        return -error;
    }
    mListening = std::move(listening);
    return OK;
}

status_t Transport::startPlatformThread() {
    if (mPlatformThread.joinable()) {
        return OK;
    }
    try {
        mPlatformThread = std::thread([this] { runPlatformThread(); });
    } catch (const std::system_error& error) {
        ALOGE("no thread for connections: %s", error.what());
        return FAILED_TRANSACTION;
    }
    pthread_setname_np(mPlatformThread.native_handle(), "hidl-platform");
    return OK;
}

status_t Transport::whenReadable(int fd, std::function<void()> function) {
    const CheckedLock lock(mLock);
    if (mOtherFd >= 0) {
        return fd == mOtherFd ? OK : ALREADY_EXISTS;
    }
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = fd;
    if (epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, fd, &event) != 0) {
        return -errno;
    }
    mOtherFd = fd;
    mOther = std::move(function);
    return startPlatformThread();
}

status_t Transport::watchControl(const std::shared_ptr<Peer>& peer, UniqueFd fd) {
    const CheckedLock lock(mLock);
    status_t status = startPlatformThread();
    if (status != OK) {
        return status;
    }
    // Its first event waits for our lock.
    const int number = fd.get();
    const auto watched = mWatched.insert_or_assign(number, peer).first;
    status = peer->control().open(std::move(fd), mEpoll.get());
    if (status == OK) {
        if (!sendHello(number, MessageKind::HelloControl)) {
            ::shutdown(number, SHUT_RDWR);  // refused, as the platform thread will find
        }
    } else {
        mWatched.erase(watched);
    }
    return status;
}

bool Transport::sendHello(int fd, MessageKind kind) const {
    MessageHeader head{};
    head.kind = kind;
    std::memcpy(&head.object, mEndpoint.data(), sizeof(head.object));
    std::memcpy(&head.nonce, mEndpoint.data() + sizeof(head.object), sizeof(head.nonce));
    Encoder encoder;
    encoder.encode(head);
    Gather gather = encoder.gather();
    // It always fits in an empty socket.
    return sendSome(fd, &gather, MSG_DONTWAIT) > 0 && gather.bytes == 0;
}

void Transport::runPlatformThread() {
    bool retries = false;
    std::chrono::steady_clock::time_point retryAt;
    while (!mEnding) {
        if (!retries && mRetries.exchange(false)) {
            retries = true;
            retryAt = std::chrono::steady_clock::now() + std::chrono::milliseconds(kRetryMilliseconds);
        }
        const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(retryAt - std::chrono::steady_clock::now());
        // One event at a time: what it leads to may end the source of the next.
        epoll_event event;
        const int count = epoll_wait(mEpoll.get(), &event, 1,
                                     !retries ? -1 : std::max(0, static_cast<int>(left.count())));
        if (count < 0 && errno != EINTR) {
            LOG_ALWAYS_FATAL("epoll_wait: %s", strerror(errno));
        }
        try {
            if (count > 0) {
                handle(event.data.fd);
            }
            if (retries && std::chrono::steady_clock::now() >= retryAt) {
                retries = false;
                mPool.isReady();
                forEachPeer([](Peer& peer) { peer.reopenControl(); });
            }
        } catch (const std::bad_alloc&) {
            // What was asked for is refused or, if it is ours to do, done later.
            mRetries = true;
            ALOGE("no memory for what other processes ask for");
        }
    }
}

void Transport::handle(int fd) {
    int listening;
    {
        const CheckedLock lock(mLock);
        listening = mListening.get();
    }
    if (fd == mWake.get()) {
        eventfd_t count;
        eventfd_read(mWake.get(), &count);
        if (mHasGone.exchange(false)) {
            if (listening >= 0) {
                mListener.acceptFrom(listening, kBacklog);  // all that waited when it went
            }
            mListener.hearAll();
            forEachPeer([](Peer& peer) {
                if (peer.waitsForHearing()) {
                    peer.heardOut();
                }
            });
        }
        return;
    }
    if (fd == listening) {
        mListener.acceptFrom(fd, kMaxAcceptedAtOnce);
        return;
    }
    std::shared_ptr<Peer> peer;
    bool isOther;
    {
        const CheckedLock lock(mLock);
        isOther = fd == mOtherFd;
        const auto watched = mWatched.find(fd);
        peer = watched == mWatched.end() ? nullptr : watched->second;
    }
    if (isOther) {
        mOther();
        return;
    }
    if (peer == nullptr) {
        mListener.hear(fd);
        return;
    }
    const OneWayChannel::Event event = peer->control().update();
    if (event == OneWayChannel::Event::None) {
        peer->reopenControl();  // there may be room for what it is owed
        return;
    }
    {
        const CheckedLock lock(mLock);
        mWatched.erase(fd);
    }
    if (event == OneWayChannel::Event::Refused) {
        peer->control().closeRefused();  // only now: its number may be another's at once
        mRetries = true;
        return;
    }
    peer->noteGone();
    peer->control().close();
}

void Transport::hearOut(Peer& peer) {
    {
        const CheckedLock lock(mLock);
        if (mPlatformThread.joinable() && !mEnding) {
            mHasGone = true;
            wake();
            return;
        }
    }
    peer.heardOut();  // nobody can have connected to us
}

void Transport::retryLater() {
    if (!mRetries.exchange(true)) {
        wake();
    }
}

/** On the platform thread: a connection has said whose it is, and what for. */
void Transport::welcome(UniqueFd fd, const Credentials& who, const MessageHeader& hello) {
    const bool control = hello.kind == MessageKind::HelloControl;
    const char* rule = Message::checkHeader(hello);
    if (rule == nullptr &&
        ((!control && hello.kind != MessageKind::HelloCall) || hello.totalBytes != sizeof(hello))) {
        rule = "a connection begins with a hello";
    }
    Endpoint endpoint{};
    std::memcpy(endpoint.data(), &hello.object, sizeof(hello.object));
    std::memcpy(endpoint.data() + sizeof(hello.object), &hello.nonce, sizeof(hello.nonce));
    if (rule == nullptr && (endpoint == Endpoint{} || endpoint == mEndpoint)) {
        rule = "a peer has an endpoint of its own";
    }
    const char* lack = nullptr;
    if (rule == nullptr && !mPool.isReady()) {
        lack = "no thread is left to serve it";
    }
    if (rule == nullptr && lack == nullptr) {
        std::shared_ptr<Peer> peer = peerAt(endpoint);
        rule = peer->admit(who);
        if (rule == nullptr) {
            auto inbound = std::make_unique<Inbound>(mPool, peer, std::move(fd), control);
            rule = inbound->begin();
            Inbound* const added = inbound.get();
            if (rule == nullptr && inbound->ok() && mPool.add(inbound)) {
                added->welcome();
                mPool.arm(added, EPOLLIN);
            } else if (rule == nullptr) {
                lack = "no memory is left for it";
            }
        }
        forgetStranger(std::move(peer));
    }
    if ((rule != nullptr || lack != nullptr) && mComplaints.count(who) != 0) {
        ALOGW("refused a connection of pid %d uid %u: %s%s", who.pid, who.uid,
              rule != nullptr ? "it broke the rule that " : "", rule != nullptr ? rule : lack);
    }
}

}  // namespace android::hardware
