// bench-startup: from the start of the service to its last registration, and what it costs when idle, beside
// a process that opens one socket; the same of a server of one interface, beside one over D-Bus.

#include <android/log.h>
#include <hidl/ServiceManagement.h>
#include <sys/inotify.h>
#include <time.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/startup/OneInterface.h"
#include "bench/startup/Subject.h"
#include "bench/transport/Raw.h"

namespace {

using namespace bench;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;

constexpr double kMiB = 1024 * 1024;
constexpr double kMillisecond = 1e6;
constexpr size_t kNames = 10;

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
                 "Measures the start and the idle cost of the service beside a process that opens one "
                 "socket, and those of a server of one interface beside one over D-Bus.",
                 &options,
                 {{"--service", "The service's executable", &program},
                  {"--idle-seconds", "How long the idle process is watched", &idleText}});
    const double idleSeconds = std::stod(idleText);

    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
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
    tables.push_back(measureOneInterface(folder, folderWatch, options));
    return report(tables, options);
}
