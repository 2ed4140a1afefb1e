#include "tools/fapictl/CheckedService.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>
#include <utility>

#include "tools/check/Report.h"
#include "tools/fapictl/Engine.h"
#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Watchdog.h"

namespace fapictl {
namespace {

using std::chrono::steady_clock;

constexpr auto kLook = std::chrono::milliseconds(2);
/** The probe's own pace, beside that of the library. */
constexpr double kProbeSeconds = 5;
constexpr int kLooksAtDeath = 1000;
constexpr size_t kLastWords = 300;

std::string contentFrom(const std::string& path, uintmax_t offset) {
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/** This process's environment with some variables set. */
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& variables) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string one = *entry;
        if (variables.count(one.substr(0, one.find('='))) == 0) {
            all.push_back(one);
        }
    }
    for (const auto& [name, value] : variables) {
        all.push_back(name + "=" + value);
    }
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) {
        all.push_back(text.data());
    }
    all.push_back(nullptr);
    return all;
}

std::string withBefore(const std::string& first, const char* variable, const char* separator) {
    const char* const rest = std::getenv(variable);
    return rest == nullptr || *rest == '\0' ? first : first + separator + rest;
}

}  // namespace

CheckedService::CheckedService(const Package& package, const std::string& folder, double seconds)
    : mPackage(package), mLibraries(folder), mSeconds(seconds) {
    std::error_code error;
    mBin = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const std::string& file :
         {mBin + "/" + mPackage.name + "-service", mBin + "/../lib/zvttvfactory/check-probe.so"}) {
        if (access(file.c_str(), R_OK) != 0) {
            throw Failure(Exit::Usage, "there is no " + inQuotes(file) + " (" + std::strerror(errno) +
                                               "): check needs it beside fapictl");
        }
    }
    // Six letters that mkdtemp() replaces.
    std::string path = std::filesystem::temp_directory_path(error) / ("fapictl-check-" + std::string(6, 'X'));
    if (mkdtemp(path.data()) == nullptr) {
        throw Failure(Exit::Output, "cannot make the folder " + inQuotes(path) + ": " + std::strerror(errno));
    }
    mFolder = path;
    mkdir((mFolder + "/names").c_str(), 0700);
    setenv("HIDL_RUNTIME_DIR", (mFolder + "/names").c_str(), 1);
    setenv("HIDL_TRANSPORT", "socket", 1);
}

CheckedService::~CheckedService() {
    end();
    std::error_code error;
    std::filesystem::remove_all(mFolder, error);
}

void CheckedService::end() {
    mProxies.clear();
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mLate = false;
    }
    if (mPid > 0 && !mEnded) {
        kill(mPid, SIGKILL);
        waitpid(mPid, &mStatus, 0);
    }
    if (mOrders >= 0) {
        close(mOrders);
    }
    mPid = mOrders = -1;
}

CheckedService::Progress CheckedService::start() {
    end();
    mLines.clear();
    mDone.clear();
    mReportRead = mOutputRead = mErrorsRead = 0;
    mEnded = false;
    int orders[2];
    if (pipe2(orders, O_CLOEXEC) != 0) {
        throw Failure(Exit::Command, std::string("cannot make a pipe: ") + std::strerror(errno));
    }
    mOrders = orders[1];
    const std::string report = mFolder + "/report";
    std::ofstream(report, std::ios::trunc).flush();
    std::map<std::string, std::string> variables = {
            {check::kReportVariable, report},
            {"LD_PRELOAD", withBefore(mBin + "/../lib/zvttvfactory/check-probe.so", "LD_PRELOAD", " ")},
            {"ZVTTV_STATE_DIR", mFolder + "/state"},
            {"ZVTTV_DEBUG_LEVEL", "0"},
    };
    if (!mLibraries.empty()) {
        variables["LD_LIBRARY_PATH"] = withBefore(mLibraries, "LD_LIBRARY_PATH", ":");
    }
    std::vector<std::string> environment = environmentWith(variables);
    std::vector<std::string> words = {mBin + "/" + mPackage.name + "-service"};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int kNewFile = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (mFolder + "/out").c_str(), kNewFile, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (mFolder + "/err").c_str(), kNewFile, 0600);
    posix_spawn_file_actions_adddup2(&actions, orders[0], check::kOrders);
    const int error = posix_spawn(&mPid, words[0].c_str(), &actions, nullptr, pointers(words).data(),
                                  pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(orders[0]);
    if (error != 0) {
        mPid = -1;
        throw Failure(Exit::Command, "cannot run " + inQuotes(words[0]) + ": " + std::strerror(error));
    }
    const Progress progress = waitForOrder(check::kWaits);
    if (progress == Progress::Waiting) {
        findAll();
    }
    return progress;
}

