// The chip's tables for people.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "chip/chip.h"

namespace api {

/// The table of that name, or nothing when there is none.
std::optional<std::string> show(const chip::Chip& chip, std::string_view table);
/// The name of a table by its number, from 0; null past the last.
const char* shown_table(std::size_t index);

std::string show_field(const chip::Chip& chip);

}  // namespace api
