#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

void mirror(Passage& frame, int port, uint32_t direction, std::span<const uint8_t> bytes, Wire& wire) {
  const Mirrors& mirrors = frame.chip.mirrors;
  if (mirrors.mode() == Mirrors::Mode::off) return;
  for (const auto& [source, flags] : mirrors.sources()) {
    const auto& [mirrored, destination] = source;
    int gport = 0;
    if (mirrored == port && (flags & direction) != 0 && mirrors.find(destination, gport) == Status::ok)
      wire.transmit(gport::port_of(gport), bytes);
  }
}

}  // namespace

void mirror_ingress(Passage& frame, Wire& wire) {
  mirror(frame, frame.packet.port, Mirrors::ingress, frame.packet.bytes, wire);
}

void mirror_egress(Passage& frame, int port, std::span<const uint8_t> bytes, Wire& wire) {
  mirror(frame, port, Mirrors::egress, bytes, wire);
}

}  // namespace chip
