#include "bench/startup/OneInterface.h"

#include <dbus/dbus.h>
#include <zvttv/bench/1.0/IBenchProbe.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/startup/DbusNames.h"

namespace bench {

namespace {

using ::android::sp;
using ::zvttv::bench::V1_0::IBenchProbe;

/** Long enough for a start to have ended, after which an idle server's memory does not change. */
constexpr std::chrono::milliseconds kUntilIdle(300);

constexpr char kSocketName[] = "dbus";
constexpr int kPatienceMilliseconds = 10'000;

/** A client that has called once. */
struct DbusCall {
    explicit DbusCall(const std::string& socket) {
        const std::string address = "unix:path=" + socket;
        // The socket has its name a moment before the server listens.
        while ((mConnection = dbus_connection_open_private(address.c_str(), nullptr)) == nullptr) {
            std::this_thread::yield();
        }
        dbus_connection_set_exit_on_disconnect(mConnection, FALSE);
        DBusMessage* call = dbus_message_new_method_call(nullptr, kDbusPath, kDbusInterface, kDbusMethod);
        const dbus_uint32_t number = 1;
        if (call == nullptr ||
            !dbus_message_append_args(call, DBUS_TYPE_UINT32, &number, DBUS_TYPE_INVALID)) {
            fail("no memory for a call over D-Bus");
        }
        DBusMessage* reply =
                dbus_connection_send_with_reply_and_block(mConnection, call, kPatienceMilliseconds, nullptr);
        dbus_bool_t odd = FALSE;
        dbus_int32_t status = -1;
        if (reply == nullptr ||
            !dbus_message_get_args(reply, nullptr, DBUS_TYPE_BOOLEAN, &odd, DBUS_TYPE_INT32, &status,
                                   DBUS_TYPE_INVALID) ||
            odd != TRUE || status != 0) {
            fail("the server over D-Bus gives no answer");
        }
        dbus_message_unref(reply);
        dbus_message_unref(call);
    }
    ~DbusCall() {
        dbus_connection_close(mConnection);
        dbus_connection_unref(mConnection);
    }
    DbusCall(const DbusCall&) = delete;
    DbusCall& operator=(const DbusCall&) = delete;

  private:
    DBusConnection* mConnection;
};

Subject dbusServer(const TemporaryFolder& folder, const FolderWatch& created) {
    const std::string socket = folder / kSocketName;
    return {[socket, &created] {
                std::filesystem::remove(socket);
                created.drain();
                return std::make_unique<Child>(sibling("bench-dbus-server"),
                                               std::vector<std::string>{socket});
            },
            [socket, &created] {
                created.await(kSocketName);
                const DbusCall call(socket);
            }};
}

Subject probeServer() {
    return {[] { return std::make_unique<Child>(sibling("bench-probe-server")); },
            [] {
                const sp<IBenchProbe> probe = IBenchProbe::getService("default");  // waits for it
                bool right = false;
                if (probe == nullptr ||
                    !probe->isOdd(1, [&](bool odd, int32_t status) { right = odd && status == 0; }).isOk() ||
                    !right) {
                    fail("bench-probe-server gives no answer");
                }
            }};
}

/** Resident bytes of an idle process. */
Measure residentOf(const Subject& subject, bool called) {
    return [&subject, called] {
        const std::unique_ptr<Child> child = subject.start();
        if (called) {
            subject.awaitReady();
        }
        std::this_thread::sleep_for(kUntilIdle);
        return procBytes(child->pid(), "status", "VmRSS:");
    };
}

}  // namespace

Table measureOneInterface(const TemporaryFolder& folder, const FolderWatch& created, const Options& options) {
    const OneCpu binding;
    const Limit noMore{Limit::Kind::TimesAtMost, 1};
    const Subject theirs = dbusServer(folder, created);
    const Subject ours = probeServer();
    Table table{"A server of one interface, beside one over D-Bus: " + conditions(true, options), {}};
    const auto add = [&](const std::string& workload, Unit unit, const Measure& baseline,
                         const Measure& own) {
        if (options.wants(workload)) {
            table.rows.push_back(compare(workload, unit, noMore, options.rounds, baseline, own));
        }
    };
    add("from exec to the first call answered", Unit::Nanoseconds, startOf(theirs), startOf(ours));
    add("resident memory, never called", Unit::Bytes, residentOf(theirs, false), residentOf(ours, false));
    add("resident memory, called once", Unit::Bytes, residentOf(theirs, true), residentOf(ours, true));
    return table;
}

}  // namespace bench
