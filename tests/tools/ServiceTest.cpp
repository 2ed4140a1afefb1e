#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "tests/support/ChildProcess.h"
#include "tests/tools/Manager.h"
#include "tests/tools/TestPackage.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

using testing::HasSubstr;
using testing::Not;

/** The tool against a service in a process of its own. */
class Service : public testing::Test {
  protected:
    // The process knows one registry, so its suites share the directory.
    static void SetUpTestSuite() {
        if (!sDirectory.path.empty()) {
            return;
        }
        char name[] = "/tmp/fapictl-test-XXXXXX";
        sDirectory.path = mkdtemp(name);
        setenv("HIDL_RUNTIME_DIR", (sDirectory.path + "/run").c_str(), 1);
    }

    void start(const std::string& instance) {
        mProcess.emplace(std::vector<std::string>{FAPICTL_TEST_SERVICE, instance});
    }
    void startAndWait(const std::string& instance) {
        start(instance);
        ASSERT_EQ(tool({"wait", "Thing", "--instance", instance, "--timeout", "30"}).code, Exit::Success);
    }
    static Ran tool(const std::vector<std::string>& words) { return ran(testPackage(), words); }

    static struct Directory {
        ~Directory() {
            if (!path.empty()) {
                std::filesystem::remove_all(path);
            }
        }
        std::string path;
    } sDirectory;
    std::optional<ChildProcess> mProcess;
};

Service::Directory Service::sDirectory;

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

TEST_F(Service, ThatDoesNotComeIsNotWaitedForLongerThanAsked) {
    const auto before = std::chrono::steady_clock::now();
    const Ran waited = tool({"wait", "Thing", "--instance", "never", "--timeout", "0.2"});
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(200));
    EXPECT_EQ(waited.code, Exit::NotFound);
    EXPECT_THAT(waited.out, HasSubstr("never     missing"));
    EXPECT_THAT(waited.err, HasSubstr("not registered within 0.2 s"));
    for (const char* timeout : {"--timeout=0", "--timeout=0.1"}) {
        EXPECT_EQ(tool({"call", "thing", "get_level", "--instance", "never", timeout}).code, Exit::NotFound);
    }
    EXPECT_EQ(tool({"call", "thing", "get_level", "--instance", "never"}).code, Exit::NotFound);
}

