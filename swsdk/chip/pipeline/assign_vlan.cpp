#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

const VlanAssignment* assignment_of_mac(const Chip& chip, const Packet& packet) {
  return chip.mac_vlans.find(packet.fields.source_mac);
}

const VlanAssignment* assignment_of_subnet(const Chip& chip, const Packet& packet) {
  if (chip.subnet_vlans.all().empty()) return nullptr;
  if (packet.is_ip4()) return find_around(chip.subnet_vlans, *subnet_of_ip4(packet.fields.source_ip, ~0U));
  return packet.is_ip6() ? find_around(chip.subnet_vlans, {true, 128, packet.fields.source_ip6}) : nullptr;
}

/// The assignment by the frame's source, MAC address or subnet; the port's preference decides where both have one.
const VlanAssignment* assignment_of_source(const Chip& chip, const Packet& packet) {
  const VlanControls& controls = chip.vlan_controls;
  const auto by_mac = [&]() -> const VlanAssignment* {
    const bool looks = controls.of_port(packet.port, VlanControlOfPort::lookup_mac) != 0;
    return looks ? assignment_of_mac(chip, packet) : nullptr;
  };
  const auto by_subnet = [&]() -> const VlanAssignment* {
    const bool looks = controls.of_port(packet.port, VlanControlOfPort::lookup_ip) != 0;
    return looks ? assignment_of_subnet(chip, packet) : nullptr;
  };
  const bool subnet_first = controls.prefers_subnet(packet.port);
  const VlanAssignment* const found = subnet_first ? by_subnet() : by_mac();
  if (found != nullptr) return found;
  return subnet_first ? by_mac() : by_subnet();
}

/// Names the assignment that was found, and the controls that keep the frame from another.
void tell_assignment(const Passage& frame, const VlanAssignment* found) {
  using enum VlanControlOfPort;
  const Packet& packet = frame.packet;
  const VlanControls& controls = frame.chip.vlan_controls;
  const VlanAssignment* const of_mac = assignment_of_mac(frame.chip, packet);
  const VlanAssignment* const of_subnet = assignment_of_subnet(frame.chip, packet);
  const bool looks_up_mac = controls.of_port(packet.port, lookup_mac) != 0;
  const bool looks_up_ip = controls.of_port(packet.port, lookup_ip) != 0;
  if (of_mac != nullptr && !looks_up_mac) frame.by(decider::VlanControl{lookup_mac, packet.port});
  if (of_subnet != nullptr && !looks_up_ip) frame.by(decider::VlanControl{lookup_ip, packet.port});
  if (of_mac != nullptr && of_subnet != nullptr && looks_up_mac && looks_up_ip)
    frame.by(decider::VlanControl{found == of_mac ? prefer_mac : prefer_ip4, packet.port});
  if (found == nullptr) return;
  if (found == of_mac)
    frame.by(decider::MacVlan{packet.fields.source_mac});
  else
    frame.by(decider::SubnetVlan{found});
}

/// The VLAN of the frame's protocol on its port, or null.
const Setting<int>* vlan_of_protocol(const Passage& passage) {
  const Packet& packet = passage.packet;
  if (packet.framing == Framing::unreadable) return nullptr;
  const int frame = packet.framing == Framing::ethernet2 ? ProtocolVlans::ethernet2
                    : packet.framing == Framing::snap    ? ProtocolVlans::snap
                                                         : ProtocolVlans::llc;
  const uint16_t protocol = packet.framing == Framing::llc ? packet.access_points : packet.fields.ether_type;
  const ProtocolVlans::Key key{packet.port, frame, protocol};
  const Setting<int>* const found = passage.chip.protocol_vlans.find(key);
  if (found != nullptr) passage.by(decider::ProtocolVlan{key});
  return found;
}

/// Sets the outer tag and its priority.
void set_outer(Packet& packet, int vlan, int priority) {
  packet.fields.outer_tag = with_priority(with_vlan(packet.fields.outer_tag, vlan), priority);
  packet.priority = packet.fields.outer_tag >> priority_shift;
}

void set_inner(Packet& packet, uint16_t tag) {
  packet.inner_tagged = true;
  packet.fields.inner_tag = tag;
}

