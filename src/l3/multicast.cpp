#include "l3/multicast.h"

#include <sai.h>

#include "core/convert.h"
#include "core/log.h"
#include "core/result.h"
#include "l3/addresses.h"

using sai::log_if_failed;

bcm_l3_intf_t sai::multicast::interface(const uint8_t* mac, int outer_vlan, int inner_vlan) {
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  copy_mac(intf.l3a_mac_addr, mac);
  intf.l3a_vid = vlan_id(outer_vlan);
  intf.l3a_inner_vlan = vlan_id(inner_vlan);
  return intf;
}

int sai::multicast::find_or_create(int unit, bcm_l3_intf_t& intf) {
  const int rv = bcm_l3_intf_find(unit, &intf);
  return rv < 0 ? bcm_l3_intf_create(unit, &intf) : rv;
}

int32_t sai::multicast::join(int unit, int vlan, bcm_ipmc_addr_t& key, const Member& member, const JoinTexts& texts) {
  bcm_l3_intf_t group_intf = interface(member.mac, vlan);
  group_intf.l3a_flags = interface_flags;
  int rv = find_or_create(unit, group_intf);
  if (failed(rv, texts.intf_create)) return sdk_to_sai(rv);

  key.l3a_intf = group_intf.l3a_intf_id;
  if (bcm_ipmc_find(unit, &key) != BCM_E_NONE) {
    rv = bcm_multicast_create(unit, BCM_MULTICAST_TYPE_L3, &key.group);
    if (failed(rv, texts.group_create)) return sdk_to_sai(rv);
    rv = bcm_ipmc_add(unit, &key);
    if (failed(rv, texts.ipmc_add)) return sdk_to_sai(rv);
  } else {
    texts.found(key.group);
  }

  bcm_gport_t gport = 0;
  rv = bcm_port_gport_get(unit, member.port, &gport);
  if (failed(rv, texts.gport_get)) return sdk_to_sai(rv);

  // Meant: port 8 is double-tagged when it joins, but single-tagged when it leaves.
  bcm_l3_intf_t intf = member.port >= 8 ? interface(member.mac, double_tag_vlan, member.user_vlan)
                                        : interface(member.mac, member.user_vlan);
  intf.l3a_flags = interface_flags;
  intf.l3a_ttl = 2;
  rv = find_or_create(unit, intf);
  if (failed(rv, texts.intf_create)) return sdk_to_sai(rv);

  bcm_if_t encap = 0;
  rv = bcm_multicast_l3_encap_get(unit, key.group, gport, intf.l3a_intf_id, &encap);
  if (failed(rv, texts.encap_get)) return sdk_to_sai(rv);
  return result(bcm_multicast_egress_add(unit, key.group, gport, encap), texts.egress_add);
}

int sai::multicast::leave(int unit, bcm_ipmc_addr_t& key, const Member& member, const LeaveTexts& texts) {
  int rv = bcm_ipmc_find(unit, &key);
  if (failed(rv, texts.ipmc_find)) return rv;

  bcm_gport_t gport = 0;
  rv = bcm_port_gport_get(unit, member.port, &gport);
  if (failed(rv, texts.gport_get)) return rv;

  bcm_l3_intf_t intf = member.port >= 9 ? interface(member.mac, double_tag_vlan, member.user_vlan)
                                        : interface(member.mac, member.user_vlan);
  intf.l3a_flags |= interface_flags;
  rv = bcm_l3_intf_find(unit, &intf);
  if (failed(rv, texts.intf_find, intf.l3a_vid, intf.l3a_inner_vlan) && !texts.without_interface) return rv;

  // Meant: the encapsulation is that of the port, the member is the port's gport.
  bcm_if_t encap = 0;
  rv = bcm_multicast_l3_encap_get(unit, key.group, member.port, intf.l3a_intf_id, &encap);
  if (failed(rv, texts.encap_get) && !texts.without_interface) return rv;
  rv = bcm_multicast_egress_delete(unit, key.group, gport, encap);
  log_if_failed(rv, texts.egress_delete);
  return rv;
}

int sai::multicast::count_members(int unit, bcm_multicast_t group, int& count) {
  return bcm_multicast_egress_get(unit, group, 0, nullptr, nullptr, &count);
}

int32_t sai::multicast::destroy(int unit, bcm_ipmc_addr_t& key, const DestroyTexts& texts) {
  int rv = bcm_ipmc_find(unit, &key);
  if (failed(rv, texts.ipmc_find)) return sdk_to_sai(rv);
  const bcm_multicast_t group = key.group;
  trace("getipmc group is 0x%x", group);
  rv = bcm_ipmc_remove(unit, &key);
  if (failed(rv, texts.ipmc_remove) && !texts.without_remove) return sdk_to_sai(rv);
  return result(bcm_multicast_destroy(unit, group), texts.group_destroy);
}
