// The service executable on the simulated board, seen from another process.

#include <fnmatch.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiSystem.h>

#include <array>
#include <atomic>
#include <climits>
#include <functional>
#include <map>
#include <set>

#include "tests/process/ServiceFixture.h"

namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::ObjectReference;
using ::android::hardware::Registry;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiSystem;

// In the order in which the service registers them.
const std::vector<std::string> kInterfaces = {"Audio",      "DisplayTest", "Display", "Network",
                                              "Peripheral", "InputSource", "System",  "Information",
                                              "Tv",         "Manager"};

class ServiceTest : public ServiceFixture {
  protected:
    bool hasFile(const std::string& name) const {
        return std::filesystem::exists(mRegistryPath + "/" + descriptorOf(name) + "+default");
    }
    /** A call of Information's, whose status must be 0. */
    static std::string call(std::vector<std::string> words) {
        words.insert(words.begin(), {"call", "information"});
        return tool(words);
    }
    static int32_t keep(const std::string& value) {
        return IZvtTvFApiInformation::getService()->a_hidl_zvttvfapi_info_set_ini_para("panel", "test:value",
                                                                                       value);
    }
    static std::string kept() { return call({"get_ini_para", "panel", "test:value"}); }
    static int32_t fill(const std::string& file, size_t bytes) {
        return IZvtTvFApiSystem::getService()->a_hidl_a_zvttvfapi_sys_write_file_byte(
                file, std::vector<uint8_t>(bytes, 'x'), "a");
    }
};

TEST_F(ServiceTest, AnotherProcessWritesAndReadsParametersThatSurviveARestart) {
    startAndWait();
    for (const std::string& name : kInterfaces) {
        EXPECT_TRUE(isRegistered(name)) << name;
    }
    EXPECT_EQ(0, keep("27"));
    service().stop(SIGKILL);
    startAndWait();
    EXPECT_THAT(kept(), HasSubstr("\"27\""));
    call({"get_ip_enable_status", "0"});
    EXPECT_TRUE(eventually([this] { return std::filesystem::exists(mState + "/ini/pq.ini"); }))
            << "the custom library has been started";
}

TEST_F(ServiceTest, ASecondServiceOnABoardEndsAndSaysWhoseItIs) {
    startAndWait();
    // Names are no matter: it does not come so far.
    ChildProcess second({getenv("ZVTTV_TEST_SERVICE")}, mState + ".second");
    EXPECT_EQ(1, second.wait());
    EXPECT_EQ("board: another service, process " + std::to_string(service().pid()) + ", keeps its state in " +
                      mState + ": set ZVTTV_STATE_DIR to a folder of this one's own\n",
              contentOf(mState + ".second"));
    std::filesystem::remove(mState + ".second");
    // One that is removed and made anew is its, too.
    std::filesystem::remove_all(mState);
    EXPECT_EQ(0, keep("3"));
    EXPECT_EQ(1, ChildProcess({getenv("ZVTTV_TEST_SERVICE")}, "/dev/null").wait());
    service().stop(SIGKILL);
    startAndWait();
    EXPECT_THAT(kept(), HasSubstr("\"3\""));
}

TEST_F(ServiceTest, WhatTheDiskRefusesIsAStatusAndTheOlderValueStays) {
    std::filesystem::create_directory(mState);
    // The disk of a namespace of the service's own, where that is allowed; else no file grows beyond 64 KiB.
    const std::string mount = "mount -t tmpfs -o size=192k tmpfs \"$ZVTTV_STATE_DIR\"";
    const bool mounts = system(("unshare -rm sh -c '" + mount + "' 2>/dev/null").c_str()) == 0;
    const std::string disk = mounts ? "exec unshare -rm sh -c '" + mount + "; exec \"$ZVTTV_TEST_SERVICE\"'"
                                    : "ulimit -f 128; trap '' XFSZ; exec \"$ZVTTV_TEST_SERVICE\"";
    startAs({"/bin/sh", "-c", disk});
    ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    ASSERT_EQ(0, keep("old"));
    int32_t status = 0;
    for (int i = 0; i < 64 && status == 0; ++i) {
        status = fill("/large", 4096);
    }
    EXPECT_EQ(-113, status);
    if (mounts) {
        EXPECT_EQ(-113, keep("new"));
        EXPECT_THAT(log(), HasSubstr("ini/panel.ini cannot be written: No space left on device\n"));
        EXPECT_THAT(kept(), HasSubstr("\"old\""));
        EXPECT_EQ(0, int32_t(IZvtTvFApiSystem::getService()->a_hidl_a_zvttvfapi_sys_remove_file("/large")));
    }
    EXPECT_EQ(0, keep("new"));
    EXPECT_THAT(kept(), HasSubstr("\"new\""));
}

