#pragma once

#include <utils/Mutex.h>  // GUARDED_BY() and its kind

#include <mutex>

namespace android::hardware {

/**
 * A std::mutex of which clang knows who holds it, whatever the standard library: what is GUARDED_BY() it is
 * touched under a CheckedLock only, or in a function that REQUIRES() it.
 */
class CAPABILITY("mutex") CheckedMutex : public std::mutex {};

/** Holds the mutex while it lives, but for the time between unlock() and lock() or in a condition's wait. */
class SCOPED_CAPABILITY CheckedLock : public std::unique_lock<std::mutex> {
  public:
    explicit CheckedLock(CheckedMutex& mutex) ACQUIRE(mutex) : std::unique_lock<std::mutex>(mutex) {}
    ~CheckedLock() RELEASE() {}
    CheckedLock(const CheckedLock&) = delete;
    CheckedLock& operator=(const CheckedLock&) = delete;

    void lock() ACQUIRE() { std::unique_lock<std::mutex>::lock(); }
    void unlock() RELEASE() { std::unique_lock<std::mutex>::unlock(); }
};

}  // namespace android::hardware
