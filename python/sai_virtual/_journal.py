"""What the SDK was called for, and calls of it that fail."""
import typing

from ._functions import FUNCTIONS, ChipError


class Journal:
    """The SDK calls from `with` to its end. Journals can be inside each other."""

    _active: list["Journal"] = []

    def __enter__(self) -> "Journal":
        self._ended: list[str] | None = None
        self._earlier = ""  # before the chip was switched off, which empties the chip's own journal
        if not self._active:
            FUNCTIONS["swsdk_journal_clear"]()
            FUNCTIONS["swsdk_journal_record"](1)
        self._start = self._length()
        self._active.append(self)
        return self

    def __exit__(self, *_: object) -> None:
        self._ended = self.lines()
        self._active.remove(self)
        if not self._active:
            FUNCTIONS["swsdk_journal_record"](0)

    @staticmethod
    def _length() -> int:
        return len(FUNCTIONS["swsdk_journal_read"]().encode(errors="surrogateescape"))

    def _text(self) -> str:
        return self._earlier + typing.cast(str, FUNCTIONS["swsdk_journal_read_from"](self._start))

    def lines(self) -> list[str]:
        """A line for each call, since the last clear()."""
        return self._text().splitlines() if self._ended is None else self._ended

    def calls(self, function: str) -> list[str]:
        """The lines of one SDK function."""
        return [line for line in self.lines() if line.startswith(function + "(")]

    @property
    def met(self) -> bool:
        """Whether the SDK was called."""
        return bool(self.lines())

    def clear(self) -> None:
        """Forgets the lines so far; journals around this one keep them."""
        self._earlier = ""
        self._start = self._length()

    @classmethod
    def keep_all(cls) -> None:
        """Has all journals remember their lines: the chip is about to be switched off."""
        for journal in cls._active:
            journal._earlier, journal._start = journal._text(), 0

    @classmethod
    def resume_all(cls) -> None:
        if cls._active:
            FUNCTIONS["swsdk_journal_record"](1)


class Fault:
    """Makes the nth call of an SDK function return `code`; every call with nth=0. A fault inside another one of the
    same function takes its place for that time. `met` tells whether a call has hit it."""

    _active: dict[str, list["Fault"]] = {}

    def __init__(self, function: str, code: int | str, nth: int = 1) -> None:
        self._function, self._code, self._nth = function, code, nth
        self._hits = 0
        self._is_in_place = False

    @property
    def hits(self) -> int:
        """How many calls have hit it."""
        present = self._present()
        return self._hits + (int(present.hits) if present else 0)

    @property
    def met(self) -> bool:
        return self.hits > 0

    def _present(self) -> typing.Any:
        """It as the chip has it; None while another one is in its place, and when the chip's faults were cleared."""
        try:
            return FUNCTIONS["swsdk_fault_get"](self._function) if self._is_in_place else None
        except ChipError:
            return None

    def _put(self) -> None:
        if self._nth >= 0:  # it has not hit its call yet
            FUNCTIONS["swsdk_fault_inject"](self._function, self._code, self._nth)
            self._is_in_place = True

    def _take(self) -> None:
        """Out of its place, remembering how far it was."""
        if present := self._present():
            self._hits += present.hits
            self._nth = present.nth
            FUNCTIONS["swsdk_fault_remove"](self._function)
        self._is_in_place = False

    def __enter__(self) -> "Fault":
        around = self._active.get(self._function, [])
        if around:
            around[-1]._take()
        self._put()
        self._active.setdefault(self._function, []).append(self)
        return self

    def __exit__(self, *_: object) -> None:
        self._take()
        around = self._active[self._function]
        around.remove(self)
        if around:
            around[-1]._put()

    @classmethod
    def keep_all(cls) -> None:
        """Has all faults remember how far they are: the chip is about to be switched off, which removes them."""
        for around in cls._active.values():
            for fault in around:
                fault._take()

    @classmethod
    def resume_all(cls) -> None:
        for around in cls._active.values():
            if around:
                around[-1]._put()
