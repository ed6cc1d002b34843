#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

/// A rule that permits a frame does not override VLAN membership, spanning tree, the check of the source address or a
/// trap to the CPU.
bool can_be_cancelled(Drop drop) {
  return drop != Drop::group_source && drop != Drop::no_vlan && drop != Drop::not_member &&
         drop != Drop::spanning_tree && drop != Drop::trapped;
}

void set_priority(Packet& packet, int priority) {
  constexpr uint16_t without_priority = (1U << priority_shift) - 1;
  packet.priority = priority;
  packet.fields.outer_tag =
      static_cast<uint16_t>((packet.fields.outer_tag & without_priority) | priority << priority_shift);
}

}  // namespace

void apply_ingress_rules(Passage& frame) {
  FieldProcessor& rules = frame.chip.field_processor;
  if (rules.is_idle(FieldStage::ingress)) return;
  frame.verdict = rules.classify(FieldStage::ingress, frame.packet.fields, frame.packet.frames());
  const FieldVerdict& verdict = frame.verdict;
  for (const auto& [group, entry] : verdict.hits) frame.by(decider::FieldRules{entry});
  if (verdict.priority) set_priority(frame.packet, *verdict.priority);
  if (verdict.copied_to_cpu) frame.cpu_reasons |= cpu_reason::field_rule;
  if (verdict.drop_cancelled && can_be_cancelled(frame.drop())) frame.release();
  if (verdict.dropped) frame.stop(Drop::field_rule);
  if (verdict.redirect_port == Ports::cpu && !frame.dropped()) frame.trap(cpu_reason::field_rule);
  // A red frame does not reach the CPU either.
  if (is_red(frame, verdict, frame.packet.bytes.size()) && verdict.red_dropped) frame.lose(Drop::policer);
}

}  // namespace chip
