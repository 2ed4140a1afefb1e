#include <cutils/native_handle.h>
#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>
#include <hwbinder/Parcel.h>

#include <functional>
#include <new>
#include <string>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

/** Makes a parcel the reader of what was built, which must pass the message's own checks. */
void receive(const std::vector<uint8_t>& bytes, Parcel* parcel) {
    ASSERT_STREQ(MessageBuilder::receive(bytes, parcel), nullptr);
}

status_t readText(const Parcel& parcel, const hidl_string** text) {
    size_t handle = 0;
    const status_t status = parcel.readBuffer(sizeof(**text), &handle, reinterpret_cast<const void**>(text));
    return status != OK ? status
                        : readEmbeddedFromParcel(const_cast<hidl_string&>(**text), parcel, handle, 0);
}

template <typename T>
status_t readVec(const Parcel& parcel, const hidl_vec<T>** vec, size_t* child) {
    size_t handle = 0;
    const status_t status = parcel.readBuffer(sizeof(**vec), &handle, reinterpret_cast<const void**>(vec));
    return status != OK ? status
                        : readEmbeddedFromParcel(const_cast<hidl_vec<T>&>(**vec), parcel, handle, 0, child);
}

TEST(Parcel, ATextThatIsNotWhatItsRecordSaysIsRefused) {
    const std::string four("four\0", 5);
    struct Case {
        const char* name;
        MessageBuilder message;
        status_t expected;
    };
    const Case cases[] = {
            {"as announced", MessageBuilder().reference(4).buffer(four, 0), OK},
            {"empty", MessageBuilder().reference(0).buffer(std::string(1, '\0'), 0), OK},
            {"no NUL at its end", MessageBuilder().reference(4).buffer("fours", 0), BAD_VALUE},
            {"shorter than announced", MessageBuilder().reference(5).buffer(four, 0), BAD_VALUE},
            {"longer than announced", MessageBuilder().reference(3).buffer(four, 0), BAD_VALUE},
            {"a length that wraps", MessageBuilder().reference(UINT32_MAX).buffer("", 0), BAD_VALUE},
            {"nobody's text", MessageBuilder().reference(4).buffer(four), BAD_VALUE},
            {"at another place", MessageBuilder().reference(4).buffer(four, 0, 8), BAD_VALUE},
            {"missing", MessageBuilder().reference(4), NOT_ENOUGH_DATA},
            {"before its record", MessageBuilder().buffer(four).reference(4), BAD_VALUE},
            {"a record of another size", MessageBuilder().buffer(std::string(24, '\4')).buffer(four, 0),
             BAD_VALUE},
            {"no record", MessageBuilder().scalar<int64_t>(4), NOT_ENOUGH_DATA},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        receive(each.message.bytes(), &parcel);
        const hidl_string* text = nullptr;
        EXPECT_EQ(readText(parcel, &text), each.expected);
    }
}

TEST(Parcel, ASequenceThatIsNotWhatItsRecordSaysIsRefused) {
    struct Case {
        const char* name;
        MessageBuilder message;
        status_t expected;
    };
    const Case cases[] = {
            {"as announced", MessageBuilder().reference(2).buffer(std::string(16, 'n'), 0), OK},
            {"empty", MessageBuilder().reference(0).buffer("", 0), OK},
            {"empty with elements", MessageBuilder().reference(0).buffer("12345678", 0), BAD_VALUE},
            {"bytes in place of numbers", MessageBuilder().reference(8).buffer("12345678", 0), BAD_VALUE},
            {"as many as can be said", MessageBuilder().reference(UINT32_MAX).buffer("12345678", 0),
             BAD_VALUE},
            {"another's elements",
             MessageBuilder().buffer(std::string(16, '\0')).reference(1).buffer("12345678", 0), BAD_VALUE},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        receive(each.message.bytes(), &parcel);
        const hidl_vec<uint64_t>* numbers = nullptr;
        size_t child = 0;
        EXPECT_EQ(readVec(parcel, &numbers, &child), each.expected);
        if (each.expected == OK) {
            EXPECT_EQ(numbers->data() == nullptr, numbers->empty());
        }
    }
}

