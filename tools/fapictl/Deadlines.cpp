#include "tools/fapictl/Deadlines.h"

namespace fapictl {

Deadlines::~Deadlines() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEnding = true;
    }
    mSooner.notify_one();
    if (mThread.joinable()) {
        mThread.join();
    }
}

Deadlines::Key Deadlines::add(Clock::time_point time, std::function<void()> function) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const Key key(time, mCount++);
    mFunctions.emplace(key, std::move(function));
    if (!mThread.joinable()) {
        mThread = std::thread([this] { run(); });
    } else if (time < mWakes) {
        mWakes = time;
        mSooner.notify_one();
    }
    return key;
}

void Deadlines::remove(const Key& key) {
    std::function<void()> removed;  // what it holds may be large, or ours
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto at = mFunctions.find(key);
    if (at != mFunctions.end()) {
        removed = std::move(at->second);
        mFunctions.erase(at);
    }
}

void Deadlines::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mEnding) {
        if (mFunctions.empty()) {
            mWakes = Clock::time_point::max();
            mSooner.wait(lock);
            continue;
        }
        const auto first = mFunctions.begin();
        if (first->first.first > Clock::now()) {
            // What is removed meanwhile costs one wake-up at its time, and not one each.
            mWakes = first->first.first;
            mSooner.wait_until(lock, mWakes);
            continue;
        }
        const std::function<void()> function = std::move(first->second);
        mFunctions.erase(first);
        lock.unlock();
        function();
        lock.lock();
    }
}

}  // namespace fapictl
