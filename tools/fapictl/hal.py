"""Reads the .hal files of a package, for the generators of tables and of the service's trace.

The interface compiler takes or refuses the files: here they are only read. A comment's @param or @return text may begin
with the value's unit in brackets: "@return u32Freq [Hz] ...", and so may the comment of a record's field.
"""

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


# Types that nobody here can write, by the first word of each.
FORMLESS = {"float", "double", "handle", "memory", "pointer", "bitfield", "fmq_sync", "fmq_unsync"}
INTEGERS = {f"{sign}int{bits}_t" for sign in ("", "u") for bits in (8, 16, 32, 64)}


class Interface:
    def __init__(self, name):
        self.name, self.methods = name, []


class Method:
    """Its arguments and results by name; `types` has the words of each one's type, the arguments' first."""

    def __init__(self, name, oneway, arguments, results):
        self.name, self.oneway = name, oneway
        self.arguments, self.results = ([name for name, _ in side] for side in (arguments, results))
        self.types = [words for _, words in arguments + results]
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
        self.package.interfaces[-1].methods.append(Method(name, oneway, arguments, results))
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


def read(name, files):
    """The package of that name and version."""
    package = Package(name)
    for file in sorted(map(Path, files)):
        Parser(package, file.read_text()).file()
    return package
