#pragma once

#include <cstddef>

#include "platform/socket/Message.h"

namespace android::hardware {

// What one peer may cost us. A peer that asks for more loses the connection that asked, or the call; the
// others notice nothing. Together they bound a peer's memory to about
// kMaxCallConnections * 2 * kMaxMessageBytes + 3 * kMaxMessageBytes, 35 MiB, of which a well-behaved peer
// uses what its calls carry.

/** Connections that carry a peer's calls, hence its calls at one time. A caller with more threads waits. */
constexpr size_t kMaxCallConnections = 16;

/**
 * One-way messages that wait for a peer to read them, beyond what the kernel's socket buffer holds. The next
 * one fails with FAILED_TRANSACTION; a Release that finds the queue full costs the peer its connections.
 */
constexpr size_t kMaxOneWayQueueBytes = 1024 * 1024;

/**
 * A sender gives up the processor once each time that the queue grows by this much: a peer that only waits
 * for it can catch up, and one that is stopped costs no more than a few such pauses before its queue is full.
 */
constexpr size_t kYieldQueueBytes = 64 * 1024;

/** Connections that have not said yet who they are. One more drops the oldest. */
constexpr size_t kMaxPendingHellos = 64;

/** Endpoints of one process that we talk to: ordinary processes have one, tests a few. */
constexpr size_t kMaxEndpointsPerProcess = 8;

/** What a read of one-way messages is offered: a burst of events is fetched at once. */
constexpr size_t kControlBlockBytes = 64 * 1024;

/** Messages of one connection served in a row while no thread is free for others: then it is their turn. */
constexpr uint64_t kMaxServedInARow = 64;

/**
 * How long a thread that has just served a connection waits for its next call, or for room for a long reply,
 * while another thread is free. It saves a caller in a loop two system calls and a wake-up per call; the
 * kernel rounds it up to its own tick.
 */
constexpr int kLingerMilliseconds = 4;

/**
 * What has come without a break for so many waits in a row goes on for a while: from then on the connection
 * is out of the epoll instance, and a thread that waits for one-way messages does so as for a stream of them.
 */
constexpr int kWaitsUntilStream = 3;

/** How long a caller retries to reach a process whose queue of connections is full. */
constexpr int kConnectPatienceMilliseconds = 2000;

/**
 * How long a caller whose first call on a connection broke off waits for the end of the other process, which
 * closes its descriptors one by one, before it takes the break for a refusal.
 */
constexpr int kExitPatienceMilliseconds = 50;

}  // namespace android::hardware
