// bench-startup: from the start of the service to its last registration, and what it costs when idle, beside
// a process that opens one socket.

#include <hidl/ServiceManagement.h>
#include <poll.h>
#include <sys/inotify.h>
#include <time.h>
#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/transport/Raw.h"

namespace {

using namespace bench;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;
using Clock = std::chrono::steady_clock;

constexpr double kMiB = 1024 * 1024;
constexpr double kMillisecond = 1e6;
constexpr size_t kNames = 10;

double nanosecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

/** Registered names of the service's package. Looks into the registry; the service does not notice. */
size_t registeredNames() {
    const std::string manager = IZvtTvFApiManager::descriptor;
    const std::string package = manager.substr(0, manager.find("::"));
    size_t count = 0;
    android::hardware::defaultServiceManager()
            ->list([&](const auto& names) {
                for (const auto& name : names) {
                    count += std::string(name).rfind(package, 0) == 0 ? 1 : 0;
                }
            })
            .assertOk();
    return count;
}

/**
 * Tells what happens in a folder. It lasts as long as the program, as ending a watch takes the kernel some
 * milliseconds.
 */
class FolderWatch {
  public:
    FolderWatch(const std::string& folder, uint32_t events) : mFd(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
        if (mFd < 0 || inotify_add_watch(mFd, folder.c_str(), events) < 0) {
            failOnCall("inotify");
        }
    }
    ~FolderWatch() { close(mFd); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /** Forgets what has happened so far. */
    void drain() const {
        char events[4096];
        while (read(mFd, events, sizeof(events)) > 0) {
        }
    }

    /** Waits until something happens to a file with this text in its name. */
    void await(const std::string& name) const {
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

  private:
    static constexpr int kPatienceMilliseconds = 10'000;

    const int mFd;
};

/** The process under test, and how to tell that it is ready without asking it. */
struct Subject {
    std::function<std::unique_ptr<Child>()> start;
    std::function<void()> awaitReady;
};

Subject bareProcess(const TemporaryFolder& folder, const FolderWatch& watch) {
    const std::string socket = folder / "bare";
    return {[socket, &watch] {
                std::filesystem::remove(socket);
                watch.drain();
                return std::make_unique<Child>(sibling("bench-raw-server"), std::vector<std::string>{socket});
            },
            [socket, &watch] {
                watch.await("bare");
                const RawClient client(socket, {0, 0});  // it has its name a moment before it listens
            }};
}

Subject service(const std::string& program, const FolderWatch& watch) {
    return {[program, &watch] {
                watch.drain();
                return std::make_unique<Child>(program);
            },
            [&watch] {
                do {
                    watch.await("IZvtTvFApiManager");  // the last one
                } while (registeredNames() < kNames);
            }};
}

Measure startOf(const Subject& subject) {
    return [&subject] {
        const Clock::time_point start = Clock::now();
        const std::unique_ptr<Child> child = subject.start();
        subject.awaitReady();
        return nanosecondsSince(start);
    };
}

/** A figure in kB of one of the process's files under /proc, in bytes. */
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

double cpuNanoseconds(pid_t pid) {
    clockid_t clock;
    timespec spent;
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &spent) != 0) {
        fail("can not read a process's CPU time");
    }
    return static_cast<double>(spent.tv_sec) * 1e9 + static_cast<double>(spent.tv_nsec);
}

struct Idle {
    double resident;
    double anonymous;
    double cpu;  // while it is left alone
};

Idle idle(const Subject& subject, double seconds) {
    const std::unique_ptr<Child> child = subject.start();
    // Nobody connects: a look at the registry would not be noticed, but a call would start a thread.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const double before = cpuNanoseconds(child->pid());
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    return {procBytes(child->pid(), "status", "VmRSS:"),
            procBytes(child->pid(), "smaps_rollup", "Anonymous:"), cpuNanoseconds(child->pid()) - before};
}

Row beside(const std::string& workload, Unit unit, double limit, double baseline, double ours) {
    return {workload, unit, baseline, ours, ours / baseline, ours - baseline, {Limit::Kind::AtMost, limit}};
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    std::string program = sibling("vendor.zentrovi.tv.zvttvfactory@1.0-service");
    std::string idleText = "3";
    parseOptions(argc, argv,
                 "Measures the service's start and its idle cost beside a process that opens one socket.",
                 &options,
                 {{"--service", "The service's executable", &program},
                  {"--idle-seconds", "How long the idle process is watched", &idleText}});
    const double idleSeconds = std::stod(idleText);

    const TemporaryFolder folder;
    const std::string runtime = folder / "runtime";
    setenv("HIDL_RUNTIME_DIR", runtime.c_str(), 1);
    setenv("ZVTTV_DEBUG_LEVEL", "0", 1);
    setenv("ZVTTV_STATE_DIR", (folder / "state").c_str(), 1);
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    const FolderWatch folderWatch(folder / ".", IN_CREATE);
    const FolderWatch registryWatch(runtime, IN_MODIFY);
    const Subject bare = bareProcess(folder, folderWatch);
    const Subject own = service(program, registryWatch);
    {
        const std::unique_ptr<Child> first = own.start();  // it also makes the board's files
        own.awaitReady();
    }

    std::vector<Table> tables;
    const std::string name = "from exec to all ten registered, beside one socket";
    for (const bool pinned : {true, false}) {
        if (!options.wants(name)) {
            break;
        }
        std::optional<OneCpu> binding;
        if (pinned) {
            binding.emplace();
        }
        const Limit limit = pinned ? Limit{Limit::Kind::MoreAtMost, 10 * kMillisecond} : Limit{};
        tables.push_back(
                {"Start: " + conditions(pinned, options),
                 {compare(name, Unit::Nanoseconds, limit, options.rounds, startOf(bare), startOf(own))}});
    }
    const Idle theirs = idle(bare, idleSeconds);
    const Idle ours = idle(own, idleSeconds);
    Table table{"Idle, after the start and without calls", {}};
    const auto add = [&](const std::string& workload, Unit unit, double limit, double Idle::*figure) {
        if (options.wants(workload)) {
            table.rows.push_back(beside(workload, unit, limit, theirs.*figure, ours.*figure));
        }
    };
    add("resident memory", Unit::Bytes, 5.5 * kMiB, &Idle::resident);
    add("private anonymous memory", Unit::Bytes, 1.5 * kMiB, &Idle::anonymous);
    add("CPU time", Unit::Nanoseconds, 0, &Idle::cpu);
    tables.push_back(table);
    return report(tables, options);
}
