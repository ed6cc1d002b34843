"""libsai.so and the virtual chip for tests in Python.

Every function of sai.h is here by its own name. Arguments through which a function answers are left out and come back
as the call's value; a negative code comes as SaiError:

    import sai_virtual as sai

    with sai.Chip() as chip, sai.Journal() as journal:
        sai.sai_vlan_create(0, 10)
        sai.sai_bpdu_set(0, "01:80:c2:00:00:0e")  # the index of the entry
        journal.lines()  # ['bcm_vlan_create(0, 10) = 0', ...]
        with sai.fault("bcm_vlan_create", sai.BCM_E_FULL):
            sai.sai_vlan_create(0, 11)  # raises SaiError: sai_vlan_create: SAI_E_FULL (-13)

MAC and IPv6 addresses are texts or bytes, records are of the classes named as in sai.h. The loader finds the two
libraries as for any program.
"""
import contextlib
import ctypes
import ipaddress
import os
import tempfile

from . import _interface

_sai = ctypes.CDLL("libsai.so")
_swsdk = ctypes.CDLL("libswsdk.so")

globals().update(_interface.CONSTANTS)

# Codes of the Chip SDK, for fault().
BCM_E_NONE, BCM_E_INTERNAL, BCM_E_MEMORY, BCM_E_UNIT, BCM_E_PARAM = 0, -1, -2, -3, -4
BCM_E_EMPTY, BCM_E_FULL, BCM_E_NOT_FOUND, BCM_E_EXISTS, BCM_E_TIMEOUT = -5, -6, -7, -8, -9
BCM_E_BUSY, BCM_E_FAIL, BCM_E_DISABLED, BCM_E_BADID, BCM_E_RESOURCE = -10, -11, -12, -13, -14
BCM_E_CONFIG, BCM_E_UNAVAIL, BCM_E_INIT, BCM_E_PORT = -15, -16, -17, -18

_CODE_NAMES = {value: name for name, value in _interface.CONSTANTS.items() if name.startswith("SAI_E_")}
_TEXT_ROOM = 64
_LIST_ROOM = 64  # the library reads as many as the chip has, however many are given
_ADDRESS_SIZES = {"const uint8_t[6]": 6, "const uint8_t[16]": 16, "const bcm_ip6_t*": 16}


class SaiError(Exception):
    """A function of the library answered a negative code."""

    def __init__(self, function, code, outputs):
        self.function = function
        self.code = code
        self.name = _CODE_NAMES.get(code, str(code))
        self.outputs = outputs  # some functions write them before they fail
        super().__init__(f"{function}: {self.name} ({code})")


# ------------------------------------------------------------------------------------------ the library's types ----

_TYPES = {f"{sign}int{bits}_t": getattr(ctypes, f"c_{sign}int{bits}") for sign in ("", "u") for bits in (8, 16, 32, 64)}
_TYPES.update({"void": None, "FILE*": ctypes.c_void_p, "char*": ctypes.c_char_p, "const char*": ctypes.c_char_p})

link_handler = ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_int, ctypes.c_void_p)
l2_handler = ctypes.CFUNCTYPE(None, ctypes.c_uint16, ctypes.c_int32, ctypes.POINTER(ctypes.c_uint8), ctypes.c_int32)
_TYPES.update({"bcm_linkscan_handler_t": link_handler, "sai_l2_event_cb": l2_handler})


def _address(value):
    """The bytes of a MAC or IPv6 address, or of what is bytes already."""
    if not isinstance(value, str):
        return bytes(value)
    if value.count(":") == 5 and "::" not in value:
        return bytes(int(byte, 16) for byte in value.split(":"))
    return ipaddress.IPv6Address(value).packed


