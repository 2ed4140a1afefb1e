#include "tools/fapictl/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/tools/TestPackage.h"
#include "tests/tools/Thing.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

using testing::HasSubstr;

std::string bound(const char* method, const std::vector<std::string>& words) {
    try {
        return bindArguments(thingMethod(method), words).dump();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, Exit::Usage);
        return failure.what();
    }
}

TEST(Arguments, ArePositionalOrNamedInAnyMixture) {
    const struct {
        const char* method;
        std::vector<std::string> words;
        const char* result;
    } rows[] = {
            {"text", {"hello", "-5"}, R"(["hello",-5])"},
            {"text", {"s32Report=-5", "hello"}, R"(["hello",-5])"},
            {"text", {"S32REPORT=1", "strText=s32Report=2"}, R"(["s32Report=2",1])"},
            {"text", {"key=value", "0"}, R"(["key=value",0])"},
            {"text", {"=", "0"}, R"(["=",0])"},
            {"set_watcher", {"watcher=null"}, "[null]"},
            {"lists", {"@/dev/null", "1", "", "", "au8Pair=0102"}, R"(,[1],[],[],)"},
            {"get_level", {}, "[]"},
            {"text", {"hello"}, "argument s32Report (int32_t) is missing"},
            {"text", {"a", "0", "b"}, "one argument too many: \"b\"; a_hidl_zvttvfapi_thg_text takes 2"},
            {"get_level", {"1"}, "takes none"},
            {"text", {"a", "s32Report=0", "s32Report=0"}, "argument s32Report is given twice"},
            {"text", {"a", "s32Repotr=0"}, "no argument \"s32Repotr\"; did you mean \"s32Report\"?"},
            {"text", {"strTxt=x", "0"}, "To pass it as text, write strText=strTxt=x"},
            {"text", {"a", "x"}, "argument s32Report (int32_t): not a whole number; given \"x\""},
            {"text", {"a", "s32Report.x=1"}, "has no part \".x\""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.result);
        EXPECT_THAT(bound(row.method, row.words), HasSubstr(row.result));
    }
    const Json all = bindArguments(
            thingMethod("everything"),
            {"stAll.strName=a,b", "stAll=u64Big=7,stLamp.bOn=on,strName=c", "stAll.au8Key=01020304"})[0];
    // The parts come upon the whole, wherever they stand.
    EXPECT_EQ(all["u64Big"], 7);
    EXPECT_EQ(all["stLamp"]["bOn"], true);
    EXPECT_EQ(all["strName"], "a,b");
}

TEST(Calls, CarryEveryTypeThereAndBack) {
    const struct {
        const char* method;
        std::vector<std::string> words;
    } rows[] = {
            {"scalars",
             {"-128", "255", "-32768", "65535", "-2147483648", "4294967295", "-9223372036854775808",
              "18446744073709551615", "true", "BLUE", "BELOW"}},
            {"scalars",
             {"127", "0", "32767", "0", "2147483647", "0", "9223372036854775807", "0", "false", "250", "99"}},
            {"lists", {"00ff", "0,65535", "s16X=-1,s16Y=2;s16X=3", "RED,9", "0102"}},
            {"lists", {"", "", "", "", "ffff"}},
            {"everything",
             {R"({"u64Big":18446744073709551615,"stLamp":{"stPlace":{"s16X":-1},"eColour":7,"bOn":true},)"
              R"("au8Key":"01020304","au16Grid":[[1,2,3],[4,5,65535]],"astCorners":[{},{"s16Y":5}],)"
              R"("strName":"n","vecBytes":"ff","vecPath":[{"s16X":9}]})"}},
    };
    const android::sp<test::fapictl::V1_0::Thing> thing = new test::fapictl::V1_0::Thing;
    for (const auto& row : rows) {
        const Method& method = thingMethod(row.method);
        const Json arguments = bindArguments(method, row.words);
        const Reply reply = method.call(*thing, arguments);
        EXPECT_EQ(reply.failure, "");
        for (size_t i = 0; i < arguments.size(); ++i) {
            EXPECT_EQ(reply.results.at(i), arguments[i])
                    << row.method << " " << method.arguments[i].label.name;
        }
    }
}

TEST(Calls, TakeAnyByteOfAPeerForABool) {
    struct Rogue : test::fapictl::V1_0::Thing {
        android::hardware::Return<void> a_hidl_a_zvttvfapi_thg_everything(
                const test::fapictl::V1_0::Everything& all,
                a_hidl_a_zvttvfapi_thg_everything_cb cb) override {
            test::fapictl::V1_0::Everything changed = all;
            std::memset(&changed.stLamp.bOn, 0xfe, 1);
            cb(changed, 0);
            return android::hardware::Void();
        }
    };
    const android::sp<Rogue> rogue = new Rogue;
    const Method& method = thingMethod("everything");
    const Reply reply = method.call(*rogue, bindArguments(method, {"{}"}));
    EXPECT_EQ(reply.results[0]["stLamp"]["bOn"], true);
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

TEST(Calls, WithoutResultsFromTheServiceAreFailures) {
    struct Silent : test::fapictl::V1_0::Thing {
        android::hardware::Return<void> a_hidl_zvttvfapi_thg_text(const android::hardware::hidl_string&,
                                                                  int32_t,
                                                                  a_hidl_zvttvfapi_thg_text_cb) override {
            return android::hardware::Void();
        }
    };
    const android::sp<Silent> silent = new Silent;
    const Method& method = thingMethod("text");
    EXPECT_NE(method.call(*silent, bindArguments(method, {"a", "0"})).failure, "");
}

}  // namespace
}  // namespace fapictl
