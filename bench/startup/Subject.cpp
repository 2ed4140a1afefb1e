#include "bench/startup/Subject.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

namespace bench {

namespace {

constexpr int kPatienceMilliseconds = 10'000;

}  // namespace

FolderWatch::FolderWatch(const std::string& folder, uint32_t events)
    : mFd(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    if (mFd < 0 || inotify_add_watch(mFd, folder.c_str(), events) < 0) {
        failOnCall("inotify");
    }
}

FolderWatch::~FolderWatch() {
    close(mFd);
}

void FolderWatch::drain() const {
    char events[4096];
    while (read(mFd, events, sizeof(events)) > 0) {
    }
}

void FolderWatch::await(const std::string& name) const {
    while (true) {
        pollfd ready{mFd, POLLIN, 0};
        const int count = poll(&ready, 1, kPatienceMilliseconds);
        if (count == 0) {
            fail(name + " does not appear");
        }
        alignas(inotify_event) char events[4096];
        const ssize_t got = read(mFd, events, sizeof(events));
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if (event->len > 0 && std::string(event->name).find(name) != std::string::npos) {
                return;
            }
            at += static_cast<ssize_t>(sizeof(*event) + event->len);
        }
    }
}

Measure startOf(const Subject& subject) {
    return [&subject] {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        const std::unique_ptr<Child> child = subject.start();
        subject.awaitReady();
        return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    };
}

double procBytes(pid_t pid, const std::string& file, const std::string& label) {
    std::ifstream stream("/proc/" + std::to_string(pid) + "/" + file);
    std::string line;
    while (std::getline(stream, line)) {
        if (line.compare(0, label.size(), label) == 0) {
            return std::stod(line.substr(label.size())) * 1024;
        }
    }
    fail("no " + label + " in " + file);
}

}  // namespace bench