TEST(Parcel, ANativeHandleThatIsNotWhatItSaysIsRefused) {
    struct Case {
        const char* name;
        std::vector<int> words;  // version, descriptors, integers, and these
        uint32_t descriptors;
        status_t expected;
    };
    constexpr int kVersion = sizeof(native_handle_t);
    const Case cases[] = {
            {"as it says", {kVersion, 1, 1, 0, 77}, 1, OK},
            {"of another version", {kVersion + 1, 1, 1, 0, 77}, 1, BAD_VALUE},
            {"longer", {kVersion, 1, 1, 0, 77, 78}, 1, BAD_VALUE},
            {"shorter", {kVersion, 1, 2, 0, 77}, 1, BAD_VALUE},
            {"more descriptors than come", {kVersion, 2, 0, 0, 0}, 1, BAD_VALUE},
            {"fewer descriptors", {kVersion, 1, 1, 0, 0}, 2, BAD_VALUE},
            {"fewer than none", {kVersion, -1, 3, 0, 0}, 0, BAD_VALUE},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const size_t size = each.words.size() * sizeof(int);
        Parcel parcel;
        receive(MessageBuilder()
                        .scalar<uint64_t>(size)
                        .record(each.words.data(), size)
                        .descriptors(each.descriptors)
                        .bytes(),
                &parcel);
        const native_handle_t* handle = nullptr;
        EXPECT_EQ(parcel.readNullableNativeHandleNoDup(&handle), each.expected);
        EXPECT_EQ(handle != nullptr, each.expected == OK);
    }
    std::vector<int> many(3 + NATIVE_HANDLE_MAX_FDS + 1);
    many[0] = kVersion;
    many[1] = NATIVE_HANDLE_MAX_FDS + 1;
    Parcel sent;
    EXPECT_EQ(sent.writeNativeHandleNoDup(reinterpret_cast<native_handle_t*>(many.data())), BAD_VALUE);
}

TEST(Parcel, AReceivedValueOwnsNothingAndPointsIntoItsMessage) {
    native_handle_t empty{};
    empty.version = sizeof(empty);
    Parcel parcel;
    receive(MessageBuilder()
                    .reference(2, 7)
                    .buffer(std::string("ok\0", 3), 0)
                    .reference(1, 1)
                    .buffer("12345678", 2)
                    .reference(1)  // which a handle takes for what it owns
                    .scalar<uint64_t>(sizeof(empty))
                    .record(&empty, sizeof(empty), 4)
                    .descriptors(0)
                    .buffer("more")
                    .bytes(),
            &parcel);
    const hidl_string* text = nullptr;
    const hidl_vec<uint64_t>* numbers = nullptr;
    size_t child = 0;
    ASSERT_EQ(readText(parcel, &text), OK);
    ASSERT_EQ(readVec(parcel, &numbers, &child), OK);
    // Whatever a stub does with its arguments, no byte of the message is given to the allocator.
    const_cast<hidl_string*>(text)->clear();
    const_cast<hidl_vec<uint64_t>*>(numbers)->resize(0);
    const void* data = nullptr;
    size_t handle = 0;
    ASSERT_EQ(parcel.readBuffer(sizeof(hidl_handle), &handle, &data), OK);
    auto& received = *static_cast<hidl_handle*>(const_cast<void*>(data));
    ASSERT_EQ(readEmbeddedFromParcel(received, parcel, handle, 0), OK);
    EXPECT_TRUE(received != nullptr);
    received.setTo(nullptr, false);
    // What is no buffer has no number that could be a parent's.
    EXPECT_EQ(parcel.readEmbeddedBuffer(4, &handle, kNoParent, 0, &data), BAD_VALUE);
    // A second pass over the same bytes finds nothing that it may read.
    EXPECT_EQ(readText(parcel, &text), BAD_VALUE);
}

TEST(Parcel, AnyByteFromAPeerMakesABooleanOfThisProcess) {
    Parcel parcel;
    receive(MessageBuilder().scalar<uint8_t>(7).scalar<uint8_t>(0).reference(3).buffer("\7\1\377", 0).bytes(),
            &parcel);
    bool first = false;
    bool second = true;
    EXPECT_TRUE(parcel.readBool(&first) == OK && parcel.readBool(&second) == OK);
    EXPECT_TRUE(first && !second);
    const hidl_vec<bool>* flags = nullptr;
    size_t child = 0;
    ASSERT_EQ(readVec(parcel, &flags, &child), OK);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(flags->data()), 3), "\1\1\1");
}

