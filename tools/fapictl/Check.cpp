#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iterator>
#include <set>
#include <thread>

#include "tools/check/Report.h"
#include "tools/fapictl/CheckValues.h"
#include "tools/fapictl/CheckedService.h"
#include "tools/fapictl/Findings.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

using Progress = CheckedService::Progress;

#ifdef __ANDROID__
constexpr bool kIsHost = false;
#else
constexpr bool kIsHost = true;
#endif

/** How long a call may take, unless the caller says otherwise: what takes longer is to raise events. */
constexpr double kSeconds = 10;
/** After so many deaths of the service a method is left. */
constexpr int kDeaths = 3;
/** How often a method is called in addition, for its times and what it leaves behind. */
constexpr size_t kRepetitions = 16;
/** What a method may leave open in all its calls: what it begins once, for each of a few ports. */
constexpr size_t kLeft = 12;
/** As many as the service serves at once. */
constexpr size_t kCallers = 10;

/** Functions that are called whether the library is ready or not. */
constexpr const char* kUnguarded[] = {"a_zvttvfapi_aud_set_volume_table",
                                      "a_zvttvfapi_prphrl_get_gpio_status",
                                      "a_zvttvfapi_prphrl_set_hdmi_hpd"};

std::string joined(const std::vector<std::string>& words) {
    std::string all;
    for (const std::string& word : words) {
        all += (all.empty() ? "" : ", ") + word;
    }
    return all;
}

/** One check, from the first start of the service to the last. */
class Check {
  public:
    Check(const Context& context, const std::string& folder)
        : mPackage(context.package),
          mSeconds(context.options.timeout.value_or(kSeconds)),
          mService(context.package, folder, mSeconds) {
        for (const Interface& interface : context.package.interfaces) {
            for (const Method& method : interface.methods) {
                if (!interface.isService) {
                    continue;
                }
                if (isDangerous(method) && !context.options.all) {
                    mLeftOut.push_back(shortName(interface) + "." + shortName(interface, method));
                } else {
                    mMethods.push_back({interface, method});
                }
            }
        }
    }

    void run() {
        if (!revive()) {
            return;
        }
        // Clients call as soon as the interfaces are there, which is before the modules are started.
        each("before init",
             [this](const Tested& target) { call(target, plainArguments(target.method, true)); });
        advance(Stage::NotReady);
        each("not ready", [this](const Tested& target) {
            call(target, plainArguments(target.method, true));
            for (const std::string& name : mFindings.called()) {
                if (std::find(std::begin(kUnguarded), std::end(kUnguarded), name) == std::end(kUnguarded)) {
                    mFindings.fault(name, "is called although the library is not ready");
                }
            }
        });
        advance(Stage::Started);
        each("", [this](const Tested& target) { explore(target); });
        callTogether();
        if (revive()) {
            begin("deinit and unreg_callback of all modules, then reg_callback and init again");
            expectRunning(mService.order(check::kRestart));
        }
    }

    const Findings& findings() const { return mFindings; }
    const std::vector<std::string>& leftOut() const { return mLeftOut; }

  private:
    struct Tested {
        const Interface& interface;
        const Method& method;
    };

    void begin(const std::string& what) {
        mFindings.begin(what);
        mService.forgetWords();
    }

    std::string lastCalled() const { return mFindings.called().empty() ? "" : mFindings.called().back(); }

    /** What has come of what was done last. */
    void hear() {
        for (const auto& words : mService.news()) {
            mFindings.take(words);
        }
        const std::string output = mService.output();
        if (!output.empty() && mAlone) {
            mFindings.fault(lastCalled(), "writes to standard output: " + inQuotes(output.substr(0, 60)));
        }
    }

    /** How far the service has come. */
    enum class Stage { Waiting, NotReady, Started };

    /** The service is dead: says whose fault it is, or else that of the one that was called last. */
    void mourn(Progress how, const std::string& last) {
        mAlive = false;
        const std::string words = mService.death();
        hear();
        const std::vector<std::string> atWork = mFindings.atWork();
        const bool late = how == Progress::Late;
        const std::string text =
                late ? "does not come back within " + inSeconds() : "ends the service: " + words;
        if (atWork.size() == 1) {
            mFindings.fault(atWork[0], text);
        } else if (!atWork.empty()) {
            mFindings.fault("", text + ", in one of " + joined(atWork));
        } else if (!last.empty()) {
            mFindings.fault(last, late ? "has come back, but the service does not answer"
                                       : "has come back, and the service ends: " + words);
        } else {
            mFindings.fault("", late ? "keeps the service from starting within " + inSeconds()
                                     : "ends the service outside of all calls: " + words);
        }
        mFindings.forgetWork();
    }

