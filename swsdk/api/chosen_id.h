// The ids that a chip chose in a recording, so that the chip of a replay chooses the same.
#pragma once

#include <optional>

#include "api/recording_lines.h"

namespace api {

/// The slot of what a recorded call created under an id of the chip's choice; nothing when it did not.
std::optional<int> chosen_slot(const RecordedLine& line);

}  // namespace api
