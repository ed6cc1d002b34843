#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Why the copy may not leave in its VLAN, or none.
Drop why_not_in_vlan(const Passage& frame, const Copy& copy, int id) {
  const Chip& chip = frame.chip;
  const Vlan* const vlan = chip.vlans.find(id);
  if (vlan == nullptr) return Drop::egress_no_vlan;
  const VirtualPortId* const virtual_port = std::get_if<VirtualPortId>(&copy.place);
  const bool is_member =
      virtual_port == nullptr ? vlan->members.contains(copy.port) : vlan->virtual_members.contains(*virtual_port);
  const bool checks = (chip.port_filters.membership_checks(copy.port) & PortFilters::check_egress) != 0;
  frame.by(decider::OfVlan{id});
  if (checks && !is_member) {
    frame.by(decider::MembershipChecks{copy.port});
    return Drop::egress_not_member;
  }
  if (chip.spanning_trees.forwards(vlan->spanning_tree, copy.port)) return Drop::none;
  frame.by(decider::SpanningTreeState{vlan->spanning_tree, copy.port});
  return Drop::egress_spanning_tree;
}

EgressHeader header_of(const Packet& packet) {
  return {.destination = packet.fields.destination_mac,
          .source = packet.fields.source_mac,
          .outer_tag = packet.fields.outer_tag,
          .inner_tag = packet.inner_tagged ? std::optional(packet.fields.inner_tag) : std::nullopt};
}

}  // namespace

Drop send_copy(Passage& frame, const Copy& copy, Wire& wire) {
  if (frame.observer != nullptr) [[unlikely]]
    frame.observer->sends(copy.port, frame);
  Chip& chip = frame.chip;
  EgressHeader header = header_of(frame.packet);
  if (copy.l3_interface)
    if (const Drop reason = rewrite_routed(frame, copy, header); reason != Drop::none) return reason;
  if (const Drop reason = why_not_in_vlan(frame, copy, header.vlan()); reason != Drop::none) return reason;
  if (copy.port == Ports::cpu) {
    frame.cpu_reasons |= cpu_reason::destination;
    return Drop::none;
  }
  const PortMac* const mac = chip.port_macs.find(copy.port);
  if (mac == nullptr || !mac->link()) {
    frame.by(decider::Link{copy.port});
    return Drop::egress_port_down;
  }
  if (!chip.field_processor.is_idle(FieldStage::egress))
    if (const Drop reason = apply_egress_rules(frame, copy, header); reason != Drop::none) return reason;
  make_egress_tags(frame, copy, header);

  EgressFrame out;
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  if (const Drop reason = why_not_out(frame, copy.port, header, bytes); reason != Drop::none) return reason;
  count_sent_ip(chip.counters, copy.port, frame.packet, header.routed);
  mirror_egress(frame, copy.port, header, bytes, wire);
  leave(frame, copy.port, header, bytes, wire);
  return Drop::none;
}

void lose_copy(Passage& frame, const Place& to, Drop reason) {
  if (frame.observer != nullptr) frame.observer->lost(to, reason);
  const Port* const at = std::get_if<Port>(&to);
  const Port port = at != nullptr ? *at : frame.packet.port;
  if (!frame.chip.ports.has(port)) return;
  count_not_sent(frame.chip.counters, port, reason);
  ++frame.chip.drops[port][static_cast<std::size_t>(reason)];
}

Drop why_not_out(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes) {
  if (!frame.chip.port_macs.of(port).takes(bytes.size(), header.outer_tag.has_value())) {
    frame.by(decider::FrameMax{port});
    return Drop::egress_too_long;
  }
  return is_within_shape(frame, port, bytes.size()) ? Drop::none : Drop::egress_rate;
}

void leave(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire) {
  count_sent(frame.chip.counters, port, header, bytes.size());
  if (frame.chip.port_macs.of(port).loopback == Loopback::none) return wire.transmit(port, bytes);
  if (frame.observer != nullptr) frame.observer->comes_back(port);
  frame.looped.push_back({port, {bytes.begin(), bytes.end()}});
}

Drop send_to_cpu(Passage& frame, Wire& wire) {
  EgressFrame out;
  const EgressHeader header = header_of(frame.packet);
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  if (!is_within_shape(frame, Ports::cpu, bytes.size())) {
    lose_copy(frame, Ports::cpu, Drop::egress_rate);
    return Drop::egress_rate;
  }
  count_sent(frame.chip.counters, Ports::cpu, header, bytes.size());
  wire.deliver({bytes, frame.packet.port, frame.cpu_reasons});
  return Drop::none;
}

}  // namespace chip
