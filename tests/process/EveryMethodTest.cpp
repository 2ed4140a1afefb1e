// Every method of the package, as the interface files list them, through the real tool, transport and
// service.

#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "tests/process/ServiceFixture.h"

namespace {

using nlohmann::json;

/** A value of the type that every client can send: zero, empty, no object. */
std::string plainest(const std::string& type, const json& types) {
    if (type.compare(0, 4, "vec<") == 0) {
        return "[]";
    }
    if (type == "string") {
        return "";
    }
    if (type == "bool") {
        return "false";
    }
    if (type[0] == 'I') {
        return "null";
    }
    return types.contains(type) && types[type].contains("fields") ? "{}" : "0";
}

class EveryMethodTest : public ServiceFixture {
  protected:
    /** Calls each method with the plainest arguments; its results by "Interface method". */
    std::map<std::string, json> callAll() const {
        const ChildProcess listening = monitor();
        std::map<std::string, json> answers;
        for (const json& interface : json::parse(tool({"introspect", "--json"}))) {
            if (!interface["service"]) {
                continue;
            }
            for (const json& method : interface["methods"]) {
                const std::string name =
                        std::string(interface["shortName"]) + " " + std::string(method["shortName"]);
                std::vector<std::string> call = {"call", interface["shortName"], method["shortName"],
                                                 "--json"};
                for (const json& argument : method["arguments"]) {
                    call.push_back(plainest(argument["type"], interface["types"]));
                }
                const std::string out = tool(call, testing::AnyOf(0, 1));
                const json answer = json::parse(out, nullptr, false);
                EXPECT_TRUE(answer.is_object()) << name << ": " << out;
                for (const json& result : method["results"]) {
                    const std::string each = result["name"];
                    EXPECT_TRUE(answer.contains(each)) << name << ": " << out;
                    answers[name][each] = answer.value(each, json());
                }
            }
        }
        EXPECT_TRUE(eventually([&] { return callsReported().size() == answers.size(); }));
        expectCounted(answers);
        return answers;
    }

  private:
    /** Each interface's page of state says how many of its methods were called. */
    static void expectCounted(const std::map<std::string, json>& answers) {
        std::map<std::string, int> expected{{"Tv", 0}};  // has no methods
        for (const auto& [name, answer] : answers) {
            ++expected[name.substr(0, name.find(' '))];
        }
        expected.erase("Information");  // the tool asks it what statuses are called
        for (const auto& [interface, calls] : expected) {
            EXPECT_THAT(
                    tool({"debug", interface}),
                    testing::AllOf(testing::StartsWith("interface: " + descriptorOf(interface) + "\n"),
                                   testing::HasSubstr("\ncalls served: " + std::to_string(calls) + "\n")));
        }
    }
};

TEST_F(EveryMethodTest, AnswersOnABoardThatIsReady) {
    startAndWait();
    const auto answers = callAll();
    EXPECT_EQ(size_t{ZVTTV_METHODS}, answers.size());
    for (const auto& [name, answer] : answers) {
        EXPECT_NE(-5, answer.value("s32Status", 0)) << name;
    }
    // Each is seen as it was answered, and answered so again.
    std::multiset<json> seen;
    for (const auto& call : callsReported()) {
        seen.insert(json::parse(call["results"].dump()));
    }
    std::multiset<json> answered;
    for (const auto& [name, answer] : answers) {
        answered.insert(answer);
    }
    EXPECT_EQ(answered, seen);
    std::filesystem::remove_all(mState);
    startAndWait();
    EXPECT_THAT(tool({"replay", mReport, "--ignore", "u64Time"}),
                testing::HasSubstr(" 0 with other results, 1 not made\n"));
}

TEST_F(EveryMethodTest, IsRefusedOnABoardThatIsNotReadyButForThoseThatSayOtherwise) {
    setenv("ZVTTV_BOARD_READY", "no", 1);
    startAndWait();
    // Those without a guard, with a value for a status, or that need no board. No value: the library's own
    // answer.
    const std::map<std::string, std::optional<json>> others = {
            {"Audio set_volume_table", json{{"s32Status", -2}}},
            {"Display get_frc_connect_status", true},
            {"Manager set_callback", json{{"s32Status", -2}}},
            {"Manager post_event", json{{"s32Status", -2}}},
            {"Peripheral get_adc_in_keypad", json{{"s32Status", 0}}},
            {"Peripheral get_gpio_status", std::nullopt},
            {"Peripheral get_keypad_code", false},
            {"Peripheral get_sar_adc", 0},
            {"Peripheral set_factory_uart_onoff", false},
            {"Peripheral set_hdmi_hpd", std::nullopt},
            {"Peripheral write_factory_uart", false},
            {"System get_wdt_status", false},
    };
    const auto answers = callAll();
    EXPECT_EQ(size_t{ZVTTV_METHODS}, answers.size());
    for (const auto& [name, answer] : answers) {
        const auto other = others.find(name);
        if (other == others.end()) {
            EXPECT_EQ(-5, answer.value("s32Status", 0)) << name;
        } else if (other->second.has_value() && other->second->is_object()) {
            EXPECT_EQ(*other->second, answer) << name;
        } else if (other->second.has_value()) {
            EXPECT_EQ(*other->second, *answer.begin()) << name;
        }
    }
}

}  // namespace
