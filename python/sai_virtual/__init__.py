"""libsai.so and the virtual chip for tests in Python.

The module has every function, record and constant of sai.h and of the virtual chip's headers, swsdk/*.h, under its own
name, with the header's text: help(sai_virtual.sai_vlan_create). Output arguments are left out and returned as the
call's value; a negative code is raised as SaiError, a refusal of the virtual chip as ChipError:

    import sai_virtual as sai

    with sai.Chip() as chip, sai.Journal() as journal:
        sai.sai_vlan_create(0, 10)
        sai.sai_bpdu_set(0, mac="01:80:c2:00:00:0e")  # the index of the entry
        journal.lines()  # ['bcm_vlan_create(0, 10) = 0', ...]
        chip.table("vlan")  # [Vlan(vlan=1, ...), Vlan(vlan=10, tagged=frozenset({0}), ...)]
        chip.send(1, frame).ports  # where it left
        with sai.fault("bcm_vlan_create", "BCM_E_FULL") as fault:
            sai.sai_vlan_create(0, 11)  # raises SaiError: sai_vlan_create: SAI_E_FULL (-13)
        fault.met  # True

Addresses are texts, bytes or objects of ipaddress; records are of the classes named as in the headers; None is a null
pointer. A value that does not fit is rejected before the call, with the names of the function and the argument: a wrong
type is a TypeError, everything else a ValueError. The loader finds the two libraries as for any program.
"""
import sys

from ._callbacks import l2_handler, link_handler
from ._chip import Chip
from ._constants import CONSTANTS, ENUMS
from ._frames import Capture, Sent, Watch, Way, cpu_reasons
from ._functions import FUNCTIONS, ChipError, SaiError
from ._journal import Fault, Journal
from ._kinds import OutOfRange
from ._log import Log, Variables
from ._recordings import Answer, Comparison, Difference, compare, recording, replay, replay_as_c
from ._records import RECORDS, Handle
from ._states import Snapshot
from ._sweep import Failure, sweep
from ._tables import Change, changes

fault = Fault
globals().update({**CONSTANTS, **ENUMS, **RECORDS, **FUNCTIONS})
sys.modules[__name__].__class__ = Variables
