// The service executable on the simulated board, seen from another process.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "platform/src/Registry.h"

namespace {

using namespace std::chrono_literals;
using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::ObjectReference;
using ::android::hardware::Registry;
using ::testing::HasSubstr;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;

// In the order in which the service registers them.
const std::vector<std::string> kInterfaces = {"Audio",      "DisplayTest", "Display", "Network",
                                              "Peripheral", "InputSource", "System",  "Information",
                                              "Tv",         "Manager"};

std::string descriptorOf(const std::string& name) {
    return "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApi" + name;
}

bool eventually(const std::function<bool()>& condition) {
    for (int i = 0; i < 4000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(2ms);
    }
    return false;
}

class ServiceTest : public testing::Test {
  protected:
    // A process opens one registry, so all tests share the folder; each has a board of its own.
    ServiceTest() {
        static int sCount = 0;
        mRegistryPath = Registry::defaultPath();
        mState = mRegistryPath + "-state-" + std::to_string(++sCount);
        mLog = mState + ".log";
        setenv("ZVTTV_STATE_DIR", mState.c_str(), 1);
        setenv("ZVTTV_DEBUG_LEVEL", "1", 1);
        setenv("ZVTTV_BOARD_READY", "yes", 1);
        for (const auto& file : std::filesystem::directory_iterator(mRegistryPath)) {
            std::filesystem::remove(file);
        }
    }
    ~ServiceTest() override {
        stop(SIGKILL);
        std::filesystem::remove_all(mState);
        std::filesystem::remove(mLog);
    }

    void start() {
        mPid = fork();
        if (mPid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const int log = open(mLog.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600);
            dup2(log, STDERR_FILENO);
            execl(getenv("ZVTTV_TEST_SERVICE"), getenv("ZVTTV_TEST_SERVICE"), nullptr);
            _exit(127);
        }
    }
    bool isRegistered(const std::string& name) {
        ObjectReference reference;
        pid_t pid = 0;
        Registry registry(mRegistryPath);
        return registry.find(descriptorOf(name), "default", &reference, &pid) == android::OK && pid == mPid;
    }
    void startAndWait() {
        start();
        ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    }
    /** How the process ended: its exit code, or minus the signal. */
    int wait() {
        int status = 0;
        waitpid(mPid, &status, 0);
        mPid = -1;
        return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }
    void stop(int number) {
        if (mPid > 0) {
            kill(mPid, number);
            wait();
        }
    }
    std::string log() const {
        std::stringstream text;
        text << std::ifstream(mLog).rdbuf();
        return text.str();
    }
    bool hasFile(const std::string& name) const {
        return std::filesystem::exists(mRegistryPath + "/" + descriptorOf(name) + "+default");
    }

    static std::pair<std::string, int32_t> version() {
        std::pair<std::string, int32_t> result;
        const auto call = IZvtTvFApiInformation::getService()->a_hidl_zvttvfapi_info_get_fapi_sw_version(
                [&](const hidl_string& text, int32_t status) {
                    result = {text, status};
                });
        EXPECT_TRUE(call.isOk());
        return result;
    }

