#pragma once

#include <cstddef>
#include <string>

namespace simulator {

// Why calls are refused. What a call is told of itself, on its own thread, is kept for the client that made
// it; see simulator/board/OwnParameters.h for how that asks.

/** Says why something cannot be done on standard error, and gives that as the reason of the call that this
 * thread carries out, if any. Of several reasons, the first counts: what follows from it comes later. */
void complain(const std::string& reason);

/** Gives the reason without saying it: for what has been said, and is not to be said with each call. */
void giveReason(const std::string& reason);

/** The call that this thread carries out from now on has no reason yet. */
void forgetReason();

/**
 * Keeps the reason of this thread's call, which has been refused, under that text; without a reason, nothing
 * is kept under it any longer. The last kMostRefusals are kept, each with at most kMaxReason bytes of reason;
 * a call of more than kMaxCall bytes is not.
 */
void keepRefusal(const std::string& call);

/** What is kept under that text; empty when nothing is. */
std::string refusalOf(const std::string& call);

constexpr size_t kMostRefusals = 32;
constexpr size_t kMaxReason = 511;
constexpr size_t kMaxCall = 4096;

}  // namespace simulator
