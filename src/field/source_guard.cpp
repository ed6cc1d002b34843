// IP source guard: what a guarded port drops, and the sources bound to it that it lets through.
#include <arpa/inet.h>
#include <sai.h>

#include "core/result.h"
#include "core/sdk.h"
#include "field/entry.h"

using sai::FieldEntry;
using sai::vlan_id;
using sai::vlan_id_mask;

namespace {

// Meant: the entries go to unit 0 whatever unit the group is on.
constexpr int unit = 0;

constexpr uint16 ipv4 = 0x0800;
constexpr uint16 all_of_ether_type = 0xFFFF;

int match_port(int id, int port) { return bcm_field_qualify_InPort(unit, id, port, BCM_FIELD_EXACT_MATCH_MASK); }

int match_ipv4(int id) { return bcm_field_qualify_EtherType(unit, id, ipv4, all_of_ether_type); }

int match_vlan(int id, int vlan) { return bcm_field_qualify_OuterVlan(unit, id, vlan_id(vlan), vlan_id_mask); }

/// Meant: every failed step of guarding a port logs this one text.
bool guarded(FieldEntry& entry, int rv) { return entry.passed_in_group(rv, "bcm_field_entry_reinstall"); }

bool build_drop(FieldEntry& entry, int vlan, int port) {
  return guarded(entry, bcm_field_entry_create(unit, entry.group, &entry.id)) &&
         guarded(entry, bcm_field_qualify_clear(unit, entry.id)) && guarded(entry, match_port(entry.id, port)) &&
         guarded(entry, match_ipv4(entry.id)) && guarded(entry, match_vlan(entry.id, vlan)) &&
         (guarded(entry, bcm_field_entry_prio_set(unit, entry.id, 1)) ||
          guarded(entry, bcm_field_entry_prio_set(unit, entry.id, 2))) &&
         guarded(entry, bcm_field_action_add(unit, entry.id, bcmFieldActionDrop, 0, 0)) &&
         guarded(entry, bcm_field_entry_install(unit, entry.id));
}

bool move_permit(FieldEntry& entry, int port) {
  // Meant, here and below: "InPorts".
  return entry.passed_in_group(match_port(entry.id, port), "bcm_field_qualify_InPorts") &&
         entry.passed_in_group(bcm_field_entry_reinstall(unit, entry.id), "bcm_field_entry_reinstall");
}

bool set_permit_priority(FieldEntry& entry) {
  entry.rv = bcm_field_entry_prio_set(unit, entry.id, 3);
  return !sai::failed(entry.rv, "%s bcm_field_entry_prio_set group %d entry %d priority set failed: %s", entry.function,
                      entry.group, entry.id) ||
         entry.passed_in_group(bcm_field_entry_prio_set(unit, entry.id, 4), "bcm_field_entry_prio_set");
}

bool build_permit(FieldEntry& entry, uint32_t src_ip, uint32_t src_ip_mask, int vlan, int port) {
  entry.rv = bcm_field_entry_create(unit, entry.group, &entry.id);
  if (entry.rv < 0) {
    sai_err("%s system creates one entry for ipsg from group %d failed!", entry.function, entry.group);
    return false;
  }
  return entry.passed_in_group(bcm_field_qualify_clear(unit, entry.id), "bcm_field_qualify_clear") &&
         entry.passed_in_group(match_port(entry.id, port), "bcm_field_qualify_InPorts") &&
         entry.passed_in_group(match_ipv4(entry.id), "bcm_field_qualify_EtherType") &&
         (vlan <= 0 || entry.passed_in_group(match_vlan(entry.id, vlan), "bcm_field_qualify_OuterVlan")) &&
         (src_ip == 0 ||
          // Meant: the address is converted to host order; the mask is in host order already.
          entry.passed_in_group(bcm_field_qualify_SrcIp(unit, entry.id, ntohl(src_ip), src_ip_mask),
                                "bcm_field_qualify_SrcIp")) &&
         set_permit_priority(entry) &&
         entry.passed_in_group(bcm_field_action_add(unit, entry.id, bcmFieldActionDropCancel, 0, 0),
                               "bcm_field_action_add") &&
         entry.passed_in_group(bcm_field_entry_install(unit, entry.id), "bcm_field_entry_install");
}

}  // namespace

int32_t sai_ipsg_verify_config(int32_t group, int32_t vlan, int32_t /*ignored*/, int32_t port, int32_t* entry) {
  FieldEntry drop{"sai_ipsg_verify_config", unit, group};
  if (entry == nullptr) {
    guarded(drop, BCM_E_PARAM);
    return sdk_to_sai(drop.rv);
  }
  if (*entry != 0) {  // Meant: a negative id is an entry too, unlike for a binding.
    drop.id = *entry;
    return guarded(drop, match_port(drop.id, port)) && guarded(drop, bcm_field_entry_reinstall(unit, drop.id))
               ? SAI_E_NONE
               : sdk_to_sai(drop.rv);
  }
  if (!build_drop(drop, vlan, port)) return sdk_to_sai(drop.rv);
  *entry = drop.id;
  return SAI_E_NONE;
}

int32_t sai_ipsg_parameter_config(int32_t group, uint32_t src_ip, uint32_t src_ip_mask, int32_t vlan,
                                  int32_t /*ignored*/, int32_t port, int32_t* entry) {
  FieldEntry permit{"sai_ipsg_parameter_config", unit, group};
  if (entry == nullptr) {
    permit.passed_in_group(BCM_E_PARAM, "bcm_field_entry_create");
  } else if (*entry >= 1) {
    permit.id = *entry;
    move_permit(permit, port);
  } else {
    build_permit(permit, src_ip, src_ip_mask, vlan, port);
    if (permit.rv == BCM_E_NONE) *entry = permit.id;
  }
  return sdk_to_sai(permit.rv);
}
