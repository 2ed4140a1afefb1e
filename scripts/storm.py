#!/usr/bin/env python3
"""Storms against the real service, over sockets: figures and limits; status 1 when one is passed.

storm.py BIN [SECONDS]      the folder of the programs; how long the storm of deaths lasts (default: 20)
"""

import json
import multiprocessing
import os
import pathlib
import random
import re
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import threading
import time

BIN = pathlib.Path(sys.argv[1]).resolve()
SECONDS = float(sys.argv[2]) if len(sys.argv) > 2 else 20
SURVIVORS = 5
STOPPED = 100
SILENT = 200
CALLS = 10_000
RATE = 100  # events a second
MANAGER = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiManager"
failed = False


def check(good, text):
    global failed
    failed = failed or not good
    print(("ok    " if good else "FAILED"), text, flush=True)


class Session:
    """fapictl session, a request at a time."""

    def __init__(self, environment):
        self.process = subprocess.Popen([BIN / "fapictl", "session"], env=environment, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def __call__(self, verb, **params):
        self.process.stdin.write(json.dumps({"jsonrpc": "2.0", "id": 1, "method": verb, "params": params}) + "\n")
        self.process.stdin.flush()
        answer = json.loads(self.process.stdout.readline())
        if "error" in answer:
            raise RuntimeError(answer["error"]["message"])
        return answer["result"]

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()


class Service:
    def __init__(self, folder):
        self.folder = folder
        self.environment = dict(os.environ, HIDL_RUNTIME_DIR=str(folder / "registry"), ZVTTV_STATE_DIR=str(folder / "state"),
                                HIDL_TRANSPORT="socket", ZVTTV_DEBUG_LEVEL="0")
        (folder / "registry").mkdir(mode=0o700)
        self.start()

    def start(self):
        with open(self.folder / "service.log", "ab") as log:
            self.process = subprocess.Popen([BIN / "vendor.zentrovi.tv.zvttvfactory@1.0-service"], env=self.environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        subprocess.run([BIN / "fapictl", "wait", "--timeout", "60"], env=self.environment, check=True, stdout=subprocess.DEVNULL)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def watcher(self, out=subprocess.DEVNULL):
        return subprocess.Popen([BIN / "fapictl", "watch"], env=self.environment, stdin=subprocess.DEVNULL, stdout=out,
                                stderr=subprocess.DEVNULL)

    def clients(self, session):
        return int(re.search(r"(?m)^clients: (\d+)$", session("debug", interface=MANAGER)["text"]).group(1))

    def cost(self):
        """Resident KiB, descriptors."""
        place = pathlib.Path("/proc") / str(self.process.pid)
        resident = int(re.search(r"VmRSS:\s+(\d+)", (place / "status").read_text()).group(1))
        return resident, len(list((place / "fd").iterdir()))

    def sockets(self):
        """The abstract names that the service listens under."""
        inodes = set()
        for fd in (pathlib.Path("/proc") / str(self.process.pid) / "fd").iterdir():
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


def eventually(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.05)
    return condition()


def latencies(session):
    """Median and 99th percentile of a call, microseconds."""
    taken = []
    for _ in range(CALLS):
        begin = time.perf_counter()
        session("call", interface="Information", method="get_fapi_sw_version")
        taken.append((time.perf_counter() - begin) * 1e6)
    taken.sort()
    return statistics.median(taken), taken[len(taken) * 99 // 100]


def compare(name, session, before):
    after = latencies(session)
    check(after[0] <= before[0] * 1.2 and after[1] <= before[1] * 2,
          f"{name}: median {before[0]:.0f} to {after[0]:.0f} us, 99th percentile {before[1]:.0f} to {after[1]:.0f} us")


def deaths(service, session):
    """Clients are killed at random points while events flow."""
    files = [open(service.folder / f"survivor-{i}", "w+") for i in range(SURVIVORS)]
    survivors = [service.watcher(file) for file in files]
    eventually(lambda: service.clients(session) == SURVIVORS)
    poster = Session(service.environment)
    stop = threading.Event()
    posted = [0]

    def post():
        due = time.monotonic()
        while not stop.is_set():
            poster("post", type="0x10000", records=[f"value={posted[0]}"])
            posted[0] += 1
            due += 1 / RATE
            time.sleep(max(0, due - time.monotonic()))

    def settle():
        eventually(lambda: service.clients(session) == SURVIVORS)
        time.sleep(1)
        return service.cost()

    thread = threading.Thread(target=post)
    thread.start()
    before = None
    killed = 0
    end = time.monotonic() + SECONDS
    while time.monotonic() < end:
        clients = [service.watcher() for _ in range(4)]
        time.sleep(random.random() * 0.02)
        for client in clients:
            client.kill()
        for client in clients:
            client.wait()
        killed += len(clients)
        if before is None and killed >= 100:
            before = settle()  # pools and caches are as large as they get
    stop.set()
    thread.join()
    after = settle()
    poster.end()
    wanted = list(range(posted[0]))

    def seen(file):
        file.seek(0)
        return [int(value) for value in re.findall(r"value=(\d+)", file.read())]

    good = sum(eventually(lambda file=file: seen(file) == wanted, 10) for file in files)
    check(good == SURVIVORS, f"deaths: {killed} clients killed, {good} of {SURVIVORS} survivors saw {posted[0]} events in order")
    check(before is not None and abs(after[0] - before[0]) <= 1024 and after[1] == before[1],
          f"deaths: memory and descriptors {before} to {after}, {service.clients(session)} clients")
    for survivor in survivors:
        survivor.terminate()
        survivor.wait()


def stopped(service, session):
    before = latencies(session)
    clients = [service.watcher() for _ in range(STOPPED)]
    eventually(lambda: service.clients(session) == STOPPED)
    for client in clients:
        client.send_signal(signal.SIGSTOP)
    for number in range(50):
        session("post", type="0x10000", records=[f"value={number}"])
    compare(f"{STOPPED} stopped clients", session, before)
    for client in clients:
        client.kill()
    for client in clients:
        client.wait()
    check(eventually(lambda: service.clients(session) == 0), f"{STOPPED} stopped clients: none is left")


def flood(names, block, made):
    """A process of its own, not to wait for the one that measures."""
    held = []
    while True:
        for name in names:
            connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            connection.settimeout(1)
            try:
                connection.connect(name)
                connection.sendall(block)
                made.value += 1
            except OSError:
                pass  # refused, or ended
            held.append(connection)
        if len(held) >= SILENT:
            for connection in held:
                connection.close()
            held.clear()
        time.sleep(0.002)


def floods(service, session):
    names = service.sockets()
    check(len(names) > 0, f"floods: {len(names)} sockets to flood")
    for title, block in (("connections without a word", b""), ("half messages", b"HTZ2\0\1\0\0\3\0"), ("garbage", os.urandom(4096))):
        before = latencies(session)
        made = multiprocessing.Value("L", 0)
        flooder = multiprocessing.Process(target=flood, args=(names, block, made), daemon=True)
        flooder.start()
        eventually(lambda made=made: made.value >= SILENT)
        compare(f"flood of {title}", session, before)
        flooder.kill()
        flooder.join()
        check(made.value >= SILENT, f"flood of {title}: {made.value} connections")


def kills(service):
    """What a client was told is written is there after the service was killed."""
    lost = acknowledged = 0
    for round_ in range(5):
        told = {}

        def write(number, told=told, round_=round_):
            session = Session(service.environment)
            try:
                for count in range(10_000):
                    text = f"{round_}.{count}"
                    answer = session("call", interface="Information", method="set_ini_para", arguments=[f"storm{number}", "at:last", text])
                    if not answer["failed"]:
                        told[number] = text
            except (RuntimeError, ValueError, OSError):
                pass  # the service has been killed
            session.end()

        threads = [threading.Thread(target=write, args=(number,)) for number in range(10)]
        for thread in threads:
            thread.start()
        time.sleep(0.5 + random.random())
        service.kill()
        for thread in threads:
            thread.join()
        service.start()
        session = Session(service.environment)
        for number, text in told.items():
            kept = session("call", interface="Information", method="get_ini_para", arguments=[f"storm{number}", "at:last"])
            value = next(one for one in kept["results"].values() if isinstance(one, str))
            # The next one may have been written, and not told of any more.
            count = int(text.split(".")[1])
            acknowledged += count + 1
            lost += value not in (text, f"{round_}.{count + 1}")
        session.end()
    check(lost == 0 and acknowledged > 0, f"kills: 5 under ten writers, {acknowledged} writes acknowledged, {lost} lost")


def main():
    with tempfile.TemporaryDirectory() as folder:
        service = Service(pathlib.Path(folder))
        session = Session(service.environment)
        try:
            latencies(session)
            deaths(service, session)
            stopped(service, session)
            floods(service, session)
            check(service.process.poll() is None, "the service is the one that was started")
            session.end()
            kills(service)
        finally:
            service.kill()
    sys.exit(1 if failed else 0)


main()
