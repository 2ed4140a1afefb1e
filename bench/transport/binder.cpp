// bench-binder: calls through the kernel's binder driver beside the same calls over sockets. The device needs
// its context manager.

#include <cstdlib>

#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "bench/transport/Crowd.h"

namespace {

using namespace bench;

/** A server and callers, all of one transport. */
class Calls {
  public:
    Calls(const char* transport, size_t callers)
        : mServer((setenv("HIDL_TRANSPORT", transport, 1), sibling("bench-server")), {"default", "4"}),
          mCallers(callers, {"default"}) {}

    /** @param seconds of one round */
    double perSecond(double seconds) { return mCallers.callsPerSecond(seconds); }

  private:
    const Child mServer;
    Crowd mCallers;
};

Table measure(const Options& options) {
    const OneCpu binding;
    Table table{"Calls through the binder driver, beside sockets: " + conditions(true, options), {}};
    for (const size_t callers : {1, 8}) {
        const std::string name = "tiny calls, processes: " + std::to_string(callers);
        if (!options.wants(name)) {
            continue;
        }
        Calls sockets("socket", callers);
        Calls driver("binder", callers);
        table.rows.push_back(compare(
                name, Unit::CallsPerSecond, {}, options.rounds,
                [&] { return sockets.perSecond(options.seconds); },
                [&] { return driver.perSecond(options.seconds); }));
    }
    return table;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv, "Measures calls through the binder driver beside those over sockets.", &options);
    const TemporaryFolder folder;
    setenv("HIDL_RUNTIME_DIR", (folder / "runtime").c_str(), 1);
    return report({measure(options)}, options);
}
