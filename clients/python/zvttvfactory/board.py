"""A service on a simulated board of its own, for tests. On the host alone."""

from __future__ import annotations

import os
import re
import shutil
import signal
import subprocess
import threading
import time
import weakref
from pathlib import Path
from types import TracebackType
from typing import Mapping, Optional, Type, Union

from .client import Record, Tv, connect, find_program
from .errors import Error, NotRegistered

SERVICE = "vendor.zentrovi.tv.zvttvfactory@1.0-service"

# How long the service may take to register, and to carry out an order. On an idle machine some tens of milliseconds,
# and less than one.
_PATIENCE = 30.0
# What the service says of an order that it does not carry out.
_REFUSAL = re.compile(r"^board: (?:not obeyed|nothing forced|no event raised|event 0x[0-9a-f]+|no module).*$", re.M)
# What it says of the orders by which we know that those before them have been carried out.
_MARK = re.compile(r'^.*"carried-out-\d+".*\n', re.M)


class BoardError(Error):
    """The service did not start, or refused an order; its words say why."""


def _kill(process: "subprocess.Popen[bytes]") -> None:
    process.kill()
    process.wait()


class Board:
    """A service with names and a board of its own, from start() or its with block on.

    Its names are in `folder`/registry, the board's state in `folder`/state, and what the service says in
    `folder`/service.log. What is done to the board has been done when a method returns. Any thread may call.

    :ivar tv: a connection to it, which lasts until the end, over restarts of the service
    :ivar state_folder: the board's state: settings, files, serial ports
    :ivar env: the variables by which other programs find it
    """

    def __init__(self, folder: Union[str, Path], *, service: Optional[Union[str, Path]] = None,
                 fapictl: Optional[Union[str, Path]] = None, env: Optional[Mapping[str, str]] = None,
                 timeout: Optional[float] = 30.0) -> None:
        """Starts nothing yet.

        :param service: the service's program; else $ZVTTV_SERVICE, the one on the PATH, or that of the tree's build
        :param fapictl: as of connect()
        :param env: more variables for the service, such as ZVTTV_BOARD_READY
        :param timeout: the connection's, for calls without one of their own
        """
        self.folder = Path(folder).resolve()
        self.state_folder = self.folder / "state"
        self.env = {"HIDL_TRANSPORT": "socket", "HIDL_RUNTIME_DIR": str(self.folder / "registry"),
                    "ZVTTV_STATE_DIR": str(self.state_folder)}
        self._more = dict(env or {})
        self._service = find_program(SERVICE, service, "ZVTTV_SERVICE")
        self._fapictl = find_program("fapictl", fapictl, "FAPICTL")
        self._timeout = timeout
        self._log = self.folder / "service.log"
        self._lock = threading.RLock()  # guards all below
        self._process: Optional["subprocess.Popen[bytes]"] = None
        self._tv: Optional[Tv] = None
        self._marks = 0

    def __enter__(self) -> "Board":
        try:
            self.start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    @property
    def tv(self) -> Tv:
        if self._tv is None:
            raise BoardError("the board has not been started")
        return self._tv

    @property
    def pid(self) -> int:
        """The service's process."""
        if self._process is None:
            raise BoardError("the service does not run")
        return self._process.pid

    def start(self, env: Optional[Mapping[str, str]] = None) -> None:
        """Starts the service and waits until it has registered.

        :param env: variables for this and all later starts
        """
        with self._lock:
            if self._process is not None:
                raise BoardError("the service runs already")
            self._more.update(env or {})
            self.folder.mkdir(parents=True, exist_ok=True)
            (self.folder / "registry").mkdir(mode=0o700, exist_ok=True)
            command = [self._service]
            # Whatever becomes of us. It goes by the thread, so that another one's end would be the service's, too.
            if shutil.which("setpriv") and threading.current_thread() is threading.main_thread():
                command = ["setpriv", "--pdeathsig", "KILL", *command]
            with open(self._log, "ab") as log:
                self._process = subprocess.Popen(command, env={**os.environ, **self.env, **self._more},
                                                 stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                                 start_new_session=True)
            self._finalizer = weakref.finalize(self, _kill, self._process)
            if self._tv is None:
                self._tv = connect(self._fapictl, env=self.env, timeout=self._timeout)
            self._await_names()

    def _await_names(self) -> None:
        assert self._process is not None and self._tv is not None
        end = time.monotonic() + _PATIENCE
        while True:
            try:
                self._tv.wait(timeout=0.2)
                return
            except NotRegistered as error:
                code = self._process.poll()
                if code is not None:
                    self._gone()
                    raise BoardError(f"the service has ended with {code}:\n{self._tail()}") from None
                if time.monotonic() > end:
                    raise BoardError(f"the service has not registered in {_PATIENCE:.0f} s: {error}\n{self._tail()}")

    def _gone(self) -> None:
        self._process = None
        self._finalizer.detach()

    def _tail(self) -> str:
        return "\n".join(self.log.splitlines()[-20:])

    def _end(self, how: int) -> None:
        with self._lock:
            if self._process is None:
                return
            self._process.send_signal(how)
            try:
                self._process.wait(_PATIENCE)
            except subprocess.TimeoutExpired:
                _kill(self._process)
                raise BoardError(f"the service did not end in {_PATIENCE:.0f} s:\n{self._tail()}") from None
            finally:
                self._gone()

    def kill(self) -> None:
        """Ends the service as a crash does. The board keeps what it keeps over a loss of power."""
        self._end(signal.SIGKILL)

    def stop(self) -> None:
        """Ends the service as the system does."""
        self._end(signal.SIGTERM)

    def restart(self, env: Optional[Mapping[str, str]] = None) -> None:
        """Ends the service, if it runs, and starts it on the same board.

        :param env: variables for this and all later starts
        """
        with self._lock:
            self.stop()
            self.start(env)

    def close(self) -> None:
        """Ends the connection and the service. The folder stays."""
        with self._lock:
            try:
                if self._tv is not None:
                    self._tv.close()
            finally:
                self._end(signal.SIGKILL)

    @property
    def log(self) -> str:
        """What the service has said since the first start."""
        return _MARK.sub("", self._log.read_text(errors="replace"))

    def order(self, *orders: str) -> None:
        """Has the board carry out orders, as a line each of its pipe `raise` takes them. That works while it is not
        ready, too, and is no call of the service. Raises BoardError with the service's words when it refuses."""
        if any("\n" in order for order in orders):
            raise BoardError("an order is one line")
        with self._lock:
            self._marks += 1
            mark = f'"carried-out-{self._marks}"'
            begin = self._log.stat().st_size
            lines = [*orders, "state " + mark.strip('"')]
            try:
                pipe = os.open(self.state_folder / "raise", os.O_WRONLY | os.O_NONBLOCK)
            except OSError as error:
                raise BoardError(f"the board takes no orders: {error}") from error
            os.set_blocking(pipe, True)
            with open(pipe, "w", encoding="utf-8") as file:
                file.write("\n".join(lines) + "\n")
            said = self._said_until(begin, mark)
        refusals = _REFUSAL.findall(said)
        if refusals:
            raise BoardError("; ".join(refusals))

    def _said_until(self, begin: int, mark: str) -> str:
        end = time.monotonic() + _PATIENCE
        while True:
            with open(self._log, "rb") as log:
                log.seek(begin)
                said = log.read().decode(errors="replace")
            found = said.find(mark)
            if found >= 0:
                return said[:said.rfind("\n", 0, found) + 1]
            if self._process is None or self._process.poll() is not None:
                raise BoardError(f"the service has ended:\n{self._tail()}")
            if time.monotonic() > end:
                raise BoardError(f"the board has not carried out an order in {_PATIENCE:.0f} s:\n{self._tail()}")
            time.sleep(0.0005)

    def force(self, function: str, status: int, times: Union[int, str] = 1) -> None:
        """Lets a function of the library end with a status and do nothing.

        :param function: of chiplayer/*.h, such as "sys_check_file"
        :param times: for so many calls, or "always"
        """
        self.order(f"force {function} {status} {times}")

    def unforce(self, function: str = "") -> None:
        """Ends what force() began, of one function or of all."""
        self.order(f"force {function} clear" if function else "force clear")

    def not_ready(self, milliseconds: Optional[int] = None) -> None:
        """Has the library answer that it is not ready, for so long or until ready()."""
        self.order("force not-ready" + ("" if milliseconds is None else f" {milliseconds}"))

    def ready(self) -> None:
        self.order("force ready")

    def raise_event(self, module: str, type: int, *records: Record) -> None:
        """Raises an event as the module would. Texts are without blanks and commas, which orders cannot have.

        :param module: "sys", "net", "disp", "disptst", "prphrl", "inpsrc", "aud" or "info"
        """
        self.order(" ".join([module, f"0x{type:x}", *map(_record, records)]))

    def key(self, code: int, pressed: Optional[bool] = None) -> None:
        """A key of the keypad is pressed and released, or one of that."""
        self.order(f"key {code}" + _press(pressed))

    def irkey(self, custom_code: int, code: int, pressed: Optional[bool] = None) -> None:
        """A key of a remote control is pressed and released, or one of that."""
        self.order(f"irkey {custom_code} {code}" + _press(pressed))

    def hdmi(self, port: int, connected: bool) -> None:
        """A source's cable is put into an HDMI port, or pulled."""
        self.order(f"hdmi {port} " + ("connect" if connected else "disconnect"))

    def earc(self, level: int) -> None:
        """The audio return channel at the other end: 0 none, 1 ARC, 2 eARC."""
        self.order(f"earc {level}")

    def gpio(self, line: int, level: int) -> None:
        """The level of a line, from outside."""
        self.order(f"gpio {line} {level}")

    def adc(self, channel: int, value: int) -> None:
        """An input of the ADC, 0 to 1023."""
        self.order(f"adc {channel} {value}")

    def source(self, source: str) -> None:
        """The user chooses another source: "none", "atv", "dtv", "av", "component", "vga", "hdmi1" and so on."""
        self.order(f"source {source}")

    def signal(self, source: str, timing: Optional[str], *more: str) -> None:
        """What arrives at a source.

        :param timing: such as "1920x1080i@50"; None when nothing arrives any longer
        :param more: such as "pal", "ber=120", "level=80"
        """
        self.order(f"signal {source} lost" if timing is None else " ".join(["signal", source, "lock", timing, *more]))

    def state(self, module: str = "") -> str:
        """What the board tells of its state, or of one module's: "aud", "disp" and so on."""
        with self._lock:
            self.order(f"state {module}".rstrip())
            return (self.state_folder / "state.txt").read_text(errors="replace")


def _press(pressed: Optional[bool]) -> str:
    return "" if pressed is None else " press" if pressed else " release"


def _record(record: Record) -> str:
    if re.search(r"[\s,]", record.text):
        raise BoardError(f"an order has no blanks or commas in a text: {record.text!r}; Tv.post() takes any")
    fields = [f"value={record.value}"] if record.value else []
    fields += [f"text={record.text}"] if record.text else []
    fields += [f"bytes={record.data.hex()}"] if record.data else []
    return ",".join(fields) or "-"
