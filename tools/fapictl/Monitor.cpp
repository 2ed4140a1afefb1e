#include <cutils/native_handle.h>
#include <fcntl.h>
#include <hidl/HidlSupport.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <system_error>

#include "tools/fapictl/Events.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Signals.h"
#include "tools/fapictl/Statuses.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/TracedCall.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watchdog.h"

namespace fapictl {
namespace {

using std::chrono::steady_clock;

/** The lines that a service writes to a pipe of ours, until it dies. */
class Trace {
  public:
    /** From then on every call has a line. Throws Failure when the service does not write them. */
    explicit Trace(IBase& manager) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw Failure(Exit::Transport, std::string("no pipe for the calls: ") + std::strerror(errno));
        }
        mPipe = ends[0];
        const std::unique_ptr<native_handle_t, int (*)(native_handle_t*)> handle(native_handle_create(1, 0),
                                                                                 native_handle_delete);
        if (handle == nullptr) {
            close(ends[1]);
            throw std::bad_alloc();
        }
        handle->data[0] = ends[1];
        const android::hardware::Return<void> asked = manager.debug(handle.get(), {"trace"});
        close(ends[1]);
        if (!asked.isOk()) {
            throw Failure(Exit::Transport, "the service did not answer: " + escaped(asked.description()));
        }
        const std::optional<std::string> first = readLine();
        const Json line = Json::parse(first.value_or(""), nullptr, false);
        if (!line.is_object() || !line.contains("tracing")) {
            throw Failure(Exit::Status, refusal());
        }
        fcntl(mPipe, F_SETFL, O_NONBLOCK);  // of our end alone
    }
    ~Trace() { close(mPipe); }
    Trace(const Trace&) = delete;

    /** The next line of what was received. */
    std::optional<std::string> takeLine() {
        const size_t end = mText.find('\n', mSearched);
        if (end == std::string::npos) {
            mSearched = mText.size();
            mText.erase(0, mTaken);
            mSearched -= mTaken;
            mTaken = 0;
            return std::nullopt;
        }
        std::string line = mText.substr(mTaken, end - mTaken);
        mTaken = mSearched = end + 1;
        return line;
    }
    /** Takes what has come. False at the end. */
    bool receive() {
        std::array<char, 65536> part;
        const ssize_t got = read(mPipe, part.data(), part.size());
        if (got < 0 && errno != EINTR && errno != EAGAIN) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
        mText.append(part.data(), got > 0 ? static_cast<size_t>(got) : 0);
        return got != 0;
    }
    int fd() const { return mPipe; }

  private:
    std::optional<std::string> readLine() {
        std::optional<std::string> line;
        while (!(line = takeLine()) && receive()) {
        }
        return line;
    }
    /** The rest is a page of state, on which one line may say why. */
    std::string refusal() {
        constexpr std::string_view kKey = "trace: ";
        while (const std::optional<std::string> line = readLine()) {
            if (line->compare(0, kKey.size(), kKey) == 0) {
                return "the service lets nobody look at its calls: " + escaped(line->substr(kKey.size()));
            }
        }
        return "the service cannot show its calls";
    }

    int mPipe;
    std::string mText;
    size_t mTaken = 0;     // of it, whole lines
    size_t mSearched = 0;  // no end of a line before
};

/** The calls that the words name; none names all. */
std::set<const Method*> chosenMethods(const Package& package, const std::vector<std::string>& words) {
    std::set<const Method*> chosen;
    for (const Interface* interface : selectInterfaces(package, words.empty() ? "*" : words[0])) {
        if (!interface->isService) {
            if (words.empty() || isPattern(words[0])) {
                continue;
            }
            throw Failure(Exit::Usage, shortName(*interface) +
                                               " is implemented by clients, whom the service calls; fapictl "
                                               "watch shows the events");
        }
        if (words.size() < 2) {
            for (const Method& method : interface->methods) {
                chosen.insert(&method);
            }
        } else if (!isPattern(words[0]) && !isPattern(words[1])) {
            chosen.insert(&findMethod(*interface, words[1]));
        } else {
            for (const Method* method : matchMethods(*interface, words[1])) {
                chosen.insert(method);
            }
        }
    }
    if (chosen.empty()) {
        throw Failure(Exit::Usage, words.size() < 2 ? "there are no methods to look at"
                                                    : "no method matches " + inQuotes(words[1]));
    }
    return chosen;
}

class Monitor {
  public:
    Monitor(const Context& context, const std::set<const Method*>& chosen)
        : mContext(context), mChosen(chosen) {}

