// Events through the real service: raised by the simulated board or posted, received by other processes. With
// --watch, the program is such a process: it writes the value of each event's first record to its output.

#include <gmock/gmock.h>
#include <hidl/HidlTransportSupport.h>
#include <sys/ioctl.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "tests/process/Listening.h"
#include "tests/process/ServiceFixture.h"
#include "tests/support/Descriptors.h"
#include "tools/fapictl/Text.h"

namespace {

using ::android::sp;
using ::android::hardware::Return;
using ::fapictl::Event;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Value;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;
using Record = ZvtTvFApiEventCommonObject;

int32_t post(uint32_t type, const Record& first = {}) {
    const Return<int32_t> posted =
            IZvtTvFApiManager::getService()->a_hidl_a_zvttvfapi_mngr_post_event(type, first, {}, {}, {});
    return posted.withDefault(INT32_MIN);
}

int playWatcher() {
    Listening listening([](const Event& event) {
        if (write(STDOUT_FILENO, &event.records[0].value, sizeof(uint32_t)) < 0) {
            _exit(1);
        }
    });
    listening.begin();
    const uint32_t registered = UINT32_MAX;
    if (write(STDOUT_FILENO, &registered, sizeof(registered)) != sizeof(registered)) {
        return 1;
    }
    return pause();
}

class EventsTest : public ServiceFixture {
  protected:
    EventsTest() { startAndWait(); }

