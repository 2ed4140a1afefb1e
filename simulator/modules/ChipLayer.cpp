// The functions that the library exports: each returns the status that it was told to, if any, or does its
// work.

#pragma GCC visibility push(default)
#include "chiplayer/chiplayer.h"
#pragma GCC visibility pop
#include "simulator/board/ChipCall.h"
#include "simulator/board/ForcedStatus.h"
#include "simulator/board/Refusals.h"

namespace simulator {
namespace {

constexpr size_t kPrefix = sizeof("a_zvttvfapi_") - 1;

/** Does a function's work, unless its status is forced; the reason for a refusal is kept for the client. */
template <typename Body>
int32_t carriedOut(ForcePoint& point, Body body) {
    int32_t status = 0;
    forgetReason();
    if (!point.take(&status)) {
        status = body();
    }
    if (status != 0) {
        // The refusal counts, whatever becomes of its reason.
        guarded([&] {
            keepRefusal(point.function() + kPrefix);
            return kOk;
        });
    }
    return status;
}

}  // namespace
}  // namespace simulator

#include <ChipFunctions.inc>
