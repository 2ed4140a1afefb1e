#include "tools/fapictl/Complete.h"

#include <algorithm>
#include <set>
#include <utility>

#include "tools/fapictl/Events.h"
#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Values.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

bool startsWith(const std::string& text, const std::string& start) {
    return text.size() >= start.size() && equalIgnoringCase(text.substr(0, start.size()), start);
}

/** Joins what the shell has split at '=' and ':'. */
std::vector<std::string> joined(const std::vector<std::string>& words) {
    std::vector<std::string> out;
    bool glue = false;
    for (const std::string& word : words) {
        const bool mark = !word.empty() && word.find_first_not_of("=:") == std::string::npos;
        if (!out.empty() && (mark || glue)) {
            out.back() += word;
        } else {
            out.push_back(word);
        }
        glue = mark;
    }
    return out;
}

/** The verb, its words and the one to complete; options and their values are left out. */
struct Line {
    const Verb* verb = nullptr;
    std::vector<std::string> words;
    std::string current;
    std::string optionBefore;  // the current word is this option's value
};

Line parse(const std::vector<std::string>& words) {
    static const std::set<std::string> withValue = {"--instance", "--timeout", "--out",
                                                    "--module",   "--count",   "--type",
                                                    "--match",    "--args",    "--ignore"};
    Line line;
    line.current = words.back();
    for (size_t i = 0; i + 1 < words.size(); ++i) {
        if (withValue.count(words[i]) > 0) {
            if (i + 2 == words.size()) {
                line.optionBefore = words[i];
            }
            ++i;
        } else if (startsWith(words[i], "--")) {
            continue;
        } else if (line.verb == nullptr) {
            const auto at = std::find_if(verbs().begin(), verbs().end(),
                                         [&](const Verb& verb) { return words[i] == verb.name; });
            if (at == verbs().end()) {
                line.optionBefore = "unknown verb";
                return line;
            }
            line.verb = &*at;
        } else {
            line.words.push_back(words[i]);
        }
    }
    return line;
}

std::vector<std::string> keep(std::vector<std::string> candidates, const std::string& start) {
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(),
                                    [&](const std::string& one) { return !startsWith(one, start); }),
                     candidates.end());
    return candidates;
}

/** The names that begin as the word does: the shortest forms, or longer ones when that is what is being
 * typed. */
template <class T, class Short>
std::vector<std::string> names(const std::vector<T>& all, const std::string& start, Short shortest) {
    std::vector<std::string> candidates;
    for (const T& one : all) {
        candidates.push_back(shortest(one));
    }
    candidates = keep(candidates, start);
    if (!candidates.empty()) {
        return candidates;
    }
    for (const T& one : all) {
        const std::vector<std::string> fitting = keep(forms(one), start);
        if (!fitting.empty()) {
            candidates.push_back(fitting.back());
        }
    }
    return candidates;
}

std::vector<std::string> completeArgument(const Method& method, const Line& line) {
    std::set<std::string> named;
    size_t positional = 0;
    for (size_t i = 2; i < line.words.size(); ++i) {
        const size_t end = line.words[i].find_first_of("=.[");
        if (end == std::string::npos) {
            ++positional;
        } else {
            named.insert(line.words[i].substr(0, end));
        }
    }
    std::vector<std::string> candidates;
    bool next = true;  // this argument is the one that a word without a name gives
    for (const Field& argument : method.arguments) {
        const std::string& name = argument.label.name;
        if (named.count(name) > 0) {
            continue;
        }
        if (positional > 0) {
            --positional;
            continue;
        }
        if (std::exchange(next, false)) {
            candidates = choices(*argument.type);
        }
        const std::string prefix = name + "=";
        if (startsWith(line.current, prefix)) {
            for (const std::string& choice : choices(*argument.type)) {
                candidates.push_back(prefix + choice);
            }
        } else {
            candidates.push_back(prefix);
        }
    }
    return keep(candidates, line.current);
}

}  // namespace

std::vector<std::string> complete(const Package& package, const std::vector<std::string>& split) {
    const std::vector<std::string> words = joined(split.empty() ? std::vector<std::string>{""} : split);
    const Line line = parse(words);
    if (line.optionBefore == "--module") {
        return keep(eventModules(), line.current);
    }
    if (!line.optionBefore.empty()) {
        return {};
    }
    if (startsWith(line.current, "--module=")) {
        std::vector<std::string> candidates = eventModules();
        for (std::string& one : candidates) {
            one.insert(0, "--module=");
        }
        return keep(candidates, line.current);
    }
    if (startsWith(line.current, "--json=")) {
        return keep({"--json=short", "--json=pretty"}, line.current);
    }
    if (startsWith(line.current, "-")) {
        std::vector<std::string> options = {"--help"};
        for (const Verb& verb : verbs()) {
            if (line.verb == nullptr || line.verb == &verb) {
                for (const std::string& option : verb.options) {
                    options.push_back("--" + option);
                }
            }
        }
        std::sort(options.begin(), options.end());
        options.erase(std::unique(options.begin(), options.end()), options.end());
        return keep(options, line.current);
    }
    if (line.verb == nullptr) {
        std::vector<std::string> all;
        for (const Verb& verb : verbs()) {
            all.push_back(verb.name);
        }
        return keep(all, line.current);
    }
    if (line.verb->words == Words::None || line.words.size() >= line.verb->mostWords) {
        return {};
    }
    if (line.verb->words == Words::Event) {
        return line.words.empty() ? std::vector<std::string>()
                                  : keep({"value=", "text=", "bytes="}, line.current);
    }
    if (line.verb->words == Words::Capture) {
        return line.words.empty() ? std::vector<std::string>() : keep(captureLayers(), line.current);
    }
    if (line.words.empty() || line.verb->words == Words::Interfaces) {
        return names(package.interfaces, line.current, [](const Interface& one) { return shortName(one); });
    }
    try {
        const Interface& interface = findInterface(package, line.words[0]);
        if (line.words.size() == 1) {
            return names(interface.methods, line.current,
                         [&](const Method& one) { return shortName(interface, one); });
        }
        if (line.verb->mostWords > line.words.size()) {
            return completeArgument(findMethod(interface, line.words[1]), line);
        }
    } catch (const Failure&) {
        // A name that does not exist has no arguments to offer.
    }
    return {};
}

}  // namespace fapictl
