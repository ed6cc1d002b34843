#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Whether the copy may leave in its VLAN.
bool lets_out(const Chip& chip, const Copy& copy, int id) {
  const Vlan* const vlan = chip.vlans.find(id);
  if (vlan == nullptr) return false;
  const bool is_member =
      copy.virtual_port != 0 ? vlan->virtual_members.contains(copy.virtual_port) : vlan->members.contains(copy.port);
  const bool checks = (chip.port_filters.membership_checks(copy.port) & PortFilters::check_egress) != 0;
  if (checks && !is_member) return false;
  return chip.spanning_trees.forwards(vlan->spanning_tree, copy.port);
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
  const PortMac* const mac = chip.port_macs.find(copy.port);
  if (mac == nullptr || !mac->link()) return;
  if (!apply_egress_rules(frame, copy, header)) return;
  make_egress_tags(frame, copy, header);

  EgressFrame out;
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  if (!mac->takes(bytes.size(), header.outer_tag.has_value()))
    return count_not_sent(chip.counters, copy.port, NotSent::too_long);
  if (!is_within_shape(frame, copy.port, bytes.size())) return count_not_sent(chip.counters, copy.port, NotSent::rate);
  count_sent(chip.counters, copy.port, header, bytes.size());
  count_sent_ip(chip.counters, copy.port, frame.packet, header.routed);
  mirror_egress(frame, copy.port, header, bytes, wire);
  if (mac->loopback == Loopback::none)
    wire.transmit(copy.port, bytes);
  else
    frame.looped.push_back({copy.port, {bytes.begin(), bytes.end()}});
}

void send_to_cpu(Passage& frame, Wire& wire) {
  EgressFrame out;
  const EgressHeader header = header_of(frame.packet);
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  if (!is_within_shape(frame, Ports::cpu, bytes.size()))
    return count_not_sent(frame.chip.counters, Ports::cpu, NotSent::rate);
  count_sent(frame.chip.counters, Ports::cpu, header, bytes.size());
  wire.deliver({bytes, frame.packet.port, frame.cpu_reasons});
}

}  // namespace chip
