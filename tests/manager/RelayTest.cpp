#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwbinder/IPCThreadState.h>

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <future>
#include <list>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "chiplayer/chiplayer.h"
#include "manager/ClientDeathRecipient.h"
#include "manager/ClientRegistry.h"
#include "manager/EventRecord.h"
#include "manager/ZvtTvFApiManager.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"
#include "tests/support/Eventually.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using ::android::Mutex;
using ::android::hardware::hidl_string;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;
using Chip = fapi_core::ZvtTvFApiEventCommonObject;
using Handler = fapi_core::ZvtTvFApiEventHandler;
using Hidl = ZvtTvFApiEventCommonObject;
using Lines = std::vector<std::string>;

/// A client in the service's own process: remembers what it was told, its links, and may fail or call back.
class Client : public IZvtTvFApiCallbackManager {
  public:
    ~Client() override {
        if (onEnd) {
            onEnd();
        }
    }

    struct Event {
        std::string method;
        uint32_t type;
        std::vector<Hidl> records;
    };

    Return<void> tell(const char* method, uint32_t type, const Hidl& one, const Hidl& two, const Hidl& three,
                      const Hidl& four) {
        if (onEvent) {
            onEvent(type);
        }
        if (fails) {
            return Status::fromStatusT(::android::DEAD_OBJECT);
        }
        events.push_back({method, type, {one, two, three, four}});
        return Void();
    }

#define CLIENT_METHOD(method)                                                               \
    Return<void> method(uint32_t type, const Hidl& one, const Hidl& two, const Hidl& three, \
                        const Hidl& four) override {                                        \
        return tell(#method, type, one, two, three, four);                                  \
    }
    CLIENT_METHOD(notifySysEvent)
    CLIENT_METHOD(notifyDispEvent)
    CLIENT_METHOD(notifyDispTstEvent)
    CLIENT_METHOD(notifyInfoEvent)
    CLIENT_METHOD(notifyInpSrcEvent)
    CLIENT_METHOD(notifyPrphrlEvent)
    CLIENT_METHOD(notifyAudEvent)
    CLIENT_METHOD(notifyNetEvent)
    CLIENT_METHOD(notifyTvEvent)
#undef CLIENT_METHOD

    Return<bool> linkToDeath(const sp<hidl_death_recipient>& recipient, uint64_t cookie) override {
        recipients.push_back(recipient);
        cookies.push_back(cookie);
        if (linksWithoutMemory) {
            throw std::bad_alloc();
        }
        return linkable;
    }
    void die(size_t link = 0) {
        recipients[link]->serviceDied(cookies[link], nullptr);
    }

    std::vector<Event> events;
    std::vector<uint64_t> cookies;
    std::vector<sp<hidl_death_recipient>> recipients;
    std::function<void(uint32_t)> onEvent;
    std::function<void()> onEnd;
    bool fails = false;
    bool linkable = true;
    bool linksWithoutMemory = false;
};

class RelayTest : public testing::Test {
  protected:
    RelayTest() {
        sCbList.clear();
        sCbPids.clear();
        sEventCounts = {};
        sNextCookie = 0;
        log.takeLines();
    }
    ~RelayTest() override { sCbList.clear(); }

    int32_t add(const sp<IZvtTvFApiCallbackManager>& client) {
        return manager->a_hidl_a_zvttvfapi_mngr_set_callback(client);
    }
    sp<Client> registered() {
        sp<Client> client = new Client;
        EXPECT_EQ(0, add(client));
        return client;
    }
    int32_t post(uint32_t type, const Hidl& all = {}) {
        return manager->a_hidl_a_zvttvfapi_mngr_post_event(type, all, all, all, all);
    }
    int raise(Handler handler, uint32_t type, const Chip& all = {}) {
        return handler(type, all, all, all, all);
    }

    /// Whether an event reaches the clients while this waits for it.
    bool delivers() {
        deliveries.push_back(std::async(std::launch::async, [this] { post(0x10000); }));
        return deliveries.back().wait_for(std::chrono::seconds(5)) == std::future_status::ready;
    }

