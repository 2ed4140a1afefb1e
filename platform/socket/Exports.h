#pragma once

#include <hwbinder/IBinder.h>

#include <mutex>
#include <unordered_map>

#include "platform/socket/Message.h"

namespace android::hardware {

/** What one peer holds. Guarded by the lock of the Exports that it is given to. */
struct Holds {
    std::unordered_map<uint64_t, uint64_t> counts;  // object number to the references that the peer was sent
    bool closed = false;                            // the peer is gone: nothing is held for it any more
};

/**
 * The objects of this process that others may call. An object stays exported while a peer holds it or it is
 * pinned. Any thread; objects are released outside the lock, as their destructors may call back.
 */
class Exports {
  public:
    /** Exports for good, for the registry. */
    void pin(const sp<BHwBinder>& object, uint64_t* number, uint64_t* nonce);

    /** Undoes pin(). */
    void unpin(uint64_t number);

    /** Exports the object for one more reference that a peer is sent. False when the peer is gone. */
    bool hold(const sp<BHwBinder>& object, Holds* holds, uint64_t* number, uint64_t* nonce);

    /** A peer got the reference elsewhere. False when there is no such object, or no peer. */
    bool hold(uint64_t number, uint64_t nonce, Holds* holds);

    /** How many references to an object a peer holds. */
    uint64_t heldBy(uint64_t number, const Holds& holds);

    /** A peer dropped count references. False when it holds fewer: then it is left with what it had. */
    bool release(uint64_t number, uint64_t count, Holds* holds);

    /** A peer is gone, and stays so. */
    void releaseAll(Holds* holds);

    /** The object, if it is exported under this number with this nonce. */
    sp<BHwBinder> find(uint64_t number, uint64_t nonce);

    size_t size();

  private:
    struct Entry {
        sp<BHwBinder> object;
        uint64_t nonce = 0;
        uint64_t holds = 0;
        bool pinned = false;
    };
    using Table = std::unordered_map<uint64_t, Entry>;

    Table::iterator entryOf(const sp<BHwBinder>& object);
    sp<BHwBinder> drop(uint64_t number, uint64_t count);

    std::mutex mLock;
    Table mEntries;
    std::unordered_map<BHwBinder*, uint64_t> mNumbers;
    uint64_t mNextNumber = 1;  // never reused: a late call can not reach another object
};

}  // namespace android::hardware
