"""libsai.so and the virtual chip for tests in Python.

The module has every function of sai.h under its own name. Output arguments are left out and returned as the call's
value; a negative code is raised as SaiError:

    import sai_virtual as sai

    with sai.Chip() as chip, sai.Journal() as journal:
        sai.sai_vlan_create(0, 10)
        sai.sai_bpdu_set(0, "01:80:c2:00:00:0e")  # the index of the entry
        journal.lines()  # ['bcm_vlan_create(0, 10) = 0', ...]
        with sai.fault("bcm_vlan_create", sai.BCM_E_FULL):
            sai.sai_vlan_create(0, 11)  # raises SaiError: sai_vlan_create: SAI_E_FULL (-13)

MAC and IPv6 addresses are texts or bytes, records are of the classes named as in sai.h, None is a null pointer. A value
that does not fit is rejected before the call, with the names of the function and the argument: a wrong type is a
TypeError, an integer out of range an OverflowError, a malformed address a ValueError. The loader finds the two
libraries as for any program.
"""
import contextlib
import ctypes
import os
import re
import tempfile

from . import _interface
from ._values import RECORDS, TYPES, answer, argument, l2_handler, link_handler, record, room

_sai = ctypes.CDLL("libsai.so")
_swsdk = ctypes.CDLL("libswsdk.so")

globals().update(_interface.CONSTANTS)
globals().update(RECORDS)

# Codes of the Chip SDK, for fault().
BCM_E_NONE, BCM_E_INTERNAL, BCM_E_MEMORY, BCM_E_UNIT, BCM_E_PARAM = 0, -1, -2, -3, -4
BCM_E_EMPTY, BCM_E_FULL, BCM_E_NOT_FOUND, BCM_E_EXISTS, BCM_E_TIMEOUT = -5, -6, -7, -8, -9
BCM_E_BUSY, BCM_E_FAIL, BCM_E_DISABLED, BCM_E_BADID, BCM_E_RESOURCE = -10, -11, -12, -13, -14
BCM_E_CONFIG, BCM_E_UNAVAIL, BCM_E_INIT, BCM_E_PORT = -15, -16, -17, -18

_CODE_NAMES = {value: name for name, value in _interface.CONSTANTS.items() if name.startswith("SAI_E_")}
_TEXT_ROOM = 64


class SaiError(Exception):
    """A function of the library returned a negative code."""

    def __init__(self, function, code, outputs):
        self.function = function
        self.code = code
        self.name = _CODE_NAMES.get(code, str(code))
        self.outputs = outputs  # some functions write them before they fail
        super().__init__(f"{function}: {self.name} ({code})")


# ---------------------------------------------------------------------------------------------- the library ----

# The library keeps callbacks and the identity of a log beyond the call.
_kept = []


def _function(name, kind, returned, parameters):
    function = getattr(_sai, name)
    function.restype = TYPES[returned]
    given = [p for p, c_type, role in parameters if role != "out" and not p.endswith(("_buf", "_len"))]
    is_kept = returned.endswith("*") or "service" in name
    is_log = name in ("sai_err", "sai_warn", "sai_notice", "sai_info", "sai_debug")

    def call(*values):
        if len(values) != len(given):
            raise TypeError(f"{name}({', '.join(given)}) takes {len(given)} arguments, not {len(values)}")
        rest = iter(values)
        passed, outputs = [], []
        for parameter, c_type, role in parameters:
            if parameter.endswith("_buf"):
                outputs.append(ctypes.create_string_buffer(_TEXT_ROOM))
                passed.append(outputs[-1])
            elif parameter.endswith("_len"):
                passed.append(ctypes.c_int32(_TEXT_ROOM))
            elif role in ("in", "needed"):
                passed.append(argument(f"{name}: {parameter}", c_type, next(rest), nullable=role == "in"))
            else:
                outputs.append(room(c_type))
                if role == "inout":
                    outputs[-1].value = argument(f"{name}: {parameter}", c_type.rstrip("*"), next(rest)).value
                passed.append(outputs[-1] if isinstance(outputs[-1], ctypes.Array) else ctypes.byref(outputs[-1]))
        if is_kept:
            _kept.append(passed)
        if is_log and passed[0] is not None:
            passed.insert(0, b"%s")  # the text is not a format
        result = function(*passed)
        answers = [answer(output) for output in outputs]
        if kind == "code" and result < 0:
            raise SaiError(name, result, answers)
        return result if not answers else answers[0] if len(answers) == 1 else tuple(answers)

    call.__name__ = call.__qualname__ = name
    call.__doc__ = f"{name}({', '.join(given)})"
    return call


