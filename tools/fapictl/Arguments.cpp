#include "tools/fapictl/Arguments.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

/** name.part=value taken apart. */
struct Assignment {
    std::string_view name;
    std::string_view part;  // with its leading '.' or '['
    std::string_view value;
};

bool split(std::string_view word, Assignment& out) {
    const size_t equals = word.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const std::string_view left = word.substr(0, equals);
    const size_t end = std::min(left.find_first_of(".["), left.size());
    out = {left.substr(0, end), left.substr(end), word.substr(equals + 1)};
    return true;
}

std::vector<std::string> argumentNames(const Method& method) {
    std::vector<std::string> names;
    for (const Field& argument : method.arguments) {
        names.push_back(argument.label.name);
    }
    return names;
}

size_t findArgument(const Method& method, std::string_view name) {
    const auto at =
            std::find_if(method.arguments.begin(), method.arguments.end(),
                         [&](const Field& argument) { return equalIgnoringCase(argument.label.name, name); });
    return static_cast<size_t>(at - method.arguments.begin());
}

bool holdsRecords(const Type& type) {
    return type.kind == Type::Kind::Record || (type.element != nullptr && holdsRecords(*type.element));
}

bool isName(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
}

/**
 * A positional word with a '=' in it is an argument's name with a slip of the hand, unless its place is one
 * where such words may stand.
 */
void refuseMisspeltName(const Method& method, const Field& argument, const std::string& word) {
    Assignment assignment;
    if (argument.type->kind != Type::Kind::Text && !holdsRecords(*argument.type) && split(word, assignment) &&
        isName(assignment.name)) {
        throw Failure(Exit::Usage, "no argument " + inQuotes(assignment.name) +
                                           suggestion(assignment.name, argumentNames(method)));
    }
}

void requireAll(const Method& method, const std::vector<bool>& given) {
    const size_t missing = static_cast<size_t>(std::find(given.begin(), given.end(), false) - given.begin());
    if (missing < given.size()) {
        const Field& argument = method.arguments[missing];
        throw Failure(Exit::Usage, argumentTitle(argument) + " (" + argument.type->name + ") is missing" +
                                           (argument.label.doc.empty() ? "" : ": " + argument.label.doc));
    }
}

[[noreturn]] void refuseOneMore(const Method& method, std::string_view given) {
    const size_t count = method.arguments.size();
    throw Failure(Exit::Usage, "one argument too many: " + inQuotes(given) + "; " + method.name + " takes " +
                                       (count == 0 ? "none" : std::to_string(count)));
}

}  // namespace

std::string argumentTitle(const Field& argument) {
    return "argument " + argument.label.name;
}

Json bindArguments(const Method& method, const std::vector<std::string>& words) {
    const size_t count = method.arguments.size();
    Json values = Json::array();
    for (const Field& argument : method.arguments) {
        values.push_back(zeroValue(*argument.type));
    }
    std::vector<bool> given(count);
    std::vector<std::pair<size_t, Assignment>> named;
    std::vector<const std::string*> positional;
    for (const std::string& word : words) {
        Assignment assignment;
        const size_t index = split(word, assignment) ? findArgument(method, assignment.name) : count;
        if (index == count) {
            positional.push_back(&word);
        } else {
            named.emplace_back(index, assignment);
            given[index] = true;
        }
    }
    // A whole value must not undo the parts that stand before it.
    std::stable_partition(named.begin(), named.end(),
                          [](const auto& one) { return one.second.part.empty(); });
    std::set<std::pair<size_t, std::string_view>> seen;
    for (const auto& [index, assignment] : named) {
        const Field& argument = method.arguments[index];
        if (!seen.emplace(index, assignment.part).second) {
            throw Failure(Exit::Usage,
                          argumentTitle(argument) + std::string(assignment.part) + " is given twice");
        }
        assign(*argument.type, values[index], assignment.part, assignment.value, argumentTitle(argument));
    }

    size_t next = 0;
    for (const std::string* word : positional) {
        next = static_cast<size_t>(
                std::find(given.begin() + static_cast<ptrdiff_t>(next), given.end(), false) - given.begin());
        if (next == count) {
            refuseOneMore(method, *word);
        }
        const Field& argument = method.arguments[next];
        refuseMisspeltName(method, argument, *word);
        values[next] = parseValue(*argument.type, *word, argumentTitle(argument));
        given[next] = true;
    }
    requireAll(method, given);
    return values;
}

Json bindArguments(const Method& method, const Json& given) {
    const size_t count = method.arguments.size();
    if (!given.is_object() && !given.is_array()) {
        throw Failure(Exit::Usage,
                      std::string("the arguments are a JSON object or an array, not a ") + given.type_name());
    }
    Json values = Json::array();
    for (const Field& argument : method.arguments) {
        values.push_back(zeroValue(*argument.type));
    }
    std::vector<bool> present(count);
    const auto set = [&](size_t index, const Json& value) {
        const Field& argument = method.arguments[index];
        values[index] = checkValue(*argument.type, value, argumentTitle(argument));
        present[index] = true;
    };
    if (given.is_array()) {
        for (size_t i = 0; i < given.size(); ++i) {
            if (i == count) {
                refuseOneMore(method, given[i].dump());
            }
            set(i, given[i]);
        }
    } else {
        for (const auto& [name, value] : given.items()) {
            const size_t index = findArgument(method, name);
            if (index == count) {
                throw Failure(Exit::Usage,
                              "no argument " + inQuotes(name) + suggestion(name, argumentNames(method)));
            }
            if (present[index]) {
                throw Failure(Exit::Usage, argumentTitle(method.arguments[index]) + " is given twice");
            }
            set(index, value);
        }
    }
    requireAll(method, present);
    return values;
}

}  // namespace fapictl
