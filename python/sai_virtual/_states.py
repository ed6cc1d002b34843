"""The state of the chips as a value."""
import os
import pathlib
import tempfile
import typing

from . import _tables
from ._constants import CONSTANTS
from ._functions import FUNCTIONS


def save(path: str | os.PathLike[str]) -> None:
    """The state of all units, to a file."""
    _passed("swsdk_state_save", path)


def _passed(function: str, path: str | os.PathLike[str]) -> None:
    result = FUNCTIONS[function](os.fsencode(path))
    if result == CONSTANTS["SWSDK_STATE_NO_FILE"]:
        raise OSError(f"{os.fspath(path)!r} cannot be read or written by the chip")
    if result != CONSTANTS["SWSDK_STATE_DONE"]:
        raise ValueError(f"{os.fspath(path)!r} is no saved state, or a damaged one, or of another version")


class Snapshot(dict[str, list[typing.Any]]):
    """All tables of a unit by name, for changes(); and the state of all units, for Chip.restore()."""

    def __init__(self, tables: dict[str, list[typing.Any]], state: bytes) -> None:
        super().__init__(tables)
        self.state = state

    @classmethod
    def taken(cls, unit: int) -> "Snapshot":
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "state")
            save(path)
            return cls({name: _tables.rows(name, unit) for name in _tables.names()}, path.read_bytes())

    def save(self, path: str | os.PathLike[str]) -> None:
        """Writes the state to a file, which Chip.restore() and the shell's `restore` take."""
        pathlib.Path(path).write_bytes(self.state)


def restore(state: Snapshot | str | os.PathLike[str]) -> None:
    if not isinstance(state, Snapshot):
        _passed("swsdk_state_restore", state)
        return
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "state")
        state.save(path)
        _passed("swsdk_state_restore", path)
