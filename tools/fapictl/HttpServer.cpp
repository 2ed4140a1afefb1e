#include "tools/fapictl/HttpServer.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <poll.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iterator>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/fapictl/Failure.h"

namespace fapictl {

struct Exchange;

namespace {

using std::chrono::steady_clock;

constexpr unsigned kConnections = 128;
/** Of a browser that takes nothing, or does not finish its request. */
constexpr unsigned kIdleSeconds = 30;
constexpr size_t kConnectionBytes = 64 << 10;
constexpr size_t kBlockBytes = 32 << 10;
/** How often a stream without news says that it is there, which tells when nobody reads it. */
constexpr std::chrono::seconds kBeat(15);

}  // namespace

/** What other threads leave for the server's own. */
struct HttpServer::Impl : std::enable_shared_from_this<Impl> {
    Impl(std::map<std::string, std::string> theHeaders, Handlers theHandlers)
        : headers(std::move(theHeaders)), handlers(std::move(theHandlers)) {}

    void post(std::function<void()> work) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!ended) {
            posted.push_back(std::move(work));
            bell.ring();
        }
    }

    const std::map<std::string, std::string> headers;
    const Handlers handlers;
    const Bell bell;
    std::mutex mutex;
    // Guarded by mutex.
    std::vector<std::function<void()>> posted;
    bool ended = false;

    // Of the server's thread alone.
    MHD_Daemon* daemon = nullptr;
    std::set<std::shared_ptr<Exchange>> exchanges;
};

namespace {

using Impl = HttpServer::Impl;

/** The messages of a stream on their way to its connection. */
class Outbox : public EventStream {
  public:
    Outbox(std::weak_ptr<Impl> impl, std::function<void()> wake, EventStream::Lost lost)
        : mImpl(std::move(impl)), mWake(std::move(wake)), mLost(std::move(lost)) {}

    void send(std::string message) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mClosed) {
            return;
        }
        if (mBytes + message.size() > kWaiting) {
            ++mLostCount;
            return;
        }
        if (mLostCount > 0 && mBytes < kWaiting / 2) {
            add("data: " + mLost(std::exchange(mLostCount, 0)) + "\n\n");
        } else if (mLostCount > 0) {
            ++mLostCount;
            return;
        }
        add("data: " + std::move(message) + "\n\n");
    }
    void beat() {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mBytes == 0) {
            if (mLostCount > 0) {
                add("data: " + mLost(std::exchange(mLostCount, 0)) + "\n\n");
            } else {
                add(":\n\n");
            }
        }
    }
    void close() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mClosed = true;
        mTexts.clear();
        mBytes = 0;
    }
    /** The next bytes; 0 when there are none, and then send() wakes the connection. */
    size_t take(char* buffer, size_t most) {
        const std::lock_guard<std::mutex> lock(mMutex);
        size_t taken = 0;
        while (taken < most && !mTexts.empty()) {
            const std::string& text = mTexts.front();
            const size_t count = std::min(most - taken, text.size() - mTaken);
            memcpy(buffer + taken, text.data() + mTaken, count);
            taken += count;
            mTaken += count;
            if (mTaken == text.size()) {
                mTexts.pop_front();
                mTaken = 0;
            }
        }
        mBytes -= taken;
        mWaitedFor = taken == 0;
        return taken;
    }

  private:
    void add(std::string text) {
        mBytes += text.size();
        mTexts.push_back(std::move(text));
        if (std::exchange(mWaitedFor, false)) {
            if (const auto impl = mImpl.lock()) {
                impl->post(mWake);
            }
        }
    }

    const std::weak_ptr<Impl> mImpl;
    const std::function<void()> mWake;
    const EventStream::Lost mLost;
    std::mutex mMutex;
    // Guarded by mMutex.
    std::deque<std::string> mTexts;
    size_t mTaken = 0;  // of the first
    size_t mBytes = 0;
    uint64_t mLostCount = 0;
    bool mWaitedFor = false;
    bool mClosed = false;
};

}  // namespace

/** A request and its answer, on the server's thread. */
struct Exchange : std::enable_shared_from_this<Exchange> {
    enum class State { Reading, Serving, Answered };

    Impl* impl = nullptr;
    MHD_Connection* connection = nullptr;
    HttpRequest request;
    HttpAnswer answer;
    State state = State::Reading;
    bool suspended = false;
    std::shared_ptr<Outbox> outbox;  // of a stream

