#include "tools/check/Probe.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "tools/check/Report.h"

namespace check {
namespace {

/** How long a module that was shut down is given to show that it still raises events. */
constexpr auto kAfterwards = std::chrono::milliseconds(200);

/** How long a function of the module may take, while an event is handled, before it looks locked out. */
constexpr auto kMeanwhile = std::chrono::seconds(3);
/** Of so many events of each module that is looked at. */
constexpr unsigned kEventsAsked = 4;

int sReport = -1;  // set when this library is loaded
std::atomic<bool> sNotReady{false};
std::atomic<bool> sAsking{false};
std::mutex sStartMutex;
// Never destroyed: who ends the process while the start waits would wait for it.
std::condition_variable& sStartCondition = *new std::condition_variable;
bool sStarted = false;  // guarded by sStartMutex
std::once_flag sFirstCall;

struct Handler {
    std::atomic<fapi_core::ZvtTvFApiEventHandler> service{nullptr};
    std::atomic<bool> forgotten{false};
    std::atomic<unsigned> asked{0};  // events
};
Handler sHandlers[std::size(kModules)];

/** A line of the report; tabs and line ends within its words are blanks. */
void write(std::vector<std::string> words) {
    if (sReport < 0) {
        return;
    }
    std::string line;
    for (std::string& word : words) {
        std::replace_if(
                word.begin(), word.end(), [](char c) { return c == '\t' || c == '\n'; }, ' ');
        line += (line.empty() ? "" : "\t") + word;
    }
    line += '\n';
    if (::write(sReport, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(126);  // nobody would learn of what follows
    }
}

uint64_t now() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(time.tv_nsec);
}

std::string thread() {
    return std::to_string(gettid());
}

/** Where the executable lies, or this library: who calls from there is the service, or the probe for it. */
struct Range {
    uintptr_t begin = UINTPTR_MAX;
    uintptr_t end = 0;

    bool holds(const void* address) const {
        return reinterpret_cast<uintptr_t>(address) - begin < end - begin;
    }
    void add(const dl_phdr_info& object) {
        for (int i = 0; i < object.dlpi_phnum; ++i) {
            const ElfW(Phdr)& part = object.dlpi_phdr[i];
            if (part.p_type == PT_LOAD) {
                begin = std::min<uintptr_t>(begin, object.dlpi_addr + part.p_vaddr);
                end = std::max<uintptr_t>(end, object.dlpi_addr + part.p_vaddr + part.p_memsz);
            }
        }
    }
};

struct Callers {
    Range executable;
    Range probe;

