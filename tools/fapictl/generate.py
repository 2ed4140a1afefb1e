#!/usr/bin/env python3
"""Writes fapictl's table of one package: its interfaces, methods, records and enumerations as C++.

Structure comes from the interface compiler's own description of the package, comments from the .hal files.
A comment's @param or @return text may begin with the value's unit in brackets: "@return u32Freq [Hz] ...",
and so may the comment of a record's field.
"""

import argparse
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path


def parse_description(text):
    """Parses the compiler's description: `key: value` and `key: { ... }`, a list of pairs in order."""
    tokens = re.findall(r'"[^"]*"|[{}]|[^\s{}"]+', text)
    position = 0

    def block():
        nonlocal position
        pairs = []
        while position < len(tokens) and tokens[position] != "}":
            key = tokens[position].rstrip(":")
            value = tokens[position + 1]
            position += 2
            if value == "{":
                value = block()
                position += 1
            else:
                value = value.strip('"')
            pairs.append((key, value))
        return pairs

    return block()


def every(pairs, key):
    return [value for name, value in pairs if name == key]


def one(pairs, key, default=None):
    return next(iter(every(pairs, key)), default)


class Comment:
    """A doc comment: its text, and the texts of its tags by the name that they explain."""

    def __init__(self, raw=""):
        self.text, self.tags = "", {}
        lines = [re.sub(r"^\s*\*? ?", "", line).rstrip() for line in raw.strip().splitlines()]
        for part in re.split(r"^\s*(?=@(?:param|return)\b)", "\n".join(lines), flags=re.M):
            tag = re.match(r"@(?:param|return)\s+(\w+)\s*(.*)", part, re.S)
            if tag:
                self.tags[tag[1]] = self.flow(tag[2])
            elif part.strip():
                self.text = self.flow(part)

    @staticmethod
    def flow(text):
        """Joins the lines of each paragraph; paragraphs and list items keep theirs."""
        text = re.sub(r"\n[ \t]*\n\s*", "\0\0", text.strip())
        text = re.sub(r"\n\s*(?=[-*] )", "\0", text)
        return re.sub(r"\s+", " ", text).replace("\0", "\n")


def read_comments(source):
    """Maps each declaration's path ("IThing", "IThing.method", "Record.field") to its comment and whether it is
    one-way. Every declaration ends at ';', ',' or the '{' of its body."""
    pattern = r"/\*\*(?P<doc>.*?)\*/|/\*.*?\*/|//[^\n]*|(?P<word>[\w.@:]+)|(?P<mark>[{}();,=<>\[\]])|\"[^\"]*\""
    found, scopes, words, doc, depth = {}, [], [], "", 0
    for token in re.finditer(pattern, source, re.S):
        if token["doc"] is not None and depth == 0 and not words:
            doc = token["doc"]
        elif token["word"] and depth == 0:
            if not token["word"].startswith("@"):
                words.append(token["word"].rstrip(":"))
        elif token["mark"]:
            mark = token["mark"]
            if mark in "(<[":
                # The method's name stands before its first parenthesis; what is inside names nothing here.
                if mark == "(" and depth == 0 and "(" not in words:
                    words.append("(")
                depth += 1
            elif mark in ")>]":
                depth -= 1
            elif depth == 0 and mark == "=":
                words.append("=")
            elif depth == 0 and mark in "{};,":
                if words and words[0] not in ("package", "import"):
                    if mark == "{" or "(" in words:
                        at = words.index("(") - 1 if "(" in words else 1
                    else:
                        at = words.index("=") - 1 if "=" in words else len(words) - 1
                    name = words[at] if at < len(words) else ""
                    found[".".join(scopes + [name])] = (Comment(doc), words[0] == "oneway")
                    if mark == "{":
                        scopes.append(name)
                elif mark == "{":
                    scopes.append("")
                if mark == "}":
                    scopes.pop()
                if words or mark in "{}":
                    doc = ""
                words = []
    return found


class Package:
    def __init__(self, name):
        self.name, self.interfaces, self.records, self.enumerations = name, [], [], []
        self.comments, self.client_implemented = {}, set()

    def comment(self, *path):
        return self.comments.get(".".join(path), (Comment(), False))[0]

    def add(self, description):
        interface = one(description, "interface")
        for attribute in every(interface or description, "attribute"):
            self.add_type(attribute)
        if interface is not None:
            name = one(description, "component_name")
            methods = [api for api in every(interface, "api") if one(api, "is_inherited") == "false"]
            self.interfaces.append((name, methods))
            for argument in (argument for api in methods for argument in every(api, "arg")):
                if one(argument, "type") == "TYPE_HIDL_INTERFACE":
                    self.client_implemented.add(one(argument, "predefined_type").rsplit("::", 1)[1])

    def add_type(self, attribute):
        name, kind = one(attribute, "name"), one(attribute, "type")
        for inner in every(attribute, "sub_struct"):
            self.add_type(inner)
        if kind == "TYPE_STRUCT":
            fields = every(attribute, "struct_value")
            for field in fields:
                check(field, f"{name}::{one(field, 'name')}")
            self.records.append((name, [one(field, "name") for field in fields]))
        elif kind == "TYPE_ENUM":
            self.enumerations.append((name, every(one(attribute, "enum_value"), "enumerator")))
        else:
            sys.exit(f"{name}: fapictl has no form for a {kind}")


