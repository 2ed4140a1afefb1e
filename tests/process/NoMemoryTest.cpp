// A service that gets no memory at some moment refuses what needed it, loses nothing, and goes on.

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiManager.h>

#include <chrono>
#include <thread>

#include "fuzz/Values.h"
#include "tests/process/Listening.h"
#include "tests/process/ServiceFixture.h"
#include "tests/support/NoMemory.h"

namespace {

using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0;
using android::sp;
using fapictl::Json;
using fapictl::Method;
using fapictl::Reply;

class NoMemoryTest : public ServiceFixture {
  protected:
    NoMemoryTest() : mPath(mState + ".memory") {
        const int file = open(mPath.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
        EXPECT_EQ(0, ftruncate(file, sizeof(NoMemory)));
        mMemory = static_cast<NoMemory*>(
                mmap(nullptr, sizeof(NoMemory), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
    }
    ~NoMemoryTest() override {
        munmap(mMemory, sizeof(NoMemory));
        std::filesystem::remove(mPath);
    }

    /** Starts a service whose n-th allocation fails, counted from main's libraries on; 0: none. */
    void startWithout(int64_t nth) {
        mMemory->refuseIn = nth;
        mMemory->live = 0;
        setenv("NO_MEMORY", mPath.c_str(), 1);
        setenv("LD_PRELOAD", getenv("ZVTTV_TEST_NO_MEMORY"), 1);
        start();
        unsetenv("LD_PRELOAD");
    }

    /** Lets the service's n-th allocation from now on fail, for n = 1, 2, ... until the try asks for no more.
     * Returns how many there were. */
    template <typename Try, typename Then>
    int64_t forEachAllocation(Try attempt, Then then) {
        for (int64_t nth = 1;; ++nth) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, "allocation " + std::to_string(nth));
            mMemory->refuseIn = nth;
            attempt();
            if (mMemory->refuseIn.exchange(0) > 0) {
                return nth - 1;
            }
            then();
        }
    }

    NoMemory* mMemory;

  private:
    const std::string mPath;
};

/** The standard library's own: before its version 16, what is copied into a vector that is being constructed
 * is lost when a later element cannot be. */
#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 160000
constexpr bool kVectorsLeak = true;
#else
constexpr bool kVectorsLeak = false;
#endif

/** What the service does behind its answer takes a moment. */
bool soon(const std::function<bool()>& condition) {
    for (int i = 0; i < 20 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return condition();
}

std::optional<int64_t> statusOf(const Method& method, const Reply& reply) {
    if (!method.outcome() || reply.results.size() <= *method.outcome()) {
        return {};
    }
    const Json& result = reply.results[*method.outcome()];
    return result.is_number() ? result.get<int64_t>() : std::optional<int64_t>();
}

TEST_F(NoMemoryTest, EveryMethodAnswersThatThereIsNoneAndWorksAfterwards) {
    startWithout(0);
    ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    int64_t tried = 0;
    int succeeded = 0;
    for (const fapictl::Interface& interface : fapictl::factoryPackage().interfaces) {
        if (!interface.isService) {
            continue;
        }
        const sp<fapictl::IBase> object = interface.find("default");
        ASSERT_TRUE(object != nullptr);
        for (const Method& method : interface.methods) {
            bool success = false;
            for (const uint8_t choice : {0, 3, 4, 11}) {
                const std::vector<uint8_t> pattern(256, choice);
                fuzz::Choices choices(pattern.data(), pattern.size());
                Json arguments = Json::array();
                for (const fapictl::Field& argument : method.arguments) {
                    arguments.push_back(fuzz::makeValue(*argument.type, choices));
                }
                SCOPED_TRACE(method.name + arguments.dump());
                method.call(*object, arguments);
                const Reply usual = method.call(*object, arguments);
                ASSERT_EQ("", usual.failure);
                const auto status = statusOf(method, usual);
                success = success || !status || *status == 0;
                const auto refused = [&] {
                    const Reply reply = method.call(*object, arguments);
                    const auto other = statusOf(method, reply);
                    EXPECT_FALSE(reply.dead) << reply.failure;
                    if (reply.failure.empty() && other != status) {
                        EXPECT_THAT(other, testing::AnyOf(-1, -4, -110));
                    }
                };
                const auto works = [&] {
                    const Reply reply = method.call(*object, arguments);
                    EXPECT_EQ("", reply.failure);
                    EXPECT_EQ(status, statusOf(method, reply));
                };
                // The first time, the board may begin to keep something, the reason for a refusal say.
                bool leaks = true;
                for (int round = 0; leaks && round < 4; ++round) {
                    const int64_t live = mMemory->live;
                    tried += forEachAllocation(refused, works);
                    leaks = !kVectorsLeak && !soon([&] { return mMemory->live <= live; });
                }
                EXPECT_FALSE(leaks);
            }
            succeeded += success;
        }
    }
    // Not just the refusals of arguments.
    EXPECT_GT(tried, 3000);
    EXPECT_GT(succeeded, 80);
}

TEST_F(NoMemoryTest, ClientsRegisterAndAreToldOrThePosterLearnsThatTheyAreNot) {
    startWithout(0);
    ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    std::atomic<int> told{0};
    std::vector<std::unique_ptr<Listening>> clients;
    const auto add = [&] {
        auto client = std::make_unique<Listening>([&](const fapictl::Event&) { ++told; });
        try {
            client->begin();
            clients.push_back(std::move(client));
        } catch (const fapictl::Failure& failure) {
            EXPECT_THAT(failure.code, testing::Ne(fapictl::Exit::Usage));
        }
    };
    EXPECT_GT(forEachAllocation(add, add), 3);

    const sp<IZvtTvFApiManager> manager = IZvtTvFApiManager::getService();
    const ZvtTvFApiEventCommonObject record{1, "text", std::vector<uint8_t>(100)};
    const auto post = [&] {
        told = 0;
        return manager->a_hidl_a_zvttvfapi_mngr_post_event(0x40005, record, record, {}, {}).withDefault(-1);
    };
    const auto isToldToAll = [&] {
        return eventually([&] { return told == static_cast<int>(clients.size()); });
    };
    const auto refused = [&] {
        const int32_t result = post();
        EXPECT_THAT(result, testing::AnyOf(0, -1));
        EXPECT_TRUE(result != 0 || isToldToAll());
    };
    const auto works = [&] { EXPECT_TRUE(eventually([&] { return post() == 0 && isToldToAll(); })); };
    EXPECT_GT(forEachAllocation(refused, works), 3);
}

TEST_F(NoMemoryTest, AClientThatComesMeanwhileIsServedOrNotAndTheNextOneIs) {
    startWithout(0);
    ASSERT_TRUE(eventually([this] { return isRegistered("Manager"); })) << log();
    const auto version = [](const testing::Matcher<int>& code) {
        tool({"call", "information", "get_fapi_sw_version", "--timeout", "10"}, code);
    };
    version(0);
    const auto refused = [&] { version(testing::AnyOf(0, 1, 3, 4)); };
    const auto works = [&] { version(0); };
    EXPECT_GT(forEachAllocation(refused, works), 1);
}

TEST_F(NoMemoryTest, AServiceStartsOrSaysWhyNot) {
    int served = 0;
    int ended = 0;
    for (int64_t nth = 1;; nth += 1 + nth / 100) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, "allocation " + std::to_string(nth));
        std::filesystem::remove(mLog);
        startWithout(nth);
        const auto hasEnded = [this] {
            siginfo_t child{};
            return waitid(P_PID, static_cast<id_t>(service().pid()), &child, WEXITED | WNOHANG | WNOWAIT) ==
                           0 &&
                   child.si_pid != 0;
        };
        EXPECT_TRUE(eventually([&] { return isRegistered("Manager") || hasEnded(); }));
        if (isRegistered("Manager")) {
            if (mMemory->refuseIn.exchange(0) > 0) {
                break;  // it asks for no more
            }
            ++served;
            tool({"call", "information", "get_fapi_sw_version"});
        } else {
            ++ended;
            const int code = service().wait();
            EXPECT_THAT(code, testing::AnyOf(1, 127, -SIGABRT));
            EXPECT_NE("", log());
        }
    }
    EXPECT_GT(served, 10);
    EXPECT_GT(ended, 10);
}

}  // namespace
