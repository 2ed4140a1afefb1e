#include <hidl/TaskRunner.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace android::hardware::details {

/** Shared with the thread, which may outlive the runner: a task may drop the last reference to it. */
struct TaskRunner::Queue {
    const size_t limit;
    std::mutex lock;  // guards the rest
    std::condition_variable changed;
    std::deque<std::function<void()>> tasks;
    bool hasThread = false;
    bool ends = false;

    explicit Queue(size_t most) : limit(most) {}
};

void TaskRunner::start(size_t limit) {
    mQueue = std::make_shared<Queue>(limit);
}

TaskRunner::~TaskRunner() {
    if (mQueue != nullptr) {
        const std::lock_guard lock(mQueue->lock);
        mQueue->ends = true;
        mQueue->changed.notify_one();
    }
}

bool TaskRunner::push(const std::function<void()>& task) {
    const std::lock_guard lock(mQueue->lock);
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
    std::unique_lock lock(queue->lock);
    while (true) {
        queue->changed.wait(lock, [&] { return queue->ends || !queue->tasks.empty(); });
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
