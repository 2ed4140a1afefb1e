// Calls a chip-layer function named on the command line and prints its status and result.
//
// Environment: PROBE_TRACE prints what is done to the disk; PROBE_DIE_AT=fsync|rename ends the process
// instead of doing that; PROBE_FILE_LIMIT=<bytes> makes larger files fail; PROBE_UID gives up root for that
// user.

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "chiplayer/chiplayer.h"

namespace {

void hook(const char* name, const char* detail) {
    if (const char* moment = getenv("PROBE_DIE_AT"); moment != nullptr && strcmp(moment, name) == 0) {
        _exit(42);
    }
    if (getenv("PROBE_TRACE") != nullptr) {
        printf("%s %s, ", name, detail);
    }
}

const unsigned char* bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

/** Storage commands of module sys; false for another one. */
bool sysCommand(const std::string& command, int argc, char** argv) {
    if (command == "env-set" && argc == 4) {
        printf("%d", a_zvttvfapi_sys_set_emmc_env_var(bytes(argv[2]), bytes(argv[3])));
    } else if (command == "env-get" && argc == 3) {
        unsigned char value[1024] = {};
        const int status = a_zvttvfapi_sys_get_emmc_env_var(bytes(argv[2]), value, sizeof(value));
        printf("%d %s", status, reinterpret_cast<char*>(value));
    } else if (command == "area-write" && argc == 5) {
        printf("%d", a_zvttvfapi_sys_write_emmc(reinterpret_cast<unsigned char*>(argv[2]),
                                                static_cast<unsigned>(atoi(argv[3])),
                                                static_cast<unsigned>(strlen(argv[4])),
                                                reinterpret_cast<unsigned char*>(argv[4])));
    } else if (command == "area-read" && argc == 5) {
        unsigned char data[64] = {};
        const int status = a_zvttvfapi_sys_read_emmc(reinterpret_cast<unsigned char*>(argv[2]),
                                                     static_cast<unsigned>(atoi(argv[3])),
                                                     static_cast<unsigned>(atoi(argv[4])), data);
        printf("%d %s", status, reinterpret_cast<char*>(data));
    } else if (command == "seal" && argc == 5) {
        printf("%d",
               a_zvttvfapi_sys_secure_storage_encrypt_key(bytes(argv[2]), bytes(argv[3]), bytes(argv[4]),
                                                          static_cast<unsigned char>(strlen(argv[4]))));
    } else {
        return false;
    }
    return true;
}

/** The status at once, and when the board has become ready, which must not be before the given time. */
void waitUntilReady(int milliseconds) {
    const auto start = std::chrono::steady_clock::now();
    printf("%d", a_zvttvfapi_common_get_fapi_status());
    while (a_zvttvfapi_common_get_fapi_status() != 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto waited = std::chrono::steady_clock::now() - start;
    printf(waited < std::chrono::milliseconds(milliseconds) ? " early" : " in time");
}

}  // namespace

// Found by the libraries before the C library's.
extern "C" int fsync(int fd) {
    struct stat status {};
    hook("fsync", fstat(fd, &status) == 0 && S_ISDIR(status.st_mode) ? "folder" : "file");
    return static_cast<int>(syscall(SYS_fsync, fd));
}

extern "C" int renameat(int oldFolder, const char* oldName, int newFolder, const char* newName) noexcept {
    hook("rename", newName);
    return static_cast<int>(syscall(SYS_renameat2, oldFolder, oldName, newFolder, newName, 0));
}

int main(int argc, char** argv) {
    if (const char* limit = getenv("PROBE_FILE_LIMIT")) {
        const rlimit size{strtoul(limit, nullptr, 10), RLIM_INFINITY};
        signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &size);
    }
    if (const char* uid = getenv("PROBE_UID")) {
        if (setuid(static_cast<uid_t>(strtoul(uid, nullptr, 10))) != 0 || prctl(PR_SET_DUMPABLE, 1) != 0) {
            return 2;
        }
    }
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "get" && argc == 4) {
        unsigned char value[2048] = {};
        const int status =
                a_zvttvfapi_info_get_ini_para(bytes(argv[2]), bytes(argv[3]), value, sizeof(value));
        printf("%d %s", status, reinterpret_cast<char*>(value));
    } else if (command == "set" && argc == 5) {
        printf("%d", a_zvttvfapi_info_set_ini_para(bytes(argv[2]), bytes(argv[3]), bytes(argv[4])));
    } else if (command == "count" && argc == 4) {
        int failed = 0;
        for (int i = 0; i < atoi(argv[3]); ++i) {
            const std::string key = std::string(argv[2]) + ":" + std::to_string(i);
            failed += a_zvttvfapi_info_set_ini_para(bytes("count"), bytes(key.c_str()), bytes("1")) != 0;
        }
        printf("%d", failed);
    } else if (command == "status") {
        printf("%d", a_zvttvfapi_common_get_fapi_status());
    } else if (command == "wait" && argc == 3) {
        waitUntilReady(atoi(argv[2]));
    } else if (command == "ip" && argc == 3) {
        unsigned char enabled = 7;
        const int status =
                a_zvttvfapi_info_get_ip_enable_status(static_cast<unsigned>(atoi(argv[2])), &enabled);
        printf("%d %d", status, enabled);
    } else if (command == "capture" && argc == 3) {
        printf("%d", a_zvttvfapi_disp_capture_screen_to_usb(bytes(argv[2]), 0));
    } else if (command == "level") {
        printf("%d", _a_zvttvfapi_custom_init_debug_level());
    } else if (command == "init") {
        printf("%d", _a_zvttvfapi_custom_init());
    } else if (!sysCommand(command, argc, argv)) {
        return 2;
    }
    return 0;
}
