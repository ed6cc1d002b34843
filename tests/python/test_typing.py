"""The module's type hints: the module fits them, and a program that does not is told so."""
import os
import pathlib
import subprocess

import pytest

import sai_virtual

FOLDER = pathlib.Path(sai_virtual.__file__).parents[1]
PROGRAM = """
import ipaddress
import sai_virtual as sai

with sai.Chip(units=2) as chip, sai.Journal() as journal, sai.fault("bcm_vlan_create", "BCM_E_FULL", nth=0) as fault:
    status: int = sai.sai_vlan_create(0, vid=10)
    index: int = sai.sai_bpdu_set(0, "01:80:c2:00:00:0e")
    room, used = sai.sai_l2_info(0)
    sai.sai_l3_host_route_delete(0, ipaddress.IPv4Address("10.0.0.1"), 0)
    names: list[str] = journal.lines() + [sai.swsdk_show(0, "vlan")]
    ports: list[int] = chip.send(1, b"x").ports
    entry = sai.sai_l2_mac_entry_t(mac="02:00:00:00:00:01", flags=sai.SAI_L2_MAC_STATIC)
    sai.sai_register_l2_service(0, lambda vid, port, mac, operation: print(mac.hex()))
    assert fault.met and room + used + index + status
"""
WRONG = ["sai.sai_vlan_create(0, [])", "sai.sai_vlan_create(0)", "sai.sai_vlan_creat(0, 1)", "sai.swsdk_show(0, 1)",
         "sai.sai_l2_mac_entry_t(mca=b'')", "sai.Chip(unit=1)"]


def check(*arguments):
    environment = {**os.environ, "MYPYPATH": str(FOLDER)}
    command = ["/usr/bin/mypy", "--strict", *arguments]
    return subprocess.run(command, capture_output=True, text=True, check=False, env=environment, cwd=FOLDER)


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    return f"--cache-dir={tmp_path_factory.mktemp('mypy')}"


def test_the_module_and_a_program_fit(cache, tmp_path):
    (tmp_path / "program.py").write_text(PROGRAM)
    for run in check(cache, "-p", "sai_virtual"), check(cache, tmp_path / "program.py"):
        assert run.stdout.startswith("Success"), run.stdout + run.stderr


def test_each_wrong_line_is_found(cache, tmp_path):
    (tmp_path / "wrong.py").write_text("import sai_virtual as sai\n" + "\n".join(WRONG) + "\n")
    found = check(cache, tmp_path / "wrong.py").stdout
    assert [f"wrong.py:{line}:" in found for line in range(2, len(WRONG) + 2)] == [True] * len(WRONG), found