    std::string inSeconds() const {
        char text[32];
        std::snprintf(text, sizeof(text), "%g s", mSeconds);
        return text;
    }

    /** Takes what has come of it; false when the service is not there any longer. */
    bool expectRunning(Progress progress) {
        hear();
        mAlive = progress == Progress::Running || progress == Progress::Waiting;
        if (!mAlive) {
            mourn(progress, "");
        }
        return mAlive;
    }

    /** Brings the running service to a stage. */
    bool reach(Stage stage) {
        begin("the start");
        return stage == Stage::Waiting ? true
               : stage == Stage::NotReady
                       ? expectRunning(mService.order(check::kNotReady))
                       : expectRunning(mService.order(check::kOwnReadiness)) &&
                                 (mFindings.knows(check::kLockHeld) ||
                                  expectRunning(mService.order(check::kAskDuringEvents))) &&
                                 expectRunning(mService.startModules());
    }

    void advance(Stage stage) {
        mStage = stage;
        if (mAlive) {
            reach(stage);
        }
    }

    /** Has the service running, started again if need be. */
    bool revive() {
        if (mAlive) {
            return true;
        }
        begin("the start");
        const Progress progress = mService.start();
        hear();
        mFindings.judgeMissing(mPackage.name);
        return expectRunning(progress) && reach(mStage);
    }

    void call(const Tested& target, const Json& arguments) {
        begin(mWhen + shortName(target.interface) + "." + shortName(target.interface, target.method) +
              shownArguments(target.method, arguments));
        const Progress progress = mService.call(target.interface, target.method, arguments);
        hear();
        if (progress == Progress::Failed) {
            // At its bounds a call may ask for more than an answer can carry, which is nobody's fault.
            if (arguments == plainArguments(target.method, true)) {
                mFindings.fault(lastCalled(), "comes back, but its results do not reach the caller");
            }
        } else if (progress != Progress::Running) {
            mDeadly.insert(&target.method);
            mourn(progress, lastCalled());
        }
    }

    void each(const std::string& when, const std::function<void(const Tested&)>& body) {
        mWhen = when.empty() ? "" : when + ": ";
        for (const Tested& target : mMethods) {
            if (!revive()) {
                return;
            }
            body(target);
        }
        mWhen.clear();
    }

    /** All bounds of the method's arguments, then the same again and again. */
    void explore(const Tested& target) {
        int deaths = 0;
        std::vector<Json> all = boundaryArguments(target.method);
        all.insert(all.end(), kRepetitions, plainArguments(target.method, true));
        const size_t descriptors = mService.count("fd");
        const size_t threads = mService.count("task");
        for (const Json& arguments : all) {
            if (!mAlive && (++deaths == kDeaths || !revive())) {
                return;
            }
            call(target, arguments);
        }
        if (deaths > 0 || !mAlive) {
            return;
        }
        const auto judge = [&](const char* what, size_t before, size_t after) {
            if (after > before + kLeft) {
                mFindings.fault(lastCalled(), "leaves " + std::to_string(after - before) + " " + what +
                                                      " behind in " + std::to_string(all.size()) + " calls");
            }
        };
        judge("descriptors", descriptors, mService.count("fd"));
        judge("threads", threads, mService.count("task"));
    }

    /** Every method on several threads at once, each thread at another one, and then all at the same. Not
     * those that have ended the service alone. */
    void callTogether() {
        mAlone = false;
        std::vector<Tested> targets;
        std::copy_if(mMethods.begin(), mMethods.end(), std::back_inserter(targets),
                     [this](const Tested& target) { return mDeadly.count(&target.method) == 0; });
        for (const bool same : {false, true}) {
            if (!revive()) {
                return;
            }
            begin("ten calls at once");
            std::vector<std::thread> callers;
            std::vector<Progress> progress(kCallers, Progress::Running);
            std::atomic<bool> failed{false};
            for (size_t i = 0; i < kCallers; ++i) {
                callers.emplace_back([&, i] {
                    const auto goesOn = [&] {
                        return progress[i] == Progress::Running || progress[i] == Progress::Failed;
                    };
                    for (size_t j = 0; j < targets.size() && goesOn(); ++j) {
                        const size_t shift = same ? 0 : i * targets.size() / kCallers;
                        const Tested& target = targets[(j + shift) % targets.size()];
                        progress[i] = mService.call(target.interface, target.method,
                                                    plainArguments(target.method, true));
                        failed = failed || progress[i] == Progress::Failed;
                    }
                });
            }
            for (std::thread& caller : callers) {
                caller.join();
            }
            hear();
            // What a service that ends takes along is told by its end.
            if (failed && std::all_of(progress.begin(), progress.end(), [](Progress each) {
                    return each == Progress::Running || each == Progress::Failed;
                })) {
                mFindings.fault("", "results that do not reach their caller");
            }
            for (const Progress how : {Progress::Late, Progress::Dead}) {
                if (mAlive && std::count(progress.begin(), progress.end(), how) > 0) {
                    mourn(how, "");
                }
            }
        }
        mAlone = true;
    }

