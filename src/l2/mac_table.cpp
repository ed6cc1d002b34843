#include <sai.h>
#include <string.h>

#include <algorithm>
#include <array>

#include "core/convert.h"
#include "core/gports.h"
#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::failed;
using sai::log_if_failed;
using sai::low_word;
using sai::Ports;
using sai::result;

namespace {

/// Chip types that keep no counts of their objects: none of those known today.
constexpr std::array<int, 0> types_without_counts{};

/// The entry's VLAN as the SDK takes it; the upper half is ignored.
bcm_vlan_t vlan(const sai_l2_mac_entry_t& entry) { return static_cast<bcm_vlan_t>(entry.vlan); }

uint32_t sdk_flags(const sai_l2_mac_entry_t& entry) {
  constexpr struct {
    uint32_t own;
    uint32_t sdk;
  } pairs[] = {
      {SAI_L2_MAC_STATIC, BCM_L2_STATIC},
      {SAI_L2_MAC_DISCARD_SRC, BCM_L2_DISCARD_SRC},
      {SAI_L2_MAC_DISCARD_DST, BCM_L2_DISCARD_DST},
      {SAI_L2_MAC_COPY_TO_CPU, BCM_L2_COPY_TO_CPU},
  };
  uint32_t flags = 0;
  for (const auto& [own, sdk] : pairs)
    if (entry.flags & own) flags |= sdk;
  return flags;
}

/// Meant: a failure does not end the walk, and the result is that of the last port.
int delete_of_every_port(int unit, uint32_t flags) {
  int rv = BCM_E_NONE;
  sai::for_each_port(unit, Ports::front, [&](int port) {
    int module = 0;
    rv = bcm_stk_my_modid_get(unit, &module);
    if (rv >= 0) rv = bcm_l2_addr_delete_by_port(unit, module, port, flags);
  });
  return rv;
}

/// The first bit that is set decides, in the order of the tests.
int delete_by_mode(int unit, sai_l2_mac_entry_t entry, uint8_t mode) {
  constexpr int own_module = 0;
  if (mode & SAI_L2_DELETE_ENTRY) return bcm_l2_addr_delete(unit, entry.mac, vlan(entry));
  if (mode & SAI_L2_DELETE_BY_MAC) return bcm_l2_addr_delete_by_mac(unit, entry.mac, entry.flags);
  if (mode & SAI_L2_DELETE_BY_VLAN) return bcm_l2_addr_delete_by_vlan(unit, vlan(entry), entry.flags);
  if (mode & SAI_L2_DELETE_BY_PORT) return bcm_l2_addr_delete_by_port(unit, own_module, entry.port, entry.flags);
  // Meant: the only mode that ignores the entry's flags.
  if (mode & SAI_L2_DELETE_BY_TRUNK) return bcm_l2_addr_delete_by_trunk(unit, entry.trunk, 0);
  return delete_of_every_port(unit, entry.flags);
}

/// Looks the entry up in the chip's table.
int find(int unit, sai_l2_mac_entry_t* entry, bcm_l2_addr_t& found) {
  if (entry == nullptr) return BCM_E_PARAM;
  found = {};
  return bcm_l2_addr_get(unit, entry->mac, vlan(*entry), &found);
}

int add(int unit, const sai_l2_mac_entry_t& entry) {
  bcm_l2_addr_t address;
  bcm_l2_addr_t_init(&address, entry.mac, vlan(entry));
  address.port = entry.port;
  address.flags = sdk_flags(entry);
  return bcm_l2_addr_add(unit, &address);
}

/// Reads the gport of the port that a virtual port is on.
int gport_get(int unit, bcm_gport_t virtual_port, bcm_gport_t& gport) {
  bcm_vlan_port_t key{};
  key.vlan_port_id = virtual_port;
  const int rv = bcm_vlan_port_find(unit, &key);
  gport = key.port;
  return rv;
}

/// The SDK's record with the limit's scopes and actions that are in `bits`, and the ids of those scopes.
bcm_l2_learn_limit_t sdk_limit(const sai_l2_learn_limit_t& own, uint32_t bits) {
  bcm_l2_learn_limit_t sdk;
  bcm_l2_learn_limit_t_init(&sdk);
  const uint32_t flags = own.flags & bits;
  sdk.flags |= flags;
  if (flags & BCM_L2_LEARN_LIMIT_VLAN) sdk.vlan = own.vlan;
  if (flags & BCM_L2_LEARN_LIMIT_PORT) sdk.port = own.port;
  if (flags & BCM_L2_LEARN_LIMIT_TRUNK) sdk.trunk = own.trunk;
  if (flags & BCM_L2_LEARN_LIMIT_TUNNEL) sdk.tunnel_id = own.scope_id;
  return sdk;
}

constexpr uint32_t limit_scopes =
    BCM_L2_LEARN_LIMIT_VLAN | BCM_L2_LEARN_LIMIT_PORT | BCM_L2_LEARN_LIMIT_TRUNK | BCM_L2_LEARN_LIMIT_TUNNEL;
constexpr uint32_t limit_actions =
    BCM_L2_LEARN_LIMIT_ACTION_DROP | BCM_L2_LEARN_LIMIT_ACTION_CPU | BCM_L2_LEARN_LIMIT_ACTION_PREFER;

int32_t limit_set_result(int rv, int limit) { return result(rv, "Failed to set mac limit %d: %s", limit); }

int limit_get(int unit, sai_l2_learn_limit_t& limit) {
  bcm_l2_learn_limit_t sdk = sdk_limit(limit, limit_scopes);  // Meant: without the system's own scope.
  const int rv = bcm_l2_learn_limit_get(unit, &sdk);
  if (rv == BCM_E_NONE) limit.limit = sdk.limit;
  return rv;
}

/// Where to store the next entry of the table.
struct sai_l2_show_ctx {
  uint32_t count;
  sai_l2_mac_entry_t* entries;
};

uint32_t shown_kind(const bcm_l2_addr_t& entry) {
  if (entry.flags & BCM_L2_STATIC) return SAI_L2_MAC_STATIC;
  return entry.flags & BCM_L2_TRUNK_MEMBER ? SAI_L2_MAC_TRUNK : 0;
}

int show(int unit, bcm_l2_addr_t* entry, void* user_data) {
  auto* const context = static_cast<sai_l2_show_ctx*>(user_data);
  if (entry == nullptr || context == nullptr || context->entries == nullptr) return -1;

  sai_l2_mac_entry_t& slot = context->entries[context->count];
  slot.vlan = entry->vid;
  if (sai::gport::is_vlan_port(entry->port)) {
    // Meant: only the mark's low byte is set, and never cleared; a virtual port that cannot be found is not a failure.
    slot.is_vport = (slot.is_vport & ~0xFFU) | 1;
    bcm_gport_t gport = 0;
    bcm_port_t local = 0;
    if (gport_get(unit, entry->port, gport) == BCM_E_NONE && bcm_port_local_get(unit, gport, &local) == BCM_E_NONE)
      slot.port_out = local;
  }
  slot.port = entry->flags & BCM_L2_TRUNK_MEMBER ? entry->tgid : entry->port;
  slot.flags = shown_kind(*entry);
  sai::copy_mac(slot.mac, entry->mac);
  ++context->count;
  return 0;
}

}  // namespace

