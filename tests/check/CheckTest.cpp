// The tool's check of chip-layer libraries: the simulated board's, and one that is bad.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/ChildProcess.h"

namespace {

std::string checked(std::vector<std::string> words, int code) {
    words.insert(words.begin(), {getenv("ZVTTV_TEST_FAPICTL"), "check", "--all", "--no-legend"});
    ChildProcess child(words);
    const std::string text = child.readAll();
    EXPECT_EQ(code, child.wait()) << text;
    return text;
}

TEST(CheckTest, TheSimulatedBoardKeepsItsPromisesInEveryFunction) {
    const std::string text = checked({}, 0);
    EXPECT_THAT(text,
                testing::Not(testing::AnyOf(testing::HasSubstr("not called"), testing::HasSubstr("missing"),
                                            testing::HasSubstr("Left out"))));
    EXPECT_THAT(text, testing::HasSubstr("\nSound: "));
}

/** Each line of the file begins a fault, in which what stands behind the dots comes later. */
TEST(CheckTest, EachKindOfFaultIsFoundAndNamed) {
    const std::string text = checked({"--timeout", "3", BAD_LIBRARY}, 1);
    std::ifstream file(BAD_FAULTS);
    size_t faults = 0;
    for (std::string line; std::getline(file, line); ++faults) {
        const size_t dots = line.find(" ... ");
        const size_t at = text.find("\na_zvttvfapi_" + line.substr(0, dots));
        ASSERT_NE(std::string::npos, at) << line << "\nin\n" << text;
        if (dots != std::string::npos) {
            EXPECT_THAT(text.substr(at, text.find("\na_zvttv", at + 1) - at),
                        testing::HasSubstr(line.substr(dots + 5)));
        }
    }
    EXPECT_THAT(text, testing::HasSubstr(" " + std::to_string(faults) + " faults, in ")) << "and no others";
}

}  // namespace
