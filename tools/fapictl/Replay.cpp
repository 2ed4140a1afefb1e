#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include "tools/fapictl/Display.h"
#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Statuses.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/TracedCall.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

/** A line of the file that is a call. */
struct Step {
    uint64_t line;
    TracedCall call;
    std::string skipped;  // why it is not made; empty when it is
    Json arguments;       // of one that is made
    Json results;         // what they were then, by place; null when there were none
};

std::string lineNumber(uint64_t line) {
    return "line " + std::to_string(line);
}

Step readStep(const Package& package, const Json& json, uint64_t number) {
    const std::string where = lineNumber(number);
    Step step = {number, parseTracedCall(package, json, where), "", Json::array(), Json()};
    const TracedCall& call = step.call;
    if (!call.interface->isService) {
        throw Failure(Exit::Usage, where + ": " + shortName(*call.interface) + " is implemented by clients");
    }
    for (const Field& field : call.method->arguments) {
        const Json& value = call.arguments.at(field.label.name);
        step.skipped = whyNotRepeatable(*field.type, value);
        if (!step.skipped.empty()) {
            return step;
        }
        step.arguments.push_back(tracedValue(*field.type, value, where + ", " + field.label.name));
    }
    if (!call.results.is_null()) {
        step.results = Json::array();
        for (const Field& field : call.method->results) {
            step.results.push_back(tracedValue(*field.type, call.results.at(field.label.name),
                                               where + ", " + field.label.name));
        }
    }
    return step;
}

/** All of them: nothing is called when one is wrong. */
std::vector<Step> readSteps(const Context& context) {
    const std::string& path = context.options.words[0];
    std::ifstream file;
    if (path != "-") {
        struct stat status = {};
        file.open(path);
        // Some standard libraries' streams take a folder for an empty file.
        const bool isFolder = stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        if (!file || isFolder) {
            throw Failure(Exit::Usage,
                          "cannot read " + inQuotes(path) + ": " + std::strerror(isFolder ? EISDIR : errno));
        }
    }
    std::istream& in = path == "-" ? std::cin : file;
    std::vector<Step> steps;
    uint64_t number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        if (text.empty()) {
            continue;
        }
        const Json json = Json::parse(text, nullptr, false);
        if (json.is_discarded()) {
            throw Failure(Exit::Usage, lineNumber(number) + ": no JSON");
        }
        if (json.is_object() && json.contains("lost")) {
            context.err << "fapictl: " << lineNumber(number) << ": " << json["lost"].dump()
                        << " calls are missing here\n";
        } else if (!json.is_object() || !json.contains("tracing")) {
            steps.push_back(readStep(context.package, json, number));
        }
    }
    if (in.bad()) {
        throw Failure(Exit::Usage, "cannot read " + inQuotes(path) + ": " + std::strerror(errno));
    }
    return steps;
}

/** What --ignore names: methods and results whose values say nothing. */
class Ignored {
  public:
    explicit Ignored(const Context& context) {
        for (const std::string& word : context.options.ignored) {
            bool found = false;
            std::vector<std::string> known;
            for (const Interface& interface : context.package.interfaces) {
                for (const Method* method : matchMethods(interface, word)) {
                    mMethods.insert(method);
                    found = true;
                }
                for (const Method& method : interface.methods) {
                    for (const Field& result : method.results) {
                        found = found || equalIgnoringCase(result.label.name, word);
                        known.push_back(result.label.name);
                    }
                    known.push_back(shortName(interface, method));
                }
            }
            if (!found) {
                throw Failure(Exit::Usage, "no method or result " + inQuotes(word) + suggestion(word, known));
            }
            mWords.push_back(word);
        }
    }

    bool has(const Method& method, const Field& result) const {
        return mMethods.count(&method) > 0 ||
               std::any_of(mWords.begin(), mWords.end(), [&](const std::string& word) {
                   return equalIgnoringCase(result.label.name, word);
               });
    }

  private:
    std::vector<std::string> mWords;
    std::set<const Method*> mMethods;
};

std::string shown(const Context& context, Statuses& statuses, const Method& method, const Field& result,
                  const Json& value) {
    const std::string text = tracedText(*result.type, forTrace(*result.type, value));
    const bool isStatus = method.outcome() && &method.results[*method.outcome()] == &result;
    return isStatus && value.is_number_integer()
                   ? text + " (" +
                             statuses.name(context.package, context.options.instance, value.get<int64_t>()) +
                             ")"
                   : text;
}

/** Where two texts or lists begin to differ, for those of which a line does not show all. */
std::string placeOf(const Type& type, const Json& before, const Json& now) {
    const auto firstOf = [](const auto& a, const auto& b) {
        return ", from " +
               std::to_string(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin()) +
               " on";
    };
    if (type.kind == Type::Kind::Text) {
        return firstOf(before.get_ref<const std::string&>(), now.get_ref<const std::string&>());
    }
    if (type.isBytes()) {
        return firstOf(before.get_binary(), now.get_binary());
    }
    return type.kind == Type::Kind::List ? firstOf(before, now) : "";
}

void printDifference(const Context& context, Statuses& statuses, const Step& step, const Field& result,
                     const Json& before, const Json& now) {
    const TracedCall& call = step.call;
    if (!context.options.json.empty()) {
        printJson(context, {{"line", step.line},
                            {"interface", call.interface->descriptor},
                            {"method", call.method->name},
                            {"result", result.label.name},
                            {"was", forPrograms(*result.type, before)},
                            {"is", forPrograms(*result.type, now)}});
        return;
    }
    context.out << lineNumber(step.line) << ": " << titleOf(call) << '('
                << tracedText(call.method->arguments, call.arguments) << "): " << result.label.name << " was "
                << shown(context, statuses, *call.method, result, before) << ", is "
                << shown(context, statuses, *call.method, result, now) << placeOf(*result.type, before, now)
                << '\n';
}

}  // namespace

Exit replay(const Context& context) {
    const Ignored ignored(context);
    const std::vector<Step> steps = readSteps(context);
    Statuses statuses;
    uint64_t made = 0;
    uint64_t different = 0;
    for (const Step& step : steps) {
        const TracedCall& call = step.call;
        if (!step.skipped.empty()) {
            context.err << "fapictl: " << lineNumber(step.line) << ": " << titleOf(call)
                        << " is not called: " << step.skipped << '\n';
            continue;
        }
        const Json results =
                context.engine.call(*call.interface, *call.method, step.arguments, targetOf(context)).results;
        ++made;
        bool differs = false;
        for (size_t i = 0; i < results.size() && !step.results.is_null(); ++i) {
            const Field& result = call.method->results[i];
            if (results[i] != step.results[i] && !ignored.has(*call.method, result)) {
                printDifference(context, statuses, step, result, step.results[i], results[i]);
                differs = true;
            }
        }
        different += differs;
        if (!context.out.flush()) {
            throw Failure(Exit::Output, "cannot write the differences");
        }
    }
    if (!context.options.json.empty()) {
        printJson(context, {{"calls", made}, {"different", different}, {"skipped", steps.size() - made}});
    } else {
        context.out << made << (made == 1 ? " call, " : " calls, ") << different << " with other results, "
                    << steps.size() - made << " not made\n";
    }
    return different == 0 ? Exit::Success : Exit::Status;
}

}  // namespace fapictl
