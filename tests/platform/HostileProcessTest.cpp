// What a process can do to others that opens the binder driver's device by itself and sends what it likes:
// nothing but be refused.

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/ServiceManagement.h>
#include <linux/android/binder.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zvttv/test/probe/1.0/IHandles.h>
#include <zvttv/test/probe/1.0/IProbe.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <fstream>
#include <functional>
#include <sstream>

#include "tests/support/ChildProcess.h"
#include "tests/support/Descriptors.h"
#include "tests/support/Eventually.h"
#include "tests/support/Transport.h"

namespace {

using namespace android;
using hidl::manager::V1_0::IServiceManager;
using zvttv::test::probe::V1_0::IHandles;
using zvttv::test::probe::V1_0::IProbe;

/** A message, form by form. What it refers to lies in it, so it is neither copied nor moved once it is sent.
 */
struct Raw {
    std::string data;
    std::vector<binder_size_t> table{};
    std::vector<std::pair<size_t, std::string>> buffers{};  // places of their forms, contents
    size_t bytes = 0;                                       // of all buffers
    uint32_t flags = TF_ACCEPT_FDS;

    static Raw of(const char* token) { return Raw{}.scalars(std::string(token) + '\0'); }

    Raw scalars(std::string more) && {
        more.resize((more.size() + 3) & ~size_t{3});
        data += more;
        return std::move(*this);
    }
    template <typename T>
    Raw number(T value) && {
        return std::move(*this).scalars({reinterpret_cast<const char*>(&value), sizeof(value)});
    }
    template <typename Form>
    Raw form(const Form& form) && {
        table.push_back(data.size());
        return std::move(*this).number(form);
    }
    Raw object(uint32_t type, uint64_t value, uint64_t cookie = 0) && {
        flat_binder_object form{{type}, 0x17f, {value}, cookie};
        return std::move(*this).form(form);
    }
    /** The parent: how many forms ago, or 0 for none. */
    Raw buffer(std::string content, size_t parent = 0, size_t offset = 0) && {
        binder_buffer_object form{};
        form.hdr.type = BINDER_TYPE_PTR;
        form.flags = parent > 0 ? BINDER_BUFFER_FLAG_HAS_PARENT : 0;
        form.length = content.size();
        form.parent = parent > 0 ? table.size() - parent : 0;
        form.parent_offset = offset;
        bytes += (content.size() + 7) & ~size_t{7};
        buffers.emplace_back(data.size(), std::move(content));
        return std::move(*this).form(form);
    }
    Raw descriptors(uint64_t count, size_t parent = 1, size_t offset = sizeof(native_handle_t)) && {
        const binder_fd_array_object form{{BINDER_TYPE_FDA}, 0, count, table.size() - parent, offset};
        return std::move(*this).form(form);
    }
    Raw record(uint32_t size) && {
        return std::move(*this).buffer(std::string(8, '\7') +
                                       std::string(reinterpret_cast<char*>(&size), sizeof(size)) +
                                       std::string(4, '\1'));
    }
    Raw text(const std::string& text) && {
        return std::move(*this).record(static_cast<uint32_t>(text.size())).buffer(text + '\0', 1);
    }
    /** A native handle of descriptors 0, as it says of itself, and as many as follow. */
    Raw handle(int says, size_t follow, int version = sizeof(native_handle_t)) && {
        std::string content(sizeof(native_handle_t) + follow * sizeof(int), '\0');
        const int head[] = {version, says, 0};
        std::memcpy(content.data(), head, sizeof(head));
        return std::move(*this).number(uint64_t{content.size()}).buffer(content);
    }
    Raw with(const std::function<void(Raw&)>& change) && {
        change(*this);
        return std::move(*this);
    }
};

/** The driver as a process has it that keeps none of the runtime's rules. */
class RawProcess {
  public:
    RawProcess() : mFd(open("/dev/hwbinder", O_RDWR | O_CLOEXEC)) {
        mMemory = mmap(nullptr, kBytes, PROT_READ, MAP_PRIVATE | MAP_NORESERVE, mFd, 0);
        EXPECT_NE(MAP_FAILED, mMemory);
    }
    ~RawProcess() {
        munmap(mMemory, kBytes);
        close(mFd);
    }

    /** Looks a service up, and keeps it. */
    uint32_t find(const char* fqName) {
        EXPECT_EQ(OK, call(0, 1, Raw::of(IServiceManager::descriptor).text(fqName).text("default")));
        return mHandle;
    }

