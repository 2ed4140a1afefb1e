#!/usr/bin/env python3
"""Writes docs/reference.md, every method of the package, from the comments of the interface files, and the list of the
simulated board's statuses in docs/board.md.

make-reference.py FAPICTL             writes both, the methods from what the tool (a built fapictl) says of them
make-reference.py FAPICTL --check     fails when one is not up to date
"""

import json
import pathlib
import re
import subprocess
import sys

DOCS = pathlib.Path(__file__).parent.parent / "docs"
PAGE = DOCS / "reference.md"
BOARD = DOCS / "board.md"
STATUSES = DOCS.parent / "simulator/board/Status.h"
# Where board.md lists the numbers that the simulated board's library gives an interface's things.
NUMBERS = {
    "Audio": "audio",
    "Display": "numbers",
    "DisplayTest": "numbers",
    "Information": "information",
    "InputSource": "input-sources",
    "Peripheral": "peripherals",
    "System": "system",
}


def cell(text, interface):
    """A table's cell, with links to what it refers to."""
    text = " ".join(text.split()).replace("|", "\\|")
    text = text.replace("the interface's comment", f"[the interface's comment](#{interface.lower()})")
    return re.sub(r"(?:the (?:chip-layer )?)?library's number(?:ing|s)?\b|which is the library's\b",
                  lambda found: f"[{found[0]}](board.md#{NUMBERS[interface]})", text)


def table(heading, entries, interface):
    yield f"| {heading} | type | |"
    yield "|---|---|---|"
    for entry in entries:
        unit = f"[{entry['unit']}] " if entry.get("unit") else ""
        yield f"| `{entry['name']}` | `{entry['type']}` | {cell(unit + entry.get('doc', ''), interface)} |"
    yield ""


def page(interfaces):
    yield "# Every method"
    yield ""
    yield ("Written by `scripts/make-reference.py` from the comments of `interface/1.0/*.hal`, which are the reference. "
           "A bracket gives the unit. Numbers that are the library's lead to those of the [simulated board](board.md).")
    yield ""
    methods = sum(len(interface["methods"]) for interface in interfaces if interface["service"])
    services = [interface for interface in interfaces if interface["service"]]
    yield f"{len(services)} interfaces with {methods} methods, and one that clients implement:"
    yield ""
    for interface in interfaces:
        short = interface["shortName"]
        yield f"- [{short}](#{short.lower()}), {len(interface['methods'])} methods"
    yield ""
    described = set()
    for interface in interfaces:
        short = interface["shortName"]
        yield f"## {short}"
        yield ""
        yield f"`{interface['interface']}`"
        yield ""
        yield interface["doc"]
        yield ""
        for method in interface["methods"]:
            yield f"### {method['name']}"
            yield ""
            if method["doc"]:
                yield method["doc"]
                yield ""
            if method["arguments"]:
                yield from table("argument", method["arguments"], short)
            if method["results"]:
                yield from table("result", method["results"], short)
        for name, kind in (interface["types"] or {}).items():
            if name in described:
                continue
            described.add(name)
            yield f"### {name}"
            yield ""
            if "fields" in kind:
                yield from table("field", kind["fields"], short)
            else:
                yield "| enumerator | value | |"
                yield "|---|---|---|"
                for entry in kind["enumerators"]:
                    yield f"| `{entry['name']}` | {entry['value']} | {cell(entry.get('doc', ''), short)} |"
                yield ""


def board(text):
    """The page of the board with the list of its statuses."""
    source = STATUSES.read_text().replace("\\\n", " ")
    entries = re.findall(r'STATUS\(k\w+, (-?\d+), *"([^"]*)",\s*("[^)]*")\)', source)
    if len(entries) != source.count("STATUS(k"):
        sys.exit(f"{STATUSES} has entries that are not read")
    lines = ["| status | name | |", "|---|---|---|"]
    for number, name, meaning in entries:
        parts = re.findall(r'"([^"]*)"', meaning)
        lines.append(f"| {number} | {name} | {''.join(parts)} |")
    begin, end = "Status.h. -->\n", "<!-- End of the list. -->"
    if text.count(begin) != 1 or text.count(end) != 1:
        sys.exit("docs/board.md has no place for the list of statuses")
    return text[:text.index(begin) + len(begin)] + "\n".join(lines) + "\n" + text[text.index(end):]


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--check"]):
        sys.exit(__doc__)
    answer = subprocess.run([sys.argv[1], "introspect", "--json"], check=True, capture_output=True, text=True)
    headings = re.findall(r"^#+ (.*)$", BOARD.read_text(), re.M)
    lost = set(NUMBERS.values()) - {heading.lower().replace(" ", "-") for heading in headings}
    if lost:
        sys.exit(f"docs/board.md has no section {', '.join(sorted(lost))} any longer, to which numbers lead")
    pages = {PAGE: "\n".join(page(json.loads(answer.stdout))).rstrip("\n") + "\n", BOARD: board(BOARD.read_text())}
    for path, text in pages.items():
        if path.exists() and path.read_text() == text:
            continue
        if sys.argv[2:] == ["--check"]:
            sys.exit(f"docs/{path.name} is not what the sources say: run scripts/make-reference.py FAPICTL")
        path.write_text(text)


if __name__ == "__main__":
    main()
