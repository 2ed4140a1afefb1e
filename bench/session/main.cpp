// bench-session: a call that a program has `fapictl session` make for it, a line each way over two pipes,
// beside the same call made by the program itself, and by a process for each call.

#include <android/log.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/transport/Workloads.h"

namespace {

using namespace bench;
using ::android::sp;

/** A session in a process of its own, and the client's ends of its pipes. */
class Session {
  public:
    Session() {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) {
            failOnCall("pipe2");
        }
        mProcess.emplace(sibling("fapictl"), std::vector<std::string>{"session"}, in[0], out[1]);
        close(in[0]);
        close(out[1]);
        mRequests = in[1];
        mAnswers = out[0];
    }
    ~Session() {
        mProcess.reset();  // before its standard input ends and it with it
        close(mRequests);
        close(mAnswers);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /** What tinyCall() is. */
    void tinyCall() const {
        static const std::string kRequest =
                R"({"jsonrpc":"2.0","id":1,"method":"call","params":{"interface":"information",)"
                R"("method":"get_ip_enable_status","arguments":[1]}})"
                "\n";
        if (write(mRequests, kRequest.data(), kRequest.size()) != static_cast<ssize_t>(kRequest.size())) {
            failOnCall("write");
        }
        char chunk[4096];
        std::string answer;
        while (answer.empty() || answer.back() != '\n') {
            const ssize_t count = read(mAnswers, chunk, sizeof(chunk));
            if (count <= 0) {
                fail("the session has ended");
            }
            answer.append(chunk, static_cast<size_t>(count));
        }
        if (answer.find(R"("failed":false)") == std::string::npos) {
            fail("the session answers " + answer);
        }
    }

  private:
    std::optional<Child> mProcess;
    int mRequests;
    int mAnswers;
};

/** Limits hold on one CPU, where wake-ups cost both sides the same. */
Table measure(bool pinned, const Options& options) {
    std::optional<OneCpu> binding;
    if (pinned) {
        binding.emplace();
    }
    const Child server(sibling("bench-server"), {"default", kServiceThreads});
    const sp<IZvtTvFApiInformation> information = IZvtTvFApiInformation::getService();
    if (information == nullptr) {
        fail("bench-server is not registered");
    }
    const Session session;
    Table table{"A tiny call through fapictl session: " + conditions(pinned, options), {}};
    const auto add = [&](const std::string& workload, double timesAtMost,
                         const std::function<void()>& baseline) {
        if (options.wants(workload)) {
            const Limit limit{Limit::Kind::TimesAtMost, timesAtMost};
            table.rows.push_back(compare(workload, Unit::Nanoseconds, pinned ? limit : Limit{},
                                         options.rounds, timeOf(options.seconds, baseline),
                                         timeOf(options.seconds, [&] { session.tinyCall(); })));
        }
    };
    // 60 µs where the client's own call takes 15.
    add("beside the same call made by the client", 4, [&] { tinyCall(*information); });
    add("beside a process of fapictl call", 0.02, [] {
        runToItsEnd(sibling("fapictl"), {"call", "information", "get_ip_enable_status", "1"});
    });
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv, "Measures a call through the tool's session beside the same call without it.",
                 &options);
    __android_log_set_minimum_priority(ANDROID_LOG_WARN);
    const TemporaryFolder folder;
    setenv("HIDL_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    return report({measure(true, options), measure(false, options)}, options);
}
