#include "chip/switch_controls.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace chip {

namespace {

using Info = SwitchControls::Info;

constexpr Info of_port(SwitchControlOfPort control, const char* name) {
  return {static_cast<int>(control), true, name};
}
constexpr Info of_chip(SwitchControlOfChip control, const char* name) {
  return {static_cast<int>(control), false, name};
}

constexpr Info rows[] = {
    of_port(SwitchControlOfPort::non_ip_l3_error_to_cpu, "non-IP L3 errors to CPU"),
    of_port(SwitchControlOfPort::ip6_l3_destination_miss_to_cpu, "IPv6 destination misses to CPU"),
    of_port(SwitchControlOfPort::ip4_l3_destination_miss_to_cpu, "IPv4 destination misses to CPU"),
    of_port(SwitchControlOfPort::arp_reply_to_cpu, "ARP replies to CPU"),
    of_port(SwitchControlOfPort::arp_request_to_cpu, "ARP requests to CPU"),
    of_port(SwitchControlOfPort::neighbor_discovery_to_cpu, "neighbor discovery to CPU"),
    of_port(SwitchControlOfPort::dhcp_to_cpu, "DHCP to CPU"),
    of_port(SwitchControlOfPort::dhcp_drop, "DHCP dropped"),
    of_port(SwitchControlOfPort::ip4_reserved_multicast_flood, "IPv4 reserved multicast flooded"),
    of_port(SwitchControlOfPort::ip6_reserved_multicast_to_cpu, "IPv6 reserved multicast to CPU"),
    of_port(SwitchControlOfPort::ip6_reserved_multicast_flood, "IPv6 reserved multicast flooded"),
    of_chip(SwitchControlOfChip::directed_mirroring, "directed mirroring"),
    of_chip(SwitchControlOfChip::mld_reserved_multicast_enable, "reserved MLD multicast"),
    of_chip(SwitchControlOfChip::l3_egress_mode, "L3 egress objects"),
    of_chip(SwitchControlOfChip::ipmc_same_vlan_l3_route, "multicast routed within a VLAN"),
    of_chip(SwitchControlOfChip::l2_destination_hit_enable, "L2 destination hits"),
    of_chip(SwitchControlOfChip::flexible_mirror_destinations, "flexible mirror destinations"),
};

/// The row of each control by its number.
constexpr auto row_by_number = [] {
  std::array<uint8_t, 1024> result{};
  for (std::size_t row = 0; row < std::size(rows); ++row)
    result[static_cast<std::size_t>(rows[row].control)] = static_cast<uint8_t>(row);
  return result;
}();

const Info* find(int control) {
  const Info* const found =
      std::find_if(std::begin(rows), std::end(rows), [&](const Info& row) { return row.control == control; });
  return found == std::end(rows) ? nullptr : found;
}

}  // namespace

std::span<const Info> SwitchControls::infos() { return rows; }

std::size_t SwitchControls::row_of(int control) {
  static_assert(std::size(rows) == count);
  return row_by_number[static_cast<std::size_t>(control)];
}

Status SwitchControls::set(int control, int value) {
  const Info* const found = find(control);
  if (found == nullptr) return Status::unavailable;
  values_[row_of(control)] = value;
  if (!found->of_each_port) {
    origins_[row_of(control)] = {Origin()};
    return Status::ok;
  }
  on_ports_[row_of(control)] = value != 0 ? ports_.all() : PortSet{};
  origins(control).assign(origins(control).size(), Origin());
  return Status::ok;
}

std::vector<Origin>& SwitchControls::origins(int control) {
  std::vector<Origin>& of_ports = origins_[row_of(control)];
  of_ports.resize(static_cast<std::size_t>(ports_.all().highest()) + 1, Origin::none());
  return of_ports;
}

std::optional<int> SwitchControls::get(int control) const {
  return find(control) == nullptr ? std::nullopt : std::optional(values_[row_of(control)]);
}

Status SwitchControls::set_port(Port port, int control, int value) {
  const Info* const found = find(control);
  if (!ports_.has(port)) return Status::bad_port;
  if (found == nullptr || !found->of_each_port) return Status::unavailable;
  PortSet& on = on_ports_[row_of(control)];
  if (value != 0)
    on.add(port);
  else
    on -= PortSet{port};
  origins(control)[port.index()] = {};
  return Status::ok;
}

}  // namespace chip
