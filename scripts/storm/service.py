"""The real service, its clients, and what they cost."""

import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import time

BIN = pathlib.Path(sys.argv[1]).resolve()
MANAGER = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiManager"
CALLS = 10_000
failed = []


def check(good, text):
    if not good:
        failed.append(text)
    print(("ok    " if good else "FAILED"), text, flush=True)


class Session:
    """fapictl session, a request at a time."""

    def __init__(self, environment, user=None):
        self.process = subprocess.Popen([BIN / "fapictl", "session"], env=environment, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, user=user)

    def __call__(self, verb, **params):
        self.process.stdin.write(json.dumps({"jsonrpc": "2.0", "id": 1, "method": verb, "params": params}) + "\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        if not line:
            raise RuntimeError("the session has ended")
        answer = json.loads(line)
        if "error" in answer:
            raise RuntimeError(answer["error"]["message"])
        return answer["result"]

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()


class Service:
    def __init__(self, folder, user=None):
        folder.mkdir(mode=0o711, exist_ok=True)
        self.folder = folder
        self.user = user
        self.environment = dict(os.environ, HIDL_RUNTIME_DIR=str(folder / "registry"), ZVTTV_STATE_DIR=str(folder / "state"),
                                ZVTTV_DEBUG_LEVEL="0", ZVTTV_BOARD_UPGRADE_MS="1", ZVTTV_FRC_UPGRADE_MS="1")
        self.environment.setdefault("HIDL_TRANSPORT", "socket")
        for name in ("registry", "state"):
            (folder / name).mkdir(mode=0o700)
            if user is not None:
                os.chown(folder / name, user, user)
        self.start()

    def start(self):
        with open(self.folder / "service.log", "ab") as log:
            self.process = subprocess.Popen([BIN / "vendor.zentrovi.tv.zvttvfactory@1.0-service"], env=self.environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log, user=self.user)
        subprocess.run([BIN / "fapictl", "wait", "--timeout", "60"], env=self.environment, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, user=self.user)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def watcher(self, out=subprocess.DEVNULL):
        return subprocess.Popen([BIN / "fapictl", "watch"], env=self.environment, stdin=subprocess.DEVNULL, stdout=out,
                                stderr=subprocess.DEVNULL)

    def clients(self, session):
        return int(re.search(r"(?m)^clients: (\d+)$", session("debug", interface=MANAGER)["text"]).group(1))

    def place(self, name):
        return pathlib.Path("/proc") / str(self.process.pid) / name

    def number(self, name):
        """Of /proc/PID/status; sizes in KiB."""
        return int(re.search(rf"(?m)^{name}:\s+(\d+)", self.place("status").read_text()).group(1))

    def cost(self):
        """Resident KiB, descriptors."""
        return self.number("VmRSS"), len(list(self.place("fd").iterdir()))

    def lowest_descriptor(self):
        """The number that the next one gets."""
        taken = {int(each.name) for each in self.place("fd").iterdir()}
        return min(set(range(len(taken) + 1)) - taken)

    def runs(self):
        return self.process.poll() is None

    def limited(self, kind, most):
        """While it lasts, the running service has no more of that than so much."""
        return Limit(self, kind, most)

    def sockets(self):
        """The abstract names that the service listens under."""
        inodes = set()
        for fd in self.place("fd").iterdir():
            try:
                inodes.update(re.findall(r"^socket:\[(\d+)\]$", os.readlink(fd)))
            except FileNotFoundError:
                pass
        names = []
        for line in pathlib.Path("/proc/net/unix").read_text().splitlines()[1:]:
            words = line.split()
            if len(words) > 7 and words[6] in inodes and words[7].startswith("@") and int(words[3], 16) & 0x10000:
                names.append("\0" + words[7][1:])
        return names


class Limit:
    """By the program of that name, as the service's user: root alone may not be allowed to."""

    def __init__(self, service, kind, most):
        self.service, self.kind, self.most = service, kind, most

    def call(self, *words):
        return subprocess.run(["prlimit", f"--pid={self.service.process.pid}", *words], user=self.service.user, check=True, text=True,
                              stdout=subprocess.PIPE).stdout.strip()

    def __enter__(self):
        self.before = self.call(f"--{self.kind}", "--raw", "--noheadings", "--output=SOFT")
        self.call(f"--{self.kind}={self.most}:")

    def __exit__(self, *_):
        self.call(f"--{self.kind}={self.before}:")


def eventually(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.05)
    return condition()


def latencies(session):
    """Median and 99th percentile of a call, microseconds: each the best of five rounds, since a machine has other things to do
    at times, which is not what is looked for."""
    rounds = []
    for _ in range(5):
        taken = []
        for _ in range(CALLS // 5):
            begin = time.perf_counter()
            session("call", interface="Information", method="get_fapi_sw_version")
            taken.append((time.perf_counter() - begin) * 1e6)
        taken.sort()
        rounds.append((statistics.median(taken), taken[len(taken) * 99 // 100]))
    return min(each[0] for each in rounds), min(each[1] for each in rounds)


class Compared:
    """Latencies while a storm lasts, beside those before it and behind it, of which the slower count: a machine has its moods."""

    def __init__(self, name, session):
        self.name, self.session = name, session

    def __enter__(self):
        self.before = latencies(self.session)
        return self

    def measure(self):
        self.during = latencies(self.session)

    def __exit__(self, kind, *_):
        if kind is not None:
            return
        without = [max(both) for both in zip(self.before, latencies(self.session))]
        check(self.during[0] <= without[0] * 1.2 and self.during[1] <= without[1] * 2,
              f"{self.name}: median {without[0]:.0f} to {self.during[0]:.0f} us, "
              f"99th percentile {without[1]:.0f} to {self.during[1]:.0f} us")
