#pragma once

/// Refuses one allocation of the calling thread: while it lives, the n-th one, counted from 1, that asks for
/// a null pointer rather than an exception (new (std::nothrow)). One at a time on a thread. In a program that
/// links it, such memory is filled with 0xA5 at all times.
class FailingAllocation {
  public:
    explicit FailingAllocation(int nth);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// How many such allocations have been asked for since then, the refused one included.
    int asked() const;
};
