"""The headers' records as classes, and records that the library allocates."""
import ctypes
import os
import typing

from . import _interface
from ._kinds import DATA, INTEGERS, KINDS, TEXT, Kind, bytes_kind, converted, integer_kind, integers

_libc = ctypes.CDLL(None)
_libc.fdopen.restype = ctypes.c_void_p


class Record(ctypes.Structure):
    """Fields are given by name; arrays of bytes take addresses."""

    _kinds: dict[str, Kind | None] = {}  # no kind: the field cannot be set

    def __init__(self, **fields: object) -> None:
        super().__init__()
        for name, value in fields.items():
            setattr(self, name, value)

    def __setattr__(self, name: str, value: object) -> None:
        if name not in self._kinds:
            fields = ", ".join(self._kinds)
            raise AttributeError(f"{type(self).__name__} has no field {name!r}; it has {fields}")
        kind, where = self._kinds[name], f"{type(self).__name__}: {name}"
        if kind is None:
            raise TypeError(f"{where} cannot be set: it goes with the memory behind another field")
        super().__setattr__(name, converted(kind, where, value))

    def __repr__(self) -> str:
        texts = (f"{name}={_shown(value)}" for name, value in self.values().items())
        return f"{type(self).__name__}({', '.join(texts)})"

    def __eq__(self, other: object) -> bool:
        return type(other) is type(self) and repr(other) == repr(self)

    __hash__ = None  # type: ignore[assignment]

    def values(self) -> dict[str, typing.Any]:
        """All fields by name."""
        return {name: getattr(self, name) for name in self._kinds}

    def copy(self) -> "Record":
        """The same with memory of its own, also behind its pointers."""
        settable = {name: value for name, value in self.values().items() if self._kinds[name] is not None}
        result = type(self)(**settable)
        for name, kind in self._kinds.items():
            if kind is None and isinstance(text := getattr(self, name), bytes):
                type(self).__dict__[name].__set__(result, text)
        return result


def _shown(value: object) -> str:
    if not isinstance(value, ctypes.Array):
        return repr(value)
    return repr(bytes(value).hex(":")) if value._type_ is ctypes.c_uint8 else repr(list(value))


# --------------------------------------------------------------------------------------------------------- fields ----


def _stream(value: object) -> object:
    if not hasattr(value, "fileno"):
        raise TypeError
    try:
        stream = _libc.fdopen(os.dup(value.fileno()), b"a")
    except (OSError, OverflowError) as error:
        raise ValueError from error
    if not stream:
        raise ValueError
    return stream


def _pointer_property(cls: type[Record], name: str, is_data: bool) -> property:
    """A field that points at memory of the record's own: bytes with their length beside it, or another record."""
    raw: typing.Any = cls.__dict__[name]

    def get_bytes(self: Record) -> bytes:
        return ctypes.string_at(raw.__get__(self), self.length) if raw.__get__(self) else b""

    def set_bytes(self: Record, value: bytes | None) -> None:
        length: typing.Any = cls.__dict__["length"]
        data = (ctypes.c_uint8 * len(value or b"")).from_buffer_copy(value or b"")
        raw.__set__(self, data)
        length.__set__(self, len(data))

    def get_record(self: Record) -> Record | None:
        pointer = raw.__get__(self)
        return pointer.contents.copy() if pointer else None

    def set_record(self: Record, value: Record | None) -> None:
        raw.__set__(self, None if value is None else ctypes.pointer(value.copy()))

    return property(get_bytes, set_bytes) if is_data else property(get_record, set_record)


def _text_property(raw: typing.Any, size: int) -> property:
    def set_text(self: Record, value: typing.Any) -> None:
        raw.__set__(self, value.value[: size - 1])

    return property(lambda self: raw.__get__(self).decode(errors="surrogateescape"), set_text)


def _instance_kind(wanted: str, instance_of: typing.Any, pass_as: typing.Callable[[typing.Any], object]) -> Kind:
    def convert(value: object) -> object:
        if not isinstance(value, instance_of):
            raise TypeError
        return pass_as(value)

    return Kind(wanted, convert)


def itself(value: object) -> object:
    return value


