#include "simulator/board/Dispatcher.h"

#include <algorithm>
#include <cstdio>

#include "simulator/board/ChipCall.h"
#include "simulator/board/Status.h"

namespace simulator {
namespace {

/** Whether there was the memory to do it. */
template <typename Work>
bool sayWhatIsLost(const Work& work) {
    const auto done = [&work] {
        work();
        return kOk;
    };
    const bool enough = guarded(done) == kOk;
    if (!enough) {
        fprintf(stderr, "board: no memory for an event: it is lost\n");
    }
    return enough;
}

}  // namespace

Dispatcher::Dispatcher() : mThread([this] { serve(); }) {}

Dispatcher::~Dispatcher() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEnding = true;
    }
    mChanged.notify_one();
    mThread.join();
}

bool Dispatcher::run(Task task, Clock::time_point when) {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mWaiting.size() >= kMaxWaiting) {
            if (!mOverflowing) {
                fprintf(stderr, "board: %zu events wait to be delivered: others are lost\n", kMaxWaiting);
            }
            mOverflowing = true;
            return false;
        }
        mOverflowing = mOverflowing && mWaiting.size() > kMaxWaiting / 2;
        if (!sayWhatIsLost([&] { mWaiting.emplace(std::max(when, Clock::now()), std::move(task)); })) {
            return false;
        }
    }
    mChanged.notify_one();
    return true;
}

void Dispatcher::raise(Module& module, uint32_t type, Module::Payload payload) {
    sayWhatIsLost(
            [&] { run([&module, type, payload = std::move(payload)] { deliver(module, type, payload); }); });
}

void Dispatcher::deliver(Module& module, uint32_t type, const Module::Payload& payload) {
    const int32_t status = module.raise(type, payload);
    if (status != kOk) {
        fprintf(stderr, "board: event 0x%x: %s (%d)\n", type,
                status == kNotSetUp ? "nobody listens" : "the handler has failed", status);
    }
}

void Dispatcher::serve() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mEnding) {
        if (mWaiting.empty()) {
            mChanged.wait(lock);
        } else if (const Clock::time_point next = mWaiting.begin()->first; next > Clock::now()) {
            mChanged.wait_until(lock, next);
        } else {
            const Task task = std::move(mWaiting.begin()->second);
            mWaiting.erase(mWaiting.begin());
            lock.unlock();
            sayWhatIsLost(task);
            lock.lock();
        }
    }
}

}  // namespace simulator
