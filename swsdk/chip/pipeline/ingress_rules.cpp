#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void apply_ingress_rules(Passage& frame) {
  frame.verdict = frame.chip.field_processor.classify(FieldStage::ingress, frame.packet.fields);
  const FieldVerdict& verdict = frame.verdict;
  if (verdict.copied_to_cpu) frame.cpu_reasons |= cpu_reason::field_rule;
  if (verdict.priority) frame.packet.priority = *verdict.priority;
  if (verdict.drop_cancelled) frame.drop = Drop::none;
  if (verdict.dropped) frame.stop(Drop::field_rule);
}

}  // namespace chip
