"""The service on a simulated board, through a session: values in both directions, refusals, deadlines, events."""

from __future__ import annotations

import concurrent.futures
import subprocess
import sys
import threading
from pathlib import Path
from typing import Any, Callable, Type

import pytest

import zvttvfactory
from zvttvfactory import Error, Record, Tv
from zvttvfactory.board import Board
from zvttvfactory.interfaces import (
    InformationGetIpEnableStatus, PACKAGE, Status, ZvtTvFApiAdcPhase_t, ZvtTvFApiAudioOutPathEnum, ZvtTvFApiColor,
    ZvtTvFApiDispTstColor, ZvtTvFApiDispTstPattern,
)


def read_back(tv: Tv, data: bytes) -> bytes:
    tv.system.write_file_byte("/f", data, "w")
    return tv.system.read_file_byte("/f", len(data) + 1, 0).vecBytes


def written(tv: Tv, text: str) -> str:
    tv.system.write_file("/t", text, False, False)
    return tv.system.read_file("/t", 1000, 0).strData


def phases(tv: Tv) -> ZvtTvFApiAdcPhase_t:
    tv.inputsource.set_adc_phase(5, 1, 2, 63)
    return tv.inputsource.get_adc_phase(5).stPhase


@pytest.mark.parametrize("does, gives", [
    (lambda tv: tv.information.get_ip_enable_status(3), InformationGetIpEnableStatus(True)),
    (lambda tv: bool(tv.information.get_ip_enable_status(5)), False),
    (lambda tv: tv.information.a_hidl_zvttvfapi_info_get_ip_enable_status(u32IpId=3), (True,)),
    (lambda tv: tv.IZvtTvFApiInformation.get_ip_enable_status(5, check=False), (False, 0)),
    (lambda tv: tv.system.sync_fs(), None),
    (lambda tv: tv.system.sync_fs(check=False), Status(0)),
    (lambda tv: tv.system.get_wdt_status(), (False,)),
    (lambda tv: tv.peripheral.get_keypad_code(True, check=False), (True,)),
    (lambda tv: read_back(tv, b"\0"), b"\0"),
    (lambda tv: read_back(tv, bytes(range(256)) * 100), bytes(range(256)) * 100),
    (lambda tv: written(tv, "@/etc/passwd ä\u2028\U0001f600 'x=1' \\ \""), "@/etc/passwd ä\u2028\U0001f600 'x=1' \\ \""),
    (lambda tv: phases(tv), ZvtTvFApiAdcPhase_t(1, 2, 63)),
    (lambda tv: tv.display.get_tcon_info().stInfo.au8PanelName.rstrip(b"\0"), b"SIM-55UHD"),
    (lambda tv: tv.audio.set_volume_table(ZvtTvFApiAudioOutPathEnum.SPDIF, (0, 65535), "t"), None),
    (lambda tv: tv.audio.set_volume_table("spdif", [1], "t"), None),
    (lambda tv: tv.audio.set_volume_table(77, [1], "t", check=False), (-102,)),
    (lambda tv: tv.displaytest.gen_test_pattern(
        1, ZvtTvFApiDispTstPattern(stForeground=ZvtTvFApiDispTstColor(u32Red=1023, u8Alpha=255))), None),
    (lambda tv: tv.displaytest.gen_test_pattern(1, {"stForeground": {"u32Red": 1023}}), None),
    (lambda tv: tv.displaytest.set_burning_mode_adv(True, 1, [ZvtTvFApiColor(1), {}]), None),
    (lambda tv: tv.call("information", "get_ip_enable_status", [3])[:4],
     ("a_hidl_zvttvfapi_info_get_ip_enable_status", {"bEnable": True, "s32Status": 0}, 0, False)),
    (lambda tv: tv.version["package"], PACKAGE),
    (lambda tv: len(tv.services()), 10),
    (lambda tv: len(tv.wait("Audio", "information", ready=True)), 2),
    (lambda tv: [method["shortName"] for method in tv.introspect("network")[0]["methods"]],
     ["set_mac", "set_interface_updown"]),
    (lambda tv: tv.capture("osd")[:8], b"\x89PNG\r\n\x1a\n"),
    (lambda tv: tv.edid(1).data[:8].hex(), "00ffffffffffff00"),
    (lambda tv: tv.post(0x10001, {"value": 1}, "text=a", Record(), check=False), Status(0)),
])
def test_what_calls_give(tv: Tv, does: Callable[[Tv], Any], gives: Any) -> None:
    given = does(tv)
    assert given == gives
    assert type(given) is type(gives) or isinstance(given, tuple)


