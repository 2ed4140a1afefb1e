#include "tools/fapictl/Dispatcher.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/Deadlines.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Events.h"
#include "tools/fapictl/Filter.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Records.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"
#include "tools/fapictl/Watcher.h"

namespace fapictl {
namespace {

using std::chrono::steady_clock;

constexpr int kProtocol = 1;

// JSON-RPC's own codes, then ours, in the range that it leaves to servers.
constexpr int kNotJson = -32700;
constexpr int kNoRequest = -32600;
constexpr int kNoMethod = -32601;
constexpr int kWrongParameters = -32602;
constexpr int kStatus = -32001;
constexpr int kNotFound = -32003;
constexpr int kTransport = -32004;
constexpr int kOutput = -32005;
constexpr int kTooMuch = -32006;
constexpr int kTooLate = -32007;

/** Deeper than any record, and no danger to whoever walks through it. */
constexpr int kDeepest = 64;
/** Calls' names that are remembered; a client that writes them in so many ways pays for it. */
constexpr size_t kNamesKept = 1024;
/** Events' bytes that a watch keeps until its answer is on its way. */
constexpr size_t kHeldBytes = 8 << 20;
/** For those who watch the time themselves, and have more to say. */
constexpr double kGrace = 0.1;

int codeOf(Exit exit) {
    switch (exit) {
        case Exit::Usage:
            return kWrongParameters;
        case Exit::NotFound:
            return kNotFound;
        case Exit::Output:
            return kOutput;
        case Exit::Status:
            return kStatus;
        default:
            return kTransport;
    }
}

Json errorOf(int code, const std::string& message, Exit exit) {
    return {{"code", code}, {"message", message}, {"data", {{"exit", static_cast<int>(exit)}}}};
}

Json errorOf(const Failure& failure) {
    Json error = errorOf(codeOf(failure.code), failure.what(), failure.code);
    if (failure.code == Exit::Transport) {
        error["data"]["dead"] = failure.dead;
    }
    if (failure.status) {
        error["data"]["status"] = *failure.status;
    }
    return error;
}

/** A message's text; where its result has texts that are not UTF-8, it says so. */
std::string textOf(Json message) {
    try {
        return message.dump();
    } catch (const Json::type_error&) {
        if (message.contains("result") && message["result"].is_object()) {
            message["result"]["lossy"] = true;
        }
        return jsonText(message, false);
    }
}

std::string base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(bytes.size() - i, 3);
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j) {
            group = group << 8 | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0u);
        }
        for (size_t j = 0; j < 4; ++j) {
            text += j <= count ? kDigits[group >> (18 - 6 * j) & 63] : '=';
        }
    }
    return text;
}

bool isTooDeep(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            i += c == '\\' ? 1 : 0;
            quoted = c != '"';
        } else if (c == '"') {
            quoted = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kDeepest) {
                return true;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

/** A message's answers, which are sent together. */
class Message {
  public:
    Message(Dispatcher::Send done, bool batch, size_t requests)
        : mDone(std::move(done)), mBatch(batch), mOpen(requests) {}

    /** @param afterwards called once the answers are on their way; may be null */
    void add(std::string answer, std::function<void()> afterwards) {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            if (!answer.empty()) {
                mAnswers += (mAnswers.empty() ? "" : ",") + std::move(answer);
            }
            if (afterwards != nullptr) {
                mAfterwards.push_back(std::move(afterwards));
            }
            if (--mOpen > 0) {
                return;
            }
        }
        // Nobody else has anything to do with it from here on.
        mDone(mBatch && !mAnswers.empty() ? "[" + mAnswers + "]" : std::move(mAnswers));
        for (const std::function<void()>& afterwardsOfOne : mAfterwards) {
            afterwardsOfOne();
        }
    }

  private:
    const Dispatcher::Send mDone;
    const bool mBatch;
    std::mutex mMutex;
    // Guarded by mMutex.
    size_t mOpen;
    std::string mAnswers;
    std::vector<std::function<void()>> mAfterwards;
};

