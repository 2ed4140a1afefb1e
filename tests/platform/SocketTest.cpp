#include "platform/socket/Socket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <thread>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/Descriptors.h"

namespace android::hardware {
namespace {

int64_t processorMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return used.tv_sec * 1000 + used.tv_nsec / 1'000'000;
}

TEST(Socket, AllArrivesThoughSignalsInterruptAndWaitingUsesNoProcessor) {
    struct sigaction interrupting {};  // restarts nothing
    interrupting.sa_handler = [](int) {};
    sigaction(SIGALRM, &interrupting, nullptr);
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    itimerval often{{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    std::vector<uint8_t> sent(1'000'000);
    for (size_t i = 0; i < sent.size(); ++i) {
        sent[i] = static_cast<uint8_t>(i * 2654435761u >> 13);  // unlike its neighbours'
    }
    for (const int type : {int{SOCK_STREAM}, SOCK_STREAM | SOCK_NONBLOCK}) {
        for (const bool withDescriptors : {false, true}) {
            int fds[2];
            ASSERT_EQ(socketpair(AF_UNIX, type, 0, fds), 0);
            const UniqueFd mine(fds[0]);
            const UniqueFd other(fds[1]);
            std::vector<uint8_t> got(sent.size());
            pthread_sigmask(SIG_BLOCK, &alarms, nullptr);
            std::thread slow([&] {
                usleep(200'000);
                fcntl(other.get(), F_SETFL, 0);
                EXPECT_EQ(receiveSome(other.get(), got.data(), got.size(), MSG_WAITALL), 1'000'000);
                usleep(50'000);
                EXPECT_EQ(send(other.get(), "x", 1, 0), 1);
            });
            pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
            const int64_t before = processorMilliseconds();
            iovec vectors[] = {{sent.data(), 10}, {&sent[10], 300'001}, {&sent[300'011], 699'989}};
            EXPECT_TRUE(sendAll(mine.get(), {vectors, 3, sent.size()}));
            EXPECT_LT(processorMilliseconds() - before, 40);
            fcntl(mine.get(), F_SETFL, 0);
            uint8_t byte = 0;
            Descriptors none;
            EXPECT_EQ(receiveSome(mine.get(), &byte, 1, 0, withDescriptors ? &none : nullptr), 1);
            slow.join();
            EXPECT_TRUE(got == sent);
        }
    }
    often = {};
    setitimer(ITIMER_REAL, &often, nullptr);
}

TEST(Descriptors, AreClosedWhenMoreComeThanAMessageMayHave) {
    const size_t before = openDescriptors(getpid());
    Descriptors all;
    for (size_t i = 0; i <= kMaxDescriptors; ++i) {
        const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
        all.add(&fd, 1);
    }
    EXPECT_EQ(openDescriptors(getpid()), before + kMaxDescriptors);
    EXPECT_TRUE(all.isOverfull());
}

TEST(UniqueFd, AForkedChildHasNoneOfTheRuntimesDescriptorsButThoseThatWereLetGo) {
    const auto zero = [] { return UniqueFd(open("/dev/zero", O_RDONLY | O_CLOEXEC)); };
    const UniqueFd owned = zero();
    const int released = zero().release();
    ChildProcess child([&] {
        const auto isThere = [](int fd) {
            return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd)) == "/dev/zero";
        };
        return (isThere(owned.get()) ? 1 : 0) + (isThere(released) ? 0 : 2);
    });
    EXPECT_EQ(0, child.wait());
    close(released);
}

}  // namespace
}  // namespace android::hardware