    /** The status of the reply, or what the driver says instead. Calls that come meanwhile get mReply. */
    status_t call(uint32_t handle, uint32_t code, Raw message) {
        const bool oneWay = (message.flags & TF_ONE_WAY) != 0;
        send(BC_TRANSACTION_SG, handle, code, &message);
        while (true) {
            uint8_t block[256];
            binder_write_read work{};
            work.read_buffer = reinterpret_cast<uintptr_t>(block);
            work.read_size = sizeof(block);
            EXPECT_EQ(0, ioctl(mFd, BINDER_WRITE_READ, &work));
            for (size_t at = 0; at < work.read_consumed;) {
                uint32_t command;
                binder_transaction_data got;
                std::memcpy(&command, block + at, sizeof(command));
                std::memcpy(&got, block + at + 4, std::min<size_t>(_IOC_SIZE(command), sizeof(got)));
                at += 4 + _IOC_SIZE(command);
                switch (command) {
                    case BR_TRANSACTION:
                        send(BC_REPLY_SG, 0, 0, &garbage);
                        break;
                    case BR_REPLY:
                        return take(got);
                    case BR_FAILED_REPLY:
                        return FAILED_TRANSACTION;
                    case BR_DEAD_REPLY:
                        return DEAD_OBJECT;
                    case BR_TRANSACTION_COMPLETE:
                        if (oneWay) {
                            return OK;
                        }
                }
            }
        }
    }

    Raw garbage;  // answers calls of ours
    std::string lastText;

  private:
    static constexpr size_t kBytes = 1 << 20;

    template <typename Payload>
    void write(uint32_t command, const Payload& payload) {
        uint8_t block[4 + sizeof(payload)];
        std::memcpy(block, &command, 4);
        std::memcpy(block + 4, &payload, sizeof(payload));
        binder_write_read work{};
        work.write_buffer = reinterpret_cast<uintptr_t>(block);
        work.write_size = sizeof(block);
        EXPECT_EQ(0, ioctl(mFd, BINDER_WRITE_READ, &work));
    }

    void send(uint32_t command, uint32_t handle, uint32_t code, Raw* message) {
        for (const auto& [place, content] : message->buffers) {
            const auto address = reinterpret_cast<binder_uintptr_t>(content.data());
            std::memcpy(&message->data[place + offsetof(binder_buffer_object, buffer)], &address,
                        sizeof(address));
        }
        binder_transaction_data_sg sent{};
        sent.transaction_data.target.handle = handle;
        sent.transaction_data.code = code;
        sent.transaction_data.flags = message->flags;
        sent.transaction_data.data_size = message->data.size();
        sent.transaction_data.data.ptr.buffer = reinterpret_cast<uintptr_t>(message->data.data());
        sent.transaction_data.offsets_size = message->table.size() * sizeof(binder_size_t);
        sent.transaction_data.data.ptr.offsets = reinterpret_cast<uintptr_t>(message->table.data());
        sent.buffers_size = message->bytes;
        write(command, sent);
    }

    /** Keeps the last object and the last text of a reply. */
    status_t take(const binder_transaction_data& got) {
        const auto* const data = reinterpret_cast<const uint8_t*>(got.data.ptr.buffer);
        const auto* const table = reinterpret_cast<const binder_size_t*>(got.data.ptr.offsets);
        for (size_t i = 0; i < got.offsets_size / sizeof(*table); ++i) {
            union {
                binder_object_header hdr;
                flat_binder_object object;
                binder_buffer_object buffer;
            } form;
            std::memcpy(&form, data + table[i], std::min<size_t>(sizeof(form), got.data_size - table[i]));
            if (form.hdr.type == BINDER_TYPE_HANDLE) {
                mHandle = form.object.handle;
                write(BC_ACQUIRE, mHandle);
            } else if (form.hdr.type == BINDER_TYPE_PTR) {
                lastText.assign(reinterpret_cast<const char*>(form.buffer.buffer), form.buffer.length);
            }
        }
        status_t status = OK;
        if ((got.flags & TF_STATUS_CODE) != 0) {
            std::memcpy(&status, data, sizeof(status));
        }
        write(BC_FREE_BUFFER, got.data.ptr.buffer);
        return status;
    }

