"""Python values as the arguments and results of C functions: records, and one conversion for each kind of argument.

A conversion accepts what the argument can hold and rejects everything else, because a C function reads whatever it gets
as the argument's type: a text for a number as the text's address. A wrong type is a TypeError, an integer out of
range an OverflowError, any other wrong value a ValueError; each names the function and the argument.
"""
import collections.abc
import ctypes
import ipaddress
import itertools
import operator
import re
import reprlib
import typing

from . import _interface

_INTEGERS = {
    f"{sign}int{bits}_t": getattr(ctypes, f"c_{sign}int{bits}") for sign in ("", "u") for bits in (8, 16, 32, 64)
}
TYPES = {**_INTEGERS, "void": None, "FILE*": ctypes.c_void_p, "char*": ctypes.c_char_p, "const char*": ctypes.c_char_p}
_HANDLERS = {
    "bcm_linkscan_handler_t": ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_int, ctypes.c_void_p),
    "sai_l2_event_cb": ctypes.CFUNCTYPE(
        None, ctypes.c_uint16, ctypes.c_int32, ctypes.POINTER(ctypes.c_uint8), ctypes.c_int32
    ),
}
_MAC = re.compile(r"[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}")
_LIST_ROOM = 64  # the library reads as many as the chip has, no matter how many are given
_TABLE_ROOM = 32768  # the library writes as many as the chip has: the MAC addresses of a full table


class _Kind(typing.NamedTuple):
    """A kind of argument. `convert` raises TypeError, OverflowError or ValueError; _converted() words them."""

    wanted: str
    convert: typing.Callable
    is_pointer: bool = True


_KINDS = {}


def argument(where, c_type, value, nullable=True):
    """A Python value as what an argument of that C type takes; `where` names the function and the argument."""
    return _converted(_KINDS[c_type], where, value, nullable)


def _converted(kind, where, value, nullable=True):
    nullable = nullable and kind.is_pointer
    if value is None and nullable:
        return None
    wanted = f"{where} must be {kind.wanted}{' or None' if nullable else ''}"
    try:
        return kind.convert(value)
    except TypeError:
        raise TypeError(f"{wanted}, not {type(value).__name__}") from None
    except OverflowError:
        raise OverflowError(f"{wanted}, not {reprlib.repr(value)}") from None
    except ValueError:
        raise ValueError(f"{wanted}, not {reprlib.repr(value)}") from None


# ------------------------------------------------------------------------------------------- numbers and texts ----


def _range(c_type):
    bits = 8 * ctypes.sizeof(_INTEGERS[c_type])
    return (0, 2**bits - 1) if c_type.startswith("u") else (-(2 ** (bits - 1)), 2 ** (bits - 1) - 1)


def _integer_kind(c_type):
    lowest, highest = _range(c_type)

    def convert(value):
        number = operator.index(value)
        if not lowest <= number <= highest:
            raise OverflowError
        return _INTEGERS[c_type](number)

    return _Kind(f"an integer from {lowest} to {highest}", convert, is_pointer=False)


def _integers(value, count=None):
    if not isinstance(value, collections.abc.Sequence) or isinstance(value, (str, bytes, bytearray, memoryview)):
        raise TypeError
    numbers = [_KINDS["int32_t"].convert(number).value for number in value]
    if count is not None and len(numbers) != count:
        raise ValueError
    return (ctypes.c_int32 * (count or max(len(numbers), _LIST_ROOM)))(*numbers)


def _text(value):
    text = value.encode() if isinstance(value, str) else value
    if not isinstance(text, bytes):
        raise TypeError
    if 0 in text:
        raise ValueError  # C would end the text there
    return ctypes.create_string_buffer(text)


def _bytes_kind(size):
    """MAC addresses, IPv6 addresses, or plain bytes, by their length."""

    def of_text(text):
        if size == 16:
            return ipaddress.IPv6Address(text).packed
        if size != 6:
            raise TypeError
        if not _MAC.fullmatch(text):
            raise ValueError
        return bytes(int(byte, 16) for byte in text.split(":"))

    def convert(value):
        is_array = isinstance(value, ctypes.Array) and value._type_ is ctypes.c_uint8
        if not is_array and not isinstance(value, (str, bytes, bytearray)):
            raise TypeError
        data = of_text(value) if isinstance(value, str) else bytes(value)
        if len(data) != size:
            raise ValueError
        return (ctypes.c_uint8 * size)(*data)

    as_text = {6: "a MAC address such as '02:00:00:00:00:01' or ", 16: "an IPv6 address such as '2001:db8::1' or "}
    return _Kind(f"{as_text.get(size, '')}{size} bytes", convert)


