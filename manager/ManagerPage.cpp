#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>

#include "manager/ClientRegistry.h"
#include "manager/ZvtTvFApiManager.h"
#include "service/frame/StatePage.h"
#include "service/trace/Trace.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::Mutex;

namespace {

constexpr char kOptions[] =
        "trace, alone, writes a line for each call from now on; else this is all that there is to know";

/// How many clients a page lists: with every number at its longest, it takes less than StatePage::kMostBytes.
constexpr size_t kMostClients = 50;

struct Client {
    uint64_t u64Cookie;
    pid_t pid;  // 0: unknown
};

/// What the page tells of the registry, taken from it at one moment.
struct Snapshot {
    size_t clients = 0;  // registered
    size_t listed = 0;   // of them, in the order of their cookies
    std::array<Client, kMostClients> list;
    std::array<EventCount, EVENT_MODULES> events;
};

/// Takes no memory.
Snapshot snapshotOfRegistry() {
    const Mutex::Autolock lock(sCbMutex);
    Snapshot snapshot;
    snapshot.events = sEventCounts;
    snapshot.clients = sCbList.size();
    // A heap of the lowest cookies met so far, and one place more.
    std::array<uint64_t, kMostClients + 1> cookies;
    auto end = cookies.begin();
    for (const auto& [cookie, callback] : sCbList) {
        *end++ = cookie;
        std::push_heap(cookies.begin(), end);
        if (end == cookies.end()) {
            std::pop_heap(cookies.begin(), end--);
        }
    }
    std::sort_heap(cookies.begin(), end);
    for (auto cookie = cookies.begin(); cookie != end; ++cookie) {
        const auto known = sCbPids.find(*cookie);
        snapshot.list[snapshot.listed++] = {*cookie, known == sCbPids.end() ? 0 : known->second};
    }
    return snapshot;
}

constexpr std::array<const char*, EVENT_MODULES> kModules = {"sys",    "net", "disp", "disptst", "prphrl",
                                                             "inpsrc", "aud", "info", "tv"};

void describeEvents(const Snapshot& snapshot, StatePage& page) {
    EventCount all;
    for (const EventCount& count : snapshot.events) {
        all.u64Relayed += count.u64Relayed;
        all.u64Refused += count.u64Refused;
    }
    page.line("events to clients: %" PRIu64 " relayed, %" PRIu64 " refused", all.u64Relayed, all.u64Refused);
    for (size_t module = 0; module < kModules.size(); ++module) {
        const EventCount& count = snapshot.events[module];
        page.line("events of %s: %" PRIu64 " relayed, %" PRIu64 " refused", kModules[module],
                  count.u64Relayed, count.u64Refused);
    }
}

void describeClients(const Snapshot& snapshot, StatePage& page) {
    page.line("clients: %zu", snapshot.clients);
    for (size_t i = 0; i < snapshot.listed; ++i) {
        const Client& client = snapshot.list[i];
        if (client.pid != 0) {
            page.line("client %" PRIu64 ": pid %d", client.u64Cookie, client.pid);
        } else {
            page.line("client %" PRIu64 ": pid unknown", client.u64Cookie);
        }
    }
    if (snapshot.listed < snapshot.clients) {
        page.line("clients not shown: %zu", snapshot.clients - snapshot.listed);
    }
}

}  // namespace

// Methods from ::android::hidl::base::V1_0::IBase follow.

Return<void> ZvtTvFApiManager::debug(const hidl_handle& handle, const hidl_vec<hidl_string>& options) {
    const bool traced = options.size() == 1 && options[0] == "trace";
    const char* const refusal = traced ? traceTo(handle) : nullptr;
    if (traced && refusal == nullptr) {
        return ::android::hardware::Void();
    }
    StatePage page = statePage(options, kOptions);
    if (refusal != nullptr) {
        page.line("trace: %s", refusal);
    }
    const Snapshot snapshot = snapshotOfRegistry();
    page.line("service version: %s", kVersion);
    describeEvents(snapshot, page);
    describeClients(snapshot, page);
    page.writeTo(handle);
    return ::android::hardware::Void();
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
