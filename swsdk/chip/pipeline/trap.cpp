#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

bool matches(const L2CacheEntry& entry, const Packet& packet) {
  for (std::size_t i = 0; i < entry.mac.size(); ++i)
    if (((entry.mac[i] ^ packet.fields.destination_mac[i]) & entry.mac_mask[i]) != 0) return false;
  return ((entry.vlan ^ packet.vlan()) & entry.vlan_mask) == 0 &&
         ((entry.source_port ^ packet.port) & entry.source_port_mask) == 0;
}

}  // namespace

void trap(Passage& frame) {
  for (const auto& [index, entry] : frame.chip.l2_cache.all())
    if (matches(entry, frame.packet)) {
      // The destination of such an entry takes the place of all others; the library's entries leave it at the CPU.
      frame.cpu_reasons |= cpu_reason::l2_cache;
      return frame.stop(Drop::trapped);
    }
}

}  // namespace chip
