#!/usr/bin/env python3
"""Whether the tests notice what goes wrong: makes one fault at a time in a copy of the tree, and runs the tests on it.

mutate.py [--room NAME] [--only PATTERN] [-j N]     makes the faults of mutations.txt; fails below 95 % noticed
mutate.py --list                                    shows them
mutate.py --check                                   whether each one's text stands in its file, once

The copies, a tree and a build of it for each worker, are kept in build/mutate; the tree itself is only read. A fault
that a test notices fails the test, crashes it, or lets it run into its time limit. One that does not compile is an
error in the list.
"""

import argparse
import collections
import concurrent.futures
import fcntl
import os
import pathlib
import queue
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
LIST = ROOT / "scripts/mutations.txt"
WORK = ROOT / "build/mutate"
NEEDED = 95  # percent of the faults, of all rooms together
PATIENCE = (20, 4)  # seconds, and times what the program takes on the tree as it is
MEMORY = 8 << 30  # bytes for each process: a fault may allocate without end
SERVICE = "vendor.zentrovi.tv.zvttvfactory@1.0-service"

Mutation = collections.namedtuple("Mutation", "line room tests file promise old new equivalent")


class Trouble(Exception):
    """What ends the run: a list, a tree or a build that is not as it should be."""


def parse(text):
    """The list's entries; its own head says how it is written."""
    entries, room, programs, entry = [], None, [], None
    for number, line in enumerate(text.splitlines(), 1):
        mark, _, rest = line.partition(" ")
        if not line or mark == "#":
            continue
        if mark == "room":
            room, _, programs = rest.partition(": ")
            programs, entry = programs.split(), None
        elif mark == "@":
            file, _, promise = rest.partition(": ")
            entry = {"line": number, "room": room, "tests": programs, "file": file, "promise": promise,
                     "old": [], "new": [], "equivalent": ""}
            entries.append(entry)
        elif entry is None:
            raise Trouble(f"mutations.txt:{number}: belongs to no entry")
        elif mark in "-+":
            entry["old" if mark == "-" else "new"].append(rest)
        elif mark == "tests:":
            entry["tests"] = rest.split()
        elif mark == "equivalent:":
            entry["equivalent"] = rest
        else:
            raise Trouble(f"mutations.txt:{number}: '{mark}' says nothing")
    for entry in entries:
        entry.update(old="\n".join(entry["old"]), new="\n".join(entry["new"]))
        if not (entry["room"] and entry["tests"] and entry["promise"] and entry["old"].strip()):
            raise Trouble(f"mutations.txt:{entry['line']}: lacks its room, tests, promise or text")
    return [Mutation(**entry) for entry in entries]


def where(text, mutation):
    """The one place of the text to be changed. Where lines break and how they are indented is the formatter's matter."""
    pattern = r"\s+".join(re.escape(word) for word in mutation.old.split())
    found = [match.span() for match in re.finditer(pattern, text)]
    if len(found) != 1:
        raise Trouble(f"mutations.txt:{mutation.line}: its text stands {len(found)} times in {mutation.file}")
    return found[0]


def mutated(text, mutation):
    """The text with the fault in it."""
    begin, end = where(text, mutation)
    result = text[:begin] + mutation.new + text[end:]
    if result.split() == text.split():
        raise Trouble(f"mutations.txt:{mutation.line}: changes nothing")
    return result


def check(mutations):
    wrong = []
    for mutation in mutations:
        try:
            mutated((ROOT / mutation.file).read_text(encoding="utf-8"), mutation)
        except FileNotFoundError:
            wrong.append(f"mutations.txt:{mutation.line}: there is no {mutation.file}")
        except Trouble as trouble:
            wrong.append(str(trouble))
    return wrong


