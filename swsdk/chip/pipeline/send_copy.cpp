#include "chip/chip.h"
#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// Whether the port forwards frames of the VLAN.
bool lets_out(const Chip& chip, const Vlan& vlan, int port) {
  const bool checks = (chip.port_filters.membership_checks(port) & PortFilters::check_egress) != 0;
  if (checks && !vlan.members.contains(port)) return false;
  StpState state = StpState::forward;
  chip.spanning_trees.state(vlan.spanning_tree, port, state);
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
  const auto vlan = chip.vlans.all().find(frame.packet.vlan());
  if (vlan == chip.vlans.all().end() || !lets_out(chip, vlan->second, copy.port)) return;
  if (copy.port == Ports::cpu) {
    frame.cpu_reasons |= cpu_reason::destination;
    return;
  }
  if (!chip.port_macs.all().at(copy.port).link()) return;

  EgressHeader header = header_of(frame.packet);
  if (vlan->second.untagged.contains(copy.port)) header.outer_tag.reset();
  EgressFrame out;
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  mirror_egress(frame, copy.port, bytes, wire);
  wire.transmit(copy.port, bytes);
}

void send_to_cpu(Passage& frame, Wire& wire) {
  EgressFrame out;
  wire.deliver({out.write(header_of(frame.packet), frame.packet), frame.packet.port, frame.cpu_reasons});
}

}  // namespace chip
