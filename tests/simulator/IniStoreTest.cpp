#include "simulator/storage/IniStore.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "simulator/board/Status.h"
#include "tests/simulator/Support.h"

using namespace simulator;

namespace {

class IniStoreTest : public testing::Test {
  protected:
    int32_t set(const std::string& parameter, const std::string& value) {
        return mStore.set("f", parameter.c_str(), value.c_str());
    }
    /** The value, or the status as a text. */
    std::string get(const std::string& parameter) {
        char value[2048];
        const int32_t status = mStore.get("f", parameter.c_str(), value, sizeof(value));
        return status == kOk ? value : std::to_string(status);
    }

    TemporaryFolder mFolder;
    StateDirectory mState{mFolder.path()};
    IniStore mStore{mState};
};

}  // namespace

// Found before the C library's: times as kernels up to 6.12 have them, whose clock for files ticks every 10
// ms at worst.
extern "C" int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    const long result = syscall(SYS_newfstatat, folder, path, status, flags);
    for (timespec* time : {&status->st_mtim, &status->st_ctim}) {
        time->tv_nsec -= time->tv_nsec % 10'000'000;
    }
    return static_cast<int>(result);
}
extern "C" int fstat(int fd, struct stat* status) noexcept {
    return fstatat(fd, "", status, AT_EMPTY_PATH);
}

TEST_F(IniStoreTest, FillsTheBufferToItsLastByteAndNotBeyond) {
    ASSERT_EQ(set("key", "12345"), kOk);
    const struct {
        size_t size;
        int32_t status;
        const char* text;
    } rows[] = {{6, kOk, "12345"}, {5, kTooLong, ""}, {1, kTooLong, ""}, {0, kOutOfRange, "?"}};
    for (const auto& row : rows) {
        char buffer[8] = "?xxxxxx";
        EXPECT_EQ(mStore.get("f", "key", buffer, row.size), row.status) << row.size;
        EXPECT_EQ(std::string(buffer, strlen(row.text)), row.text);
        EXPECT_EQ(buffer[6], 'x');
        EXPECT_TRUE(row.size >= 6 || buffer[row.size == 0 ? 1 : row.size] == 'x') << row.size;
    }
    write(mFolder / "ini/f.ini", "key = " + std::string(2048, 'x') + "\n");
    EXPECT_EQ(get("key"), std::to_string(kTooLong));
}

TEST_F(IniStoreTest, SeesWhatAnEditorChangesInPlaceOrReplaces) {
    const std::string path = mFolder / "ini/f.ini";
    for (int round = 0; round < 50; ++round) {
        // The same size in the same file, mostly within one tick of the file system's clock; then once
        // more after the file has been old enough to be remembered.
        for (int write = 0; write < 3; ++write) {
            const std::string value = std::to_string(100 + 3 * round + write);
            ::write(path, "key = " + value + "\n");
            EXPECT_EQ(get("key"), value);
        }
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(path, now - std::chrono::hours(round + 1));
        EXPECT_EQ(get("key"), std::to_string(100 + 3 * round + 2));
    }
    std::filesystem::remove_all(mFolder / "ini");
    EXPECT_EQ(get("key"), std::to_string(kNotFound));
    EXPECT_EQ(set("key", "back"), kOk);
    EXPECT_EQ(get("key"), "back");
}

TEST_F(IniStoreTest, EitherStoresAReadableValueOrLeavesAStrangeFileAlone) {
    // Every short file over an alphabet of the characters that mean something.
    const std::string alphabet = "ks=[];\n\r \"";
    size_t stored = 0;
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < 3; ++i) {
        for (const char c : alphabet) {
            texts.push_back(texts[i] + c);
        }
    }
    for (const char* head : {"", "[s]\nk = 1\n", "[s\n", "k = 1\r\n"}) {
        for (size_t i = 0; i < texts.size(); i += 3) {
            const std::string text = head + texts[i];
            write(mFolder / "ini/f.ini", text);
            const int32_t status = set("s:k", "v");
            ASSERT_TRUE(status == kOk ? get("s:k") == "v" : contentOf(mFolder / "ini/f.ini") == text) << text;
            stored += status == kOk;
        }
    }
    EXPECT_GT(stored, 1000U);
}
