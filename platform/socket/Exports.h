#pragma once

#include <hwbinder/IBinder.h>

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/socket/Message.h"

namespace android::hardware {

/** What one peer holds. Guarded by the lock of the Exports that it is given to. */
struct Holds {
    /**
     * Object number to the references that the peer was given, less those that it gave back. Below zero for a
     * moment when a reference that a third process handed over is given back before we hear of its being
     * handed over.
     */
    std::unordered_map<uint64_t, int64_t> balances;
    bool closed = false;  // the peer is gone: nothing is held for it any more
};

/**
 * The objects of this process that others may call. An object stays exported while a peer holds it or it is
 * pinned. Any thread; objects are released outside the lock, as their destructors may call back.
 */
class Exports {
  public:
    /** Exports for good, for the registry; as many pins as calls. May throw std::bad_alloc. */
    void pin(const sp<BHwBinder>& object, uint64_t* number, uint64_t* nonce);

    /** Undoes one pin(). */
    void unpin(uint64_t number);

    /** Exports the object for one more reference that a peer is sent. False when the peer is gone. May throw.
     */
    bool hold(const sp<BHwBinder>& object, Holds* holds, uint64_t* number, uint64_t* nonce);

    /** The peer is handed the reference by a third process. False when there is no such object. May throw. */
    bool holdFor(uint64_t number, uint64_t nonce, Holds* holds);

    /**
     * A peer gave count references back. One that gives back more than it has takes them from its own next
     * ones, never from another's; of objects that are not there, nothing is kept. May throw when it does so.
     */
    void release(uint64_t number, uint64_t count, Holds* holds);

    /** A peer is gone, and stays so. */
    void releaseAll(Holds* holds);

    /** The object, if it is exported under this number with this nonce. */
    sp<BHwBinder> find(uint64_t number, uint64_t nonce);

    size_t size();

  private:
    struct Entry {
        sp<BHwBinder> object;
        uint64_t nonce = 0;
        uint64_t pins = 0;
        uint64_t held = 0;          // balances above zero, of all peers
        std::vector<Holds*> early;  // those whose balance has been below zero
    };
    using Table = std::unordered_map<uint64_t, Entry>;

    Table::iterator entryOf(const sp<BHwBinder>& object) REQUIRES(mLock);
    void add(Table::iterator entry, Holds* holds) REQUIRES(mLock);
    sp<BHwBinder> dropIfUnused(Table::iterator entry) REQUIRES(mLock);

    CheckedMutex mLock;
    Table mEntries GUARDED_BY(mLock);
    std::unordered_map<BHwBinder*, uint64_t> mNumbers GUARDED_BY(mLock);
    uint64_t mNextNumber GUARDED_BY(mLock) = 1;  // never reused: a late call can not reach another object
};

}  // namespace android::hardware
