#include <hidl/HidlTransportSupport.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

/** Remembers which interfaces the registry has reported; called on a thread of the runtime. */
class Listener : public IServiceNotification {
  public:
    android::hardware::Return<void> onRegistration(const android::hardware::hidl_string& name,
                                                   const android::hardware::hidl_string&, bool) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        mSeen.insert(name);
        mChanged.notify_all();
        return android::hardware::Void();
    }

    std::vector<const Interface*> waitFor(const std::vector<const Interface*>& interfaces,
                                          std::optional<std::chrono::steady_clock::time_point> deadline) {
        std::unique_lock<std::mutex> lock(mMutex);
        std::vector<const Interface*> missing = interfaces;
        const auto complete = [&] {
            missing.erase(
                    std::remove_if(missing.begin(), missing.end(),
                                   [&](const Interface* one) { return mSeen.count(one->descriptor) > 0; }),
                    missing.end());
            return missing.empty();
        };
        if (deadline) {
            mChanged.wait_until(lock, *deadline, complete);
        } else {
            mChanged.wait(lock, complete);
        }
        return missing;
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::set<std::string> mSeen;  // descriptors; guarded by mMutex
};

}  // namespace

std::vector<const Interface*> waitFor(const std::vector<const Interface*>& interfaces,
                                      const std::string& instance, std::optional<double> seconds) {
    using std::chrono::steady_clock;
    std::optional<steady_clock::time_point> deadline;
    if (seconds) {
        deadline = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                 std::chrono::duration<double>(*seconds));
    }
    // Notifications come in as calls: they need a thread of their own.
    android::hardware::configureRpcThreadpool(1, false);
    const sp<Listener> listener = new Listener;
    for (const Interface* interface : interfaces) {
        if (!interface->notify(instance, listener)) {
            throw Failure(Exit::Transport, "the service registry cannot be watched");
        }
    }
    return listener->waitFor(interfaces, deadline);
}

Exit wait(const Context& context) {
    const Options& options = context.options;
    std::vector<const Interface*> wanted;
    for (const std::string& word : options.words.empty() ? std::vector<std::string>{"*"} : options.words) {
        for (const Interface* interface : selectInterfaces(context.package, word)) {
            if (interface->isService) {
                wanted.push_back(interface);
            } else if (!isPattern(word)) {
                throw Failure(Exit::Usage,
                              shortName(*interface) + " is implemented by clients, it is never registered");
            }
        }
    }
    std::sort(wanted.begin(), wanted.end(), [](auto a, auto b) { return a->descriptor < b->descriptor; });
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());

    const std::vector<const Interface*> missing = waitFor(wanted, options.instance, options.timeout);
    Table table({"INTERFACE", "INSTANCE", "STATE"});
    Json json = Json::array();
    for (const Interface* interface : wanted) {
        const bool there = std::find(missing.begin(), missing.end(), interface) == missing.end();
        table.row({interface->descriptor, escaped(options.instance), there ? "registered" : "missing"});
        json.push_back({{"interface", interface->descriptor},
                        {"instance", options.instance},
                        {"registered", there}});
    }
    if (!options.json.empty()) {
        printJson(context, json);
    } else {
        table.print(context.out, !options.noLegend);
    }
    if (!missing.empty()) {
        throw Failure(Exit::NotFound, std::to_string(missing.size()) + " of " +
                                              std::to_string(wanted.size()) + " not registered within " +
                                              Json(*options.timeout).dump() + " s");
    }
    return Exit::Success;
}

}  // namespace fapictl
