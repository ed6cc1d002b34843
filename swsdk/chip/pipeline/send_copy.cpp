#include <algorithm>

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

/// How the bytes that leave are cut, which have other tags than those that came in.
Segments segments_of(const Packet& packet, std::span<const uint8_t> bytes) {
  Segments result = packet.segments;
  if (result.is_aggregate()) result.move(static_cast<int>(bytes.size()) - static_cast<int>(packet.bytes.size()));
  return result;
}

/// Calls `take` with each frame of an aggregate, or with the only one. False when it cannot be cut.
template <class Take>
bool for_each_frame(const Segments& segments, std::span<const uint8_t> bytes, Take take) {
  if (!segments.is_aggregate()) {
    take(bytes);
    return true;
  }
  Cutter cutter;
  const auto frames = cutter.cut(bytes, segments);
  std::for_each(frames.begin(), frames.end(), take);
  return !frames.empty();
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
  if (frame.packet.segments.is_aggregate()) return send_bulk(frame, copy.port, header, bytes, wire);
  if (const Drop reason = why_not_out(frame, copy.port, header, bytes); reason != Drop::none) return reason;
  count_sent_ip(chip.counters, copy.port, frame.packet, header.routed, 1);
  mirror_egress(frame, copy.port, header, bytes, wire);
  leave(frame, copy.port, header, bytes, wire);
  return Drop::none;
}

void lose_copy(Passage& frame, const Place& to, Drop reason) { lose_frames(frame, to, reason, frame.packet.frames()); }

void lose_frames(Passage& frame, const Place& to, Drop reason, std::size_t frames) {
  if (frame.observer != nullptr) frame.observer->lost(to, reason);
  const Port* const at = std::get_if<Port>(&to);
  const Port port = at != nullptr ? *at : frame.packet.port;
  if (!frame.chip.ports.has(port)) return;
  count_not_sent(frame.chip.counters, port, reason, frames);
  frame.chip.drops[port][static_cast<std::size_t>(reason)] += frames;
}

Drop why_not_out(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes) {
  if (!frame.chip.port_macs.of(port).takes(bytes.size(), header.outer_tag.has_value())) {
    frame.by(decider::FrameMax{port});
    return Drop::egress_too_long;
  }
  return is_within_shape(frame, port, bytes.size()) ? Drop::none : Drop::egress_rate;
}

void leave(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire) {
  count_sent(frame.chip.counters, port, header, bytes.size(), 1);
  if (frame.chip.port_macs.of(port).loopback == Loopback::none) return wire.transmit(port, bytes);
  if (frame.observer != nullptr) frame.observer->comes_back(port);
  frame.looped.push_back({port, {bytes.begin(), bytes.end()}});
}

Drop send_bulk(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire) {
  const PortMac& mac = frame.chip.port_macs.of(port);
  const Segments segments = segments_of(frame.packet, bytes);
  const bool leaves_whole = mac.takes(segments.frame_size(), header.outer_tag.has_value()) &&
                            mac.loopback == Loopback::none && !frame.chip.port_rates.egress()[port].is_limit();
  if (leaves_whole) {
    count_sent_ip(frame.chip.counters, port, frame.packet, header.routed, frame.packet.frames());
    for_each_length(segments, bytes.size(), [&](std::size_t length, std::size_t frames) {
      count_sent(frame.chip.counters, port, header, length, frames);
    });
    wire.transmit_whole(port, bytes, segments);
    return Drop::none;
  }
  const bool is_cut = for_each_frame(segments, bytes, [&](std::span<const uint8_t> one) {
    if (const Drop reason = why_not_out(frame, port, header, one); reason != Drop::none)
      return lose_frames(frame, port, reason, 1);
    count_sent_ip(frame.chip.counters, port, frame.packet, header.routed, 1);
    leave(frame, port, header, one, wire);
  });
  return is_cut ? Drop::none : Drop::malformed;
}

Drop send_to_cpu(Passage& frame, Wire& wire) {
  EgressFrame out;
  const EgressHeader header = header_of(frame.packet);
  const std::span<const uint8_t> bytes = out.write(header, frame.packet);
  Drop outcome = Drop::none;
  for_each_frame(segments_of(frame.packet, bytes), bytes, [&](std::span<const uint8_t> one) {
    if (!is_within_shape(frame, Ports::cpu, one.size())) {
      outcome = Drop::egress_rate;
      return lose_frames(frame, Ports::cpu, outcome, 1);
    }
    count_sent(frame.chip.counters, Ports::cpu, header, one.size(), 1);
    wire.deliver({one, frame.packet.port, frame.cpu_reasons});
  });
  return outcome;
}

}  // namespace chip
