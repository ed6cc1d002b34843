"""The state as a value, what is left behind, and the fault sweep of a function."""
import pytest

import sai_virtual as sai

A = "02:00:00:00:00:0a"


@pytest.fixture
def chip():
    with sai.Chip() as chip, sai.Log(sai.SAI_LOG_OFF):
        yield chip


def configure():
    sai.sai_vlan_create(0, 10)
    sai.sai_vlan_port_add(0, 10, 3, 0)
    sai.sai_port_untagged_vlan_set(0, 3, 10)


def found(function, **options):
    return {(failure.function, failure.nth): failure.findings for failure in sai.sweep(function, **options)}


def test_a_snapshot_is_put_back(chip):
    before = chip.snapshot()
    configure()
    chip.age(5)
    assert set(sai.changes(before, chip.snapshot())) >= {"vlan", "clock"}
    chip.restore(before)
    assert sai.changes(before, chip.snapshot()) == {}


def test_a_snapshot_is_a_file_too(chip, tmp_path):
    configure()
    before = chip.snapshot()
    before.save(tmp_path / "chip.state")
    sai.sai_vlan_destroy(0, 10)
    chip.restore(tmp_path / "chip.state")
    assert chip.snapshot().state == before.state
    with pytest.raises(OSError, match="cannot be read"):
        chip.restore(tmp_path / "none")
    (tmp_path / "text").write_text("text")
    with pytest.raises(ValueError, match="is no saved state"):
        chip.restore(tmp_path / "text")


def test_what_is_left_is_told_with_its_call(chip):
    assert chip.leftovers() == []
    configure()
    sai.sai_vlan_port_remove(0, 10, 3)
    sai.sai_vlan_port_remove(0, 10, 0)
    (line,) = chip.leftovers()
    assert line.startswith("VLAN 10 has no members (call ") and "bcm_vlan_port_remove" in line


def test_a_sweep_fails_each_call_in_turn_on_the_same_chip(chip):
    before = chip.snapshot()
    failures = list(sai.sweep(configure))
    assert [failure.call for failure in failures] == [
        "bcm_vlan_create(0, 10) = 0", "bcm_vlan_port_add(0, 10, {0}, {}) = 0", "bcm_vlan_port_add(0, 10, {3}, {3}) = 0",
        "bcm_port_untagged_vlan_set(0, 3, 10) = 0"]
    assert [failure.nth for failure in failures] == [1, 1, 2, 1]
    assert all(failure.met and isinstance(failure.error, sai.SaiError) and failure.log for failure in failures)
    assert [failure.made_in for failure in failures][2:] == ["sai_vlan_port_add", "sai_port_untagged_vlan_set"]
    assert [failure.findings for failure in failures] == [[], ["left"], [], []]
    assert failures[1].left[0].startswith("VLAN 10 has no members")
    assert sai.changes(before, chip.snapshot()) == {}


def test_codes_and_functions_are_chosen(chip):
    failures = list(sai.sweep(configure, codes=["BCM_E_FULL", -4], only={"bcm_vlan_create"}))
    assert [(failure.function, failure.code) for failure in failures] == [("bcm_vlan_create", -6),
                                                                         ("bcm_vlan_create", -4)]


def test_an_ignored_result_is_found(chip):
    def careless():
        try:
            sai.sai_port_untagged_vlan_set(0, 3, 1)
        except sai.SaiError:
            pass

    assert found(careless) == {("bcm_port_untagged_vlan_set", 1): ["success"]}


def test_a_call_that_is_not_reached_is_told(chip):
    runs = []

    def fickle():
        runs.append(1)
        if len(runs) == 1:
            sai.sai_vlan_create(0, 10)

    assert set(map(tuple, found(fickle).values())) == {("unreached",)}


def test_what_the_library_ignores_is_no_finding(chip):
    failures = list(sai.sweep(lambda: sai.sai_switch_chip_init(A), only={"bcm_ipmc_enable"}))
    assert failures and all(failure.ignored and not failure.findings for failure in failures)


def test_what_the_library_ignores_in_another_case_is_a_finding(chip):
    def careless(mode):
        try:
            sai.sai_l2_mac_entry_del(0, sai.sai_l2_mac_entry_t(port=3), mode)
        except sai.SaiError:
            pass

    call = "bcm_l2_addr_delete_by_port"
    by_port = list(sai.sweep(lambda: careless(sai.SAI_L2_DELETE_BY_PORT), only={call}))
    assert [failure.findings for failure in by_port] == [["success"]]
    of_all = list(sai.sweep(lambda: careless(0), only={call}))
    assert [failure.findings for failure in of_all] == [[]] * (len(of_all) - 1) + [["success"]]


def test_a_function_that_fails_by_itself_is_not_swept(chip):
    before = chip.snapshot()
    with pytest.raises(sai.SaiError, match="SAI_E_NOT_FOUND"):
        list(sai.sweep(lambda: sai.sai_vlan_destroy(0, 99)))
    assert sai.changes(before, chip.snapshot()) == {}
