// What is no module's: readiness, version, and the start of the board.

#include <csignal>
#include <cstring>
#include <string>

#include "simulator/board/Board.h"
#include "simulator/board/ChipCall.h"
#include "simulator/modules/BoardStart.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/storage/Delivered.h"

using namespace simulator;

void boardStartClaim() {
    // A file that passes the process's limit is a status of one call, not the end of all.
    std::signal(SIGXFSZ, SIG_IGN);
    guarded([] {
        boardState().claim();
        return kOk;
    });
}

int32_t boardStartDeliver() {
    return guarded([] { return deliver(); });
}

const char* boardStartHelp() {
    static const std::string& sHelp = *new std::string(
            "  ZVTTV_STATE_DIR         the board's state folder; now " + boardState().path() +
            "\n"
            "  ZVTTV_BOARD_READY       yes (default), no, or after how many milliseconds\n"
            "  ZVTTV_BOARD_FORCE       statuses for functions: \"aud_init -9; sys_init -7\"\n"
            "  ZVTTV_BOARD_UPGRADE_MS  how long a firmware upgrade takes (3000)\n"
            "  ZVTTV_FRC_UPGRADE_MS    and that of the frame-rate converter (3000)\n"
            "  ZVTTV_DEBUG_LEVEL       0 silences the service's log (default: 1)\n");
    return sHelp.c_str();
}

int32_t a_zvttvfapi_common_get_fapi_status() {
    constexpr int32_t kNotReady = -5;
    return boardReady() ? kOk : kNotReady;
}

int32_t a_zvttvfapi_common_get_fapi_version(char* pcVersion, unsigned int u32Size) {
    if (pcVersion == nullptr || u32Size == 0) {
        return kOutOfRange;
    }
    const size_t length = strlen(kBoardVersion);
    if (length >= u32Size) {
        pcVersion[0] = '\0';
        return kTooLong;
    }
    memcpy(pcVersion, kBoardVersion, length + 1);
    return kOk;
}
