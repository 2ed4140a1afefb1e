// What is no module's: readiness, version, and the start of the board.

#include <cstring>

#include "simulator/board/Board.h"
#include "simulator/board/ChipCall.h"
#include "simulator/modules/BoardStart.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/storage/Delivered.h"

using namespace simulator;

void boardStartClaim() {
    guarded([] {
        boardState().claim();
        return kOk;
    });
}

int32_t boardStartDeliver() {
    return guarded([] { return deliver(); });
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