    static ChildProcess watcher() {
        ChildProcess child({"/proc/self/exe", "--watch"});
        EXPECT_EQ(UINT32_MAX, next(child)) << "registered";
        return child;
    }
    /** The next value that a watcher has received. */
    static uint32_t next(const ChildProcess& child) {
        uint32_t value = 0;
        EXPECT_EQ(ssize_t{sizeof(value)}, read(child.output(), &value, sizeof(value)));
        return value;
    }
    void raise(const std::string& order) const { std::ofstream(mState + "/raise") << order << std::endl; }
};

TEST_F(EventsTest, WhatEachModuleRaisesAndWhatIsPostedReachesEveryClient) {
    std::mutex lock;
    std::vector<std::string> seen;
    const auto shown = [](uint32_t value, const std::string& text, const std::vector<uint8_t>& bytes) {
        return " " + std::to_string(value) + text + fapictl::toHex(bytes);
    };
    Listening local([&](const Event& event) {
        const std::lock_guard<std::mutex> guard(lock);
        std::string line = event.module;
        line += " " + std::to_string(event.type);
        for (const Event::Record& record : event.records) {
            line += shown(record.value, record.text, record.bytes);
        }
        seen.push_back(line);
    });
    local.begin();
    const ChildProcess other = watcher();
    uint32_t value = 0;
    std::vector<std::string> expected;
    const auto expect = [&](const std::string& module, uint32_t type, const Record& first,
                            const Record& last) {
        const auto text = [&](const Record& record) {
            return shown(record.u32Value, record.strValue, record.vecValue);
        };
        expected.push_back(module + " " + std::to_string(type) + text(first) + text({}) + text({}) +
                           text(last));
        EXPECT_TRUE(eventually([&] {
            const std::lock_guard<std::mutex> guard(lock);
            return seen == expected;
        })) << module;
        EXPECT_EQ(first.u32Value, next(other));
    };
    for (const std::string name : {"sys", "net", "disp", "disptst", "prphrl", "inpsrc", "aud", "info"}) {
        ++value;
        raise(name + " 0x10005 value=" + std::to_string(value) + ",text=signal - - bytes=00ff");
        expect(name, 0x10005, {value, "signal", {}}, {0, "", {0, 255}});
    }
    EXPECT_EQ(0, post(0x1000000, {77, "posted", {1}}));
    expect("tv", 0x1000000, {77, "posted", {1}}, {});
    EXPECT_EQ(-2, post(0x2000000));
    raise("sys 1 text=" + std::string(3 * 1024 * 1024, 'x'));
    EXPECT_TRUE(eventually([this] { return log().find("the line is longer") != std::string::npos; }));
    raise("nonsense 1");
    EXPECT_TRUE(eventually([this] { return log().find("there is no module") != std::string::npos; }));
}

TEST_F(EventsTest, AnEventTooLongForAMessageFailsForItsPosterAloneAndTheNextOneArrives) {
    const ChildProcess other = watcher();
    Record record{1, "", std::vector<uint8_t>(1024 * 1024)};
    EXPECT_EQ(INT32_MIN, post(0x10000, record));
    // What fits the call may exceed what can wait for a client.
    record.vecValue.resize(600 * 1024);
    EXPECT_EQ(-1, post(0x10000, record));
    EXPECT_EQ(0, post(0x10000, {2, "", {}}));
    EXPECT_EQ(2u, next(other));
}

TEST_F(EventsTest, TheToolShowsTheEventsOfACallWhileItRuns) {
    setenv("ZVTTV_BOARD_UPGRADE_MS", "400", 1);
    startAndWait();
    std::ofstream(mState + "/payload") << "firmware";
    std::filesystem::create_directories(mState + "/files");
    ASSERT_EQ(0, ChildProcess({"/usr/bin/env", "python3", ZVTTV_SOURCE "/scripts/make-firmware.py", "2",
                               "7.1", mState + "/payload", mState + "/files/tuner.fw"},
                              "")
                         .wait());
    ChildProcess tool(
            {getenv("ZVTTV_TEST_FAPICTL"), "call", "system", "upgrade_fw", "2", "/tuner.fw", "--progress"},
            mState + "/shown");
    EXPECT_EQ(0, tool.wait());
    EXPECT_THAT(contentOf(mState + "/shown"), HasSubstr("0x00010001  value=50 text=\"/tuner.fw\""));
}

TEST_F(EventsTest, AWatchInTheBackgroundIsNotInterruptedAndOneThatIsStuckEndsAtTheSecondTime) {
    const auto watch = [this](const std::string& before) {
        const std::string errors = mState + "/watching" + before;
        ChildProcess tool({"/bin/sh", "-c", before + "exec $ZVTTV_TEST_FAPICTL watch --json"}, errors);
        EXPECT_TRUE(eventually([&] { return contentOf(errors).find("watching") != std::string::npos; }));
        return tool;
    };
    ChildProcess background = watch("trap '' INT; ");
    background.signal(SIGINT);
    EXPECT_EQ(0, post(0x10000));
    EXPECT_EQ('{', background.word());
    background.signal(SIGTERM);
    EXPECT_EQ(0, background.wait());

    ChildProcess stuck = watch("");
    for (int i = 0; i < 20; ++i) {  // twice what a pipe holds
        post(0x10000, {1, std::string(6000, 'x'), {}});
    }
    int before = 0;
    EXPECT_TRUE(eventually([&] {
        int written = 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ioctl(stuck.output(), FIONREAD, &written);
        return written > 0 && std::exchange(before, written) == written;
    }));
    stuck.signal(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stuck.signal(SIGTERM);
    EXPECT_EQ(-SIGTERM, stuck.wait());
}

TEST_F(EventsTest, AKilledClientIsRemovedAndTheOthersStay) {
    const ChildProcess first = watcher();
    ChildProcess second = watcher();
    const ChildProcess third = watcher();
    second.stop(SIGKILL);
    const auto told =
            AllOf(HasSubstr("> Client disconnect 1"), HasSubstr("> cblist 0"), HasSubstr("> cblist 2"));
    EXPECT_TRUE(eventually([&] { return Value(log(), told); })) << log();
    EXPECT_THAT(log(), Not(HasSubstr("cblist 1")));
    EXPECT_EQ(0, post(0x10000, {5, "", {}}));
    EXPECT_EQ(5u, next(first));
    EXPECT_EQ(5u, next(third));
}

TEST_F(EventsTest, AStoppedClientDelaysNobodyAndGetsWhatItsQueueHeldInOrder) {
    const ChildProcess stopped = watcher();
    const ChildProcess awake = watcher();
    stopped.signal(SIGSTOP);
    const Record record{0, "", std::vector<uint8_t>(8000, 1)};
    uint32_t failed = 0;
    for (uint32_t i = 0; i < 400; ++i) {
        Record numbered = record;
        numbered.u32Value = i;
        failed += post(0x10000, numbered) == -1;
        ASSERT_EQ(i, next(awake));
    }
    EXPECT_GT(failed, 0u);
    EXPECT_LT(failed, 390u);
    stopped.signal(SIGCONT);
    for (uint32_t i = 0; i < 400 - failed; ++i) {
        ASSERT_EQ(i, next(stopped));
    }
    EXPECT_TRUE(eventually([&] { return post(0x10000, {1000, "", {}}) == 0; }));
    EXPECT_EQ(1000u, next(stopped));
}

TEST_F(EventsTest, AClientMayPostAndRegisterFromInsideItsCallback) {
    std::atomic<int> seen{0};
    std::atomic<int> nested{0};
    Listening inner([&](const Event&) { ++nested; });
    Listening outer([&](const Event& event) {
        if (++seen == 1) {
            inner.begin();
            EXPECT_EQ(0, post(event.type + 1));
        }
    });
    outer.begin();
    EXPECT_EQ(0, post(0x10000));
    EXPECT_TRUE(eventually([&] { return seen == 2 && nested == 1; }));
}

TEST_F(EventsTest, HundredsOfClientsComeAndGoUnderLoadAndSurvivorsMissNothing) {
    setenv("ZVTTV_DEBUG_LEVEL", "0", 1);
    startAndWait();
    std::atomic<uint32_t> received{0};
    std::atomic<bool> ordered{true};
    Listening survivor([&](const Event& event) {
        ordered = ordered && event.records[0].value == received;
        ++received;
    });
    survivor.begin();
    // The service has all that it keeps once a client has come and gone: it accepts connections in their
    // order.
    watcher();
    uint32_t sent = 0;
    EXPECT_TRUE(eventually([&] { return post(0x10000, {sent++, "", {}}) == 0; }));
    const size_t before = openDescriptors(service().pid());
    for (int round = 0; round < 20; ++round) {
        std::vector<ChildProcess> clients;
        for (int i = 0; i < 10; ++i) {
            clients.emplace_back(std::vector<std::string>{"/proc/self/exe", "--watch"});
            EXPECT_NE(INT32_MIN, post(0x10000, {sent++, "", {}}));
        }
        for (size_t i = 0; i < clients.size(); ++i) {
            if (i % 2 == 0) {
                clients[i].signal(SIGSTOP);
            }
            EXPECT_NE(INT32_MIN, post(0x10000, {sent++, "", {}}));
        }
    }
    EXPECT_TRUE(eventually([&] { return received == sent; }));
    EXPECT_TRUE(ordered);
    EXPECT_TRUE(eventually([&] { return openDescriptors(service().pid()) <= before; }))
            << before << " before, " << openDescriptors(service().pid());
    EXPECT_TRUE(eventually([] { return post(0x10000) == 0; })) << "no dead client is left to fail";
}

}  // namespace

int main(int argc, char** argv) {
    android::hardware::configureRpcThreadpool(1, false);
    if (argc > 1 && std::string(argv[1]) == "--watch") {
        return playWatcher();
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
