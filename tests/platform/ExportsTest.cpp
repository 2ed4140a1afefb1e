#include "platform/socket/Exports.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

TEST(Exports, AnObjectStaysWhileItIsPinnedOrAPeersOwnBalanceHoldsIt) {
    struct Case {
        const char* name;
        // One letter a step. p, u: pin, unpin. a, b: the peers A and B are sent a reference. h: A is handed
        // one by a third. A, B: they give one back. M: A gives back more than can be. x: A is gone.
        const char* steps;
        const char* exported;  // after each of them
    };
    const Case cases[] = {
            {"two pins", "ppuu", "1110"},
            {"two peers", "aabABA", "111110"},
            {"what A does not have is not taken from B", "abAAAB", "111110"},
            {"nor from the pin", "paAAAu", "111110"},
            {"but from its own next ones", "bAaB", "1110"},
            {"even if it says that it gives back all there are", "abMaB", "11110"},
            {"handed over before it is given back", "phuA", "1110"},
            {"handed over after", "pAhu", "1110"},
            {"a peer that goes holds no more", "aabxB", "11110"},
            {"nor if it has given back too many", "bAAxB", "11110"},
            {"nor if it was even again", "bAAaaaAxB", "111111110"},
            {"nor from then on", "xaphu", "00110"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Exports exports;
        auto owned = std::make_unique<Holds>();
        Holds& a = *owned;
        Holds b;
        const sp<BHwBinder> object = new NoObject;
        uint64_t number = 0;
        uint64_t nonce = 0;
        std::string exported;
        for (const char step : std::string(each.steps)) {
            switch (step) {
                case 'p':
                    exports.pin(object, &number, &nonce);
                    break;
                case 'u':
                    exports.unpin(number);
                    break;
                case 'a':
                case 'b':
                    EXPECT_NE(exports.hold(object, step == 'a' ? &a : &b, &number, &nonce), a.closed);
                    break;
                case 'h':
                    EXPECT_NE(exports.holdFor(number, nonce, &a), a.closed);
                    break;
                case 'A':
                case 'B':
                    exports.release(number, 1, step == 'A' ? &a : &b);
                    break;
                case 'M':
                    exports.release(number, UINT64_MAX, &a);
                    break;
                default:
                    exports.releaseAll(&a);
            }
            exported += std::to_string(exports.size());
            EXPECT_EQ(exports.find(number, nonce) == object, exports.size() == 1);
        }
        EXPECT_EQ(exported, each.exported);
        EXPECT_TRUE(a.balances.empty() && b.balances.empty());
        EXPECT_EQ(object->getStrongCount(), 1);
    }
}

TEST(Exports, NobodyReachesOrKeepsWhatIsNotThere) {
    Exports exports;
    Holds holds;
    const sp<BHwBinder> object = new NoObject;
    uint64_t number = 0;
    uint64_t nonce = 0;
    exports.pin(object, &number, &nonce);
    for (const auto& [guessed, secret] :
         {std::pair(number, nonce + 1), std::pair(number + 1, nonce), std::pair(uint64_t{0}, uint64_t{0})}) {
        EXPECT_EQ(exports.find(guessed, secret), nullptr);
        EXPECT_FALSE(exports.holdFor(guessed, secret, &holds));
    }
    exports.release(number + 1, 5, &holds);
    exports.release(number, 0, &holds);
    EXPECT_TRUE(holds.balances.empty());
    exports.unpin(number);
    uint64_t next = 0;
    exports.pin(object, &next, &nonce);
    EXPECT_NE(next, number) << "a late call can not reach another object";
}

}  // namespace
}  // namespace android::hardware
