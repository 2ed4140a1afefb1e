#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

namespace fapictl {

/**
 * A service of this process's own with the probe in front of its libraries (tools/check/Report.h): its names
 * and the state of a simulated board are in a folder that goes away with the object, and nobody else meets
 * it.
 *
 * From the first one on, all that this process calls is a service of its own: the engine has found none
 * before. For one thread, but for call().
 */
class CheckedService {
  public:
    /**
     * folder: of the libraries, empty for those that the service finds itself. seconds: how long a call may
     * take. Throws Failure (Usage) when there is no service or no probe beside this program.
     */
    CheckedService(const Package& package, const std::string& folder, double seconds);
    ~CheckedService();
    CheckedService(const CheckedService&) = delete;

    enum class Progress {
        Waiting,  // ahead of the first module's start
        Running,
        Dead,
        Late,    // and ended therefore
        Failed,  // alive, but the call came back without results
    };

    /**
     * Starts the service, or starts it again; what was in its report before is gone. Comes back when it waits
     * to start its modules, or cannot be started so far.
     */
    Progress start();
    /** Carries out an order of the probe's. */
    Progress order(char order);
    /** The order to go on, and all interfaces registered. */
    Progress startModules();

    /** Calls a method; on several threads at once if need be. A method whose interface is not there is not
     * called. */
    Progress call(const Interface& interface, const Method& method, const Json& arguments);

    /** The lines that have come in since the last time, by their words. */
    std::vector<std::vector<std::string>> news();

    /** What it has said on standard error so far has nothing to do with its end. */
    void forgetWords();
    /** How it ended, and its last words since then: "Segmentation fault", "exit code 1: board:
     * ...". Once it is dead. */
    std::string death();

    /** What it has written to standard output since the last time. */
    std::string output();
    /** Entries of a folder of /proc/PID: "fd", "task". */
    size_t count(const char* what) const;

  private:
    Progress waitForOrder(char order);
    /** Finds the interfaces that are registered; whether all are. */
    bool findAll();
    bool hasEnded();
    void end();
    void take();

    const Package& mPackage;
    const std::string mLibraries;
    const double mSeconds;
    std::string mBin;  // the folder of this program
    std::string mFolder;
    pid_t mPid = -1;
    bool mEnded = false;  // and reaped; its status is the next
    int mStatus = 0;
    int mOrders = -1;
    size_t mReportRead = 0;
    size_t mOutputRead = 0;
    uintmax_t mErrorsRead = 0;
    std::vector<std::vector<std::string>> mLines;  // not yet asked for
    std::map<char, size_t> mDone;                  // orders

    std::map<const Interface*, sp<IBase>> mProxies;  // of those that are registered
    std::mutex mMutex;
    bool mLate = false;  // guarded by mMutex
};

}  // namespace fapictl
