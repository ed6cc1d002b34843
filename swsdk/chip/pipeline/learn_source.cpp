#include "chip/chip.h"
#include "chip/pipeline/learning.h"
#include "chip/pipeline/stages.h"

namespace chip {

void learn_source(Passage& frame) {
  Chip& chip = frame.chip;
  const Packet& packet = frame.packet;
  // Learning goes on for frames dropped by the state "learning" and for trapped ones.
  if (frame.dropped() && frame.drop() != Drop::spanning_tree && frame.drop() != Drop::trapped) return;
  const Source source{packet.fields.source_mac, static_cast<uint16_t>(packet.vlan()), packet.source};

  const MacEntry* const before = chip.mac_table.find(source.vlan, source.mac);
  if (before != nullptr) frame.by(decider::OfMac{before});
  if (before != nullptr && before->is(MacEntry::discard_source)) return frame.stop(Drop::source_discard);
  const Learned learned = learn(chip, source, before);
  if (frame.dropped()) return;
  if (learned == Learned::limited) {
    if (frame.observer != nullptr)
      for (const MacScope& scope : limits_exceeded(chip, source)) frame.by(decider::OfLearnLimit{scope});
    const uint32_t actions = actions_beyond_limit(chip, source);
    if ((actions & LearnLimit::to_cpu) != 0) frame.cpu_reasons |= cpu_reason::learning;
    if ((actions & LearnLimit::drop) != 0) frame.stop(Drop::learn_limit);
  }
  if (before != nullptr) return;
  const uint32_t unknown = chip.port_forwarding.of(packet.port).learning;
  if ((unknown & (PortForwardings::to_cpu | PortForwardings::forward)) != PortForwardings::forward)
    frame.by(decider::UnknownSources{packet.port});
  if ((unknown & PortForwardings::to_cpu) != 0) frame.cpu_reasons |= cpu_reason::learning;
  if ((unknown & PortForwardings::forward) == 0) frame.stop(Drop::unknown_source);
}

}  // namespace chip