_KINDS.update({c_type: _integer_kind(c_type) for c_type in _INTEGERS})
_KINDS["const int32_t*"] = _Kind("a sequence of integers of 32 bits", _integers)
_KINDS["char*"] = _KINDS["const char*"] = _Kind("a str or bytes without zero bytes", _text)
_KINDS["const uint8_t[6]"] = _bytes_kind(6)
_KINDS["const uint8_t[16]"] = _KINDS["const bcm_ip6_t*"] = _bytes_kind(16)


# ----------------------------------------------------------------------------------------- records and handlers ----


def _field_kind(c_type, count):
    """The kind of a record's field; None for a text, whose memory is the library's."""
    if c_type == "FILE*":
        return _Kind("the address of a stream", lambda value: _KINDS["uint64_t"].convert(value).value)
    if c_type in ("char*", "const char*"):
        return None
    if count is None:
        return _KINDS[c_type]
    if c_type == "uint8_t":
        return _bytes_kind(int(count))._replace(is_pointer=False)
    return _Kind(f"a sequence of {count} integers", lambda value: _integers(value, int(count)), is_pointer=False)


class _Record(ctypes.Structure):
    """Fields are given by name; arrays of bytes take addresses."""

    def __init__(self, **fields):
        super().__init__()
        for name, value in fields.items():
            setattr(self, name, value)

    def __setattr__(self, name, value):
        if name not in self._kinds:
            fields = ", ".join(self._kinds)
            raise AttributeError(f"{type(self).__name__} has no field {name!r}; it has {fields}")
        kind, where = self._kinds[name], f"{type(self).__name__}: {name}"
        if kind is None:
            raise TypeError(f"{where} cannot be set: the library keeps its memory")
        super().__setattr__(name, _converted(kind, where, value))

    def __repr__(self):
        shown = {name: getattr(self, name) for name in self._kinds}
        texts = (f"{n}={bytes(v).hex(':') if isinstance(v, ctypes.Array) else v!r}" for n, v in shown.items())
        return f"{type(self).__name__}({', '.join(texts)})"


def record(name, fields):
    """The class of a record with these fields: (name, C type, count or None)."""

    def field_type(c_type, count):
        return TYPES[c_type] if count is None else TYPES[c_type] * int(count)

    kinds = {field: _field_kind(c_type, count) for field, c_type, count in fields}
    return type(name, (_Record,), {"_fields_": [(f, field_type(t, n)) for f, t, n in fields], "_kinds": kinds})


def _instance_kind(wanted, instance_of, pass_as):
    def convert(value):
        if not isinstance(value, instance_of):
            raise TypeError
        return pass_as(value)

    return _Kind(wanted, convert)


def _itself(value):
    return value


def _handler(c_type, name):
    """The class of a callback: passed to the library unchanged, so that it can be unregistered."""

    def make(function):
        if not callable(function):
            raise TypeError(f"{name}: function must be callable, not {type(function).__name__}")
        return _HANDLERS[c_type](function)

    make.__name__ = make.__qualname__ = name
    _KINDS[c_type] = _instance_kind(f"a sai_virtual.{name}", _HANDLERS[c_type], _itself)
    return make


link_handler = _handler("bcm_linkscan_handler_t", "link_handler")
l2_handler = _handler("sai_l2_event_cb", "l2_handler")

RECORDS = {name: record(name, fields) for name, fields in _interface.RECORDS.items()}
_RETURNED = {returned for _, returned, _ in _interface.FUNCTIONS.values()}
for _name, _class in RECORDS.items():
    TYPES[_name] = _class
    TYPES[_name + "*"] = _pointer = ctypes.POINTER(_class)
    _KINDS[_name] = _instance_kind(f"a {_name}", _class, _itself)._replace(is_pointer=False)
    # The library frees what it allocates, so memory of Python's cannot be used.
    if _name + "*" in _RETURNED:
        _KINDS[_name + "*"] = _instance_kind(f"a {_name}* that the library returned", _pointer, _itself)
    else:
        _KINDS[_name + "*"] = _KINDS[f"const {_name}*"] = _instance_kind(f"a {_name}", _class, ctypes.byref)


# ------------------------------------------------------------------------------------------------------ answers ----


def room(c_type):
    """An output argument: a number, an array of numbers, or as many records as the chip can have."""
    item, _, count = c_type.rstrip("]*").partition("[")
    if c_type.endswith("*"):
        return TYPES[item]()
    return (TYPES[item] * int(count or _TABLE_ROOM))()


def answer(place):
    """What a function wrote, as a Python value; of an array of records, those before the first blank one."""
    if not isinstance(place, ctypes.Array):
        return place.value
    if place._type_ is ctypes.c_char:
        return place.value.decode()
    return list(itertools.takewhile(lambda item: not isinstance(item, _Record) or any(bytes(item)), place))
