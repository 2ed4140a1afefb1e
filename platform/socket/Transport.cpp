#define LOG_TAG "hidl.transport"

#include "platform/socket/Transport.h"

#include <errno.h>
#include <fcntl.h>
#include <log/log.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"

namespace android::hardware {

namespace {

UniqueFd makeEpoll(int alsoWatch) {
    UniqueFd epoll(epoll_create1(EPOLL_CLOEXEC));
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = nullptr;
    LOG_ALWAYS_FATAL_IF(!epoll.ok() || epoll_ctl(epoll.get(), EPOLL_CTL_ADD, alsoWatch, &event) != 0,
                        "no epoll instance: %s", strerror(errno));
    return epoll;
}

UniqueFd reserveDescriptor() {
    return UniqueFd(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

}  // namespace

Transport& Transport::self() {
    static Transport* const transport = new Transport;
    return *transport;
}

Transport::Transport()
    : mEndpoint(randomEndpoint()),
      mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mBuryWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      mReserve(reserveDescriptor()) {
    mPoolEpoll = makeEpoll(mWake.get());
    // The platform thread tells sources apart by descriptor, so this event is told from them by its own.
    mPlatformEpoll = UniqueFd(epoll_create1(EPOLL_CLOEXEC));
    for (const int fd : {mWake.get(), mBuryWake.get()}) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = fd;
        LOG_ALWAYS_FATAL_IF(
                !mPlatformEpoll.ok() || epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_ADD, fd, &event) != 0,
                "no epoll instance: %s", strerror(errno));
    }
}

Transport::~Transport() {
    mEnding = true;
    wake();
    if (mPlatformThread.joinable()) {
        mPlatformThread.join();
    }
    for (std::thread& thread : mPool) {
        thread.join();
    }
    while (!mInbounds.empty()) {
        endInbound(*mInbounds.begin());
    }
    std::map<Endpoint, std::shared_ptr<Peer>> peers;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        peers = mPeers;
    }
    for (const auto& [endpoint, peer] : peers) {
        peer->bury();
        peer->control().close();
    }
}

void Transport::wake() {
    if (eventfd_write(mWake.get(), 1) != 0) {
        ALOGE("can not wake the threads: %s", strerror(errno));
    }
}

// Objects.

status_t Transport::publish(const sp<IBinder>& object, ObjectReference* reference) {
    BHwBinder* local = object == nullptr ? nullptr : object->localBinder();
    if (local == nullptr) {
        return INVALID_OPERATION;
    }
    const status_t status = listenOnce();
    if (status != OK) {
        return status;
    }
    reference->endpoint = mEndpoint;
    mExports.pin(local, &reference->object, &reference->nonce);
    return OK;
}

status_t Transport::exportTo(Peer& peer, const sp<IBinder>& object, ObjectReference* reference) {
    BHwBinder* local = object->localBinder();
    if (local == nullptr) {
        // Every object that is not ours is a proxy. The receiver tells its process that it has it, too.
        *reference = static_cast<Proxy*>(object.get())->reference();
        return OK;
    }
    const status_t status = listenOnce();
    if (status != OK) {
        return status;
    }
    reference->endpoint = mEndpoint;
    return mExports.hold(local, &peer.holds, &reference->object, &reference->nonce) ? OK : DEAD_OBJECT;
}

status_t Transport::resolve(const ObjectReference& reference, sp<IBinder>* object) {
    if (reference.endpoint == mEndpoint) {
        *object = mExports.find(reference.object, reference.nonce);
        return *object == nullptr ? NAME_NOT_FOUND : OK;
    }
    const std::shared_ptr<Peer> peer = peerAt(reference.endpoint);
    const status_t status = peer->reach();
    if (status != OK) {
        forgetStranger(*peer);
        return status;
    }
    *object = peer->proxyOfPinned(reference);
    return OK;
}

status_t Transport::resolveFrom(const Peer& sender, const ObjectReference& reference, sp<IBinder>* object) {
    if (reference.endpoint == mEndpoint) {
        *object = mExports.find(reference.object, reference.nonce);
        return *object == nullptr ? NAME_NOT_FOUND : OK;
    }
    const std::shared_ptr<Peer> peer = peerAt(reference.endpoint);
    const status_t status = peer->proxyOf(reference, reference.endpoint == sender.endpoint(), object);
    if (status != OK) {
        forgetStranger(*peer);
    }
    return status;
}

// Peers.

std::shared_ptr<Peer> Transport::peerAt(const Endpoint& endpoint) {
    const std::lock_guard<std::mutex> lock(mLock);
    std::shared_ptr<Peer>& peer = mPeers[endpoint];
    if (peer == nullptr) {
        peer = std::make_shared<Peer>(*this, endpoint);
    }
    return peer;
}

