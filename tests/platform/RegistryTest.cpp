#include "platform/socket/Registry.h"

#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/binding/Backend.h"
#include "platform/socket/ServiceManager.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"

namespace android::hardware {
namespace {

constexpr char kInterface[] = "a.b@1.0::IThing";

/** A process forked to run a function; it tells the result and waits to be killed. */
struct Child : ChildProcess {
    explicit Child(const std::function<status_t()>& function)
        : ChildProcess([&] {
              const status_t status = function();
              (void)!write(STDOUT_FILENO, &status, sizeof(status));
              return pause();
          }) {}
    status_t result() const {
        status_t status = UNKNOWN_ERROR;
        EXPECT_EQ(read(output(), &status, sizeof(status)), static_cast<ssize_t>(sizeof(status)));
        return status;
    }
};

class RegistryTest : public testing::Test {
  protected:
    RegistryTest() {
        char folder[] = "/tmp/registry-test-XXXXXX";
        mFolder = mkdtemp(folder);
        mPath = mFolder + "/names";
    }
    ~RegistryTest() override { std::filesystem::remove_all(mFolder); }

    static ObjectReference reference(uint64_t number) { return {randomEndpoint(), number, randomNumber()}; }

    /** The number of the object found; 0 when there is none. */
    uint64_t found(const std::string& instance = "default") const {
        Registry registry(mPath);
        ObjectReference result{};
        pid_t pid = 0;
        const status_t status = registry.find(kInterface, instance, &result, &pid);
        EXPECT_TRUE(status == OK || status == NAME_NOT_FOUND) << status;
        return status == OK ? result.object : 0;
    }
    /** Through a registry that lasts as long as the test, or the child. */
    status_t take(uint64_t number, const std::string& instance = "default") {
        mRegistries.push_back(std::make_unique<Registry>(mPath));
        return mRegistries.back()->take(kInterface, instance, reference(number));
    }
    std::string file(const std::string& instance = "default") const {
        return mPath + "/" + kInterface + "+" + instance;
    }

