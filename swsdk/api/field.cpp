#include <bcm/field.h>

#include "api/call.h"

using api::hex;
using api::ip4;
using api::ip6;
using api::out;
using api::unmodelled;

int bcm_field_action_add(int unit, bcm_field_entry_t entry, bcm_field_action_t action, uint32 param0, uint32 param1) {
  return unmodelled(__func__, unit, entry, action, param0, param1);
}

int bcm_field_entry_create(int unit, bcm_field_group_t group, bcm_field_entry_t* entry) {
  return unmodelled(__func__, unit, group, out(entry));
}

int bcm_field_entry_create_id(int unit, bcm_field_group_t group, bcm_field_entry_t entry) {
  return unmodelled(__func__, unit, group, entry);
}

int bcm_field_entry_destroy(int unit, bcm_field_entry_t entry) { return unmodelled(__func__, unit, entry); }

int bcm_field_entry_install(int unit, bcm_field_entry_t entry) { return unmodelled(__func__, unit, entry); }

int bcm_field_entry_policer_attach(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t policer_id) {
  return unmodelled(__func__, unit, entry_id, level, policer_id);
}

int bcm_field_entry_policer_detach(int unit, bcm_field_entry_t entry_id, int level) {
  return unmodelled(__func__, unit, entry_id, level);
}

int bcm_field_entry_policer_get(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t* policer_id) {
  return unmodelled(__func__, unit, entry_id, level, out(policer_id));
}

int bcm_field_entry_prio_set(int unit, bcm_field_entry_t entry, int prio) {
  return unmodelled(__func__, unit, entry, prio);
}

int bcm_field_entry_reinstall(int unit, bcm_field_entry_t entry) { return unmodelled(__func__, unit, entry); }

int bcm_field_entry_remove(int unit, bcm_field_entry_t entry) { return unmodelled(__func__, unit, entry); }

int bcm_field_group_create(int unit, bcm_field_qset_t qset, int pri, bcm_field_group_t* group) {
  return unmodelled(__func__, unit, qset, pri, out(group));
}

int bcm_field_group_enable_set(int unit, bcm_field_group_t group, int enable) {
  return unmodelled(__func__, unit, group, enable);
}

int bcm_field_group_priority_set(int unit, bcm_field_group_t group, int priority) {
  return unmodelled(__func__, unit, group, priority);
}

int bcm_field_qualify_DSCP(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_DstIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask) {
  return unmodelled(__func__, unit, entry, ip4(data), ip4(mask));
}

int bcm_field_qualify_DstIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return unmodelled(__func__, unit, entry, ip6(data), ip6(mask));
}

int bcm_field_qualify_DstMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return unmodelled(__func__, unit, entry, api::mac(data), api::mac(mask));
}

int bcm_field_qualify_EtherType(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask) {
  return unmodelled(__func__, unit, entry, hex(data), hex(mask));
}

int bcm_field_qualify_IcmpType(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_IcmpTypeCode(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_InPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_InPorts(int unit, bcm_field_entry_t entry, bcm_pbmp_t data, bcm_pbmp_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_Ip6NextHeader(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_IpProtocol(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_IpType(int unit, bcm_field_entry_t entry, bcm_field_IpType_t type) {
  return unmodelled(__func__, unit, entry, type);
}

int bcm_field_qualify_L4DstPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_L4SrcPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_OutPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_OuterVlan(int unit, bcm_field_entry_t entry, bcm_vlan_t data, bcm_vlan_t mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_SrcIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask) {
  return unmodelled(__func__, unit, entry, ip4(data), ip4(mask));
}

int bcm_field_qualify_SrcIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return unmodelled(__func__, unit, entry, ip6(data), ip6(mask));
}

int bcm_field_qualify_SrcMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask) {
  return unmodelled(__func__, unit, entry, api::mac(data), api::mac(mask));
}

int bcm_field_qualify_Tos(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_Ttl(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask) {
  return unmodelled(__func__, unit, entry, data, mask);
}

int bcm_field_qualify_clear(int unit, bcm_field_entry_t entry) { return unmodelled(__func__, unit, entry); }
