#include "tools/fapictl/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>

#include "tools/fapictl/Complete.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watchdog.h"

namespace fapictl {
namespace {

constexpr const char* kExitCodes =
        "Exit codes:\n"
        "  0  success\n"
        "  1  the method reported a status other than 0, or that it was not done, or replayed calls had "
        "other results\n"
        "  2  a name, option or argument is wrong; nothing was called\n"
        "  3  the service is not registered, or was not in time, or fewer than --count events were\n"
        "  4  the call did not come back, because the service died, or not within --timeout; or it died "
        "while watched\n"
        "  5  the results could not be written\n"
        "  6  the command that watch runs failed, or could not be run\n";

constexpr const char* kNamesHelp =
        "INTERFACE and METHOD may be written whole or without their prefixes, in any letter case: System "
        "for\n"
        "IZvtTvFApiSystem, sys_read_file or read_file for a_hidl_a_zvttvfapi_sys_read_file.\n";

constexpr const char* kCallHelp =
        "Each ARG is a value in the method's order, or NAME=VALUE, in any mixture. Values by type:\n"
        "  number       12, -3, 0x1f, 0o755\n"
        "  bool         true, false, on, off, 1, 0\n"
        "  text         as it is, or @FILE for a file's contents; @@ for one that begins with @\n"
        "  enumeration  a name or a number\n"
        "  bytes        dead, de:ad, or @FILE for a file's contents\n"
        "  list         1,2,3 or JSON; with semicolons between records\n"
        "  record       FIELD=VALUE,FIELD=VALUE or JSON, or a word for each part: NAME.FIELD=VALUE,\n"
        "               NAME.LIST[0]=VALUE; fields that are not given are zero. A value in it that holds\n"
        "               commas stands in brackets or quotes: LIST=[1,2],INNER={A=1},TEXT=\"a, b\"\n"
        "  object       null\n"
        "The last elements of an array may be left out, except of one of bytes; they are zero. @FILE works "
        "for\n"
        "lists and records too; @- is standard input. Write -- before arguments that begin with a minus "
        "sign\n"
        "and are no numbers.\n"
        "With --args, the arguments are one JSON object by their names, or an array in order. Its strings "
        "may\n"
        "hold any of the above, except for texts, which are taken as they are.\n\n"
        "  fapictl call system read_file /test.txt 0 16\n"
        "  fapictl call system write_file /test.txt @notes.txt bAppend=off bAddCrLf=off\n"
        "  fapictl call system --args '{\"strVarName\":\"a\",\"strVarValue\":\"@b\"}' set_emmc_env_var\n";

constexpr const char* kWatchHelp =
        "Prints a line for each event as it comes in: its number in this watch, the local time, the module, "
        "the\n"
        "type, and the four payload records, which fapictl post takes, and the orders of the simulated "
        "board. "
        "All\n"
        "records up to the last one with content show their value, 0 as well; an empty one behind it is -. "
        "Bytes\n"
        "that are a text show it behind them: bytes=6869 (\"hi\"). Texts of more than 64 bytes and bytes of "
        "more "
        "than\n"
        "32 are cut; with --json, an object on a line for each event, nothing is. Modules: sys, disp, "
        "disptst, "
        "info,\n"
        "inpsrc, prphrl, aud, net, and tv for none of these.\n"
        "Ends with 0 on Ctrl-C or SIGTERM, after --count events, or after --timeout without --count; ends "
        "with 3\n"
        "when --count events have not come within --timeout, and with 4 when the service dies, or has not "
        "answered\n"
        "within --timeout. Says on standard error when it has registered. A reader of its output that stalls "
        "can cost\n"
        "it events.\n"
        "Events of other modules and types than those given, and those without such records, neither show "
        "nor "
        "count.\n"
        "A type is a number, 0x10001 or 65537, or NUMBER/MASK for all types of which the bits in the mask "
        "make "
        "that\n"
        "number: 0x10000/0xff0000. A match is a record as fapictl post takes it, all of whose parts one and "
        "the "
        "same\n"
        "record of the event has; text~PATTERN searches a text, as grep -E does. Several matches may be of "
        "several\n"
        "records.\n"
        "A COMMAND is run once the watch is registered, so that none of its events is missed; what it prints "
        "goes to\n"
        "standard error. Then the watch ends when the command has ended and --count events have come, and "
        "with 6 when\n"
        "the command fails.\n\n"
        "  fapictl watch --module sys --module net\n"
        "  fapictl watch --count 1 --timeout 5 -- fapictl post 0x10001 value=7\n"
        "  fapictl watch --type 0x10001 --match 'text=\"done\"' --match 'value=100 text~\\.bin$' --count 1\n"
        "  fapictl watch --count 1 --timeout 10 --json\n";

constexpr const char* kPostHelp =
        "Posts an event of a type, 0x10001 or 65537, with up to four payload records, to every client that "
        "has\n"
        "registered. The lowest set bit of bits 16 to 24 chooses the module: 16 sys, 17 net, 18 disp, 19 "
        "disptst,\n"
        "20 prphrl, 21 inpsrc, 22 aud, 23 info, 24 tv.\n"
        "A RECORD is one word of the shell, with any of these parts, separated by commas or blanks:\n"
        "  value=NUMBER  7, 0x1f\n"
        "  text=TEXT     without quotes it runs to the next KEY= behind a comma or blank, or to the end\n"
        "  bytes=HEX     dead, de:ad, or @FILE for a file's contents, @- for standard input\n"
        "or - when it is empty. Records that are not given are empty. A value may stand in double quotes, in "
        "which\n"
        "\\n \\t \\r \\\\ \\\" and \\xNN are escapes, as watch writes them. Several records may stand in a "
        "word, "
        "a bar\n"
        "with blanks around it between them: what watch shows, unless it has cut it, can be posted again.\n\n"
        "  fapictl post 0x10001 value=7\n"
        "  fapictl post 0x20000 'value=1, text=hello, world' bytes=00ff\n"
        "  fapictl post 0x20000 'value=1 text=\"hello, world\" | - | bytes=6869 (\"hi\")'\n"
        "  fapictl post 0x40002 - 'text=\"a=1, b=2\" value=3' bytes=@edid.bin\n";

constexpr const char* kCaptureHelp =
        "Has the service capture what the panel shows, 1920 by 1080 pixels, and brings the PNG file here; - "
        "is "
        "standard\n"
        "output. LAYERS: all (if none is given), video (the test pattern and burn-in with it), graphics or "
        "osd.\n"
        "The service writes the file onto the USB storage of its board. Of a simulated board on this "
        "machine, that "
        "is the\n"
        "folder files/usb of the state directory: $ZVTTV_STATE_DIR, else $XDG_STATE_HOME/zvttvfactory, else\n"
        "~/.local/state/zvttvfactory, and it must be the service's. Not on a set: there, call "
        "capture_screen_to_usb.\n\n"
        "  fapictl capture panel.png\n"
        "  fapictl capture - graphics > graphics.png\n";

constexpr const char* kMonitorHelp =
        "Prints a line for each call that a client makes, when it has ended: its number, the local time when "
        "it "
        "began,\n"
        "the caller's process, the method with its arguments, the results, the status by name and how long "
        "it "
        "took\n"
        "inside the service. What is long is cut; with --json, an object on a line for each call, nothing "
        "is. "
        "INTERFACE\n"
        "and METHOD may hold * and ?, quoted from the shell. The service writes the calls down only while "
        "somebody\n"
        "looks, four at most; bytes of keys stay with it. A reader of the output that stalls costs no call "
        "anything:\n"
        "what finds no room is left out, and how many calls that were is said.\n"
        "Ends with 0 on Ctrl-C or SIGTERM, after --count calls, or after --timeout without --count; ends "
        "with "
        "3 when\n"
        "--count calls have not come within --timeout, and with 4 when the service dies, or has not answered "
        "within\n"
        "--timeout. Says on standard error when it listens.\n\n"
        "  fapictl monitor system\n"
        "  fapictl monitor '*' '*uart*' --json\n"
        "  fapictl monitor --json > report; fapictl replay report\n";

constexpr const char* kReplayHelp =
        "Makes the calls again that fapictl monitor --json has written to a FILE, or to standard input for "
        "-, "
        "one after\n"
        "the other, and prints each result that is not what it was then: a report of a fault becomes a test. "
        "Calls with\n"
        "an object of the caller's or with a secret are not made. --ignore names a method or a result whose "
        "value says\n"
        "nothing, as a time; it may be given several times.\n"
        "Ends with 0 when all is as it was, with 1 when something differs, and with 2, before any call, when "
        "a "
        "line of\n"
        "the file is none of monitor's.\n\n"
        "  fapictl replay report --ignore get_temperature --ignore u32Uptime\n";

constexpr const char* kCheckHelp =
        "Says whether a chip-layer library keeps its promises (chiplayer/*.h). Starts a service of its own\n"
        "on the two libraries in the folder, or on those that the service beside this program would load,\n"
        "and calls every method: before the modules are started, not ready, at the bounds of each argument,\n"
        "many at once. Shows for each function how long it takes, then what is wrong: functions that are\n"
        "missing, have another signature, crash or do not come back (within --timeout, 10 s for each call);\n"
        "that reach beyond a buffer, write to their input or use it later; texts without an end; counts\n"
        "beyond the room; statuses of the service's own; exceptions; descriptors and threads left behind;\n"
        "words on standard output; events with a lock held, of another module, or after the end.\n"
        "Methods that change a board for good or may stop it are called with --all only. Ends with 1 when\n"
        "there are faults. Not on a set.\n\n"
        "  fapictl check\n"
        "  fapictl check --all build/mine/lib\n";

constexpr const char* kSessionHelp =
        "Serves JSON-RPC 2.0 on standard input and output, one message a line, until the input ends; for "
        "programs that\n"
        "make many calls or wait for events. Calls run at the same time, 64 at most, and are answered as "
        "they "
        "end.\n"
        "Methods: version, list, introspect, call, watch, unwatch, post, capture, edid, wait, debug; "
        "docs/session.md says what\n"
        "each takes and gives. Each takes an instance and a timeout of its own instead of the options'.\n"
        "Ends with 0 at the end of its input, once what is under way has been answered, or at once on Ctrl-C "
        "or\n"
        "SIGTERM; with 5 when nobody reads its output.\n\n"
        "  echo '{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"version\"}' | fapictl session\n";

constexpr const char* kServeHelp =
        "Serves a page that shows the simulated board's panel, calls every method and streams the events, "
        "and prints\n"
        "its address, which is a secret: whoever knows it may call the service. Only this machine can use "
        "it, "
        "until\n"
        "Ctrl-C. It is JSON-RPC over HTTP, for programs too: docs/session.md.\n\n"
        "  fapictl serve --open\n";

/** The whole command line as options; what is no option is left in words. */
struct Parser {
    Options options;
    bool help = false;
    bool version = false;
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
        app.add_option("--timeout", options.timeout,
                       "how long all of it may take, from waiting for the service on, in seconds")
                ->type_name("S");
        app.add_option("--out", options.out,
                       "write the first text or bytes among the results, or a single number, to a file as it "
                       "is; - is standard output")
                ->type_name("FILE");
        app.add_option(
                   "--args", options.arguments,
                   "all arguments as a JSON object or array; @FILE for a file with it, - for standard input")
                ->type_name("JSON");
        app.add_option("--module", options.modules, "show a module's events; may be given several times")
                ->type_name("M")
                ->allow_extra_args(false)
                ->delimiter(',');
        app.add_option("--type", options.types,
                       "show events of a type, or NUMBER/MASK of types; may be given several times")
                ->type_name("T")
                ->allow_extra_args(false)
                ->delimiter(',');
        app.add_option("--match", options.matches,
                       "show events with such a record; given several times, with all of them")
                ->type_name("RECORD")
                ->allow_extra_args(false);
        app.add_option("--count", options.count, "end after so many events or calls")->type_name("N");
        app.add_option("--ignore", options.ignored,
                       "do not compare a method's results, or a result; may be given several times")
                ->type_name("NAME")
                ->allow_extra_args(false)
                ->delimiter(',');
        app.add_flag("--progress", options.progress, "show the events that come in while the method runs");
        app.add_flag("--quiet", options.quiet, "do not say when watching or monitoring begins");
        app.add_flag("--raw{-}", options.raw,
                     "print nothing but the only result besides the status, or the one that is named")
                ->type_name("[=NAME]");
        app.add_flag("--ready", options.ready, "wait until calls are no longer answered with -5, not ready");
        app.add_flag("--all", options.all, "list other packages' services too; check dangerous methods too");
        app.add_option("--port", options.port, "listen on that port; 0 is one that is free")
                ->type_name("N")
                ->capture_default_str();
        app.add_flag("--open", options.open, "open the page in a browser");
        app.add_flag("-h,--help", help, "print this help");
        app.add_flag("--version", version, "print the version of this program and of the interfaces");
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
    if (parser.given("json") && parser.given("raw")) {
        err << "fapictl: --json has no effect with --raw\n";
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
    if (parser.version) {
        out << "fapictl " << FAPICTL_VERSION << ", " << package.name << '\n';
        return Exit::Success;
    }
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
    if (options.count && *options.count < 1) {
        throw Failure(Exit::Usage, "--count is a number from 1 on");
    }
    size_t most = verb.mostWords;
    if (verb.run == watch) {
        // A command's words, all behind the sign for them: a module's name is none.
        const auto sign = std::find(arguments.begin(), arguments.end(), "--");
        most = static_cast<size_t>(arguments.end() - sign) - (sign == arguments.end() ? 0 : 1);
        most = options.words.size() > most ? 0 : most;
    }
    if (options.words.size() < verb.fewestWords || options.words.size() > most) {
        const bool few = options.words.size() < verb.fewestWords;
        throw Failure(Exit::Usage, std::string(few ? "too few words" : "one word too many: ") +
                                           (few ? "" : inQuotes(options.words[most])) + "; usage: fapictl " +
                                           verb.name + " " + verb.arguments);
    }
    warnAboutUselessOptions(parser, verb, err);
    // These go by the time themselves.
    const bool watched = options.timeout && verb.run != wait && verb.run != watch && verb.run != monitor &&
                         verb.run != check && verb.run != session && verb.run != serve;
    const std::optional<Watchdog> watchdog =
            watched ? std::optional<Watchdog>(std::in_place, *options.timeout, err) : std::nullopt;
    Engine engine(package);
    return verb.run({package, engine, options, out, err});
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
             Words::Interfaces,
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
             Words::Method,
             {"json", "no-legend"},
             0,
             2,
             introspect},
            {"call",
             "INTERFACE METHOD [ARG...]",
             "call a method and show its results",
             kCallHelp,
             Words::Method,
             {"args", "json", "no-legend", "instance", "timeout", "out", "progress", "raw"},
             2,
             kAnyNumber,
             call},
            {"wait",
             "[INTERFACE...]",
             "wait until services are registered",
             "Waits until the interfaces are registered, all of them when none is given, for ever without "
             "--timeout;\n"
             "with --ready, until calls are no longer answered with -5, not ready, too.\n",
             Words::Interfaces,
             {"json", "no-legend", "instance", "timeout", "ready"},
             0,
             kAnyNumber,
             wait},
            {"watch",
             "[-- COMMAND ARG...]",
             "show events as they come in",
             kWatchHelp,
             Words::None,
             {"module", "type", "match", "count", "timeout", "json", "quiet", "instance"},
             0,
             kAnyNumber,
             watch},
            {"post",
             "TYPE [RECORD...]",
             "send an event to every client",
             kPostHelp,
             Words::Event,
             {"json", "no-legend", "instance", "timeout"},
             1,
             5,
             post},
            {"capture",
             "FILE.png [LAYERS]",
             "show what the simulated board's panel shows",
             kCaptureHelp,
             Words::Capture,
             {"instance", "timeout"},
             1,
             2,
             capture},
            {"edid",
             "PORT [FILE]",
             "show the EDID of an HDMI port",
             "Shows the EDID of an HDMI port as edid-decode reads it, or its bytes where that program is not "
             "installed,\n"
             "or writes it to a file; - is standard output.\n\n"
             "  fapictl edid 1\n"
             "  fapictl edid 1 port1.bin\n",
             Words::None,
             {"instance", "timeout"},
             1,
             2,
             edid},
            {"debug",
             "INTERFACE [WORD...]",
             "show what a service writes of its state",
             "Asks a service for its state in words, and shows what it writes. The WORDs go to the service "
             "as "
             "they are.\n"
             "An INTERFACE may hold * and ?.\n\n"
             "  fapictl debug manager\n"
             "  fapictl debug '*' | grep -E '^(interface|calls)'\n"
             "  fapictl debug manager -- --help\n",
             Words::Interfaces,
             {"instance", "timeout"},
             1,
             kAnyNumber,
             debug},
            {"monitor",
             "[INTERFACE [METHOD]]",
             "show the calls that clients make",
             kMonitorHelp,
             Words::Method,
             {"json", "count", "timeout", "quiet", "instance"},
             0,
             2,
             monitor},
            {"replay",
             "FILE",
             "make calls again that monitor has shown, and compare the results",
             kReplayHelp,
             Words::None,
             {"json", "ignore", "timeout", "instance"},
             1,
             1,
             replay},
            {"check",
             "[FOLDER]",
             "see whether a chip-layer library is sound",
             kCheckHelp,
             Words::None,
             {"json", "no-legend", "timeout", "all"},
             0,
             1,
             check},
            {"session",
             "",
             "serve requests of a program on standard input",
             kSessionHelp,
             Words::None,
             {"instance", "timeout"},
             0,
             0,
             session},
            {"serve",
             "",
             "serve a page for browsers",
             kServeHelp,
             Words::None,
             {"port", "open", "instance", "timeout"},
             0,
             0,
             serve},
    };
    return all;
}

void writeBytes(const Context& context, const std::string& path, std::string_view bytes) {
    std::ofstream file;
    if (path != "-") {
        file.open(path, std::ios::binary | std::ios::trunc);
    }
    std::ostream& out = path == "-" ? context.out : file;
    if (!(out << bytes).flush()) {
        throw Failure(Exit::Output, "cannot write " + inQuotes(path) + ": " + std::strerror(errno));
    }
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
