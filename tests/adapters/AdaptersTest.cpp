// Every method of the adapters, as the .cases files describe it.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "adapters/audio/ZvtTvFApiAudio.h"
#include "adapters/display/ZvtTvFApiDisplay.h"
#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"
#include "adapters/information/ZvtTvFApiInformation.h"
#include "adapters/inputsource/ZvtTvFApiInputSource.h"
#include "adapters/network/ZvtTvFApiNetwork.h"
#include "adapters/peripheral/ZvtTvFApiPeripheral.h"
#include "adapters/system/ZvtTvFApiSystem.h"
#include "chiplayer/common.h"
#include "tests/adapters/Case.h"
#include "tests/cases/Method.h"
#include "tests/fake/DeviceLog.h"
#include "tests/fake/FailingAllocation.h"
#include "tests/fake/FakeChipLayer.h"
#include "tests/support/Shortened.h"
#include "tests/support/SoiledStack.h"
#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {
namespace {

using fapictl::Json;

struct Adapter {
    std::string module;
    ::android::sp<::android::hidl::base::V1_0::IBase> object;
    uint64_t (*callsServed)();
};

template <typename Object>
Adapter adapter(const std::string& module) {
    struct Counted : Object {
        using Object::callsServed;
    };
    return {module, new Object(), &Counted::callsServed};
}

Adapter adapterOf(const std::string& interface) {
    const std::map<std::string, Adapter> all = {
            {"Audio", adapter<ZvtTvFApiAudio>("aud")},
            {"Display", adapter<ZvtTvFApiDisplay>("disp")},
            {"DisplayTest", adapter<ZvtTvFApiDisplayTest>("disptst")},
            {"Information", adapter<ZvtTvFApiInformation>("info")},
            {"InputSource", adapter<ZvtTvFApiInputSource>("inpsrc")},
            {"Network", adapter<ZvtTvFApiNetwork>("net")},
            {"Peripheral", adapter<ZvtTvFApiPeripheral>("prphrl")},
            {"System", adapter<ZvtTvFApiSystem>("sys")},
    };
    return all.at(interface);
}

/// One call, and what happens during it, in order: the question for readiness as ?, other calls of the
/// library, log lines, and the delivery as = and the results.
class Scene {
  public:
    Scene(const Adapter& adapter, const std::string& tag, const Case& one, bool ready, int32_t status)
        : mTag(tag), mPrefix("a_zvttvfapi_" + adapter.module + '_'), mCase(one) {
        chip.returnsOtherwise(status);
        chip.returns("common_get_fapi_status", ready ? 0 : -5);
        chip.onCall([this](const std::string& call) {
            happens(call == "a_zvttvfapi_common_get_fapi_status()" ? "?"
                    : call.rfind(mPrefix, 0) == 0                  ? call.substr(mPrefix.size())
                                                                   : call);
        });
        sCurrent = this;
        __android_log_set_logger([](const __android_logger_data* data, const char* text) {
            sCurrent->logged({data->priority, data->tag, text});
        });
    }

    std::vector<std::string> of(const Adapter& adapter, const fapictl::Method& method) {
        mMethod = method.name;
        const Json arguments = fapictl::bindArguments(method, {mCase.words.begin() + 1, mCase.words.end()});
        const uint64_t served = adapter.callsServed();
        soilStack();
        method.callInto(*adapter.object, arguments, mReply);
        happens("");
        EXPECT_EQ(mReply.failure, "");
        EXPECT_EQ(adapter.callsServed(), served + 1) << "calls counted";
        EXPECT_EQ(mRefused ? mRefused->refusedBytes() : 0, mCase.refusedBytes);
        mEvents.pop_back();
        return mEvents;
    }

    FakeChipLayer chip;

  private:
    void happens(const std::string& event) {
        if (mCase.refused != 0 && mRefused == nullptr) {
            mRefused = std::make_unique<FailingAllocation>(mCase.refused);
        }
        if (!mDelivered && !mReply.results.empty()) {
            mDelivered = true;
            mEvents.push_back("= " + cases::showAll(mReply.results));
        }
        mEvents.push_back(event);
    }
    void logged(const LogLine& line) {
        const std::string shown = DeviceLog::shown(line), start = mTag + mMethod + ":#> ";
        const bool own = shown.compare(1, start.size(), start) == 0;
        happens(shown.substr(0, 2) + shortened(fapictl::escaped(shown.substr(own ? 1 + start.size() : 2))));
    }

