#include "platform/socket/CallConnections.h"

#include <sys/socket.h>

#include <algorithm>
#include <new>

#include "platform/socket/Limits.h"

namespace android::hardware {

status_t CallConnections::borrow(Connect connect, void* context, Lease* lease) {
    {
        CheckedLock lock(mLock);
        mFree.wait(lock, [this]() REQUIRES(mLock) {
            return mEnded || !mIdle.empty() || mCount < kMaxCallConnections;
        });
        if (mEnded) {
            return DEAD_OBJECT;
        }
        // From here on nothing needs memory: neither vector grows beyond this.
        mIdle.reserve(kMaxCallConnections);
        mBusy.reserve(kMaxCallConnections);
        if (!mIdle.empty()) {
            lease->mFd = std::move(mIdle.back().fd);
            lease->mProven = mIdle.back().proven;
            lease->mOwner = this;
            mIdle.pop_back();
            mBusy.push_back(lease->fd());
            return OK;
        }
        ++mCount;
    }
    status_t status = OK;
    UniqueFd fd;
    try {
        fd = connect(context, &status);
    } catch (const std::bad_alloc&) {
        status = NO_MEMORY;
    }
    const CheckedLock lock(mLock);
    if (!fd.ok() || mEnded) {
        --mCount;
        mFree.notify_one();
        return fd.ok() ? DEAD_OBJECT : status;
    }
    mBusy.push_back(fd.get());
    lease->mFd = std::move(fd);
    lease->mProven = false;
    lease->mOwner = this;
    return OK;
}

CallConnections::Lease::~Lease() {
    if (mOwner != nullptr) {
        const CheckedLock lock(mOwner->mLock);
        mOwner->forget(mFd.get());
        --mOwner->mCount;
        mOwner->mFree.notify_one();
    }
}

void CallConnections::Lease::giveBack(bool proven) {
    CallConnections& owner = *std::exchange(mOwner, nullptr);
    const CheckedLock lock(owner.mLock);
    owner.forget(mFd.get());
    if (owner.mEnded) {
        --owner.mCount;
        return;
    }
    owner.mIdle.push_back({std::move(mFd), proven});
    owner.mFree.notify_one();
}

void CallConnections::forget(int fd) {
    mBusy.erase(std::find(mBusy.begin(), mBusy.end(), fd));
}

void CallConnections::end() {
    const CheckedLock lock(mLock);
    mEnded = true;
    mCount -= mIdle.size();
    mIdle.clear();
    for (const int fd : mBusy) {
        ::shutdown(fd, SHUT_RDWR);
    }
    mFree.notify_all();
}

size_t CallConnections::count() {
    const CheckedLock lock(mLock);
    return mCount;
}

bool CallConnections::areDead() {
    const CheckedLock lock(mLock);
    return mCount == mIdle.size() && std::all_of(mIdle.begin(), mIdle.end(), [](const Idle& idle) {
               uint8_t byte;
               return receiveSome(idle.fd.get(), &byte, 1, MSG_DONTWAIT | MSG_PEEK) >= 0 ||
                      !wouldBlock(errno);
           });
}

}  // namespace android::hardware
