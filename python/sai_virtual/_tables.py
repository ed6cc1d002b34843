"""The chip's tables as Python values, and what differs between two states of them."""
import typing

from . import tables
from ._functions import FUNCTIONS

Row = typing.Any  # one of the classes of sai_virtual.tables


def _items(cell: str) -> list[str]:
    return [] if cell == "-" else cell.strip("{}").split(",") if cell.strip("{}") else []


def _ports(cell: str) -> tables.Ports:
    ranges = [tuple(map(int, item.split("-"))) for item in _items(cell)]
    return frozenset(port for ends in ranges for port in range(ends[0], ends[-1] + 1))


def _number(cell: str) -> int:
    return int(cell, 0)


def _number_or_word(cell: str) -> int | str:
    return int(cell) if cell.removeprefix("-").isdigit() else cell


VALUES: dict[typing.Any, typing.Callable[[str], typing.Any]] = {
    bool: lambda cell: cell in ("yes", "on"),
    float: float,
    int: _number,
    str: str,
    int | str: _number_or_word,
    int | str | None: lambda cell: None if cell == "-" else _number_or_word(cell),
    tables.Names: lambda cell: tuple(_items(cell)),
    tables.Numbers: lambda cell: tuple(map(int, _items(cell))),
    tables.Ports: _ports,
    int | None: lambda cell: None if cell == "-" else _number(cell),
    str | None: lambda cell: None if cell == "-" else cell,
}


def names() -> list[str]:
    found: list[str] = []
    while (name := FUNCTIONS["swsdk_show_table"](len(found))) is not None:
        found.append(name)
    return found


def cells(text: str) -> list[list[str]]:
    """The cells of a table that swsdk_show() printed, the headings first. Columns begin where their headings do."""
    lines = [line.encode(errors="surrogateescape") for line in text.removesuffix("\n").split("\n")]
    head = lines[0]
    starts = [i for i in range(len(head)) if head[i : i + 1] != b" " and (i == 0 or head[i - 2 : i] == b"  ")]
    ends = [*starts[1:], None]
    return [[line[a:b].decode(errors="surrogateescape").rstrip(" ") for a, b in zip(starts, ends)] for line in lines]


def rows(table: str, unit: int = 0) -> list[Row]:
    headings, *lines = cells(FUNCTIONS["swsdk_show"](unit, table))
    row = tables.ROWS.get(table)
    if row is None:  # a table that is newer than this module
        return [dict(zip(headings, line)) for line in lines]
    convert = [VALUES[hint] for hint in typing.get_type_hints(row).values()]
    return [row(*(to(cell) for to, cell in zip(convert, line))) for line in lines]


class Change(typing.NamedTuple):
    """How a table differs from an earlier state of it."""

    gone: list[Row]
    new: list[Row]


def changes(before: dict[str, list[Row]], after: dict[str, list[Row]]) -> dict[str, Change]:
    """What differs between two results of Chip.snapshot(), by table; tables that are the same are left out."""
    found = {}
    for table in {**before, **after}:
        gone, new = list(before.get(table, [])), []
        for row in after.get(table, []):
            if row in gone:
                gone.remove(row)
            else:
                new.append(row)
        if gone or new:
            found[table] = Change(gone, new)
    return found
