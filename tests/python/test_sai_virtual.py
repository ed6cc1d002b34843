"""The Python module against the libraries that the loader finds."""
import os
import pathlib
import subprocess
import sys

import pytest

import sai_virtual as sai


@pytest.fixture
def chip():
    with sai.Log() as log, sai.Chip() as on:
        on.log = log
        yield on


def test_a_call_does_what_the_c_function_does(chip):
    with sai.Journal() as journal:
        assert sai.sai_vlan_create(0, 10) == sai.SAI_E_NONE
        assert journal.lines() == ["bcm_vlan_create(0, 10) = 0", "bcm_vlan_port_add(0, 10, {0}, {}) = 0"]
    assert "10" in chip.show("vlan")


def test_what_a_function_writes_is_its_value(chip):
    sai.sai_l2_mac_age_time_set(0, 77)
    assert sai.sai_l2_mac_age_time_get(0) == 77
    assert sai.sai_l2_info(0) == (32768, 0)
    assert len(sai.sai_port_mib_read(0, 1)) == 18
    assert sai.sai_trunk_create(0, 0x10, 7) == 7
    average, highest = sai.sai_switch_temperature_monitor_get(0)
    assert float(average) > 0 and float(highest) >= float(average)


def test_a_negative_code_is_an_exception_with_its_name(chip):
    with pytest.raises(sai.SaiError) as error:
        sai.sai_vlan_destroy(0, 10)
    assert (error.value.function, error.value.code, error.value.name) == ("sai_vlan_destroy", -7, "SAI_E_NOT_FOUND")
    assert str(error.value) == "sai_vlan_destroy: SAI_E_NOT_FOUND (-7)"
    assert chip.log.lines() == ["Failed to destroy vlan 10: Entry not found"]


def test_what_is_written_before_a_failure_is_with_the_exception(chip):
    group = sai.sai_ifp_l2_group_create(0)
    with pytest.raises(sai.SaiError) as error:
        sai.sai_acl_l2_entry_install(0, 1, 5, group, sai.sai_acl_rule_t())
    assert error.value.outputs[0] >= 0


def test_a_result_that_is_no_code_is_a_value():
    assert sai.sai_level_match("debugging") == sai.SAI_LOG_DEBUGGING
    assert sai.sai_level_match("x") == -1


def test_addresses_are_texts_or_bytes(chip):
    with sai.Journal() as journal:
        sai.sai_vlan_mac_add(0, "00:11:22:33:44:55", 10, 3)
        sai.sai_vlan_mac_del(0, bytes([0, 0x11, 0x22, 0x33, 0x44, 0x55]))
        assert journal.lines() == [
            "bcm_vlan_mac_add(0, 00:11:22:33:44:55, 10, 3) = 0",
            "bcm_vlan_mac_delete(0, 00:11:22:33:44:55) = 0",
        ]
        journal.clear()
        sai.sai_vlan_ipv6_subnet_add(0, "2001:db8::", 32, 10, 3)
        assert "ip6=2001:db8::" in journal.lines()[0]
    for address in ("00:11", b"123", "ff02::1", "no address"):
        with pytest.raises(ValueError):
            sai.sai_vlan_mac_add(0, address, 10, 3)


def test_records_are_written_in_place(chip):
    assert chip.learn("00:aa:00:00:00:01", 1, 3)
    entry = sai.sai_l2_mac_entry_t(mac="00:aa:00:00:00:01", vlan=1)
    sai.sai_l2_mac_entry_get(0, entry)
    assert entry.port_out == 3
    assert "mac='00:aa:00:00:00:01', vlan=1" in repr(entry)
    with pytest.raises(AttributeError, match="has no field 'prot'"):
        entry.prot = 3


def test_the_whole_mac_table_comes_as_a_list(chip):
    assert sai.sai_l2_addr_show(0) == []
    for last in range(1, 4):
        chip.learn(f"00:aa:00:00:00:{last:02x}", 1, last)
    assert sorted((bytes(entry.mac)[5], entry.vlan, entry.port) for entry in sai.sai_l2_addr_show(0)) == [
        (1, 1, 1),
        (2, 1, 2),
        (3, 1, 3),
    ]


@pytest.mark.parametrize("vid", [65536, -1])
def test_a_number_that_does_not_fit_is_refused(chip, vid):
    with sai.Journal() as journal:
        with pytest.raises(ValueError) as error:
            sai.sai_vlan_create(0, vid)
        assert isinstance(error.value, OverflowError)
        assert journal.lines() == []