class Processes:
    """Those that run now, each with all that it started. An interrupted run ends them."""

    def __init__(self):
        self._lock = threading.Lock()
        self._running = set()
        self._stopped = False

    def run(self, command, seconds, **options):
        """The exit code (minus the signal; None when the time was up) and all output."""
        with tempfile.TemporaryFile() as output:
            with self._lock:
                if self._stopped:
                    raise Trouble("stopped")
                process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                           start_new_session=True, **options)
                self._running.add(process)
            try:
                code = process.wait(seconds)
            except subprocess.TimeoutExpired:
                code = None
            finally:
                with self._lock:
                    self._end(process)
                    self._running.discard(process)
                process.wait()
            if self._stopped:
                raise Trouble("stopped")  # it did not end by itself
            output.seek(0)
            return code, output.read().decode(errors="replace")

    def stop(self):
        with self._lock:
            self._stopped = True
            for process in self._running:
                self._end(process)

    @staticmethod
    def _end(process):
        for number in (signal.SIGTERM, signal.SIGKILL):  # the build tool ends its compilers when it is asked to end
            try:
                os.killpg(process.pid, number)
                process.wait(2)
            except (ProcessLookupError, subprocess.TimeoutExpired):
                pass


class Worker:
    """A copy of the tree and a build of it, one fault at a time."""

    def __init__(self, number, processes):
        self.folder = WORK / str(number)
        self.tree, self.build = self.folder / "tree", self.folder / "build"
        self._processes = processes
        self._faulty = None
        self._texts = {}  # of the files that were faulty, as they are without

    def copy(self):
        """Brings the copy to the tree's state; what is the same keeps its time, and is not built again."""
        listed = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                                capture_output=True, text=True).stdout
        names = {name for name in listed.split("\0") if name and (ROOT / name).is_file()}
        for path in list(self.tree.rglob("*")):
            if path.is_file() and path.relative_to(self.tree).as_posix() not in names:
                path.unlink()
        for name in names:
            source, target = ROOT / name, self.tree / name
            if not target.exists() or source.read_bytes() != target.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, target)
                shutil.copymode(source, target)

    def _environment(self):
        return {**os.environ, "CCACHE_BASEDIR": str(self.folder), "CCACHE_NOHASHDIR": "1"}

    def configure(self):
        linker = next((f"-fuse-ld={name}" for name in ("mold", "lld") if shutil.which(f"ld.{name}")), "")
        options = {
            "CMAKE_BUILD_TYPE": "None",  # the flags below, and no others
            "CMAKE_CXX_COMPILER": "g++",
            # The tests of the board's pictures gain more by the optimisation than the compiler loses. What a fault leaves
            # unused is no error.
            "CMAKE_CXX_FLAGS": "-O1 -w",
            "CMAKE_EXE_LINKER_FLAGS": linker, "CMAKE_SHARED_LINKER_FLAGS": linker,
            "CMAKE_CXX_COMPILER_LAUNCHER": shutil.which("ccache") or "",
            "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE": "PRE_TEST",  # a build runs no test program
            "ZVTTV_BENCH": "OFF"}
        command = ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja"]
        command += [word for name, value in options.items() for word in ("-D", f"{name}={value}")]
        code, output = self._processes.run(command, None, env=self._environment())
        if code != 0:
            raise Trouble(f"the tree cannot be configured:\n{output}")

    def make(self, programs, jobs=1):
        """Empty when all is built, else what the compiler said."""
        code, output = self._processes.run(["ninja", "-C", self.build, f"-j{jobs}", *programs], None,
                                           env=self._environment())
        return output if code != 0 else ""

    def set(self, mutation):
        """Puts this fault, or none, in place of the last one."""
        if self._faulty and (mutation is None or mutation.file != self._faulty):
            (self.tree / self._faulty).write_text(self._texts[self._faulty], encoding="utf-8")
        self._faulty = mutation.file if mutation else None
        if mutation:
            path = self.tree / mutation.file
            text = self._texts.setdefault(mutation.file, path.read_text(encoding="utf-8"))
            path.write_text(mutated(text, mutation), encoding="utf-8")

    def run(self, program, seconds):
        """Empty when all the program's tests pass, else how it ended and where."""
        with tempfile.TemporaryDirectory(prefix="mutate-") as folder:  # short: paths of sockets have 108 bytes
            environment = {**os.environ, "TMPDIR": folder, "TEST_TMPDIR": folder, "GTEST_FAIL_FAST": "1",
                           "ZVTTV_TEST_SERVICE": str(self.build / "bin" / SERVICE),
                           "ZVTTV_TEST_FAPICTL": str(self.build / "bin/fapictl")}
            code, output = self._processes.run([self.build / "bin" / program], seconds, cwd=folder, env=environment)
        if code == 0:
            return ""
        failed = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", output, re.M)
        begun = re.findall(r"^\[ RUN      \] ([\w/.]+)", output, re.M)
        test = f"{program} {(failed or begun[-1:] or ['before its tests'])[0]}"
        if code is None:
            return f"hangs in {test}"
        if failed and code > 0:
            return f"fails {test}"
        return f"ends {test} with {f'signal {-code}' if code < 0 else f'code {code}'}"


