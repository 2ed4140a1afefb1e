#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "tests/support/ChildProcess.h"
#include "tests/tools/TestPackage.h"

namespace fapictl {

/** The tool against a service in a process of its own. */
class Service : public testing::Test {
  protected:
    // The process knows one registry, so its suites share the directory.
    static void SetUpTestSuite() {
        if (sDirectory.path.empty()) {
            char name[] = "/tmp/fapictl-test-XXXXXX";
            sDirectory.path = mkdtemp(name);
            setenv("HIDL_RUNTIME_DIR", (sDirectory.path + "/run").c_str(), 1);
        }
    }

    void start(const std::string& instance) {
        mProcess.emplace(std::vector<std::string>{FAPICTL_TEST_SERVICE, instance});
    }
    void startAndWait(const std::string& instance) {
        start(instance);
        ASSERT_EQ(tool({"wait", "Thing", "--instance", instance, "--timeout", "30"}).code, Exit::Success);
    }
    static Ran tool(const std::vector<std::string>& words) { return ran(testPackage(), words); }

    static inline struct Directory {
        ~Directory() {
            if (!path.empty()) {
                std::filesystem::remove_all(path);
            }
        }
        std::string path;
    } sDirectory;
    std::optional<ChildProcess> mProcess;
};

}  // namespace fapictl