TEST_F(Service, WritesItsStateWithTheOptionsThatItIsGiven) {
    startAndWait("state");
    const Ran page = tool({"debug", "thi*", "one", "two", "--instance", "state"});
    EXPECT_EQ(page.code, Exit::Success) << page.err;
    EXPECT_EQ(page.out, std::string(100'000, '.') + "\none\ntwo\n");
    EXPECT_EQ(tool({"debug", "Watcher"}).code, Exit::Usage);
    EXPECT_EQ(tool({"debug", "thing", "--instance", "never"}).code, Exit::NotFound);
}

TEST_F(Service, StatusesDecideTheExitCodeAndTheResultsAreShownAnyway) {
    startAndWait("default");
    const struct {
        std::vector<std::string> words;
        Exit code;
        const char* out;
    } rows[] = {
            {{"text", "a", "0"},
             Exit::Success,
             "strText    string   \"a\"\ns32Status  int32_t  0 (success)\n"},
            {{"text", "a", "-1"}, Exit::Status, "s32Status  int32_t  -1 (general failure)"},
            {{"text", "a", "-2"}, Exit::Status, "-2 (invalid argument)"},
            {{"text", "a", "-4"}, Exit::Status, "-4 (no memory)"},
            {{"text", "a", "-5"}, Exit::Status, "-5 (not ready)"},
            {{"text", "a", "12"},
             Exit::Status,
             "strText    string   \"a\"\ns32Status  int32_t  12 (library status)"},
            {{"text", "--json", "--", "-\n", "3"}, Exit::Status, "{\"strText\":\"-\\n\",\"s32Status\":3}\n"},
            {{"set_watcher", "null"}, Exit::Status, "s32Status  int32_t  -2 (invalid argument)"},
            {{"get_level"}, Exit::Success, "u8Level  uint8_t  77\n"},
            {{"hint", "1"}, Exit::Success, "sent; the method gives no answer\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.out);
        std::vector<std::string> words = {"call", "thing"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const Ran result = tool(words);
        EXPECT_EQ(result.code, row.code) << result.err;
        EXPECT_THAT(result.out, HasSubstr(row.out));
    }
}

TEST_F(Service, TextAndBytesGoToAFileAsTheyAreUnlessTheMethodFailed) {
    startAndWait("files");
    const std::string path = sDirectory.path + "/out";
    const auto contents = [&] {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const auto call = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"call", "thing"});
        words.insert(words.end(), {"--instance", "files"});
        return tool(words);
    };
    const Ran bytes = call({"lists", "00ff0a", "", "", "", "0000", "--out", path});
    EXPECT_EQ(bytes.code, Exit::Success);
    EXPECT_THAT(bytes.out, HasSubstr("3 bytes written to " + path));
    EXPECT_EQ(contents(), std::string("\0\xff\n", 3));
    EXPECT_EQ(call({"text", "a\tb", "0", "--out", "-"}).out, "a\tb");
    EXPECT_EQ(call({"text", "new", "-5", "--out", path}).code, Exit::Status);
    EXPECT_EQ(contents(), std::string("\0\xff\n", 3));
    EXPECT_EQ(call({"text", "new", "0", "--out", "/dev/full"}).code, Exit::Output);
    EXPECT_EQ(call({"text", "new", "0", "--out", "/nonexistent/file"}).code, Exit::Output);
    EXPECT_THAT(call({"get_level", "--out", path}).err, HasSubstr("--out has no effect"));
}

TEST_F(Service, ThatDiesDuringACallIsATransportFailure) {
    startAndWait("mortal");
    const Ran result = tool({"call", "thing", "die", "--instance", "mortal"});
    EXPECT_EQ(result.code, Exit::Transport);
    EXPECT_THAT(result.err, HasSubstr("call"));
}

TEST_F(Service, WaitWithoutNamesWantsEveryServiceAndNoCallback) {
    const Ran all = ran(factoryPackage(), {"wait", "--timeout", "0", "--no-legend", "--instance", "none"});
    EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 10);
    EXPECT_THAT(all.out, Not(HasSubstr("Callback")));
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
    /** Returns when it is registered. */
    void watch(std::vector<std::string> options) {
        options.insert(options.begin(), "watch");
        mThread = std::thread([this, options] { mRan = factory(options); });
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

  private:
    std::thread mThread;
    Ran mRan;
};

TEST_F(Watch, ShowsWhatIsPostedWholeAndInOrderUntilTheCount) {
    watch({"--json", "--count", "300"});
    const std::string bytes = toHex(std::vector<uint8_t>(1000, 0x5a));
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(
                post(0x20000u << i % 8, {"value=" + std::to_string(i), "-", "text=a, b bytes=" + bytes}).code,
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
        EXPECT_EQ(event["records"][2]["text"], "a, b");
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
    EXPECT_THAT(join().out, testing::MatchesRegex("1  .*  net      0x00020002  - \\| - \\| - \\| -\n"
                                                  "2  .*  tv       0x01000003  - \\| - \\| - \\| -\n"));
    EXPECT_EQ(factory({"watch", "--timeout", "0.1", "--quiet"}).code, Exit::Success);
}

TEST_F(Watch, EndsWhenTheServiceDies) {
    watch({"--count", "2"});
    EXPECT_EQ(post(Manager::kDie, {"text=last"}).code, Exit::Transport);
    EXPECT_EQ(join().code, Exit::Transport);
    EXPECT_THAT(join().out, HasSubstr("0x0010dead  text=\"last\""));
    EXPECT_THAT(join().err, HasSubstr("the service died; 1 event was shown"));
    EXPECT_EQ(factory({"watch"}).code, Exit::NotFound);
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

TEST_F(Watch, StatusesOfTheManagerAreShown) {
    const Ran refused = post(4);
    EXPECT_EQ(refused.code, Exit::Status);
    EXPECT_THAT(refused.out, HasSubstr("-2 (invalid argument)"));
    const Ran null = factory({"call", "Manager", "set_callback", "null"});
    EXPECT_EQ(null.code, Exit::Status);
    EXPECT_THAT(null.err, HasSubstr("fapictl watch registers a callback"));
    post(Manager::kRefuseClients);
    const Ran watched = factory({"watch"});
    EXPECT_EQ(watched.code, Exit::Status);
    EXPECT_THAT(watched.err, HasSubstr("refused the callback: -2 (invalid argument)"));
}

}  // namespace
}  // namespace fapictl
