#include <algorithm>

#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/resolve.h"
#include "chip/pipeline/router.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Link-local groups are not routed, nor are IGMP and MLD messages.
bool is_routable(const Packet& packet) {
  const FrameFields& fields = packet.fields;
  if (packet.is_ip4())
    return fields.destination_ip >> 28 == 0xE && fields.destination_ip >> 8 != 0xE00000 && !packet.is_igmp();
  if (!packet.is_ip6() || fields.destination_ip6[0] != 0xFF) return false;
  constexpr int link_local = 2;
  constexpr int listener_messages[] = {130, 131, 132, 143};
  const bool tells_of_groups =
      fields.ip_protocol == ip_protocol::icmp6 && std::find(std::begin(listener_messages), std::end(listener_messages),
                                                            fields.icmp_type) != std::end(listener_messages);
  return (fields.destination_ip6[1] & 0xF) > link_local && !tells_of_groups;
}

Ip6 widened(uint32_t address) {
  return {static_cast<uint8_t>(address >> 24), static_cast<uint8_t>(address >> 16), static_cast<uint8_t>(address >> 8),
          static_cast<uint8_t>(address)};
}

/// The route of the packet's source, or else the one of any source.
const MulticastRoute* look_up(const Passage& frame) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const FrameFields& fields = packet.fields;
  const std::optional<int> interface = chip.l3_interfaces.find_by_vlan(packet.vlan());
  MulticastRouteKey key{.vrf = interface ? chip.l3_interfaces.find(*interface)->vrf : 0,
                        .vlan = packet.vlan(),
                        .ip6 = packet.is_ip6(),
                        .address = packet.is_ip6() ? fields.destination_ip6 : widened(fields.destination_ip),
                        .source = packet.is_ip6() ? fields.source_ip6 : widened(fields.source_ip)};
  const MulticastRoute* found = chip.multicast_routes.find(key);
  if (found == nullptr) {
    key.source = {};
    found = chip.multicast_routes.find(key);
  }
  if (found != nullptr) frame.by(decider::GroupRoute{key});
  return found;
}

void replicate(Passage& frame, const MulticastGroup& group) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const std::optional<TrunkId> own_trunk = chip.trunks.trunk_of(packet.port);
  const bool routes_within_vlan = chip.switch_controls.is_on(SwitchControlOfChip::ipmc_same_vlan_l3_route);
  const Drop reason = why_not_passed_on(packet);
  bool refused = false;
  frame.nowhere = Drop::no_group_member;

  for (const MulticastMember& member : group.members) {
    const L3Interface* const interface = chip.l3_interfaces.find(member.encapsulation);
    if (interface == nullptr) continue;
    // A single-tagged interface accepts any inner VLAN.
    const bool stays = interface->vlan == packet.vlan() &&
                       (interface->inner_vlan == 0 || interface->inner_vlan == packet.inner_vlan());
    const std::optional<TrunkId> trunk = chip.trunks.trunk_of(member.port);
    if (stays && (member.port == packet.port || (trunk && trunk == own_trunk))) continue;

    const Place to = trunk ? Place(*trunk) : Place(member.port);
    const std::optional<Exit> exit = exit_to(frame, to);
    if (!exit) {
      lose_copy(frame, to, Drop::egress_no_exit);
      continue;
    }
    Copy copy(*exit);
    if (stays && routes_within_vlan) frame.by(decider::ChipControl{SwitchControlOfChip::ipmc_same_vlan_l3_route});
    if (!stays || routes_within_vlan) {
      copy.l3_interface = member.encapsulation;
      if (reason != Drop::none) {
        refused = true;
        continue;
      }
    }
    // Several members on one trunk get one copy.
    const auto is_same = [&](const Copy& other) {
      return other.port == copy.port && other.l3_interface == copy.l3_interface;
    };
    if (!trunk || std::none_of(frame.copies.begin(), frame.copies.end(), is_same)) frame.copies.push_back(copy);
  }
  if (refused && frame.copies.empty()) refuse(frame, reason);
  const auto is_routed = [](const Copy& copy) { return copy.l3_interface.has_value(); };
  const bool routed = std::any_of(frame.copies.begin(), frame.copies.end(), is_routed);
  count_ip(frame.chip.counters, packet,
           frame.copies.empty() ? IpEvent::group_dropped
           : routed             ? IpEvent::group_routed
                                : IpEvent::group_bridged);
}

}  // namespace

bool route_multicast(Passage& frame) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  if (!packet.is_multicast() || chip.multicast_routes.empty() || !is_routable(packet)) return false;
  const MulticastRoute* const route = look_up(frame);
  if (route == nullptr) return false;
  if (!chip.multicast_routing) {
    frame.by(decider::MulticastRouting{});
    return false;
  }
  count_ip(frame.chip.counters, packet, IpEvent::received);
  if ((route->flags & MulticastRoute::from_any_port) == 0 && route->from != Place(packet.port)) {
    frame.stop(Drop::wrong_ingress_port);
    count_ip(frame.chip.counters, packet, IpEvent::group_dropped);
  } else if (const MulticastGroup* const group = chip.multicast_groups.find(route->group)) {
    frame.by(decider::Group{route->group});
    replicate(frame, *group);
  } else {
    frame.nowhere = Drop::no_group_member;
  }
  return true;
}

}  // namespace chip
