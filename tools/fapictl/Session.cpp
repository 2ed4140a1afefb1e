#include "tools/fapictl/Session.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

#include "tools/fapictl/Dispatcher.h"
#include "tools/fapictl/LineWriter.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

constexpr size_t kLongestLine = 16 << 20;
constexpr size_t kReadBytes = 64 << 10;
/** Threads without work that are kept for the next. */
constexpr int kIdle = 4;
/** More than a session ever has under way, so that those too many are told; then its input waits. */
constexpr int kMostServed = 80;
constexpr std::chrono::milliseconds kUntilEnded(100);

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

/** The lines of the input, for whichever thread has its turn. */
class Lines {
  public:
    enum class State { Line, TooLong, Nothing, End };

    explicit Lines(int fd) : mFd(fd) {}

    /** Reads once, unless there is a line already. */
    State take(std::string& line) {
        if (!hasLine() && !mEnded) {
            read();
        }
        const size_t end = mText.find('\n', mSearched);
        if (end == std::string::npos) {
            mSearched = mText.size();
            if (mEnded) {
                line = std::move(mText);
                mText.clear();
                mSearched = 0;
                const bool skipped = std::exchange(mSkipping, false);
                return line.empty() || skipped ? State::End : State::Line;
            }
            if (mText.size() <= kLongestLine) {
                return State::Nothing;
            }
            mText.clear();
            mSearched = 0;
            return std::exchange(mSkipping, true) ? State::Nothing : State::TooLong;
        }
        line = mText.substr(0, end);
        mText.erase(0, end + 1);
        mSearched = 0;
        return std::exchange(mSkipping, false) ? State::Nothing
               : line.size() > kLongestLine    ? State::TooLong
                                               : State::Line;
    }
    /** Whether the next one can be taken without waiting for the input. */
    bool isReady() const { return mEnded || hasLine(); }

  private:
    bool hasLine() const { return mText.find('\n', mSearched) != std::string::npos; }

    void read() {
        const size_t before = mText.size();
        mText.resize(before + kReadBytes);
        ssize_t count = ::read(mFd, mText.data() + before, kReadBytes);
        const bool again = count < 0 && (errno == EINTR || errno == EAGAIN);
        mText.resize(before + (count > 0 ? static_cast<size_t>(count) : 0));
        // An input that cannot be read has ended.
        mEnded = count <= 0 && !again;
    }

    const int mFd;
    std::string mText;
    size_t mSearched = 0;  // so far there is no line's end
    bool mSkipping = false;
    bool mEnded = false;
};

/**
 * Threads that take turns at the input: the one that gets a line lets the next one at it, and serves the line
 * itself. So a request costs one wake-up, that of a thread which waits for input, and one that takes long
 * keeps nobody. The kernel wakes the one that has waited for the shortest time.
 */
class Session : public std::enable_shared_from_this<Session> {
  public:
    Session(const Package& package, const Target& defaults, int in, int out)
        : mLines(in),
          mIn(in),
          mWriter(std::make_shared<LineWriter>(out)),
          mDispatcher(package, defaults,
                      [writer = mWriter](std::string line) { writer->write(std::move(line)); }),
          mEpoll(epoll_create1(EPOLL_CLOEXEC)) {
        if (mEpoll < 0) {
            fail("epoll_create1");
        }
        mReady.ring();
        watch(EPOLL_CTL_ADD, mReady.fd(), 0);
        watch(EPOLL_CTL_ADD, mStop.fd(), EPOLLIN);
        // A file is always ready, and cannot be waited for.
        epoll_event event = {};
        event.events = EPOLLIN | EPOLLONESHOT;
        event.data.fd = mIn;
        mIsFile = epoll_ctl(mEpoll, EPOLL_CTL_ADD, mIn, &event) != 0;
        if (mIsFile && errno != EPERM) {
            fail("epoll_ctl");
        }
        if (mIsFile) {
            watch(EPOLL_CTL_MOD, mReady.fd(), EPOLLIN | EPOLLONESHOT);
        }
    }
    ~Session() { close(mEpoll); }
    Session(const Session&) = delete;

    SessionEnd run(int out, const Bell& end) {
        startThread();
        pollfd fds[] = {{end.fd(), POLLIN, 0},
                        {mDone.fd(), POLLIN, 0},
                        {mWriter->failed().fd(), POLLIN, 0},
                        {out, 0, 0}};  // for the end of whoever reads it
        while (poll(fds, std::size(fds), -1) < 0) {
            if (errno != EINTR) {
                fail("poll");
            }
        }
        const bool done = fds[1].revents != 0;
        if (done) {
            mWriter->drain();
        }
        const bool gone = mWriter->failed().rang() || (!done && fds[0].revents == 0);
        mWriter->close();
        mStop.ring();
        std::unique_lock<std::mutex> lock(mMutex);
        // Who has just answered is about to end; a call that was answered by its deadline is not.
        mChanged.wait_for(lock, kUntilEnded, [&] { return mThreads == 0; });
        return {gone, mThreads};
    }

