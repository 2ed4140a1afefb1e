#!/usr/bin/env python3
"""Writes the page's files into a C++ source: page.py --output FILE PAGE-FILE..."""

import argparse
import pathlib

TYPES = {".html": "text/html; charset=utf-8", ".css": "text/css; charset=utf-8",
         ".js": "text/javascript; charset=utf-8", ".svg": "image/svg+xml"}
# Compilers promise 65536 characters of a literal.
LONGEST = 16000


def literals(text):
    escaped = [c if 32 <= ord(c) < 127 and c not in '"\\?' else "".join(f"\\{b:03o}" for b in c.encode()) for c in text]
    for begin in range(0, len(escaped), LONGEST // 4):
        yield '        "' + "".join(escaped[begin:begin + LONGEST // 4]) + '"'


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--output", required=True)
    parser.add_argument("files", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    lines = ['#include "tools/fapictl/Page.h"', "", "namespace fapictl {", "",
             "const std::vector<PageFile>& pageFiles() {", "    static const std::vector<PageFile> files = {"]
    for file in sorted(options.files, key=lambda path: path.name):
        text = file.read_text(encoding="utf-8")
        lines.append(f'        {{"{file.name}", "{TYPES[file.suffix]}", {{')
        lines += literals(text)
        lines.append(f"        , {len(text.encode())}}}}},")
    lines += ["    };", "    return files;", "}", "", "}  // namespace fapictl", ""]
    pathlib.Path(options.output).write_text("\n".join(lines), encoding="utf-8")


main()
