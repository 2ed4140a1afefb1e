#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"

namespace fapictl {

struct Options {
    std::vector<std::string> words;  // what follows the verb and is no option
    std::string json;                // "short", "pretty", or empty for a table
    bool noLegend = false;
    bool all = false;
    std::string instance = "default";
    bool instanceGiven = false;
    std::optional<double> timeout;     // seconds
    std::vector<std::string> modules;  // whose events to show, empty for all
    std::optional<int64_t> count;      // of events
    bool quiet = false;
    bool progress = false;
    std::string out;  // a file, "-" for standard output, empty for none
};

struct Context {
    const Package& package;
    const Options& options;
    std::ostream& out;
    std::ostream& err;
};

/** What a verb's words stand for. */
enum class Words { None, Interfaces, Method, Event, Capture };

/** A verb of the tool; help, completion and the warnings about useless options come from here. */
struct Verb {
    const char* name;
    const char* arguments;
    const char* summary;
    const char* help;
    Words words;
    std::vector<std::string> options;
    size_t fewestWords;
    size_t mostWords;
    Exit (*run)(const Context& context);
};

const std::vector<Verb>& verbs();

Exit list(const Context& context);
Exit introspect(const Context& context);
Exit call(const Context& context);
Exit wait(const Context& context);
Exit watch(const Context& context);
Exit post(const Context& context);
Exit capture(const Context& context);
Exit edid(const Context& context);
Exit debug(const Context& context);

/** What of the picture a capture shows; the place is the service's option. */
const std::vector<std::string>& captureLayers();

/**
 * The service under the options' instance name, waited for as long as they say. Throws Failure (NotFound)
 * when it is not registered.
 */
sp<IBase> findService(const Context& context, const Interface& interface);

/** Calls a method. Throws Failure (NotFound, Transport) when no results come back. */
Json callForResults(const Context& context, const Interface& interface, const Method& method,
                    const Json& arguments);

/** Calls a method and prints its results. Requires one valid value for each argument. */
Exit callAndPrint(const Context& context, const Interface& interface, const Method& method,
                  const Json& arguments);

/**
 * Waits until the interfaces are registered under the instance's name, for ever without a timeout. Returns
 * those that were not in time. Throws Failure (Transport) when the registry cannot be watched.
 */
std::vector<const Interface*> waitFor(const std::vector<const Interface*>& interfaces,
                                      const std::string& instance, std::optional<double> seconds);

/** Writes a JSON document as the options ask; only called when they ask for one. */
void printJson(const Context& context, const Json& json);

}  // namespace fapictl
