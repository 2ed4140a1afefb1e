#!/usr/bin/env python3
"""Writes fapictl's table of one package: its interfaces, methods, records and enumerations as C++.

Everything comes from the .hal files, which the interface compiler takes or refuses: here they are only read. A
comment's @param or @return text may begin with the value's unit in brackets: "@return u32Freq [Hz] ...", and so may
the comment of a record's field.
"""

import argparse
import json
import re
import sys
from pathlib import Path


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


# Types that the tool cannot write, by the first word of each.
FORMLESS = {"float", "double", "handle", "memory", "pointer", "bitfield", "fmq_sync", "fmq_unsync"}
INTEGERS = {f"{sign}int{bits}_t" for sign in ("", "u") for bits in (8, 16, 32, 64)}


class Interface:
    def __init__(self, name):
        self.name, self.methods = name, []


class Method:
    def __init__(self, name, oneway, arguments, results):
        self.name, self.oneway = name, oneway
        self.arguments, self.results = ([name for name, _ in side] for side in (arguments, results))
        # The result that tells how the method fared: s32Status, which is 0 for success, or where there is none a bool
        # bDone, which is true. Every other result is a value, whatever it is.
        self.outcome = next((i for told in (("s32Status", "int32_t"), ("bDone", "bool"))
                             for i, (name, words) in enumerate(results) if (name, *words) == told), None)


class Package:
    """What the .hal files declare. Paths are of names inside the package: "Record.Inner", "IThing.Record"."""

    def __init__(self, name):
        self.name, self.interfaces, self.records, self.enumerations = name, [], [], []
        self.comments, self.client_implemented = {}, set()

    def comment(self, *path):
        return self.comments.get(".".join(path), Comment())


class Parser:
    """Reads one .hal file, which the interface compiler has found right, into a package."""

    TOKEN = re.compile(r"/\*\*(?P<doc>.*?)\*/|/\*.*?\*/|//[^\n]*|\"[^\"]*\"|"
                       r"(?P<plain>[\w.@]+(?:::[\w.@]+)*|[^\s\w])", re.S)

    def __init__(self, package, source):
        self.package = package
        # A comment belongs to the token behind it.
        self.tokens, self.docs, doc = [], [], ""
        for token in self.TOKEN.finditer(source):
            if token["doc"] is not None:
                doc = token["doc"]
            elif token["plain"]:
                self.tokens.append(token["plain"])
                self.docs.append(doc)
                doc = ""
        self.position = 0
        self.fields = []  # of the record that is being read

    def take(self):
        self.position += 1
        return self.tokens[self.position - 1]

    def until(self, *ends):
        """The tokens up to one of the ends outside brackets; the end is left."""
        begin, depth = self.position, 0
        while depth > 0 or self.tokens[self.position] not in ends:
            depth += {"(": 1, "<": 1, "[": 1, ")": -1, ">": -1, "]": -1}.get(self.tokens[self.position], 0)
            self.position += 1
        return self.tokens[begin:self.position]

    def file(self):
        while self.position < len(self.tokens):
            if self.tokens[self.position] in ("package", "import"):
                self.until(";")
                self.take()
            else:
                self.declaration([])

    def declaration(self, scope):
        """One declaration of a scope, up to the semicolon behind it."""
        doc = self.docs[self.position]
        while self.tokens[self.position].startswith("@"):
            self.take()
            if self.tokens[self.position] == "(":
                self.take()
                self.until(")")
                self.take()
        kind = self.tokens[self.position]
        if kind in ("union", "safe_union", "typedef"):
            sys.exit(f"{'.'.join(scope + [self.tokens[self.position + 1]])}: fapictl has no form for a {kind}")
        if kind in ("interface", "struct", "enum"):
            self.take()
            path = scope + [self.take()]
            self.package.comments[".".join(path)] = Comment(doc)
            base = self.until("{")
            self.take()
            {"interface": self.interface, "struct": self.record, "enum": self.enumeration}[kind](path, base)
            self.take()
        elif scope and self.package.interfaces and scope == [self.package.interfaces[-1].name]:
            self.method(scope, doc)
        else:
            name = self.value(self.until(";"), scope)
            self.package.comments[".".join(scope + [name])] = Comment(doc)
            self.fields.append(name)
        self.take()

    def interface(self, path, _):
        self.package.interfaces.append(Interface(path[0]))
        while self.tokens[self.position] != "}":
            self.declaration(path)

    def record(self, path, _):
        outer, self.fields = self.fields, []
        while self.tokens[self.position] != "}":
            self.declaration(path)
        self.package.records.append((path, self.fields))
        self.fields = outer

    def enumeration(self, path, base):
        if base[1:] and base[1] not in INTEGERS:
            sys.exit(f"{'.'.join(path)}: fapictl has no form for an enumeration that extends another")
        names = []
        while self.tokens[self.position] != "}":
            doc = self.docs[self.position]
            names.append(self.until(",", "}")[0])
            self.package.comments[".".join(path + [names[-1]])] = Comment(doc)
            if self.tokens[self.position] == ",":
                self.take()
        self.package.enumerations.append((path, names))

    def method(self, scope, doc):
        oneway = self.tokens[self.position] == "oneway"
        if oneway:
            self.take()
        name = self.take()
        where = scope + [name]
        arguments = self.values(where)
        results = []
        if self.tokens[self.position] == "generates":
            self.take()
            results = self.values(where)
        self.package.comments[".".join(where)] = Comment(doc)
        self.package.interfaces[-1].methods.append(
            Method(name, oneway, arguments, results))
        self.package.client_implemented.update(word for _, words in arguments for word in words)

    def values(self, where):
        """A list in parentheses: the name of each value, and the words of its type."""
        self.take()
        found = []
        while self.tokens[self.position] != ")":
            words = self.until(",", ")")
            found.append((self.value(words, where), words[:-1]))
            if self.tokens[self.position] == ",":
                self.take()
        self.take()
        return found

    @staticmethod
    def value(words, where):
        """The name of a value. Stops the build with the place in the interface rather than with pages of template
        errors."""
        for word in words[:-1]:
            if word in FORMLESS:
                sys.exit(f"{'.'.join(where)}, {words[-1]}: fapictl has no form for a {word}")
        return words[-1]