/** A request that is answered once, by whoever comes first: who serves it, or its deadline. */
class Pending {
  public:
    Pending(std::shared_ptr<Message> message, std::optional<Json> id)
        : mMessage(std::move(message)), mId(std::move(id)) {}

    bool isAnswered() const { return mAnswered; }

    /** False when it has been answered; the other half of the answer is {"result": ...} or {"error": ...}. */
    bool answer(const char* kind, Json value, std::function<void()> afterwards = nullptr) {
        if (mAnswered.exchange(true)) {
            return false;
        }
        // Without an id, nobody waits for it.
        mMessage->add(mId ? textOf({{"jsonrpc", "2.0"}, {"id", *mId}, {kind, std::move(value)}}) : "",
                      std::move(afterwards));
        return true;
    }

  private:
    const std::shared_ptr<Message> mMessage;
    const std::optional<Json> mId;
    std::atomic<bool> mAnswered{false};
};

/** The parameters of a request, taken by name. Throws Failure (Usage) for what does not fit. */
class Parameters {
  public:
    explicit Parameters(const Json& given) : mGiven(given) {}

    const Json& all() const { return mGiven; }

    /** Null when it is not given. */
    const Json* find(const char* name) const {
        const auto at = mGiven.find(name);
        return at == mGiven.end() || at->is_null() ? nullptr : &*at;
    }
    const Json& get(const char* name) const {
        const Json* value = find(name);
        if (value == nullptr) {
            throw Failure(Exit::Usage, std::string("parameter ") + name + " is missing");
        }
        return *value;
    }
    std::string text(const char* name) const { return textIn(name, get(name)); }
    std::string text(const char* name, const std::string& otherwise) const {
        const Json* value = find(name);
        return value == nullptr ? otherwise : textIn(name, *value);
    }
    bool flag(const char* name) const {
        const Json* value = find(name);
        if (value != nullptr && !value->is_boolean()) {
            refuse(name, *value, "true or false");
        }
        return value != nullptr && value->get<bool>();
    }
    /** A list; one value alone is a list of one. */
    std::vector<Json> list(const char* name) const {
        const Json* value = find(name);
        if (value == nullptr) {
            return {};
        }
        return value->is_array() ? value->get<std::vector<Json>>() : std::vector<Json>{*value};
    }
    std::vector<std::string> texts(const char* name, bool numbers = false) const {
        std::vector<std::string> texts;
        for (const Json& one : list(name)) {
            texts.push_back(numbers && one.is_number_integer() ? one.dump() : textIn(name, one));
        }
        return texts;
    }

    [[noreturn]] static void refuse(const char* name, const Json& given, const char* wanted) {
        throw Failure(Exit::Usage,
                      std::string("parameter ") + name + ": " + wanted + ", not a JSON " + given.type_name());
    }

  private:
    static std::string textIn(const char* name, const Json& value) {
        if (!value.is_string()) {
            refuse(name, value, "a text");
        }
        return value.get<std::string>();
    }

    const Json& mGiven;
};

/** A watch's events on their way to the client, who does not know the watch before its answer. */
class Feed {
  public:
    Feed(uint64_t number, EventFilter filter, Dispatcher::Send notify)
        : mNumber(number), mFilter(std::move(filter)), mNotify(std::move(notify)) {}

