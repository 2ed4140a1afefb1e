#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace android::hardware::details {

/** Runs tasks in order on a thread of its own, which starts with the first task. */
class TaskRunner {
  public:
    TaskRunner() = default;
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;
    /** Does not wait: tasks that were taken still run. */
    ~TaskRunner();

    /** @param limit how many tasks may wait; call it once, before push() */
    void start(size_t limit);
    /** @return false when as many tasks wait as may, or no thread can be had */
    bool push(const std::function<void()>& task);

  private:
    struct Queue;
    static void run(const std::shared_ptr<Queue>& queue);

    std::shared_ptr<Queue> mQueue;
};

}  // namespace android::hardware::details
