"""Frames into the chip and out of it, their ways, and how they are lost."""
import dataclasses
import typing

from ._constants import CONSTANTS
from ._functions import FUNCTIONS, ChipError


@dataclasses.dataclass
class Sent:
    """What became of a frame that came in."""

    reason: str | None  # why it was not forwarded; None if it was. A frame that goes to the CPU alone has a reason too
    frames: list[typing.Any]  # what left, a swsdk_out each, in the order in which it did

    def at(self, port: int) -> list[bytes]:
        """What left at a port; 0 is the CPU."""
        return [out.data for out in self.frames if out.port == port]

    @property
    def ports(self) -> list[int]:
        """Where something left."""
        return sorted({out.port for out in self.frames})


class Capture:
    """The frames that leave a unit from `with` to its end, in `frames`, a swsdk_out each. Captures can be inside each
    other. A handler of swsdk_frame_handle() is put out of its place by the first one."""

    _active: dict[int, list["Capture"]] = {}

    def __init__(self, unit: int = 0) -> None:
        self._unit = unit
        self.frames: list[typing.Any] = []

    def __enter__(self) -> "Capture":
        FUNCTIONS["swsdk_frame_handle"](self._unit, Capture._add)  # again, as the chip may have been switched off meanwhile
        self._active.setdefault(self._unit, []).append(self)
        return self

    def __exit__(self, *_: object) -> None:
        captures = self._active[self._unit]
        captures.remove(self)
        if not captures:
            try:
                FUNCTIONS["swsdk_frame_handle"](self._unit, None)
            except ChipError:
                pass  # switched off, and the handler with it

    def clear(self) -> None:
        self.frames = []

    @classmethod
    def _add(cls, unit: int, out: typing.Any) -> None:
        for capture in cls._active.get(unit, []):
            capture.frames.append(out)


def send(port: int, frame: typing.Any, unit: int = 0) -> Sent:
    with Capture(unit) as capture:
        reason = FUNCTIONS["swsdk_frame_send"](unit, port, frame)
    return Sent(FUNCTIONS["swsdk_drop_name"](reason) if reason else None, capture.frames)


def cpu_reasons(out: typing.Any) -> list[str]:
    """The names of the reasons for which the CPU gets a frame."""
    names = []
    for index in range(32):
        if out.cpu >> index & 1:
            names.append(FUNCTIONS["swsdk_cpu_reason_name"](index))
    return names


def drops(count: typing.Callable[[int], int]) -> dict[str, int]:
    """What `count` tells of each reason, by its name, without those that it has none of."""
    counts = {}
    reason = 1
    while (name := FUNCTIONS["swsdk_drop_name"](reason)) is not None:
        if lost := count(reason):
            counts[name] = lost
        reason += 1
    return counts


@dataclasses.dataclass(frozen=True)
class Way:
    """A frame that passed while it was watched: when, at which unit, and the lines of its way. One without a time tells
    in its only line how many were lost."""

    seconds: float | None
    unit: int
    lines: tuple[str, ...]


class Watch:
    """The frames that pass through the chip from `with` to its end, with their ways.

    `filter` is a program of libpcap's; without one, every frame is watched.
    """

    def __init__(self, detail: int | str = CONSTANTS["SWSDK_WATCH_WAYS"], filter: bytes | None = None) -> None:
        self._detail, self._filter = detail, filter
        self._seen: list[Way] = []
        self._number: int | None = None

    def __enter__(self) -> "Watch":
        self._number = FUNCTIONS["swsdk_watch_begin"](self._detail, self._filter)
        return self

    def __exit__(self, *_: object) -> None:
        self.ways()
        number, self._number = self._number, None
        try:
            FUNCTIONS["swsdk_watch_end"](number)
        except ChipError:
            pass  # it went with the chip's process

    def ways(self) -> list[Way]:
        """Those of the frames so far."""
        text = ""
        while self._number is not None and (more := FUNCTIONS["swsdk_watch_take"](self._number)):
            text += more
        for block in filter(None, text.split("\n\n")):
            head, *lines = block.splitlines()
            words = head.split()
            if words[0] == "at":
                self._seen.append(Way(float(words[1]), int(words[3]), tuple(lines)))
            else:
                self._seen.append(Way(None, 0, (head,)))
        return list(self._seen)
