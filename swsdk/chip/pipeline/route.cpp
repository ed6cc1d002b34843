#include "chip/chip.h"
#include "chip/gports.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/router.h"
#include "chip/pipeline/stages.h"
#include "chip/pipeline/trunk_member.h"

namespace chip {

namespace {

/// For the CPU when the control of the port says so, and for nobody else.
void give_up(Passage& frame, SwitchControl control, uint32_t reason) {
  int to_cpu = 0;
  frame.chip.switch_controls.get_port(frame.packet.port, static_cast<int>(control), to_cpu);
  if (to_cpu == 0) return frame.stop(Drop::router);
  frame.cpu_reasons |= reason;
}

/// Nobody knows the way.
void miss(Passage& frame, SwitchControl control) {
  give_up(frame, control, cpu_reason::l3_miss);
  if (frame.drop() == Drop::router) count_ip(frame.chip.counters, frame.packet, IpEvent::discarded);
}

bool is_right_checksum(std::span<const uint8_t> header) {
  unsigned sum = 0;
  for (std::size_t at = 0; at < header.size(); at += 2) sum += static_cast<unsigned>(header[at] << 8 | header[at + 1]);
  return (sum & 0xFFFF) + (sum >> 16) == 0xFFFF;
}

/// Whether an address can be that of one host beyond its own link.
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
  int port;  // or the gport of a trunk or of a virtual port
  Mac mac;
};

NextHop next_hop_of(const Chip& chip, const L3Entry& entry) {
  if (const EgressObject* const object = chip.egress_objects.find(entry.interface))
    return {object->interface, object->port, object->mac};
  return {entry.interface, entry.port, entry.next_hop};
}

void send_to(Passage& frame, const NextHop& hop) {
  const Chip& chip = frame.chip;
  Copy copy{.port = gport::port_of(hop.port), .l3_interface = hop.interface, .next_hop = hop.mac};
  if (gport::kind(hop.port) == gport::trunk) {
    const auto trunk = chip.trunks.all().find(gport::number(hop.port));
    if (trunk == chip.trunks.all().end()) return;
    const std::optional<int> member = pick_member(chip, trunk->second, frame.packet);
    if (!member) return;
    copy.port = *member;
  } else if (VirtualPorts::is_virtual(hop.port)) {
    const VirtualPort* const virtual_port = chip.virtual_ports.find(hop.port);
    if (virtual_port == nullptr) return;
    copy.port = gport::port_of(virtual_port->port);
    copy.virtual_port = hop.port;
  }
  frame.copies.push_back(copy);
}

void route_ip4(Passage& frame, int vrf) {
  L3Entry* const entry = look_up(frame.chip, vrf, frame.packet.fields.destination_ip);
  if (entry != nullptr) entry->hit |= L3Entry::destination_hit;
  L3Entry* const source = look_up(frame.chip, vrf, frame.packet.fields.source_ip);
  if (source != nullptr) source->hit |= L3Entry::source_hit;

  // What has arrived need not be fit to go on.
  if (entry != nullptr && (entry->flags & L3Entry::to_cpu) != 0) {
    frame.cpu_reasons |= cpu_reason::destination;
    return;
  }
  if (!can_pass_on(frame.packet)) return refuse(frame);
  if (entry == nullptr) return miss(frame, SwitchControl::ip4_l3_destination_miss_to_cpu);
  send_to(frame, next_hop_of(frame.chip, *entry));
  count_ip(frame.chip.counters, frame.packet, frame.copies.empty() ? IpEvent::discarded : IpEvent::forwarded);
}

}  // namespace

bool can_pass_on(const Packet& packet) {
  if (packet.fields.ttl <= 1 || !packet.lengths_agree) return false;
  if (packet.is_ip6()) return true;
  constexpr uint8_t without_options = 0x45;
  constexpr std::size_t length = 20;
  const std::span<const uint8_t> header = packet.bytes.subspan(packet.payload_at, length);
  const FrameFields& fields = packet.fields;
  return header[0] == without_options && is_right_checksum(header) && is_of_host(fields.source_ip) &&
         (packet.is_multicast() || is_of_host(fields.destination_ip));
}

void refuse(Passage& frame) {
  give_up(frame, SwitchControl::non_ip_l3_error_to_cpu, cpu_reason::l3_error);
  count_ip(frame.chip.counters, frame.packet, IpEvent::header_error);
}

bool route(Passage& frame) {
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const L3Interface* const interface = chip.l3_interfaces.find_station(packet.vlan(), packet.fields.destination_mac);
  if (interface == nullptr) return false;
  if (!chip.unicast_routing) {
    frame.copies.push_back({.port = Ports::cpu});  // where the MAC table has the interface's address
    return true;
  }
  count_ip(frame.chip.counters, packet, IpEvent::received);
  if (packet.is_ip4())
    route_ip4(frame, interface->vrf);
  else if (packet.is_ip6() && can_pass_on(packet))
    miss(frame, SwitchControl::ip6_l3_destination_miss_to_cpu);  // there are no IPv6 routes
  else
    refuse(frame);
  return true;
}

bool rewrite_routed(Passage& frame, const Copy& copy, EgressHeader& header) {
  const Packet& packet = frame.packet;
  const L3Interface* const interface = frame.chip.l3_interfaces.find(copy.l3_interface);
  if (interface == nullptr || packet.fields.ttl < interface->ttl) return false;
  // The inner VLAN of a next hop on a virtual port is the one inside the chip; the virtual port gives the tags.
  const bool is_inside = copy.virtual_port != 0 && interface->inner_vlan != 0;
  const auto tag = [&](int vlan) { return static_cast<uint16_t>((packet.fields.outer_tag & ~vlan_mask) | vlan); };
  header.source = interface->mac;
  if (!packet.is_multicast()) header.destination = copy.next_hop;
  header.outer_tag = tag(is_inside ? interface->inner_vlan : interface->vlan);
  header.inner_tag.reset();
  if (interface->inner_vlan != 0 && !is_inside) header.inner_tag = tag(interface->inner_vlan);
  header.routed = true;
  return true;
}

}  // namespace chip
