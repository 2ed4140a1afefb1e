// libutils needs one function of libbacktrace, to find the call stack of an android::CallStack. Debian's
// libbacktrace comes with an unwinder and all of a file archiver: 1.7 MiB of resident memory and two
// milliseconds of every start, for what a process asks for when something has gone wrong, if ever. This
// library takes its place, under its name, and brings in the real one when the function is called.

#define LOG_TAG "backtrace"

#include <backtrace/Backtrace.h>
#include <dlfcn.h>
#include <log/log.h>

Backtrace* Backtrace::Create(pid_t pid, pid_t tid, BacktraceMap* map) {
    using CreateFunction = Backtrace* (*)(pid_t, pid_t, BacktraceMap*);
    static const auto create = [] {
        void* const library = dlopen(ZVTTV_BACKTRACE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        void* const function =
                library == nullptr ? nullptr : dlsym(library, "_ZN9Backtrace6CreateEiiP12BacktraceMap");
        LOG_ALWAYS_FATAL_IF(function == nullptr, "no call stack: %s", dlerror());
        return reinterpret_cast<CreateFunction>(function);
    }();
    return create(pid, tid, map);
}
