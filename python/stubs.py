"""The type hints of what is made from the headers, as the lines of a stub file."""
import headers

# Checkers take seconds to infer the types of the tables themselves.
TABLES = ["import typing", ""] + [
    f"{name}: dict[str, typing.Any]" for name in ("CONSTANTS", "ENUMS", "RECORDS", "HANDLERS", "FUNCTIONS")
]
BEGIN = '''"""Made from the headers by generate.py."""
import collections.abc
import enum
import ipaddress
import typing

from . import tables as tables
from ._chip import Chip as Chip
from ._frames import Capture as Capture, Sent as Sent, Watch as Watch, Way as Way, cpu_reasons as cpu_reasons
from ._functions import ChipError as ChipError, SaiError as SaiError
from ._journal import Fault as Fault, Journal as Journal
from ._kinds import OutOfRange as OutOfRange
from ._log import Log as Log
from ._recordings import Answer as Answer, Comparison as Comparison, Difference as Difference, compare as compare
from ._recordings import recording as recording, replay as replay, replay_as_c as replay_as_c
from ._records import Handle as Handle, Record as Record
from ._states import Snapshot as Snapshot
from ._sweep import Failure as Failure, sweep as sweep
from ._tables import Change as Change, changes as changes

fault = Fault
_Number = typing.SupportsIndex
_Named = typing.SupportsIndex | str
_Ip4 = typing.SupportsIndex | str | bytes | ipaddress.IPv4Address
_Mac = str | bytes | bytearray
_Ip6 = str | bytes | bytearray | ipaddress.IPv6Address
_Text = str | bytes
_Data = typing.SupportsBytes | bytes | bytearray | memoryview
_Integers = collections.abc.Sequence[int]

def link_handler(function: bcm_linkscan_handler_t) -> typing.Any: ...
def l2_handler(function: sai_l2_event_cb) -> typing.Any: ...

sai_log_default: Handle | None
sai_log_priority: tuple[str, ...]
sai_log_module_names: tuple[str, ...]
hw_counters_table: tuple[sai_hw_counter, ...]
'''


def type_in(interface, c_type, note=None, count=None):
    """What a parameter or a field takes, without None."""
    base = c_type.removeprefix("const ").rstrip("*")
    if c_type in headers.INTEGERS and count is None:
        return "_Ip4" if note in ("host order", "network order") else "_Named" if note else "_Number"
    if c_type == "uint8_t" or c_type.startswith("const uint8_t[") or base == "bcm_ip6_t":
        size = count or int(c_type.partition("[")[2].rstrip("]") or 16)
        return {6: "_Mac", 16: "_Ip6"}.get(size, "bytes | bytearray")
    if base in interface.handlers:
        return base
    if c_type in ("char*", "const char*", "char"):
        return "_Text"
    if c_type in ("const void*", "const uint8_t*"):
        return "_Data"
    if c_type == "FILE*":
        return "typing.Any"
    return base if base in interface.records else "_Integers"


def type_out(interface, c_type, count=None):
    base, _, items = c_type.removeprefix("const ").partition("[")
    base = base.rstrip("*")
    item = "int" if base in headers.INTEGERS else base
    if c_type == "const uint8_t*":
        return "bytes"
    if base == "char":
        return "str"
    if base == "FILE":
        return "int | None"
    return f"list[{item}]" if items or count else item


def returned(interface, kind, c_type, parameters):
    results = []
    for _, of_type, role, _, _ in parameters:
        if role in ("out", "inout"):
            results.append(type_out(interface, of_type))
        elif role == "room":
            results.append("bytes" if of_type == "void*" else "str")
        elif role == "lines":
            results.append("list[str]")
    if c_type in ("char*", "const char*"):
        results.insert(0, "str | None")
    elif c_type.endswith("*"):
        results.insert(0, "Handle")
    elif kind == "number" or not results:
        results.insert(0, "None" if kind == "none" else "int")
    return results[0] if len(results) == 1 else f"tuple[{', '.join(results)}]"


def hints(interface, c_type, role, note):
    if role == "inout":
        c_type = c_type.rstrip("*")
    if c_type.rstrip("*") in interface.records and role == "needed":
        return "Handle"
    if role == "data" and c_type != "const void*":
        return f"list[{c_type.removeprefix('const ').rstrip('*')}] | None"
    hint = type_in(interface, c_type, note)
    if c_type == "sai_log_handle*":
        hint = "Handle"
    is_pointer = c_type.endswith(("*", "]")) or c_type in interface.handlers
    return hint if role == "needed" or not is_pointer else f"{hint} | None"


def lines_of(interface):
    lines = BEGIN.splitlines()
    for name, (has_bits, _, values) in interface.enums.items():
        lines += ["", f"class {name}(enum.{'IntFlag' if has_bits else 'IntEnum'}):"]
        lines += [f"    {enumerator} = {value}" for enumerator, value in values.items()]
    lines.append("")
    owners = {enumerator: name for name, (_, _, values) in interface.enums.items() for enumerator in values}
    for name, value in interface.constants.items():
        lines.append(f"{name} = {owners[name]}.{name}" if name in owners else f"{name}: {type(value).__name__}")
    lines.append("")
    for name, parameters in interface.handlers.items():
        takes = [type_out(interface, t) if t != "uint8_t*" else "bytes" for _, t in parameters if t != "void*"]
        lines.append(f"{name} = collections.abc.Callable[[{', '.join(takes)}], object]")
    for name, (_, fields) in interface.records.items():
        has_data = any(c_type == "const uint8_t*" for _, c_type, _, _ in fields)
        lines += ["", f"class {name}(Record):"]
        given = []
        for field, c_type, count, note in fields:
            if c_type == "char" or c_type == "const uint8_t*":
                lines.append(f"    {field}: {'str' if c_type == 'char' else 'bytes'}")
            else:
                pointer = " | None" if c_type.endswith("*") else ""
                lines.append(f"    {field}: typing.Any" if count or note or pointer else f"    {field}: int")
            if not (has_data and field == "length") and c_type not in ("char*", "const char*"):
                nothing = " | None" if c_type.endswith("*") else ""
                given.append(f"{field}: {type_in(interface, c_type, note, count)}{nothing} = ...")
        lines.append(f"    def __init__(self, *, {', '.join(given)}) -> None: ...")
    lines.append("")
    for name, (_, kind, c_type, _, _, parameters, _) in interface.functions.items():
        shown = [p for p in parameters if p[2] in ("in", "needed", "inout", "data")]
        listed = ", ".join(f"{p[0]}: {hints(interface, p[1], p[2], p[3])}" for p in shown)
        lines.append(f"def {name}({listed}) -> {returned(interface, kind, c_type, parameters)}: ...")
    return lines