  private:
    void watch(int operation, int fd, uint32_t events) const {
        epoll_event event = {};
        event.events = events;
        event.data.fd = fd;
        if (epoll_ctl(mEpoll, operation, fd, &event) != 0) {
            fail("epoll_ctl");
        }
    }

    /** Requires that the lock is not held. */
    void startThread() {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            ++mThreads;
        }
        try {
            std::thread([self = shared_from_this()] {
                self->work();
                const std::lock_guard<std::mutex> lock(self->mMutex);
                --self->mThreads;
                self->mChanged.notify_all();
            }).detach();
        } catch (const std::system_error&) {
            // The next line waits until a thread has served its own.
            const std::lock_guard<std::mutex> lock(mMutex);
            --mThreads;
            if (mThreads == 0) {
                throw;
            }
        }
    }

    void work() {
        while (true) {
            epoll_event event = {};
            const int count = epoll_wait(mEpoll, &event, 1, -1);
            if (count < 0 && errno != EINTR) {
                fail("epoll_wait");
            }
            if (count > 0 && event.data.fd == mStop.fd()) {
                return;
            }
            if (count > 0 && !takeTurn()) {
                return;
            }
        }
    }

    /** False when this thread is to end. */
    bool takeTurn() {
        std::string line;
        Lines::State state;
        bool alone = false;
        bool ready = false;
        bool full = false;
        {
            // The turn is this thread's alone; the lock shows what it did to the next.
            const std::lock_guard<std::mutex> lock(mMutex);
            state = mLines.take(line);
            if (state == Lines::State::End) {
                mEnded = true;
                ringWhenDone();
                return true;
            }
            ready = mIsFile || mLines.isReady();
            if (state == Lines::State::Line) {
                ++mOpen;
                ++mServing;
                alone = mThreads == mServing;
                full = mFull = mServing >= kMostServed;
            }
        }
        if (!full) {
            if (alone) {
                startThread();
            }
            watch(EPOLL_CTL_MOD, ready ? mReady.fd() : mIn, EPOLLIN | EPOLLONESHOT);
        }
        if (state == Lines::State::TooLong) {
            mWriter->write(Dispatcher::refusal("a line of more than 16 MiB"));
        }
        if (state != Lines::State::Line) {
            return true;
        }
        serve(line);
        const std::lock_guard<std::mutex> lock(mMutex);
        --mServing;
        if (mFull) {
            mFull = false;
            watch(EPOLL_CTL_MOD, mIsFile || mLines.isReady() ? mReady.fd() : mIn, EPOLLIN | EPOLLONESHOT);
        }
        mChanged.notify_all();
        return mThreads - mServing <= kIdle;
    }

    void serve(const std::string& line) {
        const auto done = [this](std::string answer) {
            if (!answer.empty()) {
                mWriter->write(std::move(answer));
            }
            const std::lock_guard<std::mutex> lock(mMutex);
            --mOpen;
            ringWhenDone();
        };
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            done("");
        } else {
            mDispatcher.serve(line, done);
        }
    }

    /** Requires the lock. */
    void ringWhenDone() const {
        if (mEnded && mOpen == 0) {
            mDone.ring();
        }
    }

    Lines mLines;  // whoever has the turn
    const int mIn;
    bool mIsFile = false;
    const std::shared_ptr<LineWriter> mWriter;
    Dispatcher mDispatcher;
    const int mEpoll;
    const Bell mReady;  // has always rung: for lines that need not be waited for
    const Bell mStop;
    const Bell mDone;
    std::mutex mMutex;
    std::condition_variable mChanged;
    // Guarded by mMutex.
    int mThreads = 0;
    int mServing = 0;    // of them
    bool mFull = false;  // so many that the next line has to wait for one of them
    int mOpen = 0;       // messages that are not answered
    bool mEnded = false;
};

}  // namespace

SessionEnd serveSession(const Package& package, const Target& defaults, int in, int out, const Bell& end) {
    return std::make_shared<Session>(package, defaults, in, out)->run(out, end);
}

Exit session(const Context& context) {
    const EndSignals signals;
    signal(SIGPIPE, SIG_IGN);
    // What the messages come and go on is nobody else's: not a program's that is run, nor @-'s, which is
    // refused since that descriptor cannot be read.
    const int in = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int out = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (in < 0 || out < 0 || nothing < 0 || dup2(nothing, STDIN_FILENO) < 0 ||
        dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        fail("dup2");
    }
    close(nothing);
    const SessionEnd end = serveSession(context.package, targetOf(context), in, out, EndSignals::bell());
    if (end.outputGone) {
        context.err << "fapictl: cannot write the answers" << std::endl;
    }
    const Exit code = end.outputGone ? Exit::Output : Exit::Success;
    if (end.leftBehind > 0) {
        // Nothing is torn down under threads that still use it.
        _exit(static_cast<int>(code));
    }
    return code;
}

}  // namespace fapictl
