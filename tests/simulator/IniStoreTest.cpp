#include "simulator/storage/IniStore.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <vector>

#include "simulator/board/Status.h"
#include "simulator/storage/IniText.h"
#include "tests/simulator/Support.h"

using namespace simulator;
using testing::EndsWith;

namespace {

class IniStoreTest : public testing::Test {
  protected:
    int32_t set(const std::string& file, const std::string& parameter, const std::string& value) {
        return mStore.set(file.c_str(), parameter.c_str(), value.c_str());
    }

    /** The value, or the status as a text. */
    std::string get(const std::string& file, const std::string& parameter) {
        char value[2048];
        const int32_t status = mStore.get(file.c_str(), parameter.c_str(), value, sizeof(value));
        return status == kOk ? value : std::to_string(status);
    }

    std::string probe(const std::string& arguments) const {
        return ::probe("ZVTTV_STATE_DIR=" + mFolder.path(), arguments);
    }

    TemporaryFolder mFolder;
    StateDirectory mState{mFolder.path()};
    IniStore mStore{mState};
};

}  // namespace

TEST_F(IniStoreTest, GivesBackWhatWasSetToThisAndOtherProcesses) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte) {
        everyByte += byte == '\n' || byte == '\r' ? '.' : static_cast<char>(byte);
    }
    const std::string values[] = {"60",           "",           " ",
                                  " both ends ",  " front",     "back ",
                                  "\t",           "\"quoted\"", "\"",
                                  "\"\"",         "a\"b",       "\" \"",
                                  "; no comment", "# nor this", "[no section]",
                                  "a=b=c",        "<<<TAG",     "naïve – 日本",
                                  "\xff\xfe\x80", everyByte,    std::string(2047, 'x')};
    for (const std::string& value : values) {
        ASSERT_EQ(set("panel", "timing:key", value), kOk) << value;
        EXPECT_EQ(get("panel.ini", "timing:key"), value);
        EXPECT_EQ(probe("get panel timing:key"), "0 " + value);
        EXPECT_EQ(get("panel", "key"), std::to_string(kNotFound));
    }
}

TEST_F(IniStoreTest, KeepsKeysApartThatDifferInCaseSectionOrColon) {
    const char* names[] = {"key",    "Key",       "a:key",   "A:key", "a:b:key",
                           ":b:key", "two words", "a b:c d", "[:x"};
    for (const char* name : names) {
        ASSERT_EQ(set("f", name, name), kOk) << name;
    }
    for (const char* name : names) {
        EXPECT_EQ(get("f", name), name);
    }
    EXPECT_EQ(get("f", "b:key"), std::to_string(kNotFound));
}

TEST_F(IniStoreTest, RefusesNamesThatCouldLeaveTheFolderOrNotBeFoundAgain) {
    write(mFolder / "outside.ini", "key = secret\n");
    write(mFolder / "ini/.hidden.ini", "key = secret\n");
    const std::string files[] = {
            "",        ".",   "..",   "../outside", "../outside.ini", "/etc/passwd", "a/b",
            ".hidden", "a b", "a\nb", "ä",          "a\\b",           "%2e%2e",      std::string(65, 'a')};
    for (const std::string& file : files) {
        EXPECT_EQ(get(file, "key"), std::to_string(kBadName)) << file;
        EXPECT_EQ(set(file, "key", "x"), kBadName) << file;
    }
    const std::string parameters[] = {
            "",     "a:",    ":",    ";key", "#key", "[key", "a=b",  "a]:b",
            "a\nb", "a\n:b", "a\tb", " key", "key ", " a:b", "a :b", std::string(256, 'k')};
    for (const std::string& parameter : parameters) {
        EXPECT_EQ(get("f", parameter), std::to_string(kBadName)) << parameter;
        EXPECT_EQ(set("f", parameter, "x"), kBadName) << parameter;
    }
    for (const std::string& value : {std::string("a\nb"), std::string("a\rb"), std::string(2048, 'x')}) {
        EXPECT_EQ(set("f", "key", value), kOutOfRange) << value;
    }
    EXPECT_EQ(mStore.set("f", "key", nullptr), kOutOfRange);
    EXPECT_EQ(mStore.set(nullptr, "key", "x"), kOutOfRange);
    EXPECT_EQ(set(std::string(64, 'a'), std::string(255, 'k'), "x"), kOk);
    EXPECT_EQ(contentOf(mFolder / "outside.ini"), "key = secret\n");
}

