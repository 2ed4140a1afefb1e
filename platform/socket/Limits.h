#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/socket/Message.h"

namespace android::hardware {

// What one process may cost us, whatever number of endpoints it uses. One that asks for more loses the
// connection that asked, or the call; others notice nothing. Together they bound a process's memory to about
// kMaxCallConnections * 2 * kMaxMessageBytes + kMaxEndpointsPerProcess * (2 * kMaxMessageBytes +
// kMaxOneWayBytes), 52 MiB, of which a well-behaved one, with one endpoint, uses what its calls carry.

/** Connections that carry a process's calls, hence its calls at one time. A caller with more threads waits.
 */
constexpr size_t kMaxCallConnections = 16;

/** Endpoints of one process that we talk to: ordinary processes have one, tests a few. */
constexpr size_t kMaxEndpointsPerProcess = 8;

/**
 * Calls that one thread serves inside each other, because the thread that waits for its answer calls back.
 * The next one is refused with FAILED_TRANSACTION. So many fit on an ordinary thread's stack of 8 MiB, the
 * sanitizers' larger frames included.
 */
constexpr int kMaxNestedCalls = 64;

/**
 * Pool threads that a process leaves to others: it runs its calls on the rest, but on two at least, if the
 * pool has them. Its one-way messages are served beside them.
 */
constexpr size_t kThreadsLeftToOthers = 2;

/**
 * A sender gives up the processor once each time that the queue grows by this much: a peer that only waits
 * for it can catch up, and one that is stopped costs no more than a few such pauses before its queue is full.
 */
constexpr size_t kYieldQueueBytes = 64 * 1024;

/** Connections that have not said yet who they are. One more drops the oldest. */
constexpr size_t kMaxPendingHellos = 64;

/** Connections that may wait for being accepted; the kernel's own limit may be lower. */
constexpr int kBacklog = 4096;

/** Connections accepted in a row before the platform thread looks at what else there is. */
constexpr int kMaxAcceptedAtOnce = 64;

/** What a read of one-way messages is offered: a burst of events is fetched at once. */
constexpr size_t kControlBlockBytes = 64 * 1024;

/**
 * How long the messages of one connection are served in a row while others wait: then it is their turn. A
 * call that takes longer is not interrupted.
 */
constexpr int64_t kTurnNanoseconds = 4'000'000;

/**
 * How long a thread that has just served a connection waits for its next call, or for room for a long reply.
 * It saves a caller in a loop two system calls and a wake-up per call; the kernel rounds it up to its own
 * tick.
 */
constexpr int kLingerMilliseconds = 4;

/**
 * What has come without a break for so many waits in a row goes on for a while: from then on the connection
 * is out of the epoll instance, and a thread that waits for one-way messages does so as for a stream of them.
 */
constexpr int kWaitsUntilStream = 3;

/**
 * Threads that may run death recipients beside those that serve calls: so many recipients may block without
 * delaying a call or another report. Further reports wait.
 */
constexpr size_t kMaxDeathThreads = 32;

/** How long a caller retries to reach a process whose queue of connections is full. */
constexpr int kConnectPatienceMilliseconds = 2000;

/**
 * How long a caller whose first call on a connection broke off waits for the end of the other process, which
 * closes its descriptors one by one, before it takes the break for a refusal.
 */
constexpr int kExitPatienceMilliseconds = 50;

/**
 * How long a process that hands a reference on waits for the owner's welcome, which the owner's platform
 * thread gives: it takes longer only when that process is stopped or out of means.
 */
constexpr int kWelcomePatienceMilliseconds = 500;

/** How soon what failed for lack of descriptors, memory or threads is tried again by the runtime itself. */
constexpr int kRetryMilliseconds = 50;

}  // namespace android::hardware
