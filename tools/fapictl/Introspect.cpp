#include <algorithm>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

constexpr size_t kWidth = 100;

using Types = std::vector<const Type*>;

/** Adds the records and enumerations that the type is made of, each once, before those that use it. */
void collect(const Type& type, Types& types) {
    if (type.element != nullptr) {
        collect(*type.element, types);
    }
    for (const Field& field : type.fields) {
        collect(*field.type, types);
    }
    const bool named = type.kind == Type::Kind::Record || type.kind == Type::Kind::Enumeration;
    if (named && std::find(types.begin(), types.end(), &type) == types.end()) {
        types.push_back(&type);
    }
}

Types typesOf(const Method& method) {
    Types types;
    for (const auto* fields : {&method.arguments, &method.results}) {
        for (const Field& field : *fields) {
            collect(*field.type, types);
        }
    }
    return types;
}

std::string firstSentence(const std::string& doc) {
    const size_t end = std::min(doc.find(". "), doc.find('\n'));
    const std::string sentence = doc.substr(0, end);
    return sentence.empty() || sentence.back() == '.' || end == std::string::npos ? sentence : sentence + ".";
}

std::string signature(const std::string& name, const Method& method) {
    const auto join = [](const std::vector<Field>& fields) {
        std::string text;
        for (const Field& field : fields) {
            text += (text.empty() ? "" : ", ") + field.type->name + " " + field.label.name;
        }
        return "(" + text + ")";
    };
    return (method.oneway ? "oneway " : "") + name + join(method.arguments) +
           (method.results.empty() ? "" : " -> " + join(method.results));
}

void printText(std::ostream& out, const std::string& text, const std::string& indent) {
    if (text.empty()) {
        return;
    }
    for (const std::string& line : wrapped(text, kWidth - indent.size())) {
        out << (line.empty() ? "" : indent) << line << '\n';
    }
}

std::string meaning(const Label& label) {
    return (label.unit.empty() ? "" : "[" + label.unit + "] ") + label.doc;
}

/** Tables one below the other, with an empty line between them. */
class Sections {
  public:
    Sections(std::ostream& out, bool first) : mOut(out), mFirst(first) {}

    void print(const Table& table) {
        if (!table.empty()) {
            mOut << (mFirst ? "" : "\n");
            table.print(mOut, true);
            mFirst = false;
        }
    }

  private:
    std::ostream& mOut;
    bool mFirst;
};

Table tableOf(const char* title, const std::vector<Field>& fields) {
    Table table({title, "TYPE", "MEANING"});
    for (const Field& field : fields) {
        table.row({field.label.name, field.type->name}, wrapped(meaning(field.label), kWidth / 2));
    }
    return table;
}

Table tableOf(const Type& type) {
    if (type.kind == Type::Kind::Record) {
        return tableOf(type.name.c_str(), type.fields);
    }
    Table table({type.name, "NUMBER", "MEANING"});
    for (const Enumerator& one : type.enumerators) {
        table.row({one.name, one.value.dump()}, wrapped(one.doc, kWidth / 2));
    }
    return table;
}

void printMethod(const Context& context, const Interface& interface, const Method& method) {
    std::ostream& out = context.out;
    const std::string name = shortName(interface, method);
    if (!context.options.noLegend) {
        out << method.name << " of " << interface.descriptor << (method.oneway ? ", one-way" : "")
            << (method.doc.empty() ? "\n" : "\n\n");
        printText(out, method.doc, "");
    }
    Sections sections(out, context.options.noLegend);
    sections.print(tableOf("ARGUMENT", method.arguments));
    sections.print(tableOf("RESULT", method.results));
    for (const Type* type : typesOf(method)) {
        sections.print(tableOf(*type));
    }
    if (!context.options.noLegend && interface.isService) {
        out << "\nfapictl call " << shortName(interface) << ' ' << name;
        for (const Field& argument : method.arguments) {
            out << ' ' << argument.label.name << "=...";
        }
        out << '\n';
    }
}

