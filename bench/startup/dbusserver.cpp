// bench-dbus-server <socket path>: what bench-probe-server is, over the D-Bus reference library, to which its
// clients connect without a bus. It is as small as the library lets it be: nothing of the C++ library is
// linked.

#include <dbus/dbus.h>
#include <poll.h>
#include <stdio.h>

#include "bench/startup/DbusNames.h"

namespace {

// A watch for each descriptor and direction: the server's own and two of each connection.
constexpr int kMaxWatches = 64;
DBusWatch* sWatches[kMaxWatches];
int sCount = 0;

constexpr int kMaxConnections = kMaxWatches / 2;
DBusConnection* sConnections[kMaxConnections];
int sConnected = 0;

dbus_bool_t addWatch(DBusWatch* watch, void*) {
    if (sCount == kMaxWatches) {
        return FALSE;
    }
    sWatches[sCount++] = watch;
    return TRUE;
}

void removeWatch(DBusWatch* watch, void*) {
    for (int i = 0; i < sCount; ++i) {
        if (sWatches[i] == watch) {
            sWatches[i] = sWatches[--sCount];
            return;
        }
    }
}

DBusHandlerResult onMessage(DBusConnection* connection, DBusMessage* call, void*) {
    if (!dbus_message_is_method_call(call, bench::kDbusInterface, bench::kDbusMethod)) {
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
    dbus_uint32_t number = 0;
    if (!dbus_message_get_args(call, nullptr, DBUS_TYPE_UINT32, &number, DBUS_TYPE_INVALID)) {
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
    const dbus_bool_t odd = number % 2 == 1;
    const dbus_int32_t status = 0;
    DBusMessage* reply = dbus_message_new_method_return(call);
    const bool sent = reply != nullptr &&
                      dbus_message_append_args(reply, DBUS_TYPE_BOOLEAN, &odd, DBUS_TYPE_INT32, &status,
                                               DBUS_TYPE_INVALID) &&
                      dbus_connection_send(connection, reply, nullptr);
    if (reply != nullptr) {
        dbus_message_unref(reply);
    }
    return sent ? DBUS_HANDLER_RESULT_HANDLED : DBUS_HANDLER_RESULT_NEED_MEMORY;
}

void onConnection(DBusServer*, DBusConnection* connection, void*) {
    static const DBusObjectPathVTable kObject{nullptr, onMessage, nullptr, nullptr, nullptr, nullptr};
    // Without a reference of ours the library closes it.
    if (sConnected < kMaxConnections &&
        dbus_connection_set_watch_functions(connection, addWatch, removeWatch, nullptr, nullptr, nullptr) &&
        dbus_connection_register_object_path(connection, bench::kDbusPath, &kObject, nullptr)) {
        sConnections[sConnected++] = dbus_connection_ref(connection);
    }
}

void dispatchAll() {
    for (int i = 0; i < sConnected;) {
        DBusConnection* connection = sConnections[i];
        while (dbus_connection_dispatch(connection) == DBUS_DISPATCH_DATA_REMAINS) {
        }
        if (dbus_connection_get_is_connected(connection)) {
            ++i;
        } else {
            sConnections[i] = sConnections[--sConnected];
            dbus_connection_unref(connection);
        }
    }
}

/** Waits for what the library watches and tells it. */
void runOnce() {
    pollfd waiting[kMaxWatches];
    DBusWatch* watches[kMaxWatches];
    int count = 0;
    for (int i = 0; i < sCount; ++i) {
        if (dbus_watch_get_enabled(sWatches[i])) {
            const unsigned flags = dbus_watch_get_flags(sWatches[i]);
            const int events = ((flags & DBUS_WATCH_READABLE) != 0 ? POLLIN : 0) |
                               ((flags & DBUS_WATCH_WRITABLE) != 0 ? POLLOUT : 0);
            watches[count] = sWatches[i];
            waiting[count++] = {dbus_watch_get_unix_fd(sWatches[i]), static_cast<short>(events), 0};
        }
    }
    if (poll(waiting, static_cast<nfds_t>(count), -1) <= 0) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        const int events = waiting[i].revents;
        const unsigned flags = ((events & POLLIN) != 0 ? unsigned{DBUS_WATCH_READABLE} : 0) |
                               ((events & POLLOUT) != 0 ? unsigned{DBUS_WATCH_WRITABLE} : 0) |
                               ((events & POLLHUP) != 0 ? unsigned{DBUS_WATCH_HANGUP} : 0) |
                               ((events & POLLERR) != 0 ? unsigned{DBUS_WATCH_ERROR} : 0);
        bool known = false;  // what was handled before it may have removed it
        for (int k = 0; k < sCount; ++k) {
            known = known || sWatches[k] == watches[i];
        }
        if (known && flags != 0) {
            dbus_watch_handle(watches[i], flags);
        }
    }
    dispatchAll();
}

}  // namespace

int main(int argc, char** argv) {
    char address[256];
    if (argc != 2 || snprintf(address, sizeof(address), "unix:path=%s", argv[1]) >= int{sizeof(address)}) {
        fprintf(stderr, "usage: bench-dbus-server <socket path>\n");
        return 2;
    }
    DBusServer* server = dbus_server_listen(address, nullptr);
    if (server == nullptr ||
        !dbus_server_set_watch_functions(server, addWatch, removeWatch, nullptr, nullptr, nullptr)) {
        fprintf(stderr, "bench-dbus-server: can not listen at %s\n", address);
        return 2;
    }
    dbus_server_set_new_connection_function(server, onConnection, nullptr, nullptr);
    while (true) {
        runOnce();
    }
}
