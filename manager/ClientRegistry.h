#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiCallbackManager.h>

#include <sys/types.h>
#include <utils/Mutex.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <unordered_map>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// The clients that have registered for events. It belongs to the process and not to the manager: it exists
// before the manager is made, since modules may raise events from inside the manager's constructor, and
// outlives it.

/// Guards everything here. A delivery holds it across all its calls to clients, so that clients see
/// events in one order; those calls are one-way and never wait. The platform's own, since clang checks who
/// holds it whatever the standard library.
extern ::android::Mutex sCbMutex;

/// Client callbacks by the cookie under which each was linked to death. No entry is null. An entry lives
/// until its client dies.
extern std::unordered_map<uint64_t, ::android::sp<IZvtTvFApiCallbackManager>> sCbList GUARDED_BY(sCbMutex);

/// The process that registered each entry, as the transport told it: 0 when it did not know. An entry whose
/// pid found no memory has none.
extern std::unordered_map<uint64_t, pid_t> sCbPids GUARDED_BY(sCbMutex);

/// The cookie of the next registration. It only grows: cookies are never reused. Atomic because a
/// registration logs it before it takes the lock.
extern std::atomic<uint64_t> sNextCookie;

/// The modules in the order of their bits in a posted event's type, from bit 16 on.
enum EventModule : size_t {
    EVENT_SYS,
    EVENT_NET,
    EVENT_DISP,
    EVENT_DISPTST,
    EVENT_PRPHRL,
    EVENT_INPSRC,
    EVENT_AUD,
    EVENT_INFO,
    EVENT_TV,
    EVENT_MODULES
};

/// What has become of one module's events since the process started, counted once for each client.
struct EventCount {
    uint64_t u64Relayed = 0;  ///< taken by the transport, whether or not the client lives to see it
    uint64_t u64Refused = 0;  ///< the call to the client failed
};
extern std::array<EventCount, EVENT_MODULES> sEventCounts GUARDED_BY(sCbMutex);

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
