#!/usr/bin/env python3
"""Writes the Python client's interfaces, clients/python/zvttvfactory/interfaces.py, from those of the interface files.

make-python.py FAPICTL             writes it, from what the tool (a built fapictl) says of the interfaces
make-python.py FAPICTL --check     fails when it is not up to date
"""

import json
import keyword
import pathlib
import re
import subprocess
import sys
import textwrap

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "tools/fapictl"))
sys.dont_write_bytecode = True
import hal

ROOT = pathlib.Path(__file__).parent.parent
MODULE = ROOT / "clients/python/zvttvfactory/interfaces.py"
WIDTH = 120
STATUS, DONE = "s32Status", "bDone"
PLAIN = {"bool": "bool", "string": "str",
         **{f"{sign}int{bits}_t": "int" for sign in ("", "u") for bits in (8, 16, 32, 64)}}
# Names that every method has of its own.
TAKEN = {"self", "check", "timeout"}

HEAD = '''\
"""The interfaces of {package}: their methods, records and enumerations.

Written by scripts/make-python.py from the comments of the interface files. Do not edit.
"""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import List, Literal, NamedTuple, Optional, Sequence, Union, overload

from ._calls import Caller, Interface
from ._values import Bytes, Enumeration, Fields, wire_bytes, wire_list, wire_record, wire_records

PACKAGE = "{package}"


class Status(NamedTuple):
    """What a method without results of its own gives with check=False."""

    s32Status: int


class Done(NamedTuple):
    """What a method gives with check=False that only tells whether it was done."""

    bDone: bool
'''


class Types:
    """The package's records and enumerations, and what its types are in Python."""

    def __init__(self, interfaces):
        self.records, self.enumerations = {}, {}
        for interface in interfaces:
            for name, kind in (interface["types"] or {}).items():
                if "fields" in kind:
                    self.records.setdefault(name, kind["fields"])
                else:
                    self.enumerations.setdefault(name, kind["enumerators"])

    @staticmethod
    def element(name):
        """Of a list: its elements' type and, of a fixed array, how many it has."""
        found = re.fullmatch(r"vec<(.*)>", name)
        if found:
            return found[1], None
        found = re.fullmatch(r"(.*)\[(\d+)\]", name)
        return (found[1], int(found[2])) if found else (None, None)

    @staticmethod
    def plain(name):
        return name.replace(".", "")

    def given(self, name):
        """What a caller gets."""
        element, _ = self.element(name)
        if element:
            return "bytes" if element == "uint8_t" else f"List[{self.given(element)}]"
        return PLAIN.get(name) or self.plain(self.known(name))

    def taken(self, name):
        """What a caller may give."""
        element, _ = self.element(name)
        if element == "uint8_t":
            return "Bytes"
        if element:
            return f"Sequence[{self.taken(element)}]"
        if name in self.enumerations:
            return f"Union[{self.plain(name)}, int, str]"
        if name in self.records:
            return f"Union[{self.plain(name)}, Fields]"
        return PLAIN[self.known(name)]

    def known(self, name):
        if name not in PLAIN and name not in self.records and name not in self.enumerations:
            sys.exit(f"{name}: no form in Python")
        return name

    def zero(self, name):
        element, count = self.element(name)
        if element == "uint8_t":
            return f"bytes({count})" if count else 'b""'
        if element:
            return f"[{self.zero(element)} for _ in range({count})]" if count else "[]"
        if name in self.enumerations:
            return f"{self.plain(name)}(0)"
        return {"bool": "False", "str": '""', "int": "0"}[PLAIN[name]] if name in PLAIN else f"{self.plain(name)}()"

    def default(self, name):
        """The zero of a record's field. What can be changed is made anew for each record."""
        zero = self.zero(name)
        changeable = zero.startswith("[") or name in self.records
        return f"field(default_factory=lambda: {zero})" if changeable else zero

    def wired(self, name, value):
        """The expression that brings an argument into the form of a request."""
        element, _ = self.element(name)
        if element == "uint8_t":
            return f"wire_bytes({value})"
        if element in self.records:
            return f"wire_records({self.plain(element)}, {value})"
        if element:
            return f"wire_list({value})"
        if name in self.records:
            return f"wire_record({self.plain(name)}, {value})"
        return value