def test_no_wrong_value_of_any_argument_reaches_the_library():
    sweep = pathlib.Path(__file__).with_name("wrong_arguments.py")
    run = subprocess.run([sys.executable, sweep], capture_output=True, text=True, check=False)
    lines = run.stdout.splitlines()
    assert run.returncode == 0, f"ended with {run.returncode} at {lines[-1:]}: {run.stderr}"
    refused = int(lines[-1].split()[0])
    assert refused > 10000


@pytest.mark.parametrize(
    "call, message",
    [
        (
            lambda: sai.sai_vlan_create(0, "10"),
            "sai_vlan_create: vid must be an integer from 0 to 65535, not str",
        ),
        (
            lambda: sai.sai_level_match(2),
            "sai_level_match: text must be a str or bytes without zero bytes or None, not int",
        ),
        (lambda: sai.sai_err(True), "sai_err: format must be a str or bytes without zero bytes or None, not bool"),
        (
            lambda: sai.sai_sh_process_command(0, 1),
            "sai_sh_process_command: command must be a str or bytes without zero bytes or None, not int",
        ),
        (
            lambda: sai.sai_l2_mac_entry_add(0, bytes(48)),
            "sai_l2_mac_entry_add: entry must be a sai_l2_mac_entry_t or None, not bytes",
        ),
        (
            lambda: sai.sai_l2_mac_entry_add(0, sai.sai_vport_t()),
            "sai_l2_mac_entry_add: entry must be a sai_l2_mac_entry_t or None, not sai_vport_t",
        ),
        (
            lambda: sai.sai_l2_mac_entry_t(vlan="1"),
            "sai_l2_mac_entry_t: vlan must be an integer from 0 to 4294967295, not str",
        ),
        (
            lambda: sai.close_sai_log(None),
            "close_sai_log: log must be a sai_log_handle* that the library returned, not NoneType",
        ),
        (
            lambda: sai.Chip.learn("00:aa:00:00:00:01", "10", 3),
            "swsdk_l2_learn: vid must be an integer from -2147483648 to 2147483647, not str",
        ),
        (
            lambda: sai.swsdk_frames_send(0, [1]),
            "swsdk_frames_send: frames must be a list of swsdk_in or None, not [1]",
        ),
        (lambda: sai.link_handler(1), "link_handler: function must be callable, not int"),
    ],
)
def test_a_refusal_names_the_function_the_argument_and_what_would_be_right(call, message):
    with pytest.raises(TypeError) as error:
        call()
    assert str(error.value) == message


def test_a_text_with_percent_signs_is_logged_as_it_is(chip):
    sai.sai_err("100 %s")
    assert chip.log.lines() == ["100 %s"]


def test_the_log_of_a_start_up_has_lines_that_are_empty():
    with sai.Log() as log, sai.Chip(cold=True):
        sai.sai_switch_chip_init("02:00:00:00:00:01")
        led = [f"switch cmd [ led {n} load /usr/sbin/bcm956275k.hex ] error" for n in (0, 1)]
        assert log.lines() == [led[0], "", led[1], ""]


def test_a_wrong_number_of_arguments_is_refused(chip):
    with pytest.raises(TypeError, match=r"sai_vlan_create\(unit, vid\) takes 2 arguments, not 1"):
        sai.sai_vlan_create(0)


def test_faults_meet_the_nth_call_and_end(chip):
    with sai.fault("bcm_vlan_create", sai.BCM_E_FULL, 2):
        sai.sai_vlan_create(0, 10)
        with pytest.raises(sai.SaiError, match="SAI_E_FULL"):
            sai.sai_vlan_create(0, 11)
    with sai.fault("bcm_vlan_create", sai.BCM_E_FULL, 9):
        pass
    for vid in range(20, 30):
        sai.sai_vlan_create(0, vid)
    with pytest.raises(ValueError), sai.fault("bcm_nothing", -1):
        pass


def test_callbacks_are_called(chip):
    seen = []
    handler = sai.l2_handler(lambda vid, port, mac, operation: seen.append((vid, port, bytes(mac[:6]).hex(":"))))
    sai.sai_register_l2_service(0, handler)
    chip.learn("00:aa:00:00:00:02", 1, 4)
    assert seen == [(1, 4, "00:aa:00:00:00:02")]
    links = []
    sai.sai_register_link_service(sai.link_handler(lambda unit, port, info: links.append(port)))
    chip.link(2, up=True)
    assert links == [2]


