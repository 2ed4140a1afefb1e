#include "tools/fapictl/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>

#include "tools/fapictl/Complete.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

constexpr const char* kExitCodes =
        "Exit codes:\n"
        "  0  success\n"
        "  1  the method reported a status other than 0\n"
        "  2  a name, option or argument is wrong; nothing was called\n"
        "  3  the service is not registered, or was not in time\n"
        "  4  the call did not come back, for example because the service died\n"
        "  5  the results could not be written\n";

constexpr const char* kNamesHelp =
        "INTERFACE and METHOD may be written whole or without their prefixes, in any letter case: System "
        "for\n"
        "IZvtTvFApiSystem, sys_read_file or read_file for a_hidl_a_zvttvfapi_sys_read_file.\n";

constexpr const char* kCallHelp =
        "Each ARG is a value in the method's order, or NAME=VALUE, in any mixture. Values by type:\n"
        "  number       12, -3, 0x1f, 0o755\n"
        "  bool         true, false, on, off, 1, 0\n"
        "  text         as it is\n"
        "  enumeration  a name or a number\n"
        "  bytes        dead, de:ad, or @FILE for a file's contents\n"
        "  list         1,2,3 or JSON; with semicolons between records\n"
        "  record       FIELD=VALUE,FIELD=VALUE or JSON, or a word for each part: NAME.FIELD=VALUE,\n"
        "               NAME.LIST[0]=VALUE; fields that are not given are zero\n"
        "  object       null\n"
        "@FILE works for lists and records too; @- is standard input. Write -- before arguments that begin\n"
        "with a minus sign and are no numbers.\n";

/** The whole command line as options; what is no option is left in words. */
struct Parser {
    Options options;
    bool help = false;
    CLI::App app{"Calls the factory service's interfaces from the command line.", "fapictl"};

    Parser() {
        app.set_help_flag();
        app.allow_extras();
        app.add_flag("--json{short}", options.json, "print JSON, on one line (short) or indented (pretty)")
                ->type_name("[=short|pretty]");
        app.add_flag("--no-legend", options.noLegend, "print no headings, only the contents");
        app.add_option("--instance", options.instance, "the service's instance name")
                ->type_name("NAME")
                ->capture_default_str();
        app.add_option("--timeout", options.timeout, "how long to wait for the service, in seconds")
                ->type_name("S");
        app.add_option("--out", options.out,
                       "write the first text or bytes among the results to a file as they are; - is standard "
                       "output")
                ->type_name("FILE");
        app.add_flag("--all", options.all, "list other packages' services too");
        app.add_flag("-h,--help", help, "print this help");
    }

    /** Without the -- that may stand before them. */
    std::vector<std::string> words() const {
        std::vector<std::string> words;
        bool marked = false;
        for (const std::string& word : app.remaining()) {
            const bool option =
                    word.size() > 1 && word[0] == '-' && !std::isdigit(static_cast<unsigned char>(word[1]));
            if (!marked && word == "--") {
                marked = true;
            } else if (!marked && option) {
                throw Failure(Exit::Usage,
                              "no option " + inQuotes(word) +
                                      suggestion(word.substr(0, word.find('=')), optionNames()) +
                                      " Write -- before arguments that begin with a minus sign.");
            } else {
                words.push_back(word);
            }
        }
        return words;
    }

    std::vector<std::string> optionNames() const {
        std::vector<std::string> names;
        for (const CLI::Option* option : app.get_options()) {
            names.push_back("--" + option->get_lnames().front());
        }
        return names;
    }

    bool given(const std::string& name) const { return app.count("--" + name) > 0; }
};

const Verb& findVerb(const std::string& name) {
    std::vector<std::string> names;
    for (const Verb& verb : verbs()) {
        if (verb.name == name) {
            return verb;
        }
        names.push_back(verb.name);
    }
    throw Failure(Exit::Usage, "no verb " + inQuotes(name) + suggestion(name, names));
}

void printHelp(std::ostream& out, Parser& parser, const Verb* verb) {
    if (verb == nullptr) {
        out << "Usage: fapictl VERB [ARG...] [OPTION...]\n\n"
            << parser.app.get_description() << "\n\nVerbs:\n";
        Table table({"", ""});
        for (const Verb& one : verbs()) {
            table.row({std::string(one.name) + " " + one.arguments, one.summary});
        }
        table.print(out, false, "  ");
    } else {
        out << "Usage: fapictl " << verb->name << ' ' << verb->arguments << " [OPTION...]\n\n" << verb->help;
    }
    out << "\nOptions:\n";
    Table table({"", ""});
    for (const CLI::Option* option : parser.app.get_options()) {
        const std::string name = option->get_lnames().front();
        const bool useful =
                verb == nullptr || name == "help" ||
                std::find(verb->options.begin(), verb->options.end(), name) != verb->options.end();
        if (useful) {
            const std::string value = option->get_type_name();
            table.row({"--" + name + (value.empty() || value[0] == '[' ? value : " " + value)},
                      {option->get_description() +
                       (option->get_default_str().empty() ? "" : " (" + option->get_default_str() + ")")});
        }
    }
    table.print(out, false, "  ");
    out << '\n' << kNamesHelp << '\n' << kExitCodes;
}