bool Transport::admit(Peer& peer, const Credentials& credentials) {
    const std::lock_guard<std::mutex> lock(mLock);
    if (peer.credentials.pid == 0) {
        const auto endpoints = std::count_if(mPeers.begin(), mPeers.end(), [&](const auto& other) {
            return other.second->credentials.pid == credentials.pid;
        });
        if (static_cast<size_t>(endpoints) >= kMaxEndpointsPerProcess) {
            ALOGW("pid %d uid %u has too many endpoints: a process has one", credentials.pid,
                  credentials.uid);
            return false;
        }
        peer.credentials = credentials;
        return true;
    }
    if (peer.credentials.pid != credentials.pid) {
        ALOGW("pid %d uid %u uses the endpoint of pid %d: an endpoint belongs to one process",
              credentials.pid, credentials.uid, peer.credentials.pid);
        return false;
    }
    return true;
}

void Transport::forget(const Peer& peer) {
    std::shared_ptr<Peer> last;  // released outside the lock
    const std::lock_guard<std::mutex> lock(mLock);
    const auto known = mPeers.find(peer.endpoint());
    if (known != mPeers.end() && known->second.get() == &peer) {
        last = std::move(known->second);
        mPeers.erase(known);
    }
}

void Transport::forgetStranger(const Peer& peer) {
    bool stranger;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        stranger = peer.credentials.pid == 0;
    }
    if (stranger) {
        forget(peer);
    }
}

size_t Transport::peerCount() {
    const std::lock_guard<std::mutex> lock(mLock);
    return mPeers.size();
}

// The platform thread.

status_t Transport::listenOnce() {
    const std::lock_guard<std::mutex> lock(mLock);
    if (mListener.ok()) {
        return OK;
    }
    mListener = listenOn(mEndpoint);
    mListening = mListener.get();
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = mListener.get();
    if (!mListener.ok() || epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_ADD, mListener.get(), &event) != 0) {
        const status_t status = -errno;
        ALOGE("can not listen: %s", strerror(errno));
        mListening = -1;
        mListener.reset();
        return status;
    }
    startPlatformThread();
    return OK;
}

/** The lock is held. */
void Transport::startPlatformThread() {
    if (!mPlatformThread.joinable()) {
        mPlatformThread = std::thread([this] { runPlatformThread(); });
        pthread_setname_np(mPlatformThread.native_handle(), "hidl-platform");
    }
}

bool Transport::watchControl(const std::shared_ptr<Peer>& peer, UniqueFd fd) {
    const std::lock_guard<std::mutex> lock(mLock);
    const int number = fd.get();
    mWatched[number] = {peer, {}, {}};
    epoll_event event{};
    event.events = EPOLLIN | EPOLLRDHUP;
    event.data.fd = number;
    if (epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_ADD, number, &event) != 0) {
        ALOGE("can not watch a peer: %s", strerror(errno));
        mWatched.erase(number);
        return false;
    }
    // Sending may ask the epoll instance for room from here on; its first event waits for our lock.
    peer->control().open(std::move(fd), mPlatformEpoll.get());
    startPlatformThread();
    return true;
}

status_t Transport::whenReadable(int fd, std::function<void()> function) {
    const std::lock_guard<std::mutex> lock(mLock);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = fd;
    if (epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_ADD, fd, &event) != 0) {
        return errno == EEXIST ? OK : -errno;
    }
    mWatched[fd] = {nullptr, {}, std::move(function)};
    startPlatformThread();
    return OK;
}

void Transport::runPlatformThread() {
    while (!mEnding) {
        // One event at a time: what it leads to may end the source of the next.
        epoll_event event;
        const int count = epoll_wait(mPlatformEpoll.get(), &event, 1, -1);
        if (count < 0 && errno != EINTR) {
            LOG_ALWAYS_FATAL("epoll_wait: %s", strerror(errno));
        }
        if (count <= 0 || event.data.fd == mWake.get()) {
            continue;
        }
        if (event.data.fd == mListening) {
            acceptConnections();
            continue;
        }
        if (event.data.fd == mBuryWake.get()) {
            buryWaiting();
            continue;
        }
        Watched watched;
        {
            const std::lock_guard<std::mutex> lock(mLock);
            const auto found = mWatched.find(event.data.fd);
            if (found == mWatched.end()) {
                continue;
            }
            watched = found->second;
        }
        if (watched.function) {
            watched.function();
        } else if (watched.peer == nullptr) {
            readHello(watched.greeter);
        } else if ((event.events & (EPOLLIN | EPOLLHUP | EPOLLERR | EPOLLRDHUP)) != 0) {
            // Nothing is ever sent to us on this connection: it has ended, or its peer has lost its mind.
            {
                const std::lock_guard<std::mutex> lock(mLock);
                mWatched.erase(event.data.fd);
            }
            hearOut(*watched.peer);
            watched.peer->bury();
            watched.peer->control().close();
        } else {
            watched.peer->control().flush();
        }
    }
}

