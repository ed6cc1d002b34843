#include "chip/chip.h"
#include "chip/learning.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// What kind of flood a frame without a known destination is.
uint32_t flood_kind(const Packet& packet) {
  if (packet.is_broadcast()) return PortFilters::broadcast;
  return packet.is_multicast() ? PortFilters::unknown_multicast : PortFilters::unknown_unicast;
}

void flood(Passage& frame, const Vlan& vlan) {
  const Packet& packet = frame.packet;
  const uint32_t kind = flood_kind(packet);
  for (int port = 0; port <= vlan.members.highest(); ++port)
    if (vlan.members.contains(port) && port != packet.port &&
        (frame.chip.port_filters.blocked_floods(packet.port, port) & kind) == 0)
      frame.copies.push_back({.port = port});
}

}  // namespace

void bridge(Passage& frame) {
  const Packet& packet = frame.packet;
  if (const MacEntry* const entry = look_up(frame.chip, packet.vlan(), packet.fields.destination_mac)) {
    if (entry->is(MacEntry::copy_to_cpu)) frame.cpu_reasons |= cpu_reason::mac_entry;
    if (entry->is(MacEntry::discard_destination)) return frame.stop(Drop::discard);
    if (entry->port != packet.port) frame.copies.push_back({.port = entry->port});
    return;
  }
  const auto vlan = frame.chip.vlans.all().find(packet.vlan());
  if (vlan != frame.chip.vlans.all().end()) flood(frame, vlan->second);
}

}  // namespace chip