void printInterface(const Context& context, const Interface& interface,
                    const std::vector<const Method*>& methods) {
    std::ostream& out = context.out;
    if (!context.options.noLegend) {
        out << interface.descriptor << (interface.isService ? "" : ", implemented by clients") << "\n\n";
        printText(out, interface.doc, "    ");
    }
    for (const Method* method : methods) {
        out << (context.options.noLegend ? "" : "\n") << signature(shortName(interface, *method), *method)
            << '\n';
        if (!context.options.noLegend) {
            printText(out, firstSentence(method->doc), "    ");
        }
    }
}

Json describe(const std::vector<Field>& fields) {
    Json json = Json::array();
    for (const Field& field : fields) {
        Json one = {{"name", field.label.name}, {"type", field.type->name}};
        if (!field.label.unit.empty()) {
            one["unit"] = field.label.unit;
        }
        one["doc"] = field.label.doc;
        json.push_back(std::move(one));
    }
    return json;
}

Json describe(const Interface& interface, const std::vector<const Method*>& methods) {
    Json list = Json::array();
    Types types;
    for (const Method* method : methods) {
        list.push_back({{"name", method->name},
                        {"shortName", shortName(interface, *method)},
                        {"doc", method->doc},
                        {"oneway", method->oneway},
                        {"arguments", describe(method->arguments)},
                        {"results", describe(method->results)}});
        for (const Type* type : typesOf(*method)) {
            collect(*type, types);
        }
    }
    Json named = Json::object();
    for (const Type* type : types) {
        if (type->kind == Type::Kind::Record) {
            named[type->name]["fields"] = describe(type->fields);
        } else {
            Json enumerators = Json::array();
            for (const Enumerator& one : type->enumerators) {
                enumerators.push_back({{"name", one.name}, {"value", one.value}, {"doc", one.doc}});
            }
            named[type->name]["enumerators"] = std::move(enumerators);
        }
    }
    return {{"interface", interface.descriptor},
            {"shortName", shortName(interface)},
            {"service", interface.isService},
            {"doc", interface.doc},
            {"methods", list},
            {"types", named}};
}

struct Selection {
    const Interface* interface;
    std::vector<const Method*> methods;
};

std::vector<Selection> select(const Package& package, const std::vector<std::string>& words) {
    std::vector<Selection> selections;
    const std::vector<const Interface*> interfaces =
            selectInterfaces(package, words.empty() ? "*" : words[0]);
    for (const Interface* interface : interfaces) {
        Selection selection = {interface, {}};
        if (words.size() > 1 && interfaces.size() == 1 && !isPattern(words[1])) {
            selection.methods = {&findMethod(*interface, words[1])};
        } else {
            selection.methods = matchMethods(*interface, words.size() > 1 ? words[1] : "*");
        }
        if (words.size() < 2 || !selection.methods.empty()) {
            selections.push_back(std::move(selection));
        }
    }
    if (selections.empty()) {
        throw Failure(Exit::Usage, "no method matches " + inQuotes(words[1]));
    }
    return selections;
}

}  // namespace

Json introspection(const Package& package, const std::vector<std::string>& names) {
    Json json = Json::array();
    for (const Selection& selection : select(package, names)) {
        json.push_back(describe(*selection.interface, selection.methods));
    }
    return json;
}

Exit introspect(const Context& context) {
    const Options& options = context.options;
    if (!options.json.empty()) {
        printJson(context, introspection(context.package, options.words));
        return Exit::Success;
    }
    const std::vector<Selection> selections = select(context.package, options.words);
    if (options.words.empty()) {
        Table table({"INTERFACE", "METHODS", "PURPOSE"});
        for (const Selection& selection : selections) {
            const Interface& interface = *selection.interface;
            table.row({shortName(interface), std::to_string(interface.methods.size()),
                       firstSentence(interface.doc)});
        }
        table.print(context.out, !options.noLegend);
    } else {
        // A pattern asks which methods there are, a name what one of them does.
        const bool one =
                options.words.size() > 1 && !isPattern(options.words[0]) && !isPattern(options.words[1]);
        const char* separator = "";
        for (const Selection& selection : selections) {
            context.out << separator;
            if (one) {
                printMethod(context, *selection.interface, *selection.methods.front());
            } else {
                printInterface(context, *selection.interface, selection.methods);
            }
            separator = options.noLegend ? "" : "\n";
        }
    }
    return Exit::Success;
}

}  // namespace fapictl
