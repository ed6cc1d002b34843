#include "api/show.h"

#include <swsdk/chip.h>

#include <cstddef>
#include <vector>

namespace {

using Row = std::vector<std::string>;

/// The rows with their cells in columns, two blanks apart.
std::string columns(const std::vector<Row>& rows) {
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

std::string flags_text(uint32_t flags) {
  constexpr uint32_t learn_disable = 0x1;
  constexpr uint32_t l2_lookup_disable = 0x80000;
  std::string result;
  const auto add = [&](const char* name) { result += (result.empty() ? "" : ",") + std::string(name); };
  if (flags & learn_disable) add("no-learn");
  if (flags & l2_lookup_disable) add("no-l2-lookup");
  if (const uint32_t rest = flags & ~(learn_disable | l2_lookup_disable)) {
    char number[16];
    std::snprintf(number, sizeof number, "0x%x", rest);
    add(number);
  }
  return result.empty() ? "-" : result;
}

std::string show_vlans(const chip::Chip& chip) {
  std::vector<Row> rows{{"VLAN", "tagged", "untagged", "flags"}};
  for (const auto& [id, vlan] : chip.vlans.all())
    rows.push_back(
        {std::to_string(id), text(vlan.members - vlan.untagged), text(vlan.untagged), flags_text(vlan.control.flags)});
  return columns(rows);
}

std::string show_ports(const chip::Chip& chip) {
  std::vector<Row> rows{{"port", "kind", "tagged in", "untagged in"}};
  for (int port = 0; port <= chip.ports.all().highest(); ++port) {
    std::string tagged;
    std::string untagged;
    for (const auto& [id, vlan] : chip.vlans.all()) {
      if (!vlan.members.contains(port)) continue;
      std::string& list = vlan.untagged.contains(port) ? untagged : tagged;
      list += (list.empty() ? "" : ",") + std::to_string(id);
    }
    rows.push_back({std::to_string(port), chip::Ports::kind(port), tagged.empty() ? "-" : tagged,
                    untagged.empty() ? "-" : untagged});
  }
  return columns(rows);
}

struct Table {
  const char* name;
  std::string (*show)(const chip::Chip& chip);
};

constexpr Table tables[] = {
    {"port", show_ports},
    {"vlan", show_vlans},
};

}  // namespace

std::optional<std::string> api::show(const chip::Chip& chip, std::string_view table) {
  for (const Table& candidate : tables)
    if (table == candidate.name) return candidate.show(chip);
  return std::nullopt;
}

const char* swsdk_show_table(int index) {
  constexpr int count = sizeof tables / sizeof *tables;
  return index >= 0 && index < count ? tables[index].name : nullptr;
}
