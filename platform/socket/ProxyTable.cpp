#include "platform/socket/ProxyTable.h"

#include <algorithm>

#include "platform/socket/Peer.h"

namespace android::hardware {

RemoteObject::~RemoteObject() {
    if (!isParents()) {
        mPeer->forgetProxy(this);
    }
}

status_t RemoteObject::send(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    MessageHeader head{};
    head.code = code;
    head.object = mName.number;
    head.nonce = mName.nonce;
    return (flags & FLAG_ONEWAY) != 0 ? mPeer->post(head, data) : mPeer->call(head, data, reply);
}

status_t RemoteObject::watch() {
    return mPeer->watchDeath();
}

sp<RemoteObject> ProxyTable::get(const std::shared_ptr<Peer>& peer, const ObjectName& name,
                                 uint64_t counted) {
    const CheckedLock lock(mLock);
    if (mEnded) {
        return nullptr;
    }
    Known& known = mKnown[name];
    sp<RemoteObject> proxy = known.address == nullptr ? nullptr : known.proxy.promote();
    if (proxy == nullptr) {
        try {
            proxy = new RemoteObject(peer, name);
        } catch (...) {
            if (known.address == nullptr && known.received == 0) {
                mKnown.erase(name);
            }
            throw;
        }
        // One that is ending at this moment finds that it has a successor, which takes over its count.
        mProxies += known.address == nullptr ? 1 : 0;
        mOwed -= known.address == nullptr && known.received > 0 ? 1 : 0;
        known.address = proxy.get();
        known.proxy = proxy;
    }
    known.received += counted;
    return proxy;
}

void ProxyTable::owe(const ObjectName& name, uint64_t counted) {
    const CheckedLock lock(mLock);
    if (mEnded) {
        return;
    }
    Known& known = mKnown[name];
    mOwed += known.address == nullptr && known.received == 0 ? 1 : 0;
    known.received += counted;
}

void ProxyTable::forget(RemoteObject* proxy) {
    const CheckedLock lock(mLock);
    const auto known = mKnown.find(proxy->name());
    if (known == mKnown.end() || known->second.address != proxy) {
        return;
    }
    --mProxies;
    if (known->second.received == 0) {
        mKnown.erase(known);
        return;
    }
    known->second.address = nullptr;
    ++mOwed;
    mOwedLast = proxy->name();
}

bool ProxyTable::nextOwed(ObjectName* name, uint32_t* count) {
    const CheckedLock lock(mLock);
    if (mOwed == 0) {
        return false;
    }
    const auto isOwed = [](const auto& each) {
        return each.second.address == nullptr && each.second.received > 0;
    };
    auto owed = mKnown.find(mOwedLast);  // most often the only one
    if (owed == mKnown.end() || !isOwed(*owed)) {
        owed = std::find_if(mKnown.begin(), mKnown.end(), isOwed);
    }
    *name = owed->first;
    *count = static_cast<uint32_t>(std::min<uint64_t>(owed->second.received, UINT32_MAX));
    return true;
}

void ProxyTable::paid(const ObjectName& name, uint32_t count) {
    const CheckedLock lock(mLock);
    const auto known = mKnown.find(name);
    if (mEnded || known == mKnown.end()) {
        return;
    }
    known->second.received -= count;
    if (known->second.address == nullptr && known->second.received == 0) {
        --mOwed;
        mKnown.erase(known);
    }
}

void ProxyTable::end(DeathLinks* links) {
    const CheckedLock lock(mLock);
    mEnded = true;
    for (auto& [name, known] : mKnown) {
        if (known.address != nullptr) {
            // One that is ending waits for our lock, with its memory in place.
            known.address->takeLinks(links);
        }
        known.received = 0;
    }
    mOwed = 0;
}

bool ProxyTable::empty() {
    const CheckedLock lock(mLock);
    return mProxies == 0;
}

}  // namespace android::hardware
