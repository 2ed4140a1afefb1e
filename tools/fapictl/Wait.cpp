#include <algorithm>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
Exit wait(const Context& context) {
    const Options& options = context.options;
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
    return Exit::Success;
}

}  // namespace fapictl