    void take(const Event& event) {
        if (!mFilter.takes(event)) {
            return;
        }
        std::unique_lock<std::mutex> lock(mMutex);
        mOpened.wait(lock, [&] { return mState != State::Held || mHeldBytes < kHeldBytes; });
        if (mState == State::Closed) {
            return;
        }
        Json params = {{"watch", mNumber}};
        params.update(eventJson(++mEvents, event));
        std::string text = textOf({{"jsonrpc", "2.0"}, {"method", "event"}, {"params", std::move(params)}});
        if (mState == State::Held) {
            mHeldBytes += text.size();
            mHeld.push_back(std::move(text));
        } else {
            mNotify(std::move(text));
        }
    }
    void died() {
        std::string text = textOf({{"jsonrpc", "2.0"}, {"method", "died"}, {"params", {{"watch", mNumber}}}});
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mState == State::Held) {
            mHeld.push_back(std::move(text));
        } else if (mState == State::Open) {
            mNotify(std::move(text));
            mState = State::Closed;
        }
    }
    /** Its answer is on its way. */
    void open() {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mState == State::Held) {
            for (std::string& text : mHeld) {
                mNotify(std::move(text));
            }
            mHeld.clear();
            mState = State::Open;
            mOpened.notify_all();
        }
    }
    /** Returns how many events there were. */
    uint64_t close() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mState = State::Closed;
        mOpened.notify_all();
        return mEvents;
    }

  private:
    enum class State { Held, Open, Closed };

    const uint64_t mNumber;
    const EventFilter mFilter;
    const Dispatcher::Send mNotify;
    std::mutex mMutex;
    std::condition_variable mOpened;
    // Guarded by mMutex.
    State mState = State::Held;
    std::vector<std::string> mHeld;
    size_t mHeldBytes = 0;
    uint64_t mEvents = 0;
};

/** What a method comes to. */
struct Served {
    Served(Json theResult) : result(std::move(theResult)) {}
    Json result;
    std::function<void()> answered = nullptr;  // once the answer is on its way
    std::function<void()> dropped = nullptr;   // when it came too late, and somebody else has answered
};

}  // namespace

struct Dispatcher::Impl {
    struct RpcMethod {
        const char* name;
        std::vector<std::string> parameters;
        std::function<Served(const std::shared_ptr<Impl>& impl, const Parameters& parameters,
                             const Target& target)>
                serve;
    };

    Impl(const Package& thePackage, Target theDefaults, Send theNotify)
        : package(thePackage),
          engine(thePackage, Engine::Services::Keep),
          defaults(std::move(theDefaults)),
          notify(std::move(theNotify)) {}

    using Named = std::pair<const Interface*, const Method*>;
    struct Watch {
        std::shared_ptr<Feed> feed;
        Watches::Subscription subscription;
    };

    Named find(const std::string& interface, const std::string& method) {
        std::string key = interface + '\n' + method;
        const std::lock_guard<std::mutex> lock(mutex);
        if (const auto known = names.find(key); known != names.end()) {
            return known->second;
        }
        const Interface& found = findCallable(package, interface);
        const Named named(&found, &findMethod(found, method));
        if (names.size() >= kNamesKept) {
            names.clear();
        }
        return names.emplace(std::move(key), named).first->second;
    }

    Json call(const Interface& interface, const Method& method, const Json& arguments, const Target& target) {
        const Answer answer = engine.call(interface, method, arguments, target);
        Json results = Json::object();
        for (size_t i = 0; i < method.results.size(); ++i) {
            const Field& result = method.results[i];
            results[result.label.name] = forPrograms(*result.type, answer.results[i]);
        }
        Json status;
        if (answer.status) {
            status = {{"number", *answer.status}, {"name", answer.statusName}};
            if (!answer.reason.empty()) {
                status["reason"] = escaped(answer.reason);
            }
        }
        return {{"interface", interface.descriptor}, {"method", method.name},
                {"results", std::move(results)},     {"status", std::move(status)},
                {"failed", answer.failed},           {"milliseconds", answer.milliseconds}};
    }

    std::shared_ptr<Watch> forget(uint64_t number) {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto at = watchesByNumber.find(number);
        if (at == watchesByNumber.end()) {
            return nullptr;
        }
        std::shared_ptr<Watch> watch = at->second;
        watchesByNumber.erase(at);
        return watch;
    }

