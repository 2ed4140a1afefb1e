// A board for the tests, set up as the service does it: a command a line on standard input, an answer a line
// on standard output.
//
//   INTERFACE METHOD WORDS...    the results of the service's method
//   module NAME STEP             init, deinit, reg_callback, unreg_callback: the status
//   board init|level|status      what the library itself answers
//   events N                     what has been raised once it is N events; none is left
//   hold TYPE                    handlers of that event wait until another is held
//   LINE &                       nothing; `done` waits and has the answer
//
// Environment: PROBE_TRACE puts what is done to the disk before the answer; PROBE_DIE_AT=fsync|rename ends
// the process instead of doing that; PROBE_FILE_LIMIT=<bytes> makes larger files fail; PROBE_UID gives up
// root for that user. All but the last begin with the first command.

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <future>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/audio/ZvtTvFApiAudio.h"
#include "adapters/display/ZvtTvFApiDisplay.h"
#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"
#include "adapters/information/ZvtTvFApiInformation.h"
#include "adapters/inputsource/ZvtTvFApiInputSource.h"
#include "adapters/network/ZvtTvFApiNetwork.h"
#include "adapters/peripheral/ZvtTvFApiPeripheral.h"
#include "adapters/system/ZvtTvFApiSystem.h"
#include "chiplayer/chiplayer.h"
#include "tests/cases/Method.h"
#include "tests/support/Shortened.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

using namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation;
using fapi_core::ZvtTvFApiEventCommonObject;

