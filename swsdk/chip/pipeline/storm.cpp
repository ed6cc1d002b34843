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
  const StormRates& rates = frame.chip.storm_rates;
  if (rates.empty()) return;
  // Frames trapped by rules count, but control protocol frames are never limited.
  if ((frame.dropped() && frame.drop() != Drop::trapped) || (frame.cpu_reasons & cpu_reason::l2_cache) != 0) return;
  const Storm storm = storm_of(frame);
  const Setting<int>* const rate = rates.find({frame.packet.port, storm.kind});
  if (rate == nullptr) return;
  frame.by(decider::StormRate{frame.packet.port, storm.kind});
  // The burst is one second's worth.
  const auto packets = static_cast<uint64_t>(rate->value);
  if (frame.chip.meters.take(storm.meter, frame.packet.port.number(), frame.chip.now, packets, packets, 1)) return;
  frame.lose(Drop::storm);  // for the CPU too
}

}  // namespace chip
