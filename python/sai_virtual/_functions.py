"""Every function of the headers as a function of Python's.

Arguments that C writes are left out and returned; lengths, sizes and user data are not seen at all.
"""
import ctypes
import inspect
import itertools
import reprlib
import typing

from . import _interface
from ._callbacks import PROTOTYPES, in_callback, run
from ._constants import CONSTANTS, ENUMS
from ._kinds import INTEGERS, KINDS, Kind, converted, integer_kind
from ._records import POINTERS, RECORDS, Handle, Record

SAI = ctypes.CDLL("libsai.so")
SWSDK = ctypes.CDLL("libswsdk.so")
_LIBRARIES = {"sai": SAI, "swsdk": SWSDK}
_CODES = ENUMS["sai_result"]
_TEXT_ROOM = 64  # of a text whose function does not tell its length
_MOVED_ROOM = 65536  # of what a function moves out by and by
_TABLE_ROOM = 32768  # the library writes as many as the chip has: the MAC addresses of a full table
_LOGS = ("sai_err", "sai_warn", "sai_notice", "sai_info", "sai_debug")
_RETURNED = {"void": None, "char*": ctypes.c_char_p, "const char*": ctypes.c_char_p, **INTEGERS, **POINTERS}
_kept: list[object] = []  # the identity of a log, which the system log keeps


class SaiError(Exception):
    """A function of the library returned a negative code."""

    def __init__(self, function: str, code: int, outputs: list[typing.Any]) -> None:
        self.function = function
        self.code = code
        self.name = _CODES(code).name if code in _CODES.__members__.values() else str(code)
        self.outputs = outputs  # some functions write them before they fail
        super().__init__(f"{function}: {self.name} ({code})")


class ChipError(ValueError):
    """The virtual chip refused a call of its control interface."""

    def __init__(self, function: str, arguments: str, reason: str) -> None:
        self.function = function
        super().__init__(f"{function}({arguments}): {reason}")


class _Parameter:
    def __init__(self, function: str, name: str, c_type: str, role: str, note: str | None,
                 limits: tuple[int, int] | None) -> None:
        self.name, self.c_type, self.role = name, c_type, role  # roles: see headers.py
        self.where = f"{function}: {name}"
        self.is_given = role in ("in", "needed", "inout", "data")
        c_type = c_type.rstrip("*") if role == "inout" else c_type
        self.kind: Kind | None = integer_kind(c_type, note, limits) if c_type in INTEGERS else KINDS.get(c_type)

    def converted(self, value: object) -> typing.Any:
        assert self.kind is not None
        return converted(self.kind, self.where, value, nullable=self.role != "needed")

    def room(self) -> typing.Any:
        """For what C writes: a number, a record, an array of numbers, or as many records as the chip can have."""
        item, _, count = self.c_type.rstrip("]*").partition("[")
        of_type: typing.Any = INTEGERS.get(item) or RECORDS[item]
        return of_type() if self.c_type.endswith("*") else (of_type * int(count or _TABLE_ROOM))()


def _text(data: bytes) -> str:
    return data.decode(errors="surrogateescape")


def _answer(place: typing.Any) -> typing.Any:
    """What C wrote, as a Python value; of an array of records, those before the first blank one."""
    if isinstance(place, (Record, list)):
        return place
    if not isinstance(place, ctypes.Array):
        return place.value
    if place._type_ is ctypes.c_char:
        return _text(place.value)
    return list(itertools.takewhile(lambda item: not isinstance(item, Record) or any(bytes(item)), place))


def _items(where: str, c_type: str, value: object) -> typing.Any:
    """Bytes, or a sequence of records, as an array; null for None."""
    if value is None:
        return None
    if c_type == "const void*":
        data = converted(KINDS[c_type], where, value)
        return (ctypes.c_uint8 * len(data)).from_buffer_copy(data)
    record = RECORDS[c_type.removeprefix("const ").rstrip("*")]
    if not isinstance(value, (list, tuple)) or not all(isinstance(item, record) for item in value):
        raise TypeError(f"{where} must be a list of {record.__name__} or None, not {reprlib.repr(value)}")
    return (record * len(value))(*value)


def default_log() -> ctypes.c_void_p:
    """The variable of the library with the log that all messages use."""
    return ctypes.c_void_p.in_dll(SAI, "sai_log_default")


def _close(log: Handle) -> None:
    """Forgets a log that the library is about to free."""
    if default_log().value == log.address():
        default_log().value = None
    log.closed()


def _lines(lines: list[str]) -> typing.Any:
    return PROTOTYPES["swsdk_line_t"](lambda line, _: lines.append(_text(line)))


