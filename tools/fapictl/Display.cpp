#include "tools/fapictl/Display.h"

#include <algorithm>

namespace fapictl {
namespace {

/** Bytes that are still readable beside their name; more are shown as a dump. */
constexpr size_t kInlineBytes = 16;
constexpr size_t kListWidth = 72;
/** Numbers from here on are shown in hexadecimal too: addresses, masks and registers are read that way. */
constexpr uint64_t kHexadecimalFrom = 256;

std::string hexadecimal(uint64_t number) {
    char text[2 + 16 + 1];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

const Enumerator* findEnumerator(const Type& type, const Json& value) {
    const auto at = std::find_if(type.enumerators.begin(), type.enumerators.end(),
                                 [&](const Enumerator& one) { return one.value == value; });
    return at == type.enumerators.end() ? nullptr : &*at;
}

std::string scalarText(const Field& field, const Json& value, bool hex) {
    const Type& type = *field.type;
    switch (type.kind) {
        case Type::Kind::Text:
            return inQuotes(value.get_ref<const std::string&>());
        case Type::Kind::Enumeration: {
            const Enumerator* enumerator = findEnumerator(type, value);
            return enumerator == nullptr ? value.dump() + " (no name)"
                                         : enumerator->name + " (" + value.dump() + ")";
        }
        case Type::Kind::Integer:
            if (!field.label.unit.empty()) {
                return value.dump() + " " + field.label.unit;
            }
            if (hex && type.minimum == 0 && value.get<uint64_t>() >= kHexadecimalFrom) {
                return value.dump() + " (" + hexadecimal(value.get<uint64_t>()) + ")";
            }
            return value.dump();
        default:
            return value.is_string() ? value.get<std::string>() : value.dump();
    }
}

std::vector<std::string> bytesText(const std::vector<uint8_t>& bytes) {
    const std::string count = std::to_string(bytes.size()) + (bytes.size() == 1 ? " byte" : " bytes");
    if (bytes.size() > kInlineBytes) {
        std::vector<std::string> lines = hexDump(bytes);
        lines.insert(lines.begin(), count);
        return lines;
    }
    std::string line = bytes.empty() ? "" : ":";
    for (const uint8_t byte : bytes) {
        line += " " + toHex({byte});
    }
    return {count + line};
}

bool hasParts(const Type& type) {
    return type.kind == Type::Kind::Record ||
           (type.kind == Type::Kind::List && !type.isBytes() &&
            (type.element->kind == Type::Kind::Record || type.element->kind == Type::Kind::List));
}

void addParts(Table& table, const Field& field, const Json& value, const std::string& indent) {
    const Type& type = *field.type;
    const std::vector<std::string> cells = {indent + field.label.name, type.name};
    if (type.isBytes()) {
        table.row(cells, bytesText(value.get_binary()));
    } else if (type.kind == Type::Kind::Record) {
        table.row(cells);
        for (const Field& part : type.fields) {
            addParts(table, part, value.at(part.label.name), indent + "  ");
        }
    } else if (type.kind == Type::Kind::List) {
        std::string line = value.empty() ? "0 elements" : "";
        for (const Json& element : value) {
            if (!hasParts(type)) {
                line += (line.empty() ? "" : ", ") + scalarText({field.label, type.element}, element, false);
            }
        }
        if (!hasParts(type) || value.empty()) {
            table.row(cells, wrapped(line, kListWidth));
            return;
        }
        table.row({cells[0], cells[1],
                   std::to_string(value.size()) + (value.size() == 1 ? " element" : " elements")});
        for (size_t i = 0; i < value.size(); ++i) {
            addParts(table, {{"[" + std::to_string(i) + "]", field.label.unit, ""}, type.element}, value[i],
                     indent + "  ");
        }
    } else {
        table.row({cells[0], cells[1], scalarText(field, value, true)});
    }
}

}  // namespace

void addRows(Table& table, const Field& field, const Json& value, const std::string& status) {
    if (status.empty()) {
        addParts(table, field, value, "");
    } else {
        table.row({field.label.name, field.type->name, value.dump() + " (" + status + ")"});
    }
}

Json forPrograms(const Type& type, const Json& value) {
    if (type.isBytes()) {
        return toHex(value.get_binary());
    }
    if (type.kind == Type::Kind::Enumeration) {
        const Enumerator* enumerator = findEnumerator(type, value);
        return enumerator == nullptr ? value : Json(enumerator->name);
    }
    Json out = value;
    if (type.kind == Type::Kind::List) {
        for (Json& element : out) {
            element = forPrograms(*type.element, element);
        }
    } else if (type.kind == Type::Kind::Record) {
        for (const Field& field : type.fields) {
            out[field.label.name] = forPrograms(*field.type, value.at(field.label.name));
        }
    }
    return out;
}

std::string jsonText(const Json& json, bool pretty) {
    return json.dump(pretty ? 2 : -1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace fapictl
