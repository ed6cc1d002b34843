"""A small application: an access switch, whose ports are in VLANs, with a list of what each may not send.

    VLANS = {10: Vlan(untagged=(1, 2), tagged=(9,)), 20: Vlan(untagged=(3,), tagged=(9,))}
    AccessSwitch().apply(VLANS, denied=[Deny(port=2, ether_type=0x86DD)])
"""
import dataclasses

import sai_virtual as sai


@dataclasses.dataclass(frozen=True)
class Vlan:
    untagged: tuple[int, ...] = ()
    tagged: tuple[int, ...] = ()


@dataclasses.dataclass(frozen=True)
class Deny:
    """Frames of an Ethernet type that a port must not send."""

    port: int
    ether_type: int


class AccessSwitch:
    def __init__(self, unit: int = 0) -> None:
        self.unit = unit
        self.vlans: dict[int, Vlan] = {}
        self.rules: dict[Deny, int] = {}
        self.group: int | None = None
        self.port_down: list[int] = []
        sai.sai_register_link_service(self._link_changed)

    def apply(self, vlans: dict[int, Vlan], denied: list[Deny] | None = None) -> None:
        """Makes the chip as described. A VLAN or a rule that fails leaves nothing of itself behind."""
        for vid in set(self.vlans) - set(vlans):
            sai.sai_vlan_destroy(self.unit, vid)
            del self.vlans[vid]
        for vid, vlan in vlans.items():
            if self.vlans.get(vid) != vlan:
                self._make(vid, vlan)
                self.vlans[vid] = vlan
        for rule in set(self.rules) - set(denied or []):
            sai.sai_fp_entry_destroy(self.unit, self.rules.pop(rule))
        for rule in denied or []:
            if rule not in self.rules:
                self.rules[rule] = self._install(rule)

    def _make(self, vid: int, vlan: Vlan) -> None:
        sai.sai_vlan_create(self.unit, vid)
        try:
            for port in (*vlan.untagged, *vlan.tagged):
                sai.sai_vlan_port_add(self.unit, vid, port, tagged=port in vlan.tagged)
            for port in vlan.untagged:
                sai.sai_port_untagged_vlan_set(self.unit, port, vid)
        except sai.SaiError:
            sai.sai_vlan_destroy(self.unit, vid)
            raise

    def _install(self, deny: Deny) -> int:
        if self.group is None:
            self.group = sai.sai_ifp_l2_group_create(self.unit)
        rule = sai.sai_acl_rule_t(action=sai.SAI_ACL_DENY, ether_type=deny.ether_type, ether_type_mask=0xFFFF)
        try:
            return sai.sai_acl_l2_entry_install(self.unit, deny.port, "SAI_ACL_INGRESS", self.group, rule)
        except sai.SaiError as error:
            # The entry was created before a later step failed.
            if error.outputs[0] >= 0:
                sai.sai_fp_entry_destroy(self.unit, error.outputs[0])
            raise

    def _link_changed(self, unit: int, port: int, info: sai.bcm_port_info_t) -> None:
        if not info.linkstatus:
            self.port_down.append(port)