namespace {

// Never destroyed: the board's threads raise events while the process exits.
std::mutex& sMutex = *new std::mutex;
std::condition_variable& sRaised = *new std::condition_variable;
std::condition_variable& sReleased = *new std::condition_variable;
unsigned sHeld = 0;  // guarded by sMutex; the type of event whose handler waits
std::vector<std::string>& sEvents = *new std::vector<std::string>;  // guarded by sMutex
std::string& sTrace = *new std::string;                             // guarded by sMutex
int sLevel = 0;                    // as the service asks for it, once and first of all
std::atomic<bool> sFaults{false};  // set once, by the first command

void hook(const char* name, const char* detail) {
    if (!sFaults) {
        return;
    }
    if (const char* moment = getenv("PROBE_DIE_AT"); moment != nullptr && strcmp(moment, name) == 0) {
        _exit(42);
    }
    if (getenv("PROBE_TRACE") != nullptr) {
        const std::lock_guard<std::mutex> lock(sMutex);
        sTrace += std::string(name) + " " + detail + ", ";
    }
}

/** NUMBER[,TEXT][:BYTES] */
std::string shown(const ZvtTvFApiEventCommonObject& record) {
    const std::string text = shortened(fapictl::escaped(std::string(record.strValue)));
    const std::string bytes(record.vecValue.begin(), record.vecValue.end());
    return std::to_string(static_cast<int32_t>(record.u32Value)) + (text.empty() ? "" : "," + text) +
           (bytes.empty() ? "" : ":" + shortened(fapictl::escaped(bytes)));
}

using Object = const ZvtTvFApiEventCommonObject&;
int see(unsigned type, Object first, Object second, Object third, Object fourth) {
    char number[16];
    snprintf(number, sizeof(number), "0x%x", type);
    std::string event = number;
    for (const std::string& record : {shown(first), shown(second), shown(third), shown(fourth)}) {
        event += " " + record;
    }
    while (event.size() > 2 && event.compare(event.size() - 2, 2, " 0") == 0) {
        event.resize(event.size() - 2);  // empty records at the end
    }
    if (type == INPSRC_EVENT_SIGNAL_LOCK || type == INPSRC_EVENT_TIMING) {
        // A handler may call the library, which then answers for what has happened.
        fapi_core::ZvtTvFApiVideoTiming timing{};
        a_zvttvfapi_inpsrc_get_input_timing(timing);
        event += " seen " + std::to_string(timing.u16VActive);
    }
    std::unique_lock<std::mutex> lock(sMutex);
    sEvents.push_back(event);
    sRaised.notify_all();
    sReleased.wait(lock, [&] { return sHeld != type; });
    return type == 0x1ffff ? -1 : 0;
}

#define STEPS(m)                                                                             \
    {                                                                                        \
#m, {                                                                                \
            {"init", a_zvttvfapi_##m##_init}, {"deinit", a_zvttvfapi_##m##_deinit},          \
                    {"reg_callback", [] { return a_zvttvfapi_##m##_reg_callback(see); }},    \
                    {"unreg_callback", a_zvttvfapi_##m##_unreg_callback},                    \
                    {"reg_nothing", [] { return a_zvttvfapi_##m##_reg_callback(nullptr); }}, \
        }                                                                                    \
    }
const std::map<std::string, std::map<std::string, int32_t (*)()>> kModules = {
        STEPS(aud),    STEPS(disp), STEPS(disptst), STEPS(info),
        STEPS(inpsrc), STEPS(net),  STEPS(prphrl),  STEPS(sys)};
#undef STEPS

const std::map<std::string, int (*)()> kBoard = {{"init", _a_zvttvfapi_custom_init},
                                                 {"level", [] { return sLevel; }},
                                                 {"status", a_zvttvfapi_common_get_fapi_status}};

std::string eventsOnce(size_t count) {
    std::unique_lock<std::mutex> lock(sMutex);
    sRaised.wait_for(lock, std::chrono::seconds(20), [=] { return sEvents.size() >= count; });
    std::string all;
    for (const std::string& event : std::exchange(sEvents, {})) {
        all += (all.empty() ? "" : "; ") + event;
    }
    return all;
}

std::string carryOut(const std::string& line) {
    static const std::map<std::string, fapictl::sp<fapictl::IBase>> sObjects = {
            {"Audio", new ZvtTvFApiAudio},
            {"Display", new ZvtTvFApiDisplay},
            {"DisplayTest", new ZvtTvFApiDisplayTest},
            {"Information", new ZvtTvFApiInformation},
            {"InputSource", new ZvtTvFApiInputSource},
            {"Network", new ZvtTvFApiNetwork},
            {"Peripheral", new ZvtTvFApiPeripheral},
            {"System", new ZvtTvFApiSystem}};
    std::vector<std::string> words = cases::split(line);
    if (words.at(0) == "module") {
        return std::to_string(kModules.at(words.at(1)).at(words.at(2))());
    }
    if (words[0] == "board") {
        return std::to_string(kBoard.at(words.at(1))());
    }
    if (words[0] == "hold") {
        const std::lock_guard<std::mutex> lock(sMutex);
        sHeld = static_cast<unsigned>(std::stoul(words.at(1), nullptr, 0));
        sReleased.notify_all();
        return "0";
    }
    if (words[0] == "events") {
        return eventsOnce(std::stoul(words.at(1)));
    }
    const fapictl::Interface& interface = fapictl::findInterface(fapictl::factoryPackage(), words[0]);
    const fapictl::Method& method = cases::findMethod(words[0], words.at(1));
    words.erase(words.begin(), words.begin() + 2);
    std::string results =
            cases::showAll(cases::call(sObjects.at(fapictl::shortName(interface)), method, words));
    const std::lock_guard<std::mutex> lock(sMutex);
    return std::exchange(sTrace, "") + results;
}

std::string answer(const std::string& line) {
    try {
        return carryOut(line);
    } catch (const std::exception& failure) {
        return std::string("not understood: ") + failure.what();
    }
}

void limitFiles(const char* bytes) {
    const rlimit size{strtoul(bytes, nullptr, 10), RLIM_INFINITY};
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &size);
}

}  // namespace

// Found by the libraries before the C library's.
extern "C" int fsync(int fd) {
    struct stat status {};
    hook("fsync", fstat(fd, &status) == 0 && S_ISDIR(status.st_mode) ? "folder" : "file");
    return static_cast<int>(syscall(SYS_fsync, fd));
}

extern "C" int renameat(int oldFolder, const char* oldName, int newFolder, const char* newName) noexcept {
    hook("rename", newName);
    return static_cast<int>(syscall(SYS_renameat2, oldFolder, oldName, newFolder, newName, 0));
}

int main() {
    if (const char* uid = getenv("PROBE_UID")) {
        if (setuid(static_cast<uid_t>(strtoul(uid, nullptr, 10))) != 0 || prctl(PR_SET_DUMPABLE, 1) != 0) {
            return 2;
        }
    }
    sLevel = _a_zvttvfapi_custom_init_debug_level();
    for (const char* step : {"reg_callback", "init"}) {
        for (const auto& module : kModules) {
            module.second.at(step)();
        }
    }
    _a_zvttvfapi_custom_init();
    if (const char* bytes = getenv("PROBE_FILE_LIMIT")) {
        limitFiles(bytes);
    }
    std::future<std::string> background;
    for (std::string line; std::getline(std::cin, line);) {
        sFaults = true;
        if (line == "done") {
            std::cout << background.get() << std::endl;
        } else if (line.size() > 2 && line.compare(line.size() - 2, 2, " &") == 0) {
            line.resize(line.size() - 2);
            background = std::async(std::launch::async, answer, line);
            std::cout << std::endl;
        } else {
            std::cout << answer(line) << std::endl;
        }
    }
    return 0;
}
