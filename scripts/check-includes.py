#!/usr/bin/env python3
"""Who may include whom. A room of the tree includes itself and what its row below names, nothing else.

check-includes.py [ROOT]     checks the tree, and first itself on planted violations
"""

import pathlib
import re
import sys
import tempfile

STANDARD = set("""
    algorithm any array atomic bitset cassert cctype cerrno cfloat charconv chrono cinttypes climits cmath complex
    condition_variable csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime deque exception filesystem
    forward_list fstream functional future initializer_list iomanip iosfwd iostream istream iterator limits list
    locale map memory mutex new numeric optional ostream queue random ratio regex set shared_mutex sstream stack
    stdexcept streambuf string string_view system_error thread tuple type_traits typeindex typeinfo
    unordered_map unordered_set utility valarray variant vector""".split())

# The platform's public headers and generated code, in the source of the device too. Nothing else of the system:
# no sockets, no files, no threads but the standard library's.
PLATFORM = ("android/log.h", "log/", "hidl/", "utils/", "cutils/", "android/hidl/")
GENERATED = ("vendor/zentrovi/tv/zvttvfactory/",)
ANY = ("",)

# Room: what it may include of the tree; what it may include in angle brackets beyond the standard library.
# The first row whose folder (or file) holds the including file counts.
ROOMS = [
    ("chiplayer/", ["chiplayer/"], ()),
    ("service/frame/StatePage.cpp", ["service/frame/"], PLATFORM + ("fcntl.h", "poll.h", "sys/stat.h", "unistd.h")),
    ("service/frame/", ["service/frame/", "chiplayer/"], PLATFORM),
    ("service/trace/Trace.cpp", ["service/trace/"], PLATFORM + ("hwbinder/IPCThreadState.h", "fcntl.h", "poll.h", "pthread.h", "sys/eventfd.h", "sys/stat.h", "unistd.h")),
    ("service/main.cpp", ["service/frame/", "manager/", "adapters/", "chiplayer/custom.h"],
     PLATFORM + GENERATED + ("service/trace/TracedInterfaces.h",)),
    ("service/", ["service/"], PLATFORM + GENERATED),
    ("manager/", ["manager/", "service/frame/", "service/trace/", "chiplayer/"], PLATFORM + GENERATED + ("hwbinder/IPCThreadState.h", "sys/types.h")),
    ("adapters/", ["adapters/", "service/frame/", "chiplayer/"], PLATFORM + GENERATED),
    # The simulated board: its modules know the rooms, rooms know the board and its storage, never the reverse.
    ("simulator/board/", ["simulator/board/", "chiplayer/"], ANY),
    ("simulator/storage/", ["simulator/storage/", "simulator/board/", "chiplayer/"], ANY),
    ("simulator/modules/", ["simulator/", "chiplayer/"], ANY),
] + [(f"simulator/{room}/", [f"simulator/{room}/", "simulator/storage/", "simulator/board/", "chiplayer/"], ANY)
     for room in ("audio", "inputs", "network", "panel", "peripheral", "upgrade")] + [
    ("simulator/", [], ()),
    ("tools/hwservicemanager/", ["tools/hwservicemanager/", "platform/binding/CheckedLock.h", "platform/binding/Complaints.h", "platform/kernel/KernelBackend.h"], ANY),
    # The probe stands where the service meets the chip layer. The tool knows what it reports, and no more of it.
    ("tools/check/Report.h", [], ()),
    ("tools/check/", ["tools/check/", "chiplayer/"], ANY),
    ("tools/", ["tools/fapictl/", "tools/check/Report.h"], ANY),
    # What somebody without the tree can build.
    ("examples/", [], ("hidl/", "android/hidl/") + GENERATED),
    ("platform/include/", [], PLATFORM + ("hwbinder/", "sched.h", "sys/types.h")),
    ("platform/parcel/", [], ("hwbinder/", "utils/")),
    ("platform/binding/Backend.cpp", ["platform/binding/", "platform/kernel/", "platform/socket/"], ANY),
    ("platform/binding/", ["platform/binding/"], ANY),
    ("platform/socket/", ["platform/socket/", "platform/binding/"], ANY),
    ("platform/kernel/", ["platform/kernel/", "platform/binding/"], ANY),
    ("platform/hidl/", ["platform/hidl/", "platform/binding/"], ANY),
    ("platform/backtrace/", ["platform/backtrace/"], ANY),
    ("platform/microhttpd/", [], ANY),
    ("platform/", [], ()),
]
# What no row's "anything" covers, in all rooms of a folder.
FORBIDDEN = {
    "simulator/": ("android/", "log/", "hidl/", "hwbinder/", "utils/", "cutils/") + GENERATED,
    "tools/": ("hwbinder/",),
    "platform/": GENERATED,
    "platform/binding/": ("hidl/", "android/hidl/"),
    "platform/socket/": ("hidl/", "android/hidl/base/"),  # names are an object of android.hidl.manager, too
}

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')


