"""The virtual chip: its power, what happens to it, frames through it, and its tables."""
import atexit
import ctypes
import os
import typing

from . import _frames, _states, _tables
from ._callbacks import raise_failure, run
from ._constants import CONSTANTS
from ._functions import FUNCTIONS, SWSDK
from ._journal import Fault, Journal
from ._records import RECORDS


def _power_off() -> None:
    """Journals and faults around it outlive it."""
    Journal.keep_all()
    Fault.keep_all()
    FUNCTIONS["swsdk_power_off"]()
    Journal.resume_all()
    Fault.resume_all()


class Chip:
    """The virtual chip, on from `with` to its end: each unit attached and initialized, or none yet when `cold`.

    With a path, it is the chip of the program that listens there, which is left as it is; the other arguments are that
    program's business then. Its methods are short forms of functions of the module, and raise what those raise.
    """

    def __init__(self, path: str | os.PathLike[str] | None = None, *, units: int = 1, ports: int = 12,
                 chip_type: int = 0, cold: bool = False) -> None:
        self._path = None if path is None else os.fsencode(path)
        self._board: typing.Any = RECORDS["swsdk_board"](units=units, ports=ports, chip_type=chip_type)
        self._cold = cold

    def __enter__(self) -> "Chip":
        if self._path is not None:
            FUNCTIONS["swsdk_connect"](self._path)
            return self
        _power_off()
        FUNCTIONS["swsdk_board_set"](self._board)
        if not self._cold:
            run(SWSDK.sdk_main, (0, None))
            for unit in range(self._board.units):
                run(SWSDK.system_init, (ctypes.c_int(unit),))
        return self

    def __exit__(self, failure: type[BaseException] | None, *_: object) -> None:
        try:
            if failure is None:
                FUNCTIONS["swsdk_events_drain"]()  # what happened reaches its callbacks
        finally:
            if self._path is not None:
                FUNCTIONS["swsdk_connect"](None)
            else:
                _power_off()
        if failure is None:
            raise_failure()

    # ---- tables ----

    @staticmethod
    def tables() -> list[str]:
        """The names that table() and show() know."""
        return _tables.names()

    @staticmethod
    def table(name: str, unit: int = 0) -> list[typing.Any]:
        """One of the chip's tables: a row of its class in sai_virtual.tables for each entry."""
        return _tables.rows(name, unit)

    @staticmethod
    def snapshot(unit: int = 0) -> _states.Snapshot:
        """All tables of the unit by name, for changes(), and the state of all units, for restore()."""
        return _states.Snapshot.taken(unit)

    @staticmethod
    def restore(state: _states.Snapshot | str | os.PathLike[str]) -> None:
        """Puts the chips into the state of a snapshot, or into one that is saved in a file. From there they go on
        exactly as they did."""
        _states.restore(state)

    @staticmethod
    def leftovers(unit: int = 0) -> list[str]:
        """What calls have left on the chip and nothing uses, each with the call that made it so, if one did:
        "VLAN 10 has no members (call 8: bcm_vlan_create(0, 10) = 0)"."""
        found: list[str] = []
        for line in typing.cast(str, FUNCTIONS["swsdk_check"](unit)).splitlines():
            if line.startswith("  "):
                found[-1] += f" ({line.strip()})"
            else:
                found.append(line)
        return found

    @staticmethod
    def show(table: str, unit: int = 0) -> str:
        """One of the chip's tables as text."""
        return typing.cast(str, FUNCTIONS["swsdk_show"](unit, table))

    # ---- frames ----

    @staticmethod
    def send(port: int, frame: typing.Any, unit: int = 0) -> _frames.Sent:
        """Makes a frame come in at a port: bytes, or what bytes() makes some of, such as a packet of Scapy."""
        return _frames.send(port, frame, unit)

    @staticmethod
    def capture(unit: int = 0) -> _frames.Capture:
        """The frames that leave during a `with`."""
        return _frames.Capture(unit)

    @staticmethod
    def watch(detail: int | str = CONSTANTS["SWSDK_WATCH_WAYS"], filter: bytes | None = None) -> _frames.Watch:
        """The frames that pass during a `with`, and their ways."""
        return _frames.Watch(detail, filter)

    @staticmethod
    def trace(port: int, frame: typing.Any, unit: int = 0) -> list[str]:
        """The lines of swsdk_frame_trace(): the way that a frame would take if it came in at a port."""
        return typing.cast(str, FUNCTIONS["swsdk_frame_trace"](unit, port, frame)).splitlines()

    @staticmethod
    def drops(port: int | None = None, unit: int = 0) -> dict[str, int]:
        """How many frames and copies a port, or all of the unit, has lost, by the names of the reasons."""
        if port is None:
            return _frames.drops(lambda reason: int(FUNCTIONS["swsdk_drops"](unit, reason)))
        return _frames.drops(lambda reason: int(FUNCTIONS["swsdk_port_drops"](unit, port, reason)))

    # ---- what happens ----

    @staticmethod
    def link(port: int, up: bool, unit: int = 0) -> None:
        """Takes a link up or down; all callbacks have run when it returns."""
        FUNCTIONS["swsdk_link_event"](unit, port, up)
        FUNCTIONS["swsdk_events_drain"]()

    @staticmethod
    def learn(mac: str | bytes, vlan: int, port: int, unit: int = 0) -> bool:
        """Makes the chip learn an address; returns whether it now has it at that port."""
        learned = FUNCTIONS["swsdk_l2_learn"](unit, vlan, mac, port, 0)
        FUNCTIONS["swsdk_events_drain"]()
        return bool(learned)

    @staticmethod
    def age(seconds: int, unit: int = 0) -> None:
        """Lets time pass."""
        FUNCTIONS["swsdk_clock_step"](unit, seconds)
        FUNCTIONS["swsdk_events_drain"]()

    # ---- the host ----

    @staticmethod
    def interfaces(unit: int = 0) -> list[typing.Any]:
        """The network interfaces that connect the host with the unit, a swsdk_netif each."""
        found: list[typing.Any] = []
        for _ in _tables.rows("netif", unit):
            found.append(FUNCTIONS["swsdk_netif_get"](unit, len(found)))
        return found

    @staticmethod
    def kernel_commands() -> list[bytes]:
        """What was sent to the host's kernel module, the newest first."""
        found: list[bytes] = []
        while command := FUNCTIONS["swsdk_kernel_command"](len(found)):
            found.append(command)
        return found


@atexit.register
def _end() -> None:
    """No thread of the SDK calls Python when there is none any more."""
    try:
        FUNCTIONS["swsdk_connect"](None)
    except ValueError:
        FUNCTIONS["swsdk_power_off"]()
