"""usage: fuzz.py [--seconds SECONDS] [--seed SEED] [--log FILE]

Calls every function of the module with random values, in random order, on chips that live for some hundred calls. Only
the module's own exceptions may come of it; above all, the interpreter stays alive. Fixed seeds first; with --seconds,
others for that time. The log has every call of the last seed, so its last line is the one that ended the interpreter.
"""
import argparse
import contextlib
import ctypes
import ipaddress
import itertools
import os
import random
import tempfile
import time

import sai_virtual as sai
from sai_virtual import _interface

FIXED_SEEDS = range(1, 25)
CALLS = 400
EXPECTED = (TypeError, ValueError, sai.SaiError, RuntimeError, AttributeError, sai.Difference, OSError)
# By itself, it would end what the log and the chips of a seed are.
LEFT_OUT = {"swsdk_power_off", "swsdk_connect"}
RECORDS = {name: getattr(sai, name) for name in _interface.RECORDS}
METHODS = [name for name in vars(sai.Chip) if not name.startswith("_")]
INTEGERS = (0, 1, 2, 3, 7, 8, 9, 10, 12, 13, 63, 64, 255, 256, 4094, 4095, 4096, 65535, 65536, -1, -2, 2**31 - 1,
            -(2**31), 2**32 - 1, 2**32, 2**63 - 1, 2**63, 2**64 - 1, 2**64, 2**200)
MACS = ("02:00:00:00:00:01", "01:00:5e:01:02:03", "33:33:00:00:00:01", "ff:ff:ff:ff:ff:ff", "00:00:00:00:00:00")
IP4 = ("10.0.0.1", "224.1.2.3", "255.255.255.0", "0.0.0.0", ipaddress.IPv4Address("10.0.0.2"))
IP6 = ("2001:db8::1", "ff02::1", "::", ipaddress.IPv6Address("ff3e::1"))
TEXTS = ("", "vlan", "field", "bcm_vlan_create", "bcm_l2_addr_add", "SAI_LOG_ERRORS", "a.rec", "%s%n", "\udcff",
         "a\n  b", "x" * 5000)


LIKELY = {
    "port": range(14), "vid": (1, 10, 11, 4095), "vlan": (0, 1, 10, 11, 4095), "stg": (1, 2), "trunk": (0, 1, 2),
    "tid": (0, 1, 2), "session": (0, 1, 2), "direction": (0, 1), "enable": (0, 1), "prio": range(9), "group": range(8),
    "entry": range(8), "policer": range(4), "index": range(4), "count": range(9), "flags": range(32),
}


class Strange:
    """What looks like a number, bytes and a sequence, until it is used."""

    def __init__(self, value):
        self.value = value

    def _give(self, *_):
        if isinstance(self.value, Exception):
            raise self.value
        return self.value

    __index__ = __bytes__ = __len__ = __getitem__ = __iter__ = fileno = _give


