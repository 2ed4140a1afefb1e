#include "platform/socket/Process.h"

#include "platform/socket/Inbound.h"
#include "platform/socket/Limits.h"

namespace android::hardware {

bool Process::addEndpoint() {
    const CheckedLock lock(mLock);
    if (mEndpoints >= kMaxEndpointsPerProcess) {
        return false;
    }
    ++mEndpoints;
    return true;
}

void Process::removeEndpoint() {
    const CheckedLock lock(mLock);
    --mEndpoints;
}

bool Process::addConnection() {
    const CheckedLock lock(mLock);
    if (mConnections >= kMaxCallConnections) {
        return false;
    }
    ++mConnections;
    return true;
}

void Process::removeConnection() {
    const CheckedLock lock(mLock);
    --mConnections;
}

bool Process::beginServing(Inbound* connection, size_t most) {
    const CheckedLock lock(mLock);
    mMost = most;
    if (connection->hasTurn || connection->isControl() || mServing < most) {
        mServing += connection->hasTurn ? 0 : 1;
        connection->hasTurn = false;
        return true;
    }
    connection->nextParked = nullptr;
    if (mParkedFirst == nullptr) {
        mParkedFirst = connection;
    } else {
        mParkedLast->nextParked = connection;
    }
    mParkedLast = connection;
    return false;
}

Inbound* Process::endServing() {
    const CheckedLock lock(mLock);
    Inbound* const longest = mParkedFirst;
    if (longest == nullptr || mServing > mMost) {
        --mServing;
        return nullptr;
    }
    mParkedFirst = longest->nextParked;
    longest->hasTurn = true;  // the thread that has ended is its, whoever comes meanwhile
    return longest;
}

std::shared_ptr<Process> Processes::get(const Credentials& credentials) {
    if (credentials.pid == 0) {
        return std::make_shared<Process>(credentials);
    }
    const CheckedLock lock(mLock);
    const auto known = mProcesses.find(credentials.pid);
    if (known != mProcesses.end()) {
        std::shared_ptr<Process> process = known->second.lock();
        if (process != nullptr && process->credentials().uid == credentials.uid) {
            return process;
        }
    }
    // A new process is the time to forget those that have gone.
    for (auto each = mProcesses.begin(); each != mProcesses.end();) {
        each = each->second.expired() ? mProcesses.erase(each) : std::next(each);
    }
    auto process = std::make_shared<Process>(credentials);
    mProcesses[credentials.pid] = process;
    return process;
}

}  // namespace android::hardware
