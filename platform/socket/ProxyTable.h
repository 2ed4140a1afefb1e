#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Proxy.h"
#include "platform/socket/Message.h"

namespace android::hardware {

class Peer;

/**
 * What tells the objects of one peer apart. Its own numbers would do; but who sends us references may make
 * one up, with the number of an object and a wrong nonce, and that must not stand for the object.
 */
struct ObjectName {
    uint64_t number = 0;
    uint64_t nonce = 0;

    bool operator==(const ObjectName& other) const { return number == other.number && nonce == other.nonce; }
};

/** An object of a peer. */
class RemoteObject final : public Proxy {
  public:
    RemoteObject(std::shared_ptr<Peer> peer, const ObjectName& name) : mPeer(std::move(peer)), mName(name) {}
    ~RemoteObject() override;

    Peer& peer() const { return *mPeer; }
    const ObjectName& name() const { return mName; }

  private:
    status_t send(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) override;
    status_t watch() override;

    const std::shared_ptr<Peer> mPeer;
    const ObjectName mName;
};

/**
 * The proxies of one peer's objects, one an object, and how many references the peer counts for us. Any
 * thread. Proxies are not owned: each takes itself out when it ends.
 */
class ProxyTable {
  public:
    /**
     * The proxy of an object; a new one if it has none. May throw std::bad_alloc.
     *
     * @param counted references that the peer has counted for us with this one
     * @return null when the peer has ended
     */
    sp<RemoteObject> get(const std::shared_ptr<Peer>& peer, const ObjectName& name, uint64_t counted);

    /** Notes references that came, without making a proxy: they are owed. May throw std::bad_alloc. */
    void owe(const ObjectName& name, uint64_t counted);

    /** A proxy ends. What was counted for it is owed to the peer from now on, unless it has a successor. */
    void forget(RemoteObject* proxy);

    /** References that are to be given back to the peer, of one object. False when none are owed. */
    bool nextOwed(ObjectName* name, uint32_t* count);
    /** They have been given back. */
    void paid(const ObjectName& name, uint32_t count);

    /** The peer has ended: takes the links of all proxies. Later ones are not made. Takes no memory. */
    void end(DeathLinks* links);

    bool empty();

  private:
    struct Known {
        RemoteObject* address = nullptr;  // null once it is about to end; then its count is owed
        wp<RemoteObject> proxy;
        uint64_t received = 0;  // references that the peer counts for us
    };

    struct Hash {
        size_t operator()(const ObjectName& name) const { return name.nonce; }  // random
    };

    CheckedMutex mLock;
    std::unordered_map<ObjectName, Known, Hash> mKnown GUARDED_BY(mLock);
    size_t mProxies GUARDED_BY(mLock) = 0;  // entries that have one
    size_t mOwed GUARDED_BY(mLock) = 0;     // entries whose count is owed
    ObjectName mOwedLast GUARDED_BY(mLock);
    bool mEnded GUARDED_BY(mLock) = false;
};

}  // namespace android::hardware