def meaning(entry):
    return (f"[{entry['unit']}] " if entry.get("unit") else "") + entry.get("doc", "")


def flowed(text, indent, hanging=""):
    """Lines of at most WIDTH columns; paragraphs and list items keep theirs."""
    for paragraph in text.splitlines():
        if not paragraph:
            yield ""
            continue
        item = "  " if paragraph.startswith("- ") else hanging
        yield from textwrap.wrap(paragraph, WIDTH - len(indent), initial_indent=indent, break_on_hyphens=False,
                                 subsequent_indent=indent + item, break_long_words=False)


def docstring(text, indent, *sections):
    """The sections are lines that stay behind the text."""
    lines = list(flowed(text.replace("\\", "\\\\"), indent))
    for section in filter(None, sections):
        lines += ["", *section]
    lines[0] = f'{indent}"""{lines[0].strip()}'
    if len(lines) == 1 and len(lines[0]) + 3 <= WIDTH:
        return [lines[0] + '"""']
    return lines + [f'{indent}"""']


def tagged(tag, entries, indent):
    for entry in entries:
        yield from flowed(f":{tag} {entry['name']}: {meaning(entry)}".rstrip(), indent, "    ")


def enumeration(name, doc, enumerators):
    yield from ["", "", f"class {name}(Enumeration):"]
    documented = [entry for entry in enumerators if entry.get("doc")]
    yield from docstring(doc, "    ", list(tagged("var", documented, "    ")))
    yield ""
    for entry in enumerators:
        yield f"    {entry['name']} = {entry['value']}"


def record(name, doc, fields, types):
    yield from ["", "", "@dataclass", f"class {name}:"]
    yield from docstring(doc, "    ", list(tagged("ivar", fields, "    ")))
    yield ""
    for field in fields:
        yield f"    {field['name']}: {types.given(field['type'])} = {types.default(field['type'])}"


def tuple_of(name, text, results, types, explained=True):
    yield from ["", "", f"class {name}(NamedTuple):"]
    yield from docstring(text, "    ", list(tagged("ivar", results, "    ")) if explained else [])
    yield ""
    for result in results:
        yield f"    {result['name']}: {types.given(result['type'])}"
    if [result["type"] for result in results] == ["bool"]:
        yield from ["", "    def __bool__(self) -> bool:", f"        return self.{results[0]['name']}"]


def camel(name):
    return "".join(part[:1].upper() + part[1:] for part in name.split("_"))


class Form:
    """What a method looks like in Python."""

    def __init__(self, interface, method):
        self.name = method["shortName"]
        if keyword.iskeyword(self.name):
            sys.exit(f"{method['name']}: its short name means something in Python")
        clash = TAKEN & {argument["name"] for argument in method["arguments"]}
        if clash:
            sys.exit(f"{method['name']}: its argument {clash.pop()} means something else in the client")
        self.whole = method["name"]
        self.results = method["results"]
        names = [result["name"] for result in self.results]
        self.values = [result for result in self.results if result["name"] not in (STATUS, DONE)]
        self.checked = STATUS in names or DONE in names
        title = interface["shortName"] + camel(self.name)
        self.given = title if self.values else "None"
        if names == [STATUS]:
            self.unchecked = "Status"
        elif names == [DONE]:
            self.unchecked = "Done"
        else:
            self.unchecked = title + "Unchecked" if self.checked else self.given


