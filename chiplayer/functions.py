"""The functions that the headers beside this file declare, and what lies behind each of their pointers: for the programs
that write a stand-in for each of them."""

import dataclasses
import re

DECLARATION = re.compile(r"^(int|int32_t) (_?a_zvttvfapi_\w+)\(([^)]*)\)", re.MULTILINE)

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
# The bytes of an attribute's answer, whose type does not tell.
ATTRIBUTE = "40"


@dataclasses.dataclass
class Parameter:
    declared: str
    name: str
    # "value"; "text" that ends with a NUL; "input", so many elements; "output", so many bytes
    role: str
    size: str = ""


@dataclasses.dataclass
class Function:
    result: str
    name: str
    parameters: list
    declared: str  # all parameters, as the header has them
    header: str

    @property
    def short(self):
        return re.sub(r"^_?a_zvttvfapi_", "", self.name)


def parameter(function, declared, size):
    name = re.search(r"\w+$", declared)[0]
    count = INPUTS.get(function, {}).get(name)
    if function.startswith("aud_adv_") and "*" in declared and ANSWERS.get(function) != name:
        count = "1"
    if not re.search("[*&]", declared):
        return Parameter(declared, name, "value")
    if count == TEXT or ("char const*" in declared and not count):
        return Parameter(declared, name, "text")
    if count or "const*" in declared:
        return Parameter(declared, name, "input", count or "1")
    if "&" in declared:
        return Parameter(declared, name, "output", f"sizeof({name})")
    if "void*" in declared:
        return Parameter(declared, name, "output", ATTRIBUTE)
    return Parameter(declared, name, "output", size[0] if size and "char*" in declared else f"sizeof(*{name})")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def functions(paths):
    """All that the files declare or define, in order."""
    found = []
    for path in paths:
        for result, name, declared in DECLARATION.findall(read(path)):
            function = Function(result, name, [], declared, path.rsplit("/", 1)[-1])
            size = re.findall(r"\b(u\d+(?:Size|Length))\b", declared)
            function.parameters = [parameter(function.short, " ".join(one.split()), size)
                                   for one in declared.split(",") if one.strip()]
            found.append(function)
    return found
