#!/usr/bin/env python3
"""Writes docs/reference.md, every method of the package, from the comments of the interface files.

make-reference.py FAPICTL             writes it, from what the tool (a built fapictl) says of the interfaces
make-reference.py FAPICTL --check     fails when it is not up to date
"""

import json
import pathlib
import subprocess
import sys

PAGE = pathlib.Path(__file__).parent.parent / "docs" / "reference.md"


def cell(text):
    return " ".join(text.split()).replace("|", "\\|")


def table(heading, entries):
    yield f"| {heading} | type | |"
    yield "|---|---|---|"
    for entry in entries:
        unit = f"[{entry['unit']}] " if entry.get("unit") else ""
        yield f"| `{entry['name']}` | `{entry['type']}` | {cell(unit + entry.get('doc', ''))} |"
    yield ""


def page(interfaces):
    yield "# Every method"
    yield ""
    yield ("Written by `scripts/make-reference.py` from the comments of `interface/1.0/*.hal`, which are the reference. "
           "A bracket gives the unit.")
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
        yield f"## {interface['shortName']}"
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
                yield from table("argument", method["arguments"])
            if method["results"]:
                yield from table("result", method["results"])
        for name, kind in (interface["types"] or {}).items():
            if name in described:
                continue
            described.add(name)
            yield f"### {name}"
            yield ""
            if "fields" in kind:
                yield from table("field", kind["fields"])
            else:
                yield "| enumerator | value | |"
                yield "|---|---|---|"
                for entry in kind["enumerators"]:
                    yield f"| `{entry['name']}` | {entry['value']} | {cell(entry.get('doc', ''))} |"
                yield ""


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--check"]):
        sys.exit(__doc__)
    answer = subprocess.run([sys.argv[1], "introspect", "--json"], check=True, capture_output=True, text=True)
    text = "\n".join(page(json.loads(answer.stdout))).rstrip("\n") + "\n"
    if sys.argv[2:] != ["--check"]:
        PAGE.write_text(text)
    elif not PAGE.exists() or PAGE.read_text() != text:
        sys.exit("docs/reference.md is not what the interface files say: run scripts/make-reference.py FAPICTL")


if __name__ == "__main__":
    main()
