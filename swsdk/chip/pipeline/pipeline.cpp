#include "chip/pipeline/pipeline.h"

#include <utility>

#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/parse.h"
#include "chip/pipeline/stages.h"

namespace chip {

Drop Pipeline::receive(Port port, std::span<const uint8_t> bytes, Wire& wire) {
  const Drop drop = pass(port, bytes, wire);
  // A flooded frame in a loop would circulate forever.
  constexpr int max_rounds = 16;
  for (int i = 0; i < max_rounds && !looped_.empty(); ++i) {
    const Looped next = std::move(looped_.front());
    looped_.erase(looped_.begin());
    pass(next.port, next.bytes, wire);
  }
  looped_.clear();
  return drop;
}

Drop Pipeline::pass(Port port, std::span<const uint8_t> bytes, Wire& wire) {
  copies_.clear();
  Passage frame(chip_, meters_, copies_, looped_);
  const bool has_header = parse(port, bytes, frame.packet);
  admit(frame);
  if (!has_header) frame.stop(Drop::malformed);
  if (!frame.dropped()) {
    mirror_ingress(frame, wire);
    for (const auto stage : {check_source, assign_vlan, check_membership, trap, learn_source, apply_ingress_rules,
                             forward, control_storms})
      stage(frame);
    for (const Copy& copy : copies_) send_copy(frame, copy, wire);
    if (frame.cpu_reasons != 0) send_to_cpu(frame, wire);
  }
  const Drop drop = frame.drop();
  if (drop != Drop::port_down) count_received(chip_.counters, frame.packet);
  count_discarded(chip_.counters, frame.packet, drop);
  if (frame.dropped()) ++drops_[static_cast<std::size_t>(drop)];
  return drop;
}

}  // namespace chip
