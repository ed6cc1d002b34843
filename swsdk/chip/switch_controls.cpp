#include "chip/switch_controls.h"

#include <array>
#include <cstdint>
#include <iterator>

namespace chip {

namespace {

struct Row {
  SwitchControl control;
  bool of_each_port;
  const char* name;
};

constexpr Row rows[] = {
    {SwitchControl::non_ip_l3_error_to_cpu, true, "non-IP L3 errors to CPU"},
    {SwitchControl::ip6_l3_destination_miss_to_cpu, true, "IPv6 destination misses to CPU"},
    {SwitchControl::ip4_l3_destination_miss_to_cpu, true, "IPv4 destination misses to CPU"},
    {SwitchControl::arp_reply_to_cpu, true, "ARP replies to CPU"},
    {SwitchControl::arp_request_to_cpu, true, "ARP requests to CPU"},
    {SwitchControl::neighbour_discovery_to_cpu, true, "neighbour discovery to CPU"},
    {SwitchControl::dhcp_to_cpu, true, "DHCP to CPU"},
    {SwitchControl::dhcp_drop, true, "DHCP dropped"},
    {SwitchControl::ip4_reserved_multicast_flood, true, "IPv4 reserved multicast flooded"},
    {SwitchControl::ip6_reserved_multicast_to_cpu, true, "IPv6 reserved multicast to CPU"},
    {SwitchControl::ip6_reserved_multicast_flood, true, "IPv6 reserved multicast flooded"},
    {SwitchControl::directed_mirroring, false, "directed mirroring"},
    {SwitchControl::mld_reserved_multicast_enable, false, "reserved MLD multicast"},
    {SwitchControl::l3_egress_mode, false, "L3 egress objects"},
    {SwitchControl::ipmc_same_vlan_l3_route, false, "multicast routed within a VLAN"},
    {SwitchControl::l2_destination_hit_enable, false, "L2 destination hits"},
    {SwitchControl::flexible_mirror_destinations, false, "flexible mirror destinations"},
};

/// The row of each control by its number.
constexpr auto row_of = [] {
  std::array<uint8_t, 1024> result{};
  for (std::size_t row = 0; row < std::size(rows); ++row)
    result[static_cast<std::size_t>(rows[row].control)] = static_cast<uint8_t>(row);
  return result;
}();

const Row* find(int control) {
  for (const Row& row : rows)
    if (static_cast<int>(row.control) == control) return &row;
  return nullptr;
}

}  // namespace

std::size_t SwitchControls::index(SwitchControl control) {
  static_assert(std::size(rows) == count);
  return row_of[static_cast<std::size_t>(control)];
}

void SwitchControls::write(int control, int port, int value) {
  values_[{control, port}] = value;
  PortSet& on = on_[index(static_cast<SwitchControl>(control))];
  if (port == whole_chip && scope(control) == Scope::port) return;  // its ports are told one by one
  const int at = port == whole_chip ? 0 : port;
  if (value != 0)
    on.add(at);
  else
    on -= PortSet{at};
}

SwitchControls::Scope SwitchControls::scope(int control) {
  const Row* const row = find(control);
  if (row == nullptr) return Scope::none;
  return row->of_each_port ? Scope::port : Scope::chip;
}

const char* SwitchControls::name(int control) {
  const Row* const row = find(control);
  return row == nullptr ? "" : row->name;
}

Status SwitchControls::set(int control, int value) {
  const Scope where = scope(control);
  if (where == Scope::none) return Status::unavailable;
  write(control, whole_chip, value);
  if (where == Scope::port)
    for (int port = 0; port <= ports_.all().highest(); ++port)
      if (ports_.has(port)) write(control, port, value);
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
  write(control, port, value);
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
