#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

bool apply_egress_rules(Passage& frame, const Copy& copy, const EgressHeader& header) {
  FrameFields fields = frame.packet.fields;
  fields.out_port = copy.port;
  fields.source_mac = header.source;
  fields.destination_mac = header.destination;
  fields.outer_tag = header.outer_tag.value_or(0);
  fields.inner_tag = header.inner_tag.value_or(0);
  return !frame.chip.field_processor.classify(FieldStage::egress, fields).dropped;
}

}  // namespace chip