def taken_from(waiting):
    """What is left of a queue, one by one; other workers take theirs meanwhile."""
    try:
        while True:
            yield waiting.get_nowait()
    except queue.Empty:
        return


class Run:
    def __init__(self, mutations, count, processes):
        self._mutations, self._processes = mutations, processes
        self._workers = [Worker(number, processes) for number in range(count)]
        self._seconds = {}

    def _each(self, work):
        """Has each worker do it, side by side. What goes wrong with one, or an interruption, ends all."""
        with concurrent.futures.ThreadPoolExecutor(len(self._workers)) as pool:
            try:
                for done in concurrent.futures.as_completed([pool.submit(work, worker) for worker in self._workers]):
                    done.result()
            except BaseException:
                self._processes.stop()
                raise

    def prepare(self):
        """Builds the copies, and runs the tests on the tree as it is: they must pass, and say how long they take."""
        programs = sorted({program for mutation in self._mutations for program in mutation.tests})
        for worker in self._workers:
            worker.copy()  # before anything takes time: who works on the tree meanwhile does not disturb us
        for worker in self._workers:  # one by one: what the first has compiled, the others find in the compiler's cache
            worker.configure()
            said = worker.make(programs, jobs=len(self._workers))
            if said:
                raise Trouble(f"the tree cannot be built:\n{said}")
        waiting = queue.SimpleQueue()
        for program in programs:
            waiting.put(program)

        def passing(worker):
            for program in taken_from(waiting):
                begin = time.monotonic()
                said = worker.run(program, 600)
                if said:
                    raise Trouble(f"without any fault: {said}")
                self._seconds[program] = time.monotonic() - begin
        self._each(passing)
        shown = ", ".join(f"{name} {seconds:.0f} s" for name, seconds in self._seconds.items())
        print(f"all pass as they are: {shown}", flush=True)

    def _verdict(self, worker, mutation):
        """How a test noticed the fault, or empty; and what is wrong with the entry."""
        worker.set(mutation)
        for program in mutation.tests:  # in the list's order: who notices most for the least time stands first
            said = worker.make([program])
            if said:
                errors = [line for line in said.splitlines() if "error:" in line] or said.splitlines()[-5:]
                return "", f"mutations.txt:{mutation.line}: does not compile: " + "\n".join(errors)
            how = worker.run(program, PATIENCE[0] + PATIENCE[1] * self._seconds[program])
            if how:
                return how, ""
        return "", ""

    def judge(self):
        """Every mutation with its verdict. A worker takes a file's faults together: it builds each other file once."""
        groups = collections.defaultdict(list)
        for mutation in self._mutations:
            groups[mutation.file].append(mutation)
        waiting, results, lock = queue.SimpleQueue(), [], threading.Lock()
        for group in sorted(groups.values(), key=len, reverse=True):
            waiting.put(group)

        def work(worker):
            for group in taken_from(waiting):
                for mutation in group:
                    begin = time.monotonic()
                    how, wrong = self._verdict(worker, mutation)
                    with lock:
                        results.append((mutation, how, wrong))
                        print(f"{len(results):4}/{len(self._mutations)} {time.monotonic() - begin:5.0f} s  "
                              f"{mutation.file}: {mutation.promise}: {how or wrong or 'SURVIVED'}", flush=True)
            worker.set(None)
        self._each(work)
        return results


