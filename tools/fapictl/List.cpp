#include <algorithm>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
Exit list(const Context& context) {
    const Options& options = context.options;
    std::vector<const Interface*> wanted;
    for (const std::string& word : options.words) {
        for (const Interface* interface : selectInterfaces(context.package, word)) {
            wanted.push_back(interface);
        }
    }
    const auto isShown = [&](const Instance& instance) {
        if (options.instanceGiven && instance.name != options.instance) {
            return false;
        }
        const auto is = [&](const Interface& interface) {
            return interface.descriptor == instance.interface;
        };
        if (!wanted.empty()) {
            return std::any_of(wanted.begin(), wanted.end(), [&](const Interface* one) { return is(*one); });
        }
        const std::vector<Interface>& known = context.package.interfaces;
        return options.all || std::any_of(known.begin(), known.end(), is);
    };

    Table table({"INTERFACE", "INSTANCE", "PID"});
    Json json = Json::array();
    for (const Instance& instance : registeredServices()) {
        if (isShown(instance)) {
            table.row({escaped(instance.interface), escaped(instance.name),
                       instance.pid > 0 ? std::to_string(instance.pid) : "-"});
            json.push_back(
                    {{"interface", instance.interface}, {"instance", instance.name}, {"pid", instance.pid}});
        }
    }
    if (!options.json.empty()) {
        printJson(context, json);
    } else if (!table.empty()) {
        table.print(context.out, !options.noLegend);
    }
    if (!table.empty()) {
        return Exit::Success;
    }
    if (options.json.empty()) {
        context.err << "fapictl: nothing is registered"
                    << (wanted.empty() && !options.instanceGiven ? "; is the service running?\n"
                                                                 : " by that name\n");
    }
    return wanted.empty() && !options.instanceGiven ? Exit::Success : Exit::NotFound;
}

}  // namespace fapictl
