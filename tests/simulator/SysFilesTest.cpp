#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "tests/simulator/SysFixture.h"

using namespace simulator;
namespace fs = std::filesystem;

namespace {

class SysFilesTest : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        fs::create_directories(mRoot);
    }

    static int32_t store(const std::string& path, const std::string& data, const std::string& mode) {
        return a_zvttvfapi_sys_write_file(bytes(path), bytes(data), static_cast<unsigned>(data.size()),
                                          bytes(mode));
    }
    static int32_t load(const std::string& path, uint64_t offset, std::string& data) {
        unsigned count = 77;
        const int32_t status =
                a_zvttvfapi_sys_read_file(bytes(path), reinterpret_cast<unsigned char*>(data.data()),
                                          static_cast<unsigned>(data.size()), offset, &count);
        data.resize(count);
        return status;
    }
    static int32_t copy(const std::string& from, const std::string& to, bool replace) {
        return a_zvttvfapi_sys_copy_file(bytes(from), bytes(to), replace);
    }
    /** All that is below a folder: names, modes and contents. */
    static std::string tree(const std::string& folder) {
        std::vector<std::string> lines;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            struct stat status {};
            lstat(entry.path().c_str(), &status);
            char mode[16];
            snprintf(mode, sizeof(mode), " %o ", status.st_mode);
            lines.push_back(entry.path().lexically_relative(folder).string() + mode +
                            (entry.is_regular_file() ? contentOf(entry.path()) : "") + "\n");
        }
        std::sort(lines.begin(), lines.end());
        std::string all;
        for (const std::string& line : lines) {
            all += line;
        }
        return all;
    }

    const std::string mRoot = state() / "files";
};

}  // namespace

TEST_F(SysFilesTest, NoPathAndNoLinkLeavesTheSandbox) {
    const std::string outside = state() / "outside";
    write(outside + "/secret.txt", "secret");
    fs::create_directories(mRoot + "/in");
    fs::create_symlink(outside, mRoot + "/absolute");
    fs::create_symlink("../outside", mRoot + "/relative");
    fs::create_symlink("../../../../../../../.." + outside + "/secret.txt", mRoot + "/in/file");
    fs::create_symlink("/proc/self/cwd", mRoot + "/magic");
    const std::string before = tree(outside);
    const std::string paths[] = {"../outside/secret.txt",
                                 "/../outside/secret.txt",
                                 "in/../../outside/secret.txt",
                                 outside + "/secret.txt",
                                 "absolute/secret.txt",
                                 "relative/secret.txt",
                                 "in/file",
                                 "/proc/self/root" + outside + "/secret.txt",
                                 "magic/../" + outside + "/secret.txt"};
    for (const std::string& path : paths) {
        std::string data(16, '?');
        unsigned checksum = 0;
        EXPECT_NE(a_zvttvfapi_sys_check_file(bytes(path)), kOk) << path;
        EXPECT_NE(load(path, 0, data), kOk) << path;
        EXPECT_NE(a_zvttvfapi_sys_get_file_checksum(bytes(path), &checksum), kOk) << path;
        EXPECT_NE(copy(path, "copy", true), kOk) << path;
        EXPECT_NE(a_zvttvfapi_sys_upgrade_fw(0, path.c_str()), kOk) << path;
        EXPECT_NE(a_zvttvfapi_sys_update_sys_key(bytes(path), true), kOk) << path;
    }
    for (const std::string& path :
         {std::string("absolute"), std::string("relative/"), "/.." + outside, outside}) {
        EXPECT_NE(a_zvttvfapi_sys_check_folder(bytes(path)), kOk) << path;
    }
    write(mRoot + "/mine", "mine");
    for (const std::string& path : paths) {
        // These may succeed: within the sandbox.
        a_zvttvfapi_sys_change_file_mode(bytes(path), 0777);
        store(path, "overwritten", "w+");
        store(path, "appended", "a+");
        copy("mine", path, true);
        a_zvttvfapi_sys_remove_file(bytes(path));
        a_zvttvfapi_sys_create_file(bytes(path));
        a_zvttvfapi_sys_create_folder(bytes(path + "x"));
    }
    EXPECT_EQ(a_zvttvfapi_sys_remove_file(bytes("absolute")), kOk);
    EXPECT_EQ(tree(outside), before);
    for (const char* path :
         {"", "/", ".", "..", "in/.", "in/..", "in/../", "a/b/c/d/e/f/g/h/i/j/k/l/m/n/o/p/q"}) {
        EXPECT_EQ(a_zvttvfapi_sys_remove_file(bytes(path)), kBadName) << path;
        EXPECT_EQ(a_zvttvfapi_sys_create_folder(bytes(path)), kBadName) << path;
        EXPECT_EQ(copy("mine", path, true), kBadName) << path;
    }
    EXPECT_EQ(store(std::string(5000, 'p'), "x", "w"), kBadName);
}

