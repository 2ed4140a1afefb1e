#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Values.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watcher.h"

namespace fapictl {
namespace {

/** For methods that want an object of the caller's. */
constexpr const char* kObjectHint = "; fapictl watch registers a callback and shows its events";

bool isText(const Type& type) {
    return type.kind == Type::Kind::Text || type.isBytes();
}

/** The results besides that which tells how the method fared; where there is no other, that one. */
std::vector<size_t> valuesOf(const Method& method) {
    std::vector<size_t> values;
    for (size_t i = 0; i < method.results.size(); ++i) {
        if (i != method.outcome() || method.results.size() == 1) {
            values.push_back(i);
        }
    }
    return values;
}

/** The result that --out writes: the first text or bytes, or the only value when it is a number; the number
 * of results when there is none. */
size_t findPayload(const Method& method) {
    for (size_t i = 0; i < method.results.size(); ++i) {
        if (isText(*method.results[i].type)) {
            return i;
        }
    }
    const std::vector<size_t> values = valuesOf(method);
    const auto isNumber = [&](size_t i) {
        const Type::Kind kind = method.results[i].type->kind;
        return kind != Type::Kind::Record && kind != Type::Kind::List && kind != Type::Kind::Interface;
    };
    return values.size() == 1 && isNumber(values[0]) ? values[0] : method.results.size();
}

/** The result that --raw prints. Throws Failure (Usage) when it is none or not certain. */
size_t findRaw(const Method& method, const std::string& name) {
    const std::vector<size_t> values = valuesOf(method);
    if (name == kOnlyResult && values.size() == 1) {
        return values[0];
    }
    std::string all;
    std::vector<std::string> names;
    for (size_t i = 0; i < method.results.size(); ++i) {
        names.push_back(method.results[i].label.name);
        if (equalIgnoringCase(names.back(), name)) {
            return i;
        }
        all += (i == 0 ? "" : ", ") + names.back();
    }
    throw Failure(Exit::Usage, names.empty() ? "--raw: the method has no results"
                               : name == kOnlyResult
                                       ? "--raw=NAME says which of the results: " + all
                                       : "no result " + inQuotes(name) + suggestion(name, names));
}

/** A value as it is: texts and bytes themselves, enumerations as numbers, lists and records as JSON. */
std::string bareValue(const Type& type, const Json& value) {
    if (type.isBytes()) {
        const std::vector<uint8_t>& bytes = value.get_binary();
        return {bytes.begin(), bytes.end()};
    }
    if (type.kind == Type::Kind::Text) {
        return value.get<std::string>();
    }
    const bool parts = type.kind == Type::Kind::List || type.kind == Type::Kind::Record;
    return parts ? jsonText(forPrograms(type, value), false) : value.dump();
}

/** What --out writes of a result: a number is a line. */
std::string payloadOf(const Type& type, const Json& value) {
    return bareValue(type, value) + (isText(type) ? "" : "\n");
}

/** While it lives, events that come in are shown beside the results, on standard error. */
class Progress {
  public:
    explicit Progress(const Context& context) : mOutput(std::make_shared<Output>(&context.err)) {
        const auto listener = std::make_shared<EventListener>();
        listener->take = [output = mOutput](const Event& event) {
            const std::lock_guard<std::mutex> lock(output->mutex);
            if (output->stream != nullptr) {
                *output->stream << eventLine(++output->shown, event) << std::endl;
            }
        };
        listener->died = [] {};
        mWatches.add(context.engine, targetOf(context), listener);
    }
    ~Progress() {
        const std::lock_guard<std::mutex> lock(mOutput->mutex);
        mOutput->stream = nullptr;
    }
    Progress(const Progress&) = delete;

  private:
    struct Output {
        explicit Output(std::ostream* to) : stream(to) {}
        std::mutex mutex;
        std::ostream* stream;  // null once the call is over
        uint64_t shown = 0;
    };

