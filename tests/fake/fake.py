#!/usr/bin/env python3
"""Prints a fake for each function that the chip layer's headers declare: fake.py HEADER..."""

import re
import sys

TEXT = "text"
# What the service hands over by a pointer other than a text's, in which the declaration does not say so: how many
# elements lie there, by the parameter's name.
INPUTS = {
    "aud_get_attr": {"pInput": "1"},
    "aud_set_volume_table": {"pu16Table": "u16Count"},
    "disp_set_gamma_curve": {"pu16Red": "256", "pu16Green": "256", "pu16Blue": "256"},
    "disp_set_picture_param_struct": {"pvData": "u32Size"},
    "disptst_set_burning_mode_adv": {"pstParam": "1"},
    "net_set_mac": {"pu32Mac": TEXT},
    "prphrl_read_from_iic": {"pu8Addr": "u16AddrCount"},
    "prphrl_set_hdmi_edid_data": {"pu8Data": "256"},
    "prphrl_std_factory_uart_write": {"pu8Data": "u8Count"},
    "prphrl_write_factory_uart": {"pu8Text": "u32Count"},
    "prphrl_write_to_iic": {"pu8Addr": "u16AddrCount", "pu8Data": "u16Size"},
    "sys_read_emmc": {"pu8EmmcName": TEXT},
    "sys_secure_storage_encrypt_key": {"pu8UserKey": "u8KeySize"},
    "sys_write_emmc": {"pu8EmmcName": TEXT, "pu8Data": "u32Length"},
    "sys_write_file": {"pu8Data": "u32Length"},
}
# The outputs among the arguments of advanced sound functions, which take each by address.
ANSWERS = {"aud_adv_get_speaker_delay": "pu32Delay", "aud_adv_get_volume": "pu32Volume"}


def described(function, declared, size):
    """The call that describes one argument."""
    name = re.search(r"\w+$", declared)[0]
    count = INPUTS.get(function, {}).get(name)
    if function.startswith("aud_adv_") and "*" in declared and ANSWERS.get(function) != name:
        count = "1"
    if not re.search("[*&]", declared):
        return f".value({name})"
    if count == TEXT or ("char const*" in declared and not count):
        return f".text({name})"
    if count or "const*" in declared:
        return f".data({name}, {count or 1})"
    if "&" in declared:
        return f'.output("{name}", &{name}, sizeof({name}))'
    # What else has a size of its own is an attribute's answer: void*.
    size = "40" if "void*" in declared else size[0] if size and "char*" in declared else f"sizeof(*{name})"
    return f'.output("{name}", {name}, {size})'


def fake(result, name, parameters):
    function = name.removeprefix("a_zvttvfapi_")
    all_declared = parameters.split(",") if parameters else []
    size = re.findall(r"\b(u\d+(?:Size|Length))\b", parameters)
    call = "".join(described(function, declared, size) for declared in all_declared)
    names = "".join(", " + re.search(r"\w+$", declared)[0] for declared in all_declared)
    return f"{result} {name}({parameters}) {{ return FakeCall(__func__){call}.made({name}{names}); }}"


for header in sys.argv[1:]:
    with open(header, encoding="utf-8") as source:
        for declaration in re.findall(r"^(int|int32_t) (\w+)\(([^)]*)\);", source.read(), re.MULTILINE):
            print(fake(*declaration))
