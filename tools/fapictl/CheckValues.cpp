#include "tools/fapictl/CheckValues.h"

#include <algorithm>
#include <map>
#include <string>

#include "tools/fapictl/Display.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

/** The longest text that is tried. A call carries twice as much, and a second one of this length then fits.
 */
constexpr size_t kLongestText = 500'000;
constexpr size_t kShownBytes = 60;

/** Those of the factory's methods that change a board for good, by the ends of their names. */
constexpr const char* kDangerous[] = {
        // What survives a restart: keys, firmware, identity, calibration, configuration.
        "aud_load_aq_params",
        "disp_upgrade_vexa_fw",
        "info_set_ini_para",
        "inpsrc_auto_gain_offset",
        "inpsrc_set_adc_gain_offset",
        "inpsrc_set_adc_phase",
        "net_set_mac",
        "prphrl_reload_hdcp_key",
        "prphrl_set_hdmi_edid_data",
        "prphrl_write_to_i2c",
        "sys_change_file_mode",
        "sys_copy_file",
        "sys_create_file",
        "sys_create_folder",
        "sys_remove_file",
        "sys_secure_storage_encrypt_key",
        "sys_set_emmc_env_var",
        "sys_update_system_key",
        "sys_upgrade_fw",
        "sys_write_emmc",
        "sys_write_file",
        "sys_write_file_byte",
        // What the board or the way to it depends on: memory clock, panel, power, watchdog, network.
        "disp_panel_set_attr",
        "disp_set_output_timing",
        "net_set_interface_updown",
        "prphrl_control_gpio",
        "prphrl_switch_to_ttys1",
        "sys_set_miu_ssc",
        "sys_set_wdt",
        "sys_write_reg",
        // Whatever the library understands by it.
        "sys_send_cmd_to_factory_svc",
};

/** Further arguments of methods that refuse all plain ones before they come to the library. */
const std::map<std::string, std::vector<Json>> kFurther = {
        // The only attribute that there is, with an input of one byte and one of more.
        {"aud_get_attr",
         {{0x1001, Json::binary({0}), 1},
          {0x1001, Json::binary({255}), 1},
          {0x1001, Json::binary({1, 2}), 2}}},
};

bool isNamed(const Method& method, const std::string& name) {
    const std::vector<std::string> all = forms(method);
    return std::find(all.begin(), all.end(), name) != all.end();
}

enum class Extreme { Zero, One, Least, Most };

Json extreme(const Type& type, Extreme which) {
    const bool many = which == Extreme::Most;
    switch (type.kind) {
        case Type::Kind::Boolean:
            return which == Extreme::One || many;
        case Type::Kind::Integer:
        case Type::Kind::Enumeration:
            return which == Extreme::Zero  ? Json(0)
                   : which == Extreme::One ? Json(1)
                   : many                  ? Json(type.maximum)
                                           : Json(type.minimum);
        case Type::Kind::Text:
            return std::string(which == Extreme::One ? 1 : many ? 1024 : 0, 'a');
        case Type::Kind::Interface:
            return Json();
        case Type::Kind::List: {
            const size_t count = type.count.value_or(which == Extreme::One ? 1 : many ? 256 : 0);
            if (type.isBytes()) {
                return Json::binary(
                        std::vector<uint8_t>(count, extreme(*type.element, which).get<uint8_t>()));
            }
            Json list = Json::array();
            for (size_t i = 0; i < count; ++i) {
                list.push_back(extreme(*type.element, which));
            }
            return list;
        }
        case Type::Kind::Record: {
            Json record = Json::object();
            for (const Field& field : type.fields) {
                record[field.label.name] = extreme(*field.type, which);
            }
            return record;
        }
    }
    return Json();
}

std::vector<Json> bounds(const Type& type) {
    std::vector<Json> values;
    for (const Extreme which : {Extreme::Zero, Extreme::One, Extreme::Least, Extreme::Most}) {
        values.push_back(extreme(type, which));
    }
    if (type.kind == Type::Kind::Integer && type.minimum < 0) {
        values.push_back(-1);
    }
    for (const Enumerator& enumerator : type.enumerators) {
        values.push_back(enumerator.value);
    }
    if (type.kind == Type::Kind::Text) {
        for (const std::string& text :
             {std::string(kLongestText, 'x'), std::string("a\0b", 3), std::string("%s%n%s%n"),
              std::string("\xff\xfe\x01\n"), std::string("/"), std::string("../..")}) {
            values.push_back(text);
        }
    }
    if (type.kind == Type::Kind::List && !type.count) {
        // Around the counts that a narrower number holds; a record is too much of a thing to have so many of.
        for (const size_t count : {2, 255, 256, 257, 65535, 65536}) {
            if (type.isBytes()) {
                values.push_back(Json::binary(std::vector<uint8_t>(count, 0xFF)));
            } else if (count < 1000 || type.element->kind == Type::Kind::Integer) {
                values.push_back(Json(count, extreme(*type.element, Extreme::Most)));
            }
        }
    }
    return values;
}

Json allAt(const Method& method, Extreme which) {
    Json arguments = Json::array();
    for (const Field& argument : method.arguments) {
        arguments.push_back(extreme(*argument.type, which));
    }
    return arguments;
}

}  // namespace

Json plainArguments(const Method& method, bool one) {
    return allAt(method, one ? Extreme::One : Extreme::Zero);
}

std::vector<Json> boundaryArguments(const Method& method) {
    std::vector<Json> sets;
    const auto add = [&sets](const Json& set) {
        if (std::find(sets.begin(), sets.end(), set) == sets.end()) {
            sets.push_back(set);
        }
    };
    for (const Extreme which : {Extreme::Zero, Extreme::One, Extreme::Least, Extreme::Most}) {
        add(allAt(method, which));
    }
    for (const auto& [name, further] : kFurther) {
        if (isNamed(method, name)) {
            std::for_each(further.begin(), further.end(), add);
        }
    }
    for (const bool one : {false, true}) {
        for (size_t i = 0; i < method.arguments.size(); ++i) {
            for (const Json& value : bounds(*method.arguments[i].type)) {
                Json set = plainArguments(method, one);
                set[i] = value;
                add(set);
            }
        }
    }
    return sets;
}

std::string shownArguments(const Method& method, const Json& arguments) {
    std::string text;
    for (size_t i = 0; i < method.arguments.size(); ++i) {
        const Json& value = arguments[i];
        std::string shown = value.is_binary()
                                    ? std::to_string(value.get_binary().size()) + " bytes"
                                    : jsonText(forPrograms(*method.arguments[i].type, value), false);
        if (shown.size() > kShownBytes) {
            const std::string size = value.is_string()
                                             ? std::to_string(value.get_ref<const std::string&>().size())
                                             : std::to_string(value.size());
            shown = shown.substr(0, kShownBytes / 2) + "... (" + size +
                    (value.is_string() ? " characters)" : " parts)");
        }
        text += " " + method.arguments[i].label.name + "=" + shown;
    }
    return text;
}

bool isDangerous(const Method& method) {
    return std::any_of(std::begin(kDangerous), std::end(kDangerous),
                       [&](const std::string& name) { return isNamed(method, name); });
}

}  // namespace fapictl
