"""Clients that are killed, and ones that stand still."""

import random
import re
import signal
import threading
import time

from service import Compared, Session, check, eventually

SURVIVORS = 5
STOPPED = 100
RATE = 100  # events a second


def deaths(service, session, seconds, clients_least):
    """Clients are killed at random points while events flow: for so long, and until there were so many."""
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
    end = time.monotonic() + seconds
    while time.monotonic() < end or killed < clients_least:
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
    """Clients stand still while they should take events."""
    with Compared(f"{STOPPED} stopped clients", session) as compared:
        clients = [service.watcher() for _ in range(STOPPED)]
        eventually(lambda: service.clients(session) == STOPPED)
        for client in clients:
            client.send_signal(signal.SIGSTOP)
        for number in range(50):
            session("post", type="0x10000", records=[f"value={number}"])
        compared.measure()
        for client in clients:
            client.kill()
        for client in clients:
            client.wait()
        check(eventually(lambda: service.clients(session) == 0), f"{STOPPED} stopped clients: none is left")
