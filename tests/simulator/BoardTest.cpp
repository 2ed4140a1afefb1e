#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "tests/simulator/Support.h"

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;

TEST(Board, IsReadyAsItsEnvironmentAsks) {
    const std::string complaint = "not \"yes\", \"no\" or a number of milliseconds";
    const struct {
        const char* setting;
        const char* status;
        std::string line;
    } rows[] = {{"", "0", ""},
                {"ZVTTV_BOARD_READY=", "0", ""},
                {"ZVTTV_BOARD_READY=yes", "0", ""},
                {"ZVTTV_BOARD_READY=0", "0", ""},
                {"ZVTTV_BOARD_READY=no", "-5", ""},
                {"ZVTTV_BOARD_READY=60000", "-5", ""},
                {"ZVTTV_BOARD_READY=soon", "-5", complaint},
                {"ZVTTV_BOARD_READY=-1", "-5", complaint},
                {"ZVTTV_BOARD_READY=+5", "-5", complaint},
                {"ZVTTV_BOARD_READY=5ms", "-5", complaint},
                {"ZVTTV_BOARD_READY=99999999999999999999", "-5", complaint}};
    for (const auto& row : rows) {
        const std::string output = probe(row.setting, "status");
        EXPECT_THAT(output, AllOf(EndsWith(row.status), HasSubstr(row.line))) << row.setting;
        EXPECT_EQ(output.find('\n') != std::string::npos, !row.line.empty()) << row.setting;
    }
}

TEST(Board, BecomesReadyAfterTheDelayAndNotBefore) {
    // The delay counts from the library's loading, some milliseconds before the probe's first question.
    EXPECT_EQ(probe("ZVTTV_BOARD_READY=600", "wait 300"), "-5 in time");
}

TEST(Board, TakesTheDebugLevelFromItsEnvironment) {
    const struct {
        const char* setting;
        const char* output;
    } rows[] = {{"", "1"},
                {"ZVTTV_DEBUG_LEVEL=", "1"},
                {"ZVTTV_DEBUG_LEVEL=0", "0"},
                {"ZVTTV_DEBUG_LEVEL=256", "256"},
                {"ZVTTV_DEBUG_LEVEL=-1", "-1"},
                {"ZVTTV_DEBUG_LEVEL=0x101", "257"}};
    for (const auto& row : rows) {
        EXPECT_EQ(probe(row.setting, "level"), row.output) << row.setting;
    }
    for (const char* bad : {"loud", "1x", "99999999999"}) {
        EXPECT_THAT(probe(std::string("ZVTTV_DEBUG_LEVEL=") + bad, "level"),
                    AllOf(HasSubstr("not an integer"), EndsWith("1")));
    }
}

TEST(Board, KeepsItsStateInTheFirstFolderThatIsNamed) {
    const struct {
        const char* setting;
        const char* folder;
    } rows[] = {{"ZVTTV_STATE_DIR=$T/a/b XDG_STATE_HOME=$T/x HOME=$T/h", "a/b"},
                {"ZVTTV_STATE_DIR= XDG_STATE_HOME=$T/x HOME=$T/h", "x/zvttvfactory"},
                {"XDG_STATE_HOME=relative HOME=$T/h", "h/.local/state/zvttvfactory"},
                {"HOME=$T/h", "h/.local/state/zvttvfactory"}};
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        setenv("T", folder.path().c_str(), 1);
        EXPECT_EQ(probe(row.setting, "init"), "0") << row.setting;
        const std::string state = folder / row.folder;
        EXPECT_EQ(fs::status(state).permissions(), fs::perms::owner_all) << row.setting;
        EXPECT_TRUE(fs::exists(state + "/identity.ini")) << row.setting;
        EXPECT_TRUE(fs::exists(state + "/ini/panel.ini")) << row.setting;
    }
}

TEST(Board, DoesNotTrustAFolderInTmpThatOthersMayHaveMade) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root, to be another user for a moment";
    }
    const std::string uid = std::to_string(2000000 + getpid());
    const std::string path = "/tmp/zvttvfactory-" + uid;
    const auto give = [&](const std::string& what) {
        return chown(what.c_str(), static_cast<uid_t>(std::stoul(uid)), 0) == 0;
    };
    const auto owned = [&](mode_t mode) { return mkdir(path.c_str(), mode) == 0 && give(path); };
    // Its own, so that nothing but the link is wrong with it.
    const TemporaryFolder elsewhere;
    ASSERT_TRUE(give(elsewhere.path()));
    const struct {
        const char* what;
        std::function<bool()> prepare;
        const char* status;
    } rows[] = {
            {"none yet", [] { return true; }, "0"},
            {"its own", [&] { return owned(0700); }, "0"},
            {"open to others", [&] { return owned(0755); }, "-112"},
            {"another user's", [&] { return mkdir(path.c_str(), 0700) == 0; }, "-112"},
            {"a link", [&] { return symlink(elsewhere.path().c_str(), path.c_str()) == 0; }, "-109"},
    };
    for (const auto& row : rows) {
        fs::remove_all(path);
        ASSERT_TRUE(row.prepare()) << row.what;
        EXPECT_THAT(probe("PROBE_UID=" + uid, "init"), EndsWith(row.status)) << row.what;
    }
    EXPECT_TRUE(fs::is_empty(elsewhere.path()));
    fs::remove_all(path);
}

TEST(Board, StartsWithDefaultsAndNeverOverwritesWhatIsThere) {
    const TemporaryFolder state;
    const std::string environment = "ZVTTV_STATE_DIR=" + state.path();
    write(state / "ini/tuner.ini", "mine = 1\n");
    EXPECT_EQ(probe(environment, "init"), "0");
    EXPECT_EQ(probe(environment, "get panel timing:refresh_hz"), "0 60");
    EXPECT_EQ(contentOf(state / "ini/tuner.ini"), "mine = 1\n");

    const std::string identity = contentOf(state / "identity.ini");
    EXPECT_EQ(probe(environment, "set panel timing:refresh_hz 50"), "0");
    EXPECT_EQ(probe(environment, "init"), "0");
    EXPECT_EQ(probe(environment, "get panel timing:refresh_hz"), "0 50");
    EXPECT_EQ(contentOf(state / "identity.ini"), identity);
}

TEST(Board, AnswersForEachNumberedIpFromItsFuseUnlessTheFileOverrulesIt) {
    const TemporaryFolder state;
    const std::string environment = "ZVTTV_STATE_DIR=" + state.path();
    const struct {
        const char* file;
        const char* id;
        const char* answer;
    } rows[] = {{"", "2", "0 1"},
                {"", "5", "0 0"},
                {"[ip]\nav1 = 1\navc = 0\n", "5", "0 1"},
                {"[ip]\nav1 = 1\navc = 0\n", "2", "0 0"},
                {"av1 = 1\n", "5", "0 0"},
                {"", "12", "0 0"},
                {"", "13", "-102 7"},
                {"", "-1", "-102 7"}};
    for (const auto& row : rows) {
        write(state / "ini/ip.ini", row.file);
        EXPECT_EQ(probe(environment, std::string("ip ") + row.id), row.answer) << row.file << row.id;
    }
    for (const char* bad : {"yes", "2", "", "12345678901234567890"}) {
        write(state / "ini/ip.ini", std::string("[ip]\nav1 = ") + bad + "\n");
        EXPECT_THAT(probe(environment, "ip 5"), AllOf(HasSubstr("av1 is not 0 or 1"), EndsWith("0 0")))
                << bad;
    }
}
