"""Every function of the module and every field of its records with every kind of wrong value, one at a time.

A program of its own, so that a wrong value that ends the interpreter fails the test and does not end the test runner.
It prints what it tries before it does, then how many values were refused.
"""
import array
import contextlib
import ctypes
import decimal

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
    "C function": sai._sai.sai_vlan_create,
    "link handler": sai.link_handler(print),
    "l2 handler": sai.l2_handler(print),
    "C text": ctypes.create_string_buffer(8),
    "C number": ctypes.c_uint64(1),
    "C pointer": ctypes.pointer(ctypes.c_int(1)),
    "address": ctypes.c_void_p(1),
    "log": LOG,
    **{name: getattr(sai, name)() for name in _interface.RECORDS},
}
SIZES = {f"{sign}int{bits}_t": bits for sign in ("", "u") for bits in (8, 16, 32, 64)}
TEXTS = {"text", "digits", "mac", "ip6"}
# By kind: the names of the values that it takes, and of those that are wrong by their value, not by their type.
KINDS = {
    "integer": ({"number", "truth"}, {"too large", "too small"}),
    "text": (TEXTS | {"bytes", "mac bytes", "null"}, {"zero byte"}),
    "6 bytes": ({"mac", "mac bytes", "null"}, {"text", "digits", "zero byte", "bytes", "ip6", "ip6 bytes"}),
    "16 bytes": ({"ip6", "ip6 bytes", "null"}, {"text", "digits", "zero byte", "bytes", "mac", "mac bytes"}),
    "other bytes": ({"null"}, {"bytes", "mac bytes", "ip6 bytes"}),
    "list": ({"list", "array", "null"}, {"large"}),
    "array": ({"null"}, {"list", "array", "large"}),
    "stream": ({"number", "truth", "null"}, {"too large", "too small"}),
    "unset": (set(), set()),
    "log": ({"log", "null"}, set()),
    "link handler": ({"link handler", "null"}, set()),
    "l2 handler": ({"l2 handler", "null"}, set()),
    **{name: ({name, "null"}, set()) for name in _interface.RECORDS},
}
KIND_OF_PARAMETER = {
    **{c_type: "integer" for c_type in SIZES},
    **{f"{const}{name}*": name for name in _interface.RECORDS for const in ("", "const ")},
    **{name: name for name in _interface.RECORDS},
    "char*": "text",
    "const char*": "text",
    "const uint8_t[6]": "6 bytes",
    "const uint8_t[16]": "16 bytes",
    "const bcm_ip6_t*": "16 bytes",
    "const int32_t*": "list",
    "sai_log_handle*": "log",
    "bcm_linkscan_handler_t": "link handler",
    "sai_l2_event_cb": "l2 handler",
}
KIND_OF_FIELD = {
    **{(c_type, None): "integer" for c_type in SIZES},
    ("uint8_t", "6"): "6 bytes",
    ("uint8_t", "16"): "16 bytes",
    ("uint8_t", "8"): "other bytes",
    ("int32_t", "3"): "array",
    ("FILE*", None): "stream",
    ("char*", None): "unset",
    ("const char*", None): "unset",
}


def check_refused(where, name, value, exceptions, call):
    print(where, name, flush=True)
    try:
        call(value)
    except exceptions as error:
        assert str(error).startswith((f"{where} must be ", f"{where} cannot be set")), f"{where}, {name}: {error!r}"
    else:
        raise AssertionError(f"{where} took the value {name!r}")


def sweep(where, kind, c_type, nullable, call):
    """Calls with every value that the kind does not take; returns how many."""
    taken, malformed = KINDS[kind]
    wrong = [name for name in VALUES if name not in taken or name == "null" and not nullable]
    for name in wrong:
        exceptions = (OverflowError, ValueError) if name in malformed else TypeError
        check_refused(where, name, VALUES[name], exceptions, call)
    if kind == "integer":
        span = 2 ** SIZES[c_type]
        beyond = (-1, span) if c_type.startswith("u") else (-span // 2 - 1, span // 2)
        for value in beyond:
            check_refused(where, str(value), value, OverflowError, call)
    return len(wrong)


def sweep_function(function, parameters):
    given = [(p, c_type.rstrip("*") if role == "inout" else c_type, role) for p, c_type, role in parameters
             if role != "out" and not p.endswith(("_buf", "_len"))]
    good = [next(v for name, v in VALUES.items() if name in KINDS[KIND_OF_PARAMETER[t]][0] - {"null"})
            for _, t, _ in given]
    count = 0
    for place, (parameter, c_type, role) in enumerate(given):

        def call(value):
            return getattr(sai, function)(*good[:place], value, *good[place + 1:])

        nullable = role == "in" and (c_type.endswith(("*", "]")) or "handler" in KIND_OF_PARAMETER[c_type])
        count += sweep(f"{function}: {parameter}", KIND_OF_PARAMETER[c_type], c_type, nullable, call)
        if nullable:
            print(f"{function}: {parameter} null", flush=True)
            with contextlib.suppress(sai.SaiError):
                call(None)
    return count


def sweep_field(record, field, c_type, size):
    def put(value):
        setattr(VALUES[record], field, value)

    return sweep(f"{record}: {field}", KIND_OF_FIELD[c_type, size], c_type, c_type == "FILE*", put)


with sai.Chip():
    sai.sai_log_set_level(LOG, sai.SAI_LOG_CONSOLE, sai.SAI_LOG_OFF)
    ctypes.POINTER(sai.sai_log_handle).in_dll(sai._sai, "sai_log_default").contents = LOG.contents
    by_functions = sum(sweep_function(name, parameters) for name, (_, _, parameters) in _interface.FUNCTIONS.items())
    by_fields = sum(sweep_field(name, *field) for name, fields in _interface.RECORDS.items() for field in fields)
print(f"{by_functions} refused by functions, {by_fields} by fields")
