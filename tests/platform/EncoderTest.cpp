#include "platform/socket/Encoder.h"

#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>

#include <new>
#include <string>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

/** Gives objects the numbers from 1 on. */
struct Numbering final : ObjectExporter {
    status_t exportObject(const sp<IBinder>&, ObjectReference* reference) override {
        *reference = {{}, ++given, 0};
        return OK;
    }
    uint64_t given = 0;
};

TEST(Encoder, NoAddressAndNoStaleByteOfTheSenderGoesOut) {
    for (const size_t length : {2u, 5001u}) {  // copied; sent from where it lies
        const hidl_string text(std::string(length, 't'));
        std::string wide(4200, 'w');  // with a place for a pointer beyond what is copied
        Parcel parcel;
        size_t handle = 0;
        parcel.writeInt8(5);
        parcel.writeStrongBinder(new NoObject);
        parcel.writeBuffer(&text, sizeof(text), &handle);
        writeEmbeddedToParcel(text, &parcel, handle, 0);
        parcel.writeBuffer(wide.data(), wide.size(), &handle);
        parcel.writeEmbeddedBuffer("abc", 3, &handle, handle, 4192);
        parcel.writeEmbeddedBuffer(nullptr, 0, &handle, 3, 8);
        parcel.writeStrongBinder(nullptr);
        parcel.writeStrongBinder(new NoObject);

        alignas(Encoder) uint8_t memory[sizeof(Encoder)];
        std::memset(memory, 0xA5, sizeof(memory));
        auto* const encoder = new (memory) Encoder;
        Numbering numbering;
        MessageHeader head{};
        head.kind = MessageKind::Call;
        ASSERT_EQ(encoder->encode(head, parcel, &numbering), OK);
        const RawReference record{0, static_cast<uint32_t>(length), 1, {}};
        wide.replace(8, 8, 8, '\0');
        wide.replace(4192, 8, 8, '\0');
        const std::vector<uint8_t> expected = MessageBuilder()
                                                      .scalar<int8_t>(5)
                                                      .object(1)
                                                      .record(&record, sizeof(record))
                                                      .buffer({text.c_str(), length + 1}, 1)
                                                      .buffer(wide)
                                                      .buffer("abc", 3, 4192)
                                                      .buffer("", 3, 8)
                                                      .object(0)
                                                      .object(2)
                                                      .bytes();
        const Gather gather = encoder->gather();
        EXPECT_EQ(gather.bytes, expected.size());
        EXPECT_TRUE(bytesOf(gather) == expected) << length;
        encoder->~Encoder();
    }
}

TEST(Encoder, MoreThanATransactionIsRefusedAndWhatGoesOutIsNeverRefusedForItsLength) {
    const std::string bytes(kMaxTransactionBytes + 1, 'b');
    struct Case {
        const char* name;
        size_t buffer;   // bytes of one
        size_t objects;  // beside it
        size_t most;
        status_t expected;
    };
    constexpr size_t kBuffer = 40 + 8;  // what a buffer takes beside its bytes
    const Case cases[] = {
            {"as long as can be", kMaxTransactionBytes - kBuffer, 0, kMaxTransactionBytes, OK},
            {"longer", kMaxTransactionBytes - kBuffer + 1, 0, kMaxTransactionBytes, FAILED_TRANSACTION},
            {"far longer", kMaxTransactionBytes + 1, 0, kMaxTransactionBytes, FAILED_TRANSACTION},
            {"one way", kMaxOneWayBytes - kBuffer, 0, kMaxOneWayBytes, OK},
            {"one way, longer", kMaxOneWayBytes - kBuffer + 1, 0, kMaxOneWayBytes, FAILED_TRANSACTION},
            {"objects", 8, 20'000, kMaxTransactionBytes, OK},
            {"objects whose references take more than they do on the device", 8, 30'000, kMaxTransactionBytes,
             FAILED_TRANSACTION},
    };
    const sp<IBinder> object = new NoObject;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        size_t handle = 0;
        parcel.writeBuffer(bytes.data(), each.buffer, &handle);
        for (size_t i = 0; i < each.objects; ++i) {
            parcel.writeStrongBinder(object);
        }
        Encoder encoder;
        Numbering numbering;
        ASSERT_EQ(encoder.encode({}, parcel, &numbering, each.most), each.expected);
        EXPECT_EQ(numbering.given, each.expected == OK ? each.objects : 0) << "none is exported for nothing";
        if (each.expected == OK) {
            EXPECT_STREQ(Message::checkHeader(Message(bytesOf(encoder.gather()).data()).header()), nullptr);
        }
    }
}

}  // namespace
}  // namespace android::hardware
