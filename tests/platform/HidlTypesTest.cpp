#include <android/hidl/base/1.0/BpHwBase.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>
#include <hidl/TaskRunner.h>
#include <unistd.h>
#include <zvttv/test/probe/1.0/BnHwProbe.h>
#include <zvttv/test/probe/1.0/BnHwProbeListener.h>
#include <zvttv/test/probe/1.0/BpHwProbe.h>
#include <zvttv/test/probe/1.0/BpHwProbeListener.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/platform/MessageBuilder.h"
#include "tests/support/Descriptors.h"

namespace android::hardware {
namespace {

using zvttv::test::probe::V1_0::Colour;
using zvttv::test::probe::V1_0::Everything;
using zvttv::test::probe::V1_0::IProbe;
using zvttv::test::probe::V1_0::IProbeListener;

TEST(HidlString, HoldsTheBytesThatItWasGiven) {
    const std::string nulInside("a\0b", 3);
    struct Case {
        const char* name;
        hidl_string text;
        std::string expected;
    };
    const Case cases[] = {
            {"nothing", hidl_string(), ""},
            {"null", hidl_string(static_cast<const char*>(nullptr)), ""},
            {"C text", "text", "text"},
            {"part of a C text", hidl_string("text", 2), "te"},
            {"NUL inside", nulInside, nulInside},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(std::string(each.text), each.expected);
        EXPECT_EQ(each.text.c_str()[each.text.size()], '\0');
        const hidl_string copy = each.text;
        EXPECT_EQ(copy, each.expected);
        EXPECT_TRUE(copy.empty() || copy.c_str() != each.text.c_str());
    }
    EXPECT_TRUE(hidl_string("a") == "a" && "a" != hidl_string("b") && hidl_string("a") < hidl_string("b"));
}

TEST(HidlString, MayBeAssignedFromItself) {
    hidl_string text = "prefix and rest";
    text = text.c_str() + 11;
    EXPECT_EQ(text, "rest");
    const hidl_string& same = text;
    text = same;
    EXPECT_EQ(text, "rest");
}

TEST(HidlString, AForeignTextIsNeitherCopiedNorFreed) {
    char outside[] = "outside";
    hidl_string text = "own";
    text.setToExternal(outside, 7);
    EXPECT_EQ(text.c_str(), outside);
    hidl_string moved = std::move(text);
    EXPECT_EQ(moved.c_str(), outside);
    EXPECT_TRUE(text.empty());
    EXPECT_DEATH(moved.setToExternal(outside, 3), "does not end with NUL");
}

TEST(HidlVec, ResizingKeepsWhatFitsAndClearsTheRest) {
    uint16_t outside[] = {1, 2, 3};
    hidl_vec<uint16_t> numbers;
    numbers.setToExternal(outside, 3);
    numbers.resize(5);
    EXPECT_EQ(numbers, (hidl_vec<uint16_t>{1, 2, 3, 0, 0}));
    numbers[0] = 9;
    EXPECT_EQ(outside[0], 1);
    numbers.resize(2);
    EXPECT_EQ(numbers, (std::vector<uint16_t>{9, 2}));
    hidl_vec<uint16_t> moved = std::move(numbers);
    EXPECT_EQ(numbers.size(), 0u);
    EXPECT_EQ(moved.size(), 2u);
    moved.resize(0);
    EXPECT_EQ(moved.begin(), moved.end());
    EXPECT_DEATH(moved.resize(size_t{UINT32_MAX} + 1), "more than it can hold");
}

TEST(HidlVec, CopiesAreDeep) {
    hidl_vec<hidl_string> texts{"a", "b"};
    hidl_vec<hidl_string> copy = texts;
    copy[0] = "c";
    EXPECT_EQ(texts, (hidl_vec<hidl_string>{"a", "b"}));
    texts = {"x"};
    EXPECT_EQ(texts.size(), 1u);
    const std::vector<hidl_string> standard = copy;
    EXPECT_TRUE(standard.size() == 2 && standard[0] == "c" && copy != texts);
}

TEST(HidlHandle, ACopyHasDescriptorsOfItsOwnAndClosesThem) {
    native_handle_t* const native = native_handle_create(1, 0);
    native->data[0] = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const size_t before = openDescriptors(getpid());
    {
        hidl_handle handle;
        handle.setTo(native, true);
        const hidl_handle copy = handle;
        EXPECT_NE(copy->data[0], native->data[0]);
        EXPECT_EQ(openDescriptors(getpid()), before + 1);
    }
    EXPECT_EQ(openDescriptors(getpid()), before - 1);
}

TEST(HidlEnum, ARangeGivesEveryValueInDeclaredOrder) {
    std::vector<Colour> values;
    for (const Colour value : hidl_enum_range<Colour>()) {
        values.push_back(value);
    }
    EXPECT_EQ(values, (std::vector<Colour>{Colour::RED, Colour::GREEN, Colour::BLUE}));
}

TEST(HidlToString, ARecordIsShownWithAllItHolds) {
    Everything all{};
    all.u8 = 200;
    all.colour = Colour::BLUE;
    all.quad = hidl_array<uint8_t, 4>({1, 2, 3, 4});
    all.texts = {"x", "y"};
    all.leaves = {{true, -1, "leaf"}};
    all.tables = {{1, 2}, {}};
    const std::string text = toString(all);
    for (const char* part :
         {".u8 = 200", ".colour = BLUE", ".quad = {1, 2, 3, 4}", ".grid = {{0, 0, 0}, {0, 0, 0}}",
          ".texts = [2]{\"x\", \"y\"}", ".leaves = [1]{{.flag = true, .number = -1, .text = \"leaf\"}}",
          ".tables = [2]{[2]{1, 2}, [0]{}}"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
    }
    EXPECT_EQ(details::toHexString(int8_t{-1}), "0xff");
}

class Listener : public IProbeListener {
  public:
    Return<void> notice(uint32_t, const hidl_string&) override { return Void(); }
    Return<void> ask(const hidl_string&, ask_cb _hidl_cb) override {
        _hidl_cb("");
        return Void();
    }
};

TEST(Objects, ALocalObjectHasOneStubWhileAnybodyHoldsItAndANewOneLater) {
    const sp<IProbeListener> listener = new Listener;
    sp<IBinder> stub = toBinder(listener);
    EXPECT_EQ(toBinder(listener), stub);
    EXPECT_GT(listener->getStrongCount(), 1);
    const wp<IBinder> old = stub;
    stub.clear();
    EXPECT_EQ(old.promote(), nullptr);
    EXPECT_EQ(listener->getStrongCount(), 1);
    EXPECT_NE(toBinder(listener), nullptr);

    // Of two threads that make a stub at one time, the first wins; the other's ends.
    details::BnMap stubs;
    const sp<NoObject> first = new NoObject;
    const sp<NoObject> second = new NoObject;
    EXPECT_EQ(stubs.getOrSet(listener.get(), first), first);
    EXPECT_EQ(stubs.getOrSet(listener.get(), second), first);
    stubs.eraseIfEqual(listener.get(), second.get());
    EXPECT_EQ(stubs.get(listener.get()), first);
    stubs.eraseIfEqual(listener.get(), first.get());
    EXPECT_EQ(stubs.get(listener.get()), nullptr);
}

TEST(Objects, AnObjectOfAnotherInterfaceIsNoneOfTheOneAskedFor) {
    using namespace zvttv::test::probe::V1_0;
    using namespace ::android::hidl::base::V1_0;
    const sp<IProbeListener> listener = new Listener;
    const sp<IBinder> stub = toBinder(listener);
    const auto asListener = [](const sp<IBinder>& object) {
        return fromBinder<IProbeListener, BpHwProbeListener, BnHwProbeListener>(object);
    };
    EXPECT_EQ(asListener(stub), listener);
    EXPECT_EQ((fromBinder<IBase, BpHwBase, BnHwBase>(stub)), listener);
    EXPECT_EQ((fromBinder<IProbe, BpHwProbe, BnHwProbe>(stub)), nullptr);
    EXPECT_EQ(asListener(new NoObject), nullptr);
    EXPECT_EQ(asListener(nullptr), nullptr);
    EXPECT_EQ(sp<IProbe>(IProbe::castFrom(sp<IBase>(listener))), nullptr);
    EXPECT_EQ(sp<IProbeListener>(IProbeListener::castFrom(sp<IBase>(listener))), listener);
}

TEST(TaskRunner, RunsWhatItTookInOrderAndRefusesMoreThanItsLimit) {
    std::mutex lock;
    std::condition_variable changed;
    bool started = false;
    bool released = false;
    std::vector<int> done;
    {
        details::TaskRunner runner;
        runner.start(2);
        EXPECT_TRUE(runner.push([&] {
            std::unique_lock guard(lock);
            started = true;
            changed.notify_all();
            changed.wait(guard, [&] { return released; });
        }));
        std::unique_lock guard(lock);
        changed.wait(guard, [&] { return started; });
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(runner.push([&, i] {
                const std::lock_guard inner(lock);
                done.push_back(i);
                changed.notify_all();
            }),
                      i < 2);
        }
        released = true;
        changed.notify_all();
    }  // the runner ends first
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return done.size() == 2; });
    EXPECT_EQ(done, (std::vector<int>{0, 1}));
}

TEST(TaskRunner, WhatATaskHoldsEndsWithItAndMayPushTasks) {
    std::promise<void> released;
    std::promise<void> done;
    details::TaskRunner runner;
    runner.start(2);
    EXPECT_TRUE(runner.push(
            [waits = released.get_future().share(), held = std::shared_ptr<void>(nullptr, [&](void*) {
                                                        runner.push([&] { done.set_value(); });
                                                    })] { waits.wait(); }));
    released.set_value();
    EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

}  // namespace
}  // namespace android::hardware
