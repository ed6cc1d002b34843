#include "api/chosen_id.h"

#include <algorithm>
#include <iterator>

#include "api/calls/parse.h"
#include "api/gports.h"

namespace {

/// A function that creates something, and where it writes the id: to an argument, or to a field of one.
struct Choice {
  std::string_view function;
  std::size_t argument;
  std::string_view field = {};
};

constexpr Choice choices[] = {
    {"bcm_field_entry_create", 2},
    {"bcm_field_group_create", 3},
    {"bcm_knet_netif_create", 1, "id"},
    {"bcm_l2_cache_set", 3},
    {"bcm_l3_egress_create", 3},
    {"bcm_l3_intf_create", 1, "l3a_intf_id"},
    {"bcm_multicast_create", 2},
    {"bcm_policer_create", 2},
    {"bcm_trunk_create", 2},
    {"bcm_vlan_port_create", 1, "vlan_port_id"},
};

}  // namespace

std::optional<int> api::chosen_slot(const RecordedLine& line) {
  const auto* const choice = std::ranges::find(choices, line.name, &Choice::function);
  if (choice == std::end(choices) || line.result < 0 || choice->argument >= line.arguments.size()) return std::nullopt;
  std::string_view value = value_after(line.arguments[choice->argument]);
  if (!choice->field.empty()) value = field_value(value, choice->field);
  if (value.empty() || value == "NULL") return std::nullopt;
  const int id = static_cast<int>(parsed_number(value));
  return gport::kind(id) == gport::virtual_port ? gport::number(id) : id;
}