    static inline Scene* sCurrent = nullptr;

    DeviceLog mLog;  // puts back the logger
    const std::string mTag;
    const std::string mPrefix;
    const Case& mCase;
    std::string mMethod;
    fapictl::Reply mReply;
    bool mDelivered = false;
    std::unique_ptr<FailingAllocation> mRefused;
    std::vector<std::string> mEvents;
};

/// What an interface answers when the library is not ready, if nothing else is said: zeros, and -5 for a
/// status.
std::string unreadyAnswer(const fapictl::Method& method) {
    Json results = Json::array();
    for (const fapictl::Field& result : method.results) {
        results.push_back(result.label.name == "s32Status" ? Json(-5) : fapictl::zeroValue(*result.type));
    }
    return cases::showAll(results);
}

/// One event a line. A line that ends in "..." stands for all that start like it.
std::string text(const std::vector<std::string>& events, const std::vector<std::string>& cut) {
    std::string all;
    for (size_t i = 0; i < events.size(); ++i) {
        const std::string start = i < cut.size() ? cut[i] : "";
        const bool stands = start.size() > 3 && start.substr(start.size() - 3) == "..." &&
                            events[i].compare(0, start.size() - 3, start, 0, start.size() - 3) == 0;
        all += (stands ? start : events[i]) + '\n';
    }
    return all;
}

class AdaptersTest : public ::testing::TestWithParam<const fapictl::Interface*> {
  protected:
    void expect(const Case& one, const fapictl::Method& method, bool ready, int32_t status,
                const std::vector<std::string>& expected) {
        SCOPED_TRACE(std::string(ready ? "ready" : "not ready") + ", the library returns " +
                     std::to_string(status));
        Scene scene(mAdapter, " " + GetParam()->name.substr(1) + "(server): <", one, ready, status);
        if (ready || !one.guarded) {
            scene.chip.writes(one.writes);
        }
        EXPECT_EQ(text(scene.of(mAdapter, method), expected), text(expected, {}));
        EXPECT_TRUE(scene.chip.hasWrittenAll()) << "the library has no such output";
    }
    void expect(const Case& one, const fapictl::Method& method) {
        for (const int32_t status : one.statuses) {
            const std::vector<std::string> expected = one.expected(method.name, status);
            expect(one, method, true, status, expected);
            if (!one.guarded) {
                expect(one, method, false, status, expected);
            }
        }
        if (one.guarded && one.refused == 0) {
            std::vector<std::string> expected = one.expected(method.name, -7);
            expected.erase(std::find(expected.begin(), expected.end(), "?") + 1, expected.end());
            expected.push_back("= " + one.unready.value_or(unreadyAnswer(method)));
            expect(one, method, false, -7, expected);
        }
    }

    const std::string mName = fapictl::shortName(*GetParam());
    const Adapter mAdapter = adapterOf(mName);
};

TEST_P(AdaptersTest, DoesWhatItsCasesSay) {
    const std::string file = std::string(ZVTTV_CASES) + '/' + mName + ".cases";
    std::set<const fapictl::Method*> seen;
    for (const Case& one : readCases(file)) {
        const ::testing::ScopedTrace trace(file.c_str(), one.line, one.words[0]);
        try {
            const fapictl::Method& method = fapictl::findMethod(*GetParam(), one.words[0]);
            seen.insert(&method);
            expect(one, method);
        } catch (const std::exception& wrong) {
            ADD_FAILURE() << wrong.what();
        }
    }
    for (const fapictl::Method& method : GetParam()->methods) {
        EXPECT_EQ(seen.count(&method), 1u) << file << " has no case of " << method.name;
    }
}

/// All that have methods of the library's; the manager has none.
std::vector<const fapictl::Interface*> adapters() {
    std::vector<const fapictl::Interface*> all;
    for (const fapictl::Interface& interface : fapictl::factoryPackage().interfaces) {
        if (interface.isService && !interface.methods.empty() && fapictl::shortName(interface) != "Manager") {
            all.push_back(&interface);
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Adapters, AdaptersTest, ::testing::ValuesIn(adapters()),
                         [](const auto& one) { return fapictl::shortName(*one.param); });

}  // namespace
}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
