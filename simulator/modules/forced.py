#!/usr/bin/env python3
"""Prints what lets every chip-layer function of the board be told to return a status: forced.py names|functions
HEADERS SOURCES

names: gives each function that the headers declare another name in the objects, for the sources that define them.
functions: defines the functions, under their own names, in front of those, and the table of what is forced. A function
that no source defines is left out: whoever links the library without it is told who calls it.
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "chiplayer"))
import functions


def renamed(one):
    return f'int32_t {one.name}({one.declared}) asm("board.{one.name}");'


def function(index, one):
    arguments = ", ".join(parameter.name for parameter in one.parameters)
    return (f"int32_t {one.name}({one.declared}) {{\n"
            f"    return simulator::carriedOut(simulator::sForcePoints[{index}],\n"
            f"                                 [&] {{ return board::{one.name}({arguments}); }});\n"
            f"}}")


def statuses(paths):
    """The functions that return a status: not those of the custom library."""
    return [one for one in functions.functions(paths) if one.result == "int32_t"]


def main():
    form, files = sys.argv[1], sys.argv[2:]
    declared = statuses(path for path in files if path.endswith(".h"))
    if form == "names":
        print("\n".join(renamed(each) for each in declared))
        return
    defined = {one.name for one in statuses(path for path in files if path.endswith(".cpp"))}
    unknown = defined - {one.name for one in declared}
    if unknown:
        sys.exit(f"defined, but not declared in the chip layer's headers: {', '.join(sorted(unknown))}")
    present = [each for each in declared if each.name in defined]
    print("namespace board {")
    print("\n".join(renamed(each) for each in present))
    print("}  // namespace board\n\nnamespace simulator {\nnamespace {\nForcePoint sForcePoints[] = {")
    print("\n".join(f'    ForcePoint("{each.name}"),' for each in present))
    print("};\n}  // namespace\n\nForcePoints forcePoints() {\n    return {std::begin(sForcePoints), std::end(sForcePoints)};")
    print("}\n}  // namespace simulator\n")
    print("\n".join(function(index, each) for index, each in enumerate(present)))


main()
