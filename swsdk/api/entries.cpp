#include "api/entries.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "api/calls/arguments.h"
#include "api/columns.h"
#include "api/show.h"
#include "api/show_controls.h"
#include "api/show_l2.h"
#include "api/show_l3.h"

namespace {

using chip::Chip;
using chip::Origin;
using std::to_string;
namespace decider = chip::decider;

/// The cells of an entry under their headings, without those that say nothing and what frames change.
std::string cells_text(const api::Row& headings, const api::Row& row) {
  std::string result;
  for (std::size_t i = 0; i < headings.size(); ++i) {
    if (headings[i].starts_with("hit")) continue;
    if (row[i] != "-" && row[i] != "{}") result += (result.empty() ? "" : ", ") + headings[i] + ' ' + row[i];
  }
  return result;
}

/// A row of a table that is not empty by its place, from 0.
std::string row_text(const Chip& chip, const char* table, std::ptrdiff_t index) {
  const api::Rows rows = *api::table_rows(chip, table);
  return std::string(table) + ": " + cells_text(rows.front(), rows.at(static_cast<std::size_t>(index) + 1));
}

/// The only row of a table.
std::string only_row_text(const char* table, const api::Rows& rows) {
  return std::string(table) + ": " + cells_text(rows.front(), rows.back());
}

struct Cell {
  std::size_t column;
  std::string text;
};

/// The rows that have these cells, which are the key of an entry.
std::string rows_with(const Chip& chip, const char* table, const std::vector<Cell>& key) {
  const api::Rows rows = *api::table_rows(chip, table);
  std::string result;
  for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
    const auto has = [&](const Cell& cell) { return (*row)[cell.column] == cell.text; };
    if (std::all_of(key.begin(), key.end(), has))
      result += (result.empty() ? "" : "; ") + cells_text(rows.front(), *row);
  }
  return std::string(table) + ": " + result;
}

std::string row_of_number(const Chip& chip, const char* table, int number) {
  return rows_with(chip, table, {{0, to_string(number)}});
}
std::string row_of_port(const Chip& chip, const char* table, chip::Port port) {
  return row_of_number(chip, table, port.number());
}

/// The place of an entry among those of a map.
template <class Map, class Key>
std::ptrdiff_t place_in(const Map& map, const Key& key) {
  return std::distance(map.begin(), map.find(key));
}

template <class Record>
Origin origin_of(const Record* record) {
  return record == nullptr ? Origin::none() : record->origin;
}

/// A setting as a row of the table of controls, which leaves out those that are 0, would be.
std::string control_text(const std::string& name, const std::string& value) {
  return "control: " + name + ", " + value;
}
std::string control_text(const std::string& name, chip::Port port, const std::string& value) {
  return control_text(name, "port " + to_string(port.number()) + ", " + value);
}
std::string on_or_off(bool is_on) { return is_on ? "on" : "off"; }

struct Describe {
  const Chip& chip;

  std::string ports(const char* table, chip::Port port) const { return row_of_port(chip, table, port); }