void Transport::buryLater(const std::shared_ptr<Peer>& peer) {
    const std::lock_guard<std::mutex> lock(mLock);
    mToBury.push_back(peer);
    startPlatformThread();
    if (eventfd_write(mBuryWake.get(), 1) != 0) {
        ALOGE("can not wake the platform thread: %s", strerror(errno));
    }
}

void Transport::buryWaiting() {
    eventfd_t count;
    eventfd_read(mBuryWake.get(), &count);
    std::vector<std::shared_ptr<Peer>> peers;
    {
        const std::lock_guard<std::mutex> lock(mLock);
        peers.swap(mToBury);
    }
    for (const auto& peer : peers) {
        hearOut(*peer);
        peer->bury();
    }
}

void Transport::acceptConnections() {
    while (true) {
        UniqueFd fd(accept4(mListening, nullptr, nullptr, SOCK_CLOEXEC));
        if (!fd.ok()) {
            if (errno == EMFILE || errno == ENFILE) {
                if (refuseConnection()) {
                    continue;
                }
                return;
            }
            if (errno == EINTR || errno == ECONNABORTED) {
                continue;
            }
            if (errno != EAGAIN && errno != EWOULDBLOCK) {
                ALOGE("accept: %s", strerror(errno));
            }
            return;
        }
        Credentials credentials;
        if (!readCredentials(fd.get(), &credentials) || !mayConnect(credentials)) {
            ALOGW("refused pid %d uid %u: a peer runs under our user or root's", credentials.pid,
                  credentials.uid);
            continue;
        }
        if (mGreeters.size() >= kMaxPendingHellos) {
            const auto oldest = mGreeters.begin();
            ALOGW("dropped pid %d uid %u: it broke the rule that a connection begins with a hello",
                  oldest->credentials.pid, oldest->credentials.uid);
            dropGreeter(oldest);
        }
        const int number = fd.get();
        mGreeters.push_back({std::move(fd), credentials, {}, 0});
        const auto greeter = std::prev(mGreeters.end());
        {
            const std::lock_guard<std::mutex> lock(mLock);
            mWatched[number] = {nullptr, greeter, {}};
        }
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = number;
        if (epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_ADD, number, &event) != 0) {
            ALOGE("can not watch a connection: %s", strerror(errno));
            dropGreeter(greeter);
            continue;
        }
        readHello(greeter);  // most often it is there already
    }
}

/**
 * Descriptors have run out: takes the next connection with the spare one and closes it. False when none
 * waits: without a free descriptor the kernel does not tell that from the lack of one.
 */
bool Transport::refuseConnection() {
    mReserve.reset();
    UniqueFd fd(accept4(mListening, nullptr, nullptr, SOCK_CLOEXEC));
    Credentials credentials;
    if (fd.ok() && readCredentials(fd.get(), &credentials)) {
        ALOGW("refused pid %d uid %u: no descriptor is left", credentials.pid, credentials.uid);
    }
    const bool refused = fd.ok();
    if (!refused && (errno == EMFILE || errno == ENFILE)) {
        // Another thread took the spare descriptor: the connection stays in the queue for a moment.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    fd.reset();
    mReserve = reserveDescriptor();
    return refused;
}

/** A peer has ended: takes the connection on which it may have sent messages just before. */
void Transport::hearOut(const Peer& peer) {
    if (mListening >= 0) {
        acceptConnections();
    }
    for (auto greeter = mGreeters.begin(); greeter != mGreeters.end();) {
        const auto next = std::next(greeter);
        if (greeter->credentials.pid == peer.credentials.pid) {
            readHello(greeter);
        }
        greeter = next;
    }
}

void Transport::dropGreeter(std::list<Greeter>::iterator greeter) {
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mWatched.erase(greeter->fd.get());
    }
    // Closing does not end the watch while a child that was forked meanwhile has the descriptor too.
    epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_DEL, greeter->fd.get(), nullptr);
    mGreeters.erase(greeter);
}

void Transport::readHello(std::list<Greeter>::iterator greeter) {
    auto* bytes = reinterpret_cast<uint8_t*>(&greeter->hello);
    // The hello alone: what follows is for the thread that will serve the connection.
    const ssize_t got = receiveSome(greeter->fd.get(), bytes + greeter->have,
                                    sizeof(greeter->hello) - greeter->have, MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        return;
    }
    if (got > 0) {
        greeter->have += static_cast<size_t>(got);
        if (greeter->have < sizeof(greeter->hello)) {
            return;
        }
        {
            const std::lock_guard<std::mutex> lock(mLock);
            mWatched.erase(greeter->fd.get());
        }
        epoll_ctl(mPlatformEpoll.get(), EPOLL_CTL_DEL, greeter->fd.get(), nullptr);
        welcome(*greeter);
        mGreeters.erase(greeter);
        return;
    }
    if (greeter->have > 0) {
        ALOGW("dropped pid %d uid %u: it broke the rule that a connection begins with a whole hello",
              greeter->credentials.pid, greeter->credentials.uid);
    }
    dropGreeter(greeter);
}

