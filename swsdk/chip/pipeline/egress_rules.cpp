#include "chip/chip.h"
#include "chip/pipeline/counting.h"
#include "chip/pipeline/stages.h"

namespace chip {

bool apply_egress_rules(Passage& frame, const Copy& copy, const EgressHeader& header) {
  FieldProcessor& rules = frame.chip.field_processor;
  if (rules.is_idle(FieldStage::egress)) return true;
  FrameFields fields = frame.packet.fields;
  fields.out_port = copy.port;
  fields.source_mac = header.source;
  fields.destination_mac = header.destination;
  fields.outer_tag = header.outer_tag.value_or(0);
  fields.inner_tag = header.inner_tag.value_or(0);
  const bool outer_tagged = frame.packet.outer_tagged || header.routed;  // a routed copy has the interface's tag
  fields.vlan_format = (outer_tagged ? 1 : 0) | (header.inner_tag ? 2 : 0);
  if (header.routed) --fields.ttl;
  const FieldVerdict verdict = rules.classify(FieldStage::egress, fields);
  const bool red = is_red(frame, verdict, frame.packet.bytes.size());
  const bool passes = !verdict.dropped && !(red && verdict.red_dropped);
  if (!passes) count_not_sent(frame.chip.counters, copy.port, NotSent::field_rule);
  return passes;
}

}  // namespace chip
