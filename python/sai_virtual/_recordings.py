"""Recordings of SDK calls, and their repetition."""
import os

from ._functions import FUNCTIONS, ChipError
from ._constants import CONSTANTS


class recording:
    """Records every SDK call to a file. The chip must be off at the start."""

    def __init__(self, path: str | os.PathLike[str]) -> None:
        self._path = os.fsencode(path)

    def __enter__(self) -> "recording":
        FUNCTIONS["swsdk_record_start"](self._path)
        return self

    def __exit__(self, failure: type[BaseException] | None, *_: object) -> None:
        try:
            FUNCTIONS["swsdk_record_stop"]()
        except ChipError:
            if failure is None:
                raise


class Difference(Exception):
    """A repeated call returned something other than recorded."""


def replay(path: str | os.PathLike[str]) -> list[str]:
    """Repeats a recording; the chip stays as its last call leaves it. Returns the notices; raises Difference, or
    ValueError for a file that is not a recording or lacks its end."""
    outcome, lines = FUNCTIONS["swsdk_replay"](os.fsencode(path))
    if outcome != CONSTANTS["SWSDK_REPLAY_SAME"]:
        raise (Difference if outcome == CONSTANTS["SWSDK_REPLAY_DIFFERENT"] else ValueError)("\n".join(lines))
    return list(lines)


def replay_as_c(path: str | os.PathLike[str]) -> str:
    """A C program that makes the calls of a recording. Raises ValueError for a file that is no recording."""
    outcome, program, lines = FUNCTIONS["swsdk_replay_as_c"](os.fsencode(path))
    if outcome == CONSTANTS["SWSDK_REPLAY_UNREADABLE"]:
        raise ValueError("\n".join(lines))
    return "\n".join(program) + "\n"
