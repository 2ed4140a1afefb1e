#pragma once

#include <vector>

#include "platform/socket/Encoder.h"
#include "platform/socket/Peer.h"

namespace android::hardware {

/**
 * A call of a peer's that this thread is serving, while the peer's thread waits for the answer at the other
 * end of a connection. What this thread calls of the same peer meanwhile goes over that connection, and the
 * waiting thread serves it: calls back need no other thread, and no other connection, at either side.
 */
class ServedCall {
  public:
    /** @param fd of a connection that carries nothing else until the call is answered; lent */
    ServedCall(Peer& peer, int fd);
    ~ServedCall();
    ServedCall(const ServedCall&) = delete;
    ServedCall& operator=(const ServedCall&) = delete;

    /** Connection at whose other end a thread of this peer waits for this thread; -1 if there is none. */
    static int connectionTo(const Peer& peer);
    /** The answer to the innermost one is about to go out: from then on nobody waits at the other end. */
    static void noteAnswered();
    /** How many calls this thread serves inside each other. */
    static int depth();

  private:
    Peer& mPeer;
    const int mFd;
    bool mAnswered = false;
    ServedCall* const mOuter;
};

/** Where the answer to a call goes. */
class Answer {
  public:
    /** @return whether the peer will get it, at once or later */
    virtual bool send(Gather gather) = 0;

    /** Sends a result that is nothing but a status. */
    bool sendStatus(status_t status);

    /** The peer expects descriptors where this goes. */
    virtual bool takesDescriptors() const = 0;
    /** Nothing can be sent any more. */
    virtual bool isBroken() const = 0;

  protected:
    ~Answer() = default;
};

/**
 * Runs one call of a peer's, or one of its one-way messages, and answers the former in any case.
 *
 * @param message a checked one; lives until this returns
 * @param answer null for a one-way message
 * @param descriptors those that came with it; null if none
 */
void runCall(Peer& peer, Message message, Answer* answer, std::unique_ptr<Descriptors> descriptors);

/** Whose call or one-way message this thread runs, the innermost one's; null while it runs none. */
const Peer* peerServed();

/** Exports the objects of one message to its receiver, and takes them back unless it is sent. */
class SentObjects final : public ObjectExporter {
  public:
    explicit SentObjects(Peer& receiver) : mReceiver(receiver) {}
    ~SentObjects();

    /** May throw std::bad_alloc. */
    status_t exportObject(const sp<IBinder>& object, ObjectReference* reference) override;
    /** They are the receiver's now. */
    void sent() { mExported.clear(); }

  private:
    Peer& mReceiver;
    std::vector<uint64_t> mExported;
};

/** A received message that owns its memory. */
struct OwnedMessage {
    OwnedMessage() = default;
    OwnedMessage(OwnedMessage&&) = default;
    OwnedMessage& operator=(OwnedMessage&&) = default;
    ~OwnedMessage() { returnSpareBlock(std::move(block)); }

    MessageHeader head{};
    SizedBlock block;
    std::unique_ptr<Descriptors> descriptors;  // null when none came
};

/**
 * Waits for the reply to a call that is out. Calls that the other side makes meanwhile, because it serves
 * that one, are run by this thread.
 *
 * @param descriptors the call has brought some: the reply may bring some too
 * @return OK; DEAD_OBJECT when the connection broke; NO_MEMORY when the reply has been read, but not kept. A
 *     peer that breaks a rule is dropped.
 */
status_t awaitReply(Peer& peer, int fd, bool descriptors, OwnedMessage* reply);

/** Makes the parcel the reader and keeper of a message from a peer. */
void readFrom(Peer& peer, OwnedMessage message, Parcel* parcel);

}  // namespace android::hardware