@pytest.mark.parametrize("does, error, says", [
    (lambda tv: tv.audio.adv_set_volume(0, 101), zvttvfactory.StatusError, r"set_volume: -102 \(out of range\)"),
    (lambda tv: tv.post(1), zvttvfactory.StatusError, "post_event: -2"),
    (lambda tv: tv.peripheral.write_factory_uart("x", 1), zvttvfactory.StatusError, "write_factory_uart: not done"),
    (lambda tv: tv.audio.adv_set_volume(0, 1 << 31), zvttvfactory.UsageError, "s32Volume .*out of range"),
    (lambda tv: tv.audio.adv_set_volume(0, 1.5), zvttvfactory.UsageError, "s32Volume"),
    (lambda tv: tv.audio.adv_set_volume(0, float("nan")), zvttvfactory.UsageError, "nothing that the session takes"),
    (lambda tv: tv.audio.set_volume_table("SPEKAER", [1], "t"), zvttvfactory.UsageError, "SPEAKER"),
    (lambda tv: tv.displaytest.gen_test_pattern(1, {"stForground": {}}), zvttvfactory.UsageError, "stForeground"),
    (lambda tv: tv.system.write_file_byte("/f", "00", "w"), TypeError, "given as bytes, not as str"),
    (lambda tv: tv.displaytest.gen_test_pattern(1, 5), TypeError, "as one or as a dictionary"),
    (lambda tv: tv.call("audoi", "x"), zvttvfactory.UsageError, "did you mean"),
    (lambda tv: tv.edid(9), Error, ""),
    (lambda tv: tv.events(module="nix").__enter__(), zvttvfactory.UsageError, "nix"),
    (lambda tv: tv.wait("Audio", instance="other", timeout=0.01), zvttvfactory.NotRegistered, ""),
    (lambda tv: tv.call("Audio", "adv_get_volume", [0], instance="other", timeout=0.01), zvttvfactory.NotRegistered,
     "other"),
])
def test_what_goes_wrong_is_told_apart(tv: Tv, does: Callable[[Tv], Any], error: Type[Exception], says: str) -> None:
    with pytest.raises(error, match=says) as caught:
        does(tv)
    assert type(caught.value) is error or error is Error
    assert tv.information.get_ip_enable_status(3).bEnable  # the connection is none the worse


def test_a_refusal_brings_what_the_call_would_have_given(board: Board, tv: Tv) -> None:
    board.force("info_get_ip_enable_status", -77)
    with pytest.raises(zvttvfactory.StatusError) as caught:
        tv.information.get_ip_enable_status(3)
    assert (caught.value.number, caught.value.results) == (-77, (False, -77))
    with pytest.raises(zvttvfactory.StatusError) as caught:
        tv.peripheral.write_factory_uart("x", 1)
    assert (caught.value.number, caught.value.results) == (None, (False,))


def test_waiting_for_the_library_ends_when_it_is_ready(board: Board, tv: Tv) -> None:
    board.not_ready()
    with pytest.raises(zvttvfactory.NotRegistered, match="not ready within"):
        tv.wait(ready=True, timeout=0.05)
    board.not_ready(100)
    tv.wait(ready=True)
    tv.system.sync_fs()


def test_a_text_that_is_not_utf8_comes_with_a_warning(tv: Tv) -> None:
    tv.system.write_file_byte("/latin1", b"caf\xe9", "w")
    with pytest.warns(UnicodeWarning, match="read_file.*not UTF-8"):
        assert tv.system.read_file("/latin1", 10, 0).strData == "caf\ufffd"


@pytest.fixture
def firmware(board: Board) -> str:
    """An image whose installation takes 3 s, on the board."""
    (board.folder / "payload").write_bytes(b"payload")
    subprocess.run([sys.executable, str(Path(__file__).parents[3] / "scripts/make-firmware.py"), "2", "7.1.0",
                    str(board.folder / "payload"), str(board.state_folder / "files/tuner.fw")], check=True)
    return "/tuner.fw"


def test_a_call_that_takes_too_long_is_not_waited_for(tv: Tv, firmware: str) -> None:
    with pytest.raises(zvttvfactory.DeadlineExceeded):
        tv.system.upgrade_fw(2, firmware, timeout=0.05)
    assert tv.system.upgrade_fw(2, firmware, check=False).s32Status == -104  # the first is under way


def test_calls_of_many_threads_run_at_once_and_end_with_the_service(board: Board, tv: Tv, firmware: str) -> None:
    with concurrent.futures.ThreadPoolExecutor(40) as threads:
        with tv.events(module="sys") as events:
            upgrade = threads.submit(tv.system.upgrade_fw, 2, firmware)
            events.next(10)  # it is under way
            answers = list(threads.map(lambda number: tv.information.get_ip_enable_status(number % 13).bEnable,
                                       range(400)))
            assert answers[:13] * 30 == answers[:390] and not upgrade.done()
            board.kill()
            with pytest.raises(zvttvfactory.ServiceDied):
                upgrade.result(10)
    board.start()
    assert tv.information.get_ip_enable_status(3)


def test_events_are_selected_and_none_is_lost(tv: Tv) -> None:
    with tv.events() as everything, tv.events(module=["sys", "net"], type=[0x10001, 0x20002]) as some:
        with tv.events(match="value=3") as third:
            for number in range(500):
                tv.post(0x10001 if number % 2 else 0x10002, Record(number, "t" * (number % 100), bytes(number)))
            tv.post(0x20002, "value=999")
            assert third.next(10).records[0].value == 3
        assert [everything.next(10).records[0] for _ in range(500)] == [
            Record(number, "t" * (number % 100), bytes(number)) for number in range(500)]
        assert [some.next(10).records[0].value for _ in range(251)] == [*range(1, 500, 2), 999]
        reader = threading.Thread(target=lambda: [tv.post(0x10001, Record(1))])
        reader.start()
        for event in some:
            assert event.records[0].value == 1
            break
        reader.join()
    tv.post(0x10001, Record(2))
    assert 2 not in [event.records[0].value for event in some]


def test_the_simulated_board_can_be_left_out(board: Board, pytester: pytest.Pytester) -> None:
    pytester.makepyfile("""
        def test_any(tv):
            tv.audio.adv_set_volume(0, 77)
        def test_simulated(board):
            pass
    """)
    done = pytester.runpytest_subprocess(
        "-p", "zvttvfactory.pytest_plugin", "--session",
        f"env HIDL_RUNTIME_DIR={board.env['HIDL_RUNTIME_DIR']} {board._fapictl} session")
    done.assert_outcomes(passed=1, skipped=1)
    assert board.tv.audio.adv_get_volume(0).s32Volume == 77
