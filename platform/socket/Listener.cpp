#define LOG_TAG "hidl.transport"

#include "platform/socket/Listener.h"

#include <fcntl.h>
#include <log/log.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>
#include <thread>

#include "platform/socket/Limits.h"

namespace android::hardware {

namespace {

UniqueFd reserveDescriptor() {
    return UniqueFd(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

}  // namespace

Listener::Listener(int epoll, Complaints& complaints, Welcome welcome)
    : mEpoll(epoll), mComplaints(complaints), mWelcome(std::move(welcome)), mReserve(reserveDescriptor()) {}

void Listener::complain(const Credentials& who, const char* what) {
    if (const uint32_t count = mComplaints.count(who); count != 0) {
        ALOGW("refused pid %d uid %u: %s (complaint %u)", who.pid, who.uid, what, count);
    }
}

void Listener::acceptFrom(int listening, int most) {
    for (int i = 0; i < most; ++i) {
        UniqueFd fd(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
        if (fd.ok()) {
            take(std::move(fd));
        } else if (errno == EMFILE || errno == ENFILE) {
            if (!refuseOne(listening)) {
                return;
            }
        } else if (errno == ENOMEM || errno == ENOBUFS) {
            // Who waits in the queue waits a little longer; the listening socket stays readable.
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            ALOGE_IF(!wouldBlock(errno), "accept: %s", strerror(errno));
            return;
        }
    }
}

/** A new connection: most often its hello is there already. */
void Listener::take(UniqueFd fd) {
    Credentials who;
    if (!readCredentials(fd.get(), &who) || !mayConnect(who)) {
        complain(who, "a peer runs under our user or root's");
        return;
    }
    if (mGreeters.size() >= kMaxPendingHellos) {
        complain(mGreeters.front().who, "a connection begins with a hello");
        mGreeters.pop_front();
    }
    try {
        mGreeters.push_back({UniqueFd(), who, {}, 0});
    } catch (const std::bad_alloc&) {
        complain(who, "there is no memory");
        return;
    }
    const auto greeter = std::prev(mGreeters.end());
    greeter->fd = std::move(fd);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = greeter->fd.get();
    if (epoll_ctl(mEpoll, EPOLL_CTL_ADD, greeter->fd.get(), &event) != 0) {
        complain(who, strerror(errno));
        mGreeters.erase(greeter);
        return;
    }
    hear(greeter);
}

/**
 * Descriptors have run out: takes the next connection with the spare one and closes it. False when none
 * waits: without a free descriptor the kernel does not tell that from the lack of one.
 */
bool Listener::refuseOne(int listening) {
    mReserve.reset();
    UniqueFd fd(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
    Credentials who;
    if (fd.ok() && readCredentials(fd.get(), &who)) {
        complain(who, "no descriptor is left");
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

bool Listener::hear(int fd) {
    const auto greeter = std::find_if(mGreeters.begin(), mGreeters.end(),
                                      [fd](const Greeter& each) { return each.fd.get() == fd; });
    if (greeter == mGreeters.end()) {
        return false;
    }
    hear(greeter);
    return true;
}

void Listener::hearAll() {
    for (auto greeter = mGreeters.begin(); greeter != mGreeters.end();) {
        hear(greeter++);
    }
}

void Listener::hear(Greeters::iterator greeter) {
    auto* bytes = reinterpret_cast<uint8_t*>(&greeter->hello);
    // The hello alone: what follows is for the thread that will serve the connection.
    const ssize_t got = receiveSome(greeter->fd.get(), bytes + greeter->have,
                                    sizeof(greeter->hello) - greeter->have, MSG_DONTWAIT);
    if (got < 0 && wouldBlock(errno)) {
        return;
    }
    greeter->have += got > 0 ? static_cast<size_t>(got) : 0;
    const bool whole = greeter->have == sizeof(greeter->hello);
    if (got > 0 && !whole) {
        return;
    }
    if (!whole && greeter->have > 0) {
        complain(greeter->who, "a connection begins with a whole hello");
    }
    // Closing would not end the watch while a child that was forked meanwhile has the descriptor too.
    epoll_ctl(mEpoll, EPOLL_CTL_DEL, greeter->fd.get(), nullptr);
    Greeters ended;
    ended.splice(ended.end(), mGreeters, greeter);
    if (whole) {
        try {
            mWelcome(std::move(greeter->fd), greeter->who, greeter->hello);
        } catch (const std::bad_alloc&) {
            complain(greeter->who, "there is no memory");
        }
    }
}

}  // namespace android::hardware
