// Pictures of the real service's board, fetched with the tool.

#include "tests/process/ServiceFixture.h"

namespace {

class CaptureTest : public ServiceFixture {
  protected:
    CaptureTest() { startAndWait(); }

    void capture(std::vector<std::string> words, int code = 0) const {
        words.insert(words.begin(), "capture");
        tool(words, code, mState + "/errors");
    }
};

TEST_F(CaptureTest, BringsAPngAndLeavesNothingOnTheBoard) {
    const std::string picture = mState + "/panel.png";
    capture({picture});
    EXPECT_EQ("\x89PNG\r\n\x1a\n", contentOf(picture).substr(0, 8));
    const std::string whole = contentOf(picture);
    capture({picture, "graphics"});
    EXPECT_NE(whole, contentOf(picture));
    EXPECT_TRUE(std::filesystem::is_empty(mState + "/files/usb"));
}

TEST_F(CaptureTest, SaysWhichOfItsDutiesFailed) {
    capture({mState + "/x.png", "vide"}, 2);
    capture({mState + "/missing/x.png"}, 5);
    std::filesystem::remove_all(mState + "/files/usb");
    std::ofstream(mState + "/files/usb") << "no folder";
    capture({mState + "/x.png"}, 1);
    setenv("ZVTTV_STATE_DIR", "/nowhere", 1);
    std::filesystem::remove(mState + "/files/usb");
    capture({mState + "/x.png"}, 5);
    EXPECT_NE(std::string::npos, contentOf(mState + "/errors").find("is ZVTTV_STATE_DIR the same"));
    EXPECT_FALSE(std::filesystem::exists(mState + "/x.png"));
}

}  // namespace
