#include "tools/fapictl/Findings.h"

#include <algorithm>
#include <cctype>

#include "tools/fapictl/Symbols.h"

namespace fapictl {
namespace {

constexpr char kCustomLibrary[] = "vendor.zentrovi.tv.zvttvfapicustom@1.0-impl.so";
constexpr char kReadiness[] = "a_zvttvfapi_common_get_fapi_status";

}  // namespace

void Findings::take(const std::vector<std::string>& words) {
    const std::string kind = words.empty() ? "" : words[0];
    if (kind == "function" && words.size() == 5) {
        if (find(words[1]) == nullptr) {
            mFunctions.push_back({words[1], words[2], words[3], words[4]});
        }
    } else if (kind == "call" && words.size() == 3) {
        if (!mEnding) {
            mAtWork[words[1]] = words[2];
        }
        if (Function* const function = find(words[2]); function != nullptr) {
            ++function->calls;
        }
        if (words[2] != kReadiness && std::find(mCalled.begin(), mCalled.end(), words[2]) == mCalled.end()) {
            mCalled.push_back(words[2]);
        }
    } else if (kind == "done" && words.size() == 5) {
        mAtWork.erase(words[1]);
        if (Function* const function = find(words[2]); function != nullptr) {
            function->nanoseconds.push_back(std::stoull(words[4]));
        }
    } else if (kind == "fault" && words.size() == 3) {
        fault(words[1], words[2]);
    } else if (kind == "end" && words.size() == 2 && mAtWork.count(words[1]) > 0) {
        mAtWork = {{words[1], mAtWork[words[1]]}};
        mEnding = true;
    } else if (kind == "event" && words.size() == 3) {
        ++mEvents[words[1]];
    }
}

void Findings::begin(const std::string& during) {
    mDuring = during;
    mCalled.clear();
}

void Findings::fault(const std::string& function, const std::string& text) {
    std::string key = function + text;
    key.erase(std::remove_if(key.begin(), key.end(), [](unsigned char c) { return std::isdigit(c); }),
              key.end());
    if (!mKnown.insert(key).second) {
        return;
    }
    mFaults.push_back({function, text, mDuring});
    if (Function* const known = find(function); known != nullptr) {
        ++known->faults;
    }
}

std::vector<std::string> Findings::atWork() const {
    std::vector<std::string> names;
    for (const auto& [thread, name] : mAtWork) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    return names;
}

std::vector<std::string> Findings::libraries() const {
    std::vector<std::string> files;
    for (const Function& function : mFunctions) {
        if (function.library != "-" &&
            std::find(files.begin(), files.end(), function.library) == files.end()) {
            files.push_back(function.library);
        }
    }
    return files;
}

bool Findings::knows(const std::string& text) const {
    return std::any_of(mFaults.begin(), mFaults.end(),
                       [&](const Fault& fault) { return fault.text == text; });
}

void Findings::judgeMissing(const std::string& package) {
    const std::vector<std::string> files = libraries();
    for (size_t i = 0; i < mFunctions.size(); ++i) {
        const Function& function = mFunctions[i];
        if (function.library == "-") {
            const std::string near = nearMiss(function.mangled, files);
            const std::string file = function.header == "custom.h" ? kCustomLibrary : package + "-imp.so";
            fault(function.name, "is missing in " + file + ": " + demangled(function.mangled) +
                                         " of chiplayer/" + function.header +
                                         (near.empty() ? "" : "; " + near));
        }
    }
}

Findings::Function* Findings::find(const std::string& name) {
    const auto at = std::find_if(mFunctions.begin(), mFunctions.end(),
                                 [&](const Function& function) { return function.name == name; });
    return at == mFunctions.end() ? nullptr : &*at;
}

}  // namespace fapictl
