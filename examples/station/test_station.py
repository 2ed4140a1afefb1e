"""Checks one set. Each check says what it has seen in the report: see README.md."""

import secrets

from zvttvfactory.interfaces import ZvtTvFApiDispTstColor as Color
from zvttvfactory.interfaces import ZvtTvFApiDispTstPattern as Pattern

WHITE = Color(1023, 1023, 1023, 255)
BLACK = Color(0, 0, 0, 255)
UART, KEY = 0x100001, 0x100004  # events of the peripherals


def same(what, seen, wanted):
    assert seen == wanted, f"{what} is {seen!r}, not {wanted!r}"


def test_service(tv, step):
    """The service is there"""
    tv.information.get_fapi_sw_version(timeout=10)  # which waits for the service
    step.note("interfaces", len(tv.services()))


def test_versions(tv, step, expected):
    """Versions"""
    version = tv.information.get_fapi_sw_version().strVersion
    panel = tv.information.get_ini_para("panel", "name").strIniValue
    step.note("library", version)
    step.note("panel", panel)
    same("the library's version", version, expected["library"])
    same("the panel", panel, expected["panel"])


def test_keypad(tv, step, expected, jig):
    """A key of the keypad"""
    key = int(expected["key"])
    tv.peripheral.get_keypad_code(True)
    step.at_end(lambda: tv.peripheral.get_keypad_code(False))
    with tv.events(module="prphrl", type=KEY) as events:
        jig(f"key {key}")
        seen = events.next(timeout=30).records[0].value
    step.note("key", seen)
    same("the key", seen, key)


def test_edid(tv, step, expected):
    """EDIDs of the HDMI ports"""
    for port in expected["hdmi_ports"].split():
        data = tv.edid(int(port)).data
        step.note(f"port {port}", f"{len(data)} bytes")
        assert data[:8] == bytes([0, 255, 255, 255, 255, 255, 255, 0]), f"port {port}: no EDID"
        blocks = [data[at:at + 128] for at in range(0, len(data), 128)]
        assert len(blocks) == 1 + data[126], f"port {port}: blocks are missing"
        assert [sum(block) % 256 for block in blocks] == [0] * len(blocks), f"port {port}: wrong checksum"


def test_signal(tv, step, expected):
    """The generator's signal at the current input"""
    timing = tv.inputsource.get_input_timing().stTiming
    seen = f"{timing.u16HActive}x{timing.u16VActive}"
    step.note("signal", f"{seen} {timing.u32FrameRate / 1000:g} Hz")
    same("the signal", seen, expected["signal"])


def test_uart(tv, step, expected):
    """The UART with the loop plug"""
    text, port = f"loop {secrets.token_hex(4)}", int(expected["uart_port"])
    tv.peripheral.set_factory_uart_onoff(True, 1, port, 0)
    step.at_end(lambda: tv.peripheral.set_factory_uart_onoff(False, 1, port, 0))
    with tv.events(module="prphrl", type=UART) as events:
        tv.peripheral.write_factory_uart(text + "\n", len(text) + 1)
        seen = events.next(timeout=5).records[0].data
    step.note("came back", seen.decode(errors="replace"))
    same("what came back", seen, text.encode())


def show(tv, step, number, pattern, what, colours):
    """A test pattern, and colours that the picture of it has in places: (x, y): (red, green, blue)."""
    tv.displaytest.gen_test_pattern(number, pattern)
    step.at_end(lambda: tv.displaytest.gen_test_pattern(0, Pattern()))
    picture = step.look(what)
    if picture is not None:
        for place, colour in colours.items():
            same(f"the colour at {place}", picture.pixel(*place), colour)


def test_bars(tv, step):
    """Colour bars"""
    show(tv, step, 3, Pattern(), "eight bars, white to black",
         {(100, 540): (255, 255, 255), (580, 540): (0, 255, 255), (1300, 540): (255, 0, 0), (1800, 540): (0, 0, 0)})


def test_ramp(tv, step):
    """A ramp"""
    show(tv, step, 2, Pattern(stForeground=WHITE, stBackground=BLACK), "a ramp from white to black",
         {(0, 540): (255, 255, 255), (1919, 540): (0, 0, 0)})


def test_grid(tv, step):
    """A grid"""
    show(tv, step, 5, Pattern(stBackground=BLACK, stLine=WHITE, u16LineWidth=4), "a white grid of 16 by 9",
         {(1, 1): (255, 255, 255), (60, 60): (0, 0, 0), (121, 60): (255, 255, 255)})


def test_settings(tv, step):
    """Settings are kept as they are written"""
    parameter = ("panel", "backlight:pwm_max")
    before = tv.information.get_ini_para(*parameter).strIniValue
    step.at_end(lambda: tv.information.set_ini_para(*parameter, before))
    for value in "90", "100":
        tv.information.set_ini_para(*parameter, value)
        same("the parameter", tv.information.get_ini_para(*parameter).strIniValue, value)
    mark = f"checked-{secrets.token_hex(4)}"
    tv.system.set_emmc_env_var("station", mark)
    same("the variable", tv.system.get_emmc_env_var("station").strVarValue, mark)
    step.note("station", mark)