CheckedService::Progress CheckedService::waitForOrder(char order) {
    const auto deadline = steady_clock::now() + std::chrono::duration<double>(mSeconds + kProbeSeconds);
    for (take(); mDone[order] == 0; take()) {
        if (hasEnded()) {
            return Progress::Dead;
        }
        if (steady_clock::now() > deadline) {
            kill(mPid, SIGKILL);
            take();
            return Progress::Late;
        }
        std::this_thread::sleep_for(kLook);
    }
    --mDone[order];
    return order == check::kWaits ? Progress::Waiting : Progress::Running;
}

CheckedService::Progress CheckedService::order(char order) {
    // A service that has just died ends the wait, not this process.
    signal(SIGPIPE, SIG_IGN);
    if (write(mOrders, &order, 1) != 1 && errno != EPIPE) {
        throw Failure(Exit::Transport, std::string("the service takes no orders: ") + std::strerror(errno));
    }
    return waitForOrder(order);
}

CheckedService::Progress CheckedService::startModules() {
    Progress progress = order(check::kStart);
    const auto deadline = steady_clock::now() + std::chrono::duration<double>(mSeconds + kProbeSeconds);
    while (progress == Progress::Running && !findAll()) {
        std::this_thread::sleep_for(kLook);
        if (hasEnded()) {
            progress = Progress::Dead;
        } else if (steady_clock::now() > deadline) {
            kill(mPid, SIGKILL);
            progress = Progress::Late;
        }
    }
    return progress;
}

bool CheckedService::findAll() {
    bool all = true;
    const std::vector<Instance> registered = registeredServices();
    for (const Interface& interface : mPackage.interfaces) {
        const bool there = std::any_of(registered.begin(), registered.end(), [&](const Instance& instance) {
            return instance.interface == interface.descriptor && instance.pid == mPid;
        });
        if (there && mProxies.count(&interface) == 0) {
            if (const sp<IBase> proxy = interface.find("default"); proxy != nullptr) {
                mProxies[&interface] = proxy;
            }
        }
        all = all && (mProxies.count(&interface) > 0 || !interface.isService);
    }
    return all;
}

CheckedService::Progress CheckedService::call(const Interface& interface, const Method& method,
                                              const Json& arguments) {
    const auto proxy = mProxies.find(&interface);
    const sp<IBase> service = proxy == mProxies.end() ? nullptr : proxy->second;
    Reply reply;
    if (service != nullptr) {
        const Watchdog watchdog(mSeconds, [this] {
            {
                const std::lock_guard<std::mutex> lock(mMutex);
                mLate = true;
            }
            // Not yet reaped, since whoever waits for it has this watchdog.
            kill(mPid, SIGKILL);
        });
        reply = method.call(*service, arguments);
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    return mLate                    ? Progress::Late
           : reply.dead             ? Progress::Dead
           : !reply.failure.empty() ? Progress::Failed
                                    : Progress::Running;
}

void CheckedService::take() {
    const std::string text = contentFrom(mFolder + "/report", mReportRead);
    const size_t whole = text.rfind('\n') + 1;
    mReportRead += whole;
    std::istringstream lines(text.substr(0, whole));
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> words;
        std::istringstream stream(line);
        for (std::string word; std::getline(stream, word, '\t');) {
            words.push_back(word);
        }
        if (words.size() == 2 && words[0] == "order") {
            ++mDone[words[1][0]];
        }
        mLines.push_back(std::move(words));
    }
}

std::vector<std::vector<std::string>> CheckedService::news() {
    take();
    return std::exchange(mLines, {});
}

void CheckedService::forgetWords() {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(mFolder + "/err", error);
    mErrorsRead = error ? 0 : size;
}

bool CheckedService::hasEnded() {
    if (!mEnded && waitpid(mPid, &mStatus, WNOHANG) == mPid) {
        mEnded = true;
        take();
    }
    return mEnded;
}

std::string CheckedService::death() {
    // Its sockets are closed before it can be reaped.
    for (int i = 0; i < kLooksAtDeath && !hasEnded(); ++i) {
        std::this_thread::sleep_for(kLook);
    }
    if (!mEnded) {
        kill(mPid, SIGKILL);
        waitpid(mPid, &mStatus, 0);
        mEnded = true;
    }
    std::string words = contentFrom(mFolder + "/err", mErrorsRead);
    words.erase(words.find_last_not_of("\n ") + 1);
    words = words.substr(words.rfind('\n') + 1).substr(0, kLastWords);
    const std::string how = WIFSIGNALED(mStatus) ? strsignal(WTERMSIG(mStatus))
                                                 : "exit code " + std::to_string(WEXITSTATUS(mStatus));
    return how + (words.empty() ? "" : ": " + escaped(words));
}

std::string CheckedService::output() {
    const std::string text = contentFrom(mFolder + "/out", mOutputRead);
    mOutputRead += text.size();
    return text;
}

size_t CheckedService::count(const char* what) const {
    std::error_code error;
    const std::filesystem::directory_iterator folder("/proc/" + std::to_string(mPid) + "/" + what, error);
    return error ? 0 : static_cast<size_t>(std::distance(folder, std::filesystem::directory_iterator()));
}

}  // namespace fapictl
