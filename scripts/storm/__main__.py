"""Storms against the real service: figures and limits; status 1 when one is passed.

storm BIN [--nightly] [SECONDS] [STORM...]

BIN is the folder of the programs. The storms of deaths and the soak last SECONDS (default: 20); --nightly has ten thousand
deaths and a soak of ten minutes. HIDL_TRANSPORT=binder takes the kernel's binder driver; floods that break rules, and
a service of a user without threads, whom the device is closed to, are of sockets alone."""

import os
import pathlib
import sys
import tempfile

import deaths
import floods
import kills
import scarcity
import soak
from service import Service, Session, check, failed, latencies


def main():
    words = sys.argv[2:]
    nightly = "--nightly" in words
    seconds = [float(word) for word in words if word.replace(".", "", 1).isdigit()]
    seconds = seconds[0] if seconds else 20
    storms = {
        "deaths": lambda *on: deaths.deaths(*on, seconds, 10_000 if nightly else 0),
        "stopped": deaths.stopped,
        "large": floods.large_events,
        "floods": floods.floods,
        "methods": floods.methods,
        "scarcity": scarcity.scarcity,
        "threads": scarcity.threads,
        "greed": scarcity.greed,
        "soak": lambda *on: soak.soak(*on, 600 if nightly else seconds),
        "kills": lambda service, _: kills.kills(service),
    }
    asked = [word for word in words if word != "--nightly" and not word.replace(".", "", 1).isdigit()]
    unknown = [word for word in asked if word not in storms]
    if unknown:
        sys.exit(f"there is no storm {unknown[0]}, but {', '.join(storms)}")
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o711)
        service = Service(pathlib.Path(folder))
        if service.environment["HIDL_TRANSPORT"] != "socket":
            del storms["floods"], storms["threads"]
        session = Session(service.environment)
        try:
            latencies(session)
            for name, storm in storms.items():
                if name in asked or not asked:
                    storm(service, session)
                    check(service.runs(), f"{name}: the service runs")
        finally:
            session.end()
            service.kill()
    sys.exit(1 if failed else 0)


main()
