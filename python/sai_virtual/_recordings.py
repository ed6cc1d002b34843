"""Recordings of SDK calls, and their repetition."""
import os
import typing

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


class Answer(typing.NamedTuple):
    """One answer or event of a repeated recording that is not the recorded one."""

    line: int  # of the recording; 0 for an event that no line has
    function: str
    kind: str  # "result", "output NAME", "output N" or "event"
    recorded: str
    now: str


class Comparison(typing.NamedTuple):
    """How far a chip answers as the recorded one did."""

    differences: list[Answer]
    answers: int  # that were compared, with the events
    the_same: int
    notices: list[str]


def compare(path: str | os.PathLike[str]) -> Comparison:
    """Repeats a recording to its end; the chip stays as its last call leaves it. Raises ValueError for a file that is not
    a recording. A recording that lacks its end has a notice."""
    found: list[Answer] = []

    def note(difference: typing.Any) -> None:
        texts = (getattr(difference, name).decode() for name in Answer._fields[1:])
        found.append(Answer(difference.line, *texts))

    outcome, lines, replayed = FUNCTIONS["swsdk_replay_all"](os.fsencode(path), CONSTANTS["SWSDK_REPLAY_TO_END"], note)
    if outcome == CONSTANTS["SWSDK_REPLAY_UNREADABLE"]:
        raise ValueError("\n".join(lines))
    return Comparison(found, replayed.answers, replayed.the_same, list(lines))


def replay_as_c(path: str | os.PathLike[str]) -> str:
    """A C program that makes the calls of a recording. Raises ValueError for a file that is no recording."""
    outcome, program, lines = FUNCTIONS["swsdk_replay_as_c"](os.fsencode(path))
    if outcome == CONSTANTS["SWSDK_REPLAY_UNREADABLE"]:
        raise ValueError("\n".join(lines))
    return "\n".join(program) + "\n"
