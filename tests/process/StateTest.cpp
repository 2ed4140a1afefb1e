// The pages of state of the real service, asked for by other processes.

#include <cutils/native_handle.h>
#include <gmock/gmock.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <functional>

#include "tests/process/ServiceFixture.h"

namespace {

using namespace std::chrono_literals;
using ::android::sp;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiManager;

using StateTest = ServiceFixture;

TEST_F(StateTest, APersonReadsTheStateOfAllInterfacesFromAnotherProcess) {
    setenv("ZVTTV_BOARD_READY", "no", 1);
    startAndWait();
    const std::string errors = mState + ".watch";
    ChildProcess watcher({getenv("ZVTTV_TEST_FAPICTL"), "watch"}, errors);
    ASSERT_TRUE(eventually([&] { return contentOf(errors).find("watching") != std::string::npos; }));
    tool({"post", "0x20001"});
    const std::string pages = "\n" + tool({"debug", "*"}) + "\ninterface: ";
    for (const char* name : {"Audio", "DisplayTest", "Display", "Network", "Peripheral", "InputSource",
                             "System", "Information", "Tv", "Manager"}) {
        EXPECT_THAT(pages, HasSubstr("\ninterface: " + descriptorOf(name) +
                                     "\nchip-layer library: not ready\ncalls served: " +
                                     (std::string(name) == "Manager" ? "2\n" : "0\n\ninterface: ")))
                << name;
    }
    EXPECT_THAT(pages, AllOf(HasSubstr("events of net: 1 relayed, 0 refused\n"),
                             HasSubstr("clients: 1\nclient 0: pid " + std::to_string(watcher.pid()) + "\n")));
    watcher.stop(SIGKILL);
    EXPECT_TRUE(eventually([] {
        return tool({"debug", "manager"}).find("clients: 0\n") != std::string::npos;
    }));
    EXPECT_THAT(tool({"debug", "tv", "--", "--help"}), HasSubstr("\noptions: there are none"));
    std::filesystem::remove(errors);
}

TEST_F(StateTest, AReaderThatIsGoneOrDoesNotReadHarmsNobody) {
    startAndWait();
    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::getService();
    const auto makePipe = [](int* ends) { ASSERT_EQ(0, pipe2(ends, O_CLOEXEC)); };
    const auto makeSockets = [](int* ends) {
        ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends));
    };
    const auto makeCounter = [](int* ends) {
        ends[0] = -1;
        ends[1] = eventfd(0, EFD_CLOEXEC);
        const uint64_t most = UINT64_MAX - 1;
        ASSERT_EQ(8, write(ends[1], &most, sizeof(most)));
    };
    struct {
        const char* what;
        std::function<void(int*)> make;
        bool filled, gone;
        int error;
    } const rows[] = {
            {"a pipe without a reader", makePipe, false, true, EPIPE},
            {"a full pipe", makePipe, true, false, ETIMEDOUT},
            {"a socket", makeSockets, false, false, EINVAL},
            {"a full counter, a write to which waits", makeCounter, false, false, EINVAL},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        int ends[2];  // the reader's and the writer's
        row.make(ends);
        if (row.filled) {
            const std::string much(4096, '.');
            fcntl(ends[1], F_SETFL, O_NONBLOCK);
            while (write(ends[1], much.data(), much.size()) > 0) {
            }
            fcntl(ends[1], F_SETFL, 0);
        }
        if (row.gone) {
            close(ends[0]);
        }
        NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 0);
        native_handle_t* const handle = native_handle_init(storage, 1, 0);
        handle->data[0] = ends[1];
        const size_t logBefore = log().size();
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(manager->debug(handle, {}).isOk());
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
        const std::string line = "could not be written: error " + std::to_string(row.error) + "\n";
        const std::string logged = log();
        EXPECT_NE(std::string::npos, logged.find(line, logBefore)) << logged.substr(logBefore);
        close(ends[1]);
        if (!row.gone) {
            close(ends[0]);
        }
    }
    EXPECT_TRUE(manager->debug(nullptr, {}).isOk());
}

}  // namespace
