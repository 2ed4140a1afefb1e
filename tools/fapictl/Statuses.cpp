#include "tools/fapictl/Statuses.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

constexpr std::chrono::seconds kPatience{2};
constexpr const char* kLibraryStatus = "library status";
/** The library's file, which is none of its real ones. */
constexpr const char* kFile = "board";
/** Longer calls are not asked about; the library keeps none of them. */
constexpr size_t kLongestCall = 4096;
constexpr size_t kLongestName = 64;
constexpr int64_t kNotReady = -5;

constexpr std::pair<int64_t, const char*> kServiceStatuses[] = {
        {0, "success"},    {-1, "general failure"},  {-2, "invalid argument"},
        {-4, "no memory"}, {kNotReady, "not ready"},
};

const char* ownName(int64_t status) {
    const auto known = std::find_if(std::begin(kServiceStatuses), std::end(kServiceStatuses),
                                    [&](const auto& one) { return one.first == status; });
    return known == std::end(kServiceStatuses) ? nullptr : known->second;
}

/** The interface with the library's parameters and the method that reads one; null in another package. */
std::pair<const Interface*, const Method*> parameters(const Package& package) {
    for (const Interface& interface : package.interfaces) {
        for (const Method& method : interface.methods) {
            if (interface.name == "IZvtTvFApiInformation" && forms(method).back() == "get_ini_para") {
                return {&interface, &method};
            }
        }
    }
    return {nullptr, nullptr};
}

/** The parameter's text, empty when there is none; nothing when it may be there another time. */
std::optional<std::string> parameter(const Package& package, const std::string& instance,
                                     const std::string& name) {
    const auto [interface, method] = parameters(package);
    if (interface == nullptr) {
        return "";
    }
    // A call to a service that hangs does not come back: it is left behind then, with all that it uses.
    using Answer = std::optional<std::string>;
    const auto answer = std::make_shared<std::promise<Answer>>();
    std::future<Answer> future = answer->get_future();
    try {
        std::thread([answer, instance, name, interface = interface, method = method] {
            const sp<IBase> service = interface->find(instance);
            Reply reply;
            reply.failure = service == nullptr ? "not registered" : "";
            if (service != nullptr) {
                method->callInto(*service, Json::array({kFile, name}), reply);
            }
            const bool told = reply.failure.empty() && reply.results.at(1) != kNotReady;
            const bool there = told && reply.results.at(1) == 0;
            answer->set_value(there ? reply.results.at(0).get<std::string>() : told ? Answer("") : Answer());
        }).detach();
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return future.wait_for(kPatience) == std::future_status::ready ? future.get() : std::nullopt;
}

/** The call as the library keeps it: the function's name, numbers and texts; lists and records left out. */
std::string callText(const Method& method, const Json& arguments) {
    const std::vector<std::string> names = forms(method);
    std::string text = names[names.size() > 1 ? 1 : 0];
    for (const Json& argument : arguments) {
        if (argument.is_string()) {
            text += " " + argument.get_ref<const std::string&>();
        } else if (argument.is_boolean()) {
            text += argument.get<bool>() ? " 1" : " 0";
        } else if (argument.is_number()) {
            text += " " + argument.dump();
        }
    }
    return text;
}

}  // namespace

std::string statusName(int64_t status) {
    const char* name = ownName(status);
    return name == nullptr ? kLibraryStatus : name;
}

bool isServiceStatus(int64_t status) {
    return ownName(status) != nullptr;
}

struct Statuses::Known {
    /** What an instance's library has told: its names of statuses, empty where it has none. */
    struct Library {
        std::map<int64_t, std::string> names;
        bool tells = false;  // it has a name for one at least
    };

    std::mutex mutex;
    std::map<std::pair<std::string, std::string>, Library> libraries;  // by package and instance; guarded
};

Statuses::Statuses() : mKnown(std::make_unique<Known>()) {}

Statuses::~Statuses() = default;

std::string Statuses::name(const Package& package, const std::string& instance, int64_t status) {
    if (const char* own = ownName(status); own != nullptr) {
        return own;
    }
    const std::pair<std::string, std::string> key(package.name, instance);
    {
        const std::lock_guard<std::mutex> lock(mKnown->mutex);
        const std::map<int64_t, std::string>& names = mKnown->libraries[key].names;
        if (const auto known = names.find(status); known != names.end()) {
            return known->second.empty() ? kLibraryStatus : known->second;
        }
    }
    const std::optional<std::string> told = parameter(package, instance, "status:" + std::to_string(status));
    // What is longer is no name, but what that library answers to any question.
    const std::string name = told && told->size() <= kLongestName ? escaped(*told) : "";
    if (told) {
        const std::lock_guard<std::mutex> lock(mKnown->mutex);
        Known::Library& library = mKnown->libraries[key];
        library.names[status] = name;
        library.tells = library.tells || !name.empty();
    }
    return name.empty() ? kLibraryStatus : name;
}

std::string Statuses::refusal(const Package& package, const std::string& instance, const Method& method,
                              const Json& arguments) {
    {
        const std::lock_guard<std::mutex> lock(mKnown->mutex);
        if (!mKnown->libraries[{package.name, instance}].tells) {
            return "";
        }
    }
    const std::string call = callText(method, arguments);
    return call.size() > kLongestCall ? "" : parameter(package, instance, "refusal:" + call).value_or("");
}

}  // namespace fapictl
