// What holds for the tables of both packages, and for services that do not answer as they should.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/tools/TestPackage.h"
#include "tests/tools/Thing.h"
#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/FactoryPackage.h"

namespace fapictl {
namespace {

using android::hardware::hidl_string;
using android::hardware::Return;
using android::hardware::Void;
using test::fapictl::V1_0::Everything;

TEST(Names, ShortFormsAlwaysLeadBackToTheirMethod) {
    for (const Package* package : {&testPackage(), &factoryPackage()}) {
        for (const Interface& interface : package->interfaces) {
            EXPECT_EQ(&findInterface(*package, shortName(interface)), &interface);
            for (const Method& method : interface.methods) {
                EXPECT_EQ(&findMethod(interface, shortName(interface, method)), &method) << method.name;
            }
        }
    }
}

TEST(Names, AWholeNameMeansItsMethodThoughItIsAnothersShortForm) {
    Interface interface = findInterface(testPackage(), "Thing");
    interface.methods.push_back(findMethod(interface, "text"));
    interface.methods.back().name = "text";
    EXPECT_EQ(findMethod(interface, "Text").name, "text");
}

/** Whether a bool stands in a record of the type, however deep. */
bool holdsBool(const Type& type, bool inRecord = false) {
    return (type.kind == Type::Kind::Boolean && inRecord) ||
           (type.element != nullptr && holdsBool(*type.element, inRecord)) ||
           std::any_of(type.fields.begin(), type.fields.end(),
                       [](const Field& field) { return holdsBool(*field.type, true); });
}

TEST(FactoryPackage, HasNoBoolInARecordThatTheServiceOrAListenerReceives) {
    // The runtime makes a peer's byte true or false where a bool is an argument or an element, but it does
    // not know the fields of a record. Who has one of those results reads the byte, as this tool does.
    std::vector<std::string> results;
    for (const Interface& interface : factoryPackage().interfaces) {
        for (const Method& method : interface.methods) {
            for (const Field& argument : method.arguments) {
                EXPECT_FALSE(holdsBool(*argument.type)) << method.name << " " << argument.label.name;
            }
            for (const Field& result : method.results) {
                if (holdsBool(*result.type)) {
                    results.push_back(method.name);
                }
            }
        }
    }
    EXPECT_THAT(results, testing::UnorderedElementsAre("a_hidl_a_zvttvfapi_disp_get_tcon_info",
                                                       "a_hidl_zvttvfapi_inpsrc_get_input_timing"));
}

/** Its bools are of any byte, and it never says what its texts are. */
struct Rogue : test::fapictl::V1_0::Thing {
    Return<void> a_hidl_a_zvttvfapi_thg_everything(const Everything& all,
                                                   a_hidl_a_zvttvfapi_thg_everything_cb cb) override {
        Everything changed = all;
        std::memset(&changed.stLamp.bOn, 0xfe, 1);
        cb(changed, 0);
        return Void();
    }
    Return<void> a_hidl_zvttvfapi_thg_text(const hidl_string&, int32_t,
                                           a_hidl_zvttvfapi_thg_text_cb) override {
        return Void();
    }
};

TEST(Calls, TakeAnyByteForABoolAndNoResultsForAFailure) {
    const android::sp<Rogue> rogue = new Rogue;
    const auto reply = [&](const char* method, const std::vector<std::string>& words) {
        return thingMethod(method).call(*rogue, bindArguments(thingMethod(method), words));
    };
    EXPECT_EQ(reply("everything", {"{}"}).results[0]["stLamp"]["bOn"], true);
    EXPECT_NE(reply("text", {"a", "0"}).failure, "");
}

}  // namespace
}  // namespace fapictl