    const Package& package;
    Engine engine;
    const Target defaults;
    const Send notify;
    std::vector<RpcMethod> methods;  // not changed once requests come
    Deadlines deadlines;
    Watches watches;
    std::atomic<int> underWay{0};
    std::mutex mutex;
    // Guarded by mutex.
    std::unordered_map<std::string, Named> names;  // as clients write them
    std::map<uint64_t, std::shared_ptr<Watch>> watchesByNumber;
    uint64_t watchCount = 0;
};

namespace {

using Impl = Dispatcher::Impl;

Served version(const std::shared_ptr<Impl>& impl, const Parameters&, const Target&) {
    return Json{{"protocol", kProtocol},
                {"version", FAPICTL_VERSION},
                {"package", impl->package.name},
                {"pid", getpid()}};
}

Served list(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target&) {
    const bool all = parameters.flag("all");
    const Json* instance = parameters.find("instance");
    Json services = Json::array();
    for (const Instance& one : registeredServices()) {
        const std::vector<Interface>& known = impl->package.interfaces;
        const bool ours = std::any_of(known.begin(), known.end(), [&](const Interface& interface) {
            return interface.descriptor == one.interface;
        });
        if ((all || ours) && (instance == nullptr || *instance == one.name)) {
            services.push_back({{"interface", one.interface}, {"instance", one.name}, {"pid", one.pid}});
        }
    }
    return services;
}

Served introspect(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target&) {
    std::vector<std::string> names;
    if (parameters.find("interface") != nullptr || parameters.find("method") != nullptr) {
        names.push_back(parameters.text("interface", "*"));
    }
    if (parameters.find("method") != nullptr) {
        names.push_back(parameters.text("method"));
    }
    return introspection(impl->package, names);
}

Served call(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const auto [interface, method] = impl->find(parameters.text("interface"), parameters.text("method"));
    const Json* given = parameters.find("arguments");
    if (given != nullptr && !given->is_object() && !given->is_array()) {
        Parameters::refuse("arguments", *given, "an object or a list");
    }
    const Json arguments = bindArguments(*method, given == nullptr ? Json::object() : *given);
    return impl->call(*interface, *method, arguments, target);
}

/** A record as a text of one, or as an object of its parts. */
Json recordOf(const Type& type, const Json& given, const std::string& where) {
    if (given.is_string()) {
        return parseEventRecord(type, given.get_ref<const std::string&>(), where);
    }
    if (!given.is_object()) {
        throw Failure(Exit::Usage, where + ": an object or a text, not a JSON " + given.type_name());
    }
    constexpr std::array<const char*, 3> kKeys = {"value", "text", "bytes"};
    Json record = zeroValue(type);
    for (const auto& [name, value] : given.items()) {
        const auto key = std::find(kKeys.begin(), kKeys.end(), name);
        if (key == kKeys.end()) {
            throw Failure(Exit::Usage, where + ": no key " + inQuotes(name) +
                                               suggestion(name, {kKeys.begin(), kKeys.end()}));
        }
        const Field& field = type.fields.at(static_cast<size_t>(key - kKeys.begin()));
        record[field.label.name] = checkValue(*field.type, value, where + ", " + name);
    }
    return record;
}

Served post(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const auto [manager, method] = impl->find("Manager", "post_event");
    Json arguments =
            Json::array({checkValue(*method->arguments[0].type, parameters.get("type"), "parameter type")});
    const std::vector<Json> records = parameters.list("records");
    if (records.size() >= method->arguments.size()) {
        throw Failure(Exit::Usage, "parameter records: at most " +
                                           std::to_string(method->arguments.size() - 1) + " of them, not " +
                                           std::to_string(records.size()));
    }
    for (size_t i = 1; i < method->arguments.size(); ++i) {
        arguments.push_back(recordOf(*method->arguments[i].type,
                                     i <= records.size() ? records[i - 1] : Json::object(),
                                     "record " + std::to_string(i)));
    }
    return impl->call(*manager, *method, arguments, target);
}

Served capture(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const std::string layers = parameters.text("layers", captureLayers()[0]);
    return Json{{"png", base64(capturePicture(impl->engine, layers, target))}};
}

Served edid(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const std::vector<uint8_t> bytes = readEdid(impl->engine, parameters.get("port"), target);
    const std::optional<std::string> text = decodedEdid(bytes);
    return Json{{"bytes", toHex(bytes)}, {"text", text ? Json(*text) : Json()}};
}

Served wait(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const std::vector<const Interface*> wanted =
            selectServices(impl->package, parameters.texts("interfaces"));
    const bool ready = parameters.flag("ready");
    const auto begin = steady_clock::now();
    const std::vector<const Interface*> missing = impl->engine.wait(wanted, target);
    if (!missing.empty()) {
        throw notInTime(missing.size(), wanted.size(), target);
    }
    if (ready) {
        impl->engine.waitUntilReady(target, begin);
    }
    Json services = Json::array();
    for (const Interface* interface : wanted) {
        services.push_back(
                {{"interface", interface->descriptor}, {"instance", target.instance}, {"registered", true}});
    }
    return services;
}

Served watch(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    EventFilter filter(parameters.texts("modules"), parameters.texts("types", true),
                       parameters.texts("matches"));
    uint64_t number = 0;
    {
        const std::lock_guard<std::mutex> lock(impl->mutex);
        number = ++impl->watchCount;
    }
    const auto feed = std::make_shared<Feed>(number, std::move(filter), impl->notify);
    const auto listener = std::make_shared<EventListener>();
    listener->take = [feed](const Event& event) { feed->take(event); };
    listener->died = [feed, number, held = std::weak_ptr<Impl>(impl)] {
        // Before the client knows: who is told that the watch has ended finds none.
        if (const std::shared_ptr<Impl> alive = held.lock()) {
            alive->forget(number);
        }
        feed->died();
    };
    const auto entry = std::make_shared<Impl::Watch>();
    entry->feed = feed;
    entry->subscription = impl->watches.add(impl->engine, target, listener);
    {
        const std::lock_guard<std::mutex> lock(impl->mutex);
        impl->watchesByNumber[number] = entry;
    }
    Served served(Json{{"watch", number}});
    served.answered = [feed] { feed->open(); };
    served.dropped = [impl, number, feed] {
        feed->close();
        if (const std::shared_ptr<Impl::Watch> dropped = impl->forget(number)) {
            dropped->subscription.end();
        }
    };
    return served;
}

Served unwatch(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target&) {
    const Json& number = parameters.get("watch");
    if (!number.is_number_unsigned()) {
        Parameters::refuse("watch", number, "a watch's number");
    }
    const std::shared_ptr<Impl::Watch> watch = impl->forget(number.get<uint64_t>());
    if (watch == nullptr) {
        throw Failure(Exit::Usage, "no watch " + number.dump());
    }
    const uint64_t events = watch->feed->close();
    watch->subscription.end();
    return Json{{"watch", number}, {"events", events}};
}

Served debug(const std::shared_ptr<Impl>& impl, const Parameters& parameters, const Target& target) {
    const Interface& interface = findCallable(impl->package, parameters.text("interface"));
    return Json{{"text", debugText(*impl->engine.find(interface, target), {})}};
}

using RpcMethod = Impl::RpcMethod;

const std::vector<RpcMethod>& rpcMethods() {
    static const std::vector<RpcMethod> methods = {
            {"version", {}, version},
            {"list", {"all"}, list},
            {"introspect", {"interface", "method"}, introspect},
            {"call", {"interface", "method", "arguments"}, call},
            {"watch", {"modules", "types", "matches"}, watch},
            {"unwatch", {"watch"}, unwatch},
            {"post", {"type", "records"}, post},
            {"capture", {"layers"}, capture},
            {"edid", {"port"}, edid},
            {"wait", {"interfaces", "ready"}, wait},
            {"debug", {"interface"}, debug},
    };
    return methods;
}

const RpcMethod* findRpcMethod(const Impl& impl, const std::string& name) {
    const auto at = std::find_if(impl.methods.begin(), impl.methods.end(),
                                 [&](const RpcMethod& method) { return name == method.name; });
    return at == impl.methods.end() ? nullptr : &*at;
}

/** Throws Failure (Usage) for one that the method does not take. */
void checkNames(const RpcMethod& method, const Json& params) {
    std::vector<std::string> known = method.parameters;
    known.insert(known.end(), {"instance", "timeout"});
    for (const auto& [name, value] : params.items()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            throw Failure(Exit::Usage, "no parameter " + inQuotes(name) + suggestion(name, known));
        }
    }
}

