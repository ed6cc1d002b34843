"""What the module's functions take and give back."""
import enum
import inspect
import ipaddress
import sys

import pytest

import sai_virtual as sai


@pytest.fixture
def journal():
    with sai.Log(), sai.Chip(), sai.Journal() as on:
        yield on


def test_arguments_can_have_names(journal):
    sai.sai_vlan_create(0, 10)
    sai.sai_vlan_port_add(0, vid=10, tagged=1, port=3)
    assert journal.lines()[-1] == "bcm_vlan_port_add(0, 10, {3}, {}) = 0"
    with pytest.raises(TypeError, match=r"sai_vlan_create\(unit, vid\) has no argument 'vlan'"):
        sai.sai_vlan_create(0, vlan=10)
    with pytest.raises(TypeError, match=r"sai_vlan_create\(unit, vid\) has two values for 'unit'"):
        sai.sai_vlan_create(0, unit=0)


def test_constants_are_members_of_enums_and_can_be_given_by_name(journal):
    assert isinstance(sai.SAI_E_FULL, enum.IntEnum) and sai.SAI_E_FULL == -13
    assert sai.SAI_MIRROR_INGRESS | sai.SAI_MIRROR_EGRESS == sai.sai_mirror_mode(3)
    assert sai.bcm_error_t(-6) is sai.BCM_E_FULL
    sai.sai_mirror_init(0)
    sai.sai_mirror_dest_port_set(0, 1, 5)
    sai.sai_mirror_source_port_set(0, 1, 3, "SAI_MIRROR_INGRESS|SAI_MIRROR_EGRESS")
    assert sai.Chip.table("mirror")[0].ingress == sai.Chip.table("mirror")[0].egress == {3}
    entry = sai.sai_l2_mac_entry_t(mac="02:00:00:00:00:01", vlan=1, port=3, flags="SAI_L2_MAC_STATIC")
    assert entry.flags == sai.SAI_L2_MAC_STATIC
    with pytest.raises(ValueError, match="the name of a sai_mirror_mode, not 'SAI_E_FULL'"):
        sai.sai_mirror_source_port_set(0, 1, 3, "SAI_E_FULL")


@pytest.mark.parametrize(
    "address", ["10.1.2.0", ipaddress.IPv4Address("10.1.2.0"), bytes([10, 1, 2, 0]), 0x0A010200]
)
def test_ipv4_addresses_are_texts_objects_bytes_or_numbers(journal, address):
    with pytest.raises(sai.SaiError):  # there is no interface
        sai.sai_l3_host_route_delete(0, address, 0)
    assert "bcm_l3_host_find(0, &{ip=10.1.2.0})" in "\n".join(journal.lines()).replace("&?", "") or any(
        "10.1.2.0" in line for line in journal.lines()
    )


def test_ipv4_addresses_have_the_byte_order_of_their_header(journal):
    sai.sai_vlan_ip_subnet_add(0, "10.1.2.0", "255.255.255.0", 10, 3)
    assert sai.Chip.table("subnetvlan")[0].subnet == "10.1.2.0/24"
    rule = sai.sai_acl_rule_t(src_ip="10.1.2.0")
    assert rule.src_ip.to_bytes(4, sys.byteorder) == bytes([10, 1, 2, 0])
    with pytest.raises(ValueError, match="an IPv4 address, not '10.1.2'"):
        sai.sai_vlan_ip_subnet_add(0, "10.1.2", "255.255.255.0", 10, 3)


def test_ipv6_addresses_are_objects_too(journal):
    sai.sai_vlan_ipv6_subnet_add(0, ipaddress.IPv6Address("2001:db8::"), 32, 10, 3)
    assert sai.Chip.table("subnetvlan")[0].subnet == "2001:db8::/32"


def test_the_help_is_the_header():
    assert str(inspect.signature(sai.sai_vlan_port_add)) == "(unit, vid, port, tagged)"
    assert inspect.getdoc(sai.sai_vlan_create).startswith("Creates a VLAN with the CPU port as a tagged member.")
    assert "@param vid  VLAN id, 1 to 4095; checked by the chip" in sai.sai_vlan_create.__doc__
    assert sai.sai_vport_t.__doc__.startswith("A virtual port:")
    assert "plugging a cable" in sai.swsdk_link_event.__doc__


def test_the_variables_of_the_library_are_there():
    assert sai.sai_log_priority[0] == "emergencies" and sai.sai_log_module_names == ("NONE", "STG")
    assert len(sai.hw_counters_table) == 18 and sai.hw_counters_table[3].index == 3
    assert sai.sai_log_default is None
    log = sai.open_sai_log("test", 0, 0, 0)
    sai.sai_log_default = log
    assert sai.sai_log_default is log
    sai.close_sai_log(log)
    assert sai.sai_log_default is None


def test_a_log_is_refused_when_it_is_closed(tmp_path):
    log = sai.open_sai_log("test", 0, 0, 0)
    with open(tmp_path / "log", "w", encoding="utf-8") as file:
        log.file = file
    sai.sai_log_set_level(log, "SAI_LOG_FILE", "SAI_LOG_ERRORS")
    assert log.max_level == (-1, -1, 3)
    sai.sai_log_default = log
    sai.sai_err("100 %s")
    sai.close_sai_log(log)
    assert (tmp_path / "log").read_text().endswith("100 %s\n")
    for use in (sai.close_sai_log, lambda it: sai.sai_log_set_level(it, 0, 0), lambda it: it.level):
        with pytest.raises(ValueError, match="closed"):
            use(log)
    with pytest.raises(ValueError, match="destination must be an integer from 0 to 2"):
        sai.sai_log_set_level(None, 3, 0)


def test_a_log_that_is_closed_inside_another_one_is_not_used_again():
    sai.sai_log_default = outer = sai.open_sai_log("test", 0, 0, 0)
    with sai.Log():
        sai.close_sai_log(outer)
    assert sai.sai_log_default is None
    with sai.Log() as log:
        sai.sai_err("heard")
        sai.close_sai_log(sai.sai_log_default)
    assert log.lines() == ["heard"] and sai.sai_log_default is None


class Lying(int):
    """A number that fits as long as it is compared."""

    def __ge__(self, other):
        return True

    __le__ = __ge__


def test_a_number_is_what_it_is_not_what_it_says():
    with pytest.raises(ValueError, match="destination must be an integer from 0 to 2"):
        sai.sai_log_set_level(None, Lying(5), 0)


def test_records_compare_by_their_fields_and_show_them():
    one = sai.swsdk_in(port=1, data=b"ab", segments=sai.swsdk_segments(kind="SWSDK_UDP"))
    assert one == sai.swsdk_in(port=1, data=b"ab", segments=sai.swsdk_segments(kind=3)) and one != sai.swsdk_in(port=1)
    assert (one.data, one.length, one.segments.kind) == (b"ab", 2, sai.SWSDK_UDP)
    assert repr(sai.swsdk_temperature(current=1)) == "swsdk_temperature(current=1, peak=0)"
    with pytest.raises(TypeError, match="length cannot be set"):
        one.length = 5000
