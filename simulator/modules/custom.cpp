// The custom library: its start, and the debug level of the service.

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "simulator/modules/BoardStart.h"
#include "simulator/modules/ChipLayer.h"

/** Makes what is missing of the board's identity and of the configuration files; 0 or a status. */
int _a_zvttvfapi_custom_init() {
    return boardStartDeliver != nullptr ? boardStartDeliver() : 0;
}

const char* _a_zvttvfapi_custom_help() {
    return boardStartHelp != nullptr ? boardStartHelp() : "";
}

/** $ZVTTV_DEBUG_LEVEL, an integer; 1 when absent, or when it is none, which is said on standard error. The
 * first call of a service that starts: one whose board is another's ends here, before it is seen by anybody.
 */
int _a_zvttvfapi_custom_init_debug_level() {
    constexpr int kDefaultDebugLevel = 1;
    if (boardStartClaim != nullptr) {
        boardStartClaim();
    }
    const char* text = getenv("ZVTTV_DEBUG_LEVEL");
    if (text == nullptr || text[0] == '\0') {
        return kDefaultDebugLevel;
    }
    char* end = nullptr;
    errno = 0;
    const long level = strtol(text, &end, 0);
    if (end == text || *end != '\0' || errno != 0 || level < INT_MIN || level > INT_MAX) {
        fprintf(stderr, "board: ZVTTV_DEBUG_LEVEL is \"%s\", not an integer: %d is used\n", text,
                kDefaultDebugLevel);
        return kDefaultDebugLevel;
    }
    return static_cast<int>(level);
}
