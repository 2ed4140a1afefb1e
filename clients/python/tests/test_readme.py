"""The examples of README.md do what they show."""

from __future__ import annotations

import re
import subprocess
import sys
from pathlib import Path
from typing import List

import pytest

import zvttvfactory.pytest_plugin
from zvttvfactory.board import Board

README = (Path(__file__).parent.parent / "README.md").read_text(encoding="utf-8")
EXAMPLES = re.findall(r"^```python\n(.*?)^```", README, re.M | re.S)


def run(words: List[str], board: Board, folder: Path) -> str:
    environment = {**board.env, "PYTHONPATH": str(Path(zvttvfactory.__file__).parents[1]), "FAPICTL": board._fapictl,
                   "ZVTTV_SERVICE": board._service, "PATH": "/usr/bin:/bin"}
    done = subprocess.run([sys.executable, "-W", "error", *words], cwd=folder, env=environment, capture_output=True,
                          text=True, timeout=60)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.mark.parametrize("number, says", [
    (0, r"^sim-"),
    (1, r"^HEVC is licensed$"),
    (2, r"^-102 out of range\n-101$"),
    (3, r"sys 0x10001 hello$"),
])
def test_a_program(board: Board, tmp_path: Path, number: int, says: str) -> None:
    assert re.search(says, run(["-c", EXAMPLES[number]], board, tmp_path).strip())


def test_a_test(board: Board, tmp_path: Path) -> None:
    (tmp_path / "test_example.py").write_text(EXAMPLES[4])
    said = run(["-m", "pytest", "-p", "zvttvfactory.pytest_plugin", "-p", "no:cacheprovider", "test_example.py"],
               board, tmp_path)
    assert f"{EXAMPLES[4].count('def test_')} passed" in said
    assert len(EXAMPLES) == 5
