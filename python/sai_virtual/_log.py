"""The library's log, its variables, and what it logs during a `with`."""
import ctypes
import re
import tempfile
import types
import typing

from ._constants import CONSTANTS
from ._functions import FUNCTIONS, SAI, default_log
from ._kinds import converted, integer_kind
from ._records import POINTERS, RECORDS, Handle

_LEVEL = integer_kind("int32_t", "sai_log_level")
_STAMP_AND_MODULE = re.compile(r"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d(\.\d+)? (\w+: )?\w+: ")


class Log:
    """What the library logs from `with` to its end, up to a level. Without a log, messages go to standard error. A log
    inside another one takes the messages away from it."""

    def __init__(self, level: int | str = CONSTANTS["SAI_LOG_ERRORS"]) -> None:
        self._level: int = converted(_LEVEL, "Log: level", level).value
        self._ended: list[str] | None = None

    def __enter__(self) -> "Log":
        self._ended = None
        self._file = tempfile.TemporaryFile("r+", encoding="utf-8", errors="surrogateescape")
        self._handle = FUNCTIONS["open_sai_log"]("", 0, 0, 0)
        self._handle.file = self._file
        FUNCTIONS["sai_log_set_level"](self._handle, CONSTANTS["SAI_LOG_FILE"], self._level)
        self._outer = default_log().value
        default_log().value = self._address = self._handle.address()
        return self

    def __exit__(self, *_: object) -> None:
        self._ended = self.lines()
        if Handle.is_open(self._address):
            FUNCTIONS["close_sai_log"](self._handle)
        default_log().value = self._outer if Handle.is_open(self._outer) else None
        self._file.close()

    def lines(self) -> list[str]:
        """The messages, without time stamp and module; a message with newlines in it is several lines."""
        if self._ended is not None:
            return self._ended
        self._file.seek(0)
        return [_STAMP_AND_MODULE.sub("", line.rstrip("\n"), count=1) for line in self._file]

    @property
    def met(self) -> bool:
        """Whether there was a message."""
        return bool(self.lines())


class Variables(types.ModuleType):
    """The class of the module: the library's variables are read when they are asked for."""

    @property
    def sai_log_default(self) -> Handle | None:
        address = default_log().value
        return Handle.of(ctypes.cast(address, POINTERS["sai_log_handle*"])) if address else None

    @sai_log_default.setter
    def sai_log_default(self, log: Handle | None) -> None:
        if not isinstance(log, (Handle, type(None))):
            raise TypeError("sai_log_default must be a log that open_sai_log() returned or None")
        default_log().value = None if log is None else log.address()

    @property
    def sai_log_priority(self) -> tuple[str, ...]:
        return _texts("sai_log_priority")

    @property
    def sai_log_module_names(self) -> tuple[str, ...]:
        return _texts("sai_log_module_names")

    @property
    def hw_counters_table(self) -> tuple[typing.Any, ...]:
        """A copy of the rows."""
        rows = (RECORDS["sai_hw_counter"] * 18).in_dll(SAI, "hw_counters_table")
        return tuple(row.copy() for row in rows)


def _texts(name: str) -> tuple[str, ...]:
    texts = ctypes.cast(ctypes.addressof(ctypes.c_char_p.in_dll(SAI, name)), ctypes.POINTER(ctypes.c_char_p))
    found: list[str] = []
    while (text := texts[len(found)]) is not None:
        found.append(text.decode())
    return tuple(found)