    const Package& mPackage;
    const double mSeconds;
    CheckedService mService;
    Findings mFindings;
    std::vector<Tested> mMethods;
    std::set<const Method*> mDeadly;
    std::vector<std::string> mLeftOut;
    std::string mWhen;
    Stage mStage = Stage::Waiting;
    bool mAlive = false;
    bool mAlone = true;  // one call at a time
};

std::string inMicroseconds(uint64_t nanoseconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f us", static_cast<double>(nanoseconds) / 1000);
    return text;
}

std::string verdict(const Findings::Function& function) {
    return function.library == "-" ? "missing"
           : function.faults == 1  ? "1 fault"
           : function.faults > 1   ? std::to_string(function.faults) + " faults"
           : function.calls == 0   ? "not called"
                                   : "sound";
}

uint64_t median(std::vector<uint64_t> times) {
    const auto middle = times.begin() + static_cast<ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

Json asJson(const Findings& findings, const std::vector<std::string>& leftOut) {
    Json functions = Json::array();
    for (const Findings::Function& one : findings.functions()) {
        Json times;
        if (!one.nanoseconds.empty()) {
            times = {{"median", median(one.nanoseconds)},
                     {"greatest", *std::max_element(one.nanoseconds.begin(), one.nanoseconds.end())}};
        }
        functions.push_back({{"function", one.name},
                             {"header", "chiplayer/" + one.header},
                             {"verdict", verdict(one)},
                             {"calls", one.calls},
                             {"nanoseconds", times}});
    }
    Json faults = Json::array();
    for (const Findings::Fault& one : findings.faults()) {
        faults.push_back({{"function", one.function.empty() ? Json() : Json(one.function)},
                          {"text", one.text},
                          {"during", one.during}});
    }
    return {{"sound", faults.empty()}, {"libraries", findings.libraries()}, {"functions", functions},
            {"faults", faults},        {"events", findings.events()},       {"leftOut", leftOut}};
}

void print(const Context& context, const Findings& findings, const std::vector<std::string>& leftOut) {
    Table table({"FUNCTION", "CALLS", "MEDIAN", "GREATEST", "VERDICT"});
    size_t calls = 0;
    for (const Findings::Function& one : findings.functions()) {
        const std::vector<uint64_t>& times = one.nanoseconds;
        const bool called = !times.empty();
        calls += one.calls;
        table.row({one.name, std::to_string(one.calls), called ? inMicroseconds(median(times)) : "-",
                   called ? inMicroseconds(*std::max_element(times.begin(), times.end())) : "-",
                   verdict(one)});
    }
    std::ostream& out = context.out;
    if (!table.empty()) {
        table.print(out, !context.options.noLegend);
        out << '\n';
    }
    for (const Findings::Fault& one : findings.faults()) {
        out << (one.function.empty() ? "The library" : one.function) << ' ' << one.text << "\n    during "
            << one.during << '\n';
    }
    if (!leftOut.empty()) {
        out << "Left out, since they change a board for good or may stop it (--all calls them, too):\n";
        for (const std::string& line : wrapped(joined(leftOut), 100)) {
            out << "    " << line << '\n';
        }
    }
    if (!findings.events().empty()) {
        out << "Events:";
        for (const auto& [module, count] : findings.events()) {
            out << ' ' << module << ' ' << count;
        }
        out << '\n';
    }
    out << (findings.faults().empty() ? "Sound: " : "Not sound: ") << findings.functions().size()
        << " functions, " << calls << " calls, " << findings.faults().size() << " faults, in "
        << joined(findings.libraries()) << '\n';
}

}  // namespace

Exit check(const Context& context) {
    if (!kIsHost) {
        throw Failure(Exit::Usage, "check works on the host, on a library that is built for it");
    }
    std::string folder = context.options.words.empty() ? "" : context.options.words[0];
    if (!folder.empty()) {
        const std::string library = context.package.name + "-imp.so";
        if (std::error_code error; !std::filesystem::exists(folder + "/" + library, error)) {
            throw Failure(Exit::Usage, "there is no " + library + " in " + inQuotes(folder));
        }
        folder = std::filesystem::absolute(folder);
    }
    Check check(context, folder);
    check.run();
    const Findings& findings = check.findings();
    if (!context.options.json.empty()) {
        printJson(context, asJson(findings, check.leftOut()));
    } else {
        print(context, findings, check.leftOut());
    }
    return findings.faults().empty() ? Exit::Success : Exit::Status;
}

}  // namespace fapictl