/// Assigns the VLAN of an untagged frame: by source, else by protocol, else by port.
void give_vlan(Passage& frame) {
  Packet& packet = frame.packet;
  const VlanAssignment* const found = assignment_of_source(frame.chip, packet);
  if (frame.observer != nullptr) tell_assignment(frame, found);
  if (found != nullptr) return set_outer(packet, found->vlan, found->priority);
  if (const Setting<int>* const of_protocol = vlan_of_protocol(frame)) return packet.set_vlan(*of_protocol);
  frame.by(decider::UntaggedVlan{packet.port});
  packet.set_vlan(frame.chip.port_forwarding.of(packet.port).untagged_vlan);
}

/// The virtual port that the frame belongs to; the keys of its port are tried in turn.
std::optional<VirtualPortId> virtual_port_of(const Chip& chip, const Packet& packet) {
  if (chip.virtual_ports.all().empty()) return std::nullopt;
  for (const VlanControlOfPort key :
       {VlanControlOfPort::translate_first_key, VlanControlOfPort::translate_second_key}) {
    const int kind = chip.vlan_controls.of_port(packet.port, key);
    std::optional<VirtualPortId> found;
    if (kind == VlanControls::key_port_outer)
      found = chip.virtual_ports.matching(packet.port, packet.vlan());
    else if (kind == VlanControls::key_port_double && packet.inner_vlan() != 0)
      found = chip.virtual_ports.matching(packet.port, packet.vlan(), packet.inner_vlan());
    if (found) return found;
  }
  return std::nullopt;
}

/// The frame gets the tags that the virtual port's egress action expects of the answer: `egress_vlan`, or the inner
/// VLAN where only that goes on, and a second tag where `egress_inner_vlan` has one for it. Where it has none, the
/// action adds the inner tag that was matched or knows of a single tag alone, so none stays, not even one that was not
/// matched. Priorities stay; a second tag that is new has that of the outer one.
void enter(Packet& packet, VirtualPortId id, const VirtualPort& virtual_port) {
  packet.source = id;
  const uint16_t inner_tag = packet.inner_tagged ? packet.fields.inner_tag : packet.fields.outer_tag;
  packet.set_vlan(virtual_port.egress_vlan != 0 ? virtual_port.egress_vlan : virtual_port.match_inner_vlan);
  packet.inner_tagged = false;
  if (virtual_port.egress_inner_vlan != 0) set_inner(packet, with_vlan(inner_tag, virtual_port.egress_inner_vlan));
}

/// Names the controls that keep a frame from being translated.
void tell_untranslated(const Passage& frame) {
  using enum VlanControlOfPort;
  const Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  const bool has_virtual_port =
      chip.virtual_ports.matching(packet.port, packet.vlan()) ||
      (packet.inner_vlan() != 0 && chip.virtual_ports.matching(packet.port, packet.vlan(), packet.inner_vlan()));
  const bool has_translation = chip.vlan_translations.find(packet.port, packet.vlan()) != nullptr ||
                               chip.vlan_translations.find_outer(packet.port, packet.vlan()) != nullptr;
  const bool translates = chip.vlan_controls.translates(packet.port, translate_ingress);
  if (translates && has_virtual_port) {
    frame.by(decider::VlanControl{translate_first_key, packet.port});
    frame.by(decider::VlanControl{translate_second_key, packet.port});
  }
  if (!translates && (has_virtual_port || has_translation)) tell_translation_off(frame, translate_ingress, packet.port);
}

void translate(Passage& frame) {
  const Chip& chip = frame.chip;
  Packet& packet = frame.packet;
  if (const std::optional<VirtualPortId> id = virtual_port_of(chip, packet)) {
    frame.by(decider::OfVirtualPort{*id});
    return enter(packet, *id, *chip.virtual_ports.find(*id));
  }
  if (const Translation* const to = chip.vlan_translations.find(packet.port, packet.vlan())) {
    frame.by(decider::IngressTranslation{packet.port, packet.vlan()});
    return set_outer(packet, to->vlan, to->priority);
  }
  if (packet.inner_tagged) return;  // a frame has at most two tags
  if (const Translation* const outer = chip.vlan_translations.find_outer(packet.port, packet.vlan())) {
    frame.by(decider::OuterTranslation{packet.port, packet.vlan()});
    set_inner(packet, packet.fields.outer_tag);
    set_outer(packet, outer->vlan, outer->priority);
  }
}

}  // namespace

void assign_vlan(Passage& frame) {
  const Packet& packet = frame.packet;
  if (packet.vlan() == 0) return give_vlan(frame);
  if (frame.observer != nullptr && !virtual_port_of(frame.chip, packet)) tell_untranslated(frame);
  if (frame.chip.vlan_controls.translates(packet.port, VlanControlOfPort::translate_ingress)) translate(frame);
}

}  // namespace chip
