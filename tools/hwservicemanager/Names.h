#pragma once

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <android/hidl/manager/1.0/IServiceNotification.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/binding/CheckedLock.h"
#include "platform/binding/Complaints.h"

/**
 * The names of one device of the binder driver. Any thread; other processes are called without locks. What
 * belongs to a process goes with it, and no process can take so much that others find no room.
 *
 * Who registers an object is asked for its interfaces, by a call that a process may leave unanswered. That
 * costs a thread until the process ends, so at most kMostAsked registrations are under way at one time, and
 * kMostAskedOfOne of one process; further ones are refused at once. Nothing else waits for other processes: a
 * pool of more than kMostAsked threads always has one for it.
 */
class Names final : public ::android::hidl::manager::V1_0::IServiceManager {
  public:
    /** Ample for a device that starts all its services at once. */
    static constexpr size_t kMostAsked = 32;
    /** So eight processes that never answer are needed to keep others from registering. */
    static constexpr size_t kMostAskedOfOne = kMostAsked / 8;

    Names();

    // Methods from ::android::hidl::manager::V1_0::IServiceManager follow.
    ::android::hardware::Return<::android::sp<::android::hidl::base::V1_0::IBase>> get(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name) override;
    /**
     * False where a live process holds one of the object's names: then none of them is taken. Or where too
     * many registrations are under way, or the names of this process, or of all, are too long together. The
     * object is another process's.
     */
    ::android::hardware::Return<bool> add(
            const ::android::hardware::hidl_string& name,
            const ::android::sp<::android::hidl::base::V1_0::IBase>& service) override;
    ::android::hardware::Return<Transport> getTransport(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name) override;
    ::android::hardware::Return<void> list(list_cb _hidl_cb) override;
    ::android::hardware::Return<void> listByInterface(const ::android::hardware::hidl_string& fqName,
                                                      listByInterface_cb _hidl_cb) override;
    /** An empty instance name stands for all of the interface's. */
    ::android::hardware::Return<bool> registerForNotifications(
            const ::android::hardware::hidl_string& fqName, const ::android::hardware::hidl_string& name,
            const ::android::sp<::android::hidl::manager::V1_0::IServiceNotification>& callback) override;
    /**
     * The process is who registered the service, and the architecture that process's. Who uses a service is
     * not known: the driver does not tell.
     */
    ::android::hardware::Return<void> debugDump(debugDump_cb _hidl_cb) override;
    /** Notes nothing: no library is loaded as a service on a host. */
    ::android::hardware::Return<void> registerPassthroughClient(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name) override;

  private:
    using Object = ::android::sp<::android::hidl::base::V1_0::IBase>;
    using Notification = ::android::sp<::android::hidl::manager::V1_0::IServiceNotification>;
    using Architecture = ::android::hidl::base::V1_0::DebugInfo::Architecture;
    using Key = std::pair<std::string, std::string>;  // interface and instance: the order of list()

    // Ample for a device. All names fit in one answer, that of debugDump(), with room for what else its
    // reader is sent meanwhile.
    static constexpr size_t kMostBytes = ::android::hardware::kMaxTransactionBytes * 3 / 4;
    static constexpr size_t kMostBytesOfOne = kMostBytes / 8;
    static constexpr size_t kMostNotifications = 4096;
    static constexpr size_t kMostNotificationsOfOne = kMostNotifications / 8;
    static constexpr size_t kLongestName = 255;
    static constexpr size_t kLongestChain = 64;

    struct Service {
        Object object;
        int32_t pid;
        Architecture arch;
        uint64_t cookie;  // of its death; the same for all names of one registration
    };
    struct Wish {
        Key key;
        Notification callback;
        int32_t pid;
        uint64_t cookie;
    };
    struct Mourner;
    class Asking;

    bool addAsked(const std::string& name, const Object& service, int32_t pid);

    bool take(const std::vector<Key>& keys, const Service& service, std::vector<Wish>* told, Object* holder,
              int32_t* holderPid);
    void forget(uint64_t cookie);
    static bool isWanted(const Wish& wish, const Key& key);
    void tell(const Wish& wish, const Key& key, bool preexisting);
    bool refuse(const std::string& name, const std::string& why);

    const ::android::sp<Mourner> mMourner;
    ::android::hardware::Complaints mComplaints;

    ::android::hardware::CheckedMutex mLock;
    std::map<Key, Service> mServices GUARDED_BY(mLock);
    std::vector<Wish> mWishes GUARDED_BY(mLock);
    std::vector<int32_t> mAsking GUARDED_BY(mLock);  // who has a registration under way
    uint64_t mLastCookie GUARDED_BY(mLock) = 0;
};
