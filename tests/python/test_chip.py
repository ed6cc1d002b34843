"""The virtual chip: frames, tables, what happens to it, and what was asked of it."""
import re
import typing

import pytest

import sai_virtual as sai
from sai_virtual import _tables, tables

A, B = "02:00:00:00:00:0a", "02:00:00:00:00:0b"


def frame(to, source, ether_type="9000"):
    return bytes.fromhex(to.replace(":", "") + source.replace(":", "") + ether_type).ljust(60, b"\0")


@pytest.fixture
def chip():
    with sai.Log(), sai.Chip() as on:
        for port in (1, 2, 3):
            on.link(port, True)
        yield on


def test_frames_come_out_where_the_tables_send_them(chip):
    flooded = chip.send(1, frame(B, A))
    assert flooded.reason is None and {2, 3} <= set(flooded.ports)
    assert flooded.at(2) == [frame(B, A)]
    assert chip.send(2, frame(A, B)).ports == [1]
    lost = chip.send(9, frame(A, B))
    assert (lost.reason, lost.frames) == ("port down", [])
    assert chip.drops(9) == {"port down": 1, "egress port down": 1}
    assert chip.drops()["port down"] == 1


def test_captures_nest_and_have_what_left_meanwhile(chip):
    with chip.capture() as outer:
        chip.send(1, frame(B, A))
        with chip.capture() as inner:
            sai.swsdk_frame_send(0, 2, frame(A, B))
        sai.swsdk_frames_send(0, [sai.swsdk_in(port=1, data=frame(B, A))] * 2)
    assert [(out.port, out.in_port) for out in inner.frames] == [(1, 2)]
    assert len([out for out in outer.frames if out.in_port == 1 and out.port == 2]) == 3
    assert all(isinstance(out, sai.swsdk_out) for out in outer.frames)


def test_frames_for_the_cpu_have_their_reasons(chip):
    sai.sai_bpdu_set(0, "01:80:c2:00:00:00")
    sent = chip.send(1, frame("01:80:c2:00:00:00", A))
    cpu = [out for out in sent.frames if out.port == 0]
    assert cpu and "l2 cache" in sai.cpu_reasons(cpu[0])


def test_a_watch_tells_the_ways_of_frames(chip):
    with chip.watch() as watch:
        chip.send(1, frame(B, A))
    (way,) = watch.ways()
    assert way.unit == 0 and way.lines[0].startswith("in 1: ") and way.lines[-1] == "passed on"
    with chip.watch("SWSDK_WATCH_ENDS") as ends:
        chip.send(1, frame(B, A))
    assert len(ends.ways()[0].lines) < len(way.lines)
    with pytest.raises(sai.ChipError, match="the filter is no program"):
        chip.watch(filter=b"x").__enter__()


def test_every_table_has_a_class_with_its_columns():
    with sai.Log(), sai.Chip() as chip:
        for name in chip.tables():
            row = tables.ROWS[name]
            headings = _tables.cells(chip.show(name))[0]
            fields = [re.sub(r"\W+", "_", heading.lower()) for heading in headings]
            assert [field.rstrip("_") for field in row._fields] == fields, name
            assert set(typing.get_type_hints(row).values()) <= set(_tables.VALUES), name


def test_tables_are_lists_of_typed_rows(chip):
    sai.sai_vlan_create(0, 10)
    sai.sai_vlan_port_add(0, 10, 3, 0)
    assert tables.Vlan(vlan=10, tagged=frozenset({0}), untagged=frozenset({3}), flags=()) in chip.table("vlan")
    chip.learn(A, 1, 3)
    assert chip.table("mac")[0] == tables.Mac(vlan=1, mac=A, at="port 3", kind=(), hit=("source",))
    assert chip.table("port")[3].untagged_in == (1, 10)
    assert [row.port for row in chip.table("attribute") if row.link == "up"] == [1, 2, 3]
    with pytest.raises(ValueError, match="no such unit or table"):
        chip.table("nothing")


