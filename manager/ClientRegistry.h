#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiCallbackManager.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// The clients that have registered for events. It belongs to the process and not to the manager: it exists
// before the manager is made, since modules may raise events from inside the manager's constructor, and
// outlives it.

/// Guards sCbList and sNextCookie. A delivery holds it across all its calls to clients, so that clients see
/// events in one order; those calls are one-way and never wait.
extern std::mutex sCbMutex;

/// Client callbacks by the cookie under which each was linked to death. No entry is null. An entry lives
/// until its client dies.
extern std::unordered_map<uint64_t, ::android::sp<IZvtTvFApiCallbackManager>> sCbList;

/// The cookie of the next registration. It only grows: cookies are never reused. Atomic because a
/// registration logs it before it takes the lock.
extern std::atomic<uint64_t> sNextCookie;

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