    std::string mFolder;
    std::string mPath;
    std::vector<std::unique_ptr<Registry>> mRegistries;
};

TEST_F(RegistryTest, ANameHeldByALiveProcessIsRefusedToOthersAndToItself) {
    Registry own(mPath);
    EXPECT_EQ(found(), 0u);
    EXPECT_EQ(own.take(kInterface, "default", reference(1)), OK);
    EXPECT_EQ(own.take(kInterface, "default", reference(2)), ALREADY_EXISTS);
    EXPECT_EQ(Child([&] { return take(3); }).result(), ALREADY_EXISTS);
    EXPECT_EQ(own.take(kInterface, "other", reference(4)), OK);
    EXPECT_EQ(found(), 1u);
    own.release(kInterface, "default");
    EXPECT_EQ(found(), 0u);
    EXPECT_EQ(own.take(kInterface, "default", reference(5)), OK);
    EXPECT_EQ(found(), 5u);
}

TEST_F(RegistryTest, OfProcessesThatTakeANameAtOneTimeOneWins) {
    for (int round = 0; round < 20; ++round) {
        int gate[2];
        ASSERT_EQ(pipe2(gate, O_CLOEXEC), 0);
        std::vector<Child> children;
        for (uint64_t i = 1; i <= 6; ++i) {
            children.emplace_back([&, i] {
                close(gate[1]);
                char byte;
                (void)!read(gate[0], &byte, 1);  // until the parent closes it
                return take(i);
            });
        }
        close(gate[0]);
        close(gate[1]);
        uint64_t winner = 0;
        for (uint64_t i = 1; i <= children.size(); ++i) {
            const status_t status = children[i - 1].result();
            EXPECT_TRUE(status == ALREADY_EXISTS || (status == OK && winner == 0)) << status;
            winner = status == OK ? i : winner;
        }
        EXPECT_NE(winner, 0u);
        EXPECT_EQ(found(), winner);
    }
}

TEST_F(RegistryTest, LookingIsNeverInTheWayOfTakingAndSeesNoEarlierHolder) {
    Registry own(mPath);
    std::atomic<uint64_t> newest{0};
    std::atomic<bool> ends{false};
    std::thread looking([&] {
        while (!ends) {
            const uint64_t before = newest;
            const uint64_t seen = found();
            EXPECT_TRUE(seen == 0 || seen >= before) << seen << " after " << before;
        }
    });
    for (uint64_t i = 1; i <= 2000; ++i) {
        ASSERT_EQ(own.take(kInterface, "default", reference(i)), OK);
        newest = i;
        own.release(kInterface, "default");
    }
    ends = true;
    looking.join();
}

TEST_F(RegistryTest, NamesThatCouldLeaveTheirFolderOrItsListAreRefused) {
    struct Case {
        std::string fqName;
        std::string instance;
        status_t expected;
    };
    const std::string interface = kInterface;
    const Case cases[] = {
            {interface, "default", OK},
            {interface, "with+plus and space", OK},
            {"a.a@1.0::IFirst", "z", OK},
            {interface, std::string(NAME_MAX - 1 - interface.size(), 'x'), OK},
            {interface, std::string(NAME_MAX - interface.size(), 'x'), BAD_VALUE},
            {interface, "", BAD_VALUE},
            {interface, ".", BAD_VALUE},
            {interface, "..", BAD_VALUE},
            {interface, "../default", BAD_VALUE},
            {interface, std::string("a\0b", 3), BAD_VALUE},
            {interface, "two\nlines", BAD_VALUE},
            {"", "default", BAD_VALUE},
            {"../" + interface, "default", BAD_VALUE},
            {interface + "+x", "default", BAD_VALUE},
    };
    Registry own(mPath);
    for (const Case& each : cases) {
        EXPECT_EQ(own.take(each.fqName, each.instance, reference(1)), each.expected) << each.instance;
    }
    std::vector<RegistryEntry> entries;
    EXPECT_EQ(own.list(&entries), OK);
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[0].instance, "z") << "by interface, then by instance";
    EXPECT_TRUE(entries[1].instance == "default" && entries[1].fqName == interface &&
                entries[1].pid == getpid());
    EXPECT_EQ(entries[2].instance, "with+plus and space");
}

TEST_F(RegistryTest, ProcessesInAndOutsideADesktopsSessionUseTheSameFolderUnlessToldAnother) {
    const struct {
        const char* given;
        const char* session;
        std::string expected;
    } cases[] = {
            {"", "", "/tmp/hidl-" + std::to_string(geteuid())},
            {"", "/run/user/1", "/tmp/hidl-" + std::to_string(geteuid())},
            {"/given", "/run/user/1", "/given"},
    };
    for (const auto& each : cases) {
        setenv("HIDL_RUNTIME_DIR", each.given, 1);
        setenv("XDG_RUNTIME_DIR", each.session, 1);
        EXPECT_EQ(Registry::defaultPath(), each.expected);
    }
    unsetenv("HIDL_RUNTIME_DIR");
    unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(RegistryTest, AFolderThatOthersMayTouchIsRefused) {
    struct Case {
        const char* name;
        std::function<void()> make;
        status_t expected;
        const char* told = "";  // in the log
    };
    const auto folder = [this](mode_t mode) {
        return [this, mode] {
            mkdir(mPath.c_str(), 0700);
            chmod(mPath.c_str(), mode);
        };
    };
    const Case cases[] = {
            {"none yet", [] {}, OK},
            {"ours", folder(0700), OK},
            {"readable by others", folder(0704), PERMISSION_DENIED, "chmod 700 /tmp/registry-test-"},
            {"writable by the group", folder(0720), PERMISSION_DENIED, "chmod 700 /tmp/registry-test-"},
            {"everyone's", folder(01777), PERMISSION_DENIED, "HIDL_RUNTIME_DIR"},
            {"a link to a good one",
             [this] {
                 mkdir((mFolder + "/real").c_str(), 0700);
                 EXPECT_EQ(symlink("real", mPath.c_str()), 0);
             },
             -ENOTDIR},
            {"a file", [this] { std::ofstream file(mPath); }, -ENOTDIR},
            {"in a folder that does not exist", [this] { mPath = mFolder + "/no/names"; }, -ENOENT},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        std::filesystem::remove_all(mPath);
        each.make();
        for (const char* slash : {"", "/"}) {
            const LogCapture log;
            Registry registry(mPath + slash);
            EXPECT_EQ(registry.take(kInterface, "default", reference(1)), each.expected);
            EXPECT_TRUE(log.contains(each.told) || *each.told == '\0');
        }
    }
}

TEST_F(RegistryTest, RootAndAUserShareTheUsersFolderAndNoOtherUserDoes) {
    if (geteuid() != 0) {
        SUCCEED() << "only root can play another user";
        return;
    }
    constexpr uid_t kUser = 1;
    chmod(mFolder.c_str(), 0755);
    mkdir(mPath.c_str(), 0700);
    ASSERT_EQ(chown(mPath.c_str(), kUser, kUser), 0);
    const auto as = [](uid_t user, const std::function<status_t()>& function) {
        return [=] { return setresuid(user, user, user) != 0 ? UNKNOWN_ERROR : function(); };
    };
    Registry own(mPath);
    ASSERT_EQ(own.take(kInterface, "default", reference(1)), OK);
    EXPECT_EQ(Child(as(kUser, [&] { return found() == 1 ? OK : NAME_NOT_FOUND; })).result(), OK);
    EXPECT_EQ(Child(as(kUser, [&] { return take(2); })).result(), ALREADY_EXISTS);
    EXPECT_EQ(Child(as(kUser + 1, [&] { return take(2, "other"); })).result(), -EACCES);
    own.release(kInterface, "default");
    const Child user(as(kUser, [&] { return take(3); }));
    EXPECT_EQ(user.result(), OK) << "in the file that root made";
    EXPECT_EQ(found(), 3u);
    // What the user may have put there for root to overwrite.
    std::ofstream(mFolder + "/roots") << "precious";
    ASSERT_EQ(link((mFolder + "/roots").c_str(), file("trap").c_str()), 0);
    EXPECT_EQ(own.take(kInterface, "trap", reference(4)), PERMISSION_DENIED);
    EXPECT_EQ(std::filesystem::file_size(mFolder + "/roots"), 8u);
}

TEST_F(RegistryTest, AMissingDescriptorIsAnErrorOfItsCallAndNotAMissingName) {
    Registry own(mPath);
    ASSERT_EQ(own.take(kInterface, "default", reference(1)), OK);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{std::min<rlim_t>(before.rlim_cur, 256), before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<UniqueFd> all;
    for (int fd = dup(STDIN_FILENO); fd >= 0; fd = dup(STDIN_FILENO)) {
        all.emplace_back(fd);
    }
    // A look takes two, for the folder and the file; a list one more.
    for (const size_t left : {0, 1, 2, 3}) {
        std::vector<RegistryEntry> entries;
        ObjectReference result{};
        pid_t pid = 0;
        EXPECT_EQ(own.find(kInterface, "default", &result, &pid), left < 2 ? -EMFILE : OK) << left;
        EXPECT_EQ(own.list(&entries), left < 3 ? -EMFILE : OK) << left;
        EXPECT_EQ(entries.size(), left < 3 ? 0u : 1u) << left;
        all.pop_back();
    }
    all.clear();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}

/** Restores a registry's names until the end, as the platform thread does. */
class Keeper {
  public:
    explicit Keeper(Registry& registry) {
        int changes = -1;
        EXPECT_EQ(registry.changes(&changes), OK);
        mThread = std::thread([this, &registry, changes] {
            while (!mEnds) {
                pollfd waiting{changes, POLLIN, 0};
                if (poll(&waiting, 1, 10) > 0) {
                    registry.restore();
                }
            }
        });
    }
    ~Keeper() {
        mEnds = true;
        mThread.join();
    }

  private:
    std::atomic<bool> mEnds{false};
    std::thread mThread;
};

TEST_F(RegistryTest, AHeldNameComesBackWhateverIsDoneToItsFileOrFolder) {
    namespace fs = std::filesystem;
    const std::string other = mFolder + "/other";
    std::error_code quicker;  // a file may be back before its folder is gone
    struct Case {
        const char* name;
        std::function<void()> harm;
    };
    const Case cases[] = {
            {"file deleted", [&] { fs::remove(file()); }},
            {"file moved", [&] { fs::rename(file(), file("moved")); }},
            {"file replaced by another",
             [&] {
                 std::ofstream(other) << "x";
                 fs::rename(other, file());
             }},
            {"file replaced by a link",
             [&] {
                 fs::create_symlink("x", other);
                 fs::rename(other, file());
             }},
            {"folder deleted", [&] { fs::remove_all(mPath, quicker); }},
            {"folder moved", [&] { fs::rename(mPath, other); }},
            {"folder and its folder moved for a while",
             [&] {
                 fs::rename(mPath, mPath + "-gone");
                 fs::rename(mFolder, mFolder + "-gone");
                 usleep(50000);
                 fs::rename(mFolder + "-gone", mFolder);
             }},
            {"taken by a rival meanwhile",
             [&] {
                 fs::remove(file());
                 take(2);
             }},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        fs::remove_all(mFolder);
        fs::create_directory(mFolder);
        Registry own(mPath);
        const Keeper keeper(own);
        ASSERT_EQ(own.take(kInterface, "default", reference(1)), OK);
        Registry::Watch watch;
        ASSERT_EQ(watch.start(own), OK);
        each.harm();
        for (int i = 0; i < 1000 && found() != 1; ++i) {
            watch.wait(10);
        }
        EXPECT_EQ(found(), 1u);
        EXPECT_EQ(take(3), ALREADY_EXISTS);
        EXPECT_EQ(found("moved"), 0u);
        mRegistries.clear();
    }
}

TEST_F(RegistryTest, OfTwoHoldersOfANameTheFirstKeepsItAndTheOtherGivesItUp) {
    Registry first(mPath);
    Registry second(mPath);
    int changes = -1;
    ASSERT_EQ(first.changes(&changes), OK);
    ASSERT_EQ(second.changes(&changes), OK);
    ASSERT_EQ(first.take(kInterface, "default", reference(1)), OK);
    std::filesystem::remove(file());
    ASSERT_EQ(second.take(kInterface, "default", reference(2)), OK) << "the first has not noticed yet";
    second.restore();
    EXPECT_EQ(found(), 2u);
    first.restore();
    EXPECT_EQ(found(), 1u);
    pollfd waiting{changes, POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 0), 1);
    second.restore();
    first.release(kInterface, "default");
    second.restore();
    EXPECT_EQ(found(), 0u) << "the second has given it up for good";
}

TEST_F(RegistryTest, AFileThatNoHolderMadeIsNoName) {
    mkdir(mPath.c_str(), 0700);
    const std::string outside = mFolder + "/outside";
    std::ofstream(outside) << "precious";
    struct Case {
        const char* name;
        std::function<void()> make;
    };
    const Case cases[] = {
            {"link", [&] { EXPECT_EQ(symlink(outside.c_str(), file().c_str()), 0); }},
            {"pipe", [&] { EXPECT_EQ(mkfifo(file().c_str(), 0600), 0); }},
            {"folder", [&] { EXPECT_EQ(mkdir(file().c_str(), 0700), 0); }},
            {"another user's",
             [&] {
                 std::ofstream other(file());
                 EXPECT_EQ(chown(file().c_str(), 1, 1), 0);
             }},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        if (geteuid() != 0 && each.name == std::string("another user's")) {
            continue;  // it takes root to make one
        }
        each.make();
        EXPECT_EQ(found(), 0u);
        EXPECT_NE(take(1), OK);
        std::filesystem::remove_all(file());
    }
    EXPECT_EQ(std::filesystem::file_size(outside), 8u);
}

TEST_F(RegistryTest, ADamagedRecordIsNoName) {
    Registry own(mPath);
    ASSERT_EQ(own.take(kInterface, "default", reference(1)), OK);
    std::string good(std::filesystem::file_size(file()), '\0');
    std::ifstream(file()).read(good.data(), static_cast<std::streamsize>(good.size()));
    const auto rewrite = [&](const std::string& bytes, const std::string& instance = "default") {
        std::filesystem::resize_file(file(instance), 0);
        std::ofstream(file(instance), std::ios::in) << bytes;
    };
    ASSERT_EQ(own.take(kInterface, "other", reference(2)), OK);
    rewrite(good, "other");
    EXPECT_EQ(found("other"), 0u) << "it is another name's";
    for (size_t i = 0; i < good.size(); ++i) {
        std::string bad = good;
        bad[i] = static_cast<char>(bad[i] ^ 0x40);
        rewrite(bad);
        EXPECT_EQ(found(), 0u) << "byte " << i;
    }
    rewrite(good.substr(0, good.size() - 1));
    EXPECT_EQ(found(), 0u);
    rewrite("");
    EXPECT_EQ(found(), 0u);
    rewrite(good);
    EXPECT_EQ(found(), 1u);
}

TEST_F(RegistryTest, AWatchEndsForAnyRegistrationAfterItsStart) {
    Registry own(mPath);
    Registry::Watch watch;
    ASSERT_EQ(watch.start(own), OK);
    EXPECT_FALSE(watch.wait(0));
    EXPECT_EQ(own.take(kInterface, "default", reference(1)), OK);
    EXPECT_TRUE(watch.wait(0));  // it came before the wait
    EXPECT_EQ(found(), 1u);
    EXPECT_EQ(found("other"), 0u);
    EXPECT_FALSE(watch.wait(0)) << "looking is no change";
    const Child child([&] {
        usleep(20000);
        return take(2, "other");
    });
    // All wait by what one of them polls, which is now and then another.
    std::vector<std::thread> others;
    for (const int milliseconds : {1, 3, 10000, -1}) {
        others.emplace_back([&, milliseconds] {
            Registry::Watch mine;
            EXPECT_EQ(mine.start(own), OK);
            while (found("other") == 0) {
                EXPECT_TRUE(mine.wait(milliseconds) || milliseconds < 10);
            }
        });
    }
    while (found("other") == 0) {
        ASSERT_TRUE(watch.wait(10000));
    }
    for (std::thread& other : others) {
        other.join();
    }
    while (watch.wait(0)) {
    }
    own.release(kInterface, "default");
    EXPECT_TRUE(watch.wait(1000)) << "a name that is given up may be waited for";
}

/** Notes what it is told, and waits for it. */
class Notification : public ::android::hidl::manager::V1_0::IServiceNotification {
  public:
    Return<void> onRegistration(const hidl_string& fqName, const hidl_string& name,
                                bool preexisting) override {
        Return<void> result = then();
        const std::lock_guard lock(mLock);
        mTold.push_back(std::string(fqName) + "/" + std::string(name) +
                        (preexisting ? " was there" : " came"));
        mChanged.notify_all();
        return result;
    }
    std::vector<std::string> afterTelling(size_t count) {
        std::unique_lock lock(mLock);
        EXPECT_TRUE(mChanged.wait_for(lock, std::chrono::seconds(20), [&] { return mTold.size() >= count; }));
        return mTold;
    }

    std::function<Return<void>()> then = [] { return Void(); };  // before it is noted

  private:
    std::mutex mLock;
    std::condition_variable mChanged;
    std::vector<std::string> mTold;
};

TEST_F(RegistryTest, ANotificationIsCalledForWhatIsThereAndForEachLaterRegistration) {
    Registry own(mPath);
    auto* watched = new Registry(mPath);  // used by the notifications' thread until the process ends
    const sp<ServiceManager> manager = new ServiceManager(*watched, Backend::self().names());
    const sp<Notification> early = new Notification;
    const sp<Notification> late = new Notification;
    const std::string name = std::string(kInterface) + "/default";
    EXPECT_FALSE(bool(manager->registerForNotifications(kInterface, "no/name", early)));
    EXPECT_FALSE(bool(manager->registerForNotifications(kInterface, "default", nullptr)));
    ASSERT_TRUE(bool(manager->registerForNotifications(kInterface, "default", early)));
    ASSERT_EQ(own.take(kInterface, "other", reference(1)), OK);
    ASSERT_EQ(own.take(kInterface, "default", reference(2)), OK);
    EXPECT_EQ(early->afterTelling(1), (std::vector<std::string>{name + " came"}));
    ASSERT_TRUE(bool(manager->registerForNotifications(kInterface, "default", late)));
    EXPECT_EQ(late->afterTelling(1), (std::vector<std::string>{name + " was there"}));
    own.release(kInterface, "default");
    ASSERT_EQ(own.take(kInterface, "default", reference(3)), OK);
    EXPECT_EQ(early->afterTelling(2), (std::vector<std::string>{name + " came", name + " came"}));
    EXPECT_EQ(late->afterTelling(2), (std::vector<std::string>{name + " was there", name + " came"}));

    EXPECT_TRUE(
            manager->list([&](const hidl_vec<hidl_string>& names) {
                       EXPECT_EQ(names, (hidl_vec<hidl_string>{name, std::string(kInterface) + "/other"}));
                   })
                    .isOk());
}

TEST_F(RegistryTest, ANotificationTellsOfEachRegistrationOnceAndADeadListenerOfNoMore) {
    static std::mutex sGate;
    static std::atomic<bool> sWaits;
    Registry own(mPath);
    auto* watched = new Registry(mPath);
    const sp<ServiceManager> manager = new ServiceManager(*watched, Backend::self().names());
    const sp<Notification> alive = new Notification;
    const sp<Notification> dead = new Notification;
    const sp<Notification> last = new Notification;
    const sp<Notification> late = new Notification;
    dead->then = [] { return Return<void>(Status::fromStatusT(DEAD_OBJECT)); };
    last->then = [] {
        sWaits = true;
        const std::lock_guard passes(sGate);
        return Void();
    };
    const auto listen = [&](const sp<Notification>& to, const char* instance) {
        ASSERT_TRUE(bool(manager->registerForNotifications(kInterface, instance, to)));
    };
    listen(alive, "default");
    listen(dead, "default");
    listen(last, "last");
    size_t rounds = 0;
    const auto takeLast = [&] {
        own.release(kInterface, "last");
        ASSERT_EQ(own.take(kInterface, "last", reference(1)), OK);
    };
    // When the last has been told twice, all names were looked at meanwhile.
    const auto toldAlive = [&] {
        for (int i = 0; i < 2; ++i) {
            takeLast();
            last->afterTelling(++rounds);
        }
        return alive->afterTelling(0).size();
    };
    const ObjectReference same = reference(2);
    ASSERT_EQ(own.take(kInterface, "default", same), OK);
    EXPECT_EQ(toldAlive(), 1u);
    own.release(kInterface, "default");
    EXPECT_EQ(toldAlive(), 1u);
    ASSERT_EQ(own.take(kInterface, "default", same), OK);
    EXPECT_EQ(toldAlive(), 2u) << "it is there again";
    EXPECT_EQ(dead->afterTelling(0).size(), 1u);
    {
        const std::lock_guard waits(sGate);
        sWaits = false;
        takeLast();
        ASSERT_TRUE(eventually([] { return sWaits.load(); }));
        listen(late, "default");
        own.release(kInterface, "default");
        ASSERT_EQ(own.take(kInterface, "default", reference(3)), OK);
    }
    EXPECT_EQ(late->afterTelling(1), (std::vector<std::string>{std::string(kInterface) + "/default came"}))
            << "not the one that was there";
}

}  // namespace
}  // namespace android::hardware
