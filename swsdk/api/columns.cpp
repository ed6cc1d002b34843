#include "api/columns.h"

#include <algorithm>
#include <cstddef>

#include "api/calls/arguments.h"

std::string api::columns(const Rows& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const Row& row : rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  std::string result;
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      result += row[i];
      if (i + 1 < row.size()) result.append(widths[i] - row[i].size() + 2, ' ');
    }
    result += '\n';
  }
  return result;
}

std::string api::flag_names(uint32_t flags, std::initializer_list<std::pair<uint32_t, const char*>> names) {
  std::string result;
  for (const auto& [flag, name] : names) {
    if (!(flags & flag)) continue;
    if (!result.empty()) result += ',';
    result += name;
  }
  return result.empty() ? "-" : result;
}

std::string api::mac_text(const chip::Mac& mac) { return text(Mac{mac.data()}); }

std::string api::place_text(const chip::Place& place) {
  const char* const kind = is_trunk(place) ? "trunk " : is_virtual(place) ? "virtual port " : "";
  return kind + std::visit([](auto id) { return std::to_string(id.number()); }, place);
}
