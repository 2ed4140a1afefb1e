#!/usr/bin/env python3
"""Prints what lets every chip-layer function of the board be told to return a status: forced.py names|functions
HEADERS SOURCES

names: gives each function that the headers declare another name in the objects, for the sources that define them.
functions: defines the functions, under their own names, in front of those, and the table of what is forced. A function
that no source defines is left out: whoever links the library without it is told who calls it.
"""

import re
import sys

DECLARATION = re.compile(r"^int32_t (a_zvttvfapi_\w+)\(([^)]*)\)", re.MULTILINE)


def renamed(name, parameters):
    return f'int32_t {name}({parameters}) asm("board.{name}");'


def function(index, name, parameters):
    arguments = ", ".join(re.search(r"\w+$", one)[0] for one in parameters.split(",") if one)
    return (f"int32_t {name}({parameters}) {{\n"
            f"    int32_t status = 0;\n"
            f"    return simulator::sForcePoints[{index}].take(&status) ? status : board::{name}({arguments});\n"
            f"}}")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def main():
    form, files = sys.argv[1], sys.argv[2:]
    declared = [found for path in files if path.endswith(".h") for found in DECLARATION.findall(read(path))]
    if form == "names":
        print("\n".join(renamed(*each) for each in declared))
        return
    defined = {name for path in files if path.endswith(".cpp") for name, _ in DECLARATION.findall(read(path))}
    unknown = defined - {name for name, _ in declared}
    if unknown:
        sys.exit(f"defined, but not declared in the chip layer's headers: {', '.join(sorted(unknown))}")
    present = [each for each in declared if each[0] in defined]
    print("namespace board {")
    print("\n".join(renamed(*each) for each in present))
    print("}  // namespace board\n\nnamespace simulator {\nnamespace {\nForcePoint sForcePoints[] = {")
    print("\n".join(f'    ForcePoint("{name}"),' for name, _ in present))
    print("};\n}  // namespace\n\nForcePoints forcePoints() {\n    return {std::begin(sForcePoints), std::end(sForcePoints)};")
    print("}\n}  // namespace simulator\n")
    print("\n".join(function(index, *each) for index, each in enumerate(present)))


main()
