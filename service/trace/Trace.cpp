#include "service/trace/Trace.h"

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <hwbinder/IPCThreadState.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utils/Mutex.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::Mutex;

std::atomic<size_t> sTraceObservers{0};

namespace {

/// Each has a thread, and a queue of its own.
constexpr size_t kMostObservers = 4;
/// Of the lines that wait for one observer: some thirty thousand small calls, and more than one call can
/// carry.
constexpr size_t kMostBytes = 8 << 20;

constexpr char kPackage[] = "vendor.zentrovi.tv.zvttvfactory@1.0";

using Line = std::shared_ptr<const std::string>;

class Descriptor {
  public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor() {
        if (mFd >= 0) {
            close(mFd);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return mFd; }

  private:
    const int mFd;
};

struct Observer {
    explicit Observer(int fd)
        : pipe(fcntl(fd, F_DUPFD_CLOEXEC, 0)), bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    const Descriptor pipe;
    const Descriptor bell;  // rings when there is something to write again
    // Guarded by sMutex.
    std::deque<Line> lines;
    size_t bytes = 0;
    uint64_t lost = 0;
};

/// Held for a few steps only, never while somebody writes.
/// Never destroyed, nor what it guards: calls and observers' threads go on while the process ends.
Mutex& sMutex = *new Mutex;
std::array<std::shared_ptr<Observer>, kMostObservers>& sObservers GUARDED_BY(sMutex) =
        *new std::array<std::shared_ptr<Observer>, kMostObservers>;

Line lostLine(uint64_t calls) {
    return std::make_shared<const std::string>("{\"lost\":" + std::to_string(calls) + "}\n");
}

void append(Observer& observer, const Line& line) {
    observer.lines.push_back(line);
    observer.bytes += line->size();
}

/// Null is a call whose line found no memory.
void queueFor(Observer& observer, const Line& line) {
    const bool rings = observer.lines.empty() && observer.lost == 0;
    try {
        if (line == nullptr || observer.bytes + line->size() > kMostBytes) {
            ++observer.lost;
        } else {
            if (observer.lost > 0) {
                append(observer, lostLine(observer.lost));
                observer.lost = 0;
            }
            append(observer, line);
        }
    } catch (const std::bad_alloc&) {
        ++observer.lost;
    }
    if (rings) {
        const uint64_t one = 1;
        // Fails only when it rings already.
        [[maybe_unused]] const ssize_t written = write(observer.bell.get(), &one, sizeof one);
    }
}

/// The next line to write, null when there is none. Throws std::bad_alloc.
Line takeFrom(Observer& observer) {
    const Mutex::Autolock lock(sMutex);
    if (observer.lines.empty()) {
        if (observer.lost == 0) {
            return nullptr;
        }
        Line line = lostLine(observer.lost);
        observer.lost = 0;
        return line;
    }
    Line line = std::move(observer.lines.front());
    observer.lines.pop_front();
    observer.bytes -= line->size();
    return line;
}

/// Waits as long as it takes. False when the reader has gone.
bool waitFor(int pipe, short events, int bell) {
    pollfd polled[] = {{pipe, events, 0}, {bell, POLLIN, 0}};
    while (poll(polled, bell < 0 ? 1 : 2, -1) < 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return (polled[0].revents & (POLLERR | POLLNVAL)) == 0;
}

/// False when the reader has gone. Whether a write waits is the pipe's owner's to choose.
bool writeLine(int pipe, const std::string& line) {
    for (size_t done = 0; done < line.size();) {
        const ssize_t written = write(pipe, line.data() + done, line.size() - done);
        if (written >= 0) {
            done += static_cast<size_t>(written);
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            if (!waitFor(pipe, POLLOUT, -1)) {
                return false;
            }
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Writes what is queued until the reader goes. On a thread of the observer's own.
void serve(Observer& observer) {
    // A pipe without a reader is an error number here, and no signal to the process.
    sigset_t signal;
    sigemptyset(&signal);
    sigaddset(&signal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signal, nullptr);
    try {
        while (true) {
            if (const Line line = takeFrom(observer)) {
                if (!writeLine(observer.pipe.get(), *line)) {
                    return;
                }
            } else if (!waitFor(observer.pipe.get(), 0, observer.bell.get())) {
                return;
            } else {
                uint64_t rung = 0;
                [[maybe_unused]] const ssize_t got = read(observer.bell.get(), &rung, sizeof rung);
            }
        }
    } catch (const std::bad_alloc&) {
        // Without memory for the line that says so: the end of the pipe says that this trace is over.
    }
}

void forget(const std::shared_ptr<Observer>& observer) {
    const Mutex::Autolock lock(sMutex);
    *std::find(sObservers.begin(), sObservers.end(), observer) = nullptr;
    sTraceObservers.fetch_sub(1, std::memory_order_relaxed);
}

void queueForAll(const Line& line) {
    const Mutex::Autolock lock(sMutex);
    for (const std::shared_ptr<Observer>& observer : sObservers) {
        if (observer != nullptr) {
            queueFor(*observer, line);
        }
    }
}

/// Bytes of the UTF-8 character at the start of the text, 0 when there is none.
size_t characterLength(const uint8_t* text, size_t size) {
    const uint8_t first = text[0];
    if (first < 0x80) {
        return 1;
    }
    const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || size < length) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xc0) != 0x80) {
            return 0;
        }
    }
    // Longer than need be, half of a pair, or beyond the last character.
    const bool wrong = (first == 0xe0 && text[1] < 0xa0) || (first == 0xed && text[1] >= 0xa0) ||
                       (first == 0xf0 && text[1] < 0x90) || (first == 0xf4 && text[1] >= 0x90);
    return wrong ? 0 : length;
}

bool isUtf8(const uint8_t* text, size_t size) {
    while (size > 0) {
        const size_t length = characterLength(text, size);
        if (length == 0) {
            return false;
        }
        text += length;
        size -= length;
    }
    return true;
}

constexpr char kDigits[] = "0123456789abcdef";

}  // namespace

const char* traceTo(const ::android::hardware::hidl_handle& handle) {
    const native_handle_t* const native = handle.getNativeHandle();
    struct stat status {};
    if (native == nullptr || native->numFds < 1 || fstat(native->data[0], &status) != 0 ||
        !S_ISFIFO(status.st_mode) || (fcntl(native->data[0], F_GETFL) & O_ACCMODE) != O_WRONLY) {
        // One that can be read through as well would have a reader for ever, us.
        return "refused, it goes to the writing end of a pipe alone";
    }
    try {
        const auto observer = std::make_shared<Observer>(native->data[0]);
        if (observer->pipe.get() < 0 || observer->bell.get() < 0) {
            return "refused, there is no descriptor for it";
        }
        append(*observer,
               std::make_shared<const std::string>(std::string("{\"tracing\":\"") + kPackage +
                                                   "\",\"pid\":" + std::to_string(getpid()) + "}\n"));
        const Mutex::Autolock lock(sMutex);
        const auto place = std::find(sObservers.begin(), sObservers.end(), nullptr);
        if (place == sObservers.end()) {
            return "refused, there are four observers already";
        }
        // Not before this lock is released does it take a line, nor find that the reader has gone.
        std::thread([observer] {
            serve(*observer);
            forget(observer);
        }).detach();
        *place = observer;
        sTraceObservers.fetch_add(1, std::memory_order_relaxed);
        return nullptr;
    } catch (const std::bad_alloc&) {
        return "refused, there is no memory for it";
    } catch (const std::system_error&) {
        return "refused, there is no thread for it";
    }
}

void TraceText::separate() {
    const char last = mText.empty() ? '{' : mText.back();
    if (last != '{' && last != '[' && last != ':') {
        mText += ',';
    }
}

void TraceText::open(char bracket) {
    separate();
    mText += bracket;
}

void TraceText::name(const char* name) {
    separate();
    mText += '"';
    mText += name;
    mText += "\":";
}

void TraceText::number(int64_t value) {
    separate();
    mText += std::to_string(value);
}

void TraceText::number(uint64_t value) {
    separate();
    mText += std::to_string(value);
}

void TraceText::boolean(bool value) {
    separate();
    mText += value ? "true" : "false";
}

void TraceText::null() {
    separate();
    mText += "null";
}

void TraceText::hex(const uint8_t* bytes, size_t size) {
    mText.reserve(mText.size() + 2 * size + 2);
    mText += '"';
    for (size_t i = 0; i < size; ++i) {
        mText += kDigits[bytes[i] >> 4];
        mText += kDigits[bytes[i] & 15];
    }
    mText += '"';
}

void TraceText::bytes(const uint8_t* bytes, size_t size) {
    separate();
    hex(bytes, size);
}

void TraceText::text(const char* characters, size_t size) {
    separate();
    const uint8_t* const bytes = reinterpret_cast<const uint8_t*>(characters);
    if (!isUtf8(bytes, size)) {
        mText += "{\"hex\":";
        hex(bytes, size);
        mText += '}';
        return;
    }
    mText.reserve(mText.size() + size + 2);
    mText += '"';
    for (size_t i = 0; i < size; ++i) {
        const char c = characters[i];
        if (c == '"' || c == '\\') {
            mText += '\\';
            mText += c;
        } else if (bytes[i] < 0x20) {
            mText += "\\u00";
            mText += kDigits[bytes[i] >> 4];
            mText += kDigits[bytes[i] & 15];
        } else {
            mText += c;
        }
    }
    mText += '"';
}

void TraceText::withheld(size_t size) {
    separate();
    mText += "\"<" + std::to_string(size) + " bytes withheld>\"";
}

TracedCall::TracedCall(const char* interface, const char* method) {
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    const auto time = duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch());
    try {
        mLine.open('{');
        mLine.name("time");
        mLine.number(static_cast<int64_t>(time.count()));
        mLine.name("pid");
        mLine.number(int64_t{::android::hardware::IPCThreadState::self()->getCallingPid()});
        mLine.name("interface");
        mLine.text(interface, std::strlen(interface));
        mLine.name("method");
        mLine.text(method, std::strlen(method));
    } catch (const std::exception&) {
        mComplete = false;
    }
    mStart = Clock::now();
}

TracedCall::~TracedCall() {
    if (!mFinished) {
        finish(Clock::now());
    }
}

void TracedCall::members(const char* group, std::initializer_list<TracedValue> values) {
    try {
        mLine.name(group);
        mLine.open('{');
        for (const TracedValue& value : values) {
            value.write(mLine);
        }
        mLine.close('}');
    } catch (const std::exception&) {
        mComplete = false;
    }
}

void TracedCall::arguments(std::initializer_list<TracedValue> values) {
    members("arguments", values);
    mStart = Clock::now();
}

void TracedCall::results(std::initializer_list<TracedValue> values) {
    const Clock::time_point end = Clock::now();
    members("results", values);
    finish(end);
}

void TracedCall::finish(Clock::time_point end) {
    using std::chrono::duration_cast;
    using std::chrono::nanoseconds;
    mFinished = true;
    Line line;
    if (mComplete) {
        try {
            mLine.name("nanoseconds");
            mLine.number(static_cast<int64_t>(duration_cast<nanoseconds>(end - mStart).count()));
            line = std::make_shared<const std::string>(mLine.take() + "}\n");
        } catch (const std::exception&) {
            line = nullptr;  // counts as lost
        }
    }
    queueForAll(line);
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
