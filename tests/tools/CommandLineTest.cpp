#include "tools/fapictl/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/TestPackage.h"
#include "tools/fapictl/Complete.h"
#include "tools/fapictl/FactoryPackage.h"

namespace fapictl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST(CommandLine, MistakesEndBeforeAnythingIsCalledAndSayWhatWasMeant) {
    const struct {
        std::vector<std::string> words;
        const char* message;
    } rows[] = {
            {{}, "Usage: fapictl VERB"},
            {{"lsit"}, "no verb \"lsit\"; did you mean \"list\"?"},
            {{"list", "--jsno"}, "no option \"--jsno\"; did you mean \"--json\"?"},
            {{"introspect", "--json=long"}, "--json is short or pretty, not \"long\""},
            {{"wait", "--timeout", "soon"}, "--timeout"},
            {{"wait", "--timeout", "-1"}, "--timeout"},
            {{"wait", "--timeout", "nan"}, "--timeout"},
            {{"wait", "Watcher"}, "implemented by clients"},
            {{"call", "Thing"}, "too few words; usage: fapictl call INTERFACE METHOD [ARG...]"},
            {{"call", "Watcher", "notifyEvent"}, "implemented by clients"},
            {{"call", "Thing", "text", "-x", "0"}, "Write -- before arguments"},
            {{"call", "Thing", "text", "--", "-x", "0", "1"}, "one argument too many"},
            {{"introspect", "Thing", "text", "more"}, "one word too many: \"more\""},
            {{"introspect", "*", "nothing*"}, "no method matches \"nothing*\""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const Ran result = ran(testPackage(), row.words);
        EXPECT_EQ(result.code, Exit::Usage);
        EXPECT_THAT(result.err, HasSubstr(row.message));
        EXPECT_EQ(result.out, "");
    }
}

TEST(CommandLine, EventVerbsRefuseMistakesBeforeAnythingIsSent) {
    const struct {
        std::vector<std::string> words;
        const char* message;
    } rows[] = {
            {{"post"}, "too few words; usage: fapictl post TYPE [RECORD...]"},
            {{"post", "sys"}, "TYPE (uint32_t): not a whole number"},
            {{"post", "1", "-", "-", "-", "-", "-"}, "one word too many"},
            {{"post", "1", "-", "txt=a"}, "record 2: no key \"txt\"; did you mean \"text\"?"},
            {{"watch", "sys"}, "one word too many: \"sys\""},
            {{"watch", "--module=sys,disptest"}, "no module \"disptest\"; did you mean \"disptst\"?"},
            {{"watch", "--module", "everything"}, "there are sys, disp, disptst,"},
            {{"watch", "--count=0"}, "--count is a number of events from 1 on"},
            {{"watch", "--count", "-1"}, "--count is a number"},
            {{"wait", "CallbackManager"}, "implemented by clients"},
            {{"call", "Manager", "set_callback"}, "; fapictl watch registers a callback"},
            {{"call", "Manager", "set_callback", "me"}, "given \"me\"; fapictl watch registers a callback"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const Ran result = ran(factoryPackage(), row.words);
        EXPECT_EQ(result.code, Exit::Usage);
        EXPECT_THAT(result.err, HasSubstr(row.message));
    }
}

TEST(CommandLine, UselessOptionsAreWarnedAboutAndTheRestIsDone) {
    const Ran result = ran(testPackage(), {"introspect", "--timeout=3", "--json", "--no-legend", "Thing"});
    EXPECT_EQ(result.code, Exit::Success);
    EXPECT_THAT(result.err, HasSubstr("--timeout has no effect on introspect"));
    EXPECT_THAT(result.err, HasSubstr("--no-legend has no effect on JSON"));
    EXPECT_EQ(Json::parse(result.out)[0]["shortName"], "Thing");
}

TEST(CommandLine, HelpNamesEveryVerbAndExitCode) {
    const Ran help = ran(testPackage(), {"--help"});
    EXPECT_EQ(help.code, Exit::Success);
    for (const char* text : {"list", "introspect", "call", "wait", "watch", "post", "capture", "edid",
                             "debug", "  0  ", "  1  ", "  2  ", "  3  ", "  4  ", "  5  "}) {
        EXPECT_THAT(help.out, HasSubstr(text));
    }
    const Ran verb = ran(testPackage(), {"introspect", "-h"});
    EXPECT_THAT(verb.out, HasSubstr("--no-legend"));
    EXPECT_THAT(verb.out, Not(HasSubstr("--timeout")));
}

TEST(Introspect, ShowsAMethodWithItsTypesAndDocumentation) {
    const Ran result = ran(testPackage(), {"introspect", "thing", "scalars"});
    EXPECT_EQ(result.code, Exit::Success);
    for (const char* text :
         {"a_hidl_a_zvttvfapi_thg_scalars of test.fapictl@1.0::IZvtTvFApiThing", "Returns every scalar.",
          "s64       int64_t   a number on two lines", "u32      uint32_t  [Hz] the frequency",
          "GREEN   5       The eye sees it best.", "BELOW  -1"}) {
        EXPECT_THAT(result.out, HasSubstr(text));
    }
}

TEST(Introspect, FiltersCompose) {
    const Ran all = ran(testPackage(), {"introspect", "--no-legend"});
    EXPECT_EQ(all.out,
              "Watcher  1   Told of events.\nThing    10  A service with a method for each shape of call.\n");
    const Ran some = ran(testPackage(), {"introspect", "*", "*vent*", "--no-legend"});
    EXPECT_EQ(some.out, "oneway notifyEvent(uint32_t u32Type, Lamp stLamp)\n");
    const Ran twins = ran(testPackage(), {"introspect", "thing", "twi?", "--no-legend"});
    EXPECT_EQ(twins.out,
              "a_hidl_a_zvttvfapi_thg_twin() -> (int32_t s32Status)\n"
              "a_hidl_zvttvfapi_thg_twin() -> (int32_t s32Status)\n");
}

TEST(Introspect, GivesProgramsEverythingAsJson) {
    const Ran result = ran(testPackage(), {"introspect", "Thing", "everything", "--json=pretty"});
    const Json thing = Json::parse(result.out)[0];
    EXPECT_EQ(thing["interface"], "test.fapictl@1.0::IZvtTvFApiThing");
    EXPECT_EQ(thing["doc"],
              "A service with a method for each shape of call.\n\nWhat its methods return is what they "
              "were given.");
    ASSERT_EQ(thing["methods"].size(), 1u);
    EXPECT_EQ(thing["methods"][0]["results"][1].dump(), R"({"name":"s32Status","type":"int32_t","doc":""})");
    EXPECT_EQ(thing["types"]["Point"]["fields"][0].dump(),
              R"({"name":"s16X","type":"int16_t","unit":"mm","doc":"from the left edge"})");
    EXPECT_EQ(thing["types"]["Colour"]["enumerators"][2].dump(), R"({"name":"BLUE","value":7,"doc":""})");
}

TEST(Completion, OffersWhatMayStandThere) {
    const struct {
        std::vector<std::string> words;
        std::vector<std::string> candidates;
    } rows[] = {
            {{""}, {"list", "introspect", "call", "wait", "watch", "post", "capture", "edid", "debug"}},
            {{"in"}, {"introspect"}},
            {{"--json", "w"}, {"wait", "watch"}},
            {{"bad", ""}, {}},
            {{"wait", "--"}, {"--help", "--instance", "--json", "--no-legend", "--timeout"}},
            {{"wait", "--json", "=", "p"}, {"--json=pretty"}},
            {{"wait", "--instance", "T"}, {}},
            {{"wait", "--instance", "x", "Th"}, {"Thing"}},
            {{"wait", "Thing", "w"}, {"Watcher"}},
            {{"call", "IZ"}, {"IZvtTvFApiThing"}},
            {{"call", "test.fapictl@1.0", "::", "IW"}, {"test.fapictl@1.0::IWatcher"}},
            {{"call", "thing", "t"}, {"text"}},
            {{"call", "thing", "thg_s"}, {"thg_scalars", "thg_set_watcher"}},
            {{"call", "thing", "a_hidl_a_zvttvfapi_thg_g"}, {"a_hidl_a_zvttvfapi_thg_get_level"}},
            {{"call", "nothing", ""}, {}},
            {{"call", "thing", "text", ""}, {"strText=", "s32Report="}},
            {{"call", "thing", "text", "hello", ""}, {"s32Report="}},
            {{"call", "thing", "text", "s32Report", "=", "1", "s"}, {"strText="}},
            {{"call", "thing", "scalars", "eC"}, {"eColour="}},
            {{"call", "thing", "scalars", "eColour", "="}, {"eColour=RED", "eColour=GREEN", "eColour=BLUE"}},
            {{"call", "thing", "scalars", "b", "=", "f"}, {"b=false"}},
            {{"introspect", "thing", "text", ""}, {}},
            {{"watch", ""}, {}},
            {{"watch", "--module", "sys", "--module", "dis"}, {"disp", "disptst"}},
            {{"watch", "--module", "=", "n"}, {"--module=net"}},
            {{"post", ""}, {}},
            {{"post", "1", "-", ""}, {"value=", "text=", "bytes="}},
            {{"post", "1", "-", "-", "-", "-", ""}, {}},
            {{"capture", ""}, {}},
            {{"capture", "x.png", "v"}, {"video"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.words));
        EXPECT_EQ(complete(testPackage(), row.words), row.candidates);
    }
    EXPECT_THAT(ran(testPackage(), {"--complete", "wa"}).out, StartsWith("wait\n"));
}

}  // namespace
}  // namespace fapictl
