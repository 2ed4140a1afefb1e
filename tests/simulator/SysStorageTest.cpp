#include <sys/stat.h>

#include <regex>
#include <thread>
#include <vector>

#include "chiplayer/info.h"
#include "tests/simulator/SysFixture.h"

using namespace simulator;
namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class SysStorageTest : public SysFixture {
  protected:
    static std::string get(const std::string& name, unsigned size = 1024) {
        std::string value(1024, '?');
        const int32_t status = a_zvttvfapi_sys_get_emmc_env_var(
                bytes(name), reinterpret_cast<unsigned char*>(value.data()), size);
        return status == kOk ? value.c_str() : std::to_string(status);
    }
    static int32_t set(const std::string& name, const std::string& value) {
        return a_zvttvfapi_sys_set_emmc_env_var(bytes(name), bytes(value));
    }
    static int32_t area(bool write, std::string name, uint32_t offset, uint32_t length, std::string& data) {
        return (write ? a_zvttvfapi_sys_write_emmc : a_zvttvfapi_sys_read_emmc)(
                reinterpret_cast<unsigned char*>(name.data()), offset, length,
                reinterpret_cast<unsigned char*>(data.data()));
    }
    static int32_t seal(const std::string& storage, const std::string& name, const std::string& key) {
        return a_zvttvfapi_sys_secure_storage_encrypt_key(bytes(storage), bytes(name), bytes(key),
                                                          static_cast<unsigned char>(key.size()));
    }
    /** A parameter of count.ini; nothing if it has been lost. */
    static std::string counted(const std::string& key) {
        unsigned char value[8] = "";
        a_zvttvfapi_info_get_ini_para(bytes("count"), bytes(key), value, sizeof(value));
        return reinterpret_cast<const char*>(value);
    }
    /** What the board shows of a key: its line without the name. */
    static std::string shown(const std::string& name) {
        std::smatch found;
        const std::string text = printed();
        return std::regex_search(text, found, std::regex("key " + name + " (.*)\n")) ? found[1].str() : "";
    }
};

}  // namespace

TEST_F(SysStorageTest, VariablesSurviveARestartAndAreRefusedBeyondTheirLimits) {
    const std::string longest(1023, 'v');
    const struct {
        std::string name;
        std::string value;
        int32_t status;
    } rows[] = {{"a", "1", kOk},
                {"a.b-c_D9", "two words = more", kOk},
                {std::string(64, 'n'), longest, kOk},
                {"ab", "2", kOk},
                {"", "x", kBadName},
                {std::string(65, 'n'), "x", kBadName},
                {"a=b", "x", kBadName},
                {"a\nb", "x", kBadName},
                {"long", longest + "v", kOutOfRange},
                {"line", "a\nb", kOutOfRange}};
    for (const auto& row : rows) {
        EXPECT_EQ(set(row.name, row.value), row.status) << row.name;
    }
    for (const auto& row : rows) {
        const int32_t expected = row.status == kOutOfRange ? kNotFound : row.status;
        EXPECT_EQ(get(row.name), expected == kOk ? row.value : std::to_string(expected)) << row.name;
    }
    EXPECT_EQ(restarted("env-get a.b-c_D9"), "0 two words = more");
    EXPECT_EQ(get(std::string(64, 'n'), 1023), std::to_string(kTooLong));
    EXPECT_EQ(set("a", "changed"), kOk);
    EXPECT_EQ(set("ab", ""), kOk);
    EXPECT_EQ(get("a") + get("ab"), "changed" + std::to_string(kNotFound));
    int32_t status = kOk;
    for (int i = 0; i < 100 && status == kOk; ++i) {
        status = set("fill" + std::to_string(i), longest);
    }
    EXPECT_EQ(status, kFull);
    EXPECT_EQ(get("a"), "changed");
}

