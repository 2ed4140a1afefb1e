// bench-events: one event to ten client processes, beside one write of the same bytes to each; what posting
// costs its caller; how soon a killed client is noticed. This program is the service: it hosts the manager.

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/events/Batch.h"
#include "bench/transport/Allocations.h"
#include "bench/transport/Raw.h"
#include "bench/transport/WireBytes.h"
#include "manager/ClientRegistry.h"
#include "manager/ZvtTvFApiManager.h"
#include "service/frame/Debug.h"

namespace {

using namespace bench;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;
using implementation::sCbList;
using implementation::sCbMutex;
using implementation::ZvtTvFApiManager;
using Clock = std::chrono::steady_clock;
using Record = fapi_core::ZvtTvFApiEventCommonObject;

constexpr size_t kClients = 10;
constexpr size_t kRecordBytes = 292;
/** Arguments of a client that asks for no pool of threads. */
const std::vector<std::string> kDefaultClient{"default"};

double nanosecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

size_t clients() {
    const ::android::AutoMutex lock(sCbMutex);
    return sCbList.size();
}

/** A listener process and the socket that it answers on. */
class Listener {
  public:
    explicit Listener(const std::vector<std::string>& arguments) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            failOnCall("socketpair");
        }
        mSocket = ends[0];
        mChild = std::make_unique<Child>(sibling("bench-listener"), arguments, ends[1]);
        close(ends[1]);
    }
    ~Listener() { close(mSocket); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int socket() const { return mSocket; }
    void await() const {
        char answer;
        if (!readFully(mSocket, &answer, 1)) {
            fail("a listener has ended");
        }
    }
    void kill() { mChild.reset(); }

  private:
    int mSocket;
    std::unique_ptr<Child> mChild;
};
using Listeners = std::vector<std::unique_ptr<Listener>>;

Listeners startListeners(size_t count, const std::vector<std::string>& arguments) {
    Listeners listeners;
    for (size_t i = 0; i < count; ++i) {
        listeners.push_back(std::make_unique<Listener>(arguments));
    }
    return listeners;
}

void awaitAll(const Listeners& listeners) {
    for (const auto& listener : listeners) {
        listener->await();
    }
}

/** Deliveries a second: batches of events, each sent to every listener, and waited for. */
double deliveriesPerSecond(double seconds, const Listeners& listeners, const std::function<void()>& sendOne) {
    const Clock::time_point start = Clock::now();
    double deliveries = 0;
    double elapsed = 0;
    while (elapsed < seconds * 1e9) {
        for (uint32_t i = 0; i < kBatch; ++i) {
            sendOne();
        }
        awaitAll(listeners);
        deliveries += kBatch * static_cast<double>(listeners.size());
        elapsed = nanosecondsSince(start);
    }
    return deliveries / elapsed * 1e9;
}

void raise(uint32_t type, const Record& record) {
    if (ZvtTvFApiManager::onSysEvent(type, record, record, record, record) != 0) {
        fail("an event did not reach every listener");
    }
}

uint64_t allocationsOfBatch(const Record& record) {
    startCountingAllocations();
    for (uint32_t i = 0; i < kBatch; ++i) {
        raise(0x10000, record);
    }
    return stopCountingAllocations();
}

/** Ends listeners of ours and waits until the registry of clients has noticed. */
void dismiss(Listeners* listeners) {
    listeners->clear();
    while (clients() > 0) {
        std::this_thread::yield();
    }
}

Table measure(bool pinned, const Options& options) {
    std::optional<OneCpu> binding;
    if (pinned) {
        binding.emplace();
    }
    const auto limit = [&](Limit::Kind kind, double value) { return pinned ? Limit{kind, value} : Limit{}; };
    Table table{"Events to clients: " + conditions(pinned, options), {}};

    // 292 bytes a record: a number, a text of 32 characters, and bytes.
    const Record record{1, std::string(32, 't'), std::vector<uint8_t>(kRecordBytes - 4 - 32, 0x5A)};
    const uint64_t allocatedForNobody = allocationsOfBatch(record);
    Listeners own = startListeners(kClients, kDefaultClient);
    awaitAll(own);
    const uint64_t messageBytes = bytesOf([&] { raise(0x10000, record); }).request / kClients;
    for (uint32_t i = 2; i < kBatch; ++i) {  // two have gone out to be counted
        raise(0x10000, record);
    }
    awaitAll(own);

    const std::string allocations = "heap allocations per delivery, ten clients";
    if (options.wants(allocations)) {
        // The conversion happens once for all clients: what a batch takes without any is taken off.
        const auto forClients =
                static_cast<double>(allocationsOfBatch(record)) - static_cast<double>(allocatedForNobody);
        awaitAll(own);
        table.rows.push_back(single(allocations, Unit::Count, limit(Limit::Kind::AtMost, 0),
                                    forClients / (kBatch * kClients)));
    }

    const std::string death = "kill to removal of a client";
    if (options.wants(death)) {
        // Beside it: kill to the end of file on a raw socket.
        table.rows.push_back(compare(
                death, Unit::Nanoseconds, Limit{}, options.rounds,
                [&] {
                    Listener raw({"raw", std::to_string(messageBytes)});
                    const Clock::time_point start = Clock::now();
                    raw.kill();
                    char byte;
                    while (read(raw.socket(), &byte, 1) > 0) {
                    }
                    return nanosecondsSince(start);
                },
                [&] {
                    Listener victim(kDefaultClient);
                    victim.await();
                    const size_t before = clients();
                    const Clock::time_point start = Clock::now();
                    victim.kill();
                    while (clients() == before) {
                        std::this_thread::yield();
                    }
                    return nanosecondsSince(start);
                }));
    }
    dismiss(&own);

    struct Pool {
        const char* name;
        std::vector<std::string> arguments;
    };
    for (const Pool& pool : {Pool{"default pool of one thread", kDefaultClient},
                             Pool{"pool of two threads", {"threads", "2"}}}) {
        const std::string fanOut = "an event to " + std::to_string(kClients) + " clients, " + pool.name +
                                   " (" + std::to_string(messageBytes) + " B each), deliveries";
        if (!options.wants(fanOut)) {
            continue;
        }
        own = startListeners(kClients, pool.arguments);
        awaitAll(own);
        // One write for each event and client; each raw client waits in read() for one message at a time.
        const Listeners raw = startListeners(kClients, {"raw", std::to_string(messageBytes)});
        const std::vector<char> message(messageBytes, 'm');
        table.rows.push_back(compare(
                fanOut, Unit::CallsPerSecond, limit(Limit::Kind::TimesAtLeast, 1.0), options.rounds,
                [&] {
                    return deliveriesPerSecond(options.seconds, raw, [&] {
                        for (const auto& listener : raw) {
                            writeFully(listener->socket(), message.data(), message.size());
                        }
                    });
                },
                [&] { return deliveriesPerSecond(options.seconds, own, [&] { raise(0x10000, record); }); }));
        dismiss(&own);
    }
    return table;
}

