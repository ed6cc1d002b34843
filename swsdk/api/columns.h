// Tables as text: rows of cells in columns, and what is in the cells.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "chip/addresses.h"
#include "chip/place.h"

namespace api {

using Row = std::vector<std::string>;
/// A table: its headings, then a row for each entry.
using Rows = std::vector<Row>;

/// The rows with their cells in columns, two blanks apart.
std::string columns(const Rows& rows);

/// The names of the flags that are set, or "-".
std::string flag_names(uint32_t flags, std::initializer_list<std::pair<uint32_t, const char*>> names);

std::string mac_text(const chip::Mac& mac);

/// "trunk 5", "virtual port 7", or the number of a port.
std::string place_text(const chip::Place& place);

}  // namespace api
