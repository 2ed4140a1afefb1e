#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/fapictl/Board.h"
#include "tools/fapictl/Dispatcher.h"
#include "tools/fapictl/HttpServer.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Page.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Workers.h"

namespace fapictl {
namespace {

constexpr size_t kTokenBytes = 16;
constexpr const char* kPolicy =
        "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src "
        "'self'; "
        "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
/** Keystrokes of one message. */
constexpr size_t kMostTyped = 4096;

std::string newToken() {
    unsigned char bytes[kTokenBytes];
    if (getrandom(bytes, sizeof(bytes), 0) != static_cast<ssize_t>(sizeof(bytes))) {
        throw std::system_error(errno, std::generic_category(), "getrandom");
    }
    std::string token;
    for (const unsigned char byte : bytes) {
        token += "0123456789abcdef"[byte >> 4];
        token += "0123456789abcdef"[byte & 15];
    }
    return token;
}

/** Takes as long whatever the text is, for one of the same length. */
bool isSame(std::string_view one, std::string_view other) {
    unsigned char difference = one.size() == other.size() ? 0 : 1;
    for (size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        difference = static_cast<unsigned char>(difference | (one[i] ^ other[i]));
    }
    return difference == 0;
}

std::string valueOf(const std::map<std::string, std::string>& values, const char* name) {
    const auto at = values.find(name);
    return at == values.end() ? "" : at->second;
}

/** Whether a name in an address is this machine's own, which no page from elsewhere can have as its origin.
 */
bool isLoopback(const std::string& host) {
    const size_t colon = host.find(':');
    const std::string name = host.substr(0, colon);
    const bool port =
            colon == std::string::npos ||
            (colon + 1 < host.size() && host.find_first_not_of("0123456789", colon + 1) == std::string::npos);
    return port && (name == "127.0.0.1" || name == "localhost");
}

std::string notification(const char* method, Json params) {
    return Json({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}}).dump();
}

/** A page in a browser: its watches, and what it looks at. */
struct Visit {
    uint64_t number = 0;
    std::shared_ptr<EventStream> stream;
    std::unique_ptr<Dispatcher> dispatcher;
};

class Page {
  public:
    Page(const Package& package, const Target& defaults)
        : mPackage(package),
          mDefaults(defaults),
          mEngine(package, Engine::Services::Keep),
          mPanel(package, defaults),
          mOthers(std::make_shared<Visit>()) {
        mOthers->dispatcher = std::make_unique<Dispatcher>(
                package, defaults, [](std::string) {}, methods({}));
    }

    const std::string& token() const { return mToken; }

    HttpServer::Handlers handlers() {
        return {[this](const HttpRequest& head) { return refusal(head); },
                [](const HttpRequest& head) { return nameOf(head) == "stream"; },
                [this](HttpRequest request, const HttpServer::Reply& reply) {
                    serve(std::move(request), reply);
                },
                [this](const std::shared_ptr<EventStream>& stream) { open(stream); },
                [this](const std::shared_ptr<EventStream>& stream) { close(stream); },
                [](uint64_t count) {
                    return notification("dropped", {{"count", count}});
                }};
    }

    /** Returns how many threads are in calls that do not come back, and use this. */
    int finish() { return mWorkers.finish(); }

  private:
    /** What is behind the token. */
    static std::string nameOf(const HttpRequest& request) { return request.path.substr(2 * kTokenBytes + 2); }

    int refusal(const HttpRequest& head) const {
        const std::string host = valueOf(head.headers, "host");
        const std::string origin = valueOf(head.headers, "origin");
        const std::string site = valueOf(head.headers, "sec-fetch-site");
        if (!isLoopback(host) || (!origin.empty() && origin != "http://" + host) ||
            (!site.empty() && site != "same-origin" && site != "none")) {
            return 403;
        }
        const std::string_view path = head.path;
        const std::string begin = "/" + mToken + "/";
        if (!isSame(path.substr(0, begin.size()), begin)) {
            return 404;
        }
        const std::string name = nameOf(head);
        const bool posted = name == "rpc";
        if (head.method != (posted ? "POST" : "GET") && (posted || head.method != "HEAD")) {
            return 405;
        }
        const std::string type = valueOf(head.headers, "content-type");
        return posted && type.substr(0, type.find(';')) != "application/json" ? 415 : 0;
    }

