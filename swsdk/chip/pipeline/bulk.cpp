#include "chip/pipeline/bulk.h"

#include "chip/chip.h"
#include "chip/pipeline/learning.h"

namespace chip {

bool must_be_cut_at(const Chip& chip, Port port, const Segments& segments) {
  const PortMac* const own = chip.port_macs.find(port);
  if (own == nullptr || !own->takes(segments.frame_size(), false) || chip.port_rates.ingress()[port].is_limit())
    return true;
  // Where a frame goes, and whether it meets an entry with a policer, is not known yet.
  for (const auto& [other, mac] : chip.port_macs.all())
    if (mac.loopback != Loopback::none) return true;
  return chip.mirrors.mode() != Mirrors::Mode::off || chip.policers.any_attached();
}

bool is_bulk(const Passage& frame) {
  const Packet& packet = frame.packet;
  if (frame.dropped() || frame.cpu_reasons != 0) return false;
  // A known destination is no storm.
  const bool can_be_storm =
      packet.is_multicast() || !frame.chip.mac_table.find(packet.vlan(), packet.fields.destination_mac);
  if (can_be_storm && !frame.chip.storm_rates.empty()) return false;
  return is_known(frame.chip, {packet.fields.source_mac, static_cast<uint16_t>(packet.vlan()), packet.source});
}

}  // namespace chip
