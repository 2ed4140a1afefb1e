#include "tools/fapictl/Board.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

constexpr std::chrono::milliseconds kLook(100);
constexpr int kReopenMilliseconds = 500;
constexpr int64_t kNotReady = -5;

/**
 * A parameter that the simulated board has of its own; empty while the board is not ready. Throws Failure
 * (NotFound) where there is none.
 */
std::string ownParameter(Engine& engine, const std::string& name, const Target& target) {
    const Interface& information = findInterface(engine.package(), "Information");
    const Method& method = findMethod(information, "get_ini_para");
    const Answer answer = engine.call(information, method, Json::array({"board", name}), target);
    if (answer.failed) {
        if (answer.status == kNotReady) {
            return {};
        }
        throw Failure(Exit::NotFound, "this is no simulated board");
    }
    for (size_t i = 0; i < method.results.size(); ++i) {
        if (answer.results[i].is_string()) {
            return answer.results[i].get<std::string>();
        }
    }
    return {};
}

}  // namespace

void requireBoard(Engine& engine, const Target& target) {
    ownParameter(engine, "status:0", target);
}

std::string boardState(Engine& engine, const Target& target) {
    const std::string path = ownParameter(engine, "state:file", target);
    std::ifstream file(path, std::ios::binary);
    if (path.empty() || !file) {
        throw Failure(Exit::Output, path.empty()
                                            ? "the board is not ready"
                                            : "the board has written its state, but there is no " +
                                                      inQuotes(path) + " (" + std::strerror(errno) + ")");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

struct PanelWatcher::State {
    State(const Package& package, Target theTarget)
        : engine(package, Engine::Services::Keep), target(std::move(theTarget)) {}

    struct Looker {
        std::string layers;
        Changed changed;
        uint64_t told = 0;
    };
    struct Picture {
        std::shared_ptr<const std::string> png;
        uint64_t revision = 0;
        std::string drawn;  // the board's own revision, of before the capture
    };

    void work() {
        std::unique_lock<std::mutex> lock(mutex);
        while (!ended) {
            if (lookers.empty()) {
                changed.wait(lock);
                continue;
            }
            std::vector<std::string> wanted;
            for (const auto& [who, looker] : lookers) {
                wanted.push_back(looker.layers);
            }
            std::sort(wanted.begin(), wanted.end());
            wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
            lock.unlock();
            for (const std::string& layers : wanted) {
                capture(layers);
            }
            lock.lock();
            tell();
            changed.wait_for(lock, kLook);
        }
    }

    void capture(const std::string& layers) {
        std::shared_ptr<const std::string> png;
        std::string drawn;
        try {
            drawn = ownParameter(engine, "picture:revision", target);
            {
                const std::lock_guard<std::mutex> lock(mutex);
                if (drawn.empty() || pictures[layers].drawn == drawn) {
                    return;
                }
            }
            png = std::make_shared<const std::string>(capturePicture(engine, layers, target));
        } catch (const std::exception&) {
            return;  // away, not ready or refused: the calls of whoever looks say so; it goes on when it can
        }
        const std::lock_guard<std::mutex> lock(mutex);
        Picture& last = pictures[layers];
        last.drawn = drawn;
        if (last.png == nullptr || *last.png != *png) {
            last.png = std::move(png);
            last.revision = ++revisions;
        }
    }

    /** Requires the lock. */
    void tell() {
        for (auto& [who, looker] : lookers) {
            const uint64_t revision = pictures[looker.layers].revision;
            if (revision != looker.told) {
                looker.told = revision;
                looker.changed(looker.layers, revision);
            }
        }
    }

    Engine engine;
    const Target target;
    mutable std::mutex mutex;
    std::condition_variable changed;
    // Guarded by mutex.
    std::map<uint64_t, Looker> lookers;
    std::map<std::string, Picture> pictures;
    uint64_t revisions = 0;
    bool ended = false;
};

PanelWatcher::PanelWatcher(const Package& package, Target target)
    : mState(std::make_shared<State>(package, std::move(target))) {
    // It may be in a call that does not come back.
    std::thread([state = mState] { state->work(); }).detach();
}

PanelWatcher::~PanelWatcher() {
    const std::lock_guard<std::mutex> lock(mState->mutex);
    mState->ended = true;
    mState->lookers.clear();
    mState->changed.notify_all();
}

void PanelWatcher::look(uint64_t who, const std::string& layers, Changed changed) {
    const std::lock_guard<std::mutex> lock(mState->mutex);
    if (layers.empty()) {
        mState->lookers.erase(who);
        return;
    }
    mState->lookers[who] = {layers, std::move(changed), 0};
    mState->changed.notify_all();
}

std::shared_ptr<const std::string> PanelWatcher::picture(const std::string& layers) const {
    const std::lock_guard<std::mutex> lock(mState->mutex);
    const auto at = mState->pictures.find(layers);
    return at == mState->pictures.end() ? nullptr : at->second.png;
}

SerialTerminals::SerialTerminals() {
    mReader = std::thread([this] { read(); });
}

SerialTerminals::~SerialTerminals() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEnded = true;
    }
    mChanged.ring();
    mReader.join();
    for (const Port& port : mPorts) {
        if (port.fd >= 0) {
            ::close(port.fd);
        }
    }
}

