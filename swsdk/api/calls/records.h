// The SDK's records as lists of their fields, so that printing, parsing and writing as C need one function each.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "api/calls/sdk.h"

namespace api {

enum class Show { plain, hex, ip4 };

/// The operations on values of one type.
struct ValueType {
  std::string (*text)(const void* value, Show show);
  void (*parse)(std::string_view text, void* value);
  std::string (*c_assignment)(const std::string& place, const void* value);
};

/// One field of a record: its name, its offset, how its value is shown, and whether the chip models it.
struct Field {
  const char* name;
  std::size_t offset;
  std::size_t size;
  const ValueType* type;
  Show show;
  bool modeled;

  const void* in(const void* record) const { return static_cast<const char*>(record) + offset; }
  void* in(void* record) const { return static_cast<char*>(record) + offset; }
  bool is_zero_in(const void* record) const;
};

/// Whether a record asks for something that the chip does not model.
bool exceeds_model(std::span<const Field> fields, const void* record);
/// Clears the fields that the chip does not model.
void clear_unmodeled(std::span<const Field> fields, void* record);

/// The fields of each record that is shown as a record.
std::span<const Field> fields(const bcm_l2_addr_t*);
std::span<const Field> fields(const bcm_l2_cache_addr_t*);
std::span<const Field> fields(const bcm_l2_learn_limit_t*);
std::span<const Field> fields(const bcm_l3_intf_t*);
std::span<const Field> fields(const bcm_l3_egress_t*);
std::span<const Field> fields(const bcm_l3_host_t*);
std::span<const Field> fields(const bcm_l3_route_t*);
std::span<const Field> fields(const bcm_vlan_port_t*);
std::span<const Field> fields(const bcm_vlan_control_vlan_t*);
std::span<const Field> fields(const bcm_vlan_action_set_t*);
std::span<const Field> fields(const bcm_vlan_ip_t*);
std::span<const Field> fields(const bcm_trunk_info_t*);
std::span<const Field> fields(const bcm_trunk_member_t*);
std::span<const Field> fields(const bcm_mirror_destination_t*);
std::span<const Field> fields(const bcm_ipmc_addr_t*);
std::span<const Field> fields(const bcm_policer_config_t*);
std::span<const Field> fields(const bcm_knet_netif_t*);
std::span<const Field> fields(const bcm_switch_temperature_monitor_t*);
std::span<const Field> fields(const bcm_switch_network_group_config_t*);
std::span<const Field> fields(const bcm_field_qset_t*);
std::span<const Field> fields(const bcm_port_info_t*);
std::span<const Field> fields(const bcm_info_t*);
std::span<const Field> fields(const bcm_port_config_t*);

}  // namespace api