void warnAboutUselessOptions(const Parser& parser, const Verb& verb, std::ostream& err) {
    for (const CLI::Option* option : parser.app.get_options()) {
        const std::string name = option->get_lnames().front();
        if (option->count() > 0 && name != "help" &&
            std::find(verb.options.begin(), verb.options.end(), name) == verb.options.end()) {
            err << "fapictl: --" << name << " has no effect on " << verb.name << '\n';
        }
    }
    if (parser.given("json") && parser.given("no-legend")) {
        err << "fapictl: --no-legend has no effect on JSON\n";
    }
    if (parser.given("json") && parser.options.out == "-") {
        err << "fapictl: --json has no effect with --out -\n";
    }
}

Exit runVerb(const Package& package, const std::vector<std::string>& arguments, std::ostream& out,
             std::ostream& err) {
    Parser parser;
    try {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
        parser.app.parse(std::move(reversed));
    } catch (const CLI::ParseError& error) {
        throw Failure(Exit::Usage, error.what());
    }
    Options& options = parser.options;
    std::vector<std::string> words = parser.words();
    if (words.empty()) {
        printHelp(parser.help ? out : err, parser, nullptr);
        return parser.help ? Exit::Success : Exit::Usage;
    }
    const Verb& verb = findVerb(words[0]);
    if (parser.help) {
        printHelp(out, parser, &verb);
        return Exit::Success;
    }
    options.words.assign(words.begin() + 1, words.end());
    options.instanceGiven = parser.given("instance");
    if (!options.json.empty() && options.json != "short" && options.json != "pretty") {
        throw Failure(Exit::Usage, "--json is short or pretty, not " + inQuotes(options.json));
    }
    if (options.timeout && !(*options.timeout >= 0 && *options.timeout <= 1e9)) {
        throw Failure(Exit::Usage, "--timeout is a number of seconds from 0 to 1000000000");
    }
    if (options.words.size() < verb.fewestWords || options.words.size() > verb.mostWords) {
        const bool few = options.words.size() < verb.fewestWords;
        throw Failure(Exit::Usage, std::string(few ? "too few words" : "one word too many: ") +
                                           (few ? "" : inQuotes(options.words[verb.mostWords])) +
                                           "; usage: fapictl " + verb.name + " " + verb.arguments);
    }
    warnAboutUselessOptions(parser, verb, err);
    return verb.run({package, options, out, err});
}

}  // namespace

const std::vector<Verb>& verbs() {
    constexpr size_t kAnyNumber = SIZE_MAX;
    static const std::vector<Verb> all = {
            {"list",
             "[INTERFACE...]",
             "show the registered services",
             "Shows which services are registered, with the process that serves each. An INTERFACE may hold "
             "* and ?.\n",
             {"json", "no-legend", "instance", "all"},
             0,
             kAnyNumber,
             list},
            {"introspect",
             "[INTERFACE [METHOD]]",
             "describe interfaces, methods and their types",
             "Describes all interfaces, the methods of one, or one method with its types. Needs no running "
             "service.\n"
             "INTERFACE and METHOD may hold * and ?, quoted from the shell: introspect '*' '*uart*'.\n",
             {"json", "no-legend"},
             0,
             2,
             introspect},
            {"call",
             "INTERFACE METHOD [ARG...]",
             "call a method and show its results",
             kCallHelp,
             {"json", "no-legend", "instance", "timeout", "out"},
             2,
             kAnyNumber,
             call},
            {"wait",
             "[INTERFACE...]",
             "wait until services are registered",
             "Waits until the interfaces are registered, all of them when none is given, for ever without "
             "--timeout.\n",
             {"json", "no-legend", "instance", "timeout"},
             0,
             kAnyNumber,
             wait},
    };
    return all;
}

void printJson(const Context& context, const Json& json) {
    context.out << jsonText(json, context.options.json == "pretty") << '\n';
}

Exit run(const Package& package, const std::vector<std::string>& arguments, std::ostream& out,
         std::ostream& err) {
    try {
        if (!arguments.empty() && arguments[0] == "--complete") {
            for (const std::string& word : complete(package, {arguments.begin() + 1, arguments.end()})) {
                out << word << '\n';
            }
            return Exit::Success;
        }
        const Exit code = runVerb(package, arguments, out, err);
        if (!out.flush()) {
            throw Failure(Exit::Output, "cannot write the results");
        }
        return code;
    } catch (const Failure& failure) {
        out.flush();
        err << "fapictl: " << failure.what() << '\n';
        return failure.code;
    } catch (const std::exception& error) {
        err << "fapictl: " << error.what() << '\n';
        return Exit::Usage;
    }
}

}  // namespace fapictl
