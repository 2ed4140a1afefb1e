"""The board of the fixtures: what is done to it, the service shows."""

from __future__ import annotations

from pathlib import Path
from typing import Any, Callable, List, Tuple

import pytest

import zvttvfactory
from zvttvfactory import Record, Tv
from zvttvfactory.board import Board, BoardError


@pytest.mark.parametrize("do, look, shown", [
    (lambda board: board.force("info_get_ip_enable_status", -77, 2),
     lambda tv: [tv.information.get_ip_enable_status(3, check=False).s32Status for _ in range(3)], [-77, -77, 0]),
    (lambda board: (board.force("sys_sync_fs", -9, "always"), board.unforce("sys_sync_fs")),
     lambda tv: tv.system.sync_fs(check=False).s32Status, 0),
    (lambda board: board.not_ready(), lambda tv: tv.system.sync_fs(check=False).s32Status, -5),
    (lambda board: (board.not_ready(), board.ready()), lambda tv: tv.system.sync_fs(check=False).s32Status, 0),
    (lambda board: board.gpio(5, 1), lambda tv: tv.peripheral.get_gpio_status(5).u8GpioStatus, 1),
    (lambda board: board.adc(2, 400), lambda tv: tv.peripheral.get_sar_adc(2, 0).u8Value, 100),
    (lambda board: board.earc(2), lambda tv: tv.peripheral.get_earc_status().s32EarcStatus, 2),
    (lambda board: (board.source("dtv"), board.signal("dtv", None)),
     lambda tv: tv.inputsource.get_ber(check=False).s32Status, -117),
])
def test_what_is_done_to_it_shows_at_once(board: Board, tv: Tv, do: Callable[[Board], Any], look: Callable[[Tv], Any],
                                          shown: Any) -> None:
    do(board)
    assert look(tv) == shown


@pytest.mark.parametrize("do, event", [
    (lambda board: board.key(116, True), (0x100004, 116, "keypad")),
    (lambda board: board.irkey(0x40, 5, False), (0x100004, 5, "ir")),
    (lambda board: board.hdmi(2, True), (0x100006, 2, "")),
    (lambda board: board.raise_event("disp", 0x40005, Record(3, "signal", b"\1")), (0x40005, 3, "signal")),
])
def test_what_it_raises_is_watched(board: Board, tv: Tv, do: Callable[[Board], None], event: object) -> None:
    tv.peripheral.get_keypad_code(True)
    with tv.events() as events:
        do(board)
        seen = events.next(10)
        assert (seen.type, *seen.records[0][:2]) == event


@pytest.mark.parametrize("do, says", [
    (lambda board: board.order("nonsense 1"), "no event raised"),
    (lambda board: board.key(9999), "no key of that code"),
    (lambda board: board.force("no_such_function", -1), "no_such_function"),
    (lambda board: board.state("nix"), "nix"),
    (lambda board: board.order("state\nstate"), "one line"),
    (lambda board: board.raise_event("disp", 1, Record(text="a b")), "blanks"),
])
def test_an_order_that_is_refused_raises_with_the_reason(board: Board, do: Callable[[Board], None], says: str) -> None:
    board.not_ready()
    with pytest.raises(BoardError, match=says):
        do(board)
    board.earc(1)  # the next is none the worse


def test_it_keeps_over_a_crash_what_a_board_keeps(board: Board, tv: Tv) -> None:
    tv.audio.adv_set_volume(0, 77)
    tv.system.set_wdt(True)
    first = board.pid
    with tv.events() as events:
        board.kill()
        with pytest.raises(zvttvfactory.ServiceDied):
            events.next(10)
    with pytest.raises((zvttvfactory.ServiceDied, zvttvfactory.NotRegistered)):
        tv.audio.adv_get_volume(0, timeout=0.01)
    with pytest.raises(BoardError, match="takes no orders|has ended"):
        board.ready()
    board.restart(env={"ZVTTV_BOARD_FORCE": "aud_adv_get_volume -9"})
    assert board.pid != first
    assert tv.audio.adv_get_volume(0, check=False).s32Status == -9
    assert tv.audio.adv_get_volume(0).s32Volume == 77
    assert not tv.system.get_wdt_status()
    assert "version" in board.log


def test_boards_are_apart_and_tell_why_one_does_not_start(board: Board, tv: Tv, tmp_path: Path) -> None:
    def another(folder: str, fapictl: str = board._fapictl, **env: str) -> Board:
        return Board(tmp_path / folder, service=board._service, fapictl=fapictl, env=env)

    with another("long" * 40) as other:
        other.tv.audio.adv_set_volume(0, 1)
        assert tv.audio.adv_get_volume(0).s32Volume == 30
    failing: List[Tuple[Callable[[], object], str]] = [
        (another("same", ZVTTV_STATE_DIR=str(board.state_folder)).start, "(?s)has ended with .*" + str(board.pid)),
        (lambda: another("unstarted").tv, "has not been started"),
        (another("unconnected", fapictl="/none").__enter__, "cannot run /none"),
    ]
    for fails, says in failing:
        with pytest.raises(zvttvfactory.Error, match=says):
            fails()
