#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Engine.h"

namespace fapictl {

/**
 * Serves JSON-RPC 2.0 messages with an engine: texts in, texts out, whatever carries them. docs/session.md
 * describes the methods.
 */
class Dispatcher {
  public:
    /** Takes a message without its line's end. Called on any thread; one may call it again meanwhile. */
    using Send = std::function<void(std::string message)>;

    /** Requests that may be under way at a time, those left behind by their deadlines included. */
    static constexpr int kUnderWay = 64;

    /** A method besides those that every dispatcher has, or instead of the one of its name. */
    struct Further {
        const char* name;
        std::vector<std::string> parameters;
        /** Returns the result. Throws Failure. On any thread. */
        std::function<Json(const Json& params, const Target& target)> serve;
    };

    /**
     * @param defaults of requests that do not say otherwise
     * @param notify is sent the events of watches
     */
    Dispatcher(const Package& package, Target defaults, Send notify, std::vector<Further> further = {});
    /** Requires that serve() has returned everywhere. Nothing is sent from then on. */
    ~Dispatcher();
    Dispatcher(const Dispatcher&) = delete;

    /**
     * Serves one message, a request or a batch of them. Calls `done` exactly once, with the answer, which is
     * empty when there is none to send: at the latest at the deadline of the message. Returns when nothing of
     * it is under way any more, which may be later; a call cannot be taken back.
     */
    void serve(std::string_view message, Send done);

    /** The answer to what is no message at all, such as a line that is too long. */
    static std::string refusal(const std::string& why);

    struct Impl;

  private:
    const std::shared_ptr<Impl> mImpl;
};

}  // namespace fapictl
