// What calls have left on the chip and nothing uses.
#pragma once

#include <vector>

#include "api/entries.h"

namespace api {

/// Table by table, each with the call that made it what it is.
std::vector<Entry> leftovers(const chip::Chip& chip);

}  // namespace api
