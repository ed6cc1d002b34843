"""The headers' constants; those that belong together are members of an enum."""
import enum
import typing

from . import _interface


def _made(name: str, has_bits: bool, comment: str, values: dict[str, int]) -> type[enum.IntEnum] | type[enum.IntFlag]:
    base: typing.Any = enum.IntFlag if has_bits else enum.IntEnum
    made = base(name, values, module="sai_virtual")
    made.__doc__ = comment
    return typing.cast(type[enum.IntEnum], made)


ENUMS = {name: _made(name, *of_it) for name, of_it in _interface.ENUMS.items()}
CONSTANTS: dict[str, typing.Any] = dict(_interface.CONSTANTS)
for _enum in ENUMS.values():
    CONSTANTS.update(_enum.__members__)