def literal(text):
    return json.dumps(text, ensure_ascii=False)


def label(name, text):
    unit = re.match(r"\[([^\]]+)\]\s*", text)
    return "{%s, %s, %s}" % (literal(name), literal(unit[1] if unit else ""),
                             literal(text[unit.end():] if unit else text))


def write(package, function, header, namespace, include, out):
    def emit(text):
        out.write(text + "\n")

    emit(f"// Generated by tools/fapictl/generate.py from {package.name}. Do not edit.\n")
    emit(f'#include "{header}"\n')
    for interface in package.interfaces:
        emit(f"#include <{include}/{interface.name}.h>")
    emit('\n#include "tools/fapictl/Bind.h"\n\nnamespace fapictl {\n')
    for path, enumerators in package.enumerations:
        name = namespace + "::".join(path)
        emit(f"template <>\nstruct Enumeration<{name}> {{")
        emit(f'    static constexpr const char* name = {literal(".".join(path))};')
        emit("    static std::vector<Enumerator> enumerators() {\n        return {")
        for enumerator in enumerators:
            emit(f"                {{{literal(enumerator)}, "
                 f"Codec<{name}>::toJson({name}::{enumerator}), "
                 f"{literal(package.comment(*path, enumerator).text)}}},")
        emit("        };\n    }\n};\n")
    for path, fields in package.records:
        name = namespace + "::".join(path)
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
    for interface in package.interfaces:
        name = interface.name
        is_service = "false" if name in package.client_implemented else "true"
        emit(f"            interfaceOf<{namespace}{name}>(")
        emit(f"                {literal(name)}, {literal(package.comment(name).text)}, {is_service}, {{")
        for method in interface.methods:
            comment = package.comment(name, method.name)
            sides = ["{" + ", ".join(label(one, comment.tags.get(one, "")) for one in side) + "}"
                     for side in (method.arguments, method.results)]
            emit(f"                    methodOf<&{namespace}{name}::{method.name}>({literal(method.name)},")
            emit(f"                        {literal(comment.text)}, {'true' if method.oneway else 'false'},")
            outcome = "std::nullopt" if method.outcome is None else f"size_t{{{method.outcome}}}"
            emit(f"                        {sides[0]},\n                        {sides[1]}, {outcome}),")
        emit("                }),")
    emit("        },\n    };\n    return package;\n}\n\n}  // namespace fapictl")


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--package", required=True, help="name@version")
    options.add_argument("--function", required=True, help="name of the generated function")
    options.add_argument("--header", required=True, help="declares that function")
    options.add_argument("--output", required=True)
    options.add_argument("hal", nargs="+", help="the package's .hal files")
    given = options.parse_args()

    name, version = given.package.split("@")
    folder = f"{name.replace('.', '/')}/{version}"
    package = Package(given.package)
    for file in sorted(map(Path, given.hal)):
        Parser(package, file.read_text()).file()
    namespace = f"::{name.replace('.', '::')}::V{version.replace('.', '_')}::"
    with open(given.output, "w") as out:
        write(package, given.function, given.header, namespace, folder, out)


if __name__ == "__main__":
    main()
