"""Tests of the access switch on the virtual chip, with Scapy's packets through its ports."""
import pytest
import sai_virtual as sai
from access_switch import AccessSwitch, Deny, Vlan
from scapy.layers.inet import IP
from scapy.layers.inet6 import IPv6
from scapy.layers.l2 import Dot1Q, Ether

VLANS = {10: Vlan(untagged=(1, 2), tagged=(9,)), 20: Vlan(untagged=(3,), tagged=(9,))}
A, B = "02:00:00:00:00:0a", "02:00:00:00:00:0b"


@pytest.fixture
def switch(chip):
    for port in range(1, 13):
        sai.sai_vlan_port_remove(0, 1, port)
    yield AccessSwitch()


def test_a_frame_stays_in_its_vlan(switch, wire):
    switch.apply(VLANS)
    received = wire.send(1, Ether(src=A, dst=B) / IP(dst="10.0.0.1"))
    assert sorted(port for port in received if port) == [2, 9]
    assert Dot1Q not in received[2][0] and received[9][0][Dot1Q].vlan == 10
    assert 3 in wire.send(9, Ether(src=B, dst=A) / Dot1Q(vlan=20) / IP())


def test_what_is_denied_is_dropped_and_the_rest_passes(switch, wire):
    switch.apply(VLANS, [Deny(port=1, ether_type=0x86DD)])
    assert wire.send(1, Ether(src=A, dst=B) / IPv6()).dropped == "field rule"
    assert wire.send(1, Ether(src=A, dst=B) / IP()).dropped is None
    assert wire.send(2, Ether(src=B, dst=A) / IPv6()).dropped is None


def test_only_what_differs_changes_the_chip(switch, chip, sdk_journal):
    switch.apply(VLANS)
    before = chip.snapshot()
    sdk_journal.clear()
    switch.apply(VLANS)
    assert sdk_journal.lines() == [] and sai.changes(before, chip.snapshot()) == {}
    switch.apply({10: VLANS[10]})
    assert [row.vlan for row in sai.changes(before, chip.snapshot())["vlan"].gone] == [20]


@pytest.mark.parametrize("call", ["bcm_vlan_port_add", "bcm_port_untagged_vlan_set"])
def test_a_vlan_that_cannot_be_made_leaves_nothing(switch, chip, library_log, call):
    with sai.fault(call, "BCM_E_RESOURCE", nth=2) as fault, pytest.raises(sai.SaiError):
        switch.apply({10: VLANS[10]})
    assert fault.met and library_log.met
    assert [row.vlan for row in chip.table("vlan")] == [1]


def test_a_full_table_leaves_no_entry(switch, chip):
    with sai.fault("bcm_field_entry_install", "BCM_E_FULL"), pytest.raises(sai.SaiError, match="SAI_E_FULL"):
        switch.apply(VLANS, [Deny(1, 0x86DD)])
    assert [row.entry for row in chip.table("field")] == [None]
    switch.apply(VLANS, [Deny(1, 0x86DD)])
    assert chip.table("field")[0].installed == "yes"


def test_a_link_that_goes_down_is_remembered(switch, wire):
    wire.link(3, False)
    assert switch.port_down == [3]
