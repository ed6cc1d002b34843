#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

struct Storm {
  uint32_t kind;  // of StormRates, or 0
  Meters::Kind meter;
};

Storm storm_of(const Passage& frame) {
  if (frame.packet.is_broadcast()) return {StormRates::broadcast, Meters::Kind::storm_broadcast};
  if (frame.packet.is_multicast()) return {StormRates::multicast, Meters::Kind::storm_multicast};
  return {frame.unknown_destination ? StormRates::unknown_destination : 0, Meters::Kind::storm_unknown};
}

}  // namespace

void control_storms(Passage& frame) {
  const auto& rates = frame.chip.storm_rates.all();
  if (rates.empty()) return;
  // Frames that rules keep for the CPU count, but those of control protocols pass every storm.
  if ((frame.dropped() && frame.drop() != Drop::trapped) || (frame.cpu_reasons & cpu_reason::l2_cache) != 0) return;
  const Storm storm = storm_of(frame);
  const auto rate = rates.find({frame.packet.port, storm.kind});
  if (rate == rates.end()) return;
  // A second's worth may come at once.
  const auto packets = static_cast<uint64_t>(rate->second);
  if (frame.meters.take(storm.meter, frame.packet.port, frame.chip.now, packets, packets, 1)) return;
  frame.lose(Drop::storm);  // nor is the CPU to be flooded
}

}  // namespace chip