for _name, (_kind, _returned, _parameters) in _interface.FUNCTIONS.items():
    globals()[_name] = _function(_name, _kind, _returned, _parameters)


class Log:
    """What the library logs from `with` to its end, up to a level. Without a log, messages go to standard error."""

    _stamp_and_module = re.compile(r"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d(\.\d+)? (\w+: )?\w+: ")

    def __init__(self, level=_interface.CONSTANTS["SAI_LOG_ERRORS"]):
        self._level = argument("Log: level", "int32_t", level)

    def __enter__(self):
        self._file = tempfile.TemporaryFile("r+", encoding="utf-8", errors="surrogateescape")
        self._handle = open_sai_log("", 0, 0, 0)
        libc = ctypes.CDLL(None)
        libc.fdopen.restype = ctypes.c_void_p
        self._handle.contents.file = libc.fdopen(os.dup(self._file.fileno()), b"a")
        self._handle.contents.max_level[_interface.CONSTANTS["SAI_LOG_FILE"]] = self._level.value
        ctypes.POINTER(sai_log_handle).in_dll(_sai, "sai_log_default").contents = self._handle.contents
        return self

    def __exit__(self, *_):
        ctypes.c_void_p.in_dll(_sai, "sai_log_default").value = None
        close_sai_log(self._handle)
        self._file.close()

    def lines(self):
        """The messages so far, without time stamp and module; a message with newlines in it is several lines."""
        self._file.seek(0)
        return [self._stamp_and_module.sub("", line.rstrip("\n"), count=1) for line in self._file]


# --------------------------------------------------------------------------------------------- the virtual chip ----


def _control(name, restype=ctypes.c_int, **parameters):
    """A function of the virtual chip, by the names and C types of its parameters."""
    function = getattr(_swsdk, name)
    function.restype = restype

    def call(*values):
        given = zip(parameters.items(), values, strict=True)
        return function(*(argument(f"{name}: {p}", c_type, value, nullable=False) for (p, c_type), value in given))

    return call


_Board = record("Chip", [(field, "int32_t", None) for field in ("units", "ports", "chip_type")])

_swsdk.swsdk_show.restype = ctypes.c_long
_swsdk.swsdk_journal_read.restype = ctypes.c_size_t
_swsdk.swsdk_frame_trace.restype = ctypes.c_long
_drop_name = _control("swsdk_drop_name", ctypes.c_char_p, reason="int32_t")
_port_drops = _control("swsdk_port_drops", ctypes.c_longlong, unit="int32_t", port="int32_t", reason="int32_t")
_show_table = _control("swsdk_show_table", ctypes.c_char_p, index="int32_t")
_link_event = _control("swsdk_link_event", unit="int32_t", port="int32_t", up="int32_t")
_l2_learn = _control(
    "swsdk_l2_learn", unit="int32_t", vid="int32_t", mac="const uint8_t[6]", port="int32_t", tunnel="uint32_t"
)
_clock_step = _control("swsdk_clock_step", unit="int32_t", seconds="int32_t")
_fault_inject = _control("swsdk_fault_inject", function="const char*", code="int32_t", nth="int32_t")
_line_handler = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_void_p)


def _check(result, what):
    if result < 0:
        raise ValueError(what() if callable(what) else what)
    return result


