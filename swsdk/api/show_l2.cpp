#include "api/show_l2.h"

#include "api/calls/arguments.h"
#include "api/columns.h"

namespace {

using chip::MacEntry;
using chip::MacScope;

std::string named_place_text(const chip::Place& place) {
  return (std::holds_alternative<chip::Port>(place) ? "port " : "") + api::place_text(place);
}

std::string where_text(const MacEntry& entry) {
  std::string result = named_place_text(entry.place);
  if (entry.tunnel != 0) result += " tunnel " + std::to_string(entry.tunnel);
  return result;
}

std::string scope_text(const MacScope& scope) {
  return std::visit(chip::ByKind{
                        [](chip::AllAddresses) { return std::string("all"); },
                        [](chip::VlanAddresses of) { return "VLAN " + std::to_string(of.vlan); },
                        [](const chip::Place& place) { return named_place_text(place); },
                        [](chip::TunnelAddresses of) { return "tunnel " + std::to_string(of.tunnel); },
                    },
                    scope);
}

const char* criterion_text(chip::TrunkCriterion criterion) {
  switch (criterion) {
    using enum chip::TrunkCriterion;
    case own_choice:
      return "-";
    case source_mac:
      return "source MAC";
    case destination_mac:
      return "destination MAC";
    case both_macs:
      return "both MACs";
    case source_ip:
      return "source IP";
    case destination_ip:
      return "destination IP";
    case both_ips:
      return "both IPs";
  }
  return "-";
}

std::string mode_text(chip::Mirrors::Mode mode) {
  using Mode = chip::Mirrors::Mode;
  return mode == Mode::off ? "off" : mode == Mode::l2 ? "L2" : "L2 and L3";
}

/// Adds an item to a list.
void append(std::string& list, int item) { list += (list.empty() ? "" : ",") + std::to_string(item); }

std::string or_dash(const std::string& text) { return text.empty() ? "-" : text; }

}  // namespace

api::Rows api::show_learn_limits(const chip::Chip& chip) {
  using chip::LearnLimit;
  Rows rows{{"learned", "of at most", "in", "then", "heeded"}};
  for (const auto& [scope, limit] : chip.learn_limits.all())
    rows.push_back(
        {std::to_string(chip.mac_table.learned(scope)),
         limit.limit == LearnLimit::unlimited ? "-" : std::to_string(limit.limit), scope_text(scope),
         flag_names(limit.actions,
                    {{LearnLimit::drop, "drop"}, {LearnLimit::to_cpu, "to-cpu"}, {LearnLimit::prefer, "prefer"}}),
         chip.learn_limits.enabled() ? "yes" : "no"});
  return rows;
}

api::Rows api::show_mac_table(const chip::Chip& chip) { return mac_rows(chip.mac_table.all()); }

api::Rows api::mac_rows(const std::vector<MacEntry>& entries) {
  Rows rows{{"VLAN", "MAC", "at", "kind", "hit"}};
  for (const MacEntry& entry : entries)
    rows.push_back({std::to_string(entry.vlan), mac_text(entry.mac), where_text(entry),
                    flag_names(entry.flags, {{MacEntry::fixed, "static"},
                                             {MacEntry::discard_source, "discard-source"},
                                             {MacEntry::discard_destination, "discard-destination"},
                                             {MacEntry::copy_to_cpu, "copy-to-cpu"}}),
                    flag_names((entry.source_hit ? 1U : 0U) | (entry.destination_hit ? 2U : 0U),
                               {{1, "source"}, {2, "destination"}})});
  return rows;
}

api::Rows api::show_mac_vlans(const chip::Chip& chip) {
  Rows rows{{"MAC", "VLAN", "priority"}};
  for (const auto& [mac, to] : chip.mac_vlans.all())
    rows.push_back({mac_text(mac), std::to_string(to.vlan), std::to_string(to.priority)});
  return rows;
}

api::Rows api::show_mirrors(const chip::Chip& chip) {
  Rows rows{{"session", "to port", "mode", "sources", "ingress", "egress"}};
  for (const auto& [id, to] : chip.mirrors.destinations()) {
    chip::PortSet sources;
    chip::PortSet ingress;
    chip::PortSet egress;
    for (const auto& [key, directions] : chip.mirrors.sources()) {
      const auto& [port, destination] = key;
      if (destination != id) continue;
      sources.add(port);
      if (directions & chip::Mirrors::ingress) ingress.add(port);
      if (directions & chip::Mirrors::egress) egress.add(port);
    }
    rows.push_back({std::to_string(id.number()), place_text(to), mode_text(chip.mirrors.mode()), text(sources),
                    text(ingress), text(egress)});
  }
  return rows;
}

api::Rows api::show_spanning_trees(const chip::Chip& chip) {
  Rows rows{{"group", "VLANs", "disabled", "blocking", "listening", "learning", "forwarding"}};
  for (const auto& [id, states] : chip.spanning_trees.all()) {
    std::string vlans;
    for (const auto& [vlan, record] : chip.vlans.all())
      if (record.spanning_tree == id) append(vlans, vlan);
    Row row{std::to_string(id) + (id == chip.spanning_trees.default_id() ? " (default)" : ""), or_dash(vlans)};
    for (int state = 0; state <= static_cast<int>(chip::StpState::forward); ++state) {
      chip::PortSet ports;
      for (const auto& [port, present] : states)
        if (static_cast<int>(present) == state) ports.add(port);
      row.push_back(text(ports));
    }
    rows.push_back(row);
  }
  return rows;
}

api::Rows api::show_subnet_vlans(const chip::Chip& chip) {
  Rows rows{{"subnet", "VLAN", "priority"}};
  for (const auto& [subnet, to] : chip.subnet_vlans.all()) {
    const chip::Ip6& a = subnet.address;
    const std::string address =
        subnet.is_ip6 ? text(Ip6{a.data()})
                      : text(ip4(uint32_t{a[0]} << 24 | uint32_t{a[1]} << 16 | uint32_t{a[2]} << 8 | a[3]));
    rows.push_back(
        {address + "/" + std::to_string(subnet.prefix), std::to_string(to.vlan), std::to_string(to.priority)});
  }
  return rows;
}

api::Rows api::show_trunks(const chip::Chip& chip) {
  Rows rows{{"trunk", "picks by", "members"}};
  for (const auto& [id, trunk] : chip.trunks.all()) {
    std::string members;
    for (const chip::Port port : trunk.members) append(members, port.number());
    rows.push_back({std::to_string(id.number()), criterion_text(trunk.criterion), or_dash(members)});
  }
  return rows;
}
