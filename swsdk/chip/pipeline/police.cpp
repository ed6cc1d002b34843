#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

bool take(Passage& frame, Meters::Kind kind, int policer, const Meter& meter, uint64_t bits) {
  constexpr uint64_t kilo = 1000;
  return frame.chip.meters.take(kind, policer, frame.chip.now, meter.kilobits_per_second * kilo,
                                meter.burst_kilobits * kilo + meter.burst_bits, bits);
}

}  // namespace

bool is_red(Passage& frame, const FieldVerdict& verdict, std::size_t length) {
  bool red = false;
  for (const int id : verdict.policers) {
    const Policer* const policer = frame.chip.policers.find(id);
    // Other modes are not metered.
    if (policer == nullptr || policer->mode != Policers::two_rates_three_colors) continue;
    frame.by(decider::OfPolicer{id});
    // Later stages treat yellow as green, but only green frames consume the committed rate.
    const uint64_t bits = bits_of(length);
    if (!take(frame, Meters::Kind::peak, id, policer->peak, bits))
      red = true;
    else
      take(frame, Meters::Kind::committed, id, policer->committed, bits);
  }
  return red;
}

}  // namespace chip
