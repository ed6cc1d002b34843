"""Faults, journals and logs inside each other, and exceptions in callbacks."""
import pytest

import sai_virtual as sai


@pytest.fixture
def chip():
    with sai.Log(), sai.Chip() as on:
        yield on


def created(vid):
    try:
        sai.sai_vlan_create(0, vid)
    except sai.SaiError as error:
        return error.name
    return "created"


def test_a_fault_tells_whether_it_was_met(chip):
    with sai.fault("bcm_vlan_create", "BCM_E_FULL", nth=2) as fault:
        assert created(10) == "created" and not fault.met
        assert created(11) == "SAI_E_FULL" and fault.met
        assert created(12) == "created" and fault.hits == 1
    assert fault.met
    with sai.fault("bcm_vlan_create", "BCM_E_FULL", nth=0) as fault:
        created(20), created(21)
    assert fault.hits == 2
    assert created(20) == "created"


def test_faults_nest(chip):
    with sai.fault("bcm_vlan_create", sai.BCM_E_FULL, nth=2) as outer:
        with sai.fault("bcm_vlan_port_add", sai.BCM_E_PORT) as other:
            assert created(10) == "SAI_E_PORT"
        with sai.fault("bcm_vlan_create", sai.BCM_E_MEMORY) as inner:
            assert created(11) == "SAI_E_MEMORY"
        assert created(12) == "SAI_E_FULL"
    assert outer.met and other.met and inner.met
    assert created(13) == "created"


def test_faults_and_journals_are_there_when_the_chip_is_switched_on():
    with sai.Log(), sai.fault("bcm_vlan_create", sai.BCM_E_FULL) as fault, sai.Journal() as journal:
        with sai.Chip():
            assert created(10) == "SAI_E_FULL"
        with sai.Chip():
            assert created(10) == "created"
    assert fault.hits == 1
    assert journal.calls("bcm_vlan_create") == ["bcm_vlan_create(0, 10) = -6", "bcm_vlan_create(0, 10) = 0"]


def test_journals_nest(chip):
    with sai.Journal() as outer:
        created(10)
        with sai.Journal() as inner:
            assert not inner.met
            created(11)
            inner.clear()
            created(12)
        created(13)
    assert inner.calls("bcm_vlan_create") == ["bcm_vlan_create(0, 12) = 0"]
    assert len(outer.calls("bcm_vlan_create")) == 4 and outer.met
    created(14)
    assert len(outer.calls("bcm_vlan_create")) == 4


def test_logs_nest():
    with sai.Log() as outer, sai.Chip():
        with sai.Log("SAI_LOG_DEBUGGING") as inner:
            sai.sai_debug("inside")
        sai.sai_err("outside")
        sai.sai_debug("unheard")
    assert (inner.lines(), outer.lines()) == (["inside"], ["outside"])
    assert inner.met and outer.met


class Failed(Exception):
    pass


def fail(*_):
    raise Failed("of a callback")


def test_an_exception_of_a_callback_is_raised_by_the_call_that_delivered_it(chip):
    sai.sai_register_l2_service(0, fail)
    with pytest.raises(Failed):
        chip.learn("02:00:00:00:00:0a", 1, 3)
    sai.sai_unregister_l2_service(0, fail)
    chip.learn("02:00:00:00:00:0b", 1, 3)
    chip.link(1, True)
    sai.swsdk_frame_handle(0, fail)
    with pytest.raises(Failed):
        sai.swsdk_frame_send(0, 1, bytes.fromhex("ffffffffffff020000000001").ljust(60, b"\0"))


def test_an_exception_that_no_call_delivered_ends_the_with():
    with sai.Log(), pytest.raises(Failed), sai.Chip():
        sai.sai_register_l2_service(0, fail)
        sai.swsdk_l2_learn(0, 1, "02:00:00:00:00:0a", 3, 0)


def test_callbacks_get_records_and_may_call_the_module(chip):
    seen = []
    sai.sai_register_link_service(lambda unit, port, info: seen.append((port, info.linkstatus)))
    chip.link(3, True)
    assert seen == [(3, 1)]

    def answer(unit, out):
        seen.append(out)
        if out.in_port == 1:
            sai.swsdk_frame_send(unit, 3, out.data)

    chip.link(1, True)
    sai.swsdk_frame_handle(0, answer)
    sai.swsdk_frame_send(0, 1, bytes.fromhex("02000000000b02000000000a9000").ljust(60, b"\0"))
    ways = [(out.in_port, out.port) for out in seen[1:] if isinstance(out, sai.swsdk_out)]
    assert (1, 3) in ways and seen[-1].data[:6] == bytes.fromhex("02000000000b")


def test_a_callback_cannot_switch_the_chip_off(chip):
    sai.sai_register_l2_service(0, lambda *_: sai.swsdk_power_off())
    with pytest.raises(RuntimeError, match=r"swsdk_power_off\(\) cannot be called from a callback"):
        chip.learn("02:00:00:00:00:0a", 1, 3)
