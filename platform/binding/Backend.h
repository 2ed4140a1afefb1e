#pragma once

#include <hwbinder/IBinder.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/binding/Complaints.h"

/** What the runtime takes from the environment, for people: whole lines. A device's has none. */
extern "C" const char* hidl_transport_help();

namespace android::hidl::manager::V1_0 {
struct IServiceManager;
}

namespace android::hardware {

/** How processes find each other's objects. Any thread. */
class Names {
  public:
    /**
     * Makes a local object known under several interface names and one instance name, for as long as the
     * process lives. All of them or none; what was known before stays known.
     *
     * @return ALREADY_EXISTS when a live process, this one included, holds one of the names; BAD_VALUE for
     * one that is none; PERMISSION_DENIED where names can not be trusted; other statuses for lack of means
     */
    virtual status_t add(const std::vector<std::string>& fqNames, const std::string& instance,
                         const sp<IBinder>& object) = 0;

    /**
     * The object that is known under a name; null when there is none, or names can not be used, which is
     * logged. With wait, waits until there is one.
     */
    virtual sp<IBinder> get(const std::string& fqName, const std::string& instance, bool wait) = 0;

    /** The names as an object. Never null. */
    virtual sp<::android::hidl::manager::V1_0::IServiceManager> manager() = 0;

  protected:
    ~Names() = default;
};

/** What carries calls between processes: all that the rest of the runtime knows of it. */
class Backend {
  public:
    /** The process's own; a child that was forked has one of its own. Never destroyed. */
    static Backend& self();

    virtual ~Backend() = default;

    /**
     * How many threads may run methods for others at one time; 1 until it is called.
     *
     * @param callerWillJoin one of them will come through joinThreadPool()
     */
    virtual void setMaxThreads(size_t maxThreads, bool callerWillJoin) = 0;
    /** Lets calls from others run, and deaths be reported. */
    virtual void startThreadPool() = 0;
    /** Runs calls on this thread; does not return. */
    virtual void joinThreadPool() = 0;
    virtual Names& names() = 0;
    /**
     * Whose call this thread serves, the innermost one's; this process while it serves none. The pid is 0
     * where the transport does not know it.
     */
    virtual Credentials caller() = 0;
};

}  // namespace android::hardware
