"""Python functions as callbacks of C, and calls of C that may call them.

What a callback raises is raised by the call that delivered it, or by the next one if a thread of the SDK did. Frames
that leave are told when the call that sent them is over: inside it the unit is locked and its tables are being read.
"""
import collections
import ctypes
import threading
import typing

from . import _interface
from ._kinds import INTEGERS, KINDS, Kind
from ._records import POINTERS, Record

_here = threading.local()
_failures: collections.deque[BaseException] = collections.deque()
_FRAMES = "swsdk_frame_handler"


def in_callback() -> bool:
    return getattr(_here, "callbacks", 0) > 0


def raise_failure() -> None:
    """Raises what a callback has raised, unless this is a callback itself."""
    if _failures and not in_callback():
        failure = _failures.popleft()
        _failures.clear()  # mostly the same, once for each event
        raise failure


def run(function: typing.Callable[..., typing.Any], arguments: typing.Sequence[object]) -> typing.Any:
    """Calls a C function, and then the callbacks that wait for its end."""
    outer = getattr(_here, "waiting", None)
    _here.waiting = waiting = [] if outer is None else outer
    try:
        result = function(*arguments)
    finally:
        _here.waiting = outer
    if outer is None:
        for told, what in waiting:
            _tell(told, what)
    raise_failure()
    return result


def _tell(function: typing.Callable[..., object], arguments: list[object]) -> None:
    _here.callbacks = getattr(_here, "callbacks", 0) + 1
    try:
        function(*arguments)
    except BaseException as failure:
        _failures.append(failure)
    finally:
        _here.callbacks -= 1


def _c_type(c_type: str) -> typing.Any:
    if c_type == "uint8_t*":  # a MAC address
        return ctypes.POINTER(ctypes.c_uint8 * 6)
    return POINTERS.get(c_type) or INTEGERS.get(c_type) or {"const char*": ctypes.c_char_p}.get(c_type, ctypes.c_void_p)


def _value(argument: typing.Any) -> object:
    """An argument of a callback as a value that stays valid after it."""
    if not isinstance(argument, ctypes._Pointer):
        return argument
    return argument.contents.copy() if isinstance(argument.contents, Record) else bytes(argument.contents)


PROTOTYPES = {
    name: ctypes.CFUNCTYPE(None, *(_c_type(c_type) for _, c_type in parameters))
    for name, parameters in _interface.HANDLERS.items()
}
# C may call them as long as the process lives, and knows them by their addresses.
_kept: dict[tuple[str, object], tuple[object, object]] = {}


def c_function(c_type: str, function: typing.Callable[..., object]) -> typing.Any:
    """A callback of that type; always the same one for a function, so that it can be unregistered."""
    try:
        hash(function)  # methods are new objects each time, and equal
        key: tuple[str, object] = (c_type, function)
    except Exception:
        key = c_type, id(function)
    if key not in _kept:
        takes = [c_type != "void*" for _, c_type in _interface.HANDLERS[c_type]]

        def called(*arguments: object) -> None:
            values = [_value(argument) for argument, taken in zip(arguments, takes) if taken]
            waiting = getattr(_here, "waiting", None)
            if c_type == _FRAMES and waiting is not None:
                waiting.append((function, values))
            else:
                _tell(function, values)

        _kept[key] = function, PROTOTYPES[c_type](called)
    return _kept[key][1]


def _kind(c_type: str) -> Kind:
    def convert(value: object) -> object:
        if any(made is value for _, made in _kept.values() if isinstance(made, PROTOTYPES[c_type])):
            return value
        if not callable(value) or isinstance(value, (type, ctypes._CFuncPtr)):  # type: ignore[attr-defined]
            raise TypeError
        return c_function(c_type, value)

    return Kind("a function of Python's", convert)


KINDS.update({c_type: _kind(c_type) for c_type in PROTOTYPES if c_type != "swsdk_line_t"})


def handler(c_type: str, name: str) -> typing.Callable[[typing.Callable[..., object]], typing.Any]:
    def make(function: typing.Callable[..., object]) -> typing.Any:
        if not callable(function):
            raise TypeError(f"{name}: function must be callable, not {type(function).__name__}")
        return c_function(c_type, function)

    make.__name__ = make.__qualname__ = name
    make.__doc__ = f"A function as a callback of type {c_type}. Functions of the module take plain functions too."
    return make


link_handler = handler("bcm_linkscan_handler_t", "link_handler")
l2_handler = handler("sai_l2_event_cb", "l2_handler")
