#pragma once

#include <functional>
#include <list>

#include "platform/binding/Complaints.h"
#include "platform/socket/Message.h"
#include "platform/socket/Socket.h"

namespace android::hardware {

/**
 * Accepts connections and hears who they are. The platform thread's alone; the descriptors that it waits for
 * are in that thread's epoll instance, under their numbers as data.
 */
class Listener {
  public:
    /** Takes over a connection whose hello has come. May throw std::bad_alloc: then it is refused. */
    using Welcome = std::function<void(UniqueFd fd, const Credentials& who, const MessageHeader& hello)>;

    Listener(int epoll, Complaints& complaints, Welcome welcome);

    /** Accepts what waits at the listening socket, but no more than so many. */
    void acceptFrom(int listening, int most);
    /** Goes on hearing one that has not said its hello yet. False when the descriptor is not of such a one.
     */
    bool hear(int fd);
    /** Hears all of them once more. */
    void hearAll();

  private:
    struct Greeter {
        UniqueFd fd;
        Credentials who;
        MessageHeader hello;
        size_t have = 0;
    };
    using Greeters = std::list<Greeter>;

    void take(UniqueFd fd);
    bool refuseOne(int listening);
    void hear(Greeters::iterator greeter);
    void complain(const Credentials& who, const char* what);

    const int mEpoll;
    Complaints& mComplaints;
    const Welcome mWelcome;
    UniqueFd mReserve;   // given up for a moment to refuse a connection when descriptors have run out
    Greeters mGreeters;  // oldest first
};

}  // namespace android::hardware