/** What one posted event costs its caller more than an empty call, for each of ten clients: the real service.
 */
Table measurePosting(const Options& options, const TemporaryFolder& folder) {
    const OneCpu binding;
    setenv("ZVTTV_STATE_DIR", (folder / "state").c_str(), 1);
    setenv("ZVTTV_DEBUG_LEVEL", "0", 1);
    Table table{"Posting: " + conditions(true, options), {}};
    const Child service(sibling("vendor.zentrovi.tv.zvttvfactory@1.0-service"));
    const android::sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::getService();
    const Listeners listeners = startListeners(kClients, kDefaultClient);
    awaitAll(listeners);
    const ZvtTvFApiEventCommonObject record{1, std::string(32, 't'),
                                            std::vector<uint8_t>(kRecordBytes - 4 - 32, 0x5A)};
    constexpr int kCalls = 100;
    const auto time = [&](const std::function<void()>& call) {
        double total = 0;
        for (int i = 0; i < kCalls; ++i) {
            const Clock::time_point start = Clock::now();
            call();
            total += nanosecondsSince(start);
            manager->a_hidl_a_zvttvfapi_mngr_post_event(0x10000 | kAnswerAtOnce, record, record, record,
                                                        record)
                    .assertOk();
            awaitAll(listeners);  // so that queues are empty at the next
        }
        return total / kCalls;
    };
    table.rows.push_back(compare(
            "post_event to ten clients, beside ping", Unit::Nanoseconds, Limit{}, options.rounds,
            [&] { return time([&] { manager->ping().assertOk(); }); },
            [&] {
                return time([&] {
                    manager->a_hidl_a_zvttvfapi_mngr_post_event(0x10000, record, record, record, record)
                            .assertOk();
                });
            }));
    const Row& row = table.rows.back();
    table.rows.push_back(single("extra cost of it, per client", Unit::Nanoseconds, Limit{},
                                row.difference / static_cast<double>(kClients)));

    // Others wait for nothing that the end of one client costs, however often it was registered.
    const auto longest = [&](Clock::time_point end) {
        double most = 0;
        while (Clock::now() < end) {
            const Clock::time_point start = Clock::now();
            manager->ping().assertOk();
            most = std::max(most, nanosecondsSince(start));
        }
        return most;
    };
    constexpr std::chrono::milliseconds kTaken(500);
    table.rows.push_back(compare(
            "longest ping while a client ends, registered 40,000 times, beside no such client",
            Unit::Nanoseconds, Limit{Limit::Kind::AtMost, 100e6}, options.rounds,
            [&] { return longest(Clock::now() + kTaken); },
            [&] {
                Listener victim({"often", "40000"});
                victim.await();
                victim.kill();
                return longest(Clock::now() + kTaken);
            }));
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv,
                 "Measures events to client processes beside raw sockets that move the same bytes.",
                 &options);

    // A child's end is seen on its socket here; a signal would reach the threads that serve calls.
    sigset_t childEnded;
    sigemptyset(&childEnded);
    sigaddset(&childEnded, SIGCHLD);
    pthread_sigmask(SIG_BLOCK, &childEnded, nullptr);
    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    const TemporaryFolder folder;
    setenv("HIDL_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    Table posting = measurePosting(options, folder);
    android::hardware::configureRpcThreadpool(4, false);
    u8TvFactoryDebug = 0;
    const android::sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager;
    if (manager->registerAsService("default") != 0) {
        fail("the manager is not registered");
    }
    return report({measure(true, options), measure(false, options), posting}, options);
}