    const std::shared_ptr<Output> mOutput;  // the listener outlives us
    Watches mWatches;
};

void print(const Context& context, const Method& method, const Answer& answer, size_t payload) {
    const Json& results = answer.results;
    const Options& options = context.options;
    Table table({"RESULT", "TYPE", "VALUE"});
    Json json = Json::object();
    for (size_t i = 0; i < method.results.size(); ++i) {
        const Field& result = method.results[i];
        if (i == payload) {
            const size_t size = payloadOf(*result.type, results[i]).size();
            table.row({result.label.name, result.type->name,
                       std::to_string(size) + " bytes written to " + escaped(options.out)});
            json[result.label.name] = {{"file", options.out}, {"size", size}};
        } else {
            addRows(table, result, results[i],
                    answer.status && i == method.outcome() ? answer.statusName : "");
            json[result.label.name] = forPrograms(*result.type, results[i]);
        }
    }
    if (!options.json.empty()) {
        if (!answer.statusName.empty()) {
            json["status"] = answer.statusName;
        }
        if (!answer.reason.empty()) {
            json["reason"] = answer.reason;
        }
        printJson(context, json);
    } else if (!table.empty()) {
        table.print(context.out, !options.noLegend);
    } else if (!options.noLegend) {
        context.out << (method.oneway ? "sent; the method gives no answer\n"
                                      : "done; the method has no results\n");
    }
}

}  // namespace

Target targetOf(const Context& context) {
    return {context.options.instance, context.options.timeout};
}

Exit call(const Context& context) {
    const Options& options = context.options;
    const Interface& interface = findCallable(context.package, options.words[0]);
    const Method& method = findMethod(interface, options.words[1]);
    const bool takesObject =
            std::any_of(method.arguments.begin(), method.arguments.end(),
                        [](const Field& one) { return one.type->kind == Type::Kind::Interface; });
    if (options.arguments && options.words.size() > 2) {
        throw Failure(Exit::Usage, "all arguments are in --args; it takes none beside it, as " +
                                           inQuotes(options.words[2]));
    }
    Json arguments;
    try {
        arguments = options.arguments
                            ? bindArguments(method, readJson(*options.arguments, "--args"))
                            : bindArguments(method, std::vector<std::string>(options.words.begin() + 2,
                                                                             options.words.end()));
    } catch (const Failure& failure) {
        throw takesObject ? Failure(failure.code, std::string(failure.what()) + kObjectHint) : failure;
    }
    if (takesObject) {
        context.err << "fapictl: null registers nothing" << kObjectHint << '\n';
    }
    const std::optional<Progress> progress =
            options.progress ? std::optional<Progress>(std::in_place, context) : std::nullopt;
    return callAndPrint(context, interface, method, arguments);
}

Exit callAndPrint(const Context& context, const Interface& interface, const Method& method,
                  const Json& arguments) {
    const Options& options = context.options;
    size_t payload = findPayload(method);
    if (!options.out.empty() && payload == method.results.size()) {
        context.err
                << "fapictl: --out has no effect: the method has no text, bytes or single number to write\n";
    } else if (options.out.empty()) {
        payload = method.results.size();
    }

    const std::optional<size_t> raw =
            options.raw ? std::optional(findRaw(method, *options.raw)) : std::nullopt;

    const Answer answer = context.engine.call(interface, method, arguments, targetOf(context));
    if (!answer.reason.empty()) {
        context.err << "fapictl: the board: " << escaped(answer.reason) << '\n';
    }
    if (answer.failed && payload != method.results.size()) {
        context.err << "fapictl: " << escaped(options.out) << " is not written, since the method failed\n";
        payload = method.results.size();
    }
    if (payload != method.results.size()) {
        writeBytes(context, options.out, payloadOf(*method.results[payload].type, answer.results[payload]));
    }
    if (raw && !answer.failed) {
        const Type& type = *method.results[*raw].type;
        context.out << bareValue(type, answer.results[*raw]) << (type.isBytes() ? "" : "\n");
    } else if (raw && answer.status) {
        context.err << "fapictl: the method failed: status " << *answer.status << " (" << answer.statusName
                    << ")\n";
    } else if (!raw && (payload == method.results.size() || options.out != "-")) {
        print(context, method, answer, payload);
    }
    if (answer.failed && !answer.status) {
        context.err << "fapictl: " << method.results[*method.outcome()].label.name
                    << " is false: it was not done\n";
    }
    return answer.failed ? Exit::Status : Exit::Success;
}

}  // namespace fapictl