    void serve(HttpRequest request, const HttpServer::Reply& reply) {
        const std::string name = nameOf(request);
        if (name == "rpc") {
            serveMessage(request, reply);
        } else if (name == "panel.png") {
            const auto png = mPanel.picture(valueOf(request.query, "layers"));
            reply(png == nullptr ? HttpAnswer{404} : HttpAnswer{200, "image/png", *png});
        } else {
            const auto& files = pageFiles();
            const auto file = std::find_if(files.begin(), files.end(), [&](const PageFile& one) {
                return one.name == (name.empty() ? "index.html" : name);
            });
            reply(file == files.end() ? HttpAnswer{404}
                                      : HttpAnswer{200, std::string(file->type), std::string(file->content)});
        }
    }

    void serveMessage(const HttpRequest& request, const HttpServer::Reply& reply) {
        std::shared_ptr<Visit> visit = mOthers;
        if (const auto asked = request.query.find("stream"); asked != request.query.end()) {
            const std::lock_guard<std::mutex> lock(mMutex);
            const auto at = std::find_if(mVisits.begin(), mVisits.end(), [&](const auto& one) {
                return std::to_string(one.second->number) == asked->second;
            });
            if (at == mVisits.end()) {
                reply({409});  // it has ended
                return;
            }
            visit = at->second;
        }
        mWorkers.run([visit = std::move(visit), body = request.body, reply] {
            visit->dispatcher->serve(body, [reply](std::string answer) {
                const int code = answer.empty() ? 204 : 200;
                reply({code, code == 200 ? "application/json" : "", std::move(answer)});
            });
        });
    }

    void open(const std::shared_ptr<EventStream>& stream) {
        const auto visit = std::make_shared<Visit>();
        visit->stream = stream;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            visit->number = ++mVisitCount;
            visit->dispatcher = std::make_unique<Dispatcher>(
                    mPackage, mDefaults, [stream](std::string message) { stream->send(std::move(message)); },
                    methods(visit));
            mVisits[stream.get()] = visit;
        }
        stream->send(notification("stream", {{"stream", std::to_string(visit->number)}}));
    }