SUPPORTED = {"TYPE_SCALAR", "TYPE_STRING", "TYPE_ENUM", "TYPE_STRUCT", "TYPE_ARRAY", "TYPE_VECTOR",
             "TYPE_HIDL_INTERFACE"}


def check(value, where):
    """Stops the build with the place in the interface rather than with pages of template errors."""
    kind = one(value, "type")
    if kind not in SUPPORTED or one(value, "scalar_type") in ("float_t", "double_t"):
        sys.exit(f"{where}: fapictl has no form for a {one(value, 'scalar_type', kind)}")
    if kind in ("TYPE_ARRAY", "TYPE_VECTOR"):
        check(one(value, "vector_value"), where)


def literal(text):
    return json.dumps(text, ensure_ascii=False)


def label(name, text):
    unit = re.match(r"\[([^\]]+)\]\s*", text)
    return "{%s, %s, %s}" % (literal(name), literal(unit[1] if unit else ""),
                             literal(text[unit.end():] if unit else text))


def path_of(cpp_name, namespace):
    return cpp_name[len(namespace):].split("::")


def write(package, function, header, namespace, include, out):
    def emit(text):
        out.write(text + "\n")

    emit(f"// Generated by tools/fapictl/generate.py from {package.name}. Do not edit.\n")
    emit(f'#include "{header}"\n')
    for name, _ in package.interfaces:
        emit(f"#include <{include}/{name}.h>")
    emit('\n#include "tools/fapictl/Bind.h"\n\nnamespace fapictl {\n')
    for name, enumerators in package.enumerations:
        path = path_of(name, namespace)
        emit(f"template <>\nstruct Enumeration<{name}> {{")
        emit(f'    static constexpr const char* name = {literal(".".join(path))};')
        emit("    static std::vector<Enumerator> enumerators() {\n        return {")
        for enumerator in enumerators:
            emit(f"                {{{literal(enumerator)}, "
                 f"Codec<{name}>::toJson({name}::{enumerator}), "
                 f"{literal(package.comment(*path, enumerator).text)}}},")
        emit("        };\n    }\n};\n")
    for name, fields in package.records:
        path = path_of(name, namespace)
        emit(f"template <>\nstruct Record<{name}> {{")
        emit(f'    static constexpr const char* name = {literal(".".join(path))};')
        members = ", ".join(f"&{name}::{field}" for field in fields)
        emit(f"    static constexpr auto members = std::make_tuple({members});")
        emit("    static std::vector<Label> labels() {\n        return {")
        for field in fields:
            emit(f"                {label(field, package.comment(*path, field).text)},")
        emit("        };\n    }\n};\n")
    emit(f"const Package& {function}() {{")
    emit(f"    static const Package package = {{\n        {literal(package.name)},\n        {{")
    for name, methods in package.interfaces:
        is_service = "false" if name in package.client_implemented else "true"
        emit(f"            interfaceOf<{namespace}{name}>(")
        emit(f"                {literal(name)}, {literal(package.comment(name).text)}, {is_service}, {{")
        for api in methods:
            method = one(api, "name")
            comment, oneway = package.comments.get(f"{name}.{method}", (Comment(), False))
            sides = []
            for key in ("arg", "return_type_hidl"):
                for value in every(api, key):
                    check(value, f"{name}.{method}, {one(value, 'name')}")
                names = [one(value, "name") for value in every(api, key)]
                sides.append("{" + ", ".join(label(one, comment.tags.get(one, "")) for one in names) + "}")
            emit(f"                    methodOf<&{namespace}{name}::{method}>({literal(method)},")
            emit(f"                        {literal(comment.text)}, {'true' if oneway else 'false'},")
            emit(f"                        {sides[0]},\n                        {sides[1]}),")
        emit("                }),")
    emit("        },\n    };\n    return package;\n}\n\n}  // namespace fapictl")


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--hidl-gen", required=True, help="the interface compiler")
    options.add_argument("--package", required=True, help="name@version")
    options.add_argument("--root", action="append", required=True, help="package:folder, as for the compiler")
    options.add_argument("--function", required=True, help="name of the generated function")
    options.add_argument("--header", required=True, help="declares that function")
    options.add_argument("--output", required=True)
    options.add_argument("hal", nargs="+", help="the package's .hal files")
    given = options.parse_args()

    name, version = given.package.split("@")
    folder = f"{name.replace('.', '/')}/{version}"
    package = Package(given.package)
    with tempfile.TemporaryDirectory() as scratch:
        roots = [word for root in given.root for word in ("-r", root)]
        subprocess.run([given.hidl_gen, "-R", "-L", "vts", "-o", scratch, *roots, given.package], check=True)
        for file in sorted(Path(scratch, folder).glob("*.vts")):
            package.add(parse_description(file.read_text()))
    for file in given.hal:
        package.comments.update(read_comments(Path(file).read_text()))
    namespace = f"::{name.replace('.', '::')}::V{version.replace('.', '_')}::"
    with open(given.output, "w") as out:
        write(package, given.function, given.header, namespace, folder, out)


if __name__ == "__main__":
    main()
