// The SDK's records as lists of their fields, so that one piece of code each prints, reads and makes C of all of them.
#pragma once

#include <bcm/field.h>
#include <bcm/init.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace api {

enum class Show { plain, hex, ip4 };

/// What is done with values of one type.
struct ValueType {
  std::string (*text)(const void* value, Show show);
  void (*parse)(std::string_view text, void* value);
  std::string (*c_assignment)(const std::string& place, const void* value);
};

/// One field of a record: its name, where it is, how its value is shown, and whether the chip knows what it means.
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
/// Makes 0 of the fields that the chip does not model.
void clear_unmodeled(std::span<const Field> fields, void* record);

/// The fields of each record that is shown as one.
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
std::span<const Field> fields(const swsdk_board*);
std::span<const Field> fields(const swsdk_temperature*);

}  // namespace api
