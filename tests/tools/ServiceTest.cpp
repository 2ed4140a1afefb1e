#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <mutex>
#include <thread>

#include "tests/support/Eventually.h"
#include "tests/tools/Manager.h"
#include "tests/tools/Service.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Statuses.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

using testing::HasSubstr;

TEST_F(Service, IsWaitedForAndListedWhileItsProcessLives) {
    Ran waited;
    std::thread waiter([&] {
        waited = tool({"wait", "Thing", "--instance", "late", "--timeout", "30", "--json"});
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    start("late");
    waiter.join();
    EXPECT_EQ(waited.code, Exit::Success);
    EXPECT_EQ(waited.out,
              R"([{"interface":"test.fapictl@1.0::IZvtTvFApiThing","instance":"late","registered":true}])"
              "\n");

    EXPECT_EQ(tool({"list", "thing", "--instance", "late", "--no-legend"}).out,
              "test.fapictl@1.0::IZvtTvFApiThing  late  " + std::to_string(mProcess->pid()) + "\n");
    mProcess.reset();
    const Ran gone = tool({"list", "thing", "--instance", "late"});
    EXPECT_EQ(gone.code, Exit::NotFound);
    EXPECT_EQ(gone.out, "");
}

TEST_F(Service, WritesItsStateWithTheOptionsThatItIsGiven) {
    startAndWait("state");
    const Ran page = tool({"debug", "thi*", "one", "two", "--instance", "state"});
    EXPECT_EQ(page.code, Exit::Success) << page.err;
    EXPECT_EQ(page.out, std::string(100'000, '.') + "\none\ntwo\n");
}

TEST_F(Service, IsAskedOnceForTheNameOfAStatusUnlessItIsNotReady) {
    startAndWait("names");
    Statuses statuses;
    const auto name = [&](int64_t status) { return statuses.name(factoryPackage(), "names", status); };
    EXPECT_EQ(name(7), name(7));
    EXPECT_EQ(name(9), "library status");
    EXPECT_EQ(name(9), "ninth");
    EXPECT_EQ(name(10), "library status");  // it never answers
    EXPECT_EQ(name(7), "named\\t1");
}

TEST_F(Service, ThatDiesDuringACallIsATransportFailure) {
    startAndWait("mortal");
    const Ran result = tool({"call", "thing", "die", "--instance", "mortal"});
    EXPECT_EQ(result.code, Exit::Transport);
    EXPECT_THAT(result.err, HasSubstr("call"));
}

/** A watch on a thread of this process, of the event manager in the other. */
class Watch : public Service {
  protected:
    void SetUp() override { startAndWait("events"); }
    ~Watch() override {
        mProcess.reset();
        join();
    }

    static Ran factory(std::vector<std::string> words) {
        words.insert(words.end(), {"--instance", "events"});
        return ran(factoryPackage(), words);
    }
    static Ran post(uint32_t type, const std::vector<std::string>& records = {}) {
        std::vector<std::string> words = {"post", std::to_string(type)};
        words.insert(words.end(), records.begin(), records.end());
        return factory(words);
    }
    /** Returns when one is registered. */
    void watch(std::vector<std::string> options) {
        options.insert(options.begin(), "watch");
        options.insert(options.end(), {"--instance", "events"});
        join();
        mEnded = false;
        mThread = std::thread([this, options] {
            std::ostream out(&mOutput);
            std::ostringstream err;
            mRan.code = run(factoryPackage(), options, out, err);
            mRan.out = mOutput.str();
            mRan.err = err.str();
            mEnded = true;
        });
        while (post(Manager::kCountClients).code == Exit::Success) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    const Ran& join() {
        if (mThread.joinable()) {
            mThread.join();
        }
        return mRan;
    }

    /** The reader of a watch's output, who takes nothing while somebody else has the gate. */
    struct Output : std::stringbuf {
        int sync() override {
            const std::lock_guard<std::mutex> passing(gate);
            ++flushed;
            return 0;
        }
        std::mutex gate;
        std::atomic<size_t> flushed{0};
    } mOutput;
    std::atomic<bool> mEnded{false};

  private:
    std::thread mThread;
    Ran mRan;
};

TEST_F(Watch, ShowsWhatIsPostedWholeAndInOrderUntilTheCount) {
    watch({"--json", "--count", "300"});
    const std::string bytes = toHex(std::vector<uint8_t>(1000, 0x5a));
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(post(0x20000u << i % 8,
                       {"value=" + std::to_string(i), "-", R"(text="a, \x00b" bytes=)" + bytes})
                          .code,
                  Exit::Success);
    }
    ASSERT_EQ(join().code, Exit::Success) << join().err;
    EXPECT_EQ(join().err, "watching: press Ctrl-C to end\n");
    const char* const modules[] = {"net", "disp", "disptst", "prphrl", "inpsrc", "aud", "info", "tv"};
    std::istringstream lines(join().out);
    std::string line;
    int number = 0;
    for (; std::getline(lines, line); ++number) {
        const Json event = Json::parse(line);
        EXPECT_EQ(event["number"], number + 1);
        EXPECT_EQ(event["module"], modules[number % 8]);
        EXPECT_EQ(event["type"], 0x20000u << number % 8);
        EXPECT_EQ(event["records"][0]["value"], number);
        EXPECT_EQ(event["records"][1].dump(), R"({"value":0,"text":"","bytes":""})");
        EXPECT_EQ(event["records"][2]["text"], std::string("a, \0b", 5));
        EXPECT_EQ(event["records"][2]["bytes"], bytes);
    }
    EXPECT_EQ(number, 300);
}

TEST_F(Watch, OfSomeModulesCountsTheirsOnlyAndEndsInTime) {
    watch({"--module", "net", "--module=tv", "--count", "3", "--timeout", "1", "--quiet"});
    for (const uint32_t type : {0x10001u, 0x20002u, 0x1000003u}) {
        EXPECT_EQ(post(type).code, Exit::Success);
    }
    EXPECT_EQ(join().code, Exit::NotFound);
    EXPECT_EQ(join().err, "fapictl: 2 of 3 events within 1.0 s\n");
    EXPECT_THAT(join().out, testing::MatchesRegex("1  .*  net      0x00020002  value=0 \\| - \\| - \\| -\n"
                                                  "2  .*  tv       0x01000003  value=0 \\| - \\| - \\| -\n"));
}

TEST_F(Watch, WithAReaderThatStallsLeavesTheBacklogToTheServiceAndLosesNothing) {
    const std::string file = sDirectory.path + "/bytes";
    constexpr size_t kSize = 300'000;
    std::ofstream(file) << std::string(kSize, 'x');
    size_t taken = 0;
    const auto postUntilRefused = [&] {
        for (int refused = 0; taken < 100 && refused < 20;) {
            if (post(0x10000, {"bytes=@" + file}).code == Exit::Success) {
                ++taken;
                refused = 0;
            } else {
                ++refused;  // for good, if the tool does not take what is on its way for a while
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        }
    };
    mOutput.gate.lock();
    watch({"--quiet"});
    postUntilRefused();
    const size_t most = 8 << 20;  // and what is on its way
    EXPECT_GT(taken, most / kSize);
    EXPECT_LT(taken, most / kSize + 6);
    mOutput.gate.unlock();
    EXPECT_TRUE(eventually([&] { return mOutput.flushed == taken; })) << mOutput.flushed << " of " << taken;

    // One that ends with a full queue leaves nobody waiting on the thread that receives events.
    mOutput.gate.lock();
    taken = 0;
    postUntilRefused();
    kill(getpid(), SIGTERM);
    mOutput.gate.unlock();
    EXPECT_EQ(join().code, Exit::Success);
    watch({"--count", "1"});
    EXPECT_TRUE(eventually([&] { return post(0x10000).code == Exit::Success && mEnded; }));
}

TEST_F(Watch, EndsWhenTheServiceDiesWithAllThatItSent) {
    mOutput.gate.lock();
    watch({"--count", "3"});
    EXPECT_EQ(post(0x10000).code, Exit::Success);
    EXPECT_EQ(post(Manager::kDie, {"text=last"}).code, Exit::Transport);
    mOutput.gate.unlock();
    EXPECT_EQ(join().code, Exit::Transport);
    EXPECT_THAT(join().out, HasSubstr("0x0010dead  value=0 text=\"last\""));
    EXPECT_THAT(join().err, HasSubstr("the service died; 2 events were shown"));
}

TEST_F(Watch, EndsWellWhenItIsAskedTo) {
    for (const int signal : {SIGTERM, SIGINT}) {
        mProcess.reset();
        startAndWait("events");
        watch({});
        kill(getpid(), signal);
        EXPECT_EQ(join().code, Exit::Success);
    }
}

TEST_F(Watch, IsRefusedWithTheManagersStatus) {
    post(Manager::kRefuseClients);
    const Ran watched = factory({"watch"});
    EXPECT_EQ(watched.code, Exit::Status);
    EXPECT_THAT(watched.err, HasSubstr("refused the callback: -2 (invalid argument)"));
}

}  // namespace
}  // namespace fapictl