    void suspend() {
        suspended = true;
        MHD_suspend_connection(connection);
    }
    void resume() {
        if (std::exchange(suspended, false)) {
            MHD_resume_connection(connection);
        }
    }
};

namespace {

MHD_Result addQuery(void* query, MHD_ValueKind, const char* name, const char* value) {
    (*static_cast<std::map<std::string, std::string>*>(query))[name] = value == nullptr ? "" : value;
    return MHD_YES;
}

MHD_Result addHeader(void* headers, MHD_ValueKind, const char* name, const char* value) {
    std::string small = name;
    std::transform(small.begin(), small.end(), small.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    (*static_cast<std::map<std::string, std::string>*>(headers))[small] = value == nullptr ? "" : value;
    return MHD_YES;
}

ssize_t readStream(void* context, uint64_t, char* buffer, size_t most) {
    auto* exchange = static_cast<Exchange*>(context);
    const size_t count = exchange->outbox->take(buffer, most);
    if (count == 0) {
        exchange->suspend();
    }
    return static_cast<ssize_t>(count);
}

MHD_Result queue(const Exchange& exchange, int code, const std::string& type, MHD_Response* response) {
    if (response == nullptr) {
        return MHD_NO;
    }
    for (const auto& [name, value] : exchange.impl->headers) {
        MHD_add_response_header(response, name.c_str(), value.c_str());
    }
    if (!type.empty()) {
        MHD_add_response_header(response, "Content-Type", type.c_str());
    }
    const MHD_Result result = MHD_queue_response(exchange.connection, static_cast<unsigned>(code), response);
    MHD_destroy_response(response);
    return result;
}

MHD_Result queueAnswer(Exchange& exchange) {
    std::string& body = exchange.answer.body;
    return queue(exchange, exchange.answer.code, exchange.answer.type,
                 MHD_create_response_from_buffer(body.size(), body.data(), MHD_RESPMEM_MUST_COPY));
}

void serve(const std::shared_ptr<Exchange>& exchange) {
    exchange->state = Exchange::State::Serving;
    exchange->suspend();
    const std::weak_ptr<Exchange> weak = exchange;
    const std::weak_ptr<Impl> server = exchange->impl->weak_from_this();
    exchange->impl->handlers.serve(std::move(exchange->request), [weak, server](HttpAnswer answer) {
        const auto impl = server.lock();
        if (impl == nullptr) {
            return;
        }
        impl->post([weak, answer = std::make_shared<HttpAnswer>(std::move(answer))] {
            if (const auto waiting = weak.lock()) {
                waiting->answer = std::move(*answer);
                waiting->state = Exchange::State::Answered;
                waiting->resume();
            }
        });
    });
}

MHD_Result openStream(const std::shared_ptr<Exchange>& exchange) {
    exchange->state = Exchange::State::Answered;
    const std::weak_ptr<Exchange> weak = exchange;
    exchange->outbox = std::make_shared<Outbox>(
            exchange->impl->weak_from_this(),
            [weak] {
                if (const auto waiting = weak.lock()) {
                    waiting->resume();
                }
            },
            exchange->impl->handlers.lost);
    const MHD_Result result = queue(*exchange, MHD_HTTP_OK, "text/event-stream",
                                    MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, kBlockBytes,
                                                                      readStream, exchange.get(), nullptr));
    exchange->impl->handlers.opened(exchange->outbox);
    return result;
}

/** Looks at the head of a request; refuses it before its body is read. */
MHD_Result begin(Impl& impl, MHD_Connection* connection, const char* url, const char* method,
                 void** context) {
    auto exchange = std::make_shared<Exchange>();
    exchange->impl = &impl;
    exchange->connection = connection;
    HttpRequest& request = exchange->request;
    request.method = method;
    request.path = url;
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, addQuery, &request.query);
    MHD_get_connection_values(connection, MHD_HEADER_KIND, addHeader, &request.headers);
    *context = exchange.get();
    impl.exchanges.insert(exchange);
    exchange->answer.code = impl.handlers.refuses(request);
    if (exchange->answer.code == 0) {
        const auto length = request.headers.find("content-length");
        const bool tooLong = length != request.headers.end() &&
                             std::strtoull(length->second.c_str(), nullptr, 10) > HttpServer::kLongestBody;
        exchange->answer.code = tooLong ? 413 : 0;
    }
    if (exchange->answer.code != 0) {
        exchange->state = Exchange::State::Answered;
        return queueAnswer(*exchange);
    }
    return MHD_YES;
}

