#include "platform/socket/Exports.h"

#include <algorithm>
#include <limits>

#include "platform/socket/Socket.h"

namespace android::hardware {

/** The object's entry, which is new and unused if it had none. */
Exports::Table::iterator Exports::entryOf(const sp<BHwBinder>& object) {
    const auto known = mNumbers.find(object.get());
    if (known != mNumbers.end()) {
        return mEntries.find(known->second);
    }
    const auto entry = mEntries.emplace(mNextNumber, Entry{object, randomNumber(), 0, 0, {}}).first;
    try {
        mNumbers.emplace(object.get(), mNextNumber);
    } catch (...) {
        mEntries.erase(entry);  // the caller still has the object
        throw;
    }
    ++mNextNumber;
    return entry;
}

void Exports::pin(const sp<BHwBinder>& object, uint64_t* number, uint64_t* nonce) {
    const CheckedLock lock(mLock);
    const auto entry = entryOf(object);
    ++entry->second.pins;
    *number = entry->first;
    *nonce = entry->second.nonce;
}

void Exports::unpin(uint64_t number) {
    sp<BHwBinder> last;
    const CheckedLock lock(mLock);
    const auto entry = mEntries.find(number);
    --entry->second.pins;
    last = dropIfUnused(entry);
}

/** One reference more for a peer. */
void Exports::add(Table::iterator entry, Holds* holds) {
    if (++holds->balances[entry->first] > 0) {
        ++entry->second.held;
    }
}

bool Exports::hold(const sp<BHwBinder>& object, Holds* holds, uint64_t* number, uint64_t* nonce) {
    const CheckedLock lock(mLock);
    if (holds->closed) {
        return false;
    }
    const auto entry = entryOf(object);
    try {
        add(entry, holds);
    } catch (...) {
        dropIfUnused(entry);
        throw;
    }
    *number = entry->first;
    *nonce = entry->second.nonce;
    return true;
}

bool Exports::holdFor(uint64_t number, uint64_t nonce, Holds* holds) {
    const CheckedLock lock(mLock);
    const auto entry = mEntries.find(number);
    if (holds->closed || entry == mEntries.end() || entry->second.nonce != nonce) {
        return false;
    }
    add(entry, holds);
    return true;
}

/** Takes an entry out that nobody holds; the object comes back for release outside the lock. */
sp<BHwBinder> Exports::dropIfUnused(Table::iterator entry) {
    if (entry->second.held > 0 || entry->second.pins > 0) {
        return nullptr;
    }
    for (Holds* holds : entry->second.early) {
        holds->balances.erase(entry->first);
    }
    sp<BHwBinder> object = std::move(entry->second.object);
    mNumbers.erase(object.get());
    mEntries.erase(entry);
    return object;
}

void Exports::release(uint64_t number, uint64_t count, Holds* holds) {
    sp<BHwBinder> last;
    const CheckedLock lock(mLock);
    const auto entry = mEntries.find(number);
    if (count == 0 || holds->closed || entry == mEntries.end()) {
        return;
    }
    const auto balance = holds->balances.find(number);
    const int64_t before = balance == holds->balances.end() ? 0 : balance->second;
    constexpr auto kMostAtOnce = static_cast<uint64_t>(std::numeric_limits<uint32_t>::max());
    // A peer that goes on giving back what it does not have loses no more by it.
    const int64_t after = std::max(before - static_cast<int64_t>(std::min(count, kMostAtOnce)),
                                   -static_cast<int64_t>(kMostAtOnce));
    auto& early = entry->second.early;
    if (after == 0) {
        early.erase(std::remove(early.begin(), early.end(), holds), early.end());
        holds->balances.erase(balance);
    } else {
        early.reserve(early.size() + 1);
        holds->balances[number] = after;
        if (after < 0 && std::find(early.begin(), early.end(), holds) == early.end()) {
            early.push_back(holds);
        }
    }
    entry->second.held -= static_cast<uint64_t>(std::max<int64_t>(before, 0) - std::max<int64_t>(after, 0));
    last = dropIfUnused(entry);
}

void Exports::releaseAll(Holds* holds) {
    std::unordered_map<uint64_t, int64_t> balances;
    {
        const CheckedLock lock(mLock);
        holds->closed = true;
        balances.swap(holds->balances);
    }
    // One at a time, each released outside the lock: it takes no memory to remember them.
    for (const auto& [number, balance] : balances) {
        sp<BHwBinder> last;
        const CheckedLock lock(mLock);
        const auto entry = mEntries.find(number);
        if (entry == mEntries.end()) {
            continue;
        }
        auto& early = entry->second.early;
        early.erase(std::remove(early.begin(), early.end(), holds), early.end());
        entry->second.held -= static_cast<uint64_t>(std::max<int64_t>(balance, 0));
        last = dropIfUnused(entry);
    }
}

sp<BHwBinder> Exports::find(uint64_t number, uint64_t nonce) {
    const CheckedLock lock(mLock);
    const auto entry = mEntries.find(number);
    return entry != mEntries.end() && entry->second.nonce == nonce ? entry->second.object : nullptr;
}

size_t Exports::size() {
    const CheckedLock lock(mLock);
    return mEntries.size();
}

}  // namespace android::hardware