class _Record(ctypes.Structure):
    """Fields are given by name; arrays of bytes take addresses."""

    def __init__(self, **fields):
        super().__init__()
        for name, value in fields.items():
            setattr(self, name, value)

    def __setattr__(self, name, value):
        types = dict(self._fields_)
        if name not in types:
            raise AttributeError(f"{type(self).__name__} has no field {name!r}; it has {', '.join(types)}")
        is_bytes = getattr(types[name], "_type_", None) is ctypes.c_uint8
        super().__setattr__(name, types[name](*_address(value)) if is_bytes else value)

    def __repr__(self):
        shown = {name: getattr(self, name) for name, _ in self._fields_}
        texts = (f"{n}={bytes(v).hex(':') if isinstance(v, ctypes.Array) else v!r}" for n, v in shown.items())
        return f"{type(self).__name__}({', '.join(texts)})"


def _record(name, fields):
    def field_type(c_type, count):
        return _TYPES[c_type] if count is None else _TYPES[c_type] * int(count)

    return type(name, (_Record,), {"_fields_": [(f, field_type(t, count)) for f, t, count in fields]})


for _name, _fields in _interface.RECORDS.items():
    _TYPES[_name] = globals()[_name] = _record(_name, _fields)
    _TYPES[_name + "*"] = ctypes.POINTER(_TYPES[_name])


def _room(c_type):
    """Where a function answers: one number or an array of them."""
    item, _, count = c_type.rstrip("]*").partition("[")
    return _TYPES[item]() if not count else (_TYPES[item] * int(count))()


def _answer(room):
    if not isinstance(room, ctypes.Array):
        return room.value
    return room.value.decode() if room._type_ is ctypes.c_char else list(room)


def _argument(c_type, value):
    """A Python value as what a parameter of that C type takes."""
    if value is None:
        return None
    if c_type in _ADDRESS_SIZES:
        address = _address(value)
        if len(address) != _ADDRESS_SIZES[c_type]:
            raise ValueError(f"{value!r} is not an address of {_ADDRESS_SIZES[c_type]} bytes")
        return (ctypes.c_uint8 * len(address))(*address)
    if c_type == "const int32_t*":
        return (ctypes.c_int32 * max(len(value), _LIST_ROOM))(*value)
    if c_type in ("char*", "const char*"):
        return ctypes.create_string_buffer(value.encode()) if isinstance(value, str) else value
    if isinstance(value, ctypes.Structure) and c_type.endswith("*"):
        return ctypes.byref(value)
    if c_type in _TYPES and isinstance(value, int):
        number = _TYPES[c_type](value)
        if number.value != value:
            raise OverflowError(f"{value} does not fit in {c_type}")
        return number
    return value


# The library keeps callbacks and the identity of a log beyond the call.
_kept = []


def _function(name, kind, returned, parameters):
    function = getattr(_sai, name)
    function.restype = _TYPES[returned]
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
            elif role == "in":
                passed.append(_argument(c_type, next(rest)))
            else:
                outputs.append(_room(c_type))
                if role == "inout":
                    outputs[-1].value = next(rest)
                passed.append(outputs[-1] if isinstance(outputs[-1], ctypes.Array) else ctypes.byref(outputs[-1]))
        if is_kept:
            _kept.append(passed)
        result = function(b"%s", *passed) if is_log else function(*passed)
        answers = [_answer(output) for output in outputs]
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

    def __init__(self, level=_interface.CONSTANTS["SAI_LOG_ERRORS"]):
        self._level = level

    def __enter__(self):
        self._file = tempfile.TemporaryFile("r+", encoding="utf-8", errors="surrogateescape")
        self._handle = open_sai_log("", 0, 0, 0)
        libc = ctypes.CDLL(None)
        libc.fdopen.restype = ctypes.c_void_p
        self._handle.contents.file = libc.fdopen(os.dup(self._file.fileno()), b"a")
        self._handle.contents.max_level[_interface.CONSTANTS["SAI_LOG_FILE"]] = self._level
        ctypes.POINTER(_TYPES["sai_log_handle"]).in_dll(_sai, "sai_log_default").contents = self._handle.contents
        return self

    def __exit__(self, *_):
        ctypes.c_void_p.in_dll(_sai, "sai_log_default").value = None
        close_sai_log(self._handle)
        self._file.close()

    def lines(self):
        """The messages so far, without stamp and module."""
        self._file.seek(0)
        return [line.rstrip("\n").split(": ", 1)[1] for line in self._file]


