#define LOG_TAG "hwservicemanager"

#include "tools/hwservicemanager/Names.h"

#include <elf.h>
#include <errno.h>
#include <log/log.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <thread>

#include "platform/kernel/KernelBackend.h"

using ::android::sp;
using ::android::wp;
using ::android::hardware::Backend;
using ::android::hardware::CheckedLock;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::android::hidl::base::V1_0::DebugInfo;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceManager;
using ::android::hidl::manager::V1_0::IServiceNotification;

namespace {

/** The process whose two-way call this thread serves; -1 when it is not known. */
int32_t callingPid() {
    const pid_t pid = Backend::self().caller().pid;
    return pid == 0 ? -1 : pid;
}

/**
 * Whether an object's process is gone. A one-way call tells at once, and waits for nobody. Right after the
 * end of who registered it, the driver may not know yet that the object went with it.
 */
bool isDead(const sp<IBase>& object, int32_t pid) {
    for (int tries = 0; tries < 20; ++tries) {
        if (object->setHALInstrumentation().isDeadObject()) {
            return true;
        }
        if (pid <= 0 || kill(pid, 0) == 0 || errno != ESRCH) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;  // it was another process's, which lives
}

/** At most, of a record of debugDump() in a transaction: itself, and three buffers with their forms. */
size_t bytesOf(const std::pair<std::string, std::string>& key) {
    constexpr size_t kBuffer = 48;
    const auto padded = [](const std::string& text) { return text.size() / 8 * 8 + 8; };
    return sizeof(IServiceManager::InstanceDebugInfo) + 3 * kBuffer + padded(key.first) + padded(key.second);
}

/** What the program of a process that waits for us is made for, as the head of its file says. */
DebugInfo::Architecture architectureOf(int32_t pid) {
    char head[EI_CLASS + 1] = {};
    std::ifstream program("/proc/" + std::to_string(pid) + "/exe", std::ios::binary);
    program.read(head, sizeof(head));
    switch (program && std::memcmp(head, ELFMAG, SELFMAG) == 0 ? head[EI_CLASS] : 0) {
        case ELFCLASS32:
            return DebugInfo::Architecture::IS_32BIT;
        case ELFCLASS64:
            return DebugInfo::Architecture::IS_64BIT;
        default:
            return DebugInfo::Architecture::UNKNOWN;
    }
}

}  // namespace

/** Tells of the deaths of processes that have registered something. */
struct Names::Mourner : hidl_death_recipient {
    explicit Mourner(Names& names) : mNames(names) {}
    void serviceDied(uint64_t cookie, const wp<IBase>&) override { mNames.forget(cookie); }
    Names& mNames;  // lives as long as the process
};

Names::Names() : mMourner(new Mourner(*this)) {}

Return<sp<IBase>> Names::get(const hidl_string& fqName, const hidl_string& name) {
    const CheckedLock lock(mLock);
    const auto found = mServices.find({fqName, name});
    return found == mServices.end() ? nullptr : found->second.object;
}

/** One of the registrations that may be under way at one time. */
class Names::Asking {
  public:
    Asking(Names& names, int32_t pid) : mNames(names), mPid(pid) {
        const CheckedLock lock(mNames.mLock);
        std::vector<int32_t>& all = mNames.mAsking;
        mMay = all.size() < kMostAsked &&
               static_cast<size_t>(std::count(all.begin(), all.end(), pid)) < kMostAskedOfOne;
        if (mMay) {
            all.push_back(pid);
        }
    }
    ~Asking() {
        const CheckedLock lock(mNames.mLock);
        if (mMay) {
            mNames.mAsking.erase(std::find(mNames.mAsking.begin(), mNames.mAsking.end(), mPid));
        }
    }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;

    bool may() const { return mMay; }

