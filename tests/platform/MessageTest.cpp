#include "platform/socket/Message.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

TEST(Message, WhatItSaysOfItsOwnShapeIsCheckedBeforeAnythingIsRead) {
    const auto record = [](uint32_t parent, uint32_t offset) {
        return MessageBuilder()
                .scalar<int32_t>(1)
                .buffer(std::string(16, 'r'))
                .buffer("text", parent, offset);
    };
    const auto head = [&](const std::function<void(MessageHeader&)>& lie) {
        return record(0, 0).lieInHead(lie);
    };
    const auto entry = [&](size_t index, uint32_t size) {
        return record(0, 0).lieInEntry(index, [=](BufferEntry& each) { each.size = size; });
    };
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        const char* rule;  // a part of its text; null: accepted
    };
    const Case cases[] = {
            {"head alone", MessageBuilder().bytes(), nullptr},
            {"scalars that need padding", MessageBuilder().scalar<uint8_t>(1).bytes(), nullptr},
            {"a pointer at the end of its record", record(0, 8).bytes(), nullptr},
            {"an empty buffer", MessageBuilder().buffer("").bytes(), nullptr},
            {"another magic", head([](auto& h) { h.magic ^= 1; }).bytes(), "magic"},
            {"no room for its head", head([](auto& h) { h.totalBytes = 40; }).bytes(), "covers its header"},
            {"an odd length", head([](auto& h) { h.totalBytes -= 4; }).bytes(), "multiple of 8"},
            {"over the limit", head([](auto& h) { h.totalBytes = kMaxMessageBytes + 8; }).bytes(), "1 MiB"},
            {"too many buffers", head([](auto& h) { h.bufferCount = 0x10000003; }).bytes(), "buffer table"},
            {"too many scalars", head([](auto& h) { h.scalarBytes = UINT32_MAX; }).bytes(), "scalars"},
            {"scalars in place of buffers", head([](auto& h) { h.scalarBytes += 24; }).bytes(),
             "lies within"},
            {"a buffer that is its own parent", record(1, 0).bytes(), "earlier buffer"},
            {"a parent that comes later", record(2, 0).bytes(), "earlier buffer"},
            {"a pointer beyond its record", record(0, 16).bytes(), "earlier buffer"},
            {"a pointer at the end of the numbers", record(0, UINT32_MAX - 7).bytes(), "earlier buffer"},
            {"a pointer across a word", record(0, 4).bytes(), "earlier buffer"},
            {"a parent too small for a pointer", entry(0, 7).bytes(), "earlier buffer"},
            {"a buffer that is too long", entry(1, 9).bytes(), "lies within"},
            {"a buffer as long as can be said", entry(1, UINT32_MAX).bytes(), "lies within"},
            {"bytes after the last buffer", record(0, 0).trailing(8).bytes(), "ends with"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const char* rule = nullptr;
        MessageBuilder::receive(each.bytes, &rule);
        if (each.rule == nullptr) {
            EXPECT_STREQ(rule, nullptr);
        } else {
            ASSERT_NE(rule, nullptr);
            EXPECT_NE(std::string(rule).find(each.rule), std::string::npos) << rule;
        }
    }
}

}  // namespace
}  // namespace android::hardware
