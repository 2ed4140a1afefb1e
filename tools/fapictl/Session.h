#pragma once

#include "tools/fapictl/Engine.h"
#include "tools/fapictl/Signals.h"

namespace fapictl {

/** How a session has ended. */
struct SessionEnd {
    bool outputGone;  // before the input has ended
    int leftBehind;   // threads in calls that do not come back; they use what lives as long as the process
};

/**
 * Serves JSON-RPC messages, one a line, until the input ends and all of them are answered, nobody reads the
 * answers any more, or the bell rings. SIGPIPE has to be ignored. See docs/session.md.
 *
 * @param in, out the caller's; no longer used when it returns, but by what is left behind
 * @param defaults of requests that do not say otherwise
 */
SessionEnd serveSession(const Package& package, const Target& defaults, int in, int out, const Bell& end);

}  // namespace fapictl