TEST_F(IniStoreTest, FollowsNoLinkAndReadsNothingButPlainFiles) {
    write(mFolder / "outside.ini", "key = secret\n");
    std::filesystem::create_directories(mFolder / "ini/folder.ini");
    std::filesystem::create_symlink(mFolder / "outside.ini", mFolder / "ini/link.ini");
    std::filesystem::create_symlink(mFolder / "nowhere", mFolder / "ini/dangling.ini");
    ASSERT_EQ(mkfifo((mFolder / "ini/fifo.ini").c_str(), 0600), 0);
    write(mFolder / "ini/nul.ini", std::string("a = 1\n\0b = 2\n", 13));
    write(mFolder / "ini/large.ini", "key = 1\n" + std::string(64 * 1024, ';'));
    for (const char* file : {"link", "dangling", "folder", "fifo", "nul", "large"}) {
        EXPECT_EQ(get(file, "key"), std::to_string(kBadFile)) << file;
        EXPECT_EQ(set(file, "key", "x"), kBadFile) << file;
    }
    EXPECT_EQ(contentOf(mFolder / "outside.ini"), "key = secret\n");
    EXPECT_FALSE(std::filesystem::exists(mFolder / "nowhere"));
}

TEST_F(IniStoreTest, FillsTheBufferToItsLastByteAndNotBeyond) {
    ASSERT_EQ(set("f", "key", "12345"), kOk);
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
    write(mFolder / "ini/long.ini", "key = " + std::string(2048, 'x') + "\n");
    EXPECT_EQ(get("long", "key"), std::to_string(kTooLong));
}

TEST_F(IniStoreTest, SeesWhatAnEditorChangesInPlaceOrReplaces) {
    const std::string path = mFolder / "ini/f.ini";
    for (int round = 0; round < 50; ++round) {
        // The same size in the same file, mostly within one tick of the file system's clock; then once
        // more after the file has been old enough to be remembered.
        for (int write = 0; write < 3; ++write) {
            const std::string value = std::to_string(100 + 3 * round + write);
            ::write(path, "key = " + value + "\n");
            EXPECT_EQ(get("f", "key"), value);
        }
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(path, now - std::chrono::hours(round + 1));
        EXPECT_EQ(get("f", "key"), std::to_string(100 + 3 * round + 2));
    }
    std::filesystem::remove_all(mFolder / "ini");
    EXPECT_EQ(get("f", "key"), std::to_string(kNotFound));
    EXPECT_EQ(set("f", "key", "back"), kOk);
    EXPECT_EQ(get("f", "key"), "back");
}

TEST(IniText, ChangesOneLineAndLeavesEveryOtherByte) {
    const struct {
        const char* before;
        const char* section;
        const char* key;
        const char* after;
    } rows[] = {
            {"", "", "k", "k = V\n"},
            {"", "s", "k", "[s]\nk = V\n"},
            {"; top\n\n[s]\n  k=old  \n; end\n", "s", "k", "; top\n\n[s]\n  k=V\n; end\n"},
            {"[s]\r\nk = old\r\n\r\n[t]\r\n", "s", "n", "[s]\r\nk = old\r\nn = V\r\n\r\n[t]\r\n"},
            {"[s]\r\nk = old\r\n", "s", "k", "[s]\r\nk = V\r\n"},
            {"[s]\nk = 1\n\n; of t\n[t]\nk = 2", "t", "n", "[s]\nk = 1\n\n; of t\n[t]\nk = 2\nn = V\n"},
            {"[s]\nk = 1", "t", "k", "[s]\nk = 1\n\n[t]\nk = V\n"},
            {"; top\n\n; of s\n[s]\n", "", "k", "; top\nk = V\n\n; of s\n[s]\n"},
            {"stray line\n[s]\nk = 1\nk = 2\n", "s", "k", "stray line\n[s]\nk = 1\nk = V\n"},
            {"[s]\nk = 1\n[t]\n[s]\nk =\n", "s", "k", "[s]\nk = 1\n[t]\n[s]\nk =V\n"},
            {"\xEF\xBB\xBF[s]\nk = 1\n", "s", "k", "\xEF\xBB\xBF[s]\nk = V\n"},
            {"[ s ] x\n;k = 1\n", "s", "k", "[ s ] x\nk = V\n;k = 1\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(withIniValue(row.before, row.section, row.key, "V"), row.after) << row.before;
    }
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
            const int32_t status = set("f", "s:k", "v");
            ASSERT_TRUE(status == kOk ? get("f", "s:k") == "v" : contentOf(mFolder / "ini/f.ini") == text)
                    << text;
            stored += status == kOk;
        }
    }
    EXPECT_GT(stored, 1000U);
}
