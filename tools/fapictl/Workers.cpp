#include "tools/fapictl/Workers.h"

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

namespace fapictl {
namespace {

/** Threads without work that are kept for the next. */
constexpr int kIdle = 4;
constexpr std::chrono::milliseconds kUntilEnded(100);

}  // namespace

Workers::~Workers() {
    finish();
}

void Workers::work(const std::shared_ptr<State>& state) {
    std::unique_lock<std::mutex> lock(state->mutex);
    while (true) {
        if (state->waiting.empty()) {
            if (state->ended || state->idle >= kIdle) {
                break;
            }
            ++state->idle;
            state->changed.wait(lock, [&] { return state->ended || !state->waiting.empty(); });
            --state->idle;
            continue;
        }
        std::function<void()> next = std::move(state->waiting.front());
        state->waiting.pop_front();
        lock.unlock();
        next();
        next = nullptr;  // what it holds may take its time to go
        lock.lock();
    }
    --state->threads;
    state->changed.notify_all();
}

void Workers::run(std::function<void()> work) {
    const std::lock_guard<std::mutex> lock(mState->mutex);
    if (mState->ended) {
        return;
    }
    mState->waiting.push_back(std::move(work));
    if (mState->idle >= static_cast<int>(mState->waiting.size()) || mState->threads >= kMost) {
        mState->changed.notify_one();
        return;
    }
    try {
        std::thread([state = mState] { Workers::work(state); }).detach();
        ++mState->threads;
    } catch (const std::system_error&) {
        if (mState->threads == 0) {
            mState->waiting.pop_back();
            throw;
        }
    }
}

int Workers::finish() {
    std::unique_lock<std::mutex> lock(mState->mutex);
    mState->ended = true;
    mState->waiting.clear();
    mState->changed.notify_all();
    mState->changed.wait_for(lock, kUntilEnded, [&] { return mState->threads == 0; });
    return mState->threads;
}

}  // namespace fapictl
