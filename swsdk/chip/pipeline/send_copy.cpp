#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Whether the copy may leave in its VLAN.
bool is_in_vlan(const Chip& chip, const Copy& copy, int id) {
  const Vlan* const vlan = chip.vlans.find(id);
  if (vlan == nullptr) return false;
  const VirtualPortId* const virtual_port = std::get_if<VirtualPortId>(&copy.place);
  const bool is_member =
      virtual_port == nullptr ? vlan->members.contains(copy.port) : vlan->virtual_members.contains(*virtual_port);
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
  if (copy.l3_interface && !rewrite_routed(frame, copy, header)) return;
  if (!is_in_vlan(chip, copy, header.vlan())) return;
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
  if (!lets_out(frame, copy.port, header, bytes)) return;
  count_sent_ip(chip.counters, copy.port, frame.packet, header.routed);
  mirror_egress(frame, copy.port, header, bytes, wire);
  leave(frame, copy.port, header, bytes, wire);
}

bool lets_out(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes) {
  const auto refuse = [&](NotSent reason) {
    count_not_sent(frame.chip.counters, port, reason);
    return false;
  };
  if (!frame.chip.port_macs.of(port).takes(bytes.size(), header.outer_tag.has_value()))
    return refuse(NotSent::too_long);
  return is_within_shape(frame, port, bytes.size()) || refuse(NotSent::rate);
}

void leave(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire) {
  count_sent(frame.chip.counters, port, header, bytes.size());
  if (frame.chip.port_macs.of(port).loopback == Loopback::none)
    wire.transmit(port, bytes);
  else
    frame.looped.push_back({port, {bytes.begin(), bytes.end()}});
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
