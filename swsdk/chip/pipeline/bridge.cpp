#include <bitset>

#include "chip/chip.h"
#include "chip/pipeline/learning.h"
#include "chip/pipeline/reserved_ip6.h"
#include "chip/pipeline/resolve.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// The exits that a frame may take: not back to its source, nor to ports that its port may not reach, nor through
/// virtual ports of other network groups when its own group is isolated.
class Reachable {
 public:
  explicit Reachable(const Passage& frame)
      : chip_(frame.chip),
        packet_(frame.packet),
        trunk_(chip_.trunks.trunk_of(packet_.port)),
        ports_(chip_.port_forwarding.of(packet_.port).destinations) {
    const VirtualPortId* const from = std::get_if<VirtualPortId>(&packet_.source);
    if (from == nullptr) return;
    const int group = chip_.virtual_ports.find(*from)->ingress_network_group;
    const Setting<uint32_t>* const settings =
        chip_.network_groups.find(group);  // a virtual port without a group has none
    // The chip prunes known destinations on the way in and copies of floods on the way out; here either does for both.
    if (settings != nullptr && (*settings & (NetworkGroups::prune_ingress | NetworkGroups::prune_egress)) != 0)
      isolated_group_ = group;
  }

  /// The network group of its source, which is isolated.
  int group() const { return *isolated_group_; }

  /// Why it may not take one, or none.
  Drop why_not(const Exit& exit) const {
    const auto& [place, port] = exit;
    if (const VirtualPortId* const id = std::get_if<VirtualPortId>(&place)) {
      if (place == packet_.source) return Drop::own_port;
      if (port != packet_.port && !ports_.contains(port)) return Drop::isolated;
      return is_split(*chip_.virtual_ports.find(*id)) ? Drop::split_horizon : Drop::none;
    }
    if (port == Ports::cpu)  // isolation is between the ports of the panel
      return packet_.port == port ? Drop::own_port : Drop::none;
    const bool back = port == packet_.port || (trunk_ && chip_.trunks.trunk_of(port) == trunk_);
    if (back && !is_virtual(packet_.source)) return Drop::own_port;
    return ports_.contains(port) ? Drop::none : Drop::isolated;
  }

 private:
  /// Split horizon applies between groups; physical ports, which lead to the network, are in none.
  bool is_split(const VirtualPort& to) const {
    return isolated_group_ && NetworkGroups::is_valid(to.egress_network_group) &&
           to.egress_network_group != *isolated_group_;
  }

  const Chip& chip_;
  const Packet& packet_;
  const std::optional<TrunkId> trunk_;
  std::optional<int> isolated_group_;
  const PortSet& ports_;
};

/// Adds the copy for an exit. Returns why not, or none.
Drop send_by(Passage& frame, const Reachable& reachable, const Exit& exit) {
  const Drop reason = reachable.why_not(exit);
  if (reason == Drop::isolated) frame.by(decider::Destinations{frame.packet.port});
  if (reason == Drop::split_horizon) frame.by(decider::NetworkGroup{reachable.group()});
  if (reason == Drop::none) frame.copies.emplace_back(exit);
  return reason;
}

Drop send_to(Passage& frame, const Reachable& reachable, const Place& place) {
  const std::optional<Exit> exit = exit_to(frame, place);
  return exit ? send_by(frame, reachable, *exit) : Drop::no_exit;
}

void send_to_entry(Passage& frame, const MacEntry& entry) {
  if (entry.is(MacEntry::copy_to_cpu)) frame.cpu_reasons |= cpu_reason::mac_entry;
  if (entry.is(MacEntry::discard_destination)) return frame.stop(Drop::discard);
  frame.nowhere = send_to(frame, Reachable(frame), entry.place);
}

/// The kind of flood of a frame with an unknown destination.
uint32_t flood_kind(const Packet& packet) {
  if (packet.is_broadcast()) return PortFilters::broadcast;
  return packet.is_multicast() ? PortFilters::unknown_multicast : PortFilters::unknown_unicast;
}

/// The group to which a VLAN floods, unless it is to all its members.
std::optional<GroupId> flood_group(const VlanControl& control, uint32_t kind) {
  if (kind == PortFilters::broadcast) return control.broadcast_group;
  return kind == PortFilters::unknown_multicast ? control.unknown_multicast_group : control.unknown_unicast_group;
}