TEST_F(SysFilesTest, EachOpenModeDoesWhatItSaysAndOthersAreRefused) {
    const struct {
        const char* mode;
        int32_t status;
        const char* after;
        int32_t statusWithoutFile;
    } rows[] = {{"w", kOk, "new", kOk},
                {"w+", kOk, "new", kOk},
                {"a", kOk, "0123456789new", kOk},
                {"a+", kOk, "0123456789new", kOk},
                {"r+", kOk, "new3456789", kNotFound},
                {"r", kOutOfRange, "0123456789", kOutOfRange},
                {"", kOutOfRange, "0123456789", kOutOfRange},
                {"w+x", kOutOfRange, "0123456789", kOutOfRange}};
    for (const auto& row : rows) {
        write(mRoot + "/file", "0123456789");
        EXPECT_EQ(store("/file", "new", row.mode), row.status) << row.mode;
        EXPECT_EQ(contentOf(mRoot + "/file"), row.after) << row.mode;
        EXPECT_EQ(store("/new", "new", row.mode), row.statusWithoutFile) << row.mode;
        EXPECT_EQ(fs::remove(mRoot + "/new"), row.statusWithoutFile == kOk) << row.mode;
    }
    EXPECT_EQ(a_zvttvfapi_sys_sync_fs(), kOk);
}

TEST_F(SysFilesTest, ReadsFromAnOffsetUpToTheEnd) {
    const std::string content("ab\0cd", 5);
    write(mRoot + "/file", content);
    const struct {
        uint64_t offset;
        size_t length;
        int32_t status;
        std::string data;
    } rows[] = {{0, 5, kOk, content},
                {0, 100, kOk, content},
                {1, 3, kOk, std::string("b\0c", 3)},
                {5, 1, kOk, ""},
                {1000, 1, kOk, ""},
                {0, 0, kOk, ""},
                {1ULL << 62, 1, kOk, ""},
                {UINT64_MAX, 1, kOutOfRange, ""}};
    for (const auto& row : rows) {
        std::string data(row.length, '?');
        EXPECT_EQ(load("file", row.offset, data), row.status) << row.offset;
        EXPECT_EQ(data, row.data) << row.offset;
    }
    unsigned checksum = 0;
    write(mRoot + "/check", "123456789");
    EXPECT_EQ(a_zvttvfapi_sys_get_file_checksum(bytes("check"), &checksum), kOk);
    EXPECT_EQ(checksum, 0xCBF43926U);
    write(mRoot + "/long", std::string(128 * 1024, 'x'));
    EXPECT_EQ(a_zvttvfapi_sys_get_file_checksum(bytes("long"), &checksum), kOk);
    EXPECT_EQ(checksum, 0x54230614U);
}