TEST_F(ServiceTest, AWatchRunsACommandAndNothingOutlastsItsTime) {
    startAndWait();
    const std::string post = std::string(getenv("ZVTTV_TEST_FAPICTL")) + " post 0x10001 value=";
    struct {
        std::vector<std::string> words;
        int code;
        const char* out;  // in it
    } const rows[] = {
            {{"--count", "1", "--", "sh", "-c", post + "7"}, 0, "value=7 | - | - | -\n"},
            {{"--", "sh", "-c", post + "8; " + post + "9"}, 0, "value=9 | - | - | -\n"},
            {{"--count", "1", "--", "sh", "-c", "exit 9"}, 6, ""},
            {{"--count", "1", "--", "sh", "-c", "kill $$"}, 6, ""},
            {{"--", "/no/program"}, 6, ""},
            {{"--count", "1", "--timeout", "0.2", "--", "true"}, 3, ""},
            {{"--timeout", "0.2", "--", "sleep", "60"}, 3, ""},
            // One that does not listen is left alone.
            {{"--timeout", "0.2", "--", "sh", "-c", "trap '' TERM; for i in 1 2 3 4 5 6; do sleep 1; done"},
             3,
             ""},
    };
    for (const auto& row : rows) {
        std::vector<std::string> words = {"watch"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        EXPECT_THAT(tool(words, row.code), HasSubstr(row.out)) << row.words.back();
    }
    service().signal(SIGSTOP);
    for (const char* verb : {"call", "watch", "post", "debug"}) {
        std::vector<std::string> words = {verb, "--timeout", "0.2"};
        const std::map<std::string, std::vector<std::string>> more = {
                {"call", {"system", "get_wdt_status"}}, {"post", {"1"}}, {"debug", {"tv"}}, {"watch", {}}};
        words.insert(words.end(), more.at(verb).begin(), more.at(verb).end());
        EXPECT_EQ("", tool(words, 4));
    }
    service().signal(SIGCONT);
}

/** A session of the tool's, on two pipes. */
class Session {
  public:
    Session() : Session(opened()) {}
    ~Session() { end(); }
    Session(const Session&) = delete;

    void send(const std::string& line) const {
        const std::string text = line + '\n';
        for (size_t at = 0; at < text.size();) {
            const ssize_t count = write(mInput, text.data() + at, text.size() - at);
            ASSERT_GT(count, 0) << line.substr(0, 100);
            at += static_cast<size_t>(count);
        }
    }
    /** The next line that it writes. */
    std::string answer() const {
        std::string line;
        for (char c; (c = process.word()) != '\n' && c != '\0';) {
            line += c;
        }
        return line;
    }
    /** Ends its input. */
    void end() { close(std::exchange(mInput, -1)); }

    ChildProcess process;

  private:
    explicit Session(std::array<int, 2> input)
        : process([&] {
              dup2(input[0], STDIN_FILENO);
              const char* const tool = getenv("ZVTTV_TEST_FAPICTL");
              return execl(tool, tool, "session", nullptr);
          }),
          mInput(input[1]) {
        close(input[0]);
    }
    static std::array<int, 2> opened() {
        std::array<int, 2> ends = {};
        EXPECT_EQ(0, pipe2(ends.data(), O_CLOEXEC));
        return ends;
    }

    int mInput;
};

TEST_F(ServiceTest, ASessionGoesAsItsTranscriptSays) {
    Session session;
    const std::map<std::string, std::function<void()>> deeds = {
            {"start", [&] { startAndWait(); }},
            {"stop",
             [&] {
                 service().signal(SIGSTOP);
                 waitpid(service().pid(), nullptr, WUNTRACED);  // until all threads have stopped
             }},
            {"continue", [&] { service().signal(SIGCONT); }},
            {"kill", [&] { service().stop(SIGKILL); }},
            {"send 17 MiB", [&] { session.send(std::string(17 << 20, 'x')); }},
    };
    std::ifstream transcript(ZVTTV_SOURCE "/tests/process/session.transcript");
    std::vector<std::string> expected;
    for (std::string line; std::getline(transcript, line);) {
        const std::string rest = line.substr(std::min<size_t>(2, line.size()));
        if (line[0] == '!') {
            deeds.at(rest)();
        } else if (line[0] == '>') {
            session.send(rest);
        } else if (line[0] == '<') {
            expected.push_back(rest);
        }
        if (!expected.empty() && transcript.peek() != '<') {
            std::multiset<std::string> answers;
            while (answers.size() < expected.size()) {
                answers.insert(session.answer());
            }
            auto pattern = expected.begin();
            for (const std::string& answer : answers) {
                EXPECT_EQ(0, fnmatch(pattern->c_str(), answer.c_str(), 0)) << *pattern << "\n" << answer;
                ++pattern;
            }
            expected.clear();
        }
    }
    session.end();
    EXPECT_EQ("", session.process.readAll());
    EXPECT_EQ(0, session.process.wait());
}

TEST_F(ServiceTest, ASessionAndAWatchEndWhenTheirReaderHasGoneOrStalls) {
    startAndWait();
    Session unread;
    unread.send(R"({"jsonrpc":"2.0","id":1,"method":"watch"})");
    EXPECT_THAT(unread.answer(), HasSubstr("\"watch\":1"));
    dup2(STDERR_FILENO, unread.process.output());  // which closes it
    EXPECT_EQ(5, unread.process.wait());

    Session stalled;
    for (int i = 0; i < 60; ++i) {
        stalled.send(R"({"jsonrpc":"2.0","id":1,"method":"introspect"})");
    }
    const auto isFull = [](int pipe) {
        int written = 0;
        ioctl(pipe, FIONREAD, &written);
        return written > fcntl(pipe, F_GETPIPE_SZ) - PIPE_BUF;
    };
    EXPECT_TRUE(eventually([&] { return isFull(stalled.process.output()); }));
    stalled.process.signal(SIGTERM);
    EXPECT_EQ(0, stalled.process.wait());

    // That sanitizer keeps a signal from its handler while the thread is in write().
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    return;
#endif
#endif
    const std::string errors = mState + ".watch";
    ChildProcess watch({getenv("ZVTTV_TEST_FAPICTL"), "watch", "--json"}, errors);
    ASSERT_TRUE(eventually([&] { return contentOf(errors).find("watching") != std::string::npos; }));
    for (int i = 0; i < 3; ++i) {
        tool({"post", "0x10000", "text=" + std::string(100000, 'x')});
    }
    EXPECT_TRUE(eventually([&] { return isFull(watch.output()); }));
    watch.signal(SIGTERM);
    EXPECT_EQ(0, watch.wait());
    std::filesystem::remove(errors);
}

TEST_F(ServiceTest, EachInterfaceAnswersTheRecordedHashOfItsFile) {
    startAndWait();
    std::map<std::string, std::string> recorded;
    std::ifstream file(ZVTTV_SOURCE "/interface/current.txt");
    for (std::string line; std::getline(file, line);) {
        const size_t space = line.find(' ');
        recorded[line.substr(space + 1)] = line.substr(0, space);
    }
    for (const std::string& name : kInterfaces) {
        std::string told;
        const auto asked = android::hardware::defaultServiceManager()
                                   ->get(descriptorOf(name), "default")
                                   .withDefault(nullptr)
                                   ->getHashChain([&](const auto& hashes) {
                                       ASSERT_EQ(2u, hashes.size()) << "the interface's and its base's";
                                       for (size_t i = 0; i < hashes[0].size(); ++i) {
                                           const char digits[] = "0123456789abcdef";
                                           told += {digits[hashes[0][i] >> 4], digits[hashes[0][i] & 15]};
                                       }
                                   });
        EXPECT_TRUE(asked.isOk());
        EXPECT_EQ(recorded[descriptorOf(name)], told) << name;
    }
}

TEST_F(ServiceTest, TheDebugLevelsLowByteDecidesWhetherAnythingIsLogged) {
    const std::string entry = "> a_hidl_zvttvfapi_info_get_fapi_sw_version";
    for (const auto& [level, logs] :
         {std::pair("0", false), std::pair("1", true), std::pair("256", false), std::pair("257", true)}) {
        std::filesystem::remove(mLog);
        setenv("ZVTTV_DEBUG_LEVEL", level, 1);
        startAndWait();
        call({"get_fapi_sw_version"});
        service().stop(SIGTERM);
        if (logs) {
            EXPECT_THAT(log(), HasSubstr(entry)) << level;
            EXPECT_THAT(log(), HasSubstr("Start ZvtTvFApi SDK Service: version:v1.0.0.13")) << level;
        } else {
            EXPECT_THAT(
                    log(),
                    MatchesRegex(
                            "board: makes its state in [^\n]*\n|board: goes on with its state in [^\n]*\n"))
                    << level;
        }
    }
}

TEST_F(ServiceTest, ANameThatIsTakenStopsTheStartThereWithItsMessage) {
    ONLY_OVER_SOCKETS();
    for (size_t taken = 0; taken < kInterfaces.size(); ++taken) {
        const bool last = taken + 1 == kInterfaces.size();
        // The message does not depend on the level; the manager's own lines do.
        setenv("ZVTTV_DEBUG_LEVEL", taken % 2 == 0 ? "0" : "1", 1);
        std::filesystem::remove(mLog);
        std::filesystem::remove_all(mState);
        clearRegistry();
        Registry holder(mRegistryPath);
        ASSERT_EQ(android::OK, holder.take(descriptorOf(kInterfaces[taken]), "default", ObjectReference{}));
        start();
        EXPECT_EQ(-SIGABRT, service().wait()) << kInterfaces[taken];
        EXPECT_THAT(log(), HasSubstr("Could not register zvtTvFApi" + kInterfaces[taken] + " as service"));
        for (size_t i = 0; i < kInterfaces.size(); ++i) {
            EXPECT_EQ(i <= taken, hasFile(kInterfaces[i]))
                    << kInterfaces[i] << " with " << kInterfaces[taken];
        }
        EXPECT_EQ(last, log().find("ZvtTvFApiManager(server)") != std::string::npos)
                << "the manager, made last, initialises the modules";
        EXPECT_FALSE(std::filesystem::exists(mState + "/ini/pq.ini")) << "the custom library comes after it";
    }
}

TEST_F(ServiceTest, ManyProcessesCallAtOnceAndTheServiceKeepsToItsThreads) {
    setenv("ZVTTV_DEBUG_LEVEL", "0", 1);
    startAndWait();
    std::vector<std::thread> callers;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 24; ++i) {
        callers.emplace_back([&] {
            for (int j = 0; j < 50; ++j) {
                const auto asked =
                        IZvtTvFApiInformation::getService()->a_hidl_zvttvfapi_info_get_fapi_sw_version(
                                [&](const hidl_string& text, int32_t status) {
                                    wrong += status != 0 || text.empty();
                                });
                wrong += !asked.isOk();
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(0, wrong);
    size_t poolThreads = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(service().pid()) + "/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        poolThreads += name == "hidl-pool";
    }
    EXPECT_GT(poolThreads, 0u);
    EXPECT_LE(poolThreads, 9u) << "and the main thread";
}

}  // namespace