TEST_F(SysStorageTest, AreasHaveTheirSizesAndSurviveARestart) {
    std::string data = "0123456789";
    const uint32_t end = 64 * 1024;
    const struct {
        bool write;
        const char* name;
        uint32_t offset;
        uint32_t length;
        int32_t status;
    } rows[] = {{true, "misc", end - 10, 10, kOk},
                {true, "misc", end - 9, 10, kOutOfRange},
                {true, "misc", UINT32_MAX, 10, kOutOfRange},
                {true, "misc", 10, UINT32_MAX, kOutOfRange},
                {true, "fw_main", 0, 10, kDenied},
                {true, "none", 0, 10, kNotFound},
                {true, "../misc", 0, 10, kNotFound},
                {false, "none", 0, 10, kNotFound},
                {false, "misc", end, 0, kOk},
                {false, "misc", 0, end + 1, kOutOfRange},
                {false, "misc", UINT32_MAX, UINT32_MAX, kOutOfRange},
                {false, "fw_main", 0, 10, kOk}};
    for (const auto& row : rows) {
        std::string copy = data;
        EXPECT_EQ(area(row.write, row.name, row.offset, row.length, copy), row.status) << &row - rows;
    }
    // What was never written is zero, before the written bytes and behind them.
    std::string whole(end, '?');
    EXPECT_EQ(area(false, "misc", 0, end, whole), kOk);
    EXPECT_TRUE(whole == std::string(end - 10, '\0') + data);
    std::string some(20, '?');
    EXPECT_EQ(area(true, "panel", 3, 10, data), kOk);
    EXPECT_EQ(area(false, "panel", 0, 20, some), kOk);
    EXPECT_EQ(some, std::string(3, '\0') + data + std::string(7, '\0'));
    EXPECT_EQ(restarted("area-read panel 4 5"), "0 12345");
}

TEST_F(SysStorageTest, AcknowledgedWritesAreOnTheDiskAndCutOnesHappenedNotAtAll) {
    const struct {
        const char* before;
        const char* write;
        const char* file;
    } rows[] = {{"env-set name old", "env-set name new", "emmc/env.txt"},
                {"area-write misc 0 old-and-longer", "area-write misc 4 new", "emmc/misc.bin"},
                {"seal hdcp tx old", "seal hdcp tx new", "secure/hdcp.tx.sealed"},
                {"set f key old", "set f key new", "ini/f.ini"}};
    for (const auto& row : rows) {
        const fs::path path = state() / row.file;
        const std::string order = "fsync file, rename " + path.filename().string() + ", fsync folder, 0";
        // A folder that a write has to make first is on the disk before it is acknowledged.
        fs::remove_all(path.parent_path());
        EXPECT_THAT(restarted(row.before, "PROBE_TRACE=1"), HasSubstr("fsync folder, " + order));
        EXPECT_EQ(restarted(row.write, "PROBE_TRACE=1"), order);
        ASSERT_EQ(restarted(row.before), "0");
        const std::string old = contentOf(path);
        for (const auto& [fault, outcome] :
             {std::pair("PROBE_DIE_AT=fsync", "exit 42"),
              {"PROBE_DIE_AT=rename", "exit 42"},
              {"PROBE_FILE_LIMIT=5", " cannot be written: File too large\n-113"}}) {
            EXPECT_THAT(restarted(row.write, fault), testing::EndsWith(outcome)) << row.write;
            EXPECT_TRUE(contentOf(path) == old) << row.write;
        }
        EXPECT_EQ(restarted(row.write), "0");
        EXPECT_FALSE(contentOf(path) == old);
    }
}

