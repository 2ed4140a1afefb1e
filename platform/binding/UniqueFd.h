#pragma once

#include <cstdint>
#include <utility>

namespace android::hardware {

/**
 * Owns a descriptor of the runtime. In a child that is forked, and goes on without exec, the number stays
 * taken but leads to nothing (/dev/null): the parent's connections, locks and ends are not the child's.
 */
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) { reset(fd); }
    UniqueFd(UniqueFd&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(mFd, other.mFd);
        return *this;
    }
    ~UniqueFd() { reset(); }

    int get() const { return mFd; }
    bool ok() const { return mFd >= 0; }
    /** Leaves it open and gives it up. */
    int release();
    void reset(int fd = -1);

  private:
    int mFd = -1;
};

/**
 * How many forks lie between this process and the one that loaded the runtime. What was made in an earlier
 * generation belongs to the parent: it is refused here.
 */
uint32_t processGeneration();

/**
 * Has a function called in every forked child, before anything of the runtime runs there. Once per function,
 * in the order of the calls; at most eight. It may do only what a signal handler may.
 */
void atForkInChild(void (*function)());

}  // namespace android::hardware
