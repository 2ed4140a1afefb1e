#include "tools/fapictl/Events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fstream>

#include "tests/tools/TestPackage.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/FactoryPackage.h"

namespace fapictl {
namespace {

using testing::HasSubstr;

const Type& recordType() {
    return *findMethod(findInterface(factoryPackage(), "Manager"), "post_event").arguments[1].type;
}

TEST(EventRecord, IsReadFromPlainWords) {
    const std::string path = testing::TempDir() + "fapictl, bytes";
    std::ofstream(path, std::ios::binary) << std::string("\0,\xff", 3);
    const struct {
        std::string word;
        Event::Record record;
    } rows[] = {
            {"", {}},
            {"-", {}},
            {"value=0xffffffff", {UINT32_MAX, "", {}}},
            {"VALUE=1,bytes=de:ad", {1, "", {0xde, 0xad}}},
            {" value=1 ,  text=a ", {1, "a ", {}}},
            {"text=a, b and c", {0, "a, b and c", {}}},
            {"text=a, b, value=3", {3, "a, b", {}}},
            {"text=a=b value=3", {3, "a=b", {}}},
            {"text=,value=3", {3, "", {}}},
            {"text=say \"hi\"", {0, "say \"hi\"", {}}},
            {R"(text="a, value=1" value=3)", {3, "a, value=1", {}}},
            {R"(text="\n\t\r\\\"\x00\xC3\xa9")", {0, std::string("\n\t\r\\\"\0\xc3\xa9", 8), {}}},
            {R"(bytes="00 ff",value="7")", {7, "", {0, 0xff}}},
            {"bytes=\"@" + path + "\"", {0, "", {0, ',', 0xff}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        const Json record = parseEventRecord(recordType(), row.word, "record 1");
        EXPECT_EQ(record["u32Value"], row.record.value);
        EXPECT_EQ(record["strValue"], row.record.text);
        EXPECT_EQ(std::vector<uint8_t>(record["vecValue"].get_binary()), row.record.bytes);
    }
}

TEST(EventRecord, MistakesSayWhatIsWrongAndWhere) {
    const struct {
        const char* word;
        const char* message;
    } rows[] = {
            {"7", "record 2: value=NUMBER, text=TEXT or bytes=HEX"},
            {"=7", "or - for an empty record, not \"=7\""},
            {"valeu=7", "no key \"valeu\"; did you mean \"value\"?"},
            {"text=a, b=c", "if it belongs to the text, put the text in double quotes"},
            {"value=1 value=2", "value is given twice"},
            {"value=4294967296", "record 2, value (uint32_t): out of range"},
            {"value=", "not a whole number"},
            {"value=1, 2", "not \"2\""},
            {"bytes=abc", "record 2, bytes (vec<uint8_t>): not pairs"},
            {"bytes=@/nonexistent", "cannot read the file"},
            {"text=\"a", "the closing quote is missing"},
            {"text=\"a\\", "no escape"},
            {R"(text="\x4")", "no escape \\x"},
            {R"(text="a"b)", "must follow the closing quote, not \"b\""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        try {
            parseEventRecord(recordType(), row.word, "record 2");
            ADD_FAILURE();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code, Exit::Usage);
            EXPECT_THAT(failure.what(), HasSubstr(row.message));
        }
    }
}

TEST(Event, IsALineForPeopleAndWholeForPrograms) {
    setenv("TZ", "UTC-2", 1);
    tzset();
    using Bytes = std::vector<uint8_t>;
    const std::string cut(63, 'x');
    const struct {
        Event::Record record;
        std::string line;
        std::string json;
    } rows[] = {
            {{}, "-", R"({"value":0,"text":"","bytes":""})"},
            {{7, "a", {1}}, "value=7 text=\"a\" bytes=01", R"({"value":7,"text":"a","bytes":"01"})"},
            {{0, "\"\x1b[2J\n\xff", {}},
             R"(text="\"\x1b[2J\n\xff")",
             "{\"value\":0,\"text\":\"\\\"\\u001b[2J\\n\xef\xbf\xbd\",\"bytes\":\"\"}"},
            {{0, "", Bytes(32, 0xab)},
             "bytes=" + toHex(Bytes(32, 0xab)),
             R"({"value":0,"text":"","bytes":")" + toHex(Bytes(32, 0xab)) + "\"}"},
            {{0, "", Bytes(33, 0xab)},
             "bytes=" + toHex(Bytes(32, 0xab)) + "…(33 bytes)",
             R"({"value":0,"text":"","bytes":")" + toHex(Bytes(33, 0xab)) + "\"}"},
            {{0, cut + "é", {}},
             "text=\"" + cut + "\"…(65 bytes)",
             R"({"value":0,"text":")" + cut + R"(é","bytes":""})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto time = std::chrono::system_clock::time_point(std::chrono::milliseconds(1700000000007));
        const Event event = {time, "sys", 0x10001, {{{}, row.record, {}, {}}}};
        EXPECT_EQ(eventLine(12, event),
                  "12  00:13:20.007  sys      0x00010001  - | " + row.line + " | - | -");
        const std::string empty = R"({"value":0,"text":"","bytes":""})";
        EXPECT_EQ(
                jsonText(eventJson(12, event), false),
                R"({"number":12,"time":"2023-11-15T00:13:20.007+0200","module":"sys","type":65537,"records":[)" +
                        empty + "," + row.json + "," + empty + "," + empty + "]}");
    }
}

}  // namespace
}  // namespace fapictl