    const int mFd;
    void* mMemory;
    uint32_t mHandle = 0;
};

TEST(HostileProcessTest, IsRefusedAndHarmsNobody) {
    ONLY_ON_BINDER();
    const std::string log = testing::TempDir() + "/hostile.log";
    const ChildProcess server({"/proc/self/exe", "--role=server"}, log);
    ASSERT_EQ('r', server.word());
    const sp<IProbe> innocent = IProbe::getService();
    RawProcess hostile;
    const uint32_t probe = hostile.find(IProbe::descriptor);
    const uint32_t handles = hostile.find(IHandles::descriptor);
    constexpr uint32_t kManager = 0, kEcho = 1, kAskBack = 4, kNote = 7, kNone = 999;
    constexpr uint64_t kOurs = 0x1000;
    const auto ask = [&] { return Raw::of(IProbe::descriptor).object(BINDER_TYPE_BINDER, kOurs, kOurs); };
    const auto asks = [&](uint32_t type, uint64_t value) {
        return Raw::of(IProbe::descriptor).object(type, value, kOurs).text("x");
    };
    const auto echo = [] { return Raw::of(IHandles::descriptor); };
    const auto refused = [](Raw& raw) { raw.bytes -= 4; };
    const size_t before = openDescriptors(server.pid());

    struct Row {
        const char* what;
        status_t outcome;
        uint32_t target;
        uint32_t code;
        Raw message;
    };
    const Row rows[] = {
            {"nothing wrong", OK, probe, kAskBack, ask().text("x")},
            {"no token", BAD_TYPE, probe, kAskBack, Raw{}},
            {"a cut token", BAD_TYPE, probe, kAskBack, Raw{"zvttv.test.probe@1.0::IPro"}},
            {"another's token", BAD_TYPE, probe, kAskBack, Raw::of(IHandles::descriptor)},
            {"no such method", UNKNOWN_TRANSACTION, probe, kNone, ask()},
            {"no arguments", NOT_ENOUGH_DATA, probe, kAskBack, Raw::of(IProbe::descriptor)},
            {"a text missing", NOT_ENOUGH_DATA, probe, kAskBack, ask()},
            {"a text without its bytes", NOT_ENOUGH_DATA, probe, kAskBack, ask().record(1)},
            {"a text without NUL", BAD_VALUE, probe, kAskBack, ask().record(1).buffer("xy", 1)},
            {"a text too short", BAD_VALUE, probe, kAskBack, ask().record(9).buffer(std::string(2, 0), 1)},
            {"a text of 4 GiB", BAD_VALUE, probe, kAskBack, ask().record(UINT32_MAX).buffer("", 1)},
            {"a pointer over the size", BAD_VALUE, probe, kAskBack, ask().record(1).buffer("x", 1, 8)},
            {"a pointer beyond", FAILED_TRANSACTION, probe, kAskBack, ask().record(1).buffer("x", 1, 16)},
            {"an object for a parent", FAILED_TRANSACTION, probe, kAskBack, ask().record(1).buffer("x", 2)},
            {"no such parent", FAILED_TRANSACTION, probe, kAskBack, ask().buffer("x", 1U << 20)},
            {"buffers of odd size", FAILED_TRANSACTION, probe, kAskBack, ask().text("x").with(refused)},
            {"a place beyond the data", FAILED_TRANSACTION, probe, kAskBack,
             ask().text("x").with([](Raw& raw) { raw.table.back() = 1 << 20; })},
            {"a place among the scalars", FAILED_TRANSACTION, probe, kAskBack,
             ask().text("x").with([](Raw& raw) { raw.table.front() = 0; })},
            {"a place twice", FAILED_TRANSACTION, probe, kAskBack,
             ask().text("x").with([](Raw& raw) { raw.table[1] = raw.table[0]; })},
            {"an object not in the table", BAD_VALUE, probe, kAskBack,
             ask().with([](Raw& raw) { raw.table.clear(); }).text("x")},
            {"a weak handle", BAD_VALUE, probe, kAskBack, asks(BINDER_TYPE_WEAK_HANDLE, probe)},
            {"a weak object", BAD_VALUE, probe, kAskBack, asks(BINDER_TYPE_WEAK_BINDER, kOurs)},
            {"a handle we do not have", FAILED_TRANSACTION, probe, kAskBack, asks(BINDER_TYPE_HANDLE, 9999)},
            {"a descriptor", BAD_VALUE, probe, kAskBack, asks(BINDER_TYPE_FD, 0)},
            {"a descriptor too many", OK, probe, kNote,
             Raw::of(IProbe::descriptor).number(0).object(BINDER_TYPE_FD, 0).with([](Raw& raw) {
                 raw.flags = TF_ONE_WAY;
             })},
            {"a handle in a one-way message", OK, probe, kNote,
             Raw::of(IProbe::descriptor).number(0).handle(1, 1).descriptors(1).with([](Raw& raw) {
                 raw.flags = TF_ONE_WAY;
             })},
            {"a two-way method one-way", OK, probe, kAskBack,
             ask().text("x").with([](Raw& raw) { raw.flags = TF_ONE_WAY; })},
            {"a one-way method two-way", UNKNOWN_ERROR, probe, kNote, Raw::of(IProbe::descriptor).number(0)},
            {"a handle", OK, handles, kEcho, echo().handle(1, 1).descriptors(1).record(0).buffer("", 1)},
            {"more descriptors than it says", BAD_VALUE, handles, kEcho, echo().handle(1, 2).descriptors(2)},
            {"fewer descriptors than it says", BAD_VALUE, handles, kEcho, echo().handle(2, 2).descriptors(1)},
            {"a handle that says too many", BAD_VALUE, handles, kEcho, echo().handle(1000, 1).descriptors(1)},
            {"a handle of another version", BAD_VALUE, handles, kEcho, echo().handle(1, 1, 0).descriptors(1)},
            {"descriptors missing", NOT_ENOUGH_DATA, handles, kEcho, echo().handle(1, 1)},
            {"descriptors alone", FAILED_TRANSACTION, handles, kEcho, echo().number(16L).descriptors(1, 0)},
            {"descriptors elsewhere", BAD_VALUE, handles, kEcho, echo().handle(1, 1).descriptors(1, 1, 8)},
            {"descriptors of the buffer before", BAD_VALUE, handles, kEcho,
             echo().handle(1, 1).buffer("x", 1).descriptors(1, 2)},
            {"descriptors in two arrays", BAD_VALUE, handles, kEcho,
             echo().handle(2, 2).descriptors(1).descriptors(1, 2, 16)},
            {"seventeen descriptors", BAD_VALUE, handles, kEcho, echo().handle(17, 17).descriptors(17)},
            {"descriptors beyond", FAILED_TRANSACTION, handles, kEcho, echo().handle(1, 1).descriptors(2)},
            {"2^62 descriptors", FAILED_TRANSACTION, handles, kEcho,
             echo().handle(1, 1).descriptors(uint64_t{1} << 62)},
            {"a closed descriptor", FAILED_TRANSACTION, handles, kEcho,
             echo().handle(1, 1).with([](Raw& raw) { raw.buffers[0].second.back() = 0x7f; }).descriptors(1)},
            {"a vector of 2^28", BAD_VALUE, handles, kEcho, echo().number(0L).record(1 << 28).buffer("", 1)},
            {"of the manager, no such method", UNKNOWN_TRANSACTION, kManager, kNone,
             Raw::of(IServiceManager::descriptor)},
            {"of the manager, a later version's", UNKNOWN_TRANSACTION, kManager, 9,
             Raw::of("android.hidl.manager@1.1::IServiceManager")},
            {"to the manager, a descriptor", FAILED_TRANSACTION, kManager, 1,
             Raw::of(IServiceManager::descriptor).object(BINDER_TYPE_FD, 0)},
    };
    for (const Row& row : rows) {
        hostile.garbage = Raw{}.number(0).text("answer");
        EXPECT_EQ(row.outcome, hostile.call(row.target, row.code, row.message)) << row.what;
        EXPECT_TRUE(innocent->sleep(0).isOk()) << row.what;
    }
    EXPECT_EQ(OK, hostile.call(probe, kAskBack, ask().text("x")));
    EXPECT_EQ(std::string("answer\0", 7), hostile.lastText);

    const Raw replies[] = {
            Raw{},
            Raw{}.number(0),
            Raw{}.number(0).record(1),
            Raw{}.number(0).record(1).buffer("xy", 1),
            Raw{}.number(0).text("x").object(BINDER_TYPE_FD, 0),
            Raw{}.number(0).handle(1, 1).descriptors(1),
            Raw{"x"}.with([](Raw& raw) { raw.flags = TF_STATUS_CODE; }),
            Raw{}.object(BINDER_TYPE_FD, 0).with([](Raw& raw) { raw.flags = TF_STATUS_CODE; }),
    };
    for (const Raw& reply : replies) {
        hostile.garbage = reply;
        EXPECT_EQ(OK, hostile.call(probe, kAskBack, ask().text("x"))) << &reply - replies;
        EXPECT_EQ(std::string("failed\0", 7), hostile.lastText) << &reply - replies;
        EXPECT_TRUE(innocent->sleep(0).isOk()) << &reply - replies;
    }
    EXPECT_TRUE(eventually([&] { return openDescriptors(server.pid()) == before; }))
            << before << " before, " << openDescriptors(server.pid()) << " after";
    std::stringstream said;
    said << std::ifstream(log).rdbuf();
    EXPECT_NE(std::string::npos,
              said.str().find("for pid " + std::to_string(getpid()) + " uid 0: it breaks the rule that"))
            << said.str();
    const sp<IServiceManager> manager = android::hardware::defaultServiceManager();
    EXPECT_TRUE(manager->interfaceChain([](const auto& chain) {
                           EXPECT_EQ(IServiceManager::descriptor, std::string(chain[0]));
                           EXPECT_EQ(2u, chain.size());
                       })
                        .isOk());
}

}  // namespace
