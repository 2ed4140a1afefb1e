"""Peers that send as much as they can, by the rules or not."""

import multiprocessing
import os
import random
import socket
import threading
import time

from service import Compared, Session, check, eventually

SILENT = 200


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


def large_events(service, session):
    """Two clients take events of 56 KiB, so many that they have a part of the machine's time: some thirty a second."""
    stop = threading.Event()
    posted = []

    def post(poster, pause):
        while not stop.is_set():
            posted.append(poster("post", type="0x10000", records=[{"bytes": "5a" * 14_000}] * 4)["failed"])
            time.sleep(pause)

    with Compared("large events", session) as compared:
        clients = [service.watcher() for _ in range(2)]
        eventually(lambda: service.clients(session) == len(clients))
        poster = Session(service.environment)
        thread = threading.Thread(target=post, args=(poster, compared.before[0] * 300e-6))
        thread.start()
        compared.measure()
        stop.set()
        thread.join()
        poster.end()
        for client in clients:
            client.kill()
            client.wait()
    check(posted and not any(posted), f"large events: {len(posted)} posted, {sum(posted)} of them not told to somebody")


def methods(service, session, threads=64):
    """Clients at once call every method of every interface, with nothing and with something."""
    types = {}
    names = []
    for interface in session("introspect"):
        types.update(interface["types"])
        if interface["service"]:
            names += [(interface["shortName"], method["name"], [one["type"] for one in method["arguments"]])
                      for method in interface["methods"]]
    wrong = []
    made = [0] * threads

    def value(kind, some):
        if kind.startswith("vec<"):
            return []
        if kind == "string":
            return "a" if some else ""
        if kind == "bool":
            return some
        if kind.startswith("I"):
            return None
        if "fields" in types.get(kind, {}):
            return {}
        return [] if kind.endswith("]") else int(some)

    def call(number):
        mine = Session(service.environment)
        order = random.sample(names, len(names))
        for interface, method, arguments in order:
            try:
                mine("call", interface=interface, method=method, arguments=[value(kind, number % 2 == 1) for kind in arguments])
                made[number] += 1
            except RuntimeError as error:
                wrong.append(f"{interface} {method}: {error}")
        mine.end()

    workers = [threading.Thread(target=call, args=(number,)) for number in range(threads)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    check(sum(made) == threads * len(names) and not wrong and service.runs(),
          f"methods: {threads} clients, {len(names)} methods, {sum(made)} calls answered{''.join(chr(10) + one for one in wrong[:5])}")


def floods(service, session):
    names = service.sockets()
    check(len(names) > 0, f"floods: {len(names)} sockets to flood")
    for title, block in (("connections without a word", b""), ("half messages", b"HTZ2\0\1\0\0\3\0"), ("garbage", os.urandom(4096))):
        made = multiprocessing.Value("L", 0)
        with Compared(f"flood of {title}", session) as compared:
            flooder = multiprocessing.Process(target=flood, args=(names, block, made), daemon=True)
            flooder.start()
            eventually(lambda made=made: made.value >= SILENT)
            compared.measure()
            flooder.kill()
            flooder.join()
        check(made.value >= SILENT, f"flood of {title}: {made.value} connections")