  private:
    Names& mNames;
    const int32_t mPid;
    bool mMay;
};

Return<bool> Names::add(const hidl_string& name, const sp<IBase>& service) {
    const int32_t pid = callingPid();
    if (service == nullptr || name.size() > kLongestName) {
        return refuse("", "a service has an object, and a name that is not too long");
    }
    if (!service->isRemote()) {
        return refuse(name, "it is the manager's own");  // and would never die
    }
    const Asking asking(*this, pid);
    if (!asking.may()) {
        return refuse(name, "others, or too many of its own, have not said yet what they register");
    }
    return addAsked(name, service, pid);
}

/** add(), with a thread that may be kept waiting. */
bool Names::addAsked(const std::string& name, const Object& service, int32_t pid) {
    std::vector<Key> keys;
    const Return<void> asked = service->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
        for (const hidl_string& each : chain) {
            if (each != IBase::descriptor && each.size() <= kLongestName && keys.size() < kLongestChain) {
                keys.emplace_back(each, name);
            }
        }
    });
    if (!asked.isOk() || keys.empty()) {
        return refuse(name, "it names no interface: " + asked.description());
    }
    Service added{service, pid, architectureOf(pid), 0};
    {
        const CheckedLock lock(mLock);
        added.cookie = ++mLastCookie;
    }
    std::vector<Wish> told;
    while (true) {
        Object holder;
        int32_t holderPid = 0;
        if (take(keys, added, &told, &holder, &holderPid)) {
            break;
        }
        if (holder == nullptr || !isDead(holder, holderPid)) {
            return refuse(keys.front().first + "/" + name,
                          holder == nullptr ? "there are too many names"
                                            : "pid " + std::to_string(holderPid) + " holds the name");
        }
        // Its notice is on the way.
        uint64_t cookie = 0;
        {
            const CheckedLock lock(mLock);
            for (const auto& [key, each] : mServices) {
                cookie = each.object == holder ? each.cookie : cookie;
            }
        }
        forget(cookie);
    }
    // Linked before, its death could be told before it is here to be forgotten.
    const Return<bool> linked = service->linkToDeath(mMourner, added.cookie);
    if (!linked.isOk() || !linked) {
        forget(added.cookie);
        return false;
    }
    for (const Wish& wish : told) {
        for (const Key& key : keys) {
            if (isWanted(wish, key)) {
                tell(wish, key, false);
            }
        }
    }
    return true;
}

/**
 * Files a service under all names, or under none: then holder is who has one of them, or null where there are
 * too many names.
 *
 * @param told who wants to be told of one of them
 */
bool Names::take(const std::vector<Key>& keys, const Service& service, std::vector<Wish>* told,
                 Object* holder, int32_t* holderPid) {
    const CheckedLock lock(mLock);
    for (const Key& key : keys) {
        if (const auto held = mServices.find(key); held != mServices.end()) {
            *holder = held->second.object;
            *holderPid = held->second.pid;
            return false;
        }
    }
    size_t bytes = 0;
    size_t ofOne = 0;
    for (const auto& [key, held] : mServices) {
        bytes += bytesOf(key);
        ofOne += held.pid == service.pid ? bytesOf(key) : 0;
    }
    for (const Key& key : keys) {
        bytes += bytesOf(key);
        ofOne += bytesOf(key);
    }
    if (bytes > kMostBytes || ofOne > kMostBytesOfOne) {
        return false;
    }
    for (const Key& key : keys) {
        mServices.emplace(key, service);
    }
    for (const Wish& wish : mWishes) {
        if (std::any_of(keys.begin(), keys.end(), [&](const Key& key) { return isWanted(wish, key); })) {
            told->push_back(wish);
        }
    }
    return true;
}

void Names::forget(uint64_t cookie) {
    std::vector<Object> objects;  // end outside the lock, as do notifications
    std::vector<Wish> wishes;
    const CheckedLock lock(mLock);
    for (auto service = mServices.begin(); service != mServices.end();) {
        if (service->second.cookie == cookie) {
            objects.push_back(service->second.object);
            service = mServices.erase(service);
        } else {
            ++service;
        }
    }
    const auto dead = std::stable_partition(mWishes.begin(), mWishes.end(),
                                            [&](const Wish& wish) { return wish.cookie != cookie; });
    wishes.assign(dead, mWishes.end());
    mWishes.erase(dead, mWishes.end());
}

