"""The service gets no more of something: it refuses what needs it, and goes on by itself when there is some again."""

import os
import pathlib
import re
import threading

from service import Service, Session, check, eventually

NOBODY = 65534


def write(session, path, text):
    """The status."""
    return session("call", interface="System", method="write_file", arguments=[path, text, False, False])["status"]["number"]


def set_value(session, value):
    return session("call", interface="Information", method="set_ini_para",
                   arguments=["storm", "at:last", value])["status"]["number"]


def get_value(session):
    answer = session("call", interface="Information", method="get_ini_para", arguments=["storm", "at:last"])
    return next(one for one in answer["results"].values() if isinstance(one, str))


def read(session, path, length):
    """The status; for a refused call, its text."""
    try:
        return session("call", interface="System", method="read_file",
                       arguments=[path, length, 0])["status"]["number"]
    except RuntimeError as error:
        return str(error)


def attempt(service, what):
    """What a new client comes to: a status, or None where it does not come in."""
    mine = Session(service.environment, service.user)
    try:
        return what(mine)
    except (RuntimeError, ValueError, OSError):
        return None
    finally:
        mine.end()


def scarcity(service, session):
    def works(what):
        check(get_value(session) == "kept", f"{what}: what was kept before is there")
        good = eventually(lambda: set_value(session, what) == 0 and get_value(session) == what and
                          attempt(service, lambda mine: write(mine, "storm", what)) == 0, 10)
        check(good and service.runs(), f"{what}: the same service goes on by itself, for new clients, too")

        set_value(session, "kept")

    def refuses(what, statuses, wanted):
        check(all(one in wanted for one in statuses) and service.runs(), f"{what}: answered with {sorted(set(statuses), key=str)}")

    set_value(session, "kept")
    write(session, "storm", "content")

    with service.limited("nofile", service.lowest_descriptor()):
        statuses = [set_value(session, "lost") for _ in range(20)] + [write(session, "storm", "lost") for _ in range(20)]
        strangers = [attempt(service, lambda mine: set_value(mine, "lost")) for _ in range(20)]
        refuses("no descriptors", statuses + strangers, (-110, None))
    works("descriptors again")

    with service.limited("fsize", 0):
        statuses = [set_value(session, "lost") for _ in range(20)] + [write(session, "storm", "lost") for _ in range(20)]
        refuses("no disk", statuses, (-113,))
    works("disk again")

    with service.limited("as", service.number("VmSize") * 1024):
        statuses = [read(session, "storm", 0xFFFFFFFF) for _ in range(20)]
        refuses("no address space", statuses, (-4,))
        strangers = [attempt(service, lambda mine: set_value(mine, "kept")) for _ in range(20)]
        check(all(one in (0, -110, None) for one in strangers), f"no address space: new clients {sorted(set(strangers), key=str)}")
    works("address space again")


def threads(service, _):
    """Of a user who may have no more; root always may."""
    if os.geteuid() == 0:
        service = Service(service.folder / "other", NOBODY)
    session = Session(service.environment, service.user)
    used = sum(int(re.search(r"(?m)^Threads:\s+(\d+)", text).group(1)) for text in statuses_of(os.stat(service.place("")).st_uid))
    before = service.number("Threads")

    def at_once():
        answered = []
        clients = [threading.Thread(target=lambda: answered.append(attempt(service, lambda mine: mine("capture")))) for _ in range(12)]
        for client in clients:
            client.start()
        for client in clients:
            client.join()
        return sum(one is not None for one in answered)

    with service.limited("nproc", used):
        answered = at_once()
        check(answered == 12 and service.number("Threads") == before, f"no threads: {answered} of 12 pictures at once by the {before} there are")
    answered = at_once()
    check(answered == 12 and service.number("Threads") > before, f"threads again: {answered} of 12 pictures at once by {service.number('Threads')}")
    session.end()
    if os.geteuid() == 0:
        service.kill()


def statuses_of(user):
    """Of all processes of a user."""
    for place in pathlib.Path("/proc").glob("[0-9]*/status"):
        try:
            if place.stat().st_uid == user:
                yield place.read_text()
        except OSError:
            pass  # it has ended


def greed(service, session):
    """Ten clients ask for 4 GiB each."""
    write(session, "storm", "content")
    service.place("clear_refs").write_text("5")  # the peak is what is resident now
    before = service.number("VmHWM")
    answers = []

    def ask():
        mine = Session(service.environment)
        for _ in range(20):
            answers.append(read(mine, "storm", 0xFFFFFFFF))
        mine.end()

    threads = [threading.Thread(target=ask) for _ in range(10)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    peak = service.number("VmHWM") - before
    check(len(answers) == 200 and peak < 64 * 1024 and service.runs(),
          f"greed: ten clients read with a buffer of 4 GiB: {sorted(set(answers), key=str)}, {peak} KiB more at the peak")
