// The names of a device of the binder driver, with objects that stand for other processes'.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tools/hwservicemanager/Names.h"

using android::sp;
using android::hardware::hidl_death_recipient;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;
using android::hardware::Status;
using android::hardware::Void;
using android::hidl::base::V1_0::IBase;
using android::hidl::manager::V1_0::IServiceNotification;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** An object as its proxy shows it; its process dies when it is told to. */
template <class Interface>
struct Remote : Interface {
    bool isRemote() const override { return remote; }
    Return<void> setHALInstrumentation() override {
        return isDead ? Return<void>(Status::fromStatusT(android::DEAD_OBJECT)) : Void();
    }
    Return<bool> linkToDeath(const sp<hidl_death_recipient>& recipient, uint64_t number) override {
        mourner = recipient;
        cookie = number;
        return !isDead;
    }
    void die() {
        isDead = true;
        mourner->serviceDied(cookie, nullptr);
    }

    bool remote = true;
    bool isDead = false;
    sp<hidl_death_recipient> mourner;
    uint64_t cookie = 0;
};

struct Service : Remote<IBase> {
    explicit Service(std::vector<hidl_string> names) : chain(std::move(names)) {
        chain.emplace_back(IBase::descriptor);
    }
    Return<void> interfaceChain(interfaceChain_cb _hidl_cb) override {
        whileAsked();
        _hidl_cb(chain);
        return Void();
    }

    std::vector<hidl_string> chain;
    std::function<void()> whileAsked = [] {};
};

struct Listener : Remote<IServiceNotification> {
    Return<void> onRegistration(const hidl_string& fqName, const hidl_string& name,
                                bool preexisting) override {
        told.push_back(std::string(fqName) + "/" + std::string(name) + (preexisting ? " before" : ""));
        return Void();
    }

    std::vector<std::string> told;
};

class DriverNames : public testing::Test {
  protected:
    static sp<Service> service(std::vector<hidl_string> chain) { return new Service(std::move(chain)); }
    std::vector<std::string> listed() {
        std::vector<std::string> all;
        EXPECT_TRUE(names->list([&](const auto& found) { all.assign(found.begin(), found.end()); }).isOk());
        return all;
    }

    const sp<Names> names = new Names;
};

TEST_F(DriverNames, AnObjectHasAllItsNamesOrNone) {
    EXPECT_TRUE(names->add("one", service({"a@1.1::I", "a@1.0::I"})));
    EXPECT_FALSE(names->add("one", service({"a@1.2::I", "a@1.1::I"})));
    EXPECT_TRUE(names->add("two", service({"a@1.2::I", "a@1.1::I"})));
    EXPECT_THAT(listed(), ElementsAre("a@1.0::I/one", "a@1.1::I/one", "a@1.1::I/two", "a@1.2::I/two"));
    std::vector<std::string> instances;
    EXPECT_TRUE(names->listByInterface("a@1.1::I", [&](const auto& found) {
                         instances.assign(found.begin(), found.end());
                     }).isOk());
    EXPECT_THAT(instances, ElementsAre("one", "two"));
}

TEST_F(DriverNames, RefusesWhatIsNoServiceOfAnotherProcess) {
    const std::string longest(255, 'n');
    const sp<Service> own = service({"a@1.0::I"});
    own->remote = false;
    const sp<Service> dead = service({"a@1.0::I"});
    dead->isDead = true;
    EXPECT_FALSE(names->add("null", nullptr));
    EXPECT_FALSE(names->add("own", own));
    EXPECT_FALSE(names->add("dead", dead));
    EXPECT_FALSE(names->add("none", service({})));
    EXPECT_FALSE(names->add("long", service({longest + "n"})));
    EXPECT_FALSE(names->add(longest + "n", service({"a@1.0::I"})));
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_TRUE(names->add(longest, service({longest})));
}

TEST_F(DriverNames, WhatBelongsToADeadProcessGoesWithIt) {
    const sp<Service> first = service({"a@1.0::I"});
    const sp<Service> second = service({"a@1.0::I"});
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(names->add("one", first));
    ASSERT_TRUE(names->registerForNotifications("a@1.0::I", "", listener));
    // Its notice may come later than who takes its place.
    first->isDead = true;
    ASSERT_TRUE(names->add("one", second));
    first->die();
    EXPECT_THAT(listed(), ElementsAre("a@1.0::I/one"));
    listener->die();
    second->die();
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_TRUE(names->add("one", service({"a@1.0::I"})));
    EXPECT_THAT(listener->told, ElementsAre("a@1.0::I/one before", "a@1.0::I/one"));
}

TEST_F(DriverNames, ListenersAreToldOfTheirNamesAlone) {
    const sp<Listener> one = new Listener;
    const sp<Listener> any = new Listener;
    ASSERT_TRUE(names->add("one", service({"a@1.0::I"})));
    ASSERT_TRUE(names->registerForNotifications("a@1.0::I", "one", one));
    ASSERT_TRUE(names->registerForNotifications("a@1.0::I", "", any));
    ASSERT_TRUE(names->add("two", service({"a@1.1::I", "a@1.0::I"})));
    EXPECT_THAT(one->told, ElementsAre("a@1.0::I/one before"));
    EXPECT_THAT(any->told, ElementsAre("a@1.0::I/one before", "a@1.0::I/two"));
}

TEST_F(DriverNames, OneProcessDoesNotTakeAllTheRoom) {
    // Registrations that are answered by another one: as many as one process may have under way, then none.
    size_t inside = 0;
    std::function<void()> another = [&] {
        ++inside;
        const sp<Service> next = service({"a@1.0::I"});
        next->whileAsked = another;
        (void)names->add(std::to_string(inside), next).isOk();
    };
    for (int round = 0; round < 2; ++round, inside = 0) {
        another();
        EXPECT_EQ(Names::kMostAskedOfOne + 1, inside);
    }
    const sp<Listener> listener = new Listener;
    size_t registered = 0;
    while (registered < 4096 && names->registerForNotifications("none", "", listener)) {
        ++registered;
    }
    EXPECT_EQ(512u, registered);
    const std::string name(200, 'n');
    registered = 0;
    while (registered < 1024 && names->add(name + std::to_string(registered), service({name}))) {
        ++registered;
    }
    EXPECT_THAT(registered, testing::AllOf(testing::Gt(100u), testing::Lt(256u)));
}

}  // namespace
