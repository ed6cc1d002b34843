#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/resolve.h"
#include "chip/pipeline/router.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Sends the frame to the CPU if the control of its port is on; drops it otherwise.
void give_up(Passage& frame, SwitchControlOfPort control, uint32_t to_cpu, Drop reason) {
  frame.by(decider::Control{control, frame.packet.port});
  if (!frame.chip.switch_controls.is_on(control, frame.packet.port)) return frame.stop(reason);
  frame.cpu_reasons |= to_cpu;
}

/// There is no route.
void miss(Passage& frame, SwitchControlOfPort control) {
  give_up(frame, control, cpu_reason::l3_miss, Drop::no_route);
  if (frame.dropped()) count_ip(frame.chip.counters, frame.packet, IpEvent::discarded);
}

bool is_right_checksum(std::span<const uint8_t> header) {
  unsigned sum = 0;
  for (std::size_t at = 0; at < header.size(); at += 2) sum += static_cast<unsigned>(header[at] << 8 | header[at + 1]);
  return (sum & 0xFFFF) + (sum >> 16) == 0xFFFF;
}

/// Whether an address can be that of a single host that is reachable through a router.
bool is_of_host(uint32_t address) {
  constexpr uint32_t loopback = 127;
  constexpr uint32_t first_of_groups = 0xE0;  // of the addresses above, none is of a host
  return address >> 24 != loopback && address >> 24 < first_of_groups;
}

L3Entry* look_up(Chip& chip, int vrf, uint32_t address) {
  L3Entry* const host = chip.hosts.find({vrf, address});
  return host != nullptr ? host : chip.routes.lookup(vrf, address);
}

/// Where an entry leads.
struct NextHop {
  int interface;
  Place place;
  Mac mac;
};

NextHop next_hop_of(const Passage& frame, const L3Entry& entry) {
  if (const EgressObject* const object = frame.chip.egress_objects.find(entry.interface)) {
    frame.by(decider::NextHop{entry.interface});
    return {object->interface, object->place, object->mac};
  }
  return {entry.interface, entry.place, entry.next_hop};
}

void send_to(Passage& frame, const NextHop& hop) {
  const std::optional<Exit> exit = exit_to(frame, hop.place);
  if (!exit) {
    frame.nowhere = Drop::no_next_hop;
    return;
  }
  Copy& copy = frame.copies.emplace_back(*exit);
  copy.l3_interface = hop.interface;
  copy.next_hop = hop.mac;
}

/// Names the host or the route of the packet's destination.
void tell_entry(const Passage& frame, int vrf) {
  const uint32_t address = frame.packet.fields.destination_ip;
  if (frame.chip.hosts.find({vrf, address}) != nullptr)
    frame.by(decider::Host{{vrf, address}});
  else
    frame.by(decider::Route{vrf, address});
}

void route_ip4(Passage& frame, int vrf) {
  L3Entry* const entry = look_up(frame.chip, vrf, frame.packet.fields.destination_ip);
  if (entry != nullptr) entry->hit |= L3Entry::destination_hit;
  if (entry != nullptr && frame.observer != nullptr) tell_entry(frame, vrf);
  L3Entry* const source = look_up(frame.chip, vrf, frame.packet.fields.source_ip);
  if (source != nullptr) source->hit |= L3Entry::source_hit;

  // A packet for the CPU need not be fit for forwarding.
  if (entry != nullptr && (entry->flags & L3Entry::to_cpu) != 0) {
    frame.cpu_reasons |= cpu_reason::destination;
    return;
  }
  if (const Drop reason = why_not_passed_on(frame.packet); reason != Drop::none) return refuse(frame, reason);
  if (entry == nullptr) return miss(frame, SwitchControlOfPort::ip4_l3_destination_miss_to_cpu);
  send_to(frame, next_hop_of(frame, *entry));
  count_ip(frame.chip.counters, frame.packet, frame.copies.empty() ? IpEvent::discarded : IpEvent::forwarded);
}

}  // namespace

Drop why_not_passed_on(const Packet& packet) {
  const FrameFields& fields = packet.fields;
  if (!packet.lengths_agree) return Drop::ip_length;
  const Drop of_ttl = fields.ttl <= 1 ? Drop::ttl_expired : Drop::none;
  if (packet.is_ip6()) return of_ttl;
  constexpr uint8_t without_options = 0x45;
  constexpr std::size_t length = 20;
  const std::span<const uint8_t> header = packet.bytes.subspan(packet.payload_at, length);
  if (header[0] != without_options) return Drop::ip_options;
  if (!is_right_checksum(header)) return Drop::ip_checksum;
  if (!is_of_host(fields.source_ip)) return Drop::martian_source;
  if (!packet.is_multicast() && !is_of_host(fields.destination_ip)) return Drop::martian_destination;
  return of_ttl;
}

void refuse(Passage& frame, Drop reason) {
  give_up(frame, SwitchControlOfPort::non_ip_l3_error_to_cpu, cpu_reason::l3_error, reason);
  count_ip(frame.chip.counters, frame.packet, IpEvent::header_error);
}

bool route(Passage& frame) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const L3Interface* const interface = chip.l3_interfaces.find_station(packet.vlan(), packet.fields.destination_mac);
  if (interface == nullptr) return false;
  frame.by(decider::Interface{interface});
  if (!chip.unicast_routing) {
    frame.by(decider::UnicastRouting{});
    frame.copies.emplace_back(
        Exit{Ports::cpu, Ports::cpu});  // the MAC table has the interface's address at the CPU port
    return true;
  }
  count_ip(frame.chip.counters, packet, IpEvent::received);
  if (packet.is_ip4()) {
    route_ip4(frame, interface->vrf);
    return true;
  }
  const Drop reason = packet.is_ip6() ? why_not_passed_on(packet) : Drop::not_ip;
  if (reason == Drop::none)
    miss(frame, SwitchControlOfPort::ip6_l3_destination_miss_to_cpu);  // there are no IPv6 routes
  else
    refuse(frame, reason);
  return true;
}

Drop rewrite_routed(Passage& frame, const Copy& copy, EgressHeader& header) {
  const Packet& packet = frame.packet;
  const L3Interface* const interface = frame.chip.l3_interfaces.find(*copy.l3_interface);
  if (interface == nullptr) return Drop::no_interface;
  frame.by(decider::Interface{interface});
  if (packet.fields.ttl < interface->ttl) return Drop::ttl_threshold;
  // For a next hop on a virtual port, the inner VLAN is the VLAN inside the chip; the virtual port sets the tags.
  const bool is_inside = is_virtual(copy.place) && interface->inner_vlan != 0;
  const auto tag = [&](int vlan) { return static_cast<uint16_t>((packet.fields.outer_tag & ~vlan_mask) | vlan); };
  header.source = interface->mac;
  if (!packet.is_multicast()) header.destination = copy.next_hop;
  header.outer_tag = tag(is_inside ? interface->inner_vlan : interface->vlan);
  header.inner_tag.reset();
  if (interface->inner_vlan != 0 && !is_inside) header.inner_tag = tag(interface->inner_vlan);
  header.routed = true;
  return Drop::none;
}

}  // namespace chip
