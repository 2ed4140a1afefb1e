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
                .buffer("long text", parent, offset);
    };
    const auto head = [&](const std::function<void(MessageHeader&)>& lie) {
        return record(0, 0).lieInHead(lie);
    };
    const auto piece = [&](size_t index, uint32_t size) {
        return record(0, 0).lieInPiece(index, [=](ParcelPiece& each) { each.size = size; });
    };
    const auto object = [](const std::function<void(ParcelPiece&)>& lie) {
        return MessageBuilder().object(7).lieInPiece(0, lie);
    };
    struct Case {
        const char* name;
        MessageBuilder message;
        const char* rule;  // a part of its text; null: accepted
    };
    const Case cases[] = {
            {"head alone", MessageBuilder(), nullptr},
            {"scalars that need padding", MessageBuilder().scalar<uint8_t>(1), nullptr},
            {"a pointer at the end of its record", record(0, 8), nullptr},
            {"an empty buffer", MessageBuilder().buffer(""), nullptr},
            {"objects among buffers", record(0, 0).object(7).object(0).buffer("b", 0).object(8), nullptr},
            {"another magic", head([](auto& h) { h.magic ^= 1; }), "magic"},
            {"no room for its head", head([](auto& h) { h.totalBytes = 40; }), "covers its header"},
            {"an odd length", head([](auto& h) { h.totalBytes -= 4; }), "multiple of 8"},
            {"over the limit", head([](auto& h) { h.totalBytes = kMaxMessageBytes + 8; }), "one transaction"},
            {"too many pieces", head([](auto& h) { h.pieceCount = 0x10000003; }), "table of pieces"},
            {"more references than pieces", head([](auto& h) { h.objectCount = 3; }), "references lie"},
            {"too many references", MessageBuilder().object(0).lieInHead([](auto& h) { h.objectCount = 1; }),
             "references lie"},
            {"too many scalars", head([](auto& h) { h.scalarBytes = UINT32_MAX; }), "scalars"},
            {"scalars in place of buffers", head([](auto& h) { h.scalarBytes += 24; }), "lies within"},
            {"a buffer that is its own parent", record(1, 0), "earlier buffer"},
            {"a parent that comes later", record(2, 0).buffer("the parent"), "earlier buffer"},
            {"a parent that is an object", MessageBuilder().object(7).buffer("b", 0), "earlier buffer"},
            {"a pointer beyond its record", record(0, 16), "earlier buffer"},
            {"a pointer at the end of the numbers", record(0, UINT32_MAX - 7), "earlier buffer"},
            {"a pointer across a word", record(0, 4), "earlier buffer"},
            {"a parent too small for a pointer", piece(0, 7), "earlier buffer"},
            {"a place in no parent", record(kNoParent, 8), "no place in it"},
            {"a buffer that is too long", piece(1, 17), "lies within"},
            {"a buffer as long as can be said", piece(1, UINT32_MAX), "lies within"},
            {"bytes after the last buffer", record(0, 0).trailing(8), "ends with"},
            {"descriptors in a native handle", MessageBuilder().buffer(std::string(20, 'h')).descriptors(2),
             nullptr},
            {"descriptors in too small a buffer",
             MessageBuilder().buffer(std::string(19, 'h')).descriptors(2), "in the native handle"},
            {"descriptors in nothing", MessageBuilder().descriptors(0), "in the native handle"},
            {"descriptors in an object", MessageBuilder().object(7).descriptors(0), "in the native handle"},
            {"too many descriptors", MessageBuilder().buffer(std::string(80, 'h')).descriptors(17), "few"},
            {"more descriptors than there are places for", head([](auto& h) { h.descriptorCount = 1; }),
             "has its native handle"},
            {"a parent that is descriptors",
             MessageBuilder().buffer(std::string(20, 'h')).descriptors(2).buffer("b", 1), "earlier buffer"},
            {"two objects in one", object([](auto& o) { o.size = 2; }), "one or null"},
            {"an object within something", object([](auto& o) { o.parentOffset = 8; }), "one or null"},
            {"a null object with a reference", object([](auto& o) { o.size = 0; }), "every reference"},
            {"a reference too many", MessageBuilder().object(7).buffer("").strayReference({{}, 8, 0}),
             "every reference"},
            {"an object without a reference",
             MessageBuilder().object(7).object(0).lieInPiece(1, [](auto& o) { o.size = 1; }), "every object"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        const char* const rule =
                MessageBuilder::receive(each.message.bytes(), &parcel, std::make_shared<NotedObjects>());
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
