#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Refuses one allocation of the calling thread: while it lives, the n-th one, counted from 1, of those whose
/// size a client may choose: calloc, malloc and new[] (a scratch buffer, a text or vector of a result); or of
/// those of plain new, which containers ask. One at a time on a thread. In a program that links it, memory
/// that malloc gives out is filled with 0xA5.
class FailingAllocation {
  public:
    enum class Of { Blocks, Objects };
    explicit FailingAllocation(int nth, Of kind = Of::Blocks);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// How many such allocations have been asked for since then, the refused one included.
    int asked() const;
    /// The size of the refused one; 0 if there was none.
    size_t refusedBytes() const;
};

/// Sees what a block of malloc's or calloc's holds at the moment when the calling thread frees it. One at a
/// time on a thread.
class FreedBlock {
  public:
    FreedBlock(const void* block, size_t size);
    ~FreedBlock();
    FreedBlock(const FreedBlock&) = delete;
    FreedBlock& operator=(const FreedBlock&) = delete;

    /// Empty while it has not been freed.
    const std::vector<uint8_t>& bytes() const;
};
