#include <hidl/HidlTransportSupport.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>

#include "tools/fapictl/Display.h"
#include "tools/fapictl/Events.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

using android::hardware::Return;
using android::hardware::Void;
using std::chrono::steady_clock;
using vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiCallbackManager;
using vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;
using vendor::zentrovi::tv::zvttvfactory::V1_0::ZvtTvFApiEventCommonObject;

/**
 * Payload that waits to be printed, at most. Beyond that the callback waits, so that a slow reader of the
 * output fills the service's queue for this client and not this process's memory.
 */
constexpr size_t kQueueBytes = 8 << 20;

/** The service's last events may come in after the notice of its death: how long without one is the end. */
constexpr auto kAfterDeath = std::chrono::milliseconds(200);

/** A count of occurrences that poll() can wait for. */
class Bell {
  public:
    Bell() : mFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (mFd < 0) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
    }
    ~Bell() { close(mFd); }
    Bell(const Bell&) = delete;

    /** May be called in a signal handler. Fails only when the count is at its limit, which is as good. */
    void ring() const {
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(mFd, &one, sizeof one);
    }
    /** Whether it has rung since it was last asked. */
    bool rang() const {
        uint64_t count = 0;
        return read(mFd, &count, sizeof count) == sizeof count;
    }
    int fd() const { return mFd; }

  private:
    const int mFd;
};

/** While it lives, the signals that ask a process to end only ring a bell; the second one ends the process.
 */
class EndSignals {
  public:
    EndSignals() {
        bell().rang();
        struct sigaction action = {};
        action.sa_handler = [](int) {
            const int error = errno;
            bell().ring();
            errno = error;
        };
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        for (size_t i = 0; i < std::size(kSignals); ++i) {
            sigaction(kSignals[i], nullptr, &mBefore[i]);
            // A shell's background jobs ignore Ctrl-C, and go on doing so.
            if (mBefore[i].sa_handler != SIG_IGN) {
                sigaction(kSignals[i], &action, nullptr);
            }
        }
    }
    ~EndSignals() {
        for (size_t i = 0; i < std::size(kSignals); ++i) {
            sigaction(kSignals[i], &mBefore[i], nullptr);
        }
    }
    EndSignals(const EndSignals&) = delete;

    /** Lives for ever: a handler may still be running when the signals are given back. */
    static const Bell& bell() {
        static const Bell& bell = *new Bell;
        return bell;
    }

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    struct sigaction mBefore[std::size(kSignals)] = {};
};

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

using Object = ZvtTvFApiEventCommonObject;

/** What the manager calls; registered until the process ends, so it outlives the watch. */
class Watcher : public IZvtTvFApiCallbackManager {
  public:
    /** Events of other modules are dropped; no modules are all of them. */
    explicit Watcher(const std::vector<std::string>& modules) : mModules(modules) {}

#define WATCH(method, module)                                                                               \
    Return<void> method(uint32_t type, const Object& object1, const Object& object2, const Object& object3, \
                        const Object& object4) override {                                                   \
        return push(module, type, {&object1, &object2, &object3, &object4});                                \
    }
    WATCH(notifySysEvent, "sys")
    WATCH(notifyDispEvent, "disp")
    WATCH(notifyDispTstEvent, "disptst")
    WATCH(notifyInfoEvent, "info")
    WATCH(notifyInpSrcEvent, "inpsrc")
    WATCH(notifyPrphrlEvent, "prphrl")
    WATCH(notifyAudEvent, "aud")
    WATCH(notifyNetEvent, "net")
    WATCH(notifyTvEvent, "tv")
#undef WATCH

    Queue queue;

  private:
    Return<void> push(const char* module, uint32_t type, const std::array<const Object*, 4>& objects) {
        Event event;
        event.time = std::chrono::system_clock::now();
        event.module = module;
        event.type = type;
        if (mModules.empty() || std::find(mModules.begin(), mModules.end(), module) != mModules.end()) {
            for (size_t i = 0; i < objects.size(); ++i) {
                const Object& object = *objects[i];
                event.records[i].value = object.u32Value;
                event.records[i].text.assign(object.strValue.c_str(), object.strValue.size());
                event.records[i].bytes.assign(object.vecValue.begin(), object.vecValue.end());
            }
            queue.push(std::move(event));
        }
        return Void();
    }

    const std::vector<std::string> mModules;
};

