#include "chip/pipeline/stages.h"

namespace chip {

void check_source(Passage& frame) {
  if (is_group(frame.packet.fields.source_mac)) frame.stop(Drop::group_source);
}

}  // namespace chip
