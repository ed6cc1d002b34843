"""The fault sweep: a function is run once for each SDK call that it makes, with that call failing."""
import collections
import collections.abc
import dataclasses
import functools
import importlib.resources
import os
import pathlib
import re
import tempfile
import typing

from . import _states
from ._chip import Chip
from ._constants import CONSTANTS, ENUMS
from ._functions import FUNCTIONS
from ._journal import Fault, Journal
from ._log import Log

_FAULT_LOG: str = CONSTANTS["SWSDK_FAULT_LOG_VARIABLE"]


@dataclasses.dataclass(frozen=True)
class Failure:
    """A run in which one call failed."""

    call: str  # as the journal has it when nothing fails
    function: str  # of the SDK
    nth: int  # the number of the call among those of that function
    code: int
    made_in: str | None  # the function of libsai.so that made the call, where that can be told
    met: bool  # False: the run took another way and did not come to the call
    ignored: bool  # libsai.so itself ignores this failure
    result: typing.Any  # what the function returned
    error: Exception | None  # or raised
    log: list[str]  # the messages that the run without a failure has not
    left: list[str]  # what it left on the chip that the run without a failure does not

    @property
    def findings(self) -> list[str]:
        """What a caller would call wrong: "unreached"; "success", it raised nothing although a call failed; "silent",
        nothing was logged; "left", something stays on the chip."""
        if not self.met:
            return ["unreached"]
        found = ["success"] if self.error is None and not self.ignored else []
        found += ["silent"] if not self.log and not self.ignored else []
        return found + (["left"] if self.left else [])

    def __str__(self) -> str:
        said = ", ".join(self.findings) or ("ignored by libsai.so" if self.ignored else "well")
        return f"{self.call}, failing with {self.code}: {said}"


@functools.cache
def _ignored() -> dict[tuple[str, str, str], list[str]]:
    """By function of libsai.so, SDK call and code, or "all": what the table says besides."""
    text = importlib.resources.files(__package__).joinpath("ignored_failures").read_text("utf-8")
    return {(library, call, code): words for library, call, codes, *words in map(str.split, text.splitlines())
            for code in codes.split(",")}


class _Run:
    """One run of the function; what it did."""

    def __init__(self, function: collections.abc.Callable[[], typing.Any], fault: Fault | None = None) -> None:
        self.result: typing.Any = None
        self.error: Exception | None = None
        with Journal() as journal, Log(CONSTANTS["SAI_LOG_DEBUGGING"]) as log:
            try:
                if fault is None:
                    self.result = function()
                else:
                    with fault:
                        self.result = function()
            except Exception as error:
                self.error = error
        self.calls = [line.partition("(")[0] for line in journal.lines()]
        self.lines = journal.lines()
        self.log = log.lines()
        self.left = Chip.leftovers() if FUNCTIONS["swsdk_starts"](0) > 0 else []


def _more_than(these: list[str], those: list[str], kind: collections.abc.Callable[[str], str] = str) -> list[str]:
    """What is in `these` more often than its kind is in `those`."""
    known = collections.Counter(map(kind, those))
    found = []
    for one in these:
        known[kind(one)] -= 1
        if known[kind(one)] < 0:
            found.append(one)
    return found


def _kind_of_leftover(line: str) -> str:
    """Ids, and the numbers of calls, differ from run to run."""
    return re.sub(r"\d+", "#", line.partition(" (call ")[0])


def sweep(function: collections.abc.Callable[[], typing.Any], *,
          codes: collections.abc.Iterable[int | str] = ("BCM_E_FAIL",),
          only: collections.abc.Container[str] | None = None) -> collections.abc.Iterator[Failure]:
    """Runs a function without arguments once to learn its SDK calls, then once for each call and code with that call
    failing, each time on the chip as it is now, which is also how it is left:

        for failure in sai.sweep(configure):
            assert not failure.findings, failure

    `codes` are those that a call fails with, `only` the SDK functions whose calls fail. What the function raises in the
    first run is raised here."""
    with tempfile.TemporaryDirectory() as folder:
        state = pathlib.Path(folder, "state")
        _states.save(state)
        try:
            usual = _Run(function)
            if usual.error is not None:
                raise usual.error
            counts: collections.Counter[str] = collections.Counter()
            for call, line in zip(usual.calls, usual.lines):
                counts[call] += 1
                for code in codes if only is None or call in only else ():
                    _states.restore(state)
                    number = ENUMS["bcm_error_t"][code].value if isinstance(code, str) else code
                    yield _failing(function, usual, line, call, counts[call], number, pathlib.Path(folder, "faults"))
        finally:
            _states.restore(state)


def _failing(function: collections.abc.Callable[[], typing.Any], usual: _Run, line: str, call: str, nth: int,
             code: int, path: pathlib.Path) -> Failure:
    outer = os.environ.get(_FAULT_LOG)
    os.environ[_FAULT_LOG] = str(path)
    fault = Fault(call, code, nth)
    try:
        run = _Run(function, fault)
    finally:
        if outer is None:
            del os.environ[_FAULT_LOG]
        else:
            os.environ[_FAULT_LOG] = outer
    made_in = path.read_text("utf-8").split()[1] if path.exists() else "-"
    path.unlink(missing_ok=True)
    log = _more_than(run.log, usual.log)
    words = _ignored().get((made_in, call, "all"), _ignored().get((made_in, call, str(code))))
    return Failure(call=line, function=call, nth=nth, code=code, made_in=None if made_in == "-" else made_in,
                   met=fault.met, ignored=words is not None and not (log and "unlogged-only" in words),
                   result=run.result, error=run.error, log=log,
                   left=_more_than(run.left, usual.left, _kind_of_leftover))