  api::Entry operator()(const decider::Link& of) const {
    const chip::PortMac* const mac = chip.port_macs.find(of.port);
    const bool is_disabled = mac != nullptr && !mac->enabled;  // otherwise it is the cable
    return {ports("attribute", of.port), is_disabled ? mac->enabled.origin : Origin::none()};
  }
  api::Entry operator()(const decider::FrameMax& of) const {
    return {ports("attribute", of.port), chip.port_macs.of(of.port).frame_max.origin};
  }
  api::Entry operator()(const decider::UntaggedVlan& of) const {
    return {ports("forwarding", of.port), chip.port_forwarding.of(of.port).untagged_vlan.origin};
  }
  api::Entry operator()(const decider::UnknownSources& of) const {
    return {ports("forwarding", of.port), chip.port_forwarding.of(of.port).learning.origin};
  }
  api::Entry operator()(const decider::Destinations& of) const {
    return {ports("forwarding", of.port), chip.port_forwarding.of(of.port).destinations.origin};
  }
  api::Entry operator()(const decider::MembershipChecks& of) const {
    return {ports("filter", of.port), chip.port_filters.origin_of_checks(of.port)};
  }
  api::Entry operator()(const decider::BlockedFloods& of) const {
    using chip::PortFilters;
    return {"filter: port " + to_string(of.from.number()) + ", floods kept from port " + to_string(of.to.number()) +
                ' ' +
                api::flag_names(chip.port_filters.blocked_floods(of.from, of.to),
                                {{PortFilters::broadcast, "broadcast"},
                                 {PortFilters::unknown_unicast, "unknown unicast"},
                                 {PortFilters::unknown_multicast, "unknown multicast"}}),
            chip.port_filters.origin_of_blocks(of.from, of.to)};
  }
  api::Entry operator()(const decider::IngressRate& of) const {
    return {ports("rate", of.port), chip.port_rates.ingress()[of.port].origin};
  }
  api::Entry operator()(const decider::EgressRate& of) const {
    return {ports("rate", of.port), chip.port_rates.egress()[of.port].origin};
  }
  api::Entry operator()(const decider::StormRate& of) const {
    return {ports("rate", of.port), origin_of(chip.storm_rates.find({of.port, of.kind}))};
  }
  api::Entry operator()(const decider::Control& of) const {
    const bool is_on = chip.switch_controls.is_on(of.control, of.port);
    return {control_text(chip::SwitchControls::name(static_cast<int>(of.control)), of.port, on_or_off(is_on)),
            chip.switch_controls.origin(of.control, of.port)};
  }
  api::Entry operator()(const decider::ChipControl& of) const {
    return {control_text(chip::SwitchControls::name(static_cast<int>(of.control)),
                         on_or_off(chip.switch_controls.is_on(of.control))),
            chip.switch_controls.origin(of.control)};
  }
  api::Entry operator()(const decider::VlanControl& of) const {
    const chip::Setting<int>& setting = chip.vlan_controls.of_port(of.port, of.control);
    return {control_text(chip::VlanControls::name(of.control), of.port, to_string(setting.value)), setting.origin};
  }
  api::Entry operator()(const decider::ChipTranslation& /*of*/) const {
    const chip::Setting<int>& setting = chip.vlan_controls.translate();
    return {control_text("VLAN translation", on_or_off(setting != 0)), setting.origin};
  }
  api::Entry operator()(const decider::UnicastRouting& /*of*/) const {
    return {control_text("unicast routing", on_or_off(chip.unicast_routing)), chip.unicast_routing.origin};
  }
  api::Entry operator()(const decider::MulticastRouting& /*of*/) const {
    return {control_text("multicast routing", on_or_off(chip.multicast_routing)), chip.multicast_routing.origin};
  }
  api::Entry operator()(const decider::ReservedAddresses& /*of*/) const {
    return {control_text("reserved IPv6 multicast",
                         api::reserved_multicast_text(chip.reserved_multicast.of_outer_header())),
            chip.reserved_multicast.origin()};
  }
  api::Entry operator()(const decider::NetworkGroup& of) const {
    const chip::Setting<uint32_t>& settings = *chip.network_groups.find(of.group);
    return {control_text("network group " + to_string(of.group), api::network_group_text(settings)), settings.origin};
  }
  api::Entry operator()(const decider::ProtocolVlan& of) const {
    return {ports("forwarding", of.key.port), origin_of(chip.protocol_vlans.find(of.key))};
  }
  api::Entry operator()(const decider::MacVlan& of) const {
    return {rows_with(chip, "macvlan", {{0, api::mac_text(of.mac)}}), origin_of(chip.mac_vlans.find(of.mac))};
  }
  api::Entry operator()(const decider::SubnetVlan& of) const {
    const auto& all = chip.subnet_vlans.all();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& entry) { return &entry.second == of.assignment; });
    return {row_text(chip, "subnetvlan", std::distance(all.begin(), found)), of.assignment->origin};
  }

  // The table of translations has those of ingress, then those that add a tag, then those of egress, then actions.
  api::Entry operator()(const decider::IngressTranslation& of) const {
    const auto& ingress = chip.vlan_translations.ingress();
    return {row_text(chip, "translation", place_in(ingress, chip::VlanTranslations::Key{of.port, of.vlan})),
            origin_of(chip.vlan_translations.find(of.port, of.vlan))};
  }
  api::Entry operator()(const decider::OuterTranslation& of) const {
    const auto& outer = chip.vlan_translations.outer();
    const auto after = outer.upper_bound({of.port, of.vlan});
    return {
        row_text(chip, "translation", size(chip.vlan_translations.ingress()) + std::distance(outer.begin(), after) - 1),
        origin_of(chip.vlan_translations.find_outer(of.port, of.vlan))};
  }
  api::Entry operator()(const decider::EgressTranslation& of) const {
    const chip::VlanTranslations& tables = chip.vlan_translations;
    return {row_text(chip, "translation",
                     size(tables.ingress()) + size(tables.outer()) +
                         place_in(tables.egress(), chip::VlanTranslations::Key{of.port, of.vlan})),
            origin_of(tables.find_egress(of.port, of.vlan))};
  }
  api::Entry operator()(const decider::TagsAtEgress& of) const {
    const chip::VlanTranslations& tables = chip.vlan_translations;
    return {row_text(chip, "translation",
                     size(tables.ingress()) + size(tables.outer()) + size(tables.egress()) +
                         place_in(chip.egress_actions.all(), of.key)),
            origin_of(chip.egress_actions.find(of.key))};
  }

  api::Entry operator()(const decider::OfVlan& of) const {
    return {row_of_number(chip, "vlan", of.id), origin_of(chip.vlans.find(of.id))};
  }
  api::Entry operator()(const decider::SpanningTreeState& of) const {
    return {row_text(chip, "stp", place_in(chip.spanning_trees.all(), of.group)),
            chip.spanning_trees.origin_of_state(of.group, of.port)};
  }
  api::Entry operator()(const decider::L2CacheSlot& of) const {
    return {row_of_number(chip, "l2cache", of.index), chip.l2_cache.all().at(of.index).origin};
  }
  api::Entry operator()(const decider::OfMac& of) const {
    return {only_row_text("mac", api::mac_rows({*of.entry})), of.entry->origin};
  }
  api::Entry operator()(const decider::OfLearnLimit& of) const {
    const auto& all = chip.learn_limits.all();
    return {row_text(chip, "learnlimit", place_in(all, of.scope)), all.at(of.scope).origin};
  }
  api::Entry operator()(const decider::FieldRules& of) const {
    constexpr std::size_t entry = 4;
    return {rows_with(chip, "field", {{entry, to_string(of.entry)}}),
            origin_of(chip.field_processor.find_entry(of.entry))};
  }
  api::Entry operator()(const decider::OfPolicer& of) const {
    return {row_of_number(chip, "policer", of.id), origin_of(chip.policers.find(of.id))};
  }
  api::Entry operator()(const decider::Interface& of) const {
    return {row_of_number(chip, "interface", chip.l3_interfaces.find_same(*of.interface).value_or(0)),
            of.interface->origin};
  }
  api::Entry operator()(const decider::Host& of) const {
    const chip::L3Entry& host = *chip.hosts.find(of.key);
    return {only_row_text("host", api::host_rows({{of.key, host}})), host.origin};
  }
  api::Entry operator()(const decider::Route& of) const {
    const chip::RouteKey key = *chip.routes.key_of_longest(of.vrf, of.address);
    const chip::L3Entry& route = *chip.routes.find(key);
    return {only_row_text("route", api::route_rows({{key, route}})), route.origin};
  }
  api::Entry operator()(const decider::NextHop& of) const {
    return {row_of_number(chip, "egress", of.egress_object), origin_of(chip.egress_objects.find(of.egress_object))};
  }
  api::Entry operator()(const decider::GroupRoute& of) const {
    return {row_text(chip, "ipmc", place_in(chip.multicast_routes.all(), of.key)),
            origin_of(chip.multicast_routes.find(of.key))};
  }
  api::Entry operator()(const decider::Group& of) const {
    return {row_of_number(chip, "multicast", of.id.number()), origin_of(chip.multicast_groups.find(of.id))};
  }
  api::Entry operator()(const decider::OfTrunk& of) const {
    return {row_of_number(chip, "trunk", of.id.number()), origin_of(chip.trunks.find(of.id))};
  }
  api::Entry operator()(const decider::OfVirtualPort& of) const {
    return {row_of_number(chip, "vport", of.id.number()), origin_of(chip.virtual_ports.find(of.id))};
  }
  api::Entry operator()(const decider::Mirror& of) const {
    return {row_of_number(chip, "mirror", of.destination.number()),
            chip.mirrors.sources().at({of.source, of.destination}).origin};
  }

 private:
  template <class Map>
  static std::ptrdiff_t size(const Map& map) {
    return static_cast<std::ptrdiff_t>(map.size());
  }
};

}  // namespace

api::Entry api::entry_of(const chip::Chip& chip, const chip::Decider& decider) {
  return std::visit(Describe{chip}, decider);
}

std::string api::call_text(const chip::Cause& cause, const std::string& reader) {
  return "call " + to_string(cause.number) + ": " + (cause.caller == reader ? "" : cause.caller) + cause.line;
}
