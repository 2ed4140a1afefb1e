#include <utility>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Records.h"
#include "tools/fapictl/Values.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {

Exit post(const Context& context) {
    const std::vector<std::string>& words = context.options.words;
    const Interface& manager = findInterface(context.package, "Manager");
    const Method& method = findMethod(manager, "post_event");
    Json arguments = Json::array({parseValue(*method.arguments[0].type, words[0], "TYPE")});
    for (Json& record : parseEventRecords(*method.arguments[1].type, {words.begin() + 1, words.end()})) {
        arguments.push_back(std::move(record));
    }
    return callAndPrint(context, manager, method, arguments);
}

}  // namespace fapictl
