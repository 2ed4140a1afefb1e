#include "tools/fapictl/TracedCall.h"

#include <algorithm>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

/** Elements of a list that a line shows. */
constexpr size_t kElementsInShort = 16;

[[noreturn]] void refuse(const std::string& where, const std::string& reason) {
    throw Failure(Exit::Usage, where + ": " + reason);
}

const std::string& member(const Json& line, const char* name, const std::string& where) {
    const auto at = line.find(name);
    if (at == line.end() || !at->is_string()) {
        refuse(where, std::string("no call, which has a text \"") + name + '"');
    }
    return at->get_ref<const std::string&>();
}

/** A place for each, and no other. */
void checkNames(const std::vector<Field>& fields, const Json& values, const char* group,
                const std::string& where) {
    if (!values.is_object()) {
        refuse(where, std::string("\"") + group + "\" is no object");
    }
    for (const Field& field : fields) {
        if (!values.contains(field.label.name)) {
            refuse(where, std::string(group) + " without " + field.label.name);
        }
    }
    if (values.size() != fields.size()) {
        refuse(where, std::string("more ") + group + " than the method has");
    }
}

const Enumerator* findEnumerator(const Type& type, const Json& value) {
    const auto at =
            std::find_if(type.enumerators.begin(), type.enumerators.end(), [&](const Enumerator& one) {
                return value == one.value || (value.is_string() && value == one.name);
            });
    return at == type.enumerators.end() ? nullptr : &*at;
}

bool isWithheld(const Json& value) {
    return value.is_string() && value.get_ref<const std::string&>()[0] == '<';
}

/** Of a text's place: {"hex": ...} too. */
std::string textOf(const Json& value, const std::string& where) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    static const Type byte = {Type::Kind::Integer, "uint8_t", 0, UINT8_MAX};
    static const Type bytes = {Type::Kind::List, "bytes", 0, 0, {}, {}, &byte};
    if (!value.is_object() || !value.contains("hex")) {
        refuse(where, "no text");
    }
    const std::vector<uint8_t> characters = tracedValue(bytes, value["hex"], where).get_binary();
    return {characters.begin(), characters.end()};
}

Json withNames(const Type& type, const Json& value) {
    if (const Enumerator* enumerator = findEnumerator(type, value)) {
        return enumerator->name;
    }
    Json out = value;
    if (type.kind == Type::Kind::List && value.is_array()) {
        for (Json& element : out) {
            element = withNames(*type.element, element);
        }
    } else if (type.kind == Type::Kind::Record) {
        out = tracedJson(type.fields, value);
    }
    return out;
}

}  // namespace

TracedCall parseTracedCall(const Package& package, const Json& line, const std::string& where) {
    if (!line.is_object()) {
        refuse(where, "no call, which is a JSON object");
    }
    const std::string& interfaceName = member(line, "interface", where);
    const std::string& methodName = member(line, "method", where);
    TracedCall call = {};
    try {
        call.interface = &findInterface(package, interfaceName);
        call.method = &findMethod(*call.interface, methodName);
    } catch (const Failure& failure) {
        refuse(where, failure.what());
    }
    call.arguments = line.value("arguments", Json());
    call.results = line.value("results", Json());
    checkNames(call.method->arguments, call.arguments, "arguments", where);
    if (!call.results.is_null()) {
        checkNames(call.method->results, call.results, "results", where);
    }
    return call;
}

std::string titleOf(const TracedCall& call) {
    return shortName(*call.interface) + "." + shortName(*call.interface, *call.method);
}

std::optional<int64_t> statusOf(const TracedCall& call) {
    const std::optional<size_t> outcome = call.method->outcome();
    if (!outcome || call.results.is_null()) {
        return std::nullopt;
    }
    const Json& result = call.results.at(call.method->results[*outcome].label.name);
    return result.is_number_integer() ? std::optional(result.get<int64_t>()) : std::nullopt;
}

std::string tracedText(const Type& type, const Json& value) {
    if (type.kind == Type::Kind::Record) {
        return "{" + tracedText(type.fields, value) + "}";
    }
    if (type.kind == Type::Kind::Text) {
        return quotedInShort(textOf(value, ""));
    }
    if (const Enumerator* enumerator = findEnumerator(type, value)) {
        return enumerator->name;
    }
    if (type.kind == Type::Kind::List && value.is_array()) {
        std::string out;
        const size_t shown = std::min(value.size(), kElementsInShort);
        for (size_t i = 0; i < shown; ++i) {
            out += (i == 0 ? "" : ", ") + tracedText(*type.element, value[i]);
        }
        return "[" + out + "]" +
               (shown == value.size() ? "" : "…(" + std::to_string(value.size()) + " elements)");
    }
    if (type.isBytes() && !isWithheld(value)) {
        return "[" + toHexInShort(tracedValue(type, value, "").get_binary()) + "]";
    }
    return value.is_string() ? escaped(value.get_ref<const std::string&>()) : value.dump();
}

std::string tracedText(const std::vector<Field>& fields, const Json& values) {
    std::string out;
    for (const Field& field : fields) {
        out += (out.empty() ? "" : ", ") + field.label.name + "=" +
               tracedText(*field.type, values.at(field.label.name));
    }
    return out;
}

Json tracedJson(const std::vector<Field>& fields, const Json& values) {
    Json out = Json::object();
    for (const Field& field : fields) {
        out[field.label.name] = withNames(*field.type, values.at(field.label.name));
    }
    return out;
}

Json forTrace(const Type& type, const Json& value) {
    if (type.isBytes()) {
        return toHex(value.get_binary());
    }
    Json out = value;
    if (type.kind == Type::Kind::List) {
        for (Json& element : out) {
            element = forTrace(*type.element, element);
        }
    }
    for (const Field& field : type.fields) {
        out[field.label.name] = forTrace(*field.type, value.at(field.label.name));
    }
    return out;
}

std::string whyNotRepeatable(const Type& type, const Json& value) {
    if (type.kind == Type::Kind::Interface && !value.is_null()) {
        return "it takes an object of the caller's";
    }
    return type.isBytes() && isWithheld(value) ? "the service has withheld a secret" : "";
}

Json tracedValue(const Type& type, const Json& value, const std::string& where) {
    if (type.kind == Type::Kind::Text) {
        return textOf(value, where);
    }
    if (type.kind == Type::Kind::Record) {
        checkNames(type.fields, value, "fields", where);
        Json out = Json::object();
        for (const Field& field : type.fields) {
            out[field.label.name] = tracedValue(*field.type, value.at(field.label.name), where);
        }
        return out;
    }
    if (type.kind == Type::Kind::List && !type.isBytes() && value.is_array() &&
        value.size() == type.count.value_or(value.size())) {
        Json out = Json::array();
        for (const Json& element : value) {
            out.push_back(tracedValue(*type.element, element, where));
        }
        return out;
    }
    // A text would stand for a file's contents, or for values as people write them.
    const bool named = type.kind == Type::Kind::Enumeration && findEnumerator(type, value) != nullptr;
    const bool hexadecimal =
            type.isBytes() && value.is_string() &&
            value.get_ref<const std::string&>().find_first_not_of("0123456789abcdef") == std::string::npos;
    if (value.is_string() && !named && !hexadecimal) {
        refuse(where, "no " + type.name + ": " + inQuotes(value.get_ref<const std::string&>()));
    }
    return checkValue(type, value, where);
}

}  // namespace fapictl
