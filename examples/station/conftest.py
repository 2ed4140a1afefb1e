"""What the checks of a set are given, and what becomes of what they have seen: pytest's own JUnit file, and a page."""

import datetime
import os
import platform
import shlex
import subprocess
import sys
import time
from pathlib import Path

import pytest

HERE = Path(__file__).parent
try:
    import zvttvfactory
except ModuleNotFoundError:  # not installed: the tree's own
    sys.path.insert(0, str(HERE.parents[1] / "clients/python"))
    import zvttvfactory

from page import Result, page
from picture import Picture


def pytest_addoption(parser):
    group = parser.getgroup("station")
    group.addoption("--page", metavar="FILE", help="where the report is written, as one HTML file")
    group.addoption("--set", metavar="COMMAND", help="a session with the set: 'adb shell fapictl session' "
                                                     "(default: with the service that fapictl finds here)")
    group.addoption("--expected", metavar="FILE", default=HERE / "set.conf", help="what a set is (default: set.conf)")


@pytest.fixture(scope="session")
def expected(request):
    """The names and values of set.conf."""
    text = Path(request.config.getoption("--expected")).read_text()
    return dict(word.split("=", 1) for word in shlex.split(text, comments=True))


@pytest.fixture(scope="session")
def tv(request):
    command = request.config.getoption("--set")
    with zvttvfactory.connect(command=shlex.split(command) if command else None, timeout=10) as connection:
        yield connection


@pytest.fixture(scope="session")
def jig():
    """Who presses keys and looks at the panel: $STATION_JIG, else somebody at the terminal."""
    command = shlex.split(os.environ.get("STATION_JIG", str(HERE / "operator.sh")))

    def ask(what):
        assert subprocess.run([*command, what], stdout=subprocess.DEVNULL).returncode == 0, f"not so: {what}"

    return ask


class Step:
    """What a check does beside checking."""

    def __init__(self, request, tv, jig):
        self._request = request
        self._tv = tv
        self._jig = jig
        request.node.pictures = []

    def note(self, name, value):
        """Something seen, for both reports."""
        self._request.node.user_properties.append((name, str(value)))

    def at_end(self, function):
        """Puts back what the check changes, whatever comes of it."""
        self._request.addfinalizer(function)

    def look(self, what):
        """What the panel shows; None where the set does not bring it to us and somebody has seen it."""
        try:
            png = self._tv.capture()
        except (zvttvfactory.OutputError, zvttvfactory.UsageError):
            self._jig(f"look {what}")
            return None
        self._request.node.pictures.append((what, png))
        return Picture(png)


@pytest.fixture
def step(request, tv, jig):
    return Step(request, tv, jig)


RESULTS = pytest.StashKey()
BEGAN = pytest.StashKey()


def pytest_configure(config):
    config.stash[RESULTS] = {}
    config.stash[BEGAN] = time.time()


def pytest_runtest_setup(item):
    first = next(iter(item.config.stash[RESULTS].values()), None)
    if first is not None and first.outcome == "failed" and first.name == "test_service":
        pytest.skip("there is no service to check")


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    report = (yield).get_result()
    result = item.config.stash[RESULTS].setdefault(item.nodeid, Result(item.name, item.function.__doc__ or item.name))
    result.seconds += report.duration
    result.notes = list(item.user_properties)
    result.pictures = getattr(item, "pictures", [])
    if report.failed:
        result.outcome = "failed"
        result.reasons.append((reason_of(call), str(report.longrepr)))
    elif report.skipped and result.outcome == "passed":
        result.outcome = "skipped"
        result.reasons.append((str(call.excinfo.value), ""))


def reason_of(call):
    """One line for the engineer: what an assertion says, or the error's words."""
    error = call.excinfo.value
    return (str(error) or type(error).__name__).splitlines()[0]


def pytest_sessionfinish(session):
    file = session.config.getoption("--page")
    results = list(session.config.stash[RESULTS].values())
    if file and results:
        began = datetime.datetime.fromtimestamp(session.config.stash[BEGAN]).astimezone()
        Path(file).write_text(page(results, began, platform.node()), encoding="utf-8")
