#include "simulator/board/EventPipe.h"

#include <gtest/gtest.h>

using namespace simulator;

namespace {

/** What was read, in the order's own notation; numbers decimal. */
std::string described(const EventOrder& order) {
    std::string text = std::to_string(order.type);
    for (const auto& record : order.payload.objects) {
        text += "|" + std::to_string(record.u32Value) + "," + record.strValue + ",";
        for (const uint8_t byte : record.vecValue) {
            text += std::to_string(byte) + ".";
        }
    }
    return text;
}

}  // namespace

TEST(EventPipe, ALineIsReadWholeOrRefusedWithItsFault) {
    Module& module = *new Module("pipe-test");  // known by its name for good
    const std::string room(2 * 1024 * 1024 - std::string("pipe-test 1 text=").size(), 'x');
    const struct {
        std::string line;
        std::string read;   // empty: refused
        std::string fault;  // part of it
    } rows[] = {
            {"pipe-test 65541 value=3,text=signal - bytes=00fF", "65541|3,signal,|0,,|0,,0.255.|0,,", ""},
            {"  pipe-test\t0x10005  - - - value=0X1f ", "65541|0,,|0,,|0,,|31,,", ""},
            {"pipe-test 010 value=0010", "10|10,,|0,,|0,,|0,,", ""},
            {"pipe-test 4294967295 text=a=b,bytes=", "4294967295|0,a=b,|0,,|0,,|0,,", ""},
            {"pipe-test 1 text=" + room, "1|0," + room + ",|0,,|0,,|0,,", ""},
            {"pipe-test 1 text=" + room + "x", "", "longer than 2097152 bytes"},
            {std::string("pipe-test 1 text=a\0b", 20), "", "NUL"},
            {"other 1", "", "no module \"other\""},
            {"pipe-test", "", "event type"},
            {"pipe-test 4294967296", "", "event type"},
            {"pipe-test 0x", "", "event type"},
            {"pipe-test -1", "", "event type"},
            {"pipe-test 0x-1", "", "event type"},
            {"pipe-test 12x", "", "event type"},
            {"pipe-test 1 value=-1", "", "\"value=-1\""},
            {"pipe-test 1 bytes=0g", "", "\"bytes=0g\""},
            {"pipe-test 1 bytes=123", "", "\"bytes=123\""},
            {"pipe-test 1 value", "", "\"value\""},
            {"pipe-test 1 colour=3", "", "\"colour=3\""},
            {"pipe-test 1 value=1,text=a,value=2", "", "value is given twice"},
            {"pipe-test 1 - - - - -", "", "four records"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line.substr(0, 60));
        EventOrder order;
        const std::string fault = readEventOrder(row.line, &order);
        EXPECT_EQ(row.read.empty(), !fault.empty()) << fault;
        EXPECT_NE(fault.find(row.fault), std::string::npos) << fault;
        if (fault.empty()) {
            EXPECT_EQ(order.module, &module);
            EXPECT_TRUE(described(order) == row.read);
        }
    }
}