void Transport::welcome(Greeter& greeter) {
    const MessageHeader& hello = greeter.hello;
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
    std::shared_ptr<Peer> peer;
    if (rule == nullptr) {
        peer = peerAt(endpoint);
        if (!admit(*peer, greeter.credentials)) {
            forgetStranger(*peer);
            return;
        }
        rule = peer->addInbound(greeter.fd.get(), control);
    }
    if (rule != nullptr) {
        ALOGW("dropped a connection of pid %d uid %u: it broke the rule that %s", greeter.credentials.pid,
              greeter.credentials.uid, rule);
        return;
    }
    auto* inbound = new Inbound(*this, std::move(peer), std::move(greeter.fd), control);
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mInbounds.insert(inbound);
    }
    armInbound(inbound, EPOLLIN);
    if (mIdleThreads.load() == 0) {
        const std::lock_guard<std::mutex> lock(mLock);
        spawnIfNeeded();
    }
}

// The pool.

void Transport::setMaxThreads(size_t maxThreads, bool callerWillJoin) {
    const std::lock_guard<std::mutex> lock(mLock);
    mMaxSpawned = maxThreads - (callerWillJoin && maxThreads > 0 ? 1 : 0);
}

void Transport::startThreadPool() {
    const std::lock_guard<std::mutex> lock(mLock);
    mServing = true;
    // Connections that came before wait in the epoll instance; the first thread finds them.
    if (mListener.ok()) {
        spawnIfNeeded();
    }
}

/** The lock is held. Keeps one thread free for the next connection, as far as the maximum allows. */
void Transport::spawnIfNeeded() {
    if (mServing && !mEnding && mIdleThreads.load() == 0 && mPool.size() < mMaxSpawned) {
        // Counted before it runs, so that its caller does not start another.
        ++mIdleThreads;
        ++mThreadCount;
        mPool.emplace_back([this] { runPool(); });
        pthread_setname_np(mPool.back().native_handle(), "hidl-pool");
    }
}

void Transport::armInbound(Inbound* inbound, uint32_t events) {
    epoll_event event{};
    // Of a peer that only waits for room, that it will send nothing more is no news: it would wake us for
    // ever.
    event.events = events | EPOLLONESHOT | ((events & EPOLLIN) != 0 ? static_cast<uint32_t>(EPOLLRDHUP) : 0u);
    event.data.ptr = inbound;
    const int fd = inbound->fd();
    const int operation = inbound->watched ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
    inbound->watched = true;
    inbound->handOver();
    // From here on the connection belongs to whichever thread epoll wakes for it.
    if (epoll_ctl(mPoolEpoll.get(), operation, fd, &event) != 0) {
        ALOGE("can not watch a connection: %s", strerror(errno));
        endInbound(inbound);
    }
}

void Transport::unwatchInbound(Inbound* inbound) {
    if (epoll_ctl(mPoolEpoll.get(), EPOLL_CTL_DEL, inbound->fd(), nullptr) == 0) {
        inbound->watched = false;
    }
}

void Transport::endInbound(Inbound* inbound) {
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mInbounds.erase(inbound);
    }
    delete inbound;
}

void Transport::joinThreadPool() {
    {
        const std::lock_guard<std::mutex> lock(mLock);
        mServing = true;
    }
    ++mIdleThreads;
    ++mThreadCount;
    runPool();
}

/** One thread's life; it is counted as idle when it comes here. */
void Transport::runPool() {
    while (!mEnding) {
        epoll_event event;
        const int count = epoll_wait(mPoolEpoll.get(), &event, 1, -1);
        if (count < 0 && errno != EINTR) {
            LOG_ALWAYS_FATAL("epoll_wait: %s", strerror(errno));
        }
        auto* inbound = count > 0 ? static_cast<Inbound*>(event.data.ptr) : nullptr;
        if (inbound == nullptr) {
            continue;
        }
        if (mIdleThreads.fetch_sub(1) == 1) {
            const std::lock_guard<std::mutex> lock(mLock);
            spawnIfNeeded();
        }
        if (!inbound->serve()) {
            endInbound(inbound);
        }
        ++mIdleThreads;
    }
    --mIdleThreads;
    --mThreadCount;
}

}  // namespace android::hardware