    /// The lines that debug() writes.
    Lines page() const {
        int ends[2];
        EXPECT_EQ(0, pipe(ends));
        NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 0);
        native_handle_t* const handle = native_handle_init(storage, 1, 0);
        handle->data[0] = ends[1];
        EXPECT_TRUE(manager->debug(handle, {}).isOk());
        close(ends[1]);
        std::string bytes(65536, '\0');
        const ssize_t size = read(ends[0], bytes.data(), bytes.size());
        close(ends[0]);
        EXPECT_LE(size, ssize_t{StatePage::kMostBytes});
        std::istringstream text(bytes.substr(0, static_cast<size_t>(size)));
        Lines lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    FakeChipLayer chip;
    DeviceLog log;
    const sp<ZvtTvFApiManager> manager = new ZvtTvFApiManager;
    std::list<std::future<void>> deliveries;
};

std::string line(char priority, const std::string& name, const std::string& text) {
    return std::string(1, priority) + " ZvtTvFApiManager(server): <" + name + ":#> " + text;
}

TEST_F(RelayTest, CookiesCountRegistrationsFromZeroAndLinkEachOfThem) {
    const sp<Client> first = registered();
    EXPECT_EQ(-2, add(nullptr));
    const sp<Client> second = registered();
    EXPECT_EQ(0, add(first));
    EXPECT_THAT(first->cookies, ElementsAre(0, 2));
    EXPECT_THAT(second->cookies, ElementsAre(1));
    char address[32];
    snprintf(address, sizeof(address), ".%p ", static_cast<void*>(first->recipients[0].get()));
    Lines expected;
    for (const char* cookie : {"0", "1", "1", "2"}) {
        expected.push_back(line('D', "a_hidl_a_zvttvfapi_mngr_set_callback", address + std::string(cookie)));
    }
    EXPECT_EQ(expected, log.takeLines());
    EXPECT_EQ(0, post(0x10000));
    EXPECT_THAT(first->events, SizeIs(2)) << "registered twice, told twice";
    EXPECT_THAT(second->events, SizeIs(1));
}

TEST_F(RelayTest, ACallbackThatCanNotBeLinkedStaysRegisteredUnderItsCookie) {
    for (const bool withoutMemory : {false, true}) {
        const sp<Client> client = new Client;
        client->linkable = false;
        client->linksWithoutMemory = withoutMemory;
        EXPECT_EQ(0, add(client));
        EXPECT_EQ(0, post(0x10000));
        EXPECT_THAT(client->events, SizeIs(1));
    }
    EXPECT_THAT(registered()->cookies, ElementsAre(2));
}

TEST_F(RelayTest, ADeathRemovesItsOwnEntryAndLogsTheRemainingOnes) {
    const sp<Client> clients[] = {registered(), registered(), registered()};
    log.takeLines();
    clients[0]->die();
    Lines lines = log.takeLines();
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(line('E', "serviceDied", "Client disconnect 0"), lines[0]);
    lines.erase(lines.begin());
    EXPECT_THAT(lines, UnorderedElementsAre(line('E', "serviceDied", "cblist 1\n"),
                                            line('E', "serviceDied", "cblist 2\n")));
    clients[2]->die();
    log.takeLines();
    clients[2]->recipients[0]->serviceDied(UINT64_MAX, nullptr);
    EXPECT_THAT(log.takeLines(),
                ElementsAre(line('E', "serviceDied", "Client disconnect 18446744073709551615"),
                            line('E', "serviceDied", "cblist 1\n")));
    EXPECT_EQ(0, post(0x10000));
    EXPECT_EQ(1, clients[0]->getStrongCount()) << "the registry has let go of it";
    EXPECT_THAT(clients[0]->events, IsEmpty());
    EXPECT_THAT(clients[1]->events, SizeIs(1));
    EXPECT_THAT(clients[2]->events, IsEmpty());
    EXPECT_THAT(registered()->cookies, ElementsAre(3)) << "a cookie is never used again";
    log.takeLines();
    u8TvFactoryDebug = 0;
    clients[1]->die();
    EXPECT_THAT(log.takeLines(), IsEmpty());
    const Mutex::Autolock lock(sCbMutex);
    EXPECT_THAT(sCbPids, SizeIs(1));
}

TEST_F(RelayTest, NoEventWaitsForTheEndOfADeadClientOrForTheLogOfItsDeath) {
    static std::vector<bool> sDelivered;
    static std::function<void()> sTry;
    sTry = [this] { sDelivered.push_back(delivers()); };
    const sp<Client> staying = registered();
    for (const bool withMemoryForTheLog : {false, true}) {
        sp<Client> client = registered();
        client->onEnd = sTry;
        const sp<hidl_death_recipient> recipient = client->recipients[0];
        const uint64_t cookie = client->cookies[0];
        client.clear();
        if (withMemoryForTheLog) {
            __android_log_set_logger([](const __android_logger_data*, const char* text) {
                if (std::strstr(text, "cblist 0") != nullptr) {
                    sTry();
                }
            });
            recipient->serviceDied(cookie, nullptr);
            EXPECT_THAT(std::exchange(sDelivered, {}), ElementsAre(true, true));
        } else {
            log.takeLines();
            const FailingAllocation failing(1);
            recipient->serviceDied(cookie, nullptr);
            EXPECT_EQ(sizeof(uint64_t), failing.refusedBytes());
            EXPECT_EQ(log.takeLines().at(1), line('E', "serviceDied", "cblist 0\n"));
            EXPECT_THAT(std::exchange(sDelivered, {}), ElementsAre(true));
        }
    }
}

TEST(EventRecord, NothingLiesBetweenTheFieldsThatAClientSees) {
    alignas(HidlEventRecord) uint8_t memory[sizeof(HidlEventRecord)];
    std::memset(memory, 0xA5, sizeof(memory));
    const auto* const record = new (memory) HidlEventRecord(Chip());
    EXPECT_TRUE(std::all_of(reinterpret_cast<const uint8_t*>(&record->hidl().u32Value + 1),
                            reinterpret_cast<const uint8_t*>(&record->hidl().strValue),
                            [](uint8_t byte) { return byte == 0; }));
    record->~HidlEventRecord();
}

TEST_F(RelayTest, AModuleHasTheHandlerThatCallsItsMethodWithTheEventUnchangedButForTextsBehindANul) {
    const struct {
        int32_t (*registration)(Handler);
        Handler handler;
        const char* name;
        const char* method;
    } rows[] = {
            {a_zvttvfapi_sys_reg_callback, ZvtTvFApiManager::onSysEvent, "onSysEvent", "notifySysEvent"},
            {a_zvttvfapi_net_reg_callback, ZvtTvFApiManager::onNetEvent, "onNetEvent", "notifyNetEvent"},
            {a_zvttvfapi_disp_reg_callback, ZvtTvFApiManager::onDispEvent, "onDispEvent", "notifyDispEvent"},
            {a_zvttvfapi_disptst_reg_callback, ZvtTvFApiManager::onDispTstEvent, "onDispTstEvent",
             "notifyDispTstEvent"},
            {a_zvttvfapi_prphrl_reg_callback, ZvtTvFApiManager::onPrphrlEvent, "onPrphrlEvent",
             "notifyPrphrlEvent"},
            {a_zvttvfapi_inpsrc_reg_callback, ZvtTvFApiManager::onInpSrcEvent, "onInpSrcEvent",
             "notifyInpSrcEvent"},
            {a_zvttvfapi_aud_reg_callback, ZvtTvFApiManager::onAudEvent, "onAudEvent", "notifyAudEvent"},
            {a_zvttvfapi_info_reg_callback, ZvtTvFApiManager::onInfoEvent, "onInfoEvent", "notifyInfoEvent"},
            {nullptr, ZvtTvFApiManager::onTvEvent, "onTvEvent", "notifyTvEvent"},
    };
    const std::string text("ab\0cd", 5);
    const Hidl posted{9, hidl_string(text.data(), text.size()), {0, 1, 0}}, told{9, "ab", {0, 1, 0}};
    EXPECT_EQ(text, toTwin(posted).strValue);
    const sp<Client> client = registered();
    log.takeLines();
    uint32_t mask = 0x10000;
    for (const auto& row : rows) {
        // A module's event goes its module's way, whatever bits its type has; a posted one goes by its
        // lowest.
        const auto deliver = [](Handler handler) {
            return handler(0x81FF0005, {1, "one", {1}}, {2, std::string("two\0x", 5), {2}}, {3, "", {}},
                           {4, "four", {4, 0}});
        };
        if (row.registration == nullptr) {
            deliver(row.handler);
        } else {
            chip.on(row.registration, deliver);  // the handler may be called at once
            EXPECT_EQ(0, int32_t{manager->initCallback()});
            chip.on(row.registration, [](Handler) { return 0; });
        }
        EXPECT_THAT(log.takeLines(), testing::Contains(line('D', row.name, "u32EvtType = -2113994747\n")));
        EXPECT_EQ(0, post(0xFE000000 | (0x1FF0000 & ~(mask - 1)) | 7, posted));
        ASSERT_THAT(client->events, SizeIs(2)) << row.name;
        EXPECT_EQ(row.method, client->events[0].method);
        EXPECT_EQ(row.method, client->events[1].method);
        EXPECT_EQ(0x81FF0005, client->events[0].type);
        EXPECT_THAT(client->events[0].records, ElementsAre(Hidl{1, "one", {1}}, Hidl{2, "two", {2}},
                                                           Hidl{3, "", {}}, Hidl{4, "four", {4, 0}}));
        EXPECT_THAT(client->events[1].records, ElementsAre(told, told, told, told));
        client->events.clear();
        mask <<= 1;
    }
    const Lines counts = page();
    size_t at = 5;
    for (const char* module : {"sys", "net", "disp", "disptst", "prphrl", "inpsrc", "aud", "info", "tv"}) {
        EXPECT_EQ("events of " + std::string(module) + ": 2 relayed, 0 refused", counts.at(at++));
    }
    log.takeLines();
    for (const uint32_t none : {0u, 0xFFFFu, 0x2000000u, 0xFE00FFFFu}) {
        EXPECT_EQ(-2, post(none));
    }
    EXPECT_THAT(client->events, IsEmpty());
    EXPECT_THAT(log.takeLines(), IsEmpty());
    client->die();
    EXPECT_EQ(0, raise(ZvtTvFApiManager::onTvEvent, 1)) << "nobody to tell is a success";
}

TEST_F(RelayTest, WithoutMemoryNobodyIsToldOrRegisteredAndTheAnswerSaysSo) {
    u8TvFactoryDebug = 0;                                          // what takes the lines takes memory, too
    ::android::hardware::IPCThreadState::self()->getCallingPid();  // a client's call finds the runtime made
    int nth = 0;
    for (size_t refused = 1; refused != 0;) {
        const sp<Client> client = new Client;
        const uint64_t next = sNextCookie;
        const FailingAllocation failing(++nth, FailingAllocation::Of::Objects);
        const bool done = add(client) == 0;
        EXPECT_TRUE(done || nth < 4) << "an entry of the list, and room for more of them";
        EXPECT_TRUE(!done || nth > 1);
        EXPECT_EQ(sNextCookie, next + done);
        refused = failing.refusedBytes();
    }
    EXPECT_GT(nth, 3);
    {
        const Mutex::Autolock lock(sCbMutex);
        sCbList.clear();
    }
    const sp<Client> client = registered();
    const std::vector<uint8_t> bytes(900 * 1024, 0x5A);
    EXPECT_EQ(0, raise(ZvtTvFApiManager::onAudEvent, 5, {0, "", bytes}));
    EXPECT_EQ(bytes, std::vector<uint8_t>(client->events.at(0).records[3].vecValue));
    for (nth = 1; nth <= 4; ++nth) {
        {
            const FailingAllocation failing(nth);
            EXPECT_EQ(-1, raise(ZvtTvFApiManager::onAudEvent, 5, {0, "", bytes})) << nth;
        }
        const FailingAllocation failing(nth, FailingAllocation::Of::Objects);
        EXPECT_EQ(-1, post(0x10000, {0, "", {1}})) << nth;
    }
    EXPECT_THAT(client->events, SizeIs(1));
}

TEST_F(RelayTest, ThePageTellsOfEventsThatOthersGetWhenAClientFailsAndOfClientsWithinItsBounds) {
    const sp<Client> clients[] = {registered(), registered(), registered()};
    const std::string pid = "pid " + std::to_string(getpid());
    {
        const Mutex::Autolock lock(sCbMutex);
        sCbPids.erase(1);  // for lack of memory
    }
    clients[0]->fails = true;
    EXPECT_EQ(-1, raise(ZvtTvFApiManager::onTvEvent, 0));
    std::swap(clients[0]->fails, clients[2]->fails);
    EXPECT_EQ(-1, post(0x10000));
    clients[0]->die();
    EXPECT_EQ(-1, post(0x10000));
    chip.takeCalls();
    log.takeLines();
    Lines lines = page();
    EXPECT_THAT(chip.takeCalls(), ElementsAre("a_zvttvfapi_common_get_fapi_status()"));
    EXPECT_THAT(log.takeLines(), IsEmpty());
    EXPECT_EQ(lines[4], "events to clients: 5 relayed, 3 refused");
    EXPECT_EQ(lines[5], "events of sys: 3 relayed, 2 refused");
    EXPECT_EQ(lines[6], "events of net: 0 relayed, 0 refused");
    EXPECT_EQ(lines[13], "events of tv: 2 relayed, 1 refused");
    EXPECT_THAT(Lines(lines.begin() + 14, lines.end()),
                ElementsAre("clients: 2", "client 1: pid unknown", "client 2: " + pid));

    // Every number at its longest.
    sNextCookie = UINT64_MAX - 1000;
    {
        const Mutex::Autolock lock(sCbMutex);
        sEventCounts.fill({UINT64_MAX, UINT64_MAX});
        for (int i = 0; i < 1000; ++i) {
            sCbPids[sNextCookie] = INT_MAX;
            sCbList[sNextCookie++] = clients[0];
        }
    }
    lines = page();
    ASSERT_THAT(lines, SizeIs(14 + 1 + 50 + 1));
    EXPECT_EQ("clients: 1002", lines[14]);
    EXPECT_EQ("client 1: pid unknown", lines[15]);
    EXPECT_EQ("client " + std::to_string(UINT64_MAX - 1000) + ": pid 2147483647", lines[17]);
    EXPECT_EQ("clients not shown: 952", lines.back());
}

TEST_F(RelayTest, ModulesThatRaiseAtOnceAreDeliveredOneByOneInTheSameOrderForEveryClient) {
    const sp<Client> clients[] = {registered(), registered()};
    const Handler handlers[] = {ZvtTvFApiManager::onSysEvent, ZvtTvFApiManager::onDispEvent,
                                ZvtTvFApiManager::onInfoEvent};
    constexpr uint32_t kEach = 500;
    std::vector<std::thread> threads;
    for (uint32_t module = 0; module < std::size(handlers); ++module) {
        threads.emplace_back([&, module] {
            for (uint32_t i = 0; i < kEach; ++i) {
                EXPECT_EQ(0, raise(handlers[module], module << 16 | i));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_THAT(clients[0]->events, SizeIs(std::size(handlers) * kEach));
    ASSERT_THAT(clients[1]->events, SizeIs(std::size(handlers) * kEach));
    uint32_t next[std::size(handlers)] = {};
    for (size_t i = 0; i < clients[0]->events.size(); ++i) {
        const uint32_t type = clients[0]->events[i].type;
        ASSERT_EQ(type, clients[1]->events[i].type);
        ASSERT_EQ(next[type >> 16]++, type & 0xFFFF) << "a module's events keep their order";
    }
}

TEST_F(RelayTest, WhatReadsOrChangesTheRegistryWaitsForADeliveryInProgress) {
    const sp<Client> client = registered();
    const sp<Client> dying = registered();
    sp<Client> late;
    const std::function<void()> all[] = {[&] { late = registered(); }, [&] { dying->die(); }, [&] { page(); },
                                         [&] { raise(ZvtTvFApiManager::onTvEvent, 2); }};
    for (const auto& waits : all) {
        std::atomic<bool> delivering{false}, done{false};
        client->onEvent = [&](uint32_t type) {
            if (type == 1) {
                delivering = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                done = true;
            }
        };
        std::thread raiser([&] { EXPECT_EQ(0, raise(ZvtTvFApiManager::onNetEvent, 1)); });
        EXPECT_TRUE(eventually([&] { return delivering.load(); }));
        waits();
        EXPECT_TRUE(done) << &waits - all;
        raiser.join();
    }
    EXPECT_THAT(late->events, SizeIs(4));
}

TEST(StatePage, EndsBetweenTwoLinesAndGoesToADescriptorAlone) {
    const std::string head = "interface: x\n";
    const size_t room = StatePage::kMostBytes - head.size();
    const auto open = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open();
    for (const size_t length : {room - 2, room - 1, room, room + 1}) {
        for (const int numFds : {0, 1}) {
            int ends[2];
            ASSERT_EQ(0, pipe2(ends, O_NONBLOCK));
            NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 1);
            native_handle_t* const handle = native_handle_init(storage, numFds, 1 - numFds);
            handle->data[0] = ends[1];  // a descriptor, or a number that is one by chance
            StatePage page("x");
            page.line("%s", std::string(length, 'y').c_str());
            page.writeTo(handle);
            std::string bytes(2 * StatePage::kMostBytes, '?');
            bytes.resize(
                    static_cast<size_t>(std::max<ssize_t>(0, read(ends[0], bytes.data(), bytes.size()))));
            EXPECT_EQ(numFds == 0     ? ""
                      : length < room ? head + std::string(length, 'y') + '\n'
                                      : head,
                      bytes)
                    << length;
            close(ends[0]);
            close(ends[1]);
        }
    }
    EXPECT_EQ(before, open());
}

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