def _field(c_type: str, count: int | None, note: str | None) -> tuple[typing.Any, Kind | None]:
    """A field's C type, and the kind of what it takes."""
    if c_type == "FILE*":
        return ctypes.c_void_p, Kind("a file that is open for writing", _stream)
    if c_type == "const uint8_t*":
        return ctypes.POINTER(ctypes.c_uint8), DATA
    if c_type in ("char*", "const char*"):
        return ctypes.c_char_p, None
    if c_type.endswith("*"):
        name = c_type.removeprefix("const ").rstrip("*")
        return ctypes.POINTER(RECORDS[name]), _instance_kind(f"a {name}", RECORDS[name], itself)
    if c_type == "char":
        assert count is not None
        return ctypes.c_char * count, TEXT._replace(is_pointer=False)
    if count is None:
        return INTEGERS[c_type], integer_kind(c_type, note)
    if c_type == "uint8_t":
        return INTEGERS[c_type] * count, bytes_kind(count)._replace(is_pointer=False)

    def convert(value: object) -> object:
        return integers(value, count, c_type)

    return INTEGERS[c_type] * count, Kind(f"a sequence of {count} integers", convert, is_pointer=False)


def _record(name: str, comment: str, fields: list[tuple[str, str, int | None, str | None]]) -> type[Record]:
    made = {field: _field(c_type, count, note) for field, c_type, count, note in fields}
    kinds = {field: kind for field, (_, kind) in made.items()}
    if "data" in kinds:
        kinds["length"] = None
    members = [(field, c_type) for field, (c_type, _) in made.items()]
    cls = type(name, (Record,), {"_fields_": members, "_kinds": kinds, "__doc__": comment, "__module__": "sai_virtual"})
    properties = {}
    for field, c_type, count, _ in fields:
        if c_type == "char" and count is not None:
            properties[field] = _text_property(cls.__dict__[field], count)
        elif c_type.endswith("*") and c_type not in ("FILE*", "char*", "const char*"):
            properties[field] = _pointer_property(cls, field, is_data=c_type == "const uint8_t*")
    for field, of_it in properties.items():
        setattr(cls, field, of_it)
    return cls


RECORDS: dict[str, type[Record]] = {}
POINTERS: dict[str, typing.Any] = {}
for _name, _of_it in _interface.RECORDS.items():
    RECORDS[_name] = _class = _record(_name, *_of_it)
    POINTERS[_name + "*"] = POINTERS[f"const {_name}*"] = ctypes.POINTER(_class)
    KINDS[_name] = _instance_kind(f"a {_name}", _class, itself)._replace(is_pointer=False)
    KINDS[_name + "*"] = KINDS[f"const {_name}*"] = _instance_kind(f"a {_name}", _class, ctypes.byref)


# -------------------------------------------------------------------------------------- what the library allocates ----


class Handle:
    """A record that the library has allocated. Its fields are read and set as those of any record, until it is closed;
    then the library has freed it."""

    __slots__ = ("_pointer",)
    _open: dict[int, "Handle"] = {}

    def __init__(self, pointer: typing.Any) -> None:
        object.__setattr__(self, "_pointer", pointer)
        self._open[self.address()] = self

    @classmethod
    def of(cls, pointer: typing.Any) -> "Handle | None":
        """The handle of that record; null has none."""
        if not pointer:
            return None
        return cls._open.get(ctypes.addressof(pointer.contents)) or cls(pointer)

    def address(self) -> int:
        return ctypes.addressof(self.record())

    def record(self) -> typing.Any:
        pointer = object.__getattribute__(self, "_pointer")
        if pointer is None:
            raise ValueError("this log is closed")
        return pointer.contents

    @classmethod
    def is_open(cls, address: int | None) -> bool:
        return address in cls._open

    def closed(self) -> None:
        """Its record is not to be used any more."""
        del self._open[self.address()]
        object.__setattr__(self, "_pointer", None)

    @property
    def contents(self) -> "Handle":
        return self

    def __getattr__(self, name: str) -> typing.Any:
        value = getattr(self.record(), name)
        return tuple(value) if isinstance(value, ctypes.Array) else value

    def __setattr__(self, name: str, value: object) -> None:
        setattr(self.record(), name, value)

    def __repr__(self) -> str:
        pointer = object.__getattribute__(self, "_pointer")
        return "<a log that is closed>" if pointer is None else repr(self.record())


def _handle_kind(name: str) -> Kind:
    return _instance_kind(f"a {name}* that the library returned", Handle, lambda handle: ctypes.byref(handle.record()))


for _, _, _returned, *_rest in _interface.FUNCTIONS.values():
    if _returned.endswith("*") and _returned.rstrip("*") in RECORDS:
        KINDS[_returned] = _handle_kind(_returned.rstrip("*"))
