// The chip's tables for people.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "api/columns.h"
#include "chip/chip.h"

namespace api {

/// The table of that name, or nothing when there is none.
std::optional<Rows> table_rows(const chip::Chip& chip, std::string_view table);
/// The name of a table by its number, from 0; null past the last.
const char* shown_table(std::size_t index);

Rows show_field(const chip::Chip& chip);

}  // namespace api
