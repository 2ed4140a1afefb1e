"""Fixtures for tests of what calls the service: `board`, a service on a simulated board of the test's own, and `tv`, a
connection to it, or with --session to a real set."""

from __future__ import annotations

import shlex
from pathlib import Path
from typing import Iterator

import pytest

from .board import Board
from .client import Tv, connect


def pytest_addoption(parser: pytest.Parser) -> None:
    group = parser.getgroup("zvttvfactory", "factory service")
    group.addoption("--fapictl", help="the command-line client (else $FAPICTL, PATH, or the tree's release build)")
    group.addoption("--service", help="the service's program (else $ZVTTV_SERVICE, PATH, or the tree's release build)")
    group.addoption("--session", help="command of a session that tests with tv alone use in place of a simulated "
                                      "board: 'adb shell fapictl session'")


@pytest.fixture
def board(request: pytest.FixtureRequest, tmp_path: Path) -> Iterator[Board]:
    """A service on a fresh simulated board, with names and state of its own."""
    if request.config.getoption("--session"):
        pytest.skip("needs a simulated board")
    with Board(tmp_path / "board", service=request.config.getoption("--service"),
               fapictl=request.config.getoption("--fapictl")) as fresh:
        yield fresh


@pytest.fixture
def tv(request: pytest.FixtureRequest) -> Iterator[Tv]:
    """A connection to the service: of the test's simulated board, or through the command of --session."""
    session = request.config.getoption("--session")
    if not session:
        fresh: Board = request.getfixturevalue("board")
        yield fresh.tv
        return
    with connect(command=shlex.split(session), timeout=30) as connection:
        yield connection