    Callers() {
        dl_iterate_phdr(
                [](dl_phdr_info* object, size_t, void* data) {
                    auto& callers = *static_cast<Callers*>(data);
                    Range range;
                    range.add(*object);
                    if (callers.executable.end == 0) {
                        callers.executable = range;  // comes first
                    } else if (range.holds(data)) {
                        callers.probe = range;
                    }
                    return 0;
                },
                this);
    }
};

bool isService(const void* caller) {
    static Callers sCallers;
    return sCallers.executable.holds(caller) || sCallers.probe.holds(caller);
}

/** A function of each module that changes nothing, as a handler may call it. */
int32_t askModule(const std::string& module) {
    unsigned char byte = 0;
    signed char letter = 0;
    int number = 0;
    unsigned int first = 0;
    unsigned int second = 0;
    return module == "aud"      ? a_zvttvfapi_aud_adv_get_speaker_delay(&first)
           : module == "disp"   ? a_zvttvfapi_disp_get_pwm_range(first, second)
           : module == "info"   ? a_zvttvfapi_info_get_ip_enable_status(0, &byte)
           : module == "inpsrc" ? a_zvttvfapi_inpsrc_get_ber(&number)
           : module == "prphrl" ? a_zvttvfapi_prphrl_get_cec_status(&letter)
           : module == "sys"    ? a_zvttvfapi_sys_get_rtc_time(&first)
                                : a_zvttvfapi_common_get_fapi_status();
}

/** Whether the module answers on another thread while its event waits to be handled. */
bool answersMeanwhile(const char* module) {
    const auto answered = std::make_shared<std::promise<void>>();
    std::thread([answered, module] {
        askModule(module);
        answered->set_value();
    }).detach();
    return answered->get_future().wait_for(kMeanwhile) == std::future_status::ready;
}

template <size_t Index>
int onEvent(unsigned int type, const fapi_core::ZvtTvFApiEventCommonObject& first,
            const fapi_core::ZvtTvFApiEventCommonObject& second,
            const fapi_core::ZvtTvFApiEventCommonObject& third,
            const fapi_core::ZvtTvFApiEventCommonObject& fourth) {
    const Module& module = kModules[Index];
    const std::string unregister = std::string("a_zvttvfapi_") + module.name + "_unreg_callback";
    write({"event", module.name, std::to_string(type)});
    if (sHandlers[Index].forgotten) {
        report(unregister.c_str(), "comes back, and the module goes on raising events");
        return -1;
    }
    if (sAsking && sHandlers[Index].asked++ < kEventsAsked && !answersMeanwhile(module.name)) {
        sHandlers[Index].asked = kEventsAsked;
        report((std::string("a_zvttvfapi_") + module.name + "_reg_callback").c_str(), kLockHeld);
    }
    // The lowest of the bits that name a module.
    constexpr unsigned kNames = 0x1FF0000;
    if ((type & kNames & -(type & kNames)) != 1u << module.number) {
        report((std::string("a_zvttvfapi_") + module.name + "_reg_callback").c_str(),
               "has its handler called with the type " + std::to_string(type) +
                       ", whose bits do not name the module: that is bit " + std::to_string(module.number));
    }
    return sHandlers[Index].service.load()(type, first, second, third, fourth);
}

template <size_t... Index>
constexpr std::array<fapi_core::ZvtTvFApiEventHandler, sizeof...(Index)> handlers(
        std::index_sequence<Index...>) {
    return {&onEvent<Index>...};
}
constexpr auto kHandlers = handlers(std::make_index_sequence<std::size(kModules)>());

size_t indexOf(const std::string& module) {
    size_t index = 0;
    while (kModules[index].name != module) {
        ++index;
    }
    return index;
}

/** Shuts each module down, as the service's manager would, and has it begin anew. */
void restart() {
    int32_t ended[std::size(kModules)];
    fapi_core::ZvtTvFApiEventHandler handler[std::size(kModules)];
    for (size_t i = 0; i < std::size(kModules); ++i) {
        ended[i] = kModules[i].deinit();
    }
    for (size_t i = 0; i < std::size(kModules); ++i) {
        handler[i] = sHandlers[i].service.load();
        ended[i] |= kModules[i].unregisterHandler();
    }
    std::this_thread::sleep_for(kAfterwards);
    for (size_t i = 0; i < std::size(kModules); ++i) {
        const std::string name = std::string("a_zvttvfapi_") + kModules[i].name;
        const int32_t registered = kModules[i].registerHandler(handler[i]);
        const int32_t begun = kModules[i].init();
        if (ended[i] != 0) {
            report((name + "_deinit").c_str(), "it or unreg_callback fails after init has succeeded");
        } else if (registered != 0 || begun != 0) {
            report((name + "_init").c_str(), "fails after deinit (statuses " + std::to_string(registered) +
                                                     " of reg_callback and " + std::to_string(begun) +
                                                     " of init): that is to be the state before init");
        }
    }
}

void carryOut(char order) {
    switch (order) {
        case kNotReady:
        case kOwnReadiness:
            sNotReady = order == kNotReady;
            break;
        case kAskDuringEvents:
            sAsking = true;
            break;
        case kStart: {
            const std::lock_guard<std::mutex> lock(sStartMutex);
            sStarted = true;
            sStartCondition.notify_all();
            break;
        }
        case kRestart:
            restart();
            break;
    }
    write({"order", std::string(1, order)});
}

void load() {
    for (size_t i = 0; i < kPoints; ++i) {
        Point& point = sPoints[i];
        Dl_info own = {};
        Dl_info next = {};
        dladdr(point.own, &own);
        point.next = dlsym(RTLD_NEXT, own.dli_sname);
        const bool found = point.next != nullptr && dladdr(point.next, &next) != 0;
        write({"function", point.name, own.dli_sname, point.header, found ? next.dli_fname : "-"});
    }
}

__attribute__((constructor)) void setUp() {
    if (const char* const path = std::getenv(kReportVariable); path != nullptr) {
        sReport = open(path, O_WRONLY | O_APPEND | O_CLOEXEC);
        // Those that the service or the library start are not ours.
        unsetenv("LD_PRELOAD");
        unsetenv(kReportVariable);
    }
    load();
    if (sReport < 0) {
        sStarted = true;
    }
}

}  // namespace

void report(const char* function, const std::string& text) {
    write({"fault", function, text});
}

void reportEnd() {
    write({"end", thread()});
}

Call::Call(Point& point, const void* caller) : mPoint(point), mChecked(sReport >= 0 && isService(caller)) {
    // In main(), when all that looks after signals has been set up.
    if (mChecked) {
        std::call_once(sFirstCall, [] {
            watchFences();
            fcntl(kOrders, F_SETFD, FD_CLOEXEC);
            std::thread([] {
                for (char order; read(kOrders, &order, 1) == 1;) {
                    carryOut(order);
                }
                _exit(0);
            }).detach();
        });
    }
}

void Call::begin() {
    write({"call", thread(), mPoint.name});
    mBegin = now();
}

void Call::end(int32_t result) {
    const uint64_t took = now() - mBegin;
    write({"done", thread(), mPoint.name, std::to_string(result), std::to_string(took)});
    if (mPoint.isStatus && (result == -1 || result == -2 || result == -4 || result == -5)) {
        report(mPoint.name,
               "returns " + std::to_string(result) + ", by which the service reports a failure of its own");
    }
}

void Call::mustEnd(const char* parameter, const Fence& text) const {
    if (text.size() > 0 && lengthIn(text) == text.size()) {
        report(mPoint.name, std::string("leaves a text without its end in ") + parameter);
    }
}

void Call::mustFit(const char* parameter, uint64_t count, uint64_t room) const {
    if (count > room) {
        report(mPoint.name, std::string("counts more in ") + parameter + " than there is room for: " +
                                    std::to_string(count) + " of " + std::to_string(room));
    }
}

int32_t readiness(int32_t own) {
    constexpr int32_t kNotReadyStatus = -5;
    return sNotReady ? kNotReadyStatus : own;
}

void awaitStart() {
    std::unique_lock<std::mutex> lock(sStartMutex);
    if (!sStarted) {
        write({"order", std::string(1, kWaits)});
    }
    sStartCondition.wait(lock, [] { return sStarted; });
}

fapi_core::ZvtTvFApiEventHandler handlerOf(const char* module, fapi_core::ZvtTvFApiEventHandler handler) {
    const size_t index = indexOf(module);
    sHandlers[index].service = handler;
    sHandlers[index].forgotten = false;
    return kHandlers[index];
}

void forgetHandler(const char* module) {
    sHandlers[indexOf(module)].forgotten = true;
}

}  // namespace check
