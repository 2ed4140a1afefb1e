#include <hidl/Status.h>

#include <gtest/gtest.h>

#include <functional>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

Return<int32_t> failing() {
    return Status::fromStatusT(DEAD_OBJECT);
}

TEST(ReturnDeathTest, AFailedCallThatNobodyAskedAboutEndsTheProcess) {
    struct Case {
        const char* name;
        std::function<void()> use;
        const char* message;
    };
    const Case cases[] = {
            {"dropped", [] { failing(); }, "dropped unchecked.*DEAD_OBJECT"},
            {"without a value", [] { Return<void>(Status::fromExceptionCode(-3, "too big")); }, "too big"},
            {"an object's", [] { Return<sp<RefBase>>(Status::fromStatusT(BAD_TYPE)); }, "BAD_TYPE"},
            {"moved", [] { const Return<int32_t> moved = failing(); }, "dropped unchecked"},
            {"overwritten",
             [] {
                 Return<int32_t> result = failing();
                 result = 1;
             },
             "dropped unchecked"},
            {"described only", [] { failing().description(); }, "dropped unchecked"},
            {"used",
             [] {
                 const int32_t value = failing();
                 (void)value;
             },
             "used as if it had not"},
            {"used after a look",
             [] {
                 const Return<int32_t> result = failing();
                 const int32_t value = result.isOk() ? 0 : int32_t(result);
                 (void)value;
             },
             "used as if it had not"},
            {"asserted", [] { failing().assertOk(); }, "used as if it had not"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_DEATH(each.use(), each.message);
    }
}

TEST(Return, AnyLookAtItChecksIt) {
    EXPECT_FALSE(failing().isOk());
    EXPECT_TRUE(failing().isDeadObject());
    EXPECT_EQ(failing().withDefault(5), 5);
    Return<int32_t> source = failing();
    const Return<int32_t> target = std::move(source);  // the source is dropped with nothing left to check
    EXPECT_FALSE(target.isOk());
    EXPECT_EQ(int32_t(Return<int32_t>(7)), 7);
    EXPECT_TRUE(Void().isOk());
}

TEST(Status, TravelsWithItsMessageAndNeverAsADeadPeer) {
    struct Case {
        const char* name;
        MessageBuilder message;
        status_t expected;
        int32_t exception;
        const char* text;
    };
    const Case cases[] = {
            {"fine", MessageBuilder().scalar<int32_t>(0), OK, Status::EX_NONE, ""},
            {"exception", MessageBuilder().scalar<int32_t>(-3).text("why"), OK, Status::EX_ILLEGAL_ARGUMENT,
             "why"},
            {"transport error", MessageBuilder().scalar<int32_t>(-129).text(""), OK,
             Status::EX_TRANSACTION_FAILED, ""},
            {"without its message", MessageBuilder().scalar<int32_t>(-3), NOT_ENOUGH_DATA, 0, ""},
            {"cut off", MessageBuilder().raw("\1\1"), NOT_ENOUGH_DATA, 0, ""},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Parcel parcel;
        EXPECT_STREQ(MessageBuilder::receive(each.message.bytes(), &parcel), nullptr);
        Status status;
        EXPECT_EQ(readFromParcel(&status, parcel), each.expected);
        EXPECT_EQ(status.exceptionCode(), each.exception);
        EXPECT_STREQ(status.exceptionMessage(), each.text);
        EXPECT_FALSE(status.isDeadObject());

        if (each.expected == OK) {
            Parcel written;
            EXPECT_EQ(writeToParcel(status, &written), OK);
            const auto& scalars = written.scalars();
            const MessageBuilder again = MessageBuilder().raw({scalars.begin(), scalars.end()});
            EXPECT_EQ(again.bytes(), each.message.bytes());
        }
    }
}

}  // namespace
}  // namespace android::hardware