    /** Prints a line of the trace, if it is a call that is looked for. Throws Failure (Output). */
    void take(const std::string& text) {
        const Json line = Json::parse(text, nullptr, false);
        if (!line.is_object()) {
            throw Failure(Exit::Transport, "the service wrote what is no line of a trace");
        }
        if (line.contains("lost")) {
            if (mContext.options.json.empty()) {
                mContext.out << line["lost"].dump() << " calls are missing here\n";
            } else {
                printJson(mContext, line);
            }
        } else {
            const TracedCall call = parseTracedCall(mContext.package, line, "the service's trace");
            // Among them what we ask the service ourselves, about statuses.
            if (line.value("pid", int64_t{0}) == getpid() || mChosen.count(call.method) == 0) {
                return;
            }
            ++mShown;
            print(call, line);
        }
        if (!mContext.out.flush()) {
            throw Failure(Exit::Output, "cannot write the calls");
        }
    }
    uint64_t shown() const { return mShown; }

  private:
    void print(const TracedCall& call, const Json& line) {
        const auto time = std::chrono::system_clock::time_point(
                std::chrono::microseconds(line.value("time", int64_t{0})));
        const double milliseconds = static_cast<double>(line.value("nanoseconds", int64_t{0})) / 1e6;
        const std::optional<int64_t> status = statusOf(call);
        const std::string name =
                status ? mStatuses.name(mContext.package, mContext.options.instance, *status) : "";
        if (!mContext.options.json.empty()) {
            const Json results =
                    call.results.is_null() ? Json() : tracedJson(call.method->results, call.results);
            printJson(mContext, {{"number", mShown},
                                 {"time", timeText(time, true)},
                                 {"pid", line.value("pid", int64_t{0})},
                                 {"interface", call.interface->descriptor},
                                 {"method", call.method->name},
                                 {"arguments", tracedJson(call.method->arguments, call.arguments)},
                                 {"results", results},
                                 {"status", status ? Json{{"number", *status}, {"name", name}} : Json()},
                                 {"milliseconds", milliseconds}});
            return;
        }
        char duration[32];
        std::snprintf(duration, sizeof duration, "  %.3f ms", milliseconds);
        mContext.out << mShown << "  " << timeText(time, false) << "  pid " << line.value("pid", int64_t{0})
                     << "  " << titleOf(call) << '(' << tracedText(call.method->arguments, call.arguments)
                     << ") -> "
                     << (call.results.is_null() ? "no results"
                                                : tracedText(call.method->results, call.results))
                     << (status ? " (" + name + ")" : "") << duration << '\n';
    }

    const Context& mContext;
    const std::set<const Method*>& mChosen;
    Statuses mStatuses;
    uint64_t mShown = 0;
};

}  // namespace

Exit monitor(const Context& context) {
    const Options& options = context.options;
    const std::set<const Method*> chosen = chosenMethods(context.package, options.words);
    std::optional<steady_clock::time_point> deadline;
    // Until it listens the time is the watchdog's, and a signal ends the process as it ends any.
    std::optional<Watchdog> watchdog;
    if (options.timeout) {
        deadline = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                 std::chrono::duration<double>(*options.timeout));
        watchdog.emplace(*options.timeout, context.err);
    }
    Trace trace(*context.engine.find(findInterface(context.package, "Manager"), targetOf(context)));
    const EndSignals signals;
    watchdog.reset();
    if (deadline) {
        watchdog.emplace(*deadline, context.err);
    }
    if (!options.quiet) {
        context.err << "monitoring: press Ctrl-C to end" << std::endl;
    }
    Monitor monitor(context, chosen);
    for (bool ended = false;;) {
        if (EndSignals::bell().rang() ||
            (options.count && monitor.shown() >= static_cast<uint64_t>(*options.count))) {
            return Exit::Success;
        }
        if (deadline && steady_clock::now() >= *deadline) {
            if (!options.count) {
                return Exit::Success;
            }
            throw Failure(Exit::NotFound, std::to_string(monitor.shown()) + " of " +
                                                  std::to_string(*options.count) + " calls within " +
                                                  Json(*options.timeout).dump() + " s");
        }
        if (const std::optional<std::string> line = trace.takeLine()) {
            monitor.take(*line);
        } else if (ended) {
            throw Failure(Exit::Transport, "the service died; " + std::to_string(monitor.shown()) +
                                                   (monitor.shown() == 1 ? " call was" : " calls were") +
                                                   " shown until then");
        } else {
            EndSignals::waitFor(trace.fd(), deadline);
            ended = !trace.receive();
        }
    }
}

}  // namespace fapictl
