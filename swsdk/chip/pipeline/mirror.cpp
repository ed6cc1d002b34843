#include <algorithm>
#include <array>

#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

void mirror(Passage& frame, Port port, uint32_t direction, const EgressHeader& header, std::span<const uint8_t> bytes,
            Wire& wire) {
  const Mirrors& mirrors = frame.chip.mirrors;
  for (const auto& [source, flags] : mirrors.sources()) {
    const auto& [mirrored, destination] = source;
    if (mirrored != port || (flags & direction) == 0) continue;
    frame.by(decider::Mirror{port, destination});
    const Port to = std::get<Port>(*mirrors.find(destination));
    const PortMac* const mac = frame.chip.port_macs.find(to);
    if (mac == nullptr || !mac->link())
      lose_copy(frame, to, Drop::egress_port_down);
    else if (const Drop reason = why_not_out(frame, to, header, bytes); reason != Drop::none)
      lose_copy(frame, to, reason);
    else
      leave(frame, to, header, bytes, wire);
  }
}

}  // namespace

void mirror_ingress(Passage& frame, Wire& wire) {
  if (frame.chip.mirrors.mode() == Mirrors::Mode::off) return;
  const Packet& packet = frame.packet;
  EgressHeader header;
  header.destination = packet.fields.destination_mac;
  header.source = packet.fields.source_mac;
  if (packet.outer_tagged) header.outer_tag = packet.fields.outer_tag;
  if (packet.inner_tagged) header.inner_tag = packet.fields.inner_tag;
  std::array<uint8_t, EgressFrame::min_size> padded{};
  const bool is_short = packet.bytes.size() < padded.size();
  if (is_short) std::copy(packet.bytes.begin(), packet.bytes.end(), padded.begin());
  mirror(frame, packet.port, Mirrors::ingress, header, is_short ? padded : packet.bytes, wire);
}

void mirror_egress(Passage& frame, Port port, const EgressHeader& header, std::span<const uint8_t> bytes, Wire& wire) {
  if (frame.chip.mirrors.mode() == Mirrors::Mode::off) return;
  mirror(frame, port, Mirrors::egress, header, bytes, wire);
}

}  // namespace chip
