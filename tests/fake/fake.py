#!/usr/bin/env python3
"""Prints a fake for each function that the chip layer's headers declare: fake.py HEADER..."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "chiplayer"))
import functions


def described(parameter):
    """The call that describes one argument."""
    name = parameter.name
    if parameter.role == "output":
        address = f"&{name}" if "&" in parameter.declared else name
        return f'.output("{name}", {address}, {parameter.size})'
    if parameter.role == "input":
        return f".data({name}, {parameter.size})"
    return f".{parameter.role}({name})"


def fake(function):
    call = "".join(map(described, function.parameters))
    names = "".join(", " + parameter.name for parameter in function.parameters)
    return (f"{function.result} {function.name}({function.declared}) "
            f"{{ return FakeCall(__func__){call}.made({function.name}{names}); }}")


print("\n".join(map(fake, functions.functions(sys.argv[1:]))))
