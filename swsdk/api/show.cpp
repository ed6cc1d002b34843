#include "api/show.h"

#include <bcm/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <vector>

#include "api/calls/arguments.h"
#include "api/columns.h"
#include "api/gports.h"
#include "api/show_controls.h"
#include "api/show_l2.h"
#include "api/show_l3.h"

namespace {

using api::flag_names;
using api::mac_text;
using api::Row;
using api::Rows;

std::string text(chip::Port port) { return std::to_string(port.number()); }

std::string control_text(const chip::VlanControl& control) {
  using chip::VlanControl;
  std::string result;
  const auto add = [&](const std::string& name) { result += (result.empty() ? "" : ",") + name; };
  if (control.flags & VlanControl::learn_disable) add("no-learn");
  if (control.flags & VlanControl::l2_lookup_disable) add("no-l2-lookup");
  if (const uint32_t rest = control.flags & ~(VlanControl::learn_disable | VlanControl::l2_lookup_disable))
    add(api::text(api::hex(rest)));
  // Where unknown multicasts and floods do not go to all members.
  if (control.ip4_multicast_flood_mode == VlanControl::flood_nowhere) add("no-ip4-multicast-flood");
  if (control.ip6_multicast_flood_mode == VlanControl::flood_nowhere) add("no-ip6-multicast-flood");
  if (control.l2_multicast_flood_mode == VlanControl::flood_nowhere) add("no-l2-multicast-flood");
  const auto add_group = [&](const char* kind, const std::optional<chip::GroupId>& group) {
    if (group) add(kind + ("-to-group-" + std::to_string(group->number())));
  };
  add_group("broadcast", control.broadcast_group);
  add_group("unknown-multicast", control.unknown_multicast_group);
  add_group("unknown-unicast", control.unknown_unicast_group);
  return result.empty() ? "-" : result;
}

Rows show_vlans(const chip::Chip& chip) {
  Rows rows{{"VLAN", "tagged", "untagged", "flags"}};
  for (const auto& [id, vlan] : chip.vlans.all())
    rows.push_back(
        {std::to_string(id), text(vlan.members - vlan.untagged), text(vlan.untagged), control_text(vlan.control)});
  return rows;
}

const char* duplex_text(chip::Duplex duplex) { return duplex == chip::Duplex::full ? "full" : "half"; }

Rows show_ports(const chip::Chip& chip) {
  Rows rows{{"port", "kind", "state", "speed", "duplex", "tagged in", "untagged in"}};
  for (const chip::Port port : chip.ports.all()) {
    std::string tagged;
    std::string untagged;
    for (const auto& [id, vlan] : chip.vlans.all()) {
      if (!vlan.members.contains(port)) continue;
      std::string& list = vlan.untagged.contains(port) ? untagged : tagged;
      list += (list.empty() ? "" : ",") + std::to_string(id);
    }
    Row row{text(port), chip::Ports::kind(port), "-", "-", "-"};
    if (const chip::PortMac* const mac = chip.port_macs.find(port)) {
      row[2] = !mac->enabled ? "off" : mac->link() ? "up" : "down";
      row[3] = std::to_string(mac->speed);
      row[4] = duplex_text(mac->duplex);
    }
    row.push_back(tagged.empty() ? "-" : tagged);
    row.push_back(untagged.empty() ? "-" : untagged);
    rows.push_back(std::move(row));
  }
  return rows;
}

Rows show_l2_cache(const chip::Chip& chip) {
  constexpr uint32_t to_cpu = 0x1;
  Rows rows{{"index", "MAC", "mask", "flags"}};
  for (const auto& [index, entry] : chip.l2_cache.all())
    rows.push_back({std::to_string(index), mac_text(entry.mac), mac_text(entry.mac_mask),
                    flag_names(entry.flags, {{to_cpu, "to-cpu"}, {chip::L2CacheEntry::bpdu, "bpdu"}})});
  return rows;
}

Rows show_filters(const chip::Chip& chip) {
  using chip::PortFilters;
  Rows rows{{"port", "checks VLANs at", "floods kept from the CPU"}};
  for (const chip::Port port : chip.ports.all())
    rows.push_back({text(port),
                    flag_names(chip.port_filters.membership_checks(port),
                               {{PortFilters::check_ingress, "ingress"}, {PortFilters::check_egress, "egress"}}),
                    flag_names(chip.port_filters.blocked_floods(port, chip::Ports::cpu),
                               {{PortFilters::broadcast, "broadcast"},
                                {PortFilters::unknown_unicast, "unknown unicast"},
                                {PortFilters::unknown_multicast, "unknown multicast"}})});
  return rows;
}

/// A name that anybody may have chosen, on one line.
std::string shown_name(const std::string& name) {
  const bool is_plain = std::none_of(name.begin(), name.end(), [](unsigned char c) { return c < ' '; });
  return is_plain ? name : api::quoted(name);
}

Rows show_network_interfaces(const chip::Chip& chip) {
  Rows rows{{"id", "name", "MAC", "type", "flags"}};
  for (const auto& [id, netif] : chip.network_interfaces.all())
    rows.push_back({std::to_string(id), shown_name(netif.name), mac_text(netif.mac), std::to_string(netif.type),
                    api::text(api::hex(netif.flags))});
  return rows;
}

Rows show_leds(const chip::Chip& chip) {
  Rows rows{{"processor", "program", "auto", "state"}};
  for (int led = 0; led < chip::LedProcessors::count; ++led) {
    const chip::LedProcessor& processor = chip.led_processors[led];
    rows.push_back({std::to_string(led), processor.loaded ? "loaded" : "-", processor.automatic ? "on" : "off",
                    processor.running ? "running" : "stopped"});
  }
  return rows;
}

Rows show_translations(const chip::Chip& chip) {
  const chip::VlanTranslations& tables = chip.vlan_translations;
  Rows rows{{"direction", "port", "VLAN", "becomes", "priority"}};
  for (const auto& [key, to] : tables.ingress())
    rows.push_back(
        {"in", text(key.port), std::to_string(key.vlan), std::to_string(to.vlan), std::to_string(to.priority)});
  for (const auto& [key, range] : tables.outer())
    rows.push_back({"in", text(key.port),
                    std::to_string(key.vlan) + (range.high > key.vlan ? "-" + std::to_string(range.high) : ""),
                    "inner of " + std::to_string(range.outer.vlan), std::to_string(range.outer.priority)});
  for (const auto& [key, to] : tables.egress())
    rows.push_back(
        {"out", text(key.port), std::to_string(key.vlan), std::to_string(to.vlan), std::to_string(to.priority)});
  for (const auto& [key, action] : chip.egress_actions.all())
    rows.push_back({"out", std::to_string(api::sdk_port(key.port_class)),
                    std::to_string(key.outer) + (key.inner != 0 ? ":" + std::to_string(key.inner) : ""),
                    action.double_tagged.outer.vlan == chip::TagAction::remove ? "without the outer tag"
                    : action.outer_vlan != 0                                   ? std::to_string(action.outer_vlan)
                                                                               : "-",
                    std::to_string(action.priority)});
  return rows;
}

Rows show_attributes(const chip::Chip& chip) {
  constexpr const char* loopbacks[] = {"-", "MAC", "PHY"};
  Rows rows{
      {"port", "enabled", "link", "auto", "speed", "duplex", "interface", "loopback", "pause", "frame max", "gap"}};
  for (const auto& [port, mac] : chip.port_macs.all()) {
    const int gap = chip.port_macs.gap(port, mac.speed, static_cast<int>(mac.duplex)).value_or(0);
    const uint32_t pause = (mac.pause_tx ? 1U : 0U) | (mac.pause_rx ? 2U : 0U);
    rows.push_back({text(port), mac.enabled ? "yes" : "no", mac.link() ? "up" : "down", mac.negotiates ? "on" : "off",
                    std::to_string(mac.speed), duplex_text(mac.duplex), std::to_string(mac.interface),
                    loopbacks[static_cast<std::size_t>(mac.loopback)], flag_names(pause, {{1, "tx"}, {2, "rx"}}),
                    std::to_string(mac.frame_max), std::to_string(gap)});
  }
  return rows;
}

Rows show_forwarding(const chip::Chip& chip) {
  using chip::PortForwardings;
  Rows rows{{"port", "unknown addresses", "untagged VLAN", "by protocol", "goes to"}};
  for (const auto& [port, forwarding] : chip.port_forwarding.all()) {
    std::string protocols;
    for (const auto& [key, vlan] : chip.protocol_vlans.all())
      if (key.port == port)
        protocols += (protocols.empty() ? "" : ",") + api::text(api::hex(key.ethertype)) + ':' + std::to_string(vlan);
    rows.push_back({text(port),
                    flag_names(forwarding.learning, {{PortForwardings::learn, "learn"},
                                                     {PortForwardings::to_cpu, "to-cpu"},
                                                     {PortForwardings::forward, "forward"}}),
                    std::to_string(forwarding.untagged_vlan), protocols.empty() ? "-" : protocols,
                    text(forwarding.destinations)});
  }
  return rows;
}

std::string rate_text(const chip::PortRate& limit) {
  if (!limit.is_limit()) return "-";
  return std::to_string(limit.rate) + '/' + std::to_string(limit.burst) +
         (limit.unit == chip::RateUnit::packets ? " packets" : " kbit");
}

/// The ports with a limit: their rates per second and bursts, and the packets per second of each kind of storm.
Rows show_rates(const chip::Chip& chip) {
  using chip::StormRates;
  Rows rows{{"port", "in", "out", "broadcast", "multicast", "unknown"}};
  const Row unlimited(rows.front().size() - 1, "-");
  for (const chip::Port port : chip.ports.all()) {
    Row limits{rate_text(chip.port_rates.ingress()[port]), rate_text(chip.port_rates.egress()[port])};
    for (const uint32_t kind : {StormRates::broadcast, StormRates::multicast, StormRates::unknown_destination}) {
      const chip::Setting<int>* const found = chip.storm_rates.find({port, kind});
      limits.push_back(found == nullptr ? "-" : std::to_string(found->value));
    }
    if (limits == unlimited) continue;
    limits.insert(limits.begin(), text(port));
    rows.push_back(limits);
  }
  return rows;
}

/// The controls that are set and the registers that were written.
Rows show_phys(const chip::Chip& chip) {
  Rows rows{{"PHY", "device", "register or control", "value"}};
  for (const auto& [key, value] : chip.phy_registers.all())
    rows.push_back({std::to_string(key.phy),
                    key.device == chip::PhyRegisters::clause22 ? "-" : std::to_string(key.device),
                    api::text(api::hex(key.number)), api::text(api::hex(value))});
  for (const auto& [key, value] : chip.phy_controls.all())
    rows.push_back({text(key.first), "-", chip::PhyControls::name(key.second), std::to_string(value)});
  return rows;
}

/// The counters that are not 0.
Rows show_counters(const chip::Chip& chip) {
  constexpr const char* names[] = BCM_STAT_NAME_INITIALIZER;
  Rows rows{{"port", "counter", "value"}};
  for (const auto& [port, counters] : chip.counters.all())
    for (std::size_t i = 0; i < counters.size(); ++i)
      if (counters[i] != 0) rows.push_back({text(port), names[i], std::to_string(counters[i])});
  return rows;
}

/// The reasons for which ports have lost frames.
Rows show_drops(const chip::Chip& chip) {
  Rows rows{{"port", "reason", "frames"}};
  for (const auto& [port, counts] : chip.drops)
    for (std::size_t i = 0; i < counts.size(); ++i)
      if (counts[i] != 0) rows.push_back({text(port), name(static_cast<chip::Drop>(i)), std::to_string(counts[i])});
  return rows;
}

/// Tenths of a degree in degrees Celsius.
std::string degrees(int tenths) {
  char text[16];
  std::snprintf(text, sizeof text, "%.1f", tenths / 10.0);
  return text;
}

Rows show_temperatures(const chip::Chip& chip) {
  Rows rows{{"sensor", "current", "peak"}};
  for (const chip::Temperature& reading : chip.temperature_sensors.all())
    rows.push_back({std::to_string(rows.size() - 1), degrees(reading.current), degrees(reading.peak)});
  return rows;
}

Rows show_clock(const chip::Chip& chip) { return {{"nanoseconds"}, {std::to_string(chip.now)}}; }

/// The meters of which something was taken: what was left, in bits or packets, after the last that passed.
Rows show_meters(const chip::Chip& chip) {
  constexpr const char* kinds[] = {"port ingress",         "port egress", "broadcasts",  "multicasts",
                                   "unknown destinations", "policer",     "policer peak"};
  constexpr uint64_t billionths = 1'000'000'000;
  Rows rows{{"meter", "number", "left", "at"}};
  chip.meters.for_each([&](chip::Meters::Kind kind, int number, uint64_t level, uint64_t since) {
    rows.push_back({kinds[static_cast<std::size_t>(kind)], std::to_string(number), std::to_string(level / billionths),
                    std::to_string(since)});
  });
  return rows;
}

struct Table {
  const char* name;
  Rows (*rows)(const chip::Chip& chip);
};

constexpr Table tables[] = {
    {"attribute", show_attributes},
    {"clock", show_clock},
    {"control", api::show_controls},
    {"counters", show_counters},
    {"drops", show_drops},
    {"egress", api::show_egress_objects},
    {"field", api::show_field},
    {"filter", show_filters},
    {"forwarding", show_forwarding},
    {"host", api::show_hosts},
    {"interface", api::show_l3_interfaces},
    {"ipmc", api::show_multicast_routes},
    {"l2cache", show_l2_cache},
    {"learnlimit", api::show_learn_limits},
    {"led", show_leds},
    {"mac", api::show_mac_table},
    {"macvlan", api::show_mac_vlans},
    {"meter", show_meters},
    {"mirror", api::show_mirrors},
    {"multicast", api::show_multicast_groups},
    {"netif", show_network_interfaces},
    {"phy", show_phys},
    {"policer", api::show_policers},
    {"port", show_ports},
    {"rate", show_rates},
    {"route", api::show_routes},
    {"stp", api::show_spanning_trees},
    {"subnetvlan", api::show_subnet_vlans},
    {"temperature", show_temperatures},
    {"translation", show_translations},
    {"trunk", api::show_trunks},
    {"vlan", show_vlans},
    {"vport", api::show_virtual_ports},
};

}  // namespace

std::optional<Rows> api::table_rows(const chip::Chip& chip, std::string_view table) {
  for (const Table& candidate : tables)
    if (table == candidate.name) return candidate.rows(chip);
  return std::nullopt;
}

const char* api::shown_table(std::size_t index) { return index < std::size(tables) ? tables[index].name : nullptr; }
