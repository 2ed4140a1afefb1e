#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "tools/fapictl/Signals.h"

namespace fapictl {

struct HttpRequest {
    std::string method;  // "GET"
    std::string path;    // decoded, without the query
    std::map<std::string, std::string> query;
    std::map<std::string, std::string> headers;  // names in small letters; of one given twice, the last
    std::string body;
};

struct HttpAnswer {
    int code = 200;
    std::string type = {};  // of the body; empty for none
    std::string body = {};
};

/**
 * Server-sent events to one browser, from any thread. What waits for a browser that does not read is bounded;
 * beyond that, messages are lost and counted. Kept by whoever sends; it does not keep the connection.
 */
class EventStream {
  public:
    static constexpr size_t kWaiting = 8 << 20;

    /** Makes the message that says how many were lost. */
    using Lost = std::function<std::string(uint64_t count)>;

    virtual ~EventStream() = default;
    /** One line of text. */
    virtual void send(std::string message) = 0;
};

/**
 * Serves HTTP on the loopback address, on one thread, which waits for nothing but the network: requests are
 * served elsewhere and answered whenever that is done.
 */
class HttpServer {
  public:
    static constexpr size_t kLongestBody = 16 << 20;

    using Reply = std::function<void(HttpAnswer answer)>;

    struct Handlers {
        /** Looks at a request before its body is read; the status of a refusal, or 0. */
        std::function<int(const HttpRequest& head)> refuses;
        /** Whether the request asks for a stream of events. */
        std::function<bool(const HttpRequest& head)> isStream;
        /** Replies once, on any thread, now or later. Must not block. */
        std::function<void(HttpRequest request, Reply reply)> serve;
        /** A stream begins, and then ends. Must not block. */
        std::function<void(const std::shared_ptr<EventStream>& stream)> opened;
        std::function<void(const std::shared_ptr<EventStream>& stream)> closed;
        EventStream::Lost lost;
    };

    /**
     * Begins to listen. Throws Failure (Transport) when the port cannot be had.
     *
     * @param port 0 for one that is free
     * @param headers of every answer
     */
    HttpServer(uint16_t port, std::map<std::string, std::string> headers, Handlers handlers);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;

    uint16_t port() const;

    /** Serves until the bell rings. What is replied later is for nobody. */
    void run(const Bell& end);

    struct Impl;

  private:
    const std::shared_ptr<Impl> mImpl;
};

}  // namespace fapictl