int SerialTerminals::opened(size_t port) {
    Port& one = mPorts[port];
    if (one.fd >= 0) {
        return one.fd;
    }
    // The links of a service that was killed may lead to another program's terminal by now.
    const int folder = ::open(stateDirectory().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool unused = folder < 0 || flock(folder, LOCK_SH | LOCK_NB) == 0;
    if (folder >= 0) {
        ::close(folder);
    }
    if (unused) {
        throw Failure(Exit::NotFound, "no board is running on " + inQuotes(stateDirectory()));
    }
    const std::string path = stateDirectory() + "/uart/ttyS" + std::to_string(port);
    one.fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (one.fd < 0) {
        throw Failure(Exit::Output, "cannot open " + inQuotes(path) + ": " + std::strerror(errno));
    }
    termios settings = {};
    if (tcgetattr(one.fd, &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(one.fd, TCSANOW, &settings);
    }
    mChanged.ring();
    return one.fd;
}

void SerialTerminals::open(uint64_t who, size_t port, Received received) {
    const std::lock_guard<std::mutex> lock(mMutex);
    opened(port);
    if (!mPorts[port].kept.empty()) {
        received(port, mPorts[port].kept);
    }
    mPorts[port].listeners[who] = std::move(received);
}

void SerialTerminals::close(uint64_t who, size_t port) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mPorts[port].listeners.erase(who);
}

void SerialTerminals::leave(uint64_t who) {
    for (size_t port = 0; port < kPorts; ++port) {
        close(who, port);
    }
}

size_t SerialTerminals::type(size_t port, const std::string& bytes) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const ssize_t count = ::write(opened(port), bytes.data(), bytes.size());
    if (count < 0) {
        throw Failure(Exit::Output,
                      "the serial port " + std::to_string(port) + " takes nothing: " + std::strerror(errno));
    }
    return static_cast<size_t>(count);
}

void SerialTerminals::read() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mEnded) {
        pollfd fds[kPorts + 1] = {};
        bool missing = false;
        for (size_t i = 0; i < kPorts; ++i) {
            if (mPorts[i].fd < 0 && !mPorts[i].listeners.empty()) {
                try {
                    opened(i);
                } catch (const Failure&) {
                    missing = true;  // the service is away: its ports come back with it
                }
            }
            fds[i] = {mPorts[i].fd, POLLIN, 0};
        }
        fds[kPorts] = {mChanged.fd(), POLLIN, 0};
        lock.unlock();
        poll(fds, std::size(fds), missing ? kReopenMilliseconds : -1);
        lock.lock();
        mChanged.rang();
        for (size_t i = 0; i < kPorts; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) {
                continue;
            }
            Port& port = mPorts[i];
            char bytes[4096];
            const ssize_t count = ::read(port.fd, bytes, sizeof(bytes));
            if (count > 0) {
                const std::string text(bytes, static_cast<size_t>(count));
                port.kept += text;
                port.kept.erase(0, port.kept.size() - std::min(port.kept.size(), kKept));
                for (const auto& [who, received] : port.listeners) {
                    received(i, text);
                }
            } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
                ::close(std::exchange(port.fd, -1));
            }
        }
    }
}

}  // namespace fapictl