    void close(const std::shared_ptr<EventStream>& stream) {
        std::shared_ptr<Visit> visit;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            const auto at = mVisits.find(stream.get());
            visit = at->second;
            mVisits.erase(at);
        }
        mPanel.leave(visit->number);
        mSerial.leave(visit->number);
        // Its watches end, which is a call to the service.
        mWorkers.run([gone = std::move(visit)] {});
    }

    /** Throws Failure (Usage) without one: requests that have no stream could not be told of anything. */
    static std::shared_ptr<Visit> visitOf(const std::weak_ptr<Visit>& weak) {
        std::shared_ptr<Visit> visit = weak.lock();
        if (visit == nullptr) {
            throw Failure(Exit::Usage, "this needs a stream; see docs/session.md");
        }
        return visit;
    }

    static size_t portOf(const Json& params) {
        const Json port = params.value("port", Json());
        if (!port.is_number_unsigned() || port.get<uint64_t>() >= SerialTerminals::kPorts) {
            throw Failure(Exit::Usage, "parameter port is 0 or 1");
        }
        return port.get<size_t>();
    }

    /** The methods of a visit, which may be none: then those that tell it of something are refused. */
    std::vector<Dispatcher::Further> methods(const std::weak_ptr<Visit>& weak) {
        // Dispatchers live no longer than this.
        std::vector<Dispatcher::Further> all = {
                {"state",
                 {},
                 [this](const Json&, const Target& target) {
                     return Json{{"text", boardState(mEngine, target)}, {"folder", stateDirectory()}};
                 }},
                {"panel",
                 {"layers"},
                 [this, weak](const Json& params, const Target& target) {
                     requireBoard(mEngine, target);
                     const auto visit = visitOf(weak);
                     const Json layers = params.value("layers", Json());
                     const auto& known = captureLayers();
                     if (!layers.is_string() ||
                         (layers != "" && std::find(known.begin(), known.end(), layers) == known.end())) {
                         throw Failure(Exit::Usage, "parameter layers is all, video, graphics, osd or empty");
                     }
                     mPanel.look(visit->number, layers.get<std::string>(),
                                 [stream = visit->stream](const std::string& of, uint64_t revision) {
                                     stream->send(notification("picture",
                                                               {{"layers", of}, {"revision", revision}}));
                                 });
                     return Json{{"layers", layers}};
                 }},
                {"serial",
                 {"port", "open"},
                 [this, weak](const Json& params, const Target& target) {
                     requireBoard(mEngine, target);
                     const auto visit = visitOf(weak);
                     const size_t port = portOf(params);
                     if (params.value("open", Json(true)) == false) {
                         mSerial.close(visit->number, port);
                     } else {
                         mSerial.open(visit->number, port,
                                      [stream = visit->stream](size_t of, const std::string& bytes) {
                                          stream->send(notification("serial",
                                                                    {{"port", of}, {"bytes", hexOf(bytes)}}));
                                      });
                     }
                     return Json{{"port", port}};
                 }},
                {"type", {"port", "bytes"}, [this](const Json& params, const Target&) {
                     const Json text = params.value("bytes", Json());
                     const auto bytes = text.is_string() ? bytesOf(text.get<std::string>()) : std::nullopt;
                     if (!bytes || bytes->size() > kMostTyped) {
                         throw Failure(Exit::Usage, "parameter bytes is hexadecimal, at most 4096 bytes");
                     }
                     return Json{{"bytes", mSerial.type(portOf(params), *bytes)}};
                 }}};
        if (weak.expired()) {
            const auto refuse = [weak](const Json&, const Target&) -> Json {
                visitOf(weak);
                return {};
            };
            all.push_back({"watch", {"modules", "types", "matches"}, refuse});
        }
        return all;
    }

    static std::string hexOf(const std::string& bytes) {
        std::string text;
        for (const char c : bytes) {
            const auto byte = static_cast<unsigned char>(c);
            text += "0123456789abcdef"[byte >> 4];
            text += "0123456789abcdef"[byte & 15];
        }
        return text;
    }
    static std::optional<std::string> bytesOf(const std::string& hex) {
        std::string bytes;
        if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
            return std::nullopt;
        }
        for (size_t i = 0; i < hex.size(); i += 2) {
            bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        }
        return bytes;
    }

    const std::string mToken = newToken();
    const Package& mPackage;
    const Target mDefaults;
    Engine mEngine;
    PanelWatcher mPanel;
    SerialTerminals mSerial;
    std::mutex mMutex;
    // Guarded by mMutex.
    std::map<const EventStream*, std::shared_ptr<Visit>> mVisits;
    uint64_t mVisitCount = 0;
    std::shared_ptr<Visit> mOthers;
    Workers mWorkers;
};

void openInBrowser(const std::string& address) {
    const pid_t child = fork();
    if (child == 0) {
        execlp("xdg-open", "xdg-open", address.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
}

}  // namespace

Exit serve(const Context& context) {
    const EndSignals signals;
    signal(SIGPIPE, SIG_IGN);
    Page page(context.package, targetOf(context));
    HttpServer server(context.options.port,
                      {{"Content-Security-Policy", kPolicy},
                       {"X-Content-Type-Options", "nosniff"},
                       {"Referrer-Policy", "no-referrer"},
                       {"Cache-Control", "no-store"},
                       {"Cross-Origin-Resource-Policy", "same-origin"}},
                      page.handlers());
    const std::string address =
            "http://127.0.0.1:" + std::to_string(server.port()) + "/" + page.token() + "/";
    context.out << address << std::endl;
    if (context.options.open) {
        openInBrowser(address);
    }
    server.run(EndSignals::bell());
    if (page.finish() > 0) {
        // Nothing is torn down under threads that still use it.
        _exit(static_cast<int>(Exit::Success));
    }
    return Exit::Success;
}

}  // namespace fapictl