TEST_F(SysFilesTest, ReadsALineWithinTheBufferAndTouchesNoMoreOfIt) {
    // Pieces of 4096 bytes: lines that end before, at and after their border.
    const std::string border = std::string(4095, 'x') + "\r\n";
    const struct {
        std::string content;
        uint64_t offset;
        uint32_t length;
        std::string line;
    } rows[] = {{"one\ntwo\r\nthree", 0, 64, "one"},
                {"one\ntwo\r\nthree", 4, 64, "two"},
                {"one\ntwo\r\nthree", 9, 64, "three"},
                {"one\ntwo\r\nthree", 14, 64, ""},
                {"one\ntwo\r\nthree", 99, 64, ""},
                {"one\ntwo\r\nthree", 5, 64, "wo"},
                {"\n\n", 1, 64, ""},
                {"two\r\n", 0, 5, "two"},
                {"two\r\n", 0, 3, "tw"},
                {"a\rb\n", 0, 3, "a\r"},
                {"line\n", 0, 1, ""},
                {border + "next", 0, 5000, std::string(4095, 'x')},
                {border + "next", 4097, 5000, "next"},
                {std::string(9000, 'y') + "\n", 0, 4097, std::string(4096, 'y')},
                {std::string(9000, 'y') + "\n", 0, 9001, std::string(9000, 'y')},
                {"one\ntwo", 0, UINT32_MAX, "one"}};
    // Readable up to a page that must not be touched.
    constexpr size_t kRoom = 16 * 1024;
    auto* const map = static_cast<unsigned char*>(
            mmap(nullptr, 2 * kRoom, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_EQ(mprotect(map, kRoom, PROT_READ | PROT_WRITE), 0);
    for (const auto& row : rows) {
        write(mRoot + "/file", row.content);
        unsigned char* const buffer = row.length < kRoom ? map + kRoom - row.length : map;
        memset(map, '?', kRoom);
        EXPECT_EQ(a_zvttvfapi_sys_read_file_one_line(bytes("file"), buffer, row.length, row.offset), kOk);
        EXPECT_EQ(reinterpret_cast<char*>(buffer), row.line) << row.length;
    }
    unsigned char untouched = '?';
    EXPECT_EQ(a_zvttvfapi_sys_read_file_one_line(bytes("file"), &untouched, 0, 0), kOutOfRange);
    EXPECT_EQ(untouched, '?');
    munmap(map, 2 * kRoom);
}

TEST_F(SysFilesTest, MakesChecksAndRemovesFilesAndFolders) {
    fs::create_directories(mRoot + "/folder/inner");
    write(mRoot + "/folder/file", "x");
    ASSERT_EQ(mkfifo((mRoot + "/fifo").c_str(), 0600), 0);
    using Call = int32_t (*)(unsigned char const*);
    const struct {
        Call call;
        const char* path;
        int32_t status;
    } rows[] = {
            {a_zvttvfapi_sys_check_file, "folder/file", kOk},
            {a_zvttvfapi_sys_check_file, "folder", kBadFile},
            {a_zvttvfapi_sys_check_file, "fifo", kBadFile},
            {a_zvttvfapi_sys_check_file, "none", kNotFound},
            {a_zvttvfapi_sys_check_file, "folder/file/x", kBadFile},
            {a_zvttvfapi_sys_check_folder, "/", kOk},
            {a_zvttvfapi_sys_check_folder, "folder/inner/", kOk},
            {a_zvttvfapi_sys_check_folder, "folder/file", kBadFile},
            {a_zvttvfapi_sys_check_folder, "none", kNotFound},
            {a_zvttvfapi_sys_create_file, "folder/file", kExists},
            {a_zvttvfapi_sys_create_file, "none/file", kNotFound},
            {a_zvttvfapi_sys_create_file, "new", kOk},
            {a_zvttvfapi_sys_create_folder, "folder", kExists},
            {a_zvttvfapi_sys_create_folder, "none/new", kNotFound},
            {a_zvttvfapi_sys_create_folder, "folder/new/", kOk},
            {a_zvttvfapi_sys_check_folder, "folder/new", kOk},
            {a_zvttvfapi_sys_remove_file, "new/", kBadFile},
            {a_zvttvfapi_sys_remove_file, "new", kOk},
            {a_zvttvfapi_sys_remove_file, "new", kNotFound},
            {a_zvttvfapi_sys_remove_file, "fifo", kOk},
            {a_zvttvfapi_sys_remove_file, "folder/", kOk},
            {a_zvttvfapi_sys_check_folder, "folder", kNotFound},
            {a_zvttvfapi_sys_check_file, nullptr, kOutOfRange},
            {a_zvttvfapi_sys_remove_file, nullptr, kOutOfRange},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.call(reinterpret_cast<const unsigned char*>(row.path)), row.status)
                << &row - rows << " " << (row.path == nullptr ? "null" : row.path);
    }
    EXPECT_TRUE(fs::is_empty(mRoot));
}

TEST_F(SysFilesTest, CopiesWholeOrNotAtAll) {
    const auto rebuild = [this] {
        fs::remove_all(mRoot);
        write(mRoot + "/a/deep/file", "content");
        write(mRoot + "/b/other", "other");
        write(mRoot + "/file", "file");
        fs::permissions(mRoot + "/a/deep", fs::perms(0711));
        fs::permissions(mRoot + "/a/deep/file", fs::perms(04640));
        fs::create_symlink("other", mRoot + "/b/link");
    };
    rebuild();
    const std::string before = tree(mRoot);
    const struct {
        const char* from;
        const char* to;
        bool replace;
        int32_t status;
        const char* copied;  // what is then below the destination, or its content
    } rows[] = {{"file", "new", false, kOk, "file"},
                {"file", "file", false, kExists, ""},
                {"file", "a/deep/file", true, kOk, "file"},
                {"file", "file", true, kOk, "file"},
                {"file", "a", true, kOk, "file"},
                {"file", "new/", true, kBadName, ""},
                {"file", "none/new", true, kNotFound, ""},
                {"none", "new", true, kNotFound, ""},
                {"a", "new", false, kOk, "deep 40711 \ndeep/file 100640 content\n"},
                {"a", "b", false, kExists, ""},
                {"a", "b", true, kOk, "deep 40711 \ndeep/file 100640 content\n"},
                {"a/deep", "a", true, kOk, "file 100640 content\n"},
                {"a", "file", true, kOk, "deep 40711 \ndeep/file 100640 content\n"},
                {"a", "a/deep/inner", true, kOutOfRange, ""},
                {"b", "new", false, kBadFile, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.from) + " to " + row.to);
        rebuild();
        EXPECT_EQ(copy(row.from, row.to, row.replace), row.status);
        if (row.status == kOk) {
            const std::string to = mRoot + "/" + row.to;
            EXPECT_EQ(fs::is_directory(to) ? tree(to) : contentOf(to), row.copied);
            EXPECT_THAT(tree(mRoot), Not(testing::HasSubstr(".copy-")));
        } else {
            EXPECT_EQ(tree(mRoot), before);
        }
    }
}

TEST_F(SysFilesTest, SetsTheModeOfWhatIsInTheSandboxButNotOfItself) {
    const auto mode = [this](const char* name) {
        struct stat status {};
        EXPECT_EQ(stat((mRoot + name).c_str(), &status), 0);
        return status.st_mode & 07777;
    };
    write(mRoot + "/file", "x");
    for (const unsigned bits : {0U, 0600U, 0444U, 07777U}) {
        EXPECT_EQ(a_zvttvfapi_sys_change_file_mode(bytes("file"), bits), kOk);
        EXPECT_EQ(mode("/file"), bits);
    }
    EXPECT_EQ(a_zvttvfapi_sys_change_file_mode(bytes("file"), 010000), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_sys_change_file_mode(bytes("none"), 0600), kNotFound);
    const auto before = mode("/");
    EXPECT_EQ(a_zvttvfapi_sys_change_file_mode(bytes("/"), 0777), kDenied);
    EXPECT_EQ(a_zvttvfapi_sys_change_file_mode(bytes("../.."), 0777), kDenied);
    EXPECT_EQ(mode("/"), before);
}
