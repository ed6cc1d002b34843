"""Fixtures of pytest for tests of applications: `pytest_plugins = ["sai_virtual.pytest_plugin"]` in conftest.py.

- `chip`: a virtual chip, new for each test. `@pytest.mark.chip(units=2, cold=True)` gives its arguments.
- `sdk_journal`: the Journal of the test; `library_log`: its Log.
- `wire`: the hosts at the chip's ports. Their links are up; what they send are bytes, or packets of Scapy; what they
  get are packets of Scapy where it is installed, otherwise bytes.

The report of a test that fails shows the SDK calls, the library's log, and the ways of the last frames.
"""
import collections.abc
import importlib
import typing

import pytest

import sai_virtual as sai

_Frame: typing.Any = bytes
try:
    _Frame = importlib.import_module("scapy.layers.l2").Ether
except ImportError:
    pass

_SHOWN_CALLS = 200
_SHOWN_WAYS = 5
_LOOKED_AT = pytest.StashKey[dict[str, typing.Callable[[], list[str]]]]()


class Received(dict[int, list[typing.Any]]):
    """What came out, by port; 0 is the CPU. `dropped` is the reason for which the frame was not forwarded, or None."""

    def __init__(self, sent: sai.Sent) -> None:
        super().__init__({port: [_Frame(frame) for frame in sent.at(port)] for port in sent.ports})
        self.dropped = sent.reason
        self.frames = sent.frames


class Wire:
    """Hosts at the ports of a unit."""

    def __init__(self, chip: sai.Chip, unit: int = 0) -> None:
        self._chip, self._unit = chip, unit

    def send(self, port: int, frame: typing.Any) -> Received:
        """The host at a port sends; returns what all get of it."""
        return Received(self._chip.send(port, frame, self._unit))

    def trace(self, port: int, frame: typing.Any) -> list[str]:
        """The way that it would take."""
        return self._chip.trace(port, frame, self._unit)

    def link(self, port: int, up: bool) -> None:
        self._chip.link(port, up, self._unit)


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line("markers", "chip(**arguments): the arguments of sai_virtual.Chip for the fixture `chip`")


@pytest.fixture
def library_log(request: pytest.FixtureRequest) -> collections.abc.Iterator[sai.Log]:
    """What the library logs in the test."""
    with sai.Log() as log:
        _look_at(request, "log of the library", log.lines)
        yield log


@pytest.fixture
def sdk_journal(request: pytest.FixtureRequest) -> collections.abc.Iterator[sai.Journal]:
    """The SDK calls of the test."""
    with sai.Journal() as journal:
        _look_at(request, "SDK calls", lambda: journal.lines()[-_SHOWN_CALLS:])
        yield journal


@pytest.fixture
def chip(
    request: pytest.FixtureRequest, library_log: sai.Log, sdk_journal: sai.Journal
) -> collections.abc.Iterator[sai.Chip]:
    """A virtual chip, new for this test."""
    marker = request.node.get_closest_marker("chip")
    with sai.Chip(**(marker.kwargs if marker else {})) as on, sai.Watch() as watch:

        def ways() -> list[str]:
            return [line for way in watch.ways()[-_SHOWN_WAYS:] for line in (*way.lines, "")]

        _look_at(request, "ways of the last frames", ways)
        sdk_journal.clear()
        yield on


@pytest.fixture
def wire(chip: sai.Chip) -> Wire:
    """The hosts at the ports of unit 0, whose links are up."""
    for row in chip.table("attribute"):
        chip.link(row.port, True)
    return Wire(chip)


def _look_at(request: pytest.FixtureRequest, title: str, lines: typing.Callable[[], list[str]]) -> None:
    request.node.stash.setdefault(_LOOKED_AT, {})[title] = lines


@pytest.hookimpl(hookwrapper=True)  # type: ignore[misc]
def pytest_runtest_makereport(item: pytest.Item, call: pytest.CallInfo[None]) -> collections.abc.Iterator[None]:
    outcome: typing.Any = yield
    report = outcome.get_result()
    if call.when in ("setup", "call") and report.failed:
        for title, lines in item.stash.get(_LOOKED_AT, {}).items():
            if shown := lines():
                report.sections.append((title, "\n".join(shown)))
