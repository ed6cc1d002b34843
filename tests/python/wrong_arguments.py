"""Every function of the module and every field of its records with every kind of wrong value, one at a time.

A program of its own, so that a wrong value that ends the interpreter fails the test and does not end the test runner.
It prints what it tries before it does, then how many values were refused.
"""
import array
import contextlib
import ctypes
import decimal
import tempfile

import sai_virtual as sai
from sai_virtual import _interface

LOG = sai.open_sai_log("", 0, 0, 0)
VALUES = {
    "number": 1,
    "truth": True,
    "too large": 2**64,
    "too small": -(2**63) - 1,
    "fraction": 1.0,
    "decimal": decimal.Decimal(1),
    "text": "208.107.165.80",
    "digits": "1",
    "zero byte": "a\0b",
    "bytes": b"12345678901",
    "null": None,
    "object": object(),
    "class": sai.sai_l2_mac_entry_t,
    "list": [1, 2],
    "texts": ["1", "2"],
    "large": [2**31],
    "dictionary": {1: 2},
    "array": array.array("i", [1, 2]),
    "mac": "02:00:00:00:00:01",
    "mac bytes": bytes(6),
    "ip6": "2001:db8::1",
    "ip6 bytes": bytearray(16),
    "function": print,
    "C function": ctypes.CDLL("libsai.so").sai_vlan_create,
    "link handler": sai.link_handler(print),
    "l2 handler": sai.l2_handler(print),
    "C text": ctypes.create_string_buffer(8),
    "C number": ctypes.c_uint64(1),
    "C pointer": ctypes.pointer(ctypes.c_int(1)),
    "address": ctypes.c_void_p(1),
    "log": LOG,
    "file": tempfile.TemporaryFile("w"),
    **{name: getattr(sai, name)() for name in _interface.RECORDS},
}
SIZES = {f"{sign}int{bits}_t": bits for sign in ("", "u") for bits in (8, 16, 32, 64)}
TEXTS = {"text", "digits", "mac", "ip6"}
ALL_BYTES = {"bytes", "mac bytes", "ip6 bytes"}
# By kind: the names of the values that it takes, and of those that are wrong by their value, not by their type.
KINDS = {
    "integer": ({"number", "truth"}, {"too large", "too small"}),
    "named": ({"number", "truth"}, {"too large", "too small", "zero byte"} | TEXTS),
    "ip4": ({"number", "truth", "text"}, {"too large", "too small", "zero byte", "digits", "mac", "ip6"} | ALL_BYTES),
    "text": (TEXTS | {"bytes", "mac bytes", "null"}, {"zero byte"}),
    "6 bytes": ({"mac", "mac bytes", "null"}, {"text", "digits", "zero byte", "bytes", "ip6", "ip6 bytes"}),
    "16 bytes": ({"ip6", "ip6 bytes", "null"}, {"text", "digits", "zero byte", "bytes", "mac", "mac bytes"}),
    "other bytes": ({"null"}, ALL_BYTES),
    "data": (ALL_BYTES | {"null"}, set()),
    "list": ({"list", "array", "null"}, {"large"}),
    "array": ({"null"}, {"list", "array", "large"}),
    "pair": ({"list", "array", "null"}, {"large"}),
    "records": ({"null"}, set()),
    "stream": ({"file", "null"}, set()),
    "unset": (set(), set()),
    "log": ({"log", "null"}, set()),
    "link handler": ({"link handler", "function", "null"}, set()),
    "l2 handler": ({"l2 handler", "function", "null"}, set()),
    "plain handler": ({"function", "null"}, set()),
    **{name: ({name, "null"}, set()) for name in _interface.RECORDS},
}
KIND_OF_TYPE = {
    **{f"{const}{name}*": name for name in _interface.RECORDS for const in ("", "const ")},
    **{name: name for name in _interface.RECORDS},
    "char*": "text",
    "const char*": "text",
    "const uint8_t[6]": "6 bytes",
    "const uint8_t[16]": "16 bytes",
    "const bcm_ip6_t*": "16 bytes",
    "const int32_t*": "list",
    "const void*": "data",
    "sai_log_handle*": "log",
    "bcm_linkscan_handler_t": "link handler",
    "sai_l2_event_cb": "l2 handler",
    "swsdk_difference_t": "plain handler",
    "swsdk_frame_handler": "plain handler",
}
KIND_OF_FIELD = {
    ("int32_t", 2): "pair",
    ("uint8_t", 6): "6 bytes",
    ("uint8_t", 16): "16 bytes",
    ("uint8_t", 8): "other bytes",
    ("FILE*", None): "stream",
    ("char*", None): "unset",
    ("const char*", None): "unset",
    ("const uint8_t*", None): "data",
    ("char", 16): "text",
}
FUNCTIONS = {name: parameters for name, (*_, parameters, _) in _interface.FUNCTIONS.items()}


