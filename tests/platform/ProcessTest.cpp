// What the runtime promises between real processes. The program is its own client and server: with --role it
// plays one of them.

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/ServiceManagement.h>
#include <sched.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utils/misc.h>
#include <zvttv/test/probe/1.0/IHandles.h>
#include <zvttv/test/probe/1.0/IProbe.h>
#include <zvttv/test/probe/1.0/ISpecialHandles.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

#include "platform/binding/Backend.h"
#include "platform/binding/Descriptors.h"
#include "platform/socket/Limits.h"
#include "platform/socket/Registry.h"
#include "platform/socket/Socket.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Descriptors.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Transport.h"

namespace {

using namespace std::chrono_literals;
using android::sp;
using android::wp;
using android::hardware::hidl_death_recipient;
using android::hardware::hidl_handle;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;
using android::hardware::Void;
using android::hidl::base::V1_0::DebugInfo;
using android::hidl::base::V1_0::IBase;
using android::hidl::manager::V1_0::IServiceManager;
using zvttv::test::probe::V1_0::Colour;
using zvttv::test::probe::V1_0::Everything;
using zvttv::test::probe::V1_0::IHandles;
using zvttv::test::probe::V1_0::IProbe;
using zvttv::test::probe::V1_0::IProbeListener;
using zvttv::test::probe::V1_0::ISpecialHandles;
using zvttv::test::probe::V1_0::Leaf;

// The server's side.

std::atomic<int> gPropertyChanges{0};

/** A native handle of some descriptors, which stay the owner's. */
class Handle {
  public:
    explicit Handle(const std::vector<int>& fds)
        : mHandle(native_handle_create(static_cast<int>(fds.size()), 1)) {
        std::copy(fds.begin(), fds.end(), mHandle->data);
        mHandle->data[fds.size()] = 77;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { native_handle_delete(mHandle); }
    operator hidl_handle() const { return hidl_handle(mHandle); }  // NOLINT(google-explicit-constructor)

  private:
    native_handle_t* const mHandle;
};

template <typename Interface>
class HandlesOf : public Interface {
  public:
    using Carrier = IHandles::Carrier;
    using echo_cb = IHandles::echo_cb;
    using make_cb = IHandles::make_cb;
    Return<void> echo(const hidl_handle& one, const hidl_vec<Carrier>& more, echo_cb _hidl_cb) override {
        _hidl_cb(one, more);
        return Void();
    }
    Return<void> make(make_cb _hidl_cb) override {
        _hidl_cb(Handle({STDIN_FILENO}));
        return Void();
    }
};
using Handles = HandlesOf<IHandles>;

class Probe : public IProbe {
  public:
    Probe() { ++sLiving; }
    ~Probe() override { --sLiving; }

    Return<void> debug(const hidl_handle& fd, const hidl_vec<hidl_string>& options) override {
        if (fd != nullptr && fd->numFds > 0) {
            dprintf(fd->data[0], "%zu options, properties changed %d times", options.size(),
                    gPropertyChanges.load());
        }
        return Void();
    }
    Return<void> mirror(const Everything& value, bool flag, const hidl_vec<Leaf>& leaves,
                        mirror_cb _hidl_cb) override {
        _hidl_cb(value, flag, leaves);
        return Void();
    }
    Return<void> blob(uint32_t size, blob_cb _hidl_cb) override {
        const std::vector<uint8_t> bytes(size, 0x5A);
        hidl_vec<uint8_t> result;
        result.setToExternal(const_cast<uint8_t*>(bytes.data()), bytes.size());
        _hidl_cb(result);
        return Void();
    }
    Return<bool> listen(const sp<IProbeListener>& listener) override {
        if (listener == nullptr) {
            return false;
        }
        const std::lock_guard<std::mutex> lock(mLock);
        const uint64_t cookie = 100 + mListened++;
        mListeners.emplace_back(cookie, listener);
        return bool(listener->linkToDeath(mRecipient, cookie));
    }
    Return<void> askBack(const sp<IProbeListener>& listener, const hidl_string& question,
                         askBack_cb _hidl_cb) override {
        hidl_string result;
        const Return<void> asked =
                listener->ask(question, [&](const hidl_string& answer) { result = answer; });
        _hidl_cb(asked.isOk() ? result : hidl_string("failed"));
        return Void();
    }
    Return<void> notify(uint32_t count, const hidl_string& text, notify_cb _hidl_cb) override {
        uint32_t delivered = 0;
        uint32_t failed = 0;
        const std::lock_guard<std::mutex> lock(mLock);
        for (uint32_t i = 0; i < count; ++i) {
            for (const auto& [cookie, listener] : mListeners) {
                (listener->notice(i, text).isOk() ? delivered : failed) += 1;
            }
        }
        _hidl_cb(delivered, failed);
        return Void();
    }
    Return<void> deaths(deaths_cb _hidl_cb) override {
        const std::lock_guard<std::mutex> lock(mRecipient->lock);
        _hidl_cb(mRecipient->cookies);
        return Void();
    }
    Return<void> note(uint32_t number) override {
        if (number == mRecipient->notes) {
            ++mRecipient->notes;
        }
        return Void();
    }
    Return<void> notes(notes_cb _hidl_cb) override {
        const std::lock_guard<std::mutex> lock(mRecipient->lock);
        _hidl_cb(mRecipient->notes, mRecipient->notesAtDeaths);
        return Void();
    }
    Return<void> sleep(uint32_t milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return Void();
    }
    Return<bool> keep(const sp<IProbe>& probe) override {
        const std::lock_guard<std::mutex> lock(mLock);
        mKept = probe;
        return true;
    }
    Return<bool> useKept() override {
        const std::lock_guard<std::mutex> lock(mLock);
        return mKept != nullptr && mKept->sleep(0).isOk();
    }
    Return<void> dropKept() override {
        const std::lock_guard<std::mutex> lock(mLock);
        mKept.clear();
        return Void();
    }
    Return<sp<IProbe>> child() override { return sp<IProbe>(new Probe); }
    Return<uint32_t> living() override { return sLiving.load(); }
    Return<bool> enrol(const hidl_string& name, bool itself) override {
        const sp<IProbe> probe = itself ? sp<IProbe>(this) : new Probe;
        return probe->registerAsService(name) == android::OK;
    }