int32_t sai_l2_init(sai_l2_mac_entry_t* entry) {
  if (entry == nullptr) return SAI_E_PARAM;
  memset(entry, 0, sizeof *entry);  // including the padding between its fields
  return SAI_E_NONE;
}

int32_t sai_l2_mac_init(int32_t unit) { return result(bcm_l2_init(unit), "Failed to init mac: %s"); }

int32_t sai_l2_mac_age_time_set(int32_t unit, int32_t seconds) {
  return result(bcm_l2_age_timer_set(unit, seconds), "Failed to set mac age time %d: %s", seconds);
}

int32_t sai_l2_mac_age_time_get(int32_t unit, int32_t* seconds) {
  const int rv = sai::read_into(seconds, [&](int* time) { return bcm_l2_age_timer_get(unit, time); });
  // Meant: the message shows the pointer, not a value.
  return result(rv, "Failed to get mac age time %d: %s", low_word(seconds));
}

int32_t sai_l2_mac_entry_get(int32_t /*unit*/, sai_l2_mac_entry_t* entry) {
  constexpr int first_unit = 0;  // Meant: for any unit.
  bcm_l2_addr_t found;
  const int rv = find(first_unit, entry, found);
  if (rv == BCM_E_NONE) {
    if (found.flags & BCM_L2_STATIC) entry->flags |= SAI_L2_MAC_STATIC;
    entry->port_out = found.port;  // Meant: the two port lookups below write `port` instead.
  }
  return result(rv, "Failed to get mac entry: %s");
}

int32_t sai_l2_mac_entry_add(int32_t unit, const sai_l2_mac_entry_t* entry) {
  // Meant: "to adding".
  return result(entry == nullptr ? BCM_E_PARAM : add(unit, *entry), "Failed to adding mac entry: %s");
}

int32_t sai_l2_mac_entry_del(int32_t unit, const sai_l2_mac_entry_t* entry, uint8_t mode) {
  return result(entry == nullptr ? BCM_E_PARAM : delete_by_mode(unit, *entry, mode), "Failed to delete mac entry: %s");
}

