#include "fuzz/Values.h"

using fapictl::Json;
using fapictl::Type;
using fuzz::Choices;

namespace {

enum Extreme : uint8_t { kPlainest, kGreatest, kLeast, kFree };

/** What the board has by name: files, parameters, orders. */
constexpr const char* kWords[] = {
        "panel",
        "backlight:level",
        "board",
        "status:-102",
        "identity",
        "signal 1 none",
        "sys_init -1",
        "/data/fuzz",
        "/",
        "../..",
        "/dev/zero",
        "key power",
        "disp 0x40005",
        "eth0",
        "a.ini",
        "system",
        "fw_main",
        "192.168.0.1",
        "uboot",
        "serial",
        "EDID_1",
        "0",
        "/data/../etc",
        "ready",
};

Json makeInteger(const Type& type, Choices& choices) {
    const uint64_t range = type.maximum - static_cast<uint64_t>(type.minimum);
    const uint8_t choice = choices.byte();
    uint64_t above = 0;  // the least
    if (choice == kPlainest || (choice >= kFree && choice < 128)) {
        const size_t few = choice == kPlainest ? 0 : choice - kFree;
        if (choice != kPlainest && !type.enumerators.empty()) {
            return type.enumerators[few % type.enumerators.size()].value;
        }
        above = std::min(few, range) - static_cast<uint64_t>(type.minimum);
    } else if (choice == kGreatest) {
        above = range;
    } else if (choice >= 128) {
        above = range == UINT64_MAX ? choices.number() : choices.number() % (range + 1);
    }
    const uint64_t value = above + static_cast<uint64_t>(type.minimum);
    return type.minimum < 0 ? Json(static_cast<int64_t>(value)) : Json(value);
}

Json makeText(Choices& choices) {
    const uint8_t choice = choices.byte();
    switch (choice) {
        case kPlainest:
            return "";
        case kGreatest:
            return std::string(5000, 'A');
        case kLeast:
            return std::string(300, '\xff');
        default:
            return choice < 128 ? kWords[static_cast<size_t>(choice - kFree) % std::size(kWords)]
                                : choices.text(choice - 127U);
    }
}

size_t makeCount(Choices& choices) {
    const uint8_t choice = choices.byte();
    return choice == kGreatest ? 65536 : choice == kLeast ? 257 : choice == 255 ? 256 : choice % 32U;
}

}  // namespace

Json fuzz::makeValue(const Type& type, Choices& choices) {
    switch (type.kind) {
        case Type::Kind::Boolean:
            return choices.byte() % 2 == 1;
        case Type::Kind::Integer:
        case Type::Kind::Enumeration:
            return makeInteger(type, choices);
        case Type::Kind::Text:
            return makeText(choices);
        case Type::Kind::Record: {
            Json record = Json::object();
            for (const fapictl::Field& field : type.fields) {
                record[field.label.name] = makeValue(*field.type, choices);
            }
            return record;
        }
        case Type::Kind::List: {
            const size_t count = type.count.value_or(0) != 0 ? *type.count : makeCount(choices);
            if (type.isBytes()) {
                std::string bytes = choices.text(count);
                bytes.resize(count, static_cast<char>(choices.byte()));
                return Json::binary({bytes.begin(), bytes.end()});
            }
            Json list = Json::array();
            for (size_t i = 0; i < count; ++i) {
                // Thousands of elements are there for their number.
                list.push_back(i < 512 ? makeValue(*type.element, choices) : list.back());
            }
            return list;
        }
        case Type::Kind::Interface:
            return nullptr;
    }
    return nullptr;
}