def test_a_configured_chip_can_be_read_whole():
    with sai.Log(sai.SAI_LOG_OFF), sai.Chip(cold=True) as chip:
        sai.sai_switch_chip_init("02:00:00:00:00:01")
        vport = sai.sai_vport_t(match_vlan=100, vlan=10, priority=-1)
        sai.sai_vlan_create(0, 10)
        sai.sai_vport_create(0, 2, vport)
        group = sai.sai_ifp_l2_group_create(0)
        rule = sai.sai_acl_rule_t(dst_mac=A, dst_mac_mask="ff:ff:ff:ff:ff:ff")
        sai.sai_acl_l2_entry_install(0, 1, "SAI_ACL_INGRESS", group, rule)
        sai.sai_l3_intf_create(0, "02:00:00:00:00:01", 10)
        sai.sai_trunk_create(0, 0, 0)
        sai.sai_stg_create(0, 5)
        sai.sai_rate_bcast_set(0, 1, 1, 100)
        sai.sai_vlan_translate_add(0, 1, 5, 0, 10, 0)
        sai.swsdk_counter_set(0, 1, sai.snmpIfInOctets, 5)
        snapshot = chip.snapshot()
    assert all(snapshot[name] for name in ("vport", "field", "interface", "trunk", "stp", "rate", "translation"))
    assert snapshot["netif"][0].name == "ethv0"


def test_changes_of_the_tables_are_told_row_by_row(chip):
    before = chip.snapshot()
    assert sai.changes(before, chip.snapshot()) == {}
    sai.sai_vlan_create(0, 10)
    changes = sai.changes(before, chip.snapshot())
    assert changes["vlan"].gone == [] and [row.vlan for row in changes["vlan"].new] == [10]
    assert list(sai.changes(chip.snapshot(), before)["vlan"].gone) == changes["vlan"].new


def test_what_happens_to_the_chip(chip):
    sai.swsdk_temperatures_set(0, [sai.swsdk_temperature(current=411, peak=470)])
    assert chip.table("temperature") == [tables.Temperature(0, 41.1, 47.0)]
    sai.swsdk_counter_set(0, 1, sai.snmpIfInOctets, 77)
    assert ("snmpIfInOctets", 77) in [(row.counter, row.value) for row in chip.table("counters")]
    sai.sai_l2_mac_age_time_set(0, 10)
    chip.learn(A, 1, 3)
    chip.age(100)
    assert chip.table("mac") == []
    verdict = sai.swsdk_field_classify(0, "SWSDK_FIELD_INGRESS", sai.swsdk_frame(in_port=1, src_ip="10.0.0.1"))
    assert (verdict.hits, verdict.redirect_port) == (0, -1)
    assert sai.swsdk_board_get().ports == 12


def test_the_host_beside_the_chip(chip):
    sai.sai_knet_netif_init(0, 1, "eth9", "02:00:00:00:00:09")
    assert [(netif.name, bytes(netif.mac)[-1]) for netif in chip.interfaces()] == [("eth9", 9)]
    sai.sai_knet_netif_init(0, 2, "a  b", "02:00:00:00:00:0a")
    sai.sai_knet_netif_init(0, 3, "a\nb", "02:00:00:00:00:0b")
    assert [row.name for row in chip.table("netif")] == ["eth9", "a  b", '"a\\nb"']
    sai.sai_knet_ktag_set(36997, 5)
    assert len(chip.kernel_commands()) == 1 and isinstance(chip.kernel_commands()[0], bytes)


def test_a_refusal_names_the_call_and_the_header_s_reason(chip):
    with pytest.raises(sai.ChipError) as error:
        sai.swsdk_link_event(0, 99, up=1)
    assert str(error.value) == "swsdk_link_event(0, 99, 1): there is no such initialized unit or port"


def test_a_recording_becomes_a_program(tmp_path):
    path = tmp_path / "run.rec"
    with sai.Log(), sai.recording(path), sai.Chip():
        sai.sai_vlan_create(0, 10)
    assert "bcm_vlan_create(0, 10)" in sai.replay_as_c(path)
    with pytest.raises(ValueError):
        sai.replay_as_c(tmp_path / "nothing")