int32_t sai_l2_addr_delete_by_trunk(int32_t unit, int32_t trunk) {
  return result(bcm_l2_addr_delete_by_trunk(unit, trunk, 0), "Failed to delete l2 addr by trunk [%d]: %s", trunk);
}

int32_t sai_l2_addr_port_id_get(int32_t unit, sai_l2_mac_entry_t* entry) {
  bcm_l2_addr_t found;
  const int rv = find(unit, entry, found);
  if (rv == BCM_E_NONE) entry->port = found.port;
  return result(rv, "Failed to get l2 addr source port: %s");
}

int32_t sai_l2_addr_logic_port_get(int32_t unit, sai_l2_mac_entry_t* entry) {
  bcm_l2_addr_t found;
  int rv = find(unit, entry, found);
  if (failed(rv, "Failed to get l2 addr source port: %s")) return sdk_to_sai(rv);
  bcm_port_t local = found.port;
  if (sai::gport::is_vlan_port(found.port)) {
    bcm_gport_t gport = 0;
    rv = gport_get(unit, found.port, gport);
    if (failed(rv, "Failed to get gport: %s")) return sdk_to_sai(rv);
    rv = bcm_port_local_get(unit, gport, &local);
    log_if_failed(rv, "Failed to get local port: %s");
  }
  if (rv == BCM_E_NONE) entry->port = local;
  return sdk_to_sai(rv);
}

int32_t sai_l2_mac_learn_limit_init(sai_l2_learn_limit_t* limit) {
  if (limit == nullptr) return SAI_E_PARAM;
  *limit = {};
  return SAI_E_NONE;
}

int32_t sai_l2_mac_learn_limit_set(int32_t unit, const sai_l2_learn_limit_t* limit) {
  if (limit == nullptr) return limit_set_result(BCM_E_PARAM, 0);
  bcm_l2_learn_limit_t sdk = sdk_limit(*limit, BCM_L2_LEARN_LIMIT_SYSTEM | limit_scopes | limit_actions);
  sdk.limit = limit->limit;
  return limit_set_result(bcm_l2_learn_limit_set(unit, &sdk), limit->limit);
}

int32_t sai_l2_mac_learn_limit_get(int32_t unit, sai_l2_learn_limit_t* limit) {
  return result(limit == nullptr ? BCM_E_PARAM : limit_get(unit, *limit), "Failed to get mac limit: %s");
}

int32_t sai_l2_mac_learn_limit_enable(int32_t unit) {
  return result(bcm_l2_learn_limit_enable(unit), "Failed to enable mac limit: %s");
}

int32_t sai_l2_mac_learn_limit_disable(int32_t unit) {
  return result(bcm_l2_learn_limit_disable(unit), "Failed to disable mac limit: %s");
}

int32_t sai_l2_addr_show(int32_t unit, sai_l2_mac_entry_t* entries) {
  sai_l2_show_ctx context{0, entries};
  return result(bcm_l2_traverse(unit, show, &context), "Failed to show l2 table: %s");
}

int32_t sai_l2_info(int32_t unit, int32_t* max, int32_t* current) {
  if (std::ranges::find(types_without_counts, sai::chip_type(unit)) != types_without_counts.end()) {
    sai_err("not implemented on this unit");
    return sdk_to_sai(BCM_E_INTERNAL);
  }
  bcm_switch_object_t objects[] = {bcmSwitchObjectL2EntryCurrent, bcmSwitchObjectL2EntryMax};
  int counts[std::size(objects)] = {};
  const int rv = max == nullptr || current == nullptr
                     ? BCM_E_PARAM
                     : bcm_switch_object_count_multi_get(unit, std::size(objects), objects, counts);
  if (rv != BCM_E_NONE) return result(rv, "Get L2 info failed %s\n");  // Meant: the newline.
  *current = counts[0];
  *max = counts[1];
  sai::trace("%-16s : %6d / %6d", "mac entries", *current, *max);
  return SAI_E_NONE;
}

int32_t sai_l2_dst_hit_enable_set(int32_t unit, int32_t enable) {
  return result(bcm_switch_control_set(unit, bcmSwitchL2DstHitEnable, enable),
                "bcm_switch_control_set bcmSwitchL2DstHitEnable failed: %s");
}

int32_t sai_l2_dst_hit_enable_get(int32_t unit, int32_t* enable) {
  const auto get = [&](int* value) { return bcm_switch_control_get(unit, bcmSwitchL2DstHitEnable, value); };
  // Meant: the setter's text.
  return result(sai::read_into(enable, get), "bcm_switch_control_set bcmSwitchL2DstHitEnable failed: %s");
}