  private:
    struct Recipient : hidl_death_recipient {
        void serviceDied(uint64_t cookie, const wp<IBase>&) override {
            const std::lock_guard<std::mutex> guard(lock);
            cookies.push_back(cookie);
            notesAtDeaths.push_back(notes);
        }
        std::mutex lock;
        std::vector<uint64_t> cookies;
        std::vector<uint32_t> notesAtDeaths;
        std::atomic<uint32_t> notes{0};  // in order
    };

    static inline std::atomic<uint32_t> sLiving{0};

    std::mutex mLock;
    std::vector<std::pair<uint64_t, sp<IProbeListener>>> mListeners;
    uint64_t mListened = 0;
    sp<IProbe> mKept;
    const sp<Recipient> mRecipient = new Recipient;
};

class Listener : public IProbeListener {
  public:
    Return<void> notice(uint32_t, const hidl_string&) override {
        ++mCount;
        return Void();
    }
    Return<void> ask(const hidl_string& question, ask_cb _hidl_cb) override {
        _hidl_cb(std::string(question) + "!");
        return Void();
    }

    uint32_t count() const { return mCount; }

  private:
    std::atomic<uint32_t> mCount{0};
};

int playServer(const std::string& name, bool fewDescriptors, size_t threads) {
    if (fewDescriptors) {
        const rlimit limit{48, 1024};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    android::hardware::configureRpcThreadpool(threads, true);
    android::add_sysprop_change_callback([] { ++gPropertyChanges; }, 0);
    const sp<IProbe> probe = new Probe;
    const sp<IHandles> handles = new Handles;
    int status = handles->registerAsService(name);
    status = status == 0 ? probe->registerAsService(name) : status;
    dprintf(STDOUT_FILENO, "%c", status == 0 ? 'r' : 'f');
    if (status != 0) {
        return 1;
    }
    android::hardware::joinRpcThreadpool();
    return 0;
}

int playListener(int count) {
    android::hardware::configureRpcThreadpool(2, false);
    const sp<IProbe> probe = IProbe::getService();
    for (int i = 0; i < count; ++i) {
        if (!probe->listen(new Listener).withDefault(false)) {
            return 1;
        }
    }
    dprintf(STDOUT_FILENO, "r");
    pause();
    return 0;
}

int playCaller() {
    const sp<IProbe> probe = IProbe::getService();
    const Return<void> result = probe->blob(100000, [](const hidl_vec<uint8_t>&) {});
    return result.isOk() ? 0 : 1;
}

/** Hands a child of the server's to the keeper, and ends at once. */
int playGiver() {
    const sp<IProbe> keeper = IProbe::getService("keeper");
    const sp<IProbe> child = IProbe::getService()->child().withDefault(nullptr);
    _exit(keeper->keep(child).withDefault(false) ? 0 : 1);
}

/** So many notes fit in a socket's buffer: they are out when the process that posted them is killed. */
constexpr uint32_t kNotes = 200;

/** Stops once its first note has come, then posts the others, and waits to be killed. */
int playPoster() {
    android::hardware::configureRpcThreadpool(1, false);
    const sp<IProbe> probe = IProbe::getService();
    bool sent = probe->listen(new Listener).withDefault(false);
    for (uint32_t i = 0; i < kNotes; ++i) {
        sent = probe->note(i).isOk() && sent;
        if (i == 0) {
            sent = eventually([&] {
                       uint32_t noted = 0;
                       const Return<void> asked =
                               probe->notes([&](uint32_t count, const auto&) { noted = count; });
                       return asked.isOk() && noted == 1;
                   }) &&
                   sent;
            raise(SIGSTOP);
        }
    }
    dprintf(STDOUT_FILENO, "%c", sent ? 'r' : 'f');
    pause();
    return 0;
}

/** Calls on as many connections as there may be: once and slowly, or for ever. */
int playBusy(bool forEver) {
    const sp<IProbe> probe = IProbe::getService();
    std::vector<std::thread> threads;
    std::atomic<int> failed{0};
    for (int i = 0; i < 16; ++i) {
        threads.emplace_back([&] {
            while (probe->sleep(forEver ? 0 : 300).isOk()) {
                if (!forEver) {
                    return;
                }
            }
            ++failed;
        });
    }
    dprintf(STDOUT_FILENO, "r");
    for (std::thread& thread : threads) {
        thread.join();
    }
    return failed;
}

/** Registers objects through the manager. Ends with the number of the step that failed, or 0. */
int playRegistrar() {
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    if (!manager->add("own", new Handles).withDefault(false)) {
        return 1;
    }
    if (manager->add("own", new Handles).withDefault(true)) {
        return 2;  // the name is taken
    }
    // The context manager asks the object itself, wherever it lives.
    const sp<IBase> anothers = manager->get(IProbe::descriptor, "default");
    if (manager->add("anothers", anothers).withDefault(!isOnBinder()) != isOnBinder() ||
        manager->add("null", nullptr).withDefault(true) ||
        (isOnBinder() && manager->add("manager", manager).withDefault(true))) {
        return 3;
    }
    hidl_vec<hidl_string> instances;
    const Return<void> listed =
            manager->listByInterface(IHandles::descriptor, [&](const auto& names) { instances = names; });
    return listed.isOk() && instances == hidl_vec<hidl_string>{"default", "own"} ? 0 : 4;
}

/** Registers an object of two interfaces where one name is taken, then another; and neither calls nor joins.
 */
int playSpecial() {
    android::hardware::configureRpcThreadpool(1, false);
    wp<ISpecialHandles> refused;
    {
        const sp<ISpecialHandles> special = new HandlesOf<ISpecialHandles>;
        refused = special;
        if (special->registerAsService() == android::OK) {
            return 1;
        }
    }
    const sp<ISpecialHandles> special = new HandlesOf<ISpecialHandles>;
    const bool registered = special->registerAsService("special") == android::OK;
    dprintf(STDOUT_FILENO, "%c", registered && refused.promote() == nullptr ? 'r' : 'f');
    return pause();
}

/** Registers objects that never say what they are: more than one process may, so that one is refused. */
int playMute() {
    struct Mute : Handles {
        Return<void> interfaceChain(interfaceChain_cb) override {
            pause();
            return Void();
        }
    };
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    std::vector<std::thread> threads;
    for (int i = 0; i < 5; ++i) {
        threads.emplace_back([&] {
            const Return<bool> added = manager->add("mute", new Mute);
            dprintf(STDOUT_FILENO, "%c", added.isOk() && !added ? 'r' : 'f');
        });
    }
    pause();
    return 0;
}

int playStranger() {
    constexpr uid_t kNobody = 65534;
    if (setresuid(kNobody, kNobody, kNobody) != 0) {
        return 2;
    }
    const auto manager = android::hardware::defaultServiceManager();
    const Return<void> listed = manager->list([](const auto&) {});
    return listed.isOk() ? 3 : listed.status().transactionError() == android::PERMISSION_DENIED ? 0 : 4;
}

// The test's side.

/** A process that plays a role. Its word is 'r' for ready, 'f' for failed. */
struct Player : ChildProcess {
    explicit Player(const std::string& role) : ChildProcess({"/proc/self/exe", "--role=" + role}) {}
    static Player ready(const std::string& role) {
        Player player(role);
        EXPECT_EQ('r', player.word());
        return player;
    }
};

class ProcessTest : public testing::Test {
  protected:
    sp<IProbe> start(const std::string& role = "server") {
        mServer.push_back(Player::ready(role));
        return IProbe::getService();
    }
    const Player& server() const { return mServer.back(); }
    static std::vector<uint64_t> deathsOf(const sp<IProbe>& probe) {
        std::vector<uint64_t> result;
        EXPECT_TRUE(probe->deaths([&](const hidl_vec<uint64_t>& cookies) { result = cookies; }).isOk());
        return result;
    }
    static std::pair<uint32_t, uint32_t> notify(const sp<IProbe>& probe, uint32_t count,
                                                const std::string& text) {
        std::pair<uint32_t, uint32_t> result;
        EXPECT_TRUE(probe->notify(count, text, [&](uint32_t delivered, uint32_t failed) {
                             result = {delivered, failed};
                         }).isOk());
        return result;
    }

    /** Over sockets, of a service that is there. */
    static android::hardware::Endpoint endpoint() {
        android::hardware::ObjectReference reference;
        pid_t pid = 0;
        EXPECT_EQ(android::OK, android::hardware::Registry(android::hardware::Registry::defaultPath())
                                       .find(IProbe::descriptor, "default", &reference, &pid));
        return reference.endpoint;
    }

    std::vector<Player> mServer;
};

TEST_F(ProcessTest, EveryKindOfValueTravelsBothWaysUnchanged) {
    const sp<IProbe> probe = start();
    Everything sent{};
    sent.u8 = 200;
    sent.s16 = -3;
    sent.u32 = 0xDEADBEEF;
    sent.real = 0.1;
    sent.colour = Colour::BLUE;
    sent.text = "ü text";
    sent.quad[3] = 9;
    sent.grid[1][2] = 65535;
    sent.bytes = {1, 0, 2};
    sent.texts = {"", "one", std::string(5000, 'x')};
    sent.leaves = {{true, INT64_MIN, "leaf"}, {false, 1, ""}};
    sent.tables = {{1, 2}, {}, {3}};
    for (const bool empty : {false, true}) {
        const Everything value = empty ? Everything{} : sent;
        const hidl_vec<Leaf> leaves = empty ? hidl_vec<Leaf>() : hidl_vec<Leaf>{{true, 5, "x"}};
        bool called = false;
        EXPECT_TRUE(probe->mirror(value, !empty, leaves,
                                  [&](const Everything& back, bool flag, const hidl_vec<Leaf>& leavesBack) {
                                      called = true;
                                      EXPECT_EQ(value, back);
                                      EXPECT_EQ(!empty, flag);
                                      EXPECT_EQ(leaves, leavesBack);
                                  })
                            .isOk());
        EXPECT_TRUE(called);
    }
}

TEST_F(ProcessTest, AnObjectTellsOfItself) {
    const sp<IProbe> probe = start();
    EXPECT_TRUE(probe->ping().isOk());
    EXPECT_TRUE(probe->setHALInstrumentation().isOk());
    EXPECT_TRUE(probe->notifySyspropsChanged().isOk());
    std::string name;
    EXPECT_TRUE(probe->interfaceDescriptor([&](const auto& is) { name = is; }).isOk());
    EXPECT_EQ(IProbe::descriptor, name);
    std::vector<std::string> chain;
    EXPECT_TRUE(probe->interfaceChain([&](const auto& all) { chain.assign(all.begin(), all.end()); }).isOk());
    EXPECT_EQ((std::vector<std::string>{IProbe::descriptor, IBase::descriptor}), chain);
    size_t hashes = 0;
    EXPECT_TRUE(probe->getHashChain([&](const auto& all) { hashes = all.size(); }).isOk());
    EXPECT_EQ(chain.size(), hashes);
    DebugInfo info{};
    EXPECT_TRUE(probe->getDebugInfo([&](const DebugInfo& told) { info = told; }).isOk());
    EXPECT_EQ(server().pid(), info.pid);
    EXPECT_NE(0u, info.ptr);
    EXPECT_EQ(DebugInfo::Architecture::IS_64BIT, info.arch);

    int page[2];
    ASSERT_EQ(0, pipe2(page, O_CLOEXEC | O_NONBLOCK));
    const Handle out({page[1]});
    const auto isPrinted = [&](const std::string& wanted) {
        char text[100] = {};
        EXPECT_TRUE(probe->debug(out, {"two", "options"}).isOk());
        return read(page[0], text, sizeof(text) - 1) > 0 && text == wanted;
    };
    EXPECT_TRUE(eventually([&] { return isPrinted("2 options, properties changed 1 times"); }));
    EXPECT_TRUE(probe->debug(nullptr, {}).isOk());
    close(page[1]);
    EXPECT_TRUE(eventually([&] {
        char byte;
        return read(page[0], &byte, 1) == 0;
    })) << "the server has closed its own";
    close(page[0]);
}

TEST_F(ProcessTest, AServiceIsFoundInEveryWayThatTheManagerOffers) {
    start();
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    const sp<IBase> found = manager->get(IProbe::descriptor, "default");
    ASSERT_NE(nullptr, found);
    EXPECT_NE(nullptr, sp<IProbe>(IProbe::castFrom(found)));
    EXPECT_EQ(nullptr, sp<IBase>(manager->get(IProbe::descriptor, "other")));
    using Transport = IServiceManager::Transport;
    EXPECT_EQ(Transport::HWBINDER, Transport(manager->getTransport(IProbe::descriptor, "default")));
    for (const char* none : {"other", "no/name", ""}) {
        EXPECT_EQ(Transport::EMPTY, Transport(manager->getTransport(IProbe::descriptor, none)));
    }
    bool dumped = false;
    EXPECT_TRUE(manager->debugDump([&](const auto& all) {
                           for (const auto& each : all) {
                               dumped = dumped || (each.interfaceName == IProbe::descriptor &&
                                                   each.pid == server().pid() &&
                                                   each.arch == DebugInfo::Architecture::IS_64BIT);
                           }
                       })
                        .isOk());
    EXPECT_TRUE(dumped);
    EXPECT_EQ(0, Player("registrar").wait());
    if (isOnBinder()) {
        const sp<IProbe> probe = IProbe::tryGetService("anothers");
        ASSERT_NE(nullptr, probe) << "a name lasts as long as its object, not as who registered it";
        EXPECT_FALSE(probe->enrol("anothers", false).withDefault(true));
    }
    EXPECT_TRUE(manager->registerPassthroughClient(IProbe::descriptor, "default").isOk());
}

TEST_F(ProcessTest, AnObjectIsRegisteredUnderAllItsInterfacesOrNone) {
    ONLY_OVER_SOCKETS();
    start();
    const Player special = Player::ready("special");
    EXPECT_EQ(nullptr, ISpecialHandles::tryGetService()) << "of a refused one, the other name is free";
    const sp<ISpecialHandles> found = ISpecialHandles::tryGetService("special");
    ASSERT_NE(nullptr, found);
    EXPECT_TRUE(found->ping().isOk());
    EXPECT_NE(nullptr, IHandles::tryGetService("special"));
}

TEST_F(ProcessTest, AServiceThatCanNotBeReachedIsTriedAgain) {
    ONLY_OVER_SOCKETS();
    const android::hardware::Endpoint target = android::hardware::randomEndpoint();
    android::hardware::Registry registry(android::hardware::Registry::defaultPath());
    ASSERT_EQ(android::OK, registry.take(IProbe::descriptor, "slow", {target, 1, 1}));
    const LogCapture log;
    std::atomic<bool> isFound{false};
    std::thread waiter([&] {
        isFound = android::hardware::Backend::self().names().get(IProbe::descriptor, "slow", true) != nullptr;
    });
    EXPECT_TRUE(eventually([&] { return log.contains("waiting for"); }));
    const android::hardware::UniqueFd listening = android::hardware::listenOn(target);
    EXPECT_TRUE(eventually([&] { return isFound.load(); })) << "though nothing changes in the registry";
    EXPECT_EQ(android::OK, registry.take(IProbe::descriptor, "change", {target, 1, 1}));
    waiter.join();
}

TEST_F(ProcessTest, RegistrantsThatNeverAnswerLeaveTheManagerToOthers) {
    ONLY_ON_BINDER();
    std::vector<Player> mutes;
    const auto addMute = [&] {
        mutes.emplace_back("mute");
        EXPECT_EQ('r', mutes.back().word()) << "the fifth of a process is refused";
    };
    for (int i = 0; i < 7; ++i) {
        addMute();
    }
    const sp<IProbe> probe = start();
    EXPECT_NE(nullptr, probe);
    addMute();
    EXPECT_EQ('f', Player("keeper").word()) << "now all that may wait do so";
    EXPECT_NE(nullptr, IProbe::tryGetService());
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    EXPECT_TRUE(manager->list([](const auto& names) { EXPECT_EQ(2u, names.size()); }).isOk());
    mutes.clear();
    EXPECT_TRUE(eventually([] { return Player("keeper").word() == 'r'; }));
}

/** What a descriptor leads to, and the integer of its handle. */
std::string whatIs(const hidl_handle& handle) {
    if (handle == nullptr) {
        return "null";
    }
    std::string text;
    for (int i = 0; i < handle->numFds; ++i) {
        const std::string link = "/proc/self/fd/" + std::to_string(handle->data[i]);
        const bool closes = (fcntl(handle->data[i], F_GETFD) & FD_CLOEXEC) != 0;
        text += std::filesystem::read_symlink(link).string() + (closes ? " " : "! ");
    }
    return text + std::to_string(handle->data[handle->numFds]);
}

/** Lets a process open so many more descriptors; gives what it may otherwise. */
rlimit leaveRoom(pid_t pid, size_t room) {
    rlimit usual{};
    prlimit(pid, RLIMIT_NOFILE, nullptr, &usual);
    rlimit limit{0, usual.rlim_max};
    const std::filesystem::path open = "/proc/" + std::to_string(pid) + "/fd";
    for (;; ++limit.rlim_cur) {
        if (!std::filesystem::exists(symlink_status(open / std::to_string(limit.rlim_cur))) && room-- == 0) {
            break;
        }
    }
    prlimit(pid, RLIMIT_NOFILE, &limit, nullptr);
    return usual;
}

TEST_F(ProcessTest, DescriptorsTravelBothWaysAndAreClosedWhateverBecomesOfThem) {
    start();
    const sp<IHandles> handles = IHandles::getService();
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int zero = open("/dev/zero", O_RDONLY | O_CLOEXEC);
    const auto fds = [&](size_t count) {
        std::vector<int> all(count, null);
        std::fill(all.begin(), all.begin() + static_cast<ptrdiff_t>(count / 2), zero);
        return all;
    };
    ASSERT_TRUE(handles->ping().isOk());
    size_t ours = openDescriptors(getpid());
    size_t theirs = openDescriptors(server().pid());
    const auto isKept = [&] {
        return eventually([&] {
            return openDescriptors(getpid()) == ours && openDescriptors(server().pid()) == theirs;
        });
    };
    // As many as a message may have, in arguments, records and results; then calls without.
    const size_t most = android::hardware::kMaxDescriptors;
    const Handle one(fds(2));
    const Handle rest(fds(most - 3));
    const Handle last(fds(1));
    const Handle empty({});
    hidl_vec<IHandles::Carrier> more;
    more.resize(4);
    more[0].fds = rest;
    more[2] = {"two", empty};
    more[3] = {"three", last};
    for (int round = 0; round < 20; ++round) {
        bool called = false;
        EXPECT_TRUE(handles->echo(one, more,
                                  [&](const hidl_handle& back, const auto& moreBack) {
                                      called = true;
                                      EXPECT_EQ("/dev/zero /dev/null 77", whatIs(back));
                                      EXPECT_EQ(whatIs(rest), whatIs(moreBack[0].fds));
                                      EXPECT_EQ("null", whatIs(moreBack[1].fds));
                                      EXPECT_EQ("77", whatIs(moreBack[2].fds));
                                      EXPECT_EQ("/dev/null 77", whatIs(moreBack[3].fds));
                                      EXPECT_EQ("three", moreBack[3].name);
                                  })
                            .isOk());
        EXPECT_TRUE(called);
        EXPECT_TRUE(handles->echo(nullptr, {},
                                  [](const hidl_handle& back, const auto&) { EXPECT_EQ(nullptr, back); })
                            .isOk());
    }
    EXPECT_TRUE(isKept());

    // Refused, each at no cost to the others.
    const auto ignored = [](const auto&...) {};
    EXPECT_FALSE(handles->echo(Handle(fds(most + 1)), {}, ignored).isOk());
    const int closed = dup(null);
    close(closed);
    EXPECT_FALSE(handles->echo(Handle({null, closed}), {}, ignored).isOk());
    EXPECT_EQ(isOnBinder(), handles->make(ignored).isOk())
            << "over sockets, results have descriptors only where arguments had";
    EXPECT_TRUE(isKept());
    const rlimit usual = leaveRoom(server().pid(), 0);
    const size_t needed = isOnBinder() ? 4 : 2;  // the driver's own, and a copy of each
    for (size_t room = 0; room <= needed; ++room) {
        leaveRoom(server().pid(), room);
        const Return<void> echoed = handles->echo(one, {}, ignored);
        EXPECT_EQ(room >= needed, echoed.isOk()) << room;
        EXPECT_EQ(room >= needed      ? android::OK
                  : room < needed - 2 ? android::FAILED_TRANSACTION
                                      : -EMFILE,
                  echoed.isOk() ? android::OK : echoed.status().transactionError())
                << room;
    }
    prlimit(server().pid(), RLIMIT_NOFILE, &usual, nullptr);
    EXPECT_TRUE(isKept());
    close(null);
    close(zero);
}

TEST_F(ProcessTest, AResultThatNoMessageCarriesIsATransportErrorForItsCallAlone) {
    const sp<IProbe> probe = start();
    bool called = false;
    const Return<void> result = probe->blob(2 * 1024 * 1024, [&](const auto&) { called = true; });
    EXPECT_FALSE(result.isOk());
    EXPECT_FALSE(result.isDeadObject());
    EXPECT_FALSE(called);
    size_t size = 0;
    EXPECT_TRUE(probe->blob(900 * 1024, [&](const auto& bytes) { size = bytes.size(); }).isOk());
    EXPECT_EQ(900u * 1024, size);
}

/** Kills who calls it, and answers all the same. */
class Avenger : public Listener {
  public:
    explicit Avenger(pid_t caller) : mCaller(caller) {}
    Return<void> ask(const hidl_string& question, ask_cb _hidl_cb) override {
        kill(mCaller, SIGKILL);
        siginfo_t ended;
        waitid(P_PID, static_cast<id_t>(mCaller), &ended, WEXITED | WNOWAIT);
        usleep(100'000);  // until a transport can know
        _hidl_cb(question);
        return Void();
    }

  private:
    const pid_t mCaller;
};

TEST_F(ProcessTest, AServiceMayCallItsClientBackAndTheCallEndsIfItDiesMeanwhile) {
    const sp<IProbe> probe = start();
    std::string answer;
    EXPECT_TRUE(probe->askBack(new Listener, "well", [&](const hidl_string& text) { answer = text; }).isOk());
    EXPECT_EQ("well!", answer);
    EXPECT_TRUE(probe->askBack(new Avenger(mServer.back().pid()), "well", [](const auto&) {}).isDeadObject());
}

TEST_F(ProcessTest, EachLinkOfAKilledClientReportsItsOwnCookie) {
    const sp<IProbe> probe = start();
    Player one = Player::ready("listener1");
    Player two = Player::ready("listener2");
    Player three = Player::ready("listener1");
    two.stop(SIGKILL);
    EXPECT_TRUE(eventually([&] { return deathsOf(probe).size() == 2; }));
    std::vector<uint64_t> cookies = deathsOf(probe);
    std::sort(cookies.begin(), cookies.end());
    EXPECT_EQ((std::vector<uint64_t>{101, 102}), cookies);
    EXPECT_EQ(std::pair(2u, 2u), notify(probe, 1, "x")) << "only the dead one's deliveries fail";
}

TEST_F(ProcessTest, ANameCanBeTakenAgainFromADeadProcessButNotFromALiveOne) {
    sp<IProbe> probe = start();
    const std::filesystem::path folder = getenv("HIDL_RUNTIME_DIR");
    std::error_code quicker;  // a file may be back before its folder is gone
    std::vector<std::function<void()>> harms{[] {}};
    if (!isOnBinder()) {
        harms.emplace_back(
                [&] { std::filesystem::remove(folder / (std::string(IProbe::descriptor) + "+default")); });
        harms.emplace_back([&] { std::filesystem::remove_all(folder, quicker); });
    }
    for (const auto& harm : harms) {
        harm();
        EXPECT_TRUE(eventually([] { return IProbe::tryGetService() != nullptr; }));
        Player rival("server");
        EXPECT_EQ('f', rival.word());
        EXPECT_EQ(1, rival.wait());
    }
    mServer.back().stop(SIGKILL);
    const Return<void> late = probe->blob(1, [](const auto&) {});
    EXPECT_TRUE(late.isDeadObject());
    EXPECT_TRUE(eventually([] { return IProbe::tryGetService() == nullptr; }));
    probe = start();
    EXPECT_TRUE(probe->blob(1, [](const auto&) {}).isOk());
}

TEST_F(ProcessTest, GetServiceWaitsForTheService) {
    sp<IProbe> found;
    std::thread waiter([&] { found = IProbe::getService(); });
    std::this_thread::sleep_for(50ms);
    mServer.emplace_back("server");
    waiter.join();
    EXPECT_NE(nullptr, found);
    EXPECT_TRUE(found->blob(1, [](const auto&) {}).isOk());
}

TEST_F(ProcessTest, RunningOutOfDescriptorsRefusesConnectionsAndNothingElse) {
    ONLY_OVER_SOCKETS();
    const sp<IProbe> probe = start("poor-server");
    EXPECT_TRUE(probe->blob(1, [](const auto&) {}).isOk());
    {
        std::vector<android::hardware::UniqueFd> connections;
        for (int i = 0; i < 100; ++i) {
            android::hardware::Credentials credentials;
            connections.push_back(android::hardware::connectTo(endpoint(), &credentials));
        }
        EXPECT_TRUE(eventually([&] {
            return std::count_if(connections.begin(), connections.end(), [](const auto& each) {
                       char byte;
                       return recv(each.get(), &byte, 1, MSG_DONTWAIT) == 0;
                   }) > 50;
        })) << "what has no room is hung up on at once";
        EXPECT_TRUE(probe->blob(1, [](const auto&) {}).isOk()) << "who is connected is served";
    }
    EXPECT_TRUE(eventually([] { return Player("caller").wait() == 0; }))
            << "and others again once there is room";
}

TEST_F(ProcessTest, AReferenceOutlivesTheProcessThatHandedItOn) {
    const sp<IProbe> probe = start();
    Player keeper = Player::ready("keeper");
    const sp<IProbe> toKeeper = IProbe::getService("keeper");
    for (int i = 0; i < 30; ++i) {
        ASSERT_EQ(0, Player("giver").wait());
        ASSERT_TRUE(toKeeper->useKept().withDefault(false)) << i;
    }
    EXPECT_TRUE(eventually([&] { return probe->living() == 2u; })) << probe->living();
    EXPECT_TRUE(toKeeper->useKept().withDefault(false));
    EXPECT_TRUE(toKeeper->dropKept().isOk());
    EXPECT_TRUE(eventually([&] { return probe->living() == 1u; }));
}

TEST_F(ProcessTest, ASecondRegistrationLeavesTheFirstIntact) {
    const sp<IProbe> probe = start();
    Player keeper = Player::ready("keeper");
    for (const char* name : {"default", "second", "second", "keeper"}) {
        const bool taken = std::string(name) == "keeper";
        for (const bool itself : {true, false}) {
            const Return<bool> enrolled = probe->enrol(name, itself);
            ASSERT_TRUE(enrolled.isOk());
            EXPECT_TRUE(!taken || !enrolled) << name;
            for (const char* each : {"default", "keeper"}) {
                const sp<IProbe> found = IProbe::tryGetService(each);
                EXPECT_TRUE(found != nullptr && found->sleep(0).isOk()) << name << " " << each;
            }
        }
    }
    EXPECT_TRUE(probe->sleep(0).isOk());
    EXPECT_TRUE(IProbe::tryGetService("second")->sleep(0).isOk());
}

TEST_F(ProcessTest, ADeathIsReportedAfterAllThatTheDeadSentBefore) {
    ONLY_OVER_SOCKETS();
    const sp<IProbe> probe = start();
    Player poster("poster");
    ASSERT_EQ(poster.pid(), waitpid(poster.pid(), nullptr, WUNTRACED));
    server().signal(SIGSTOP);
    poster.signal(SIGCONT);
    EXPECT_EQ('r', poster.word());
    poster.stop(SIGKILL);
    server().signal(SIGCONT);
    ASSERT_TRUE(eventually([&] { return deathsOf(probe).size() == 1; }));
    EXPECT_TRUE(probe->notes([](uint32_t count, const hidl_vec<uint32_t>& atDeaths) {
                         EXPECT_EQ(kNotes, count);
                         EXPECT_EQ((std::vector<uint32_t>{kNotes}), std::vector<uint32_t>(atDeaths));
                     }).isOk());
}

TEST_F(ProcessTest, OneProcessLeavesThreadsToOthers) {
    ONLY_OVER_SOCKETS();
    const sp<IProbe> probe = start("large-server");
    for (const char* role : {"hog", "looper"}) {
        Player busy = Player::ready(role);
        EXPECT_TRUE(eventually([&] {
            return std::distance(std::filesystem::directory_iterator(
                                         "/proc/" + std::to_string(server().pid()) + "/task"),
                                 std::filesystem::directory_iterator()) >= 8;
        })) << "it has what it may have";
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < 10; ++i) {
            EXPECT_TRUE(probe->sleep(0).isOk());
        }
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 250ms) << role;
        if (role == std::string("hog")) {
            EXPECT_EQ(0, busy.wait()) << "its calls are served in turn";
        }
    }
}

TEST_F(ProcessTest, AClientOfAServiceThatRestartsGathersNothing) {
    size_t before = 0;
    for (int i = 0; i < 21; ++i) {
        sp<IProbe> probe = start();
        ASSERT_TRUE(probe->sleep(0).isOk());
        probe.clear();
        mServer.clear();
        before = i == 0 ? openDescriptors(getpid()) : before;
    }
    EXPECT_LE(openDescriptors(getpid()), before + 1);
}

TEST_F(ProcessTest, AServiceThatDiedMayBeLetGoInItsResultCallback) {
    for (int i = 0; i < 10; ++i) {
        sp<IProbe> probe = start();
        bool called = false;
        const Return<void> result = probe->blob(100, [&](const hidl_vec<uint8_t>& bytes) {
            called = true;
            mServer.clear();
            probe.clear();
            EXPECT_EQ(0x5A, bytes[99]);
        });
        EXPECT_TRUE(result.isOk() && called);
    }
}

TEST_F(ProcessTest, AForkedChildIsAProcessOfItsOwn) {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    SUCCEED() << "the sanitizer lets no thread start in a child of a process with threads";
    return;
#endif
#endif
    const sp<IProbe> probe = start();
    const sp<Listener> mine = new Listener;
    ASSERT_TRUE(probe->listen(mine).withDefault(false));
    ChildProcess child([&] {
        const Return<void> slept = probe->sleep(0);
        const bool refused = !slept.isOk() && slept.status().transactionError() == android::INVALID_OPERATION;
        const sp<IProbe> own = IProbe::tryGetService();
        const bool served = own != nullptr && own->sleep(0).isOk();
        return !refused ? 2 : !served ? 3 : 0;
    });
    EXPECT_TRUE(probe->sleep(0).isOk());
    EXPECT_EQ(0, child.wait()) << "2: its parent's proxy works, 3: its own does not";
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(probe->sleep(1).isOk());
    }
    EXPECT_EQ(std::pair(5u, 0u), notify(probe, 5, "x"));
    EXPECT_TRUE(eventually([&] { return mine->count() == 5; }));
    EXPECT_TRUE(deathsOf(probe).empty());
}

TEST_F(ProcessTest, ProcessesOfOtherPidNamespacesAreAllServed) {
    const std::vector<std::string> apart{"/usr/bin/unshare", "--pid", "--fork", "--kill-child"};
    const auto unshared = [&](std::vector<std::string> command) {
        command.insert(command.begin(), apart.begin(), apart.end());
        return ChildProcess(command);
    };
    if (unshared({"/bin/true"}).wait() != 0) {
        SUCCEED() << "no PID namespaces here";
        return;
    }
    const sp<IProbe> probe = start();
    std::vector<ChildProcess> spaces;
    for (int i = 0; i < 9; ++i) {
        spaces.push_back(unshared({std::filesystem::read_symlink("/proc/self/exe"), "--role=listener1"}));
    }
    for (const ChildProcess& each : spaces) {
        EXPECT_EQ('r', each.word());
    }
    EXPECT_EQ(std::pair(9u, 0u), notify(probe, 1, "x"));
    spaces.clear();
    EXPECT_TRUE(eventually([&] { return deathsOf(probe).size() == 9; }));
}

TEST_F(ProcessTest, LackOfDescriptorsForOneWayMessagesIsNoDeath) {
    ONLY_OVER_SOCKETS();
    const sp<IProbe> probe = start("poor-server");
    ASSERT_TRUE(probe->sleep(0).isOk());
    struct Counter : hidl_death_recipient {
        void serviceDied(uint64_t, const wp<IBase>&) override { ++count; }
        std::atomic<int> count{0};
    };
    const sp<Counter> deaths = new Counter;
    const auto allow = [](pid_t pid, rlim_t most) {
        const rlimit limit{most, 1024};
        EXPECT_EQ(0, prlimit(pid, RLIMIT_NOFILE, &limit, nullptr));
    };
    {
        // A sanitizer looks at the objects of a new type through a pipe: it is to know them by now.
        Player keeper = Player::ready("keeper");
        EXPECT_TRUE(IProbe::getService("keeper")->linkToDeath(new Counter, 1).withDefault(false));
        // Of this process: the link fails and can be tried again.
        rlimit usual{};
        getrlimit(RLIMIT_NOFILE, &usual);
        const rlimit none{3, usual.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        const Return<bool> linked = probe->linkToDeath(deaths, 1);
        setrlimit(RLIMIT_NOFILE, &usual);
        EXPECT_FALSE(linked.withDefault(false));
        EXPECT_FALSE(linked.isDeadObject());
    }
    allow(server().pid(), 3);  // below what it has open: no more
    EXPECT_TRUE(probe->linkToDeath(deaths, 1).withDefault(false));
    for (uint32_t i = 0; i < 100; ++i) {
        EXPECT_TRUE(probe->note(i).isOk());
    }
    std::this_thread::sleep_for(200ms);  // some attempts
    EXPECT_EQ(0, deaths->count);
    EXPECT_TRUE(probe->sleep(0).isOk());
    allow(server().pid(), 1024);
    EXPECT_TRUE(eventually([&] {
        uint32_t noted = 0;
        EXPECT_TRUE(probe->notes([&](uint32_t count, const auto&) { noted = count; }).isOk());
        return noted == 100;
    })) << "all arrive, in order";
    EXPECT_EQ(0, deaths->count);
    mServer.clear();
    EXPECT_TRUE(eventually([&] { return deaths->count == 1; }));
    EXPECT_FALSE(probe->linkToDeath(deaths, 2).withDefault(false)) << "a link that comes too late";
    EXPECT_EQ(1, deaths->count);
}

TEST_F(ProcessTest, AProcessOfAnotherUserIsRefused) {
    if (geteuid() != 0) {
        SUCCEED() << "only root can play another user";
        return;
    }
    const sp<IProbe> probe = start();
    if (isOnBinder()) {
        // Who may open the device is up to its owner; who calls is up to us.
        ASSERT_EQ(0, chmod("/dev/hwbinder", 0666));
        EXPECT_EQ(0, Player("stranger").wait()) << "0: refused";
        ASSERT_EQ(0, chmod("/dev/hwbinder", 0600));
        return;
    }
    ChildProcess stranger([target = endpoint()] {
        constexpr uid_t kNobody = 65534;
        if (setresuid(kNobody, kNobody, kNobody) != 0) {
            return 2;
        }
        // The listener is root's, so this side has nothing against it.
        android::hardware::Credentials credentials;
        const android::hardware::UniqueFd fd = android::hardware::connectTo(target, &credentials);
        char byte;
        return !fd.ok() ? 3 : read(fd.get(), &byte, 1) == 0 ? 0 : 4;
    });
    EXPECT_EQ(0, stranger.wait()) << "0: hung up on";
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<int()>> roles{
            {"server", [] { return playServer("default", false, 4); }},
            {"poor-server", [] { return playServer("default", true, 4); }},
            {"large-server", [] { return playServer("default", false, 10); }},
            {"keeper", [] { return playServer("keeper", false, 2); }},
            {"listener1", [] { return playListener(1); }},
            {"listener2", [] { return playListener(2); }},
            {"giver", playGiver},
            {"poster", playPoster},
            {"hog", [] { return playBusy(false); }},
            {"looper", [] { return playBusy(true); }},
            {"registrar", playRegistrar},
            {"caller", playCaller},
            {"mute", playMute},
            {"special", playSpecial},
            {"stranger", playStranger},
    };
    const std::string role = argc > 1 ? argv[1] : "";
    if (role.rfind("--role=", 0) == 0) {
        return roles.at(role.substr(7))();
    }
    testing::InitGoogleTest(&argc, argv);
    // A registry of our own; the tests share it, as a process opens it once.
    char folder[] = "/tmp/hidl-test-XXXXXX";
    if (mkdtemp(folder) == nullptr || setenv("HIDL_RUNTIME_DIR", folder, 1) != 0) {
        perror("mkdtemp");
        return 1;
    }
    android::hardware::configureRpcThreadpool(2, false);
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
