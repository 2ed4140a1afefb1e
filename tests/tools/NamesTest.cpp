#include "tools/fapictl/Names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/TestPackage.h"
#include "tools/fapictl/FactoryPackage.h"

namespace fapictl {
namespace {

using testing::HasSubstr;

template <class Find>
std::string found(const Find& find) {
    try {
        return find().name;
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, Exit::Usage);
        return failure.what();
    }
}

TEST(Names, AreUnderstoodWholeAndWithoutPrefixesInAnyCase) {
    const struct {
        const char* word;
        const char* result;
    } interfaces[] = {
            {"test.fapictl@1.0::IZvtTvFApiThing", "IZvtTvFApiThing"},
            {"IZvtTvFApiThing", "IZvtTvFApiThing"},
            {"zvttvfapithing", "IZvtTvFApiThing"},
            {"THING", "IZvtTvFApiThing"},
            {"watcher", "IWatcher"},
            {"Thg", "IZvtTvFApiThing"},
            {"thign", "no interface \"thign\"; did you mean \"Thing\"?"},
            {"", "no interface \"\""},
            {"elephant\n", "no interface \"elephant\\n\""},
    };
    for (const auto& row : interfaces) {
        EXPECT_EQ(found([&]() -> auto& { return findInterface(testPackage(), row.word); }), row.result);
    }
    const struct {
        const char* word;
        const char* result;
    } methods[] = {
            {"a_hidl_zvttvfapi_thg_text", "a_hidl_zvttvfapi_thg_text"},
            {"THG_TEXT", "a_hidl_zvttvfapi_thg_text"},
            {"text", "a_hidl_zvttvfapi_thg_text"},
            {"get_level", "a_hidl_a_zvttvfapi_thg_get_level"},
            {"a_hidl_zvttvfapi_thg_twin", "a_hidl_zvttvfapi_thg_twin"},
            {"twin", "\"twin\" could be any of a_hidl_a_zvttvfapi_thg_twin, a_hidl_zvttvfapi_thg_twin"},
            {"txet", "no method \"txet\" in Thing; did you mean \"text\"?"},
            {"level", "no method \"level\" in Thing; did you mean \"get_level\"?"},
            {"thg_*", "no method \"thg_*\" in Thing"},
    };
    for (const auto& row : methods) {
        const Interface& thing = findInterface(testPackage(), "Thing");
        EXPECT_EQ(found([&]() -> auto& { return findMethod(thing, row.word); }), row.result);
    }
}

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

TEST(Names, DistanceCountsSlipsOfTheHand) {
    EXPECT_EQ(editDistance("", ""), 0u);
    EXPECT_EQ(editDistance("", "abc"), 3u);
    EXPECT_EQ(editDistance("abc", ""), 3u);
    EXPECT_EQ(editDistance("Abc", "aBC"), 0u);
    EXPECT_EQ(editDistance("abcd", "acbd"), 1u);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(nearest("introspct", {"list", "introspect", "call"}), "introspect");
    EXPECT_EQ(nearest("zzz", {"list", "introspect", "call"}), "");
    EXPECT_EQ(nearest("a", {"b"}), "");
}

}  // namespace
}  // namespace fapictl