class _Function:
    """A function of a library, and how its arguments and results are those of Python's."""

    def __init__(self, name: str, library: str, kind: str, returned: str, refusal: str, not_in_callbacks: bool,
                 parameters: list[typing.Any], comment: str) -> None:
        self.name, self.kind, self.refusal, self.not_in_callbacks = name, kind, refusal, not_in_callbacks
        self.comment = comment
        self.parameters = [_Parameter(name, *parameter) for parameter in parameters]
        self.given = [p.name for p in self.parameters if p.is_given]
        self.function = getattr(_LIBRARIES[library], name)
        self.function.restype = _RETURNED[returned]

    def bound(self, values: tuple[typing.Any, ...], named: dict[str, typing.Any]) -> dict[str, typing.Any]:
        """The arguments by name."""
        if len(values) == len(self.given) and not named:
            return dict(zip(self.given, values))
        wrong = f"{self.name}({', '.join(self.given)}) "
        if len(values) + len(named) != len(self.given):
            raise TypeError(f"{wrong}takes {len(self.given)} arguments, not {len(values) + len(named)}")
        arguments = dict(zip(self.given, values))
        for name, value in named.items():
            if name not in self.given:
                raise TypeError(f"{wrong}has no argument {name!r}")
            if name in arguments:
                raise TypeError(f"{wrong}has two values for {name!r}")
            arguments[name] = value
        return arguments

    def passed(self, arguments: dict[str, typing.Any], outputs: list[typing.Any]) -> list[typing.Any]:
        """What is passed to C; and in `outputs`, what C writes."""
        result: list[typing.Any] = []
        room_size = _MOVED_ROOM if self.kind == "moved" else _TEXT_ROOM
        for p in self.parameters:
            if p.role in ("in", "needed"):
                result.append(p.converted(arguments[p.name]))
            elif p.role == "data":
                result.append(_items(p.where, p.c_type, arguments[p.name]))
            elif p.role == "length":
                result.append(INTEGERS[p.c_type](0 if result[-1] is None else len(result[-1])))
            elif p.role == "size":
                result.append(INTEGERS[p.c_type](room_size))
            elif p.role == "nothing":
                result.append(None)
            elif p.role == "lines":
                outputs.append([])
                result.append(_lines(outputs[-1]))
            elif p.role == "reason":
                result.append(ctypes.create_string_buffer(CONSTANTS["SWSDK_REASON_SIZE"]))
            elif p.role == "room":
                outputs.append(ctypes.create_string_buffer(room_size))
                result.append(outputs[-1])
            else:
                outputs.append(p.room())
                if p.role == "inout":
                    outputs[-1].value = p.converted(arguments[p.name]).value
                result.append(outputs[-1] if isinstance(outputs[-1], ctypes.Array) else ctypes.byref(outputs[-1]))
        return result

    def __call__(self, *values: typing.Any, **named: typing.Any) -> typing.Any:
        if self.not_in_callbacks and in_callback():
            raise RuntimeError(f"{self.name}() cannot be called from a callback")
        arguments = self.bound(values, named)
        outputs: list[typing.Any] = []
        passed = self.passed(arguments, outputs)
        if self.name == "open_sai_log":
            _kept.append(passed)
        if self.name in _LOGS and passed[0] is not None:
            passed.insert(0, b"%s")  # the text is not a format
        if self.name == "close_sai_log":
            _close(arguments["log"])
        if self.kind == "length":
            return self.whole_text(arguments, passed)
        result = run(self.function, passed)
        self.check(result, arguments, passed)
        answers = [_answer(output) for output in outputs]
        if self.kind == "code" and result < 0:
            raise SaiError(self.name, result, answers)
        if isinstance(result, ctypes._Pointer):
            return Handle.of(result)
        result = _text(result) if isinstance(result, bytes) else result
        if not answers:
            return result
        if self.kind == "number":
            answers.insert(0, result)
        return answers[0] if len(answers) == 1 else tuple(answers)

    def check(self, result: typing.Any, arguments: dict[str, typing.Any], passed: list[typing.Any]) -> None:
        if not self.refusal or result >= 0:
            return
        reasons = [_text(passed[i].value) for i, p in enumerate(self.parameters) if p.role == "reason"]
        shown = ", ".join(reprlib.repr(value) for value in arguments.values())
        raise ChipError(self.name, shown, reasons[0] if reasons and reasons[0] else self.refusal)

    def whole_text(self, arguments: dict[str, typing.Any], passed: list[typing.Any]) -> typing.Any:
        """A text, or bytes, of which the function tells the length: asked for again until there is room for it."""
        place = next(i for i, p in enumerate(self.parameters) if p.role == "room")
        size, length = 0, 1024
        while length >= size:
            size = length + 1
            passed[place] = ctypes.create_string_buffer(size)
            passed[place + 1] = ctypes.c_uint64(size)
            length = run(self.function, passed)
            self.check(length, arguments, passed)
        data = passed[place].raw[:length]
        return data if self.parameters[place].c_type == "void*" else _text(data)


def _made(name: str, described: tuple[typing.Any, ...]) -> typing.Callable[..., typing.Any]:
    function = _Function(name, *described)

    def call(*values: typing.Any, **named: typing.Any) -> typing.Any:
        return function(*values, **named)

    call.__name__ = call.__qualname__ = name
    call.__module__ = "sai_virtual"
    call.__doc__ = function.comment
    parameters = [inspect.Parameter(p, inspect.Parameter.POSITIONAL_OR_KEYWORD) for p in function.given]
    call.__signature__ = inspect.Signature(parameters)  # type: ignore[attr-defined]
    return call


FUNCTIONS = {name: _made(name, described) for name, described in _interface.FUNCTIONS.items()}
