// Debian's libmicrohttpd comes with all of a TLS library, which costs 1.4 ms of every start of a program
// that only may want to serve. These functions take the place of the library's, and bring it in when the
// first of them is called: MHD_start_daemon(), which throws std::runtime_error when it is not installed.

#include <dlfcn.h>
#include <microhttpd.h>

#include <cstdarg>
#include <stdexcept>
#include <string>

namespace {

template <typename Function>
Function* find(const char* name) {
    static void* const sLibrary = dlopen(ZVTTV_MICROHTTPD_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const function = sLibrary == nullptr ? nullptr : dlsym(sLibrary, name);
    if (function == nullptr) {
        throw std::runtime_error(std::string("cannot serve: ") + dlerror());
    }
    return reinterpret_cast<Function*>(function);
}

}  // namespace

// The library's function of the name, found once.
#define LOADED(NAME)                                               \
    ([] {                                                          \
        static auto* const function = find<decltype(NAME)>(#NAME); \
        return function;                                           \
    }())

extern "C" {

MHD_Daemon* MHD_start_daemon(unsigned flags, uint16_t port, MHD_AcceptPolicyCallback accept,
                             void* acceptContext, MHD_AccessHandlerCallback access, void* accessContext,
                             ...) {
    auto* const start = LOADED(MHD_start_daemon_va);
    va_list options;
    va_start(options, accessContext);
    MHD_Daemon* const daemon = start(flags, port, accept, acceptContext, access, accessContext, options);
    va_end(options);
    return daemon;
}

void MHD_stop_daemon(MHD_Daemon* daemon) {
    LOADED(MHD_stop_daemon)(daemon);
}

const MHD_DaemonInfo* MHD_get_daemon_info(MHD_Daemon* daemon, MHD_DaemonInfoType type, ...) {
    return LOADED(MHD_get_daemon_info)(daemon, type);
}

MHD_Result MHD_get_timeout(MHD_Daemon* daemon, MHD_UNSIGNED_LONG_LONG* timeout) {
    return LOADED(MHD_get_timeout)(daemon, timeout);
}

MHD_Result MHD_run(MHD_Daemon* daemon) {
    return LOADED(MHD_run)(daemon);
}

int MHD_get_connection_values(MHD_Connection* connection, MHD_ValueKind kind, MHD_KeyValueIterator iterator,
                              void* context) {
    return LOADED(MHD_get_connection_values)(connection, kind, iterator, context);
}

void MHD_suspend_connection(MHD_Connection* connection) {
    LOADED(MHD_suspend_connection)(connection);
}

void MHD_resume_connection(MHD_Connection* connection) {
    LOADED(MHD_resume_connection)(connection);
}

MHD_Response* MHD_create_response_from_buffer(size_t size, void* buffer, MHD_ResponseMemoryMode mode) {
    return LOADED(MHD_create_response_from_buffer)(size, buffer, mode);
}

MHD_Response* MHD_create_response_from_callback(uint64_t size, size_t block, MHD_ContentReaderCallback reader,
                                                void* context, MHD_ContentReaderFreeCallback release) {
    return LOADED(MHD_create_response_from_callback)(size, block, reader, context, release);
}

MHD_Result MHD_add_response_header(MHD_Response* response, const char* name, const char* value) {
    return LOADED(MHD_add_response_header)(response, name, value);
}

MHD_Result MHD_queue_response(MHD_Connection* connection, unsigned status, MHD_Response* response) {
    return LOADED(MHD_queue_response)(connection, status, response);
}

void MHD_destroy_response(MHD_Response* response) {
    LOADED(MHD_destroy_response)(response);
}
}
