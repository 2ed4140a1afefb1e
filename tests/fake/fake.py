#!/usr/bin/env python3
"""Prints a fake for each function that the chip layer's headers declare: fake.py HEADER..."""

import re
import sys

# Data that the service hands over with its length, which the record of a call shows, by the parameter's name.
LENGTHS = {
    "aud_set_volume_table": {"pu16Table": "u16Count"},
    "prphrl_read_from_iic": {"pu8Addr": "u16AddrCount"},
    "prphrl_set_hdmi_edid_data": {"pu8Data": "256"},
    "prphrl_std_factory_uart_write": {"pu8Data": "u8Count"},
    "prphrl_write_to_iic": {"pu8Addr": "u16AddrCount", "pu8Data": "u16Size"},
    "sys_secure_storage_encrypt_key": {"pu8UserKey": "u8KeySize"},
    "sys_write_emmc": {"pu8Data": "u32Length"},
    "sys_write_file": {"pu8Data": "u32Length"},
}


def fake(result, name, parameters):
    module_function = name.removeprefix("a_zvttvfapi_")
    lengths = LENGTHS.pop(module_function, {})
    arguments = []
    for declared in parameters.split(",") if parameters else []:
        parameter = re.search(r"\w+$", declared)[0]
        # Advanced sound functions take each argument by address.
        length = "1" if module_function.startswith("aud_adv_") and "*" in declared else lengths.get(parameter)
        arguments.append(f", data({parameter}, {length})" if length else f", {parameter}")
    call = f"FakeChipLayer::current().called(__func__, {name}{''.join(arguments)})"
    return f"{result} {name}({parameters}) {{ return {call}; }}"


for header in sys.argv[1:]:
    with open(header, encoding="utf-8") as source:
        for declaration in re.findall(r"^(int|int32_t) (\w+)\(([^)]*)\);", source.read(), re.MULTILINE):
            print(fake(*declaration))
if LENGTHS:
    sys.exit(f"no such functions: {', '.join(LENGTHS)}")