class Chip:
    """The virtual chip, on from `with` to its end: each unit attached and initialized, or none yet when `cold`.

    With a path, it is the chip of the program that listens there, which is left as it is; the other arguments are that
    program's business then.
    """

    def __init__(self, path=None, *, units=1, ports=12, chip_type=0, cold=False):
        self._path = None if path is None else os.fsencode(path)
        self._board = _Board(units=units, ports=ports, chip_type=chip_type)
        self._cold = cold

    def __enter__(self):
        if self._path is not None:
            reason = ctypes.create_string_buffer(512)
            _check(_swsdk.swsdk_connect(self._path, reason), lambda: reason.value.decode())
            return self
        _swsdk.swsdk_power_off()
        _check(_swsdk.swsdk_board_set(ctypes.byref(self._board)), "there is no such board")
        if not self._cold:
            _swsdk.sdk_main(0, None)
            for unit in range(self._board.units):
                _swsdk.system_init(unit)
        return self

    def __exit__(self, *_):
        if self._path is not None:
            _swsdk.swsdk_connect(None, None)
        else:
            _swsdk.swsdk_power_off()

    @staticmethod
    def tables():
        """The names that show() knows."""
        names = []
        while (name := _show_table(len(names))) is not None:
            names.append(name.decode())
        return names

    @staticmethod
    def show(table, unit=0):
        """One of the chip's tables as text."""
        place = argument("show: unit", "int32_t", unit), argument("show: table", "const char*", table, nullable=False)
        length = _check(_swsdk.swsdk_show(*place, None, 0), f"there is no table {table!r} of unit {unit}")
        buffer = ctypes.create_string_buffer(length + 1)
        _swsdk.swsdk_show(*place, buffer, ctypes.c_size_t(length + 1))
        return buffer.value.decode()

    @staticmethod
    def trace(port, frame, unit=0):
        """The lines of swsdk_frame_trace(): the way that a frame, bytes, would take if it came in at a port."""
        frame = bytes(frame)
        place = argument("trace: unit", "int32_t", unit), argument("trace: port", "int32_t", port)
        given = *place, frame, ctypes.c_size_t(len(frame))
        length = _check(_swsdk.swsdk_frame_trace(*given, None, 0), f"unit {unit} has no port {port}")
        buffer = ctypes.create_string_buffer(length + 1)
        _swsdk.swsdk_frame_trace(*given, buffer, ctypes.c_size_t(length + 1))
        return buffer.value.decode().splitlines()

    @staticmethod
    def drops(port, unit=0):
        """How many frames and copies a port has lost, by the names of the reasons."""
        counts = {}
        reason = 1
        while (name := _drop_name(reason)) is not None:
            lost = _check(_port_drops(unit, port, reason), f"unit {unit} has no port {port}")
            if lost > 0:
                counts[name.decode()] = lost
            reason += 1
        return counts

    @staticmethod
    def link(port, up, unit=0):
        """Takes a link up or down; all callbacks have run when it returns."""
        _check(_link_event(unit, port, up), f"unit {unit} has no Ethernet port {port}")
        _swsdk.swsdk_events_drain()

    @staticmethod
    def learn(mac, vlan, port, unit=0):
        """Makes the chip learn an address; returns whether it now has it at that port."""
        learned = _l2_learn(unit, vlan, mac, port, 0)
        _check(learned, f"unit {unit} has no port {port}, or there can be no VLAN {vlan}")
        _swsdk.swsdk_events_drain()
        return learned == 1

    @staticmethod
    def age(seconds, unit=0):
        """Lets time pass."""
        _check(_clock_step(unit, seconds), f"unit {unit} is not initialized, or time would go back")
        _swsdk.swsdk_events_drain()


class Journal:
    """The SDK calls from `with` to its end."""

    def __enter__(self):
        _swsdk.swsdk_journal_clear()
        _swsdk.swsdk_journal_record(1)
        return self

    def __exit__(self, *_):
        _swsdk.swsdk_journal_record(0)

    @staticmethod
    def lines():
        """A line for each call, since the last clear()."""
        length = _swsdk.swsdk_journal_read(None, 0)
        buffer = ctypes.create_string_buffer(length + 1)
        _swsdk.swsdk_journal_read(buffer, ctypes.c_size_t(length + 1))
        return buffer.value.decode(errors="surrogateescape").splitlines()

    @staticmethod
    def clear():
        _swsdk.swsdk_journal_clear()


@contextlib.contextmanager
def fault(function, code, nth=1):
    """Makes the nth call of an SDK function return `code`; every call with nth=0. Removes all faults at the end."""
    refused = f"the Chip SDK has no function {function!r}, or {nth} is negative"
    _check(_fault_inject(function, code, nth), refused)
    try:
        yield
    finally:
        _swsdk.swsdk_fault_clear()


@contextlib.contextmanager
def recording(path):
    """Records every SDK call to a file. The chip must be off at the start."""
    _check(_swsdk.swsdk_record_start(os.fsencode(path)), f"the chip is on, or {os.fspath(path)!r} cannot be written")
    try:
        yield
    finally:
        _check(_swsdk.swsdk_record_stop(), f"{os.fspath(path)!r} cannot be written")


class Difference(Exception):
    """A repeated call returned something other than recorded."""


def replay(path):
    """Repeats a recording; the chip stays as its last call leaves it. Returns the notices; raises Difference, or
    ValueError for a file that is not a recording or lacks its end."""
    lines = []
    tell = _line_handler(lambda line, _: lines.append(line.decode(errors="surrogateescape")))
    outcome = _swsdk.swsdk_replay(os.fsencode(path), tell, None)
    if outcome != 0:
        raise (Difference if outcome == 1 else ValueError)("\n".join(lines))
    return lines
