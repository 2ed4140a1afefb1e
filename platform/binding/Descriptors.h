#pragma once

#include <hwbinder/Parcel.h>

#include <array>
#include <cstddef>
#include <memory>

namespace android::hardware {

/**
 * Native handles of one message may have so many descriptors together: more than any method of the platform
 * passes, and little beside the thousand that a process may have open. A message with more is refused by the
 * sender; one that sends it all the same is refused, over a socket with its connection.
 */
constexpr size_t kMaxDescriptors = 16;

/** The descriptors that came with one message. They are closed with this object. */
class Descriptors {
  public:
    Descriptors() = default;
    ~Descriptors();
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    size_t size() const { return mCount; }
    const int* data() const { return mFds.data(); }

    /** Takes descriptors over. Those that are too many are closed, and make it overfull. */
    void add(const int* fds, size_t count);

    /** More came than a message may have. */
    bool isOverfull() const { return mOverfull; }
    /** Some did not come, as this process has no room for them. */
    bool lacksSome() const { return mLacks; }
    void noteOverfull() { mOverfull = true; }
    void noteLack() { mLacks = true; }

  private:
    std::array<int, kMaxDescriptors> mFds;
    size_t mCount = 0;
    bool mOverfull = false;
    bool mLacks = false;
};

/** Keeps them with a parcel: closes them when that ends. */
ParcelMemory keeperOf(std::unique_ptr<Descriptors> descriptors);

}  // namespace android::hardware