def method_of(method, form, types):
    arguments = [f"{argument['name']}: {types.taken(argument['type'])}" for argument in method["arguments"]]

    def signature(check, result):
        parts = ["self", *arguments, "*", check, "timeout: Optional[float] = None"]
        line = f"    def {form.name}({', '.join(parts)}) -> {result}:"
        if len(line) + len(" ...") <= WIDTH:
            return [line]
        wrapped = [""]
        for part in parts:
            if len(wrapped[-1]) + len(part) > WIDTH - 16:
                wrapped.append("")
            wrapped[-1] += part + ", "
        wrapped[-1] = wrapped[-1][:-2]
        return [f"    def {form.name}(", *(f"            {one.rstrip()}" for one in wrapped), f"    ) -> {result}:"]

    def overloaded(check, result):
        lines = signature(check, result)
        lines[-1] += " ..."
        return ["", "    @overload", *lines]

    either = form.given
    if form.checked:
        yield from overloaded("check: Literal[True] = True", form.given)
        either = f"Union[{form.given}, {form.unchecked}]"
        yield from overloaded("check: Literal[False]", form.unchecked)
    yield ""
    yield from signature("check: bool = True", either)
    yield from docstring(method["doc"], "        ", list(tagged("param", method["arguments"], "        ")),
                         list(tagged("return", method["results"], "        ")))
    wired = ", ".join(f"\"{argument['name']}\": {types.wired(argument['type'], argument['name'])}"
                      for argument in method["arguments"])
    call = f"        return self._call({json.dumps(form.whole)}, {{{wired}}}, {form.given}, {form.unchecked}, check, timeout)"
    if len(call) <= WIDTH:
        yield call
    else:
        yield f"        return self._call({json.dumps(form.whole)}, {{"
        for argument in method["arguments"]:
            yield f"            \"{argument['name']}\": {types.wired(argument['type'], argument['name'])},"
        yield f"        }}, {form.given}, {form.unchecked}, check, timeout)"
    if form.whole != form.name:
        yield f"    {form.whole} = {form.name}"


def takes_object(method, callbacks):
    return any(argument["type"] in callbacks for argument in method["arguments"])


def module(interfaces, doc):
    types = Types(interfaces)
    callbacks = {interface["interface"].split("::")[1] for interface in interfaces if not interface["service"]}
    yield from HEAD.format(package=interfaces[0]["interface"].split("::")[0]).splitlines()
    for name, enumerators in types.enumerations.items():
        yield from enumeration(types.plain(name), doc(name), enumerators)
    for name, fields in types.records.items():
        yield from record(types.plain(name), doc(name), fields, types)
    services = [interface for interface in interfaces if interface["service"]]
    for interface in services:
        methods = [(method, Form(interface, method)) for method in interface["methods"]
                   if not takes_object(method, callbacks)]
        for _, form in methods:
            if form.values:
                yield from tuple_of(form.given, f"What {form.name} gives.", form.values, types)
                if form.checked:
                    yield from tuple_of(form.unchecked, f"What {form.name} gives with check=False.", form.results,
                                        types, False)
        yield from ["", "", f"class {interface['shortName']}(Interface):"]
        yield from docstring(interface["doc"], "    ")
        yield from ["", f"    _name = {json.dumps(interface['interface'])}"]
        for method, form in methods:
            yield from method_of(method, form, types)
    yield from ["", "", "class Interfaces:", '    """The interfaces of a service, by their short and by their whole names."""', "",
                "    def __init__(self, caller: Caller, instance: str) -> None:"]
    for interface in services:
        short, whole = interface["shortName"], interface["interface"].split("::")[1]
        yield f"        self.{short.lower()} = self.{whole} = {short}(caller, instance)"


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--check"]):
        sys.exit(__doc__)
    answer = subprocess.run([sys.argv[1], "introspect", "--json"], check=True, capture_output=True, text=True)
    interfaces = json.loads(answer.stdout)
    # What the tool does not tell: the comments of the records and enumerations themselves.
    name = interfaces[0]["interface"].split("::")[0]
    package = hal.read(name, sorted((ROOT / "interface").glob(f"{name.split('@')[1]}/*.hal")))
    text = "\n".join(module(interfaces, lambda name: package.comment(name).text)) + "\n"
    if sys.argv[2:] != ["--check"]:
        MODULE.write_text(text)
    elif not MODULE.exists() or MODULE.read_text() != text:
        sys.exit("The Python client is not what the interface files say: run scripts/make-python.py FAPICTL")


if __name__ == "__main__":
    main()
