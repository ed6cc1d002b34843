#include "chip/switch_controls.h"

namespace chip {

SwitchControls::Scope SwitchControls::scope(int control) {
  switch (static_cast<SwitchControl>(control)) {
    using enum SwitchControl;
    case non_ip_l3_error_to_cpu:
    case ip6_l3_destination_miss_to_cpu:
    case ip4_l3_destination_miss_to_cpu:
    case arp_reply_to_cpu:
    case arp_request_to_cpu:
    case neighbour_discovery_to_cpu:
    case dhcp_to_cpu:
    case dhcp_drop:
    case ip4_reserved_multicast_flood:
    case ip6_reserved_multicast_to_cpu:
    case ip6_reserved_multicast_flood:
      return Scope::port;
    case directed_mirroring:
    case mld_reserved_multicast_enable:
    case l3_egress_mode:
    case ipmc_same_vlan_l3_route:
    case l2_destination_hit_enable:
    case flexible_mirror_destinations:
      return Scope::chip;
  }
  return Scope::none;
}

Status SwitchControls::set(int control, int value) {
  const Scope where = scope(control);
  if (where == Scope::none) return Status::unavailable;
  values_[{control, whole_chip}] = value;
  if (where == Scope::port)
    for (int port = 0; port <= ports_.all().highest(); ++port)
      if (ports_.has(port)) values_[{control, port}] = value;
  return Status::ok;
}

Status SwitchControls::get(int control, int& value) const {
  if (scope(control) == Scope::none) return Status::unavailable;
  const auto found = values_.find({control, whole_chip});
  value = found == values_.end() ? 0 : found->second;
  return Status::ok;
}

Status SwitchControls::set_port(int port, int control, int value) {
  if (!ports_.has(port)) return Status::bad_port;
  if (scope(control) != Scope::port) return Status::unavailable;
  values_[{control, port}] = value;
  return Status::ok;
}

Status SwitchControls::get_port(int port, int control, int& value) const {
  if (!ports_.has(port)) return Status::bad_port;
  if (scope(control) != Scope::port) return Status::unavailable;
  const auto found = values_.find({control, port});
  value = found == values_.end() ? 0 : found->second;
  return Status::ok;
}

}  // namespace chip