/** One request of a message: it is read, given its deadline, and run. */
class Request {
  public:
    Request(std::shared_ptr<Impl> impl, const Json& json, const std::shared_ptr<Message>& message)
        : mImpl(std::move(impl)) {
        const bool object = json.is_object();
        const auto id = object ? json.find("id") : json.end();
        const bool given = object && id != json.end();
        const bool validId = !given || id->is_string() || id->is_number() || id->is_null();
        const auto name = object ? json.find("method") : json.end();
        const bool valid = object && validId && json.value("jsonrpc", Json()) == "2.0" &&
                           name != json.end() && name->is_string();
        // What is no request may have meant to be one: it is answered.
        mPending = std::make_shared<Pending>(message, given && validId ? std::optional(*id)
                                                      : valid          ? std::nullopt
                                                                       : std::optional(Json()));
        if (!valid) {
            mPending->answer("error", errorOf(kNoRequest,
                                              "not a request: {\"jsonrpc\":\"2.0\",\"id\":...,\"method\":...,"
                                              "\"params\":{...}}",
                                              Exit::Usage));
            return;
        }
        mMethod = findRpcMethod(*mImpl, name->get_ref<const std::string&>());
        if (mMethod == nullptr) {
            std::vector<std::string> names;
            for (const RpcMethod& method : mImpl->methods) {
                names.push_back(method.name);
            }
            const std::string& asked = name->get_ref<const std::string&>();
            mPending->answer("error",
                             errorOf(kNoMethod, "no method " + inQuotes(asked) + suggestion(asked, names),
                                     Exit::Usage));
            return;
        }
        attempt([&] { read(json); });
    }
    ~Request() {
        if (mDeadline) {
            mImpl->deadlines.remove(*mDeadline);
        }
    }
    Request(const Request&) = delete;