TEST_F(SysStorageTest, WritesOfThreadsSideBySideLoseNoneOfEachOther) {
    std::vector<std::thread> writers;
    for (int i = 0; i < 8; ++i) {
        writers.emplace_back([i] {
            const std::string number = std::to_string(i);
            for (int round = 0; round < 20; ++round) {
                std::string digit = number;
                EXPECT_EQ(set("v" + number + "-" + std::to_string(round), number), kOk);
                EXPECT_EQ(area(true, "misc", static_cast<uint32_t>(8 * round + i), 1, digit), kOk);
                const std::string key = "t" + number + ":" + std::to_string(round);
                EXPECT_EQ(a_zvttvfapi_info_set_ini_para(bytes("count"), bytes(key), bytes("1")), kOk);
                EXPECT_EQ(counted(key), "1");
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    std::string digits(160, '?');
    EXPECT_EQ(area(false, "misc", 0, 160, digits), kOk);
    for (int i = 0; i < 160; ++i) {
        EXPECT_EQ(digits[static_cast<size_t>(i)], '0' + i % 8) << i;
        const std::string writer = std::to_string(i % 8), round = std::to_string(i / 8);
        EXPECT_EQ(get("v" + writer + "-" + round), writer);
        EXPECT_EQ(counted("t" + writer + ":" + round), "1");
    }
}

TEST_F(SysStorageTest, KeysAreStoredEncryptedForThisBoardAndThisNameAlone) {
    const std::string key = "this must not be found";
    EXPECT_EQ(seal("hdcp", "tx", key), kOk);
    EXPECT_EQ(seal("hdcp", "rx", key), kOk);
    EXPECT_EQ(seal("hdcp", "other", "another key of the same size"), kOk);
    const std::string good = shown("hdcp.tx");
    EXPECT_THAT(good, HasSubstr("22 bytes, fingerprint "));
    EXPECT_EQ(shown("hdcp.rx"), good);
    EXPECT_THAT(shown("hdcp.other"), AllOf(HasSubstr("28 bytes"), Not(HasSubstr(good.substr(9)))));
    const std::string folder = state() / "secure/";
    EXPECT_FALSE(contentOf(folder + "hdcp.tx.sealed").substr(8) ==
                 contentOf(folder + "hdcp.rx.sealed").substr(8));
    for (const auto& entry : fs::recursive_directory_iterator(state().path())) {
        if (entry.is_regular_file()) {
            EXPECT_THAT(contentOf(entry.path()), Not(HasSubstr(key.substr(0, 6)))) << entry.path();
        }
    }

    const std::string sealed = contentOf(folder + "hdcp.tx.sealed");
    for (size_t i = 0; i < sealed.size(); i += 7) {
        std::string changed = sealed;
        changed[i] ^= 1;
        write(folder + "hdcp.tx.sealed", changed);
        EXPECT_THAT(shown("hdcp.tx"), HasSubstr("damaged")) << i;
    }
    write(folder + "hdcp.tx.sealed", sealed);
    EXPECT_EQ(shown("hdcp.tx"), good);
    write(folder + "hdcp.moved.sealed", sealed);
    EXPECT_THAT(shown("hdcp.moved"), HasSubstr("damaged"));
    write(state() / "identity.ini", "serial = SIM0000000000000000\n");
    EXPECT_THAT(shown("hdcp.tx"), HasSubstr("another board"));

    for (const char* name : {"", "../x", "a.b", "a/b"}) {
        EXPECT_EQ(seal("hdcp", name, key), kBadName) << name;
        EXPECT_EQ(seal(name, "tx", key), kBadName) << name;
    }
    EXPECT_EQ(seal("system", "key", key), kDenied);
    EXPECT_EQ(seal("hdcp", "none", ""), kOutOfRange);
}

TEST_F(SysStorageTest, TheSystemKeyComesFromAFileAndIsReplacedOnlyWhenAsked) {
    const struct {
        size_t size;
        bool replace;
        int32_t status;
    } rows[] = {{15, true, kBadFile},
                {256, true, kBadFile},
                {16, false, kOk},
                {255, false, kExists},
                {255, true, kOk}};
    for (const auto& row : rows) {
        write(state() / "files/key", std::string(row.size, 'k'));
        EXPECT_EQ(a_zvttvfapi_sys_update_sys_key(bytes("/key"), row.replace), row.status) << row.size;
    }
    EXPECT_THAT(shown("system.key"), HasSubstr("255 bytes"));
    EXPECT_EQ(a_zvttvfapi_sys_update_sys_key(bytes("/none"), true), kNotFound);
}

TEST_F(SysStorageTest, TheCustomerAndTheDataIndexAreToldFromTheState) {
    const auto hash = [](unsigned size) {
        std::string bytes(16, '\0');
        unsigned count = 77;
        const int32_t status = a_zvttvfapi_sys_get_customer_hash(
                size, reinterpret_cast<unsigned char*>(bytes.data()), &count);
        return status == kOk ? bytes.substr(0, count) : std::to_string(status);
    };
    const std::string first = hash(16);
    EXPECT_EQ(first.size(), 16U);
    EXPECT_EQ(hash(15), std::to_string(kTooLong));
    write(state() / "identity.ini", "serial = 1\ncustomer = SIM\n");
    EXPECT_EQ(hash(16), first);
    write(state() / "identity.ini", "serial = 1\ncustomer = other\n");
    EXPECT_NE(hash(16), first);

    const auto index = [](unsigned size) {
        std::string path(129, '\0');
        const int32_t status =
                a_zvttvfapi_sys_get_dataindex_path(reinterpret_cast<unsigned char*>(path.data()), size);
        return status == kOk ? path.c_str() : std::to_string(status);
    };
    EXPECT_EQ(index(128), "/dataindex.ini");
    EXPECT_EQ(a_zvttvfapi_sys_check_file(bytes(index(128))), kOk);
    EXPECT_EQ(set("dataindex_path", std::string(128, 'p')), kOk);
    EXPECT_EQ(index(128), std::string(128, 'p'));
    EXPECT_EQ(set("dataindex_path", std::string(129, 'p')), kOk);
    EXPECT_EQ(index(128), std::to_string(kTooLong));
}