bool Names::isWanted(const Wish& wish, const Key& key) {
    return wish.key.first == key.first && (wish.key.second.empty() || wish.key.second == key.second);
}

void Names::tell(const Wish& wish, const Key& key, bool preexisting) {
    const Return<void> told = wish.callback->onRegistration(key.first, key.second, preexisting);
    if (!told.isOk() && !told.isDeadObject() && mComplaints.count({wish.pid, 0}) != 0) {
        ALOGW("pid %d can not be told of %s/%s: %s", wish.pid, key.first.c_str(), key.second.c_str(),
              told.description().c_str());
    }
}

/** Says what its caller is not given, if that has not been said often enough. Always false. */
bool Names::refuse(const std::string& name, const std::string& why) {
    const int32_t pid = callingPid();
    if (mComplaints.count({pid, 0}) != 0) {
        ALOGW("pid %d is refused %s: %s", pid, name.c_str(), why.c_str());
    }
    return false;
}

Return<Names::Transport> Names::getTransport(const hidl_string& fqName, const hidl_string& name) {
    const CheckedLock lock(mLock);
    return mServices.count({fqName, name}) != 0 ? Transport::HWBINDER : Transport::EMPTY;
}

Return<void> Names::list(list_cb _hidl_cb) {
    std::vector<hidl_string> names;
    {
        const CheckedLock lock(mLock);
        for (const auto& [key, service] : mServices) {
            names.emplace_back(key.first + "/" + key.second);
        }
    }
    std::sort(names.begin(), names.end());
    _hidl_cb(names);
    return Void();
}

Return<void> Names::listByInterface(const hidl_string& fqName, listByInterface_cb _hidl_cb) {
    std::vector<hidl_string> instances;
    {
        const CheckedLock lock(mLock);
        for (auto each = mServices.lower_bound({fqName, ""});
             each != mServices.end() && fqName == each->first.first; ++each) {
            instances.emplace_back(each->first.second);
        }
    }
    _hidl_cb(instances);
    return Void();
}

Return<bool> Names::registerForNotifications(const hidl_string& fqName, const hidl_string& name,
                                             const sp<IServiceNotification>& callback) {
    if (callback == nullptr || fqName.size() == 0 || fqName.size() > kLongestName ||
        name.size() > kLongestName) {
        return refuse("notifications", "they have an object, and names that are not too long");
    }
    Wish wish{{fqName, name}, callback, callingPid(), 0};
    std::vector<Key> there;
    {
        const CheckedLock lock(mLock);
        wish.cookie = ++mLastCookie;
        const auto ofOne = std::count_if(mWishes.begin(), mWishes.end(),
                                         [&](const Wish& each) { return each.pid == wish.pid; });
        if (mWishes.size() >= kMostNotifications || static_cast<size_t>(ofOne) >= kMostNotificationsOfOne) {
            return refuse("to be told of " + wish.key.first, "there are too many notifications");
        }
        mWishes.push_back(wish);
        for (const auto& [key, service] : mServices) {
            if (isWanted(wish, key)) {
                there.push_back(key);
            }
        }
    }
    const Return<bool> linked = callback->linkToDeath(mMourner, wish.cookie);
    if (!linked.isOk() || !linked) {
        forget(wish.cookie);
        return false;
    }
    for (const Key& key : there) {
        tell(wish, key, true);
    }
    return true;
}

Return<void> Names::debugDump(debugDump_cb _hidl_cb) {
    std::vector<InstanceDebugInfo> info;
    {
        const CheckedLock lock(mLock);
        for (const auto& [key, service] : mServices) {
            InstanceDebugInfo each;
            each.interfaceName = key.first;
            each.instanceName = key.second;
            each.pid = service.pid;
            each.arch = service.arch;
            info.push_back(std::move(each));
        }
    }
    _hidl_cb(info);
    return Void();
}

Return<void> Names::registerPassthroughClient(const hidl_string& /* fqName */,
                                              const hidl_string& /* name */) {
    return Void();
}