def row_of(name):
    return next((row for row in ROOMS if name == row[0] or (row[0].endswith("/") and name.startswith(row[0]))), None)


def broken_rule(root, name, quoted, angled):
    """What is wrong with one include of the file, or None."""
    room, tree, system = row_of(name)
    if quoted:
        if not (root / quoted).is_file():
            return "is not a file of the tree, named from its root"
        return None if quoted.startswith(tuple(tree)) else f"does not belong to what {room} may include"
    if (root / angled).is_file():
        return "is a file of the tree: in quotes"
    if any(room.startswith(folder) and angled.startswith(names) for folder, names in FORBIDDEN.items()):
        return f"is nothing that {room} may know"
    if angled in STANDARD or angled.startswith(system):
        return None
    return f"is neither the standard library nor a header that {room} may include"


def check(root):
    """Violations as lines of text, and the number of includes seen."""
    violations, seen = [], 0
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".h", ".cpp") or row_of(name) is None:
            continue
        lines = path.read_text(encoding="utf-8").splitlines()
        if path.suffix == ".h" and "#pragma once" not in lines:
            violations.append(f"{name}: has no #pragma once")
        for number, line in enumerate(lines, 1):
            match = INCLUDE.match(line)
            if match:
                seen += 1
                rule = broken_rule(root, name, *match.groups())
                if rule:
                    violations.append(f"{name}:{number}: {match[1] or match[2]} {rule}")
    return violations, seen


