#include "tools/fapictl/Names.h"

#include <fnmatch.h>

#include <algorithm>
#include <numeric>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Text.h"

namespace fapictl {
namespace {

constexpr std::string_view kInterfacePrefix = "ZvtTvFApi";
constexpr std::string_view kMethodPrefixes[] = {"a_hidl_a_zvttvfapi_", "a_hidl_zvttvfapi_"};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool dropPrefix(std::string_view& name, std::string_view prefix) {
    if (name.size() <= prefix.size() || !equalIgnoringCase(name.substr(0, prefix.size()), prefix)) {
        return false;
    }
    name.remove_prefix(prefix.size());
    return true;
}

bool matches(const std::vector<std::string>& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& form) { return equalIgnoringCase(form, name); });
}

/** Picks by exact form, or by pattern; one place for interfaces and methods. */
template <class T>
std::vector<const T*> select(const std::vector<T>& all, std::string_view name) {
    std::vector<const T*> found;
    for (const T& one : all) {
        const std::vector<std::string> names = forms(one);
        const bool match = isPattern(name) ? std::any_of(names.begin(), names.end(),
                                                         [&](const std::string& form) {
                                                             return fnmatch(std::string(name).c_str(),
                                                                            form.c_str(), FNM_CASEFOLD) == 0;
                                                         })
                                           : matches(names, name);
        if (match) {
            found.push_back(&one);
        }
    }
    return found;
}

template <class T>
std::vector<std::string> allForms(const std::vector<T>& all) {
    std::vector<std::string> names;
    for (const T& one : all) {
        for (std::string& form : forms(one)) {
            names.push_back(std::move(form));
        }
    }
    return names;
}

}  // namespace

std::vector<std::string> forms(const Interface& interface) {
    std::vector<std::string> all = {interface.descriptor, interface.name};
    std::string_view rest = interface.name;
    if (dropPrefix(rest, "I")) {
        all.emplace_back(rest);
    }
    const bool prefixed = dropPrefix(rest, kInterfacePrefix);
    if (!interface.methods.empty()) {
        const std::vector<std::string> names = forms(interface.methods.front());
        if (names.size() > 2) {
            all.push_back(names[1].substr(0, names[1].find('_')));
        }
    }
    if (prefixed) {
        all.emplace_back(rest);
    }
    return all;
}

std::vector<std::string> forms(const Method& method) {
    std::vector<std::string> all = {method.name};
    std::string_view rest = method.name;
    for (const std::string_view prefix : kMethodPrefixes) {
        if (dropPrefix(rest, prefix)) {
            all.emplace_back(rest);
            const size_t module = rest.find('_');
            if (module != std::string_view::npos && module + 1 < rest.size()) {
                all.emplace_back(rest.substr(module + 1));
            }
            break;
        }
    }
    return all;
}

std::string shortName(const Interface& interface) {
    return forms(interface).back();
}

std::string shortName(const Interface& interface, const Method& method) {
    std::vector<std::string> names = forms(method);
    while (names.size() > 1 && select(interface.methods, names.back()).size() > 1) {
        names.pop_back();
    }
    return names.back();
}

bool isPattern(std::string_view name) {
    return name.find_first_of("*?") != std::string_view::npos;
}

const Interface& findInterface(const Package& package, std::string_view name) {
    return *selectInterfaces(package, name).front();
}

std::vector<const Interface*> selectInterfaces(const Package& package, std::string_view pattern) {
    const std::vector<const Interface*> found = select(package.interfaces, pattern);
    if (found.empty()) {
        throw Failure(Exit::Usage, "no interface " + inQuotes(pattern) +
                                           suggestion(pattern, allForms(package.interfaces)));
    }
    return found;
}

const Method& findMethod(const Interface& interface, std::string_view name) {
    // A whole name always means itself, even when another method's short form reads the same.
    for (const Method& method : interface.methods) {
        if (equalIgnoringCase(method.name, name)) {
            return method;
        }
    }
    std::vector<const Method*> found;
    if (!isPattern(name)) {
        found = matchMethods(interface, name);
    }
    if (found.empty()) {
        const std::string near = suggestion(name, allForms(interface.methods));
        const std::string advice = interface.methods.empty()
                                           ? "; " + shortName(interface) + " has no methods"
                                           : near + (near.empty() ? "; see" : " See") +
                                                     " fapictl introspect " + shortName(interface);
        throw Failure(Exit::Usage, "no method " + inQuotes(name) + " in " + shortName(interface) + advice);
    }
    if (found.size() > 1) {
        std::vector<std::string> names;
        for (const Method* method : found) {
            names.push_back(method->name);
        }
        throw Failure(Exit::Usage, inQuotes(name) + " could be any of " + listed(names));
    }
    return *found.front();
}

std::vector<const Method*> matchMethods(const Interface& interface, std::string_view pattern) {
    return select(interface.methods, pattern);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

size_t editDistance(std::string_view a, std::string_view b) {
    // Optimal string alignment: three rows of the usual table are enough.
    std::vector<size_t> before(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1])) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        std::swap(before, last);
        std::swap(last, row);
    }
    return last[b.size()];
}

std::string nearest(std::string_view name, const std::vector<std::string>& candidates) {
    std::string best;
    // More than a third wrong is another word, not a slip of the hand.
    size_t limit = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const size_t distance = editDistance(name, candidate);
        if (distance < limit && distance < candidate.size()) {
            limit = distance;
            best = candidate;
        }
    }
    if (!best.empty() || name.size() < 3) {
        return best;
    }
    // Part of a name: "version" for get_fapi_sw_version. The shortest is the likeliest.
    for (const std::string& candidate : candidates) {
        const auto part = std::search(candidate.begin(), candidate.end(), name.begin(), name.end(),
                                      [](char x, char y) { return lower(x) == lower(y); });
        if (part != candidate.end() && (best.empty() || candidate.size() < best.size())) {
            best = candidate;
        }
    }
    return best;
}

std::string suggestion(std::string_view name, const std::vector<std::string>& candidates) {
    const std::string near = nearest(name, candidates);
    return near.empty() ? "" : "; did you mean " + inQuotes(near) + "?";
}

std::string listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& one : names) {
        list += (list.empty() ? "" : ", ") + one;
    }
    return list;
}

std::string choiceOf(std::string_view name, const std::vector<std::string>& candidates) {
    constexpr size_t kFew = 8;
    if (candidates.empty() || candidates.size() > kFew) {
        return suggestion(name, candidates);
    }
    return (candidates.size() == 1 ? "; there is " : "; there are ") + listed(candidates);
}

}  // namespace fapictl
