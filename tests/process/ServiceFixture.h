#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/socket/Registry.h"
#include "tests/support/Eventually.h"

/** A process that ends with this object at the latest, and with the test that made it. Its output can be
 * read. */
class ChildProcess {
  public:
    /** Runs the program; its standard error goes to the file, if one is named. */
    ChildProcess(const std::vector<std::string>& command, const std::string& errors) {
        int fds[2];
        EXPECT_EQ(0, pipe2(fds, O_CLOEXEC));
        std::vector<char*> words;
        for (const std::string& word : command) {
            words.push_back(const_cast<char*>(word.c_str()));
        }
        words.push_back(nullptr);
        mPid = fork();
        if (mPid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(fds[1], STDOUT_FILENO);
            if (!errors.empty()) {
                dup2(open(errors.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
            }
            execv(words[0], words.data());
            _exit(127);
        }
        close(fds[1]);
        mOutput = fds[0];
    }
    ChildProcess(ChildProcess&& other) noexcept
        : mPid(std::exchange(other.mPid, -1)), mOutput(std::exchange(other.mOutput, -1)) {}
    ~ChildProcess() {
        stop(SIGKILL);
        close(mOutput);
    }

    pid_t pid() const { return mPid; }
    int output() const { return mOutput; }
    void signal(int number) const { kill(mPid, number); }
    void stop(int number) {
        if (mPid > 0) {
            kill(mPid, number);
            wait();
        }
    }
    /** How the process ended: its exit code, or minus the signal. */
    int wait() {
        int status = 0;
        waitpid(mPid, &status, 0);
        mPid = -1;
        return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }

  private:
    pid_t mPid;
    int mOutput;
};

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
        setenv("ZVTTV_STATE_DIR", mState.c_str(), 1);
        setenv("ZVTTV_DEBUG_LEVEL", "1", 1);
        setenv("ZVTTV_BOARD_READY", "yes", 1);
        clearRegistry();
    }
    ~ServiceFixture() override {
        mService.clear();
        std::filesystem::remove_all(mState);
        std::filesystem::remove(mLog);
    }

    void start() {
        mService.clear();
        mService.emplace_back(std::vector<std::string>{getenv("ZVTTV_TEST_SERVICE")}, mLog);
    }
    void startAndWait() {
        start();
        ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    }
    ChildProcess& service() { return mService.back(); }
    bool isRegistered(const std::string& name) {
        android::hardware::ObjectReference reference;
        pid_t pid = 0;
        android::hardware::Registry registry(mRegistryPath);
        return registry.find(descriptorOf(name), "default", &reference, &pid) == android::OK &&
               pid == service().pid();
    }
    void clearRegistry() const {
        for (const auto& file : std::filesystem::directory_iterator(mRegistryPath)) {
            std::filesystem::remove(file);
        }
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

  private:
    std::vector<ChildProcess> mService;  // one at most
};

/** For main(): a registry of the program's own, which its children inherit. */
class RegistryFolder {
  public:
    RegistryFolder() {
        if (mkdtemp(mPath) == nullptr || setenv("HIDL_RUNTIME_DIR", mPath, 1) != 0) {
            perror("mkdtemp");
            abort();
        }
    }
    ~RegistryFolder() { std::filesystem::remove_all(mPath); }

  private:
    char mPath[32] = "/tmp/service-test-XXXXXX";
};