# --------------------------------------------------------------------------------------------- the virtual chip ----


class _Board(ctypes.Structure):
    _fields_ = [("units", ctypes.c_int), ("ports", ctypes.c_int), ("chip_type", ctypes.c_int)]


_swsdk.swsdk_show.restype = ctypes.c_long
_swsdk.swsdk_journal_read.restype = ctypes.c_size_t
_swsdk.swsdk_show_table.restype = ctypes.c_char_p
_line_handler = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_void_p)


def _check(result, what):
    if result < 0:
        raise ValueError(what)
    return result


class Chip:
    """The virtual chip, on from `with` to its end: each unit attached and initialised, or nothing yet when `cold`."""

    def __init__(self, units=1, ports=12, chip_type=0, cold=False):
        self._board = _Board(units, ports, chip_type)
        self._cold = cold

    def __enter__(self):
        _swsdk.swsdk_power_off()
        _check(_swsdk.swsdk_board_set(ctypes.byref(self._board)), "there is no such board")
        if not self._cold:
            _swsdk.sdk_main(0, None)
            for unit in range(self._board.units):
                _swsdk.system_init(unit)
        return self

    def __exit__(self, *_):
        _swsdk.swsdk_power_off()

    @staticmethod
    def tables():
        """The names that show() knows."""
        names = []
        while (name := _swsdk.swsdk_show_table(len(names))) is not None:
            names.append(name.decode())
        return names

    @staticmethod
    def show(table, unit=0):
        """One of the chip's tables as text."""
        length = _check(_swsdk.swsdk_show(unit, table.encode(), None, 0), f"there is no table {table!r} of unit {unit}")
        buffer = ctypes.create_string_buffer(length + 1)
        _swsdk.swsdk_show(unit, table.encode(), buffer, length + 1)
        return buffer.value.decode()

    @staticmethod
    def link(port, up, unit=0):
        """Takes a link up or down; who is registered has been told when it returns."""
        _check(_swsdk.swsdk_link_event(unit, port, int(up)), f"unit {unit} has no Ethernet port {port}")
        _swsdk.swsdk_events_drain()

    @staticmethod
    def learn(mac, vlan, port, unit=0):
        """Lets an address be seen: whether the chip has it at that port now."""
        learned = _swsdk.swsdk_l2_learn(unit, vlan, _address(mac), port, 0)
        _check(learned, f"unit {unit} has no port {port}, or there can be no VLAN {vlan}")
        _swsdk.swsdk_events_drain()
        return learned == 1

    @staticmethod
    def age(seconds, unit=0):
        """Lets time pass."""
        _check(_swsdk.swsdk_clock_step(unit, seconds), f"unit {unit} is not initialised, or time would go back")
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
    """Makes the nth call of an SDK function answer `code`; every call with nth=0. At the end all faults are gone."""
    refused = f"the Chip SDK has no function {function!r}, or {nth} is negative"
    _check(_swsdk.swsdk_fault_inject(function.encode(), code, nth), refused)
    try:
        yield
    finally:
        _swsdk.swsdk_fault_clear()


@contextlib.contextmanager
def recording(path):
    """Records every SDK call into a file. It begins with the chip off."""
    _check(_swsdk.swsdk_record_start(os.fsencode(path)), f"the chip is on, or {os.fspath(path)!r} cannot be written")
    try:
        yield
    finally:
        _check(_swsdk.swsdk_record_stop(), f"{os.fspath(path)!r} cannot be written")


class Difference(Exception):
    """A recording gave another answer than the recorded one."""


def replay(path):
    """Repeats a recording and leaves the chip as it does. Returns the notices; raises Difference, or ValueError for
    what is no recording or lacks its end."""
    lines = []
    tell = _line_handler(lambda line, _: lines.append(line.decode(errors="surrogateescape")))
    outcome = _swsdk.swsdk_replay(os.fsencode(path), tell, None)
    if outcome != 0:
        raise (Difference if outcome == 1 else ValueError)("\n".join(lines))
    return lines
