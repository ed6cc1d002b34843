#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

bool route_multicast(Passage&) { return false; }

}  // namespace chip