/// Whether the destination is reserved multicast: 224.0.0.x, or one of the configured IPv6 addresses.
bool is_reserved(const Passage& frame) {
  if (frame.packet.is_ip4()) return frame.packet.fields.destination_ip >> 8 == 0xE00000;
  return frame.packet.is_ip6() && is_reserved_ip6(frame);
}

/// Whether the VLAN floods unknown multicast frames.
bool floods_multicast(const Passage& frame, const VlanControl& control) {
  const Packet& packet = frame.packet;
  const uint16_t type = packet.fields.ether_type;
  const int mode = type == ether_type::ip4   ? control.ip4_multicast_flood_mode
                   : type == ether_type::ip6 ? control.ip6_multicast_flood_mode
                                             : control.l2_multicast_flood_mode;
  if (mode != VlanControl::flood_nowhere) return true;
  const SwitchControlOfPort which = packet.is_ip4() ? SwitchControlOfPort::ip4_reserved_multicast_flood
                                                    : SwitchControlOfPort::ip6_reserved_multicast_flood;
  if (!frame.chip.switch_controls.is_on(which, packet.port) || !is_reserved(frame)) return false;
  frame.by(decider::Control{which, packet.port});
  return true;
}

void flood(Passage& frame, const Vlan& vlan) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const uint32_t kind = flood_kind(packet);
  frame.unknown_destination = kind == PortFilters::unknown_unicast;
  if (kind == PortFilters::unknown_multicast && !floods_multicast(frame, vlan.control)) {
    frame.nowhere = Drop::multicast_flood;
    return;
  }

  const std::optional<GroupId> group = flood_group(vlan.control, kind);
  const MulticastGroup* const members = group ? chip.multicast_groups.find(*group) : nullptr;
  if (members != nullptr) frame.by(decider::Group{*group});
  const auto in_group = [&](Port port, int encapsulation) {
    return members == nullptr || members->members.contains({port, encapsulation});
  };
  const auto is_blocked = [&](Port port) { return (chip.port_filters.blocked_floods(packet.port, port) & kind) != 0; };

  // The first that keeps it from a member other than its own port tells why it went nowhere.
  const auto note = [&](Drop reason) {
    if (reason != Drop::none && reason != Drop::own_port && frame.nowhere == Drop::no_destination)
      frame.nowhere = reason;
  };
  const Reachable reachable(frame);
  std::bitset<Trunks::capacity> trunks_seen;
  for (const Port port : vlan.members) {
    if (is_blocked(port)) {
      if (port == packet.port) continue;
      frame.by(decider::BlockedFloods{packet.port, port});
      note(Drop::flood_blocked);
      continue;
    }
    // A trunk gets one copy.
    if (const std::optional<TrunkId> trunk = chip.trunks.trunk_of(port)) {
      if (trunks_seen.test(trunk->index())) continue;
      trunks_seen.set(trunk->index());
      const Drop reason = send_to(frame, reachable, *trunk);
      if (reason == Drop::no_exit) lose_copy(frame, *trunk, Drop::egress_no_exit);
      note(reason);
    } else if (port == Ports::cpu || in_group(port, encapsulation::as_it_is)) {
      note(send_by(frame, reachable, Exit{port, port}));
    }
  }
  for (const VirtualPortId id : vlan.virtual_members) {
    const std::optional<Exit> exit = exit_to(frame, id);
    if (!exit) continue;  // destroyed, but still a member
    if (is_blocked(exit->port)) {
      frame.by(decider::BlockedFloods{packet.port, exit->port});
      note(Drop::flood_blocked);
    } else if (in_group(exit->port, encapsulation::of_virtual_port(id))) {
      note(send_by(frame, reachable, *exit));
    }
  }
}

}  // namespace

void bridge(Passage& frame) {
  const Packet& packet = frame.packet;
  const Vlan* const vlan = frame.chip.vlans.find(packet.vlan());
  const bool looks_up = vlan == nullptr || (vlan->control.flags & VlanControl::l2_lookup_disable) == 0;
  const MacEntry* const entry = looks_up ? look_up(frame.chip, packet.vlan(), packet.fields.destination_mac) : nullptr;
  if (entry != nullptr) {
    frame.by(decider::OfMac{entry});
    return send_to_entry(frame, *entry);
  }
  if (vlan == nullptr) return;
  frame.by(decider::OfVlan{packet.vlan()});
  flood(frame, *vlan);
}

}  // namespace chip
