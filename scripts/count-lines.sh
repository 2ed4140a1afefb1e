#!/usr/bin/env bash
# count-lines.sh: lines of code by folder, and those of the tests as a share of all others. Fails where the tests have
# more than their limit: a new test then replaces weaker ones. Blank lines and comments do not count.
set -euo pipefail
cd "$(dirname "$0")/.."

exec python3 - <<'END'
import collections
import pathlib
import re
import subprocess
import sys

LIMIT = 38  # percent: tests/ and fuzz/ of everything else
TESTS = ("tests", "fuzz")
DIVIDED = ("tests", "simulator", "platform")  # shown by the folders below them

# Texts and characters come first, so that no comment begins in one.
TOKEN = re.compile(r'''R"([^(\s]*)\(.*?\)\1" | "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])*' | //[^\n]* | /\*.*?\*/''',
                   re.S | re.X)


def lines_of(text):
    without = TOKEN.sub(lambda token: "\n" * token[0].count("\n") if token[0].startswith("/") else token[0], text)
    return sum(1 for line in without.split("\n") if line.strip())


example = '''int a; // code
  // none /*
/* none

   none */ int b = sizeof("/*");
/** none */

char c = '"'; /* code */'''
assert lines_of(example) == 3, lines_of(example)

listed = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard", "*.h", "*.cpp", "*.hal"], check=True,
                        capture_output=True, text=True).stdout
folders, totals = collections.Counter(), collections.Counter()
for path in map(pathlib.Path, filter(None, listed.split("\0"))):
    if path.exists():  # else removed, and not yet from the index
        count = lines_of(path.read_text(encoding="utf-8"))
        depth = 2 if path.parts[0] in DIVIDED else 1
        folders["/".join(path.parts[:-1][:depth]) + "/"] += count
        totals[path.parts[0] in TESTS] += count
for name, count in sorted(folders.items()):
    print(f"{name:24}{count:7}")
share = 100 * totals[True] / totals[False]
print(f"\ntests and fuzzers {totals[True]}, everything else {totals[False]}: {share:.1f} %, limit {LIMIT} %")
sys.exit(share > LIMIT)
END
