// The chip's tables for people.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "chip/chip.h"

namespace api {

/// The table of that name, or nothing when there is none.
std::optional<std::string> show(const chip::Chip& chip, std::string_view table);

std::string show_field(const chip::Chip& chip);

}  // namespace api
