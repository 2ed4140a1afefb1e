#include "tools/fapictl/Values.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "tests/tools/TestPackage.h"
#include "tools/fapictl/Display.h"

namespace fapictl {
namespace {

using testing::HasSubstr;

/** A type by the name of an argument that has it. */
const Type& typeNamed(const std::string& name) {
    for (const Method& method : findInterface(testPackage(), "Thing").methods) {
        for (const Field& argument : method.arguments) {
            if (argument.label.name == name) {
                return *argument.type;
            }
        }
    }
    throw std::logic_error(name);
}

std::string refusal(const Type& type, const std::string& word) {
    try {
        return "accepted as " + parseValue(type, word, "argument x").dump();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, Exit::Usage);
        return failure.what();
    }
}

class Scratch {
  public:
    explicit Scratch(const std::string& contents) {
        char name[] = "/tmp/fapictl-test-XXXXXX";
        close(mkstemp(name));
        mPath = name;
        std::ofstream(mPath, std::ios::binary) << contents;
    }
    ~Scratch() { unlink(mPath.c_str()); }
    const std::string& path() const { return mPath; }

  private:
    std::string mPath;
};

TEST(Values, AreReadAsPeopleWriteThem) {
    const struct {
        const char* type;
        const char* word;
        const char* value;
    } rows[] = {
            {"s8", "-128", "-128"},
            {"s8", "127", "127"},
            {"s8", "-0x80", "-128"},
            {"u8", "255", "255"},
            {"u8", "0xFF", "255"},
            {"u8", "+0", "0"},
            {"s16", "-32768", "-32768"},
            {"u16", "0o755", "493"},
            {"s32", "-2147483648", "-2147483648"},
            {"u32", "4294967295", "4294967295"},
            {"s64", "-9223372036854775808", "-9223372036854775808"},
            {"s64", "9223372036854775807", "9223372036854775807"},
            {"u64", "0xffffffffffffffff", "18446744073709551615"},
            {"b", "ON", "true"},
            {"b", "0", "false"},
            {"eColour", "green", R"("GREEN")"},
            {"eColour", "7", R"("BLUE")"},
            {"eColour", "200", "200"},
            {"eDepth", "-1", R"("BELOW")"},
            {"strText", "", R"("")"},
            {"strText", "@{[\\\"", R"("@{[\\\"")"},
            {"vecBytes", "", R"("")"},
            {"vecBytes", "dEad", R"("dead")"},
            {"vecBytes", "de:ad-be ef", R"("deadbeef")"},
            {"vecBytes", "[1, 255]", R"("01ff")"},
            {"au8Pair", "0102", R"("0102")"},
            {"vecCurve", "", "[]"},
            {"vecCurve", "1,0x2 ,\n3 4\n", "[1,2,3,4]"},
            {"vecCurve", R"([1,"0x10"])", "[1,16]"},
            {"vecColours", "red,7,9", R"(["RED","BLUE",9])"},
            {"vecPath", "s16x=1,s16y=2; s16Y=-3", R"([{"s16X":1,"s16Y":2},{"s16X":0,"s16Y":-3}])"},
            {"vecPath", R"([{"s16X":5}])", R"([{"s16X":5,"s16Y":0}])"},
            {"watcher", "null", "null"},
            {"stAll", R"({"au16Grid":[[1,2,3],"4,5,6"],"stLamp":{"eColour":"BLUE","bOn":true}})",
             R"({"u64Big":0,"stLamp":{"stPlace":{"s16X":0,"s16Y":0},"eColour":"BLUE","bOn":true},"au8Key":"00000000",)"
             R"("au16Grid":[[1,2,3],[4,5,6]],"astCorners":[{"s16X":0,"s16Y":0},{"s16X":0,"s16Y":0}],"strName":"",)"
             R"("vecBytes":"","vecPath":[]})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.type) + " <- " + row.word);
        const Type& type = typeNamed(row.type);
        const Json value = parseValue(type, row.word, "argument x");
        EXPECT_EQ(forPrograms(type, value).dump(), row.value);
        // What the tool prints can be given back to it.
        EXPECT_EQ(checkValue(type, forPrograms(type, value), "argument x"), value);
    }
}

TEST(Values, AreRefusedWithTheArgumentItsTypeTheReasonAndWhatWasGiven) {
    const struct {
        const char* type;
        const char* word;
        const char* reason;
    } rows[] = {
            {"s8", "128", "argument x (int8_t): out of range -128 to 127; given \"128\""},
            {"s8", "-129", "out of range"},
            {"u8", "256", "out of range"},
            {"u8", "-1", "out of range"},
            {"s64", "9223372036854775808", "out of range"},
            {"s64", "-9223372036854775809", "out of range"},
            {"u64", "18446744073709551616", "out of range 0 to 18446744073709551615"},
            {"u64", "99999999999999999999999", "out of range"},
            {"u32", "", "not a whole number"},
            {"u32", "-", "not a whole number"},
            {"u32", "0x", "not a whole number"},
            {"u32", "1.0", "not a whole number"},
            {"u32", "1 ", "not a whole number"},
            {"u32", "--1", "not a whole number"},
            {"u32", "0755", "0o"},
            {"b", "maybe", "neither true"},
            {"b", "2", "neither true"},
            {"eColour", "gren", "did you mean \"GREEN\"?"},
            {"eColour", "256", "out of range 0 to 255"},
            {"vecBytes", "abc", "hexadecimal"},
            {"vecBytes", "0g", "hexadecimal"},
            {"vecBytes", "a:bc", "hexadecimal"},
            {"vecBytes", "ab::cd", "hexadecimal"},
            {"vecBytes", "[256]", "argument x[0] (uint8_t): out of range"},
            {"vecBytes", "@/nonexistent/file", "No such file"},
            {"vecBytes", "@/tmp", "cannot read"},
            {"vecBytes", "@/dev/zero", "too large"},
            {"au8Pair", "010203", "argument x (uint8_t[2]): needs 2 elements, not 3"},
            {"vecCurve", "1,,2", "argument x[1] (uint16_t): not a whole number"},
            {"vecCurve", "1,70000", "argument x[1] (uint16_t): out of range"},
            {"vecCurve", "[1,2", "not valid JSON"},
            {"vecCurve", "[1.5]", "a JSON number does not fit"},
            {"vecCurve", "{}", "a JSON object does not fit"},
            {"vecPath", "s16X=1;s16Z=2", "argument x[1] (Point): no field \"s16Z\"; did you mean"},
            {"stAll", "", "neither JSON nor"},
            {"stAll", "strName", "neither JSON nor"},
            {"stAll", R"({"au16Grid":[[1,2,3]]})",
             "argument x.au16Grid (uint16_t[2][3]): needs 2 elements, not 1"},
            {"stAll", R"({"stLamp":{"bOn":null}})", "argument x.stLamp.bOn (bool): a JSON null does not fit"},
            {"watcher", "x", "only null"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.type) + " <- " + row.word);
        EXPECT_THAT(refusal(typeNamed(row.type), row.word), HasSubstr(row.reason));
    }
    // A whole picture pasted by mistake does not fill the screen.
    EXPECT_LT(refusal(typeNamed("u32"), std::string(100000, 'x')).size(), 200u);
}

TEST(Values, ComeFromFilesWholeAndUnchanged) {
    const std::string bytes("\0\xff\n@dead", 8);
    EXPECT_EQ(parseValue(typeNamed("vecBytes"), "@" + Scratch(bytes).path(), "x"),
              Json::binary({bytes.begin(), bytes.end()}));
    EXPECT_EQ(parseValue(typeNamed("vecCurve"), "@" + Scratch("1\n2\n3\n").path(), "x"), Json({1, 2, 3}));
    EXPECT_THAT(refusal(typeNamed("au8Pair"), "@" + Scratch("abc").path()),
                HasSubstr("needs 2 elements, not 3"));
}

TEST(Values, PartsAreSetOneByOne) {
    const Type& type = typeNamed("stAll");
    Json value = zeroValue(type);
    assign(type, value, ".stLamp.stPlace.s16X", "-4", "x");
    assign(type, value, ".au16Grid[1][2]", "9", "x");
    assign(type, value, ".vecPath[0]", "s16X=1", "x");
    assign(type, value, ".vecPath[1].s16Y", "2", "x");
    assign(type, value, ".strName", "a,b=c", "x");
    EXPECT_EQ(value["stLamp"]["stPlace"]["s16X"], -4);
    EXPECT_EQ(value["au16Grid"].dump(), "[[0,0,0],[0,0,9]]");
    EXPECT_EQ(value["vecPath"].dump(), R"([{"s16X":1,"s16Y":0},{"s16X":0,"s16Y":2}])");
    EXPECT_EQ(value["strName"], "a,b=c");

    for (const char* path :
         {".vecPath[3]", ".vecPath[-1]", ".vecPath[x]", ".vecPath[", ".au16Grid[2]", ".u64Big.x", ".nothing",
          ".stLamp[0]", ".au8Key[0]", ".vecPath[99999999999999999999]", "."}) {
        SCOPED_TRACE(path);
        EXPECT_THROW(assign(type, value, path, "1", "x"), Failure);
    }
}

TEST(Display, ShowsValuesInATableThatCannotSteerTheTerminal) {
    const Type& type = typeNamed("stAll");
    Json value = parseValue(type, R"({"u64Big":4096,"au8Key":"00ff4142","vecPath":[{"s16X":1}]})", "x");
    value["strName"] = std::string("a\0\x1b[2J\x9b\r\n\"\\\xff\xe2\x80\xaeü", 17);
    value["vecBytes"] = Json::binary(std::vector<uint8_t>(17, 'A'));
    value["stLamp"]["eColour"] = 9;
    Table table({"NAME", "TYPE", "VALUE"});
    addRows(table, {{"stAll", "", ""}, &type}, value);
    std::ostringstream out;
    table.print(out, false);
    EXPECT_EQ(out.str(), R"(stAll         Everything
  u64Big      uint64_t        4096 (0x1000)
  stLamp      Lamp
    stPlace   Point
      s16X    int16_t         0 mm
      s16Y    int16_t         0
    eColour   Colour          9 (no name)
    bOn       bool            false
  au8Key      uint8_t[4]      4 bytes: 00 ff 41 42
  au16Grid    uint16_t[2][3]  2 elements
    [0]       uint16_t[3]     0, 0, 0
    [1]       uint16_t[3]     0, 0, 0
  astCorners  Point[2]        2 elements
    [0]       Point
      s16X    int16_t         0 mm
      s16Y    int16_t         0
    [1]       Point
      s16X    int16_t         0 mm
      s16Y    int16_t         0
  strName     string          "a\x00\x1b[2J\x9b\r\n\"\\\xff\xe2\x80\xaeü"
  vecBytes    vec<uint8_t>    17 bytes
                              00000000  41 41 41 41 41 41 41 41  41 41 41 41 41 41 41 41  |AAAAAAAAAAAAAAAA|
                              00000010  41                                                |A|
  vecPath     vec<Point>      1 element
    [0]       Point
      s16X    int16_t         1 mm
      s16Y    int16_t         0
)");
}

}  // namespace
}  // namespace fapictl
