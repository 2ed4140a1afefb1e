#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

#include "tools/fapictl/Display.h"
#include "tools/fapictl/Events.h"
#include "tools/fapictl/Filter.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Signals.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watchdog.h"
#include "tools/fapictl/Watcher.h"

namespace fapictl {
namespace {

using std::chrono::steady_clock;

/**
 * Payload that waits to be printed, at most. Beyond that the callback waits, so that a slow reader of the
 * output fills the service's queue for this client and not this process's memory.
 */
constexpr size_t kQueueBytes = 8 << 20;

/** What a command has caused may come in after its end: how long without an event is the end. */
constexpr auto kAfterCommand = std::chrono::milliseconds(200);

/** Hands events from the threads that receive them to the one that prints. */
class Queue {
  public:
    enum class State { Event, Empty, Dead };

    /** Waits while the queue is full; drops the event when nobody takes any more. */
    void push(Event event) {
        const size_t size = sizeOf(event);
        std::unique_lock<std::mutex> lock(mMutex);
        mRoom.wait(lock, [&] { return mClosed || mEvents.empty() || mBytes + size <= kQueueBytes; });
        if (!mClosed) {
            mBytes += size;
            mEvents.push_back(std::move(event));
            mBell.ring();
        }
    }

    State take(Event& event) {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mEvents.empty()) {
            return mDead ? State::Dead : State::Empty;
        }
        event = std::move(mEvents.front());
        mEvents.pop_front();
        mBytes -= sizeOf(event);
        mRoom.notify_one();
        return State::Event;
    }

    void setDead() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mDead = true;
        mBell.ring();
    }

    void close() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mClosed = true;
        mEvents.clear();
        mRoom.notify_all();
    }

    const Bell& bell() const { return mBell; }

  private:
    static size_t sizeOf(const Event& event) {
        size_t size = sizeof event;
        for (const Event::Record& record : event.records) {
            size += record.text.size() + record.bytes.size();
        }
        return size;
    }

    const Bell mBell;
    std::mutex mMutex;
    std::condition_variable mRoom;
    // Guarded by mMutex.
    std::deque<Event> mEvents;
    size_t mBytes = 0;
    bool mDead = false;
    bool mClosed = false;
};

/** The program that is run once the watch is registered. */
class Command {
  public:
    /** Starts it; throws Failure (Command). Rings the bell of the queue when it has ended. */
    Command(const std::vector<std::string>& words, std::shared_ptr<Queue> queue) {
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        // Events have standard output to themselves.
        posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
        const int error = posix_spawnp(&mPid, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw Failure(Exit::Command, "cannot run " + inQuotes(words[0]) + ": " + std::strerror(error));
        }
        std::thread([pid = mPid, ended = mStatus, queue = std::move(queue)] {
            // Left to be reaped with this process: until then its number is nobody else's.
            siginfo_t info = {};
            while (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
            }
            *ended = info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
            queue->bell().ring();
        }).detach();
    }
    /** Asks it to end if it still runs, and waits for nothing: it may not listen. */
    ~Command() {
        if (!status()) {
            kill(mPid, SIGTERM);
        }
    }
    Command(const Command&) = delete;

    /** Its exit code, 128 and the signal that ended it, or none while it runs. */
    std::optional<int> status() const {
        const int status = *mStatus;
        return status < 0 ? std::nullopt : std::optional(status);
    }

  private:
    pid_t mPid = -1;
    const std::shared_ptr<std::atomic<int>> mStatus = std::make_shared<std::atomic<int>>(-1);
};

/** Sleeps until something happens or the time has come; false in the latter case. */
bool sleepUntil(const Queue& queue, std::optional<steady_clock::time_point> time) {
    const bool happened = EndSignals::waitFor(queue.bell().fd(), time);
    queue.bell().rang();
    return happened;
}

/** The command may be null. */
Exit print(const Context& context, Queue& queue, const Command* command,
           std::optional<steady_clock::time_point> deadline) {
    const Options& options = context.options;
    uint64_t shown = 0;
    while (true) {
        if (EndSignals::bell().rang()) {
            return Exit::Success;
        }
        // Asked for before the events: those that it made are there when it has ended.
        const std::optional<int> ended = command == nullptr ? 0 : command->status();
        if (ended && *ended != 0) {
            throw Failure(Exit::Command,
                          inQuotes(options.words[0]) + " ended with " + std::to_string(*ended));
        }
        const bool enough = options.count && shown >= static_cast<uint64_t>(*options.count);
        if (ended && enough) {
            return Exit::Success;
        }
        if (deadline && steady_clock::now() >= *deadline) {
            if (!options.count && ended) {
                return Exit::Success;
            }
            if (!ended && (enough || !options.count)) {
                throw Failure(Exit::NotFound, inQuotes(options.words[0]) + " has not ended within " +
                                                      Json(*options.timeout).dump() + " s");
            }
            throw Failure(Exit::NotFound, std::to_string(shown) + " of " + std::to_string(*options.count) +
                                                  " events within " + Json(*options.timeout).dump() + " s");
        }
        Event event;
        switch (queue.take(event)) {
            case Queue::State::Event:
                ++shown;
                if (options.json.empty()) {
                    context.out << eventLine(shown, event) << '\n';
                } else {
                    printJson(context, eventJson(shown, event));
                }
                if (!context.out.flush()) {
                    throw Failure(Exit::Output, "cannot write the events");
                }
                break;
            case Queue::State::Empty:
                if (command != nullptr && ended && !options.count) {
                    // What it has caused may still be under way.
                    const auto quiet = steady_clock::now() + kAfterCommand;
                    if (!sleepUntil(queue, deadline ? std::min(*deadline, quiet) : quiet)) {
                        return Exit::Success;
                    }
                } else {
                    sleepUntil(queue, deadline);
                }
                break;
            case Queue::State::Dead:
                throw Failure(Exit::Transport, "the service died; " + std::to_string(shown) +
                                                       (shown == 1 ? " event was" : " events were") +
                                                       " shown until then");
        }
    }
}

}  // namespace

Exit watch(const Context& context) {
    const Options& options = context.options;
    std::optional<steady_clock::time_point> deadline;
    if (options.timeout) {
        deadline = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                 std::chrono::duration<double>(*options.timeout));
    }
    // The listener stays with the runtime until the process ends, and the queue with it.
    const auto queue = std::make_shared<Queue>();
    const auto listener = std::make_shared<EventListener>();
    listener->take = [queue, filter = EventFilter(options.modules, options.types, options.matches)](
                             const Event& event) {
        if (filter.takes(event)) {
            queue->push(event);
        }
    };
    listener->died = [queue] { queue->setDead(); };
    // Whatever ends the watch, the callback must not wait for room that nobody makes.
    struct Closer {
        Queue& queue;
        ~Closer() { queue.close(); }
    } const closer = {*queue};
    // Until it is registered the time is the watchdog's, and a signal ends the process as it ends any.
    std::optional<Watchdog> watchdog;
    if (options.timeout) {
        watchdog.emplace(*options.timeout, context.err);
    }
    Watches watches;
    watches.add(context.engine, targetOf(context), listener);
    const EndSignals signals;
    watchdog.reset();
    if (deadline) {
        watchdog.emplace(*deadline, context.err);
    }
    if (!options.quiet) {
        context.err << "watching: press Ctrl-C to end" << std::endl;
    }
    std::optional<Command> command;
    if (!options.words.empty()) {
        command.emplace(options.words, queue);
    }
    return print(context, *queue, command ? &*command : nullptr, deadline);
}

}  // namespace fapictl
