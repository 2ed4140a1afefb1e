#!/usr/bin/env python3
"""Prints the probe's functions, one in front of each that the chip layer's headers declare: probe.py HEADER...

probe.py --stub NAMES HEADER...  a library in which each of them does nothing and can be replaced, without those whose
names, separated by commas, are given
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "chiplayer"))
import functions

# Whose result is not a status.
OTHER_RESULTS = {
    "common_get_fapi_status", "custom_init", "custom_init_debug_level", "disp_get_frc_connect_status",
    "prphrl_get_sar_adc", "prphrl_start_factory_uart", "prphrl_start_keypad", "prphrl_stop_factory_uart",
    "prphrl_stop_keypad", "prphrl_switch_to_ttys1", "prphrl_write_factory_uart", "sys_get_wdt_status",
}
# Which fill a buffer with a text that ends in it.
TERMINATED = {"common_get_fapi_version", "info_get_ini_para", "sys_get_emmc_env_var"}
# Texts in buffers that they may fill to the last byte.
TEXTS = TERMINATED | {"disp_get_pq_version", "sys_get_dataindex_path", "sys_read_file_one_line"}
# In the order in which the manager shuts them down, with the bit of their events' types.
MODULES = {"aud": 22, "disp": 18, "disptst": 19, "info": 23, "inpsrc": 21, "net": 17, "prphrl": 20, "sys": 16}


def module(function):
    return function.header.removesuffix(".h")


def point(function):
    status = "false" if function.short in OTHER_RESULTS else "true"
    return (f'    {{"{function.name}", "{function.header}", "{module(function)}", '
            f"reinterpret_cast<void*>(&{function.name}), {status}}},")


def fence(parameter, function):
    """The object that holds what the parameter points to; None for one that is passed as it is."""
    name, declared = parameter.name, parameter.declared
    if parameter.role == "value":
        return None
    pointer = f"&{name}" if "&" in declared else name
    element = f"sizeof(*{pointer})" if "void*" not in declared else "1"
    alignment = f"alignof(decltype({name}))" if "&" in declared else \
        "16" if "void*" in declared else f"alignof(std::remove_pointer_t<decltype({name})>)"
    if parameter.role == "text":
        size, access, alignment = f"check::sizeOfText({name})", "Read", "1"
    elif parameter.role == "input":
        size = f"size_t{{{parameter.size}}} * {element}"
        # An advanced sound function's cells are the caller's; of other buffers that are not constant nobody says so.
        access = "Read" if "const*" in declared or function.short.startswith("aud_adv_") else "Write"
    else:
        size, access = f"size_t{{{parameter.size}}}", "Write"
    return f'check::Fence {name}Fence(call.name(), "{name}", {pointer}, {size}, {alignment}, check::Access::{access});'


def passed(parameter):
    name = parameter.name
    if parameter.role == "value":
        return name
    return f"*{name}Fence.as(&{name})" if "&" in parameter.declared else f"{name}Fence.as({name})"


def checks(function):
    """What is looked at when the function has come back."""
    lines = []
    buffers = {one.name: one.size for one in function.parameters
               if one.role == "output" and not one.size.startswith("sizeof") and one.size != functions.ATTRIBUTE}
    for name, size in buffers.items():
        if function.short in TERMINATED:
            lines.append(f'    call.mustEnd("{name}", {name}Fence);')
        for one in function.parameters:
            if one.name == "pu32LengthRead":
                lines.append(f'    call.mustFit("{one.name}", *{passed(one)}, {size});')
        if function.short in TEXTS:
            # Again, with room for all of the text but its end.
            arguments = ", ".join(
                f"{name}Again.as({name})" if one.name == name else
                f"static_cast<decltype({size})>(room)" if one.name == size else passed(one)
                for one in function.parameters)
            end = f'        call.mustEnd("{name}", {name}Again);\n' if function.short in TERMINATED else ""
            lines.append(
                f"    const size_t room = check::lengthIn({name}Fence);\n"
                f"    if (result == 0 && room > 0 && room < size_t{{{size}}} && room <= check::Fence::kLargest) {{\n"
                f'        const check::Fence {name}Again(call.name(), "{name}", nullptr, room, 1, '
                f"check::Access::Write);\n"
                f"        (void)call.run([&] {{ return next({arguments}); }});\n{end}    }}")
    return lines


def probe(index, function):
    names = ", ".join(one.name for one in function.parameters)
    fences = [made for one in function.parameters if (made := fence(one, function))]
    arguments = ", ".join(passed(one) for one in function.parameters)
    before, after = [], checks(function)
    if function.short.endswith("_reg_callback"):
        before = ["    check::awaitStart();"]
        arguments = f'check::handlerOf("{module(function)}", {names})'
    elif function.short.endswith("_unreg_callback"):
        after = [f'    check::forgetHandler("{module(function)}");']
    returned = "check::readiness(result)" if function.short == "common_get_fapi_status" else "result"
    lines = [
        f"{function.result} {function.name}({function.declared}) {{",
        f"    check::Call call(check::sPoints[{index}], __builtin_return_address(0));",
        f"    const auto next = call.next(&{function.name});",
        "    if (!call.isChecked()) {",
        f"        return call.isMissing() ? check::Call::kMissing : next({names});",
        "    }",
        *before,
        *("    " + one for one in fences),
        f"    const int32_t result = call.run([&] {{ return next({arguments}); }});",
        *after,
        f"    return {returned};",
        "}\n",
    ]
    return "\n".join(lines)


def stub(function):
    unused = re.sub(r"\b(\w+)(,|$)", r"/* \1 */\2", function.declared) if function.declared else ""
    return f"__attribute__((weak)) {function.result} {function.name}({unused}) {{ return 0; }}"


def main():
    if sys.argv[1] == "--stub":
        without = sys.argv[2].split(",")
        print('#include "chiplayer/chiplayer.h"\n')
        print("\n".join(stub(one) for one in functions.functions(sys.argv[3:]) if one.short not in without))
        return
    all_functions = functions.functions(sys.argv[1:])
    print("check::Point check::sPoints[] = {")
    print("\n".join(map(point, all_functions)))
    print("};\nconst size_t check::kPoints = std::size(check::sPoints);\n")
    print("const check::Module check::kModules[8] = {")
    for name, bit in MODULES.items():
        parts = ", ".join(f"a_zvttvfapi_{name}_{each}" for each in ("init", "deinit", "reg_callback", "unreg_callback"))
        print(f'    {{"{name}", {bit}, {parts}}},')
    print("};\n")
    print("\n".join(probe(index, one) for index, one in enumerate(all_functions)))


main()
