#include <hidl/TaskRunner.h>

#include <condition_variable>
#include <deque>
#include <system_error>
#include <thread>

#include "platform/binding/CheckedLock.h"

namespace android::hardware::details {

/** Shared with the thread, which may outlive the runner: a task may drop the last reference to it. */
struct TaskRunner::Queue {
    const size_t limit;
    CheckedMutex lock;
    std::condition_variable changed;
    std::deque<std::function<void()>> tasks GUARDED_BY(lock);
    bool hasThread GUARDED_BY(lock) = false;
    bool ends GUARDED_BY(lock) = false;

    explicit Queue(size_t most) : limit(most) {}
};

void TaskRunner::start(size_t limit) {
    mQueue = std::make_shared<Queue>(limit);
}

TaskRunner::~TaskRunner() {
    if (mQueue != nullptr) {
        const CheckedLock lock(mQueue->lock);
        mQueue->ends = true;
        mQueue->changed.notify_one();
    }
}

bool TaskRunner::push(const std::function<void()>& task) {
    const CheckedLock lock(mQueue->lock);
    if (mQueue->tasks.size() >= mQueue->limit) {
        return false;
    }
    if (!mQueue->hasThread) {
        try {
            std::thread([queue = mQueue] { run(queue); }).detach();
        } catch (const std::system_error&) {
            return false;
        }
        mQueue->hasThread = true;
    }
    mQueue->tasks.push_back(task);
    mQueue->changed.notify_one();
    return true;
}

void TaskRunner::run(const std::shared_ptr<Queue>& queue) {
    CheckedLock lock(queue->lock);
    while (true) {
        queue->changed.wait(lock,
                            [&]() REQUIRES(queue->lock) { return queue->ends || !queue->tasks.empty(); });
        if (queue->tasks.empty()) {
            return;
        }
        std::function<void()> task = std::move(queue->tasks.front());
        queue->tasks.pop_front();
        lock.unlock();
        task();
        task = nullptr;  // what it holds may end here, unlocked
        lock.lock();
    }
}

}  // namespace android::hardware::details
