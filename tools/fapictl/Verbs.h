#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Engine.h"
#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"

namespace fapictl {

struct Options {
    std::vector<std::string> words;  // what follows the verb and is no option
    std::string json;                // "short", "pretty", or empty for a table
    bool noLegend = false;
    bool all = false;
    bool ready = false;  // wait for the library, too
    std::string instance = "default";
    bool instanceGiven = false;
    std::optional<double> timeout;         // seconds
    std::vector<std::string> modules;      // whose events to show, empty for all
    std::vector<std::string> types;        // of the events to show, empty for all
    std::vector<std::string> matches;      // what their records have
    std::optional<int64_t> count;          // of events
    std::optional<std::string> arguments;  // of a call, as JSON, @FILE or -
    bool quiet = false;
    bool progress = false;
    std::vector<std::string> ignored;  // methods and results that may differ
    std::string out;                   // a file, "-" for standard output, empty for none
    std::optional<std::string> raw;    // a result's name, "-" for the only one
    uint16_t port = 0;                 // to listen on, 0 for one that is free
    bool open = false;                 // the page, in a browser
};

/** Options::raw without a name. */
inline constexpr const char* kOnlyResult = "-";

struct Context {
    const Package& package;
    Engine& engine;
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
Exit monitor(const Context& context);
Exit replay(const Context& context);
Exit check(const Context& context);
Exit session(const Context& context);
Exit serve(const Context& context);

/** The service that the options name, and how long they let it be waited for. */
Target targetOf(const Context& context);

/** Calls a method and prints its results. Requires one valid value for each argument. */
Exit callAndPrint(const Context& context, const Interface& interface, const Method& method,
                  const Json& arguments);

/** Writes bytes to a file, or to the results where the path is "-". Throws Failure (Output). */
void writeBytes(const Context& context, const std::string& path, std::string_view bytes);

/** Writes a JSON document as the options ask; only called when they ask for one. */
void printJson(const Context& context, const Json& json);

}  // namespace fapictl
