"""Python values as arguments of C functions: one conversion for each kind of argument.

A conversion accepts what the argument can hold and rejects everything else, because a C function reads whatever it gets
as the argument's type: a text for a number as the text's address. A wrong type is a TypeError, any other wrong value a
ValueError; each names the function and the argument.
"""
import collections.abc
import ctypes
import enum
import functools
import ipaddress
import operator
import re
import reprlib
import sys
import typing

from ._constants import ENUMS

INTEGERS: dict[str, typing.Any] = {
    f"{sign}int{bits}_t": getattr(ctypes, f"c_{sign}int{bits}") for sign in ("", "u") for bits in (8, 16, 32, 64)
}
_MAC = re.compile(r"[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}")
_LIST_ROOM = 64  # the library reads as many as the chip has, no matter how many are given


class OutOfRange(ValueError, OverflowError):
    """An integer is too small or too large for its argument."""


class Kind(typing.NamedTuple):
    """A kind of argument. `convert` raises TypeError, OutOfRange or ValueError; converted() words them."""

    wanted: str
    convert: typing.Callable[[typing.Any], typing.Any]
    is_pointer: bool = True


def converted(kind: Kind, where: str, value: object, nullable: bool = True) -> typing.Any:
    """A Python value as what an argument of that kind takes; `where` names the function and the argument."""
    nullable = nullable and kind.is_pointer
    if value is None and nullable:
        return None
    try:
        return kind.convert(value)
    except (TypeError, ValueError) as error:
        wanted = f"{where} must be {kind.wanted}{' or None' if nullable else ''}"
        if isinstance(error, TypeError):
            raise TypeError(f"{wanted}, not {type(value).__name__}") from None
        rejected = OutOfRange if isinstance(error, OutOfRange) else ValueError
        raise rejected(f"{wanted}, not {reprlib.repr(value)}") from None


# -------------------------------------------------------------------------------------------------------- numbers ----


def range_of(c_type: str) -> tuple[int, int]:
    bits = 8 * ctypes.sizeof(INTEGERS[c_type])
    return (0, 2**bits - 1) if c_type.startswith("u") else (-(2 ** (bits - 1)), 2 ** (bits - 1) - 1)


def _named(value: object, note: str | None) -> object:
    """A text as the number that it names: a member of an enum, or several of one with bits, or an IPv4 address."""
    if note in ("host order", "network order"):
        if isinstance(value, str):
            value = ipaddress.IPv4Address(value)
        if isinstance(value, ipaddress.IPv4Address):
            value = value.packed
        if isinstance(value, (bytes, bytearray)):
            if len(value) != 4:
                raise ValueError
            return int.from_bytes(value, "big" if note == "host order" else sys.byteorder)
    elif note is not None and isinstance(value, str):
        members = ENUMS[note].__members__
        names = [name.strip() for name in value.split("|")]
        if not all(name in members for name in names) or (len(names) > 1 and not issubclass(ENUMS[note], enum.IntFlag)):
            raise ValueError
        return functools.reduce(operator.or_, (int(members[name]) for name in names))
    return value


@functools.cache
def integer_kind(c_type: str, note: str | None = None, limits: tuple[int, int] | None = None) -> Kind:
    """`note`: what the header says of the number, see headers.py. `limits`: a range that C does not check."""
    lowest, highest = limits or range_of(c_type)
    c_integer = INTEGERS[c_type]

    def convert(value: object) -> typing.Any:
        number = int.__index__(operator.index(_named(value, note)))  # type: ignore[arg-type]
        if not lowest <= number <= highest:
            raise OutOfRange
        return c_integer(number)

    named = f" or the name of a {note}" if note in ENUMS else " or an IPv4 address" if note else ""
    return Kind(f"an integer from {lowest} to {highest}{named}", convert, is_pointer=False)


def integers(value: object, count: int | None = None, item: str = "int32_t") -> ctypes.Array[typing.Any]:
    if not isinstance(value, collections.abc.Sequence) or isinstance(value, (str, bytes, bytearray, memoryview)):
        raise TypeError
    numbers = [integer_kind(item).convert(number).value for number in value]
    if count is not None and len(numbers) != count:
        raise ValueError
    room = max(len(numbers), _LIST_ROOM) if count is None else count
    return typing.cast("ctypes.Array[typing.Any]", (INTEGERS[item] * room)(*numbers))


# ----------------------------------------------------------------------------------------------- texts and bytes ----


def _text(value: object) -> object:
    text = value.encode(errors="surrogateescape") if isinstance(value, str) else value
    if not isinstance(text, bytes):
        raise TypeError
    if 0 in text:
        raise ValueError  # C would end the text there
    return ctypes.create_string_buffer(text)


def _data(value: typing.Any) -> bytes:
    if not isinstance(value, (bytes, bytearray, memoryview)) and not hasattr(value, "__bytes__"):
        raise TypeError  # bytes() would take numbers as well
    return bytes(value)


def bytes_kind(size: int) -> Kind:
    """MAC addresses, IPv6 addresses, or plain bytes, by their length."""

    def of_text(text: str) -> bytes:
        if size == 16:
            return ipaddress.IPv6Address(text).packed
        if size != 6:
            raise TypeError
        if not _MAC.fullmatch(text):
            raise ValueError
        return bytes(int(byte, 16) for byte in text.split(":"))

    def convert(value: typing.Any) -> object:
        if isinstance(value, ipaddress.IPv6Address) and size == 16:
            value = value.packed
        is_array = isinstance(value, ctypes.Array) and value._type_ is ctypes.c_uint8
        if not is_array and not isinstance(value, (str, bytes, bytearray)):
            raise TypeError
        data = of_text(value) if isinstance(value, str) else bytes(value)
        if len(data) != size:
            raise ValueError
        return (ctypes.c_uint8 * size)(*data)

    as_text = {6: "a MAC address such as '02:00:00:00:00:01' or ", 16: "an IPv6 address such as '2001:db8::1' or "}
    return Kind(f"{as_text.get(size, '')}{size} bytes", convert)


TEXT = Kind("a str or bytes without zero bytes", _text)
DATA = Kind("bytes, or what bytes() makes some of", _data)
KINDS: dict[str, Kind] = {
    **{c_type: integer_kind(c_type) for c_type in INTEGERS},
    "const int32_t*": Kind("a sequence of integers of 32 bits", integers),
    "char*": TEXT,
    "const char*": TEXT,
    "const uint8_t[6]": bytes_kind(6),
    "const uint8_t[16]": bytes_kind(16),
    "const bcm_ip6_t*": bytes_kind(16),
    "const void*": DATA,
}
