#include "chip/chip.h"
#include "chip/gports.h"
#include "chip/learning.h"
#include "chip/pipeline/reserved_ip6.h"
#include "chip/pipeline/stages.h"
#include "chip/pipeline/trunk_member.h"

namespace chip {

namespace {

/// The places to which a frame of the VLAN may go: not back to where it came from, nor to ports that its own port is
/// kept away from, nor through virtual ports of other groups when its own is isolated.
class Reachable {
 public:
  explicit Reachable(const Passage& frame)
      : chip_(frame.chip),
        packet_(frame.packet),
        trunk_(chip_.trunks.trunk_of(packet_.port)),
        ports_(chip_.port_forwarding.of(packet_.port).destinations) {
    const VirtualPort* const from = chip_.virtual_ports.find(packet_.source);
    if (from == nullptr) return;
    uint32_t settings = 0;  // a virtual port without a group has none
    chip_.network_groups.get(from->ingress_network_group, settings);
    // The chip prunes known destinations on the way in and copies of floods on the way out; here either does for both.
    if ((settings & (NetworkGroups::prune_ingress | NetworkGroups::prune_egress)) != 0)
      isolated_group_ = from->ingress_network_group;
  }

  bool port(int port) const {
    if (port == Ports::cpu) return packet_.port != port;  // isolation is between the ports of the panel
    const bool back = port == packet_.port || (trunk_ && chip_.trunks.trunk_of(port) == trunk_);
    return !(back && packet_.source == packet_.port) && ports_.contains(port);
  }
  bool virtual_port(int gport) const {
    const VirtualPort* const found = chip_.virtual_ports.find(gport);
    if (found == nullptr || gport == packet_.source) return false;
    const int physical = gport::port_of(found->port);
    return (physical == packet_.port || ports_.contains(physical)) && !is_split(*found);
  }

 private:
  /// Split horizon is between groups; physical ports, the way to the network, are in none.
  bool is_split(const VirtualPort& to) const {
    return isolated_group_ && NetworkGroups::is_valid(to.egress_network_group) &&
           to.egress_network_group != *isolated_group_;
  }

  const Chip& chip_;
  const Packet& packet_;
  const std::optional<int> trunk_;
  std::optional<int> isolated_group_;
  const PortSet& ports_;
};

void add_port(Passage& frame, const Reachable& reachable, int port) {
  if (reachable.port(port)) frame.copies.push_back({.port = port});
}

void add_virtual_port(Passage& frame, const Reachable& reachable, int gport) {
  if (!reachable.virtual_port(gport)) return;
  const int physical = gport::port_of(frame.chip.virtual_ports.find(gport)->port);
  frame.copies.push_back({.port = physical, .virtual_port = gport});
}

void send_to_entry(Passage& frame, const MacEntry& entry) {
  const Reachable reachable(frame);
  if (entry.is(MacEntry::copy_to_cpu)) frame.cpu_reasons |= cpu_reason::mac_entry;
  if (entry.is(MacEntry::discard_destination)) return frame.stop(Drop::discard);
  if (VirtualPorts::is_virtual(entry.port)) return add_virtual_port(frame, reachable, entry.port);
  int port = entry.port;
  if (entry.is(MacEntry::on_trunk)) {
    const auto trunk = frame.chip.trunks.all().find(entry.trunk);
    const std::optional<int> member =
        trunk == frame.chip.trunks.all().end() ? std::nullopt : pick_member(frame.chip, trunk->second, frame.packet);
    if (!member) return;
    port = *member;
  }
  add_port(frame, reachable, port);
}

/// What kind of flood a frame without a known destination is.
uint32_t flood_kind(const Packet& packet) {
  if (packet.is_broadcast()) return PortFilters::broadcast;
  return packet.is_multicast() ? PortFilters::unknown_multicast : PortFilters::unknown_unicast;
}

/// The group to which a VLAN floods, or 0 for all its members.
int flood_group(const VlanControl& control, uint32_t kind) {
  if (kind == PortFilters::broadcast) return control.broadcast_group;
  return kind == PortFilters::unknown_multicast ? control.unknown_multicast_group : control.unknown_unicast_group;
}

/// 224.0.0.x and the scopes of IPv6 that the chip is told: what hosts need to find each other.
bool is_reserved(const Chip& chip, const Packet& packet) {
  if (packet.is_ip4()) return packet.fields.destination_ip >> 8 == 0xE00000;
  return packet.is_ip6() && is_reserved(chip, packet.fields.destination_ip6);
}

/// Whether the VLAN floods multicast frames that nobody knows.
bool floods_multicast(const Passage& frame, const VlanControl& control) {
  constexpr int nowhere = 2;
  const Packet& packet = frame.packet;
  const uint16_t type = packet.fields.ether_type;
  const int mode = type == ether_type::ip4   ? control.ip4_multicast_flood_mode
                   : type == ether_type::ip6 ? control.ip6_multicast_flood_mode
                                             : control.l2_multicast_flood_mode;
  if (mode != nowhere) return true;
  const SwitchControl which =
      packet.is_ip4() ? SwitchControl::ip4_reserved_multicast_flood : SwitchControl::ip6_reserved_multicast_flood;
  return frame.chip.switch_controls.is_on(which, packet.port) && is_reserved(frame.chip, packet);
}

void flood(Passage& frame, const Vlan& vlan) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const uint32_t kind = flood_kind(packet);
  frame.unknown_destination = kind == PortFilters::unknown_unicast;
  if (kind == PortFilters::unknown_multicast && !floods_multicast(frame, vlan.control)) return;

  const int group = flood_group(vlan.control, kind);
  const MulticastGroup* const members = group == 0 ? nullptr : chip.multicast_groups.find(group);
  const auto in_group = [&](int port, int encapsulation) {
    return members == nullptr || members->members.contains({port, encapsulation});
  };

  const Reachable reachable(frame);
  PortSet trunks_seen;
  for (const int port : vlan.members) {
    if ((chip.port_filters.blocked_floods(packet.port, port) & kind) != 0) continue;
    // One member speaks for a trunk.
    if (const std::optional<int> trunk = chip.trunks.trunk_of(port)) {
      if (trunks_seen.contains(*trunk)) continue;
      trunks_seen.add(*trunk);
      const std::optional<int> member = pick_member(chip, chip.trunks.all().at(*trunk), packet);
      if (member) add_port(frame, reachable, *member);
    } else if (port == Ports::cpu || in_group(port, encapsulation::as_it_is)) {
      add_port(frame, reachable, port);
    }
  }
  for (const int gport : vlan.virtual_members) {
    const VirtualPort* const member = chip.virtual_ports.find(gport);
    if (member == nullptr) continue;  // destroyed, but still a member
    const int port = gport::port_of(member->port);
    if ((chip.port_filters.blocked_floods(packet.port, port) & kind) != 0) continue;
    if (in_group(port, encapsulation::of_virtual_port(gport::number(gport)))) add_virtual_port(frame, reachable, gport);
  }
}

}  // namespace

void bridge(Passage& frame) {
  const Packet& packet = frame.packet;
  const Vlan* const vlan = frame.chip.vlans.find(packet.vlan());
  const bool looks_up = vlan == nullptr || (vlan->control.flags & VlanControl::l2_lookup_disable) == 0;
  const MacEntry* const entry = looks_up ? look_up(frame.chip, packet.vlan(), packet.fields.destination_mac) : nullptr;
  if (entry != nullptr) return send_to_entry(frame, *entry);
  if (vlan != nullptr) flood(frame, *vlan);
}

}  // namespace chip
