#pragma once

#include <cstddef>

// Arguments of a chip-layer function between fences.
namespace check {

struct FenceSlot;

enum class Access { Read, Write };

/**
 * A copy of what an argument points to, at the end of a page behind which nothing may be touched, and which
 * is gone after the call. Who reaches beyond it, writes to what may only be read, or comes back to it later
 * is reported once and let through: the call goes on, as it would have with the service's own buffer. What
 * the kernel is told to read or write there fails, and is not noticed.
 *
 * Up to kLargest bytes; what is larger is the service's own, without fences.
 */
class Fence {
  public:
    static constexpr size_t kLargest = 16 << 20;

    /**
     * function and name live for ever. The bytes are copied from data, or zero if it is null. alignment is a
     * power of two up to 16; what it leaves free behind the bytes is looked at when the call is over.
     */
    Fence(const char* function, const char* name, const void* data, size_t size, size_t alignment,
          Access access);
    /** Copies what may have been written back to where it came from. */
    ~Fence();
    Fence(const Fence&) = delete;

    /** The bytes, as the type of the pointer that they came by. */
    template <typename T>
    T* as(T*) const {
        return static_cast<T*>(mBytes);
    }
    const char* bytes() const { return static_cast<const char*>(mBytes); }
    size_t size() const { return mSize; }

  private:
    const char* const mFunction;
    const char* const mName;
    void* const mOrigin;  // what to copy back to, if anything
    const size_t mSize;
    void* mBytes;
    FenceSlot* mSlot = nullptr;  // null without fences
};

/** Has the faults at fences come in, and those that end the process. Once, before the first fence. */
void watchFences();

}  // namespace check