MHD_Result access(void* context, MHD_Connection* connection, const char* url, const char* method, const char*,
                  const char* upload, size_t* uploaded, void** connectionContext) {
    auto& impl = *static_cast<Impl*>(context);
    try {
        if (*connectionContext == nullptr) {
            return begin(impl, connection, url, method, connectionContext);
        }
        auto* const raw = static_cast<Exchange*>(*connectionContext);
        const auto exchange = raw->shared_from_this();
        if (*uploaded > 0) {
            if (exchange->request.body.size() + *uploaded > HttpServer::kLongestBody) {
                return MHD_NO;  // without a length, there is no saying how much more would come
            }
            exchange->request.body.append(upload, *uploaded);
            *uploaded = 0;
            return MHD_YES;
        }
        if (exchange->state == Exchange::State::Answered) {
            return queueAnswer(*exchange);
        }
        if (impl.handlers.isStream(exchange->request)) {
            return openStream(exchange);
        }
        serve(exchange);
        return MHD_YES;
    } catch (const std::exception&) {
        return MHD_NO;  // no memory: the connection ends
    }
}

void completed(void* context, MHD_Connection*, void** connectionContext, MHD_RequestTerminationCode) {
    auto* const raw = static_cast<Exchange*>(*connectionContext);
    if (raw == nullptr) {
        return;
    }
    const auto exchange = raw->shared_from_this();
    *connectionContext = nullptr;
    if (exchange->outbox != nullptr) {
        exchange->outbox->close();
        static_cast<Impl*>(context)->handlers.closed(exchange->outbox);
    }
    static_cast<Impl*>(context)->exchanges.erase(exchange);
}

}  // namespace

HttpServer::HttpServer(uint16_t port, std::map<std::string, std::string> headers, Handlers handlers)
    : mImpl(std::make_shared<Impl>(std::move(headers), std::move(handlers))) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    errno = 0;
    mImpl->daemon = MHD_start_daemon(MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, port, nullptr, nullptr, access,
                                     mImpl.get(), MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_NOTIFY_COMPLETED,
                                     completed, mImpl.get(), MHD_OPTION_CONNECTION_LIMIT, kConnections,
                                     MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds,
                                     MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionBytes, MHD_OPTION_END);
    if (mImpl->daemon == nullptr) {
        throw Failure(Exit::Transport,
                      "cannot listen on port " + std::to_string(port) + ": " + std::strerror(errno));
    }
}

HttpServer::~HttpServer() {
    {
        const std::lock_guard<std::mutex> lock(mImpl->mutex);
        mImpl->ended = true;
        mImpl->posted.clear();
    }
    // The library ends no connection that is suspended.
    for (const std::shared_ptr<Exchange>& exchange : mImpl->exchanges) {
        exchange->resume();
    }
    MHD_stop_daemon(mImpl->daemon);
}

uint16_t HttpServer::port() const {
    return MHD_get_daemon_info(mImpl->daemon, MHD_DAEMON_INFO_BIND_PORT)->port;
}

void HttpServer::run(const Bell& end) {
    Impl& impl = *mImpl;
    pollfd fds[] = {{MHD_get_daemon_info(impl.daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd, POLLIN, 0},
                    {impl.bell.fd(), POLLIN, 0},
                    {end.fd(), POLLIN, 0}};
    auto beat = steady_clock::now() + kBeat;
    while (true) {
        MHD_UNSIGNED_LONG_LONG wanted = 0;
        const auto untilBeat =
                std::chrono::ceil<std::chrono::milliseconds>(beat - steady_clock::now()).count();
        auto wait = std::max<int64_t>(untilBeat, 0);
        if (MHD_get_timeout(impl.daemon, &wanted) == MHD_YES) {
            wait = std::min(wait, static_cast<int64_t>(std::min<uint64_t>(wanted, 60'000)));
        }
        if (poll(fds, std::size(fds), static_cast<int>(wait)) < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        if (fds[2].revents != 0) {
            return;
        }
        impl.bell.rang();
        std::vector<std::function<void()>> posted;
        {
            const std::lock_guard<std::mutex> lock(impl.mutex);
            posted.swap(impl.posted);
        }
        for (const std::function<void()>& work : posted) {
            work();
        }
        if (steady_clock::now() >= beat) {
            beat = steady_clock::now() + kBeat;
            for (const std::shared_ptr<Exchange>& exchange : impl.exchanges) {
                if (exchange->outbox != nullptr) {
                    exchange->outbox->beat();
                }
            }
        }
        MHD_run(impl.daemon);
    }
}

}  // namespace fapictl