    const std::shared_ptr<Pending>& pending() const { return mPending; }

    /** Does nothing when it has been answered, by its deadline for example. */
    void run() {
        if (mPending->isAnswered()) {
            return;
        }
        attempt([&] {
            Served served = mMethod->serve(mImpl, Parameters(mParams), mTarget);
            if (!mPending->answer("result", std::move(served.result), std::move(served.answered)) &&
                served.dropped != nullptr) {
                served.dropped();
            }
        });
    }

  private:
    void read(const Json& json) {
        mParams = json.value("params", Json::object());
        if (!mParams.is_object()) {
            throw Failure(Exit::Usage,
                          std::string("params are an object, not a JSON ") + mParams.type_name());
        }
        checkNames(*mMethod, mParams);
        const Parameters parameters(mParams);
        mTarget = mImpl->defaults;
        mTarget.instance = parameters.text("instance", mTarget.instance);
        if (const Json* timeout = parameters.find("timeout")) {
            if (!timeout->is_number()) {
                Parameters::refuse("timeout", *timeout, "a number of seconds");
            }
            mTarget.seconds = timeout->get<double>();
            if (!(*mTarget.seconds >= 0 && *mTarget.seconds <= 1e9)) {
                throw Failure(Exit::Usage, "parameter timeout is a number of seconds from 0 to 1000000000");
            }
        }
        if (mTarget.seconds) {
            const auto time =
                    steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                  std::chrono::duration<double>(*mTarget.seconds + kGrace));
            mDeadline = mImpl->deadlines.add(time, [pending = mPending, seconds = *mTarget.seconds] {
                pending->answer("error", errorOf(kTooLate, "no answer within " + Json(seconds).dump() + " s",
                                                 Exit::Transport));
            });
        }
    }

    template <class Function>
    void attempt(const Function& function) {
        try {
            function();
        } catch (const Failure& failure) {
            mPending->answer("error", errorOf(failure));
        } catch (const std::exception& error) {
            mPending->answer("error", errorOf(kTransport, error.what(), Exit::Transport));
        }
    }

    const std::shared_ptr<Impl> mImpl;
    std::shared_ptr<Pending> mPending;
    const RpcMethod* mMethod = nullptr;
    Json mParams;
    Target mTarget;
    std::optional<Deadlines::Key> mDeadline;
};

}  // namespace