class DeathNotice : public android::hardware::hidl_death_recipient {
  public:
    explicit DeathNotice(const sp<Watcher>& watcher) : mWatcher(watcher) {}
    void serviceDied(uint64_t, const android::wp<IBase>&) override { mWatcher->queue.setDead(); }

  private:
    const sp<Watcher> mWatcher;
};

std::vector<std::string> chosenModules(const Options& options) {
    std::vector<std::string> chosen;
    for (const std::string& word : options.modules) {
        const std::vector<std::string>& all = eventModules();
        const auto at = std::find_if(all.begin(), all.end(),
                                     [&](const std::string& one) { return equalIgnoringCase(one, word); });
        if (at == all.end()) {
            std::string names;
            for (const std::string& one : all) {
                names += (names.empty() ? "" : ", ") + one;
            }
            const std::string near = suggestion(word, all);
            throw Failure(Exit::Usage,
                          "no module " + inQuotes(word) + (near.empty() ? "; there are " + names : near));
        }
        chosen.push_back(*at);
    }
    return chosen;
}

/** Returns the manager, whose proxy must live for the notice to come. */
sp<IZvtTvFApiManager> subscribe(const sp<IBase>& service, const sp<Watcher>& watcher,
                                const sp<DeathNotice>& notice) {
    // One thread: events are queued in the order in which they come in.
    android::hardware::configureRpcThreadpool(1, false);
    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::castFrom(service);
    if (manager == nullptr) {
        throw Failure(Exit::Transport, "the service is no event manager");
    }
    if (const Return<bool> linked = manager->linkToDeath(notice, 0); !linked.isOk() || !linked) {
        throw Failure(Exit::Transport, "the service died before events could be watched");
    }
    const Return<int32_t> status = manager->a_hidl_a_zvttvfapi_mngr_set_callback(watcher);
    if (!status.isOk()) {
        throw Failure(Exit::Transport, "events cannot be watched: " + escaped(status.description()));
    }
    const int32_t number = status;
    if (number != 0) {
        throw Failure(Exit::Status, "the service refused the callback: " + std::to_string(number) + " (" +
                                            statusName(number) + ")");
    }
    return manager;
}

/** Sleeps until something happens or the time has come; false in the latter case. */
bool sleepUntil(const Queue& queue, std::optional<steady_clock::time_point> time) {
    pollfd fds[] = {{queue.bell().fd(), POLLIN, 0}, {EndSignals::bell().fd(), POLLIN, 0}};
    timespec left = {};
    if (time) {
        const auto duration = std::max(*time - steady_clock::now(), steady_clock::duration::zero());
        const auto whole = std::chrono::floor<std::chrono::seconds>(duration);
        left.tv_sec = whole.count();
        left.tv_nsec = std::chrono::nanoseconds(duration - whole).count();
    }
    const int ready = ppoll(fds, std::size(fds), time ? &left : nullptr, nullptr);
    if (ready < 0 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "ppoll");
    }
    queue.bell().rang();
    return ready != 0;
}

Exit print(const Context& context, Queue& queue, std::optional<steady_clock::time_point> deadline) {
    const Options& options = context.options;
    uint64_t shown = 0;
    while (true) {
        if (EndSignals::bell().rang()) {
            return Exit::Success;
        }
        if (deadline && steady_clock::now() >= *deadline) {
            if (!options.count) {
                return Exit::Success;
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
                if (options.count && shown >= static_cast<uint64_t>(*options.count)) {
                    return Exit::Success;
                }
                break;
            case Queue::State::Empty:
                sleepUntil(queue, deadline);
                break;
            case Queue::State::Dead:
                if (!sleepUntil(queue, steady_clock::now() + kAfterDeath)) {
                    throw Failure(Exit::Transport, "the service died; " + std::to_string(shown) +
                                                           (shown == 1 ? " event was" : " events were") +
                                                           " shown until then");
                }
                break;
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
    const sp<Watcher> watcher = new Watcher(chosenModules(options));
    const sp<DeathNotice> notice = new DeathNotice(watcher);
    // Whatever ends the watch, the callback must not wait for room that nobody makes.
    struct Closer {
        Queue& queue;
        ~Closer() { queue.close(); }
    } const closer = {watcher->queue};
    const sp<IBase> service = findService(context, findInterface(context.package, "Manager"));
    const EndSignals signals;
    const sp<IZvtTvFApiManager> manager = subscribe(service, watcher, notice);
    if (!options.quiet) {
        context.err << "watching: press Ctrl-C to end" << std::endl;
    }
    return print(context, watcher->queue, deadline);
}

}  // namespace fapictl
