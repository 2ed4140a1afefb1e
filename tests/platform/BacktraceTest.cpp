#include <gtest/gtest.h>
#include <utils/CallStack.h>
#include <utils/String8.h>

#include <fstream>
#include <sstream>

namespace {

bool isLoaded(const char* library) {
    std::stringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    return maps.str().find(library) != std::string::npos;
}

TEST(CallStack, IsFoundByALibraryThatIsLoadedOnlyThen) {
    EXPECT_FALSE(isLoaded("/7z.so"));
    android::CallStack stack;
    stack.update();
    EXPECT_TRUE(isLoaded("/7z.so"));
    const std::string frames = stack.toString().c_str();
    EXPECT_NE(std::string::npos, frames.find("runtime-process-test")) << frames;
}

}  // namespace
