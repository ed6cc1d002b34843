#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

Drop apply_egress_rules(Passage& frame, const Copy& copy, const EgressHeader& header) {
  FieldProcessor& rules = frame.chip.field_processor;
  FrameFields fields = frame.packet.fields;
  fields.out_port = copy.port;
  fields.source_mac = header.source;
  fields.destination_mac = header.destination;
  fields.outer_tag = header.outer_tag.value_or(0);
  fields.inner_tag = header.inner_tag.value_or(0);
  const bool outer_tagged = frame.packet.outer_tagged || header.routed;  // a routed copy has the interface's tag
  fields.vlan_format = (outer_tagged ? 1 : 0) | (header.inner_tag ? 2 : 0);
  if (header.routed) --fields.ttl;
  const FieldVerdict verdict = rules.classify(FieldStage::egress, fields, frame.packet.frames());
  for (const auto& [group, entry] : verdict.hits) frame.by(decider::FieldRules{entry});
  const bool red = is_red(frame, verdict, frame.packet.bytes.size());
  if (verdict.dropped) return Drop::egress_field_rule;
  return red && verdict.red_dropped ? Drop::egress_policer : Drop::none;
}

}  // namespace chip
