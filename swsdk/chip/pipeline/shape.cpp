#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

bool is_within_shape(Passage&, int, std::size_t) { return true; }

}  // namespace chip