    std::string mRegistryPath;
    std::string mState;
    std::string mLog;
    pid_t mPid = -1;
};

TEST_F(ServiceTest, AnotherProcessWritesAndReadsParametersThatSurviveARestart) {
    startAndWait();
    for (const std::string& name : kInterfaces) {
        EXPECT_TRUE(isRegistered(name)) << name;
    }
    EXPECT_EQ(0, version().second);
    EXPECT_FALSE(version().first.empty());
    EXPECT_EQ(0, int32_t(IZvtTvFApiInformation::getService()->a_hidl_zvttvfapi_info_set_ini_para(
                         "panel", "test:value", "27")));
    stop(SIGTERM);
    startAndWait();
    std::pair<std::string, int32_t> value;
    EXPECT_TRUE(IZvtTvFApiInformation::getService()
                        ->a_hidl_zvttvfapi_info_get_ini_para("panel", "test:value",
                                                             [&](const hidl_string& text, int32_t status) {
                                                                 value = {text, status};
                                                             })
                        .isOk());
    EXPECT_EQ(std::pair(std::string("27"), 0), value);
    bool enabled = false;
    int32_t status = -1;
    EXPECT_TRUE(IZvtTvFApiInformation::getService()
                        ->a_hidl_zvttvfapi_info_get_ip_enable_status(0,
                                                                     [&](bool isEnabled, int32_t result) {
                                                                         enabled = isEnabled;
                                                                         status = result;
                                                                     })
                        .isOk());
    EXPECT_EQ(0, status);
    EXPECT_TRUE(std::filesystem::exists(mState + "/identity.ini"))
            << "the board's own initialisation has run";
}

TEST_F(ServiceTest, ALibraryThatIsNotReadyAnswersEveryCallWithItsStatusUntilItIs) {
    setenv("ZVTTV_BOARD_READY", "700", 1);
    startAndWait();
    EXPECT_EQ(std::pair(std::string(), -5), version());
    EXPECT_EQ(-5, int32_t(IZvtTvFApiInformation::getService()->a_hidl_zvttvfapi_info_set_ini_para(
                          "panel", "test:value", "1")));
    EXPECT_TRUE(eventually([] { return version().second == 0; }));
}

TEST_F(ServiceTest, TheDebugLevelsLowByteDecidesWhetherAnythingIsLogged) {
    const std::string entry = "> a_hidl_zvttvfapi_info_get_fapi_sw_version";
    for (const auto& [level, logs] :
         {std::pair("0", false), std::pair("1", true), std::pair("256", false), std::pair("257", true)}) {
        std::filesystem::remove(mLog);
        setenv("ZVTTV_DEBUG_LEVEL", level, 1);
        startAndWait();
        EXPECT_EQ(0, version().second);
        stop(SIGTERM);
        if (logs) {
            EXPECT_THAT(log(), HasSubstr(entry)) << level;
            EXPECT_THAT(log(), HasSubstr("Start ZvtTvFApi SDK Service: version:v1.0.0.13")) << level;
        } else {
            EXPECT_EQ("", log()) << level;
        }
    }
}

TEST_F(ServiceTest, ANameThatIsTakenStopsTheStartThereWithItsMessage) {
    setenv("ZVTTV_DEBUG_LEVEL", "0", 1);  // the assertion does not depend on it
    for (size_t taken = 0; taken < kInterfaces.size(); ++taken) {
        std::filesystem::remove(mLog);
        std::filesystem::remove_all(mState);
        for (const auto& file : std::filesystem::directory_iterator(mRegistryPath)) {
            std::filesystem::remove(file);
        }
        Registry holder(mRegistryPath);
        ASSERT_EQ(android::OK, holder.take(descriptorOf(kInterfaces[taken]), "default", ObjectReference{}));
        start();
        EXPECT_EQ(-SIGABRT, wait()) << kInterfaces[taken];
        EXPECT_THAT(log(), HasSubstr("Could not register zvtTvFApi" + kInterfaces[taken] + " as service"));
        for (size_t i = 0; i < kInterfaces.size(); ++i) {
            EXPECT_EQ(i <= taken, hasFile(kInterfaces[i]))
                    << kInterfaces[i] << " with " << kInterfaces[taken];
        }
        EXPECT_FALSE(std::filesystem::exists(mState + "/identity.ini")) << "the board is initialised last";
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
                wrong += version().second != 0;
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(0, wrong);
    const auto tasks = std::filesystem::directory_iterator("/proc/" + std::to_string(mPid) + "/task");
    EXPECT_LE(std::distance(begin(tasks), end(tasks)), 11) << "ten that serve and one that watches";
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    char folder[] = "/tmp/service-test-XXXXXX";
    if (mkdtemp(folder) == nullptr || setenv("HIDL_RUNTIME_DIR", folder, 1) != 0) {
        perror("mkdtemp");
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