def test_a_cold_chip_answers_nothing():
    with sai.Log(), sai.Chip(cold=True), pytest.raises(sai.SaiError):
        sai.sai_vlan_create(0, 10)


def test_every_table_can_be_shown(chip):
    assert "vlan" in chip.tables()
    for table in chip.tables():
        assert chip.show(table)
    with pytest.raises(ValueError):
        chip.show("nothing")


def test_a_recording_replays_and_a_changed_one_differs(tmp_path):
    path = tmp_path / "run.rec"
    with sai.Log(), sai.recording(path), sai.Chip() as chip:
        sai.sai_vlan_create(0, 10)
        chip.learn("00:aa:00:00:00:01", 10, 3)
    assert sai.replay(path) == []
    text = path.read_text()
    path.write_text(text.replace("bcm_vlan_create(0, 10) = 0", "bcm_vlan_create(0, 10) = -6"))
    with pytest.raises(sai.Difference, match=r"run\.rec:\d+: the answer differs"):
        sai.replay(path)
    compared = sai.compare(path)
    (difference,) = compared.differences
    assert difference[1:] == ("bcm_vlan_create", "result", "call bcm_vlan_create(0, 10) = -6",
                              "call bcm_vlan_create(0, 10) = 0")
    assert "bcm_vlan_create" in path.read_text().splitlines()[difference.line - 1]
    assert (compared.answers - compared.the_same, compared.notices) == (1, [])
    path.write_text(text.removesuffix("end\n"))
    with pytest.raises(ValueError, match=r"run\.rec:\d+: the recording ends here without its end mark"):
        sai.replay(path)
    (notice,) = sai.compare(path).notices
    assert "without its end mark" in notice
    path.write_text("nothing\n")
    with pytest.raises(ValueError, match=r"run\.rec:1: not a recording"):
        sai.compare(path)
    with pytest.raises(ValueError, match=r"run\.rec:1: not a recording"):
        sai.replay(path)


def test_a_chip_of_another_process_is_left_as_it_is(tmp_path):
    path = tmp_path / "chip"
    with pytest.raises(ValueError, match="no chip listens at"), sai.Chip(path):
        pass
    with subprocess.Popen([os.environ["CHIP_SERVER"], "--listen", path], stdout=subprocess.PIPE) as server:
        server.stdout.readline()
        with sai.Log(), sai.Chip(path) as chip, sai.Journal() as journal:
            sai.sai_switch_chip_init("02:00:00:00:00:01")
            journal.clear()
            sai.sai_vlan_create(0, 10)
            assert journal.lines() == ["bcm_vlan_create(0, 10) = 0", "bcm_vlan_port_add(0, 10, {0}, {}) = 0"]
            ports = []
            handler = sai.link_handler(lambda unit, port, info: ports.append(port))
            sai.sai_register_link_service(handler)
            chip.link(3, False)
            assert ports[-1] == 3
            for port in (1, 2):
                sai.sai_vlan_port_add(0, 1, port, 0)
                chip.link(port, True)
            frame = bytes.fromhex("0200000000020200000000019000").ljust(60, b"\0")
            assert chip.send(1, frame).at(2) == [frame]
            with sai.fault("bcm_vlan_create", sai.BCM_E_FULL) as fault, pytest.raises(sai.SaiError):
                sai.sai_vlan_create(0, 11)
            assert fault.met
        with sai.Chip(path) as chip:
            assert "\n10 " in chip.show("vlan")
        server.terminate()


def test_a_trace_tells_the_way_of_a_frame_and_changes_nothing(chip):
    frame = bytes.fromhex("020000000002" "020000000001" "9000").ljust(60, b"\0")
    chip.link(1, True)
    before = chip.show("mac")
    lines = chip.trace(1, frame)
    assert lines[0] == f"in 1: {frame.hex()}"
    assert "assign_vlan: VLAN 1" in lines
    assert lines[-1] == "passed on"
    assert chip.show("mac") == before
    with pytest.raises(ValueError, match="no such initialized unit or port"):
        chip.trace(99, frame)
    with pytest.raises(TypeError):
        chip.trace(1, "no bytes")


def test_lost_frames_are_counted_by_the_names_of_their_reasons(chip):
    assert chip.drops(1) == {}
    with pytest.raises(ValueError, match="no such initialized unit, port or reason"):
        chip.drops(99)