def kind_of_integer(note):
    return "integer" if note is None else "ip4" if note.endswith(" order") else "named"


def check_refused(where, name, value, exceptions, call):
    print(where, name, flush=True)
    try:
        call(value)
    except exceptions as error:
        assert str(error).startswith((f"{where} must be ", f"{where} cannot be set")), f"{where}, {name}: {error!r}"
    else:
        raise AssertionError(f"{where} took the value {name!r}")


def sweep(where, kind, limits, nullable, call):
    """Calls with every value that the kind does not take; returns how many."""
    taken, malformed = KINDS[kind]
    wrong = [name for name in VALUES if name not in taken or name == "null" and not nullable]
    for name in wrong:
        check_refused(where, name, VALUES[name], ValueError if name in malformed else TypeError, call)
    if kind in ("integer", "named", "ip4"):
        for value in (limits[0] - 1, limits[1] + 1):
            check_refused(where, str(value), value, OverflowError, call)
    return len(wrong)


def limits_of(c_type):
    span = 2 ** SIZES[c_type] if c_type in SIZES else 0
    return (0, span - 1) if c_type.startswith("u") else (-span // 2, span // 2 - 1)


def sweep_function(function, parameters):
    given = []
    for name, c_type, role, note, limits in parameters:
        c_type = c_type.rstrip("*") if role == "inout" else c_type
        if role in ("in", "needed", "inout", "data"):
            kind = kind_of_integer(note) if c_type in SIZES else KIND_OF_TYPE[c_type]
            kind = "records" if role == "data" and kind != "data" else kind
            is_pointer = c_type.endswith(("*", "]")) or "handler" in kind
            given.append((name, kind, limits or limits_of(c_type), role in ("in", "data") and is_pointer))
    good = [next((v for name, v in VALUES.items() if name in KINDS[kind][0] - {"null"}), None) for _, kind, *_ in given]
    count = 0
    for place, (parameter, kind, limits, nullable) in enumerate(given):

        def call(value):
            return getattr(sai, function)(*good[:place], value, *good[place + 1:])

        count += sweep(f"{function}: {parameter}", kind, limits, nullable, call)
        if nullable:
            print(f"{function}: {parameter} null", flush=True)
            with contextlib.suppress(sai.SaiError, sai.ChipError):
                call(None)
    return count


def sweep_field(record, field, c_type, size, note):
    def put(value):
        setattr(VALUES[record], field, value)

    kind = KIND_OF_FIELD.get((c_type, size)) or ("array" if size else KIND_OF_TYPE.get(c_type) or kind_of_integer(note))
    if field == "length":
        kind = "unset"
    nullable = c_type.endswith("*") and c_type != "const uint8_t*" and kind != "unset" or kind == "data"
    return sweep(f"{record}: {field}", kind, limits_of(c_type), nullable, put)


with sai.Log(sai.SAI_LOG_OFF), sai.Chip():
    by_functions = sum(sweep_function(name, parameters) for name, parameters in FUNCTIONS.items())
    fields = [(name, *field) for name, (_, fields) in _interface.RECORDS.items() for field in fields]
    by_fields = sum(sweep_field(*field) for field in fields)
print(f"{by_functions} refused by functions, {by_fields} by fields")
