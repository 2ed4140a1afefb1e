#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/ServiceManagement.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "platform/socket/Registry.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"
#include "tests/support/Transport.h"

inline std::string descriptorOf(const std::string& name) {
    return "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApi" + name;
}

/** Starts the service executable on a simulated board of the test's own. */
class ServiceFixture : public testing::Test {
  protected:
    // A process opens one registry, so all tests share the folder; each has a board of its own.
    ServiceFixture() {
        static int sCount = 0;
        mRegistryPath = android::hardware::Registry::defaultPath();
        mState = mRegistryPath + "-state-" + std::to_string(++sCount);
        mLog = mState + ".log";
        mReport = mState + ".report";
        setenv("ZVTTV_STATE_DIR", mState.c_str(), 1);
        setenv("ZVTTV_DEBUG_LEVEL", "1", 1);
        setenv("ZVTTV_BOARD_READY", "yes", 1);
        clearRegistry();
    }
    ~ServiceFixture() override {
        mService.clear();
        std::filesystem::remove_all(mState);
        std::filesystem::remove(mLog);
        std::filesystem::remove(mReport);
    }

    void start() { startAs({getenv("ZVTTV_TEST_SERVICE")}); }
    void startAs(const std::vector<std::string>& command) {
        mService.clear();
        mService.emplace_back(command, mLog);
    }
    void startAndWait() {
        start();
        ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    }
    ChildProcess& service() { return mService.back(); }
    bool isRegistered(const std::string& name) {
        bool found = false;
        const auto manager = android::hardware::defaultServiceManager();
        EXPECT_TRUE(manager->debugDump([&](const auto& registered) {
                               for (const auto& each : registered) {
                                   found = found || (each.interfaceName == descriptorOf(name) &&
                                                     each.pid == service().pid());
                               }
                           })
                            .isOk());
        return found;
    }
    void clearRegistry() const {
        for (const auto& file : std::filesystem::directory_iterator(mRegistryPath)) {
            std::filesystem::remove(file);
        }
    }
    /** What the tool prints. */
    static std::string tool(std::vector<std::string> words, const testing::Matcher<int>& code = 0,
                            const std::string& errors = "/dev/null") {
        words.insert(words.begin(), getenv("ZVTTV_TEST_FAPICTL"));
        ChildProcess child(words, errors);
        const std::string text = child.readAll();
        EXPECT_THAT(child.wait(), code) << words[1] << ": " << text;
        return text;
    }
    /** The tool's monitor that listens already, and writes a report. */
    ChildProcess monitor() const {
        const std::string listens = mState + ".listens";
        ChildProcess child(
                {"/bin/sh", "-c", "exec \"$ZVTTV_TEST_FAPICTL\" monitor --json --timeout 60 > " + mReport},
                listens);
        EXPECT_TRUE(eventually([&] { return !contentOf(listens).empty(); }));
        std::filesystem::remove(listens);
        return child;
    }
    /** The report so far, but for the line that is being written. */
    std::vector<nlohmann::ordered_json> reported() const {
        std::vector<nlohmann::ordered_json> lines;
        std::ifstream report(mReport);
        for (std::string line; std::getline(report, line) && !report.eof();) {
            lines.push_back(nlohmann::ordered_json::parse(line));
        }
        return lines;
    }
    /** Its calls alone, without the tool's own questions about their statuses. */
    std::vector<nlohmann::ordered_json> callsReported() const {
        std::vector<nlohmann::ordered_json> calls;
        for (const nlohmann::ordered_json& line : reported()) {
            if (line.contains("arguments") && line["arguments"].value("strIniArg1", "") != "board") {
                calls.push_back(line);
            }
        }
        return calls;
    }
    static std::string contentOf(const std::string& path) {
        std::stringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }
    std::string log() const { return contentOf(mLog); }

    std::string mRegistryPath;
    std::string mState;
    std::string mLog;
    std::string mReport;

  private:
    std::vector<ChildProcess> mService;  // one at most
};

/** A registry of the program's own, which its children inherit. */
class RegistryFolder : public testing::Environment {
    void SetUp() override {
        ASSERT_TRUE(mkdtemp(mPath) != nullptr && setenv("HIDL_RUNTIME_DIR", mPath, 1) == 0);
    }
    void TearDown() override { std::filesystem::remove_all(mPath); }

    char mPath[32] = "/tmp/service-test-XXXXXX";
};
inline testing::Environment* const gRegistryFolder = testing::AddGlobalTestEnvironment(new RegistryFolder);