def place(mutation):
    """The line of the tree's file where the fault is made."""
    text = (ROOT / mutation.file).read_text(encoding="utf-8")
    return f"{mutation.file}:{text[:where(text, mutation)[0]].count(chr(10)) + 1}"


def report(results, places):
    """Prints the sums and the survivors. Whether that is good enough."""
    rooms = collections.defaultdict(collections.Counter)
    for mutation, how, wrong in results:
        kind = "wrong" if wrong else how.split()[0] if how else "survived"
        rooms[mutation.room][kind] += 1
        rooms["all"][kind] += 1
    rooms["all"] = rooms.pop("all")
    kinds = ("fails", "ends", "hangs", "survived", "wrong")
    print(f"\n{'room':24}" + "".join(f"{kind:>10}" for kind in kinds))
    for room, counts in rooms.items():
        print(f"{room:24}" + "".join(f"{counts[kind]:10}" for kind in kinds))
    survivors = [mutation for mutation, how, wrong in results if not how and not wrong]
    for mutation in sorted(survivors):
        print(f"\nsurvived: {places[mutation.line]}: {mutation.promise}\n  - {mutation.old}\n  + {mutation.new}\n"
              f"  not noticed by {' '.join(mutation.tests)}")
    wrong = [text for _, _, text in results if text]
    print("".join(f"\n{text}\n" for text in wrong), end="")
    share = 100 * (len(results) - len(survivors) - len(wrong)) / len(results)
    print(f"\n{share:.1f} % noticed, {NEEDED} % needed")
    return not wrong and share >= NEEDED


def interrupted(number, frame):
    raise KeyboardInterrupt


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--room", help="only this room's, or those of all rooms below it")
    parser.add_argument("--only", metavar="PATTERN", help="only those whose 'FILE: PROMISE' matches")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("-j", type=int, default=os.cpu_count(), metavar="N", help="workers (default: one per processor)")
    chosen = parser.parse_args()
    mutations = parse(LIST.read_text(encoding="utf-8"))
    if chosen.check:
        wrong = check(mutations)
        print("\n".join([*wrong, f"{len(mutations)} faults, {len(wrong)} that cannot be made"]))
        return not wrong
    mutations = [each for each in mutations if f"{each.room}/".startswith(f"{chosen.room}/" if chosen.room else "")
                 and re.search(chosen.only or "", f"{each.file}: {each.promise}")]
    if chosen.list:
        for each in mutations:
            mark = f" (equivalent: {each.equivalent})" if each.equivalent else ""
            print(f"{each.room:22} {each.file}: {each.promise}{mark}")
        return True
    mutations = [each for each in mutations if not each.equivalent]
    if not mutations:
        raise Trouble("no such fault")
    wrong = check(mutations)
    if wrong:
        raise Trouble("\n".join(wrong))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    WORK.mkdir(parents=True, exist_ok=True)
    lock = open(WORK / "lock", "w", encoding="utf-8")  # while this process lives
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        raise Trouble(f"another run is at work in {WORK}") from None
    places = {mutation.line: place(mutation) for mutation in mutations}
    processes = Processes()
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, interrupted)
    try:
        run = Run(mutations, min(chosen.j, len({each.file for each in mutations})), processes)
        run.prepare()
        return report(run.judge(), places)
    finally:
        processes.stop()


if __name__ == "__main__":
    try:
        sys.exit(0 if main() else 1)
    except Trouble as trouble:
        sys.exit(f"mutate.py: {trouble}")
    except KeyboardInterrupt:
        sys.exit("mutate.py: interrupted")
