#include <algorithm>
#include <chrono>
#include <optional>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watchdog.h"

namespace fapictl {

Exit wait(const Context& context) {
    const Options& options = context.options;
    const auto begin = std::chrono::steady_clock::now();
    // Only a call may be without an answer.
    std::optional<Watchdog> watchdog;
    if (options.ready && options.timeout) {
        watchdog.emplace(*options.timeout, context.err);
    }
    const std::vector<const Interface*> wanted = selectServices(context.package, options.words);
    const std::vector<const Interface*> missing = context.engine.wait(wanted, targetOf(context));
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
        throw notInTime(missing.size(), wanted.size(), targetOf(context));
    }
    if (options.ready) {
        context.engine.waitUntilReady(targetOf(context), begin);
    }
    return Exit::Success;
}

}  // namespace fapictl