# File, the text after #include, and whether it is a violation.
PLANTED = [
    ("adapters/a/A.cpp", '"chiplayer/sys.h"', False),
    ("adapters/a/A.cpp", "<vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiTv.h>", False),
    ("adapters/a/A.cpp", "<hwbinder/Parcel.h>", True),
    ("adapters/a/A.cpp", "<sys/socket.h>", True),
    ("adapters/a/A.cpp", "<unistd.h>", True),
    ("adapters/a/A.cpp", '"manager/M.h"', True),
    ("manager/M.cpp", '"platform/socket/P.h"', True),
    ("manager/M.cpp", '  "simulator/board/S.h"', True),
    ("manager/M.cpp", '"M.h"', True),
    ("service/main.cpp", '"manager/M.h"', False),
    ("service/main.cpp", '"chiplayer/sys.h"', True),
    ("manager/M.cpp", "<hwbinder/IPCThreadState.h>", False),
    ("manager/M.cpp", "<hwbinder/Parcel.h>", True),
    ("service/frame/F.h", "<poll.h>", True),
    ("service/frame/F.h", "<vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiTv.h>", True),
    ("chiplayer/sys.h", "<cstdint>", False),
    ("chiplayer/sys.h", "<log/log.h>", True),
    ("platform/include/hidl/I.h", "<hwbinder/Parcel.h>", False),
    ("platform/include/hidl/I.h", "<sys/socket.h>", True),
    ("platform/include/hidl/I.h", '"platform/binding/B.h"', True),
    ("platform/parcel/P.cpp", "<hwbinder/Parcel.h>", False),
    ("platform/parcel/P.cpp", '"platform/socket/P.h"', True),
    ("platform/binding/B.cpp", '"platform/binding/B.h"', False),
    ("platform/binding/B.cpp", '"platform/socket/P.h"', True),
    ("platform/binding/B.cpp", "<hidl/Status.h>", True),
    ("platform/binding/Backend.cpp", '"platform/socket/P.h"', False),
    ("platform/binding/Backend.cpp", '"platform/hidl/H.h"', True),
    ("platform/socket/P.cpp", '"platform/hidl/H.h"', True),
    ("platform/socket/P.cpp", '"platform/hidl/H.h"', True),
    ("platform/socket/P.cpp", "<hidl/Status.h>", True),
    ("platform/socket/P.cpp", '"platform/binding/B.h"', False),
    ("platform/hidl/H.cpp", '"platform/binding/B.h"', False),
    ("platform/new/N.cpp", '"platform/binding/B.h"', True),
    ("platform/hidl/H.cpp", '"platform/socket/P.h"', True),
    ("platform/socket/P.h", "<sys/socket.h>", False),
    ("platform/socket/P.h", '"chiplayer/sys.h"', True),
    ("platform/socket/P.h", "<vendor/zentrovi/tv/zvttvfactory/1.0/types.h>", True),
    ("simulator/board/S.h", "<fcntl.h>", False),
    ("simulator/board/S.h", "<log/log.h>", True),
    ("simulator/S.h", "<fcntl.h>", True),
    ("simulator/board/S.cpp", '"simulator/storage/S.h"', True),
    ("simulator/storage/S.cpp", '"simulator/board/S.h"', False),
    ("simulator/storage/S.cpp", '"simulator/panel/S.h"', True),
    ("simulator/panel/S.cpp", '"simulator/storage/S.h"', False),
    ("simulator/panel/S.cpp", '"simulator/audio/S.h"', True),
    ("simulator/panel/S.cpp", '"simulator/modules/S.h"', True),
    ("simulator/modules/S.cpp", '"simulator/panel/S.h"', False),
    ("tools/fapictl/T.cpp", "<CLI/CLI.hpp>", False),
    ("tools/fapictl/T.cpp", "<chiplayer/sys.h>", True),
    ("tools/fapictl/T.cpp", '"platform/socket/P.h"', True),
    ("tools/fapictl/T.cpp", '"tools/check/P.h"', True),
    ("tools/check/P.cpp", '"chiplayer/sys.h"', False),
    ("examples/e/E.cpp", '"platform/binding/B.h"', True),
]


def self_test():
    """Plants every row alone in a tree where all the named files exist."""
    for name, included, wrong in PLANTED:
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for file in ["chiplayer/sys.h", "manager/M.h", "platform/binding/B.h", "platform/hidl/H.h",
                         "platform/hidl/H.h", "platform/socket/P.h", *(f"simulator/{room}/S.h" for room in ("audio", "board", "modules",
                                                                                       "panel", "storage")),
                         "tools/check/P.h", name]:
                (root / file).parent.mkdir(parents=True, exist_ok=True)
                (root / file).write_text("#pragma once\n")
            with open(root / name, "a", encoding="utf-8") as file:
                file.write(f"#include {included}\n")
            violations, seen = check(root)
            if seen != 1 or bool(violations) != wrong:
                sys.exit(f"check-includes.py is broken: {name} including {included}: {violations}")


def main():
    self_test()
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent)
    violations, seen = check(root)
    print("\n".join(violations + [f"{seen} includes, {len(violations)} violations"]))
    sys.exit(1 if violations or seen == 0 else 0)


main()