class Fuzzer:
    def __init__(self, seed, log):
        self.random = random.Random(seed)
        self.log = log
        self.logs = []
        self.results = [1, 2, 3]

    def number(self, name=""):
        """Mostly one that there is something for: a port, a VLAN, what a call has returned."""
        if self.random.random() < 0.7 and (likely := next((LIKELY[word] for word in LIKELY if word in name), None)):
            return self.random.choice(likely)
        return self.random.choice((self.random.randrange(14), self.random.choice(INTEGERS),
                                   self.random.choice(self.results), self.random.randrange(1, 4096)))

    def frame(self):
        r = self.random
        tag = r.choice(("", "8100000a", "81000fff", "88a8000a8100000b"))
        kind = r.choice(("0800", "86dd", "0806", "8809", "9000", ""))
        body = r.choice(("", "4500001c00010000", "45000014000100004011", "6000000000083aff", "ff")) + r.randbytes(
            r.choice((0, 1, 20, 46, 100, 1500, 9000))).hex()
        return bytes.fromhex(r.choice(MACS).replace(":", "") + r.choice(MACS).replace(":", "") + tag + kind + body)

    def record(self, name):
        fields = {}
        for field, c_type, count, note in _interface.RECORDS[name][1]:
            if self.random.random() < 0.6:
                fields[field] = self.value(c_type, count, note, field)
        return RECORDS[name](**fields)

    def value(self, c_type, count=None, note=None, name=""):
        """What mostly fits."""
        r = self.random
        base = c_type.removeprefix("const ").rstrip("*")
        if note in _interface.ENUMS and r.random() < 0.5:
            return r.choice(list(_interface.ENUMS[note][2]))
        if note in ("host order", "network order") and r.random() < 0.5:
            return r.choice(IP4)
        if c_type == "const int32_t*" or (count and not c_type.startswith(("uint8", "char"))):
            return [self.number() for _ in range(count or r.randrange(70))]
        if c_type.startswith("const uint8_t[") or base == "bcm_ip6_t" or count in (6, 16):
            return r.choice((*MACS, *IP6, r.randbytes(6), r.randbytes(16)))
        if base == "sai_log_handle":
            return r.choice(self.logs) if self.logs else None
        if base in RECORDS:
            return self.record(base)
        if base in _interface.HANDLERS:
            return self.callback()
        if c_type in ("const void*", "const uint8_t*"):
            return self.frame()
        return r.choice(TEXTS) if "char" in c_type else self.number(name)

    def callback(self):
        def call(*_):
            if self.random.random() < 0.2:
                raise ValueError("of a callback")
            if self.random.random() < 0.2:
                self.step()

        return self.random.choice((call, None, print))

    def anything(self):
        r = self.random
        record = self.record(r.choice(list(RECORDS)))
        return r.choice((None, True, 1.5, object(), "", b"", [], {}, (), r.randbytes(r.randrange(20)), memoryview(b"a"),
                         Strange(r.choice(INTEGERS)), Strange(ValueError()), Strange(b"x"), [None], [Strange(1)] * 3,
                         ctypes.c_int(1), ctypes.create_string_buffer(6), self.number(), record, [record], print, int,
                         range(5), "1", r.choice(TEXTS), 10**30, -0.0, lambda *_: None))

    def arguments(self, name):
        described = _interface.FUNCTIONS[name][5]
        for parameter, c_type, role, note, _ in described:
            if parameter == "unit" and self.random.random() < 0.9:
                yield parameter, 0
            elif role == "data" and c_type != "const void*":
                yield parameter, [self.value(c_type) for _ in range(self.random.randrange(5))]
            elif role in ("in", "needed", "inout", "data"):
                yield parameter, self.value(c_type.rstrip("*") if role == "inout" else c_type, None, note, parameter)

    def one_call(self):
        r = self.random
        if r.random() < 0.15:
            return "send", sai.Chip.send, [r.randrange(13), self.frame()], {}
        if r.random() < 0.1:
            name = r.choice(METHODS)
            return name, getattr(sai.Chip, name), [self.anything() for _ in range(r.randrange(4))], {}
        if r.random() < 0.05:
            name = r.choice(list(RECORDS))
            field = r.choice([field for field, *_ in _interface.RECORDS[name][1]])
            return name, setattr, [self.record(name), field, self.anything()], {}
        name = r.choice([name for name in _interface.FUNCTIONS if name not in LEFT_OUT])
        named = dict(self.arguments(name))
        for parameter in named:
            if r.random() < 0.05:
                named[parameter] = self.anything()
        if r.random() < 0.02 and named:
            named.pop(r.choice(list(named)))
        values = []
        if r.random() < 0.5:
            values, named = list(named.values()), {}
        return name, getattr(sai, name), values, named

    def run(self):
        units = self.random.choice((1, 1, 2))
        ports = self.random.choice((1, 12, 60))
        with sai.Log(sai.SAI_LOG_OFF), contextlib.suppress(*EXPECTED), sai.Chip(units=units, ports=ports) as chip:
            for port in range(1, 13):
                with contextlib.suppress(*EXPECTED):
                    chip.link(port, True)
            if self.random.random() < 0.5:
                sai.sai_switch_chip_init("02:00:00:00:00:01")
            for _ in range(CALLS):
                self.step()
                if sai.swsdk_starts(0) == 0:
                    chip.__enter__()  # a replay has switched it off
            with contextlib.suppress(*EXPECTED):  # of callbacks
                sai.swsdk_events_drain()
            try:
                chip.snapshot()
            except EXPECTED as error:
                raise AssertionError("the tables cannot be read") from error
        sai.swsdk_listen_end()
        for handle in self.logs:
            with contextlib.suppress(*EXPECTED):
                sai.close_sai_log(handle)

    def step(self):
        try:
            name, function, values, named = self.one_call()
            self.log.write(f"{name} {values!r} {named!r}\n")
            self.log.flush()
            result = function(*values, **named)
        except EXPECTED:
            return
        if isinstance(result, sai.Handle):
            self.logs.append(result)
        elif isinstance(result, int):
            self.results = [*self.results[-5:], int(result)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seconds", type=float, default=0)
    parser.add_argument("--seed", type=int)
    parser.add_argument("--log", default=os.devnull)
    arguments = parser.parse_args()
    said = os.dup(1)
    os.dup2(os.open(os.devnull, os.O_WRONLY), 1)  # functions print there, and to standard error without a log
    end = time.monotonic() + arguments.seconds
    others = itertools.takewhile(lambda _: time.monotonic() < end, itertools.count(1000))
    seeds = [arguments.seed] if arguments.seed is not None else itertools.chain(FIXED_SEEDS, others)
    done = 0
    with tempfile.TemporaryDirectory() as folder, open(arguments.log, "w", encoding="utf-8", errors="replace") as log:
        os.chdir(folder)
        for seed in seeds:
            log.seek(0)
            log.truncate()
            Fuzzer(seed, log).run()
            done += 1
        os.chdir("/")
    os.write(said, f"{done} seeds\n".encode())


if __name__ == "__main__":
    main()
