#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// What the frame's source address gets it, MAC or IP as the port prefers where both do.
const VlanAssignment* assignment_of_source(const Chip& chip, const Packet& packet) {
  const VlanControls& controls = chip.vlan_controls;
  const auto by_mac = [&]() -> const VlanAssignment* {
    const bool looks = controls.of_port(packet.port, VlanControlOfPort::lookup_mac) != 0;
    return looks ? chip.mac_vlans.find(packet.fields.source_mac) : nullptr;
  };
  const auto by_subnet = [&]() -> const VlanAssignment* {
    if (chip.subnet_vlans.all().empty()) return nullptr;
    if (controls.of_port(packet.port, VlanControlOfPort::lookup_ip) == 0) return nullptr;
    if (packet.is_ip4()) return find_around(chip.subnet_vlans, *subnet_of_ip4(packet.fields.source_ip, ~0U));
    return packet.is_ip6() ? find_around(chip.subnet_vlans, {true, 128, packet.fields.source_ip6}) : nullptr;
  };
  const bool subnet_first = controls.prefers_subnet(packet.port);
  const VlanAssignment* const found = subnet_first ? by_subnet() : by_mac();
  if (found != nullptr) return found;
  return subnet_first ? by_mac() : by_subnet();
}

int vlan_of_protocol(const Chip& chip, const Packet& packet) {
  if (packet.framing == Framing::unreadable) return 0;
  const int frame = packet.framing == Framing::ethernet2 ? ProtocolVlans::ethernet2
                    : packet.framing == Framing::snap    ? ProtocolVlans::snap
                                                         : ProtocolVlans::llc;
  const uint16_t protocol = packet.framing == Framing::llc ? packet.access_points : packet.fields.ether_type;
  return chip.protocol_vlans.find({packet.port, frame, protocol});
}

/// Gives the frame its outer tag, and the priority that goes with it.
void set_outer(Packet& packet, int vlan, int priority) {
  packet.fields.outer_tag = with_priority(with_vlan(packet.fields.outer_tag, vlan), priority);
  packet.priority = packet.fields.outer_tag >> priority_shift;
}

void set_inner(Packet& packet, uint16_t tag) {
  packet.inner_tagged = true;
  packet.fields.inner_tag = tag;
}

/// For a frame without VLAN: its source counts before its protocol, and that before its port.
void give_vlan(const Chip& chip, Packet& packet) {
  if (const VlanAssignment* const found = assignment_of_source(chip, packet))
    return set_outer(packet, found->vlan, found->priority);
  int vlan = vlan_of_protocol(chip, packet);
  if (vlan == 0) chip.port_forwarding.get(packet.port, &PortForwarding::untagged_vlan, vlan);
  packet.set_vlan(vlan);
}

/// The gport of the virtual port that the frame belongs to, by the keys of its port one after the other, or 0.
int virtual_port_of(const Chip& chip, const Packet& packet) {
  if (chip.virtual_ports.all().empty()) return 0;
  for (const VlanControlOfPort key :
       {VlanControlOfPort::translate_first_key, VlanControlOfPort::translate_second_key}) {
    const int kind = chip.vlan_controls.of_port(packet.port, key);
    const bool both = kind == VlanControls::key_port_double;
    if (both ? packet.inner_vlan() == 0 : kind != VlanControls::key_port_outer) continue;
    const int inner = both ? packet.inner_vlan() : 0;
    if (const int found = chip.virtual_ports.matching(packet.port, packet.vlan(), inner)) return found;
  }
  return 0;
}

/// The frame gets the tags that the virtual port's egress action expects of the answer: `egress_vlan`, or the inner
/// VLAN where only that goes on, and a second tag where `egress_inner_vlan` has one for it. Where it has none, the
/// action adds the inner tag that was matched or knows of a single tag alone, so none stays, not even one that was not
/// matched. Priorities stay; a second tag that is new has that of the outer one.
void enter(Packet& packet, int gport, const VirtualPort& virtual_port) {
  packet.source = gport;
  const uint16_t inner_tag = packet.inner_tagged ? packet.fields.inner_tag : packet.fields.outer_tag;
  packet.set_vlan(virtual_port.egress_vlan != 0 ? virtual_port.egress_vlan : virtual_port.match_inner_vlan);
  packet.inner_tagged = false;
  if (virtual_port.egress_inner_vlan != 0) set_inner(packet, with_vlan(inner_tag, virtual_port.egress_inner_vlan));
}

void translate(const Chip& chip, Packet& packet) {
  if (const int gport = virtual_port_of(chip, packet)) return enter(packet, gport, *chip.virtual_ports.find(gport));
  if (const Translation* const to = chip.vlan_translations.find(packet.port, packet.vlan()))
    return set_outer(packet, to->vlan, to->priority);
  if (packet.inner_tagged) return;  // there is no room for a third
  if (const Translation* const outer = chip.vlan_translations.find_outer(packet.port, packet.vlan())) {
    set_inner(packet, packet.fields.outer_tag);
    set_outer(packet, outer->vlan, outer->priority);
  }
}

}  // namespace

void assign_vlan(Passage& frame) {
  const Chip& chip = frame.chip;
  Packet& packet = frame.packet;
  if (packet.vlan() == 0)
    give_vlan(chip, packet);
  else if (chip.vlan_controls.translates(packet.port, VlanControlOfPort::translate_ingress))
    translate(chip, packet);
}

}  // namespace chip