Dispatcher::Dispatcher(const Package& package, Target defaults, Send notify, std::vector<Further> further)
    : mImpl(std::make_shared<Impl>(package, std::move(defaults), std::move(notify))) {
    for (Further& method : further) {
        mImpl->methods.push_back(
                {method.name, std::move(method.parameters),
                 [serve = std::move(method.serve)](const std::shared_ptr<Impl>&, const Parameters& parameters,
                                                   const Target& target) {
                     return Served(serve(parameters.all(), target));
                 }});
    }
    mImpl->methods.insert(mImpl->methods.end(), rpcMethods().begin(), rpcMethods().end());
}

Dispatcher::~Dispatcher() = default;

std::string Dispatcher::refusal(const std::string& why) {
    return textOf({{"jsonrpc", "2.0"}, {"id", nullptr}, {"error", errorOf(kNoRequest, why, Exit::Usage)}});
}

void Dispatcher::serve(std::string_view text, Send done) {
    if (isTooDeep(text)) {
        done(refusal("lists and objects within each other, more than " + std::to_string(kDeepest)));
        return;
    }
    Json json;
    try {
        json = Json::parse(text);
    } catch (const Json::exception& error) {
        const auto* place = dynamic_cast<const Json::parse_error*>(&error);
        const std::string why = place == nullptr ? "a number that is too large"
                                                 : "not JSON, at byte " + std::to_string(place->byte);
        done(textOf({{"jsonrpc", "2.0"}, {"id", nullptr}, {"error", errorOf(kNotJson, why, Exit::Usage)}}));
        return;
    }
    const bool batch = json.is_array();
    if (batch && json.empty()) {
        done(refusal("a batch without requests"));
        return;
    }
    struct UnderWay {
        explicit UnderWay(std::atomic<int>& theCount) : count(theCount), before(count++) {}
        ~UnderWay() { --count; }
        std::atomic<int>& count;
        const int before;
    } const underWay(mImpl->underWay);
    const auto message = std::make_shared<Message>(std::move(done), batch, batch ? json.size() : 1);
    if (!batch) {
        json = Json::array({std::move(json)});
    }
    // Those of a batch are run in their order, and the time of each runs from here.
    std::vector<std::unique_ptr<Request>> requests;
    for (const Json& one : json) {
        requests.push_back(std::make_unique<Request>(mImpl, one, message));
    }
    for (const std::unique_ptr<Request>& request : requests) {
        if (underWay.before >= kUnderWay) {
            request->pending()->answer(
                    "error", errorOf(kTooMuch, std::to_string(kUnderWay) + " requests are under way",
                                     Exit::Transport));
        } else {
            request->run();
        }
    }
}

}  // namespace fapictl