TEST(Parcel, ScalarsAndTextsEndWhereTheMessagesScalarsEnd) {
    struct Case {
        const char* name;
        MessageBuilder message;
        bool hasText;
        bool hasNumber;  // of 64 bits
    };
    // Words of other scalars or buffers follow in the block, so reading on would find something.
    const std::string tail(16, '\1');
    const Case cases[] = {
            {"nothing", MessageBuilder().buffer(tail), false, false},
            {"seven bytes", MessageBuilder().raw("\377\377\377\377\377\377\377"), false, false},
            {"eight without a NUL", MessageBuilder().scalar(uint64_t{0x4141414141414141}).buffer(tail), false,
             true},
            {"seven and a NUL", MessageBuilder().text("1234567").buffer(tail), true, true},
            {"an empty text", MessageBuilder().text("").buffer(tail), true, false},
            {"a text cut short of its padding", MessageBuilder().raw({"12345", 6}), true, false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        receive(each.message.bytes(), &parcel);
        uint64_t number = 0;
        EXPECT_EQ(parcel.readUint64(&number), each.hasNumber ? OK : NOT_ENOUGH_DATA);
        Parcel again;
        receive(each.message.bytes(), &again);
        EXPECT_EQ(again.readCString() != nullptr, each.hasText);
    }
}

TEST(Parcel, OnlyTheExactInterfaceNameIsTheCallsInterface) {
    for (const char* name : {"a@1.0::IA", "a@1.0::I", "a@1.0::IAB", ""}) {
        Parcel parcel;
        receive(MessageBuilder().text(name).bytes(), &parcel);
        EXPECT_EQ(parcel.enforceInterface("a@1.0::IA"), std::string(name) == "a@1.0::IA") << name;
    }
}

TEST(Parcel, AnUnreadObjectIsGivenUpOnceAndTheMemoryIsKeptUntilThen) {
    using Numbers = std::vector<uint64_t>;
    struct Case {
        int reads;
        Numbers taken, dropped;
    };
    for (const auto& [reads, taken, dropped] :
         {Case{0, {}, {1, 2, 3}}, Case{1, {1}, {2, 3}}, Case{2, {1}, {2, 3}}, Case{4, {1, 2, 3}, {}}}) {
        SCOPED_TRACE(reads);
        const std::vector<uint8_t> bytes =
                MessageBuilder().object(1).object(0).object(2).object(3).buffer("last").bytes();
        static int sReleased;
        sReleased = 0;
        const auto objects = std::make_shared<NotedObjects>();
        {
            std::vector<uint8_t> block(bytes);
            ASSERT_STREQ(Message::check(block.data()), nullptr);
            ReceivedParcel received = Message(block.data()).received();
            received.objects = objects;
            received.memory = {nullptr, 0, [](void*, size_t) { ++sReleased; }};
            Parcel parcel;
            parcel.receive(std::move(received));
            sp<IBinder> object;
            size_t handle = 0;
            const void* data = nullptr;
            for (int i = 0; i < reads; ++i) {
                EXPECT_NE(parcel.readBuffer(4, &handle, &data), OK) << "an object is no buffer";
                EXPECT_EQ(parcel.readNullableStrongBinder(&object), OK);
            }
            EXPECT_TRUE(reads < 4 || parcel.readNullableStrongBinder(&object) != OK) << "nor the reverse";
            EXPECT_EQ(sReleased, 0);
        }
        EXPECT_EQ(sReleased, 1);
        EXPECT_EQ(objects->taken, taken);
        EXPECT_EQ(objects->dropped, dropped);
    }
}

TEST(Parcel, ScalarsLieAsOnTheDevice) {
    struct Case {
        const char* name;
        std::function<status_t(Parcel&)> write;
        std::string expected;
    };
    const Case cases[] = {
            {"one byte", [](Parcel& p) { return p.writeInt8(-1); }, {"\377\0\0\0", 4}},
            {"truth", [](Parcel& p) { return p.writeBool(true); }, {"\1\0\0\0", 4}},
            {"two bytes", [](Parcel& p) { return p.writeUint16(0x0201); }, {"\1\2\0\0", 4}},
            {"four bytes", [](Parcel& p) { return p.writeUint32(0x04030201); }, "\1\2\3\4"},
            {"eight bytes", [](Parcel& p) { return p.writeUint64(0x0807060504030201); }, "\1\2\3\4\5\6\7\10"},
            {"a name", [](Parcel& p) { return p.writeInterfaceToken("a@1::I"); }, {"a@1::I\0\0", 8}},
            {"a text of a word", [](Parcel& p) { return p.writeCString("1234"); }, {"1234\0\0\0\0", 8}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        alignas(Parcel) uint8_t memory[sizeof(Parcel)];
        std::memset(memory, 0xA5, sizeof(memory));  // what lay there before must not travel
        auto* const parcel = new (memory) Parcel;
        EXPECT_EQ(each.write(*parcel), OK);
        EXPECT_EQ(std::string(parcel->scalars().begin(), parcel->scalars().end()), each.expected);
        parcel->~Parcel();
    }
}

TEST(Parcel, ABuffersPlaceInItsParentIsCheckedWhenItIsWritten) {
    struct Case {
        size_t parent, offset;
        status_t expected;
    };
    for (const auto& [parent, offset, expected] :
         {Case{0, 0, OK}, Case{0, 8, OK}, Case{0, 9, BAD_VALUE}, Case{0, 16, BAD_VALUE},
          Case{0, SIZE_MAX - 7, BAD_VALUE}, Case{0, 4, BAD_VALUE}, Case{1, 0, BAD_VALUE},
          Case{2, 0, BAD_VALUE}, Case{4, 0, BAD_VALUE}, Case{5, 0, BAD_VALUE}}) {
        NATIVE_HANDLE_DECLARE_STORAGE(storage, 8, 0);
        Parcel parcel;
        const char bytes[16] = {};
        size_t handle = 0;
        ASSERT_TRUE(parcel.writeBuffer(bytes, 16, &handle) == OK &&
                    parcel.writeBuffer(bytes, 7, &handle) == OK && parcel.writeStrongBinder(nullptr) == OK &&
                    parcel.writeNativeHandleNoDup(native_handle_init(storage, 8, 0)) == OK);
        EXPECT_EQ(parcel.writeEmbeddedBuffer(bytes, 16, &handle, parent, offset), expected)
                << parent << " " << offset;
        EXPECT_EQ(parcel.writeBuffer(bytes, kMaxTransactionBytes + 1, &handle), FAILED_TRANSACTION);
        Encoder encoder;
        EXPECT_EQ(encoder.encode({}, parcel, nullptr), expected == OK ? FAILED_TRANSACTION : expected)
                << "the first failure, though nobody looked at it";
    }
}

TEST(Parcel, ATransactionTakesWhatItTakesOnTheDevice) {
    const hidl_string text = "hello";
    const auto writeText = [&](Parcel& parcel) {
        size_t handle = 0;
        parcel.writeBuffer(&text, sizeof(text), &handle);
        writeEmbeddedToParcel(text, &parcel, handle, 0);
    };
    struct Case {
        const char* name;
        std::function<void(Parcel&)> write;
        size_t bytes;
    };
    const Case cases[] = {
            {"nothing", [](Parcel&) {}, 0},
            {"a number", [](Parcel& p) { p.writeInt32(1); }, 8},
            {"a text", writeText, 2 * 40 + 2 * 8 + 16 + 8},
            {"a name, a byte and a text",
             [&](Parcel& p) {
                 p.writeInterfaceToken("a@1.0::IA");
                 p.writeInt8(1);
                 writeText(p);
             },
             (12 + 4 + 2 * 40) + 2 * 8 + 16 + 8},
            {"a null object", [](Parcel& p) { p.writeStrongBinder(nullptr); }, 24},
            {"a number and objects",
             [](Parcel& p) {
                 p.writeInt32(1);
                 p.writeStrongBinder(new NoObject);
                 p.writeStrongBinder(nullptr);
             },
             56 + 8},
    };
    for (const Case& each : cases) {
        Parcel parcel;
        each.write(parcel);
        EXPECT_EQ(parcel.transactionBytes(), each.bytes) << each.name;
    }
}

}  // namespace
}  // namespace android::hardware
