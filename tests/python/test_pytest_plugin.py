"""The fixtures of the plugin, and what the report of a failed test shows."""

TEST = """
import pytest
from scapy.layers.l2 import ARP, Ether
import sai_virtual as sai

A, B = "02:00:00:00:00:0a", "02:00:00:00:00:0b"

def test_hosts_talk(chip, wire):
    flooded = wire.send(1, Ether(src=A, dst=B) / ARP(pdst="10.0.0.1"))
    assert flooded.dropped is None and flooded[2][0][ARP].pdst == "10.0.0.1"
    assert list(wire.send(2, bytes.fromhex("02000000000a02000000000b9000").ljust(60, b"x"))) == [1]
    wire.link(1, False)
    assert wire.send(1, Ether(src=A, dst=B)).dropped == "port down"

def test_each_test_has_a_chip_of_its_own(chip, sdk_journal):
    assert chip.table("mac") == [] and sdk_journal.lines() == []

@pytest.mark.chip(units=2, ports=4)
def test_the_board_can_be_chosen(chip):
    assert len(chip.table("attribute", 1)) == 4

def test_this_fails(chip, wire, library_log):
    with pytest.raises(sai.SaiError):
        sai.sai_vlan_port_add(0, 30, 1, 0)
    wire.send(1, Ether(src=A, dst=B) / ARP())
    assert library_log.lines() == []
"""


def test_fixtures_and_the_report_of_a_failure(pytester):
    pytester.makeconftest('pytest_plugins = ["sai_virtual.pytest_plugin"]')
    pytester.makepyfile(TEST)
    result = pytester.runpytest_subprocess("-p", "no:cacheprovider", "--strict-markers")
    result.assert_outcomes(passed=3, failed=1)
    result.stdout.fnmatch_lines(
        [
            "*log of the library*",
            "Failed to add port [[]1[]] to vlan [[]30[]]: Entry not found",
            "*SDK calls*",
            "bcm_vlan_port_add(0, 30, *) = -7",
            "*ways of the last frames*",
            "in 1: 02000000000b02000000000a0806*",
            "passed on",
        ]
    )


def test_without_scapy_frames_are_bytes(pytester):
    pytester.makeconftest('import sys\nsys.modules["scapy"] = None\npytest_plugins = ["sai_virtual.pytest_plugin"]')
    pytester.makepyfile(
        'def test_it(wire):\n    sent = bytes.fromhex("02000000000a02000000000b9000").ljust(60, b"x")\n'
        "    assert wire.send(1, sent)[2] == [sent]\n"
    )
    pytester.runpytest_subprocess("-p", "no:cacheprovider").assert_outcomes(passed=1)
