#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Whether the copy may leave in its VLAN.
bool lets_out(const Chip& chip, const Copy& copy, int id) {
  const auto vlan = chip.vlans.all().find(id);
  if (vlan == chip.vlans.all().end()) return false;
  const bool is_member = copy.virtual_port != 0 ? vlan->second.virtual_members.contains(copy.virtual_port)
                                                : vlan->second.members.contains(copy.port);
  const bool checks = (chip.port_filters.membership_checks(copy.port) & PortFilters::check_egress) != 0;
  if (checks && !is_member) return false;
  StpState state = StpState::forward;
  chip.spanning_trees.state(vlan->second.spanning_tree, copy.port, state);
  return state == StpState::forward;
}

EgressHeader header_of(const Packet& packet) {
  return {.destination = packet.fields.destination_mac,
          .source = packet.fields.source_mac,
          .outer_tag = packet.fields.outer_tag,
          .inner_tag = packet.inner_tagged ? std::optional(packet.fields.inner_tag) : std::nullopt};
}

}  // namespace

void send_copy(Passage& frame, const Copy& copy, Wire& wire) {
  Chip& chip = frame.chip;
  EgressHeader header = header_of(frame.packet);
  if (copy.l3_interface != 0 && !rewrite_routed(frame, copy, header)) return;
  if (!lets_out(chip, copy, header.vlan())) return;
  if (copy.port == Ports::cpu) {
    frame.cpu_reasons |= cpu_reason::destination;
    return;
  }
  const PortMac& mac = chip.port_macs.all().at(copy.port);
  if (!mac.link()) return;
  if (!apply_egress_rules(frame, copy, header)) return;
  make_egress_tags(frame, copy, header);

  EgressFrame out;
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  if (!mac.takes(bytes.size(), header.outer_tag.has_value())) return;
  if (!is_within_shape(frame, copy.port, bytes.size())) return;
  mirror_egress(frame, copy.port, bytes, wire);
  wire.transmit(copy.port, bytes);
}

void send_to_cpu(Passage& frame, Wire& wire) {
  EgressFrame out;
  const std::span<const uint8_t> bytes = out.write(header_of(frame.packet), frame.packet);
  if (is_within_shape(frame, Ports::cpu, bytes.size())) wire.deliver({bytes, frame.packet.port, frame.cpu_reasons});
}

}  // namespace chip
