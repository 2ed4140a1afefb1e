// Pictures of the real service's board, fetched with the tool.

#include "tests/process/ServiceFixture.h"

namespace {

class CaptureTest : public ServiceFixture {
  protected:
    CaptureTest() { startAndWait(); }

    int capture(std::vector<std::string> words) const {
        words.insert(words.begin(), {getenv("ZVTTV_TEST_FAPICTL"), "capture"});
        return ChildProcess(words, mState + "/errors").wait();
    }
};

TEST_F(CaptureTest, BringsAPngAndLeavesNothingOnTheBoard) {
    const std::string picture = mState + "/panel.png";
    EXPECT_EQ(0, capture({picture})) << contentOf(mState + "/errors");
    EXPECT_EQ("\x89PNG\r\n\x1a\n", contentOf(picture).substr(0, 8));
    const std::string whole = contentOf(picture);
    EXPECT_EQ(0, capture({picture, "graphics"}));
    EXPECT_NE(whole, contentOf(picture));
    EXPECT_TRUE(std::filesystem::is_empty(mState + "/files/usb"));
}

TEST_F(CaptureTest, SaysWhichOfItsDutiesFailed) {
    EXPECT_EQ(2, capture({mState + "/x.png", "vide"}));
    EXPECT_EQ(5, capture({mState + "/missing/x.png"}));
    std::filesystem::remove_all(mState + "/files/usb");
    std::ofstream(mState + "/files/usb") << "no folder";
    EXPECT_EQ(1, capture({mState + "/x.png"}));
    setenv("ZVTTV_STATE_DIR", "/nowhere", 1);
    std::filesystem::remove(mState + "/files/usb");
    EXPECT_EQ(5, capture({mState + "/x.png"}));
    EXPECT_NE(std::string::npos, contentOf(mState + "/errors").find("is ZVTTV_STATE_DIR the same"));
    EXPECT_FALSE(std::filesystem::exists(mState + "/x.png"));
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const RegistryFolder registry;
    return RUN_ALL_TESTS();
}
