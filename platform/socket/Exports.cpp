#include "platform/socket/Exports.h"

#include <vector>

#include "platform/socket/Socket.h"

namespace android::hardware {

Exports::Table::iterator Exports::entryOf(const sp<BHwBinder>& object) {
    const auto [number, isNew] = mNumbers.try_emplace(object.get(), mNextNumber);
    if (!isNew) {
        return mEntries.find(number->second);
    }
    return mEntries.emplace(mNextNumber++, Entry{object, randomNumber(), 0, false}).first;
}

void Exports::pin(const sp<BHwBinder>& object, uint64_t* number, uint64_t* nonce) {
    const std::lock_guard<std::mutex> lock(mLock);
    const auto entry = entryOf(object);
    entry->second.pinned = true;
    *number = entry->first;
    *nonce = entry->second.nonce;
}

bool Exports::hold(const sp<BHwBinder>& object, Holds* holds, uint64_t* number, uint64_t* nonce) {
    const std::lock_guard<std::mutex> lock(mLock);
    if (holds->closed) {
        return false;
    }
    const auto entry = entryOf(object);
    ++entry->second.holds;
    ++holds->counts[entry->first];
    *number = entry->first;
    *nonce = entry->second.nonce;
    return true;
}

bool Exports::hold(uint64_t number, uint64_t nonce, Holds* holds) {
    const std::lock_guard<std::mutex> lock(mLock);
    const auto entry = mEntries.find(number);
    if (holds->closed || entry == mEntries.end() || entry->second.nonce != nonce) {
        return false;
    }
    ++entry->second.holds;
    ++holds->counts[number];
    return true;
}

/** Takes holds off an entry; the object comes back for release outside the lock when it was the last. */
sp<BHwBinder> Exports::drop(uint64_t number, uint64_t count) {
    const auto entry = mEntries.find(number);
    entry->second.holds -= count;
    if (entry->second.holds > 0 || entry->second.pinned) {
        return nullptr;
    }
    sp<BHwBinder> object = entry->second.object;
    mNumbers.erase(object.get());
    mEntries.erase(entry);
    return object;
}

uint64_t Exports::heldBy(uint64_t number, const Holds& holds) {
    const std::lock_guard<std::mutex> lock(mLock);
    const auto held = holds.counts.find(number);
    return held == holds.counts.end() ? 0 : held->second;
}

void Exports::unpin(uint64_t number) {
    sp<BHwBinder> last;
    const std::lock_guard<std::mutex> lock(mLock);
    mEntries.at(number).pinned = false;
    last = drop(number, 0);
}

bool Exports::release(uint64_t number, uint64_t count, Holds* holds) {
    sp<BHwBinder> last;
    const std::lock_guard<std::mutex> lock(mLock);
    const auto held = holds->counts.find(number);
    if (held == holds->counts.end() || held->second < count) {
        return false;
    }
    held->second -= count;
    if (held->second == 0) {
        holds->counts.erase(held);
    }
    last = drop(number, count);
    return true;
}

void Exports::releaseAll(Holds* holds) {
    std::vector<sp<BHwBinder>> last;
    const std::lock_guard<std::mutex> lock(mLock);
    for (const auto& [number, count] : holds->counts) {
        last.push_back(drop(number, count));
    }
    holds->counts.clear();
    holds->closed = true;
}

sp<BHwBinder> Exports::find(uint64_t number, uint64_t nonce) {
    const std::lock_guard<std::mutex> lock(mLock);
    const auto entry = mEntries.find(number);
    return entry != mEntries.end() && entry->second.nonce == nonce ? entry->second.object : nullptr;
}

size_t Exports::size() {
    const std::lock_guard<std::mutex> lock(mLock);
    return mEntries.size();
}

}  // namespace android::hardware
