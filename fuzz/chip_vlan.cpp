// VLANs, their spanning-tree groups and their translations.
#include <chip/spanning_trees.h>
#include <chip/vlan_translations.h>
#include <chip/vlans.h>

#include <map>
#include <set>
#include <utility>

#include "chip_tables.h"

using chip::Port;
using chip::Status;
using chip::VirtualPortId;

namespace fuzz {

namespace {

/// A few ports; now and then one that the chip does not have.
std::set<Port> ports_from(Input& input) {
  const auto bits = input.any<uint16_t>();
  std::set<Port> ports;
  for (int number = 0; number <= ethernet_ports; ++number)
    if ((bits >> number & 1) != 0) ports.insert(Port::of(number));
  if (bits >> 13 == 7) ports.insert(Port::of(input.from(0, 255)));
  return ports;
}

chip::PortSet set_of(const std::set<Port>& ports) {
  chip::PortSet result;
  for (const Port port : ports) result.add(port);
  return result;
}

bool all_are_ports(const std::set<Port>& ports) { return std::all_of(ports.begin(), ports.end(), is_port); }

struct VlanModel {
  std::set<Port> members{};
  std::set<Port> untagged{};
  std::set<VirtualPortId> virtual_members{};
  int tree = 0;
  int flood = 0;
};

}  // namespace

void fuzz_vlans(Input& input) {
  const chip::Ports ports(ethernet_ports);
  chip::Vlans vlans(ports);
  VlanModel first;
  for (int number = 0; number <= ethernet_ports; ++number) first.members.insert(Port::of(number));
  first.untagged = first.members;
  first.untagged.erase(Port{0});
  std::map<int, VlanModel> model{{1, first}};
  while (!input.is_empty()) {
    const int operation = input.from(0, 9);
    const int id = input.near(1, 8);
    const auto found = model.find(id);
    const bool present = found != model.end();
    const Status expected = !is_vlan(id) ? Status::bad_parameter : present ? Status::ok : Status::not_found;
    if (operation < 3) {
      same(vlans.create(id), present ? Status::exists : is_vlan(id) ? Status::ok : Status::bad_parameter);
      if (is_vlan(id)) model.try_emplace(id);
    } else if (operation == 3) {
      same(vlans.destroy(id), id == 1 ? Status::bad_id : expected);
      if (id != 1) model.erase(id);
    } else if (operation == 4 && input.any<uint8_t>() < 16) {
      same(vlans.destroy_all(), Status::ok);
      std::erase_if(model, [](const auto& vlan) { return vlan.first != 1; });
    } else if (operation < 6) {
      const std::set<Port> members = ports_from(input);
      const std::set<Port> untagged = ports_from(input);
      const bool good = all_are_ports(members);
      same(vlans.add_ports(id, set_of(members), set_of(untagged)), present && !good ? Status::bad_port : expected);
      if (!present || !good) continue;
      for (const Port port : members) {
        found->second.members.insert(port);
        found->second.untagged.erase(port);
        if (untagged.contains(port)) found->second.untagged.insert(port);
      }
    } else if (operation == 6) {
      const std::set<Port> members = ports_from(input);
      const bool good = all_are_ports(members);
      same(vlans.remove_ports(id, set_of(members)), present && !good ? Status::bad_port : expected);
      if (!present || !good) continue;
      for (const Port port : members) {
        found->second.members.erase(port);
        found->second.untagged.erase(port);
      }
    } else if (operation == 7) {
      const VirtualPortId virtual_port = VirtualPortId::of(input.from(1, 4));
      if (input.flag()) {
        same(vlans.add_virtual_port(id, virtual_port), expected);
        if (present) found->second.virtual_members.insert(virtual_port);
      } else {
        const bool member = present && found->second.virtual_members.erase(virtual_port) == 1;
        same(vlans.remove_virtual_port(id, virtual_port), present && !member ? Status::not_found : expected);
      }
    } else if (operation == 8) {
      const int mode = input.near(0, 2);
      const bool good = mode >= 0 && mode <= 2;
      same(vlans.set_multicast_flood(id, {&chip::VlanControl::ip4_multicast_flood_mode}, mode),
           present && !good ? Status::bad_parameter : expected);
      if (present && good) found->second.flood = mode;
    } else {
      const int tree = input.from(0, 9);
      same(vlans.set_spanning_tree(id, tree), expected);
      if (present) found->second.tree = tree;
    }
  }
  require(vlans.all().size() == model.size(), "there are more VLANs, or fewer");
  for (const auto& [id, vlan] : vlans.all()) {
    require(model.contains(id), "a VLAN that should not be there");
    const VlanModel& wanted = model[id];
    require(vlan.members == set_of(wanted.members) && vlan.untagged == set_of(wanted.untagged) &&
                vlan.virtual_members == wanted.virtual_members && vlan.spanning_tree == wanted.tree &&
                vlan.control.ip4_multicast_flood_mode == wanted.flood,
            "a VLAN is not as it was made");
  }
}

void fuzz_spanning_trees(Input& input) {
  using Trees = chip::SpanningTrees;
  const chip::Ports ports(ethernet_ports);
  chip::Vlans vlans(ports);
  Trees trees(ports, vlans);
  int usual = 1;
  std::map<int, std::map<Port, int>> model;  // states by group and port
  const auto fresh = [](int state) {
    std::map<Port, int> states{{Port{0}, 4}};
    for (int number = 1; number <= ethernet_ports; ++number) states[Port::of(number)] = state;
    return states;
  };
  model[1] = fresh(4);
  std::map<int, int> group_of{{1, 1}};  // by VLAN
  const auto forget = [&](int id) {
    model.erase(id);
    for (auto& [vlan, group] : group_of)
      if (group == id) group = usual;
  };
  while (!input.is_empty()) {
    const int operation = input.from(0, 8);
    const int id = input.near(1, 6);
    const int vlan = input.near(1, 6);
    const bool valid = id >= 1 && id <= Trees::capacity;
    const bool present = model.contains(id);
    const Status expected = !valid ? Status::bad_parameter : present ? Status::ok : Status::not_found;
    const bool has_vlan = group_of.contains(vlan);
    const Status of_vlan = !is_vlan(vlan) ? Status::bad_parameter : has_vlan ? Status::ok : Status::not_found;
    if (operation == 0) {
      same(vlans.create(vlan), has_vlan ? Status::exists : is_vlan(vlan) ? Status::ok : Status::bad_parameter);
      if (is_vlan(vlan)) group_of.try_emplace(vlan, usual);
    } else if (operation < 3) {
      same(trees.create(id), present ? Status::exists : valid ? Status::ok : Status::bad_parameter);
      if (valid) model.try_emplace(id, fresh(0));
    } else if (operation == 3) {
      same(trees.destroy(id), id == usual ? Status::bad_id : expected);
      if (id != usual) forget(id);
    } else if (operation == 4) {
      same(trees.set_default(id), expected);
      if (present) usual = id;
    } else if (operation == 5) {
      same(trees.add_vlan(id, vlan), present ? of_vlan : expected);
      if (present && has_vlan) group_of[vlan] = id;
    } else if (operation == 6) {
      const bool within = has_vlan && group_of[vlan] == id;
      same(trees.remove_vlan(id, vlan), !present ? expected : has_vlan && !within ? Status::not_found : of_vlan);
      if (present && within) group_of[vlan] = usual;
    } else if (operation == 7) {
      const Port port = Port::of(input.near(0, ethernet_ports));
      const int state = input.near(0, 4);
      const bool good = state >= 0 && state <= 4;
      same(trees.set_state(id, port, state), !present         ? expected
                                             : !is_port(port) ? Status::bad_port
                                             : !good          ? Status::bad_parameter
                                                              : Status::ok);
      if (present && is_port(port) && good) model[id][port] = state;
      const bool has_state = present && is_port(port);
      require((trees.state(id, port) != nullptr) == has_state, "a state is there, or not");
      if (!has_state) same(trees.absent_state(id, port), present ? Status::bad_port : expected);
    } else if (input.any<uint8_t>() < 16) {
      trees.destroy_all();
      for (int other = 1; other <= Trees::capacity; ++other)
        if (other != usual) forget(other);
    }
  }
  require(trees.all().size() == model.size() && trees.default_id() == usual, "other groups are there");
  for (const auto& [id, states] : model)
    for (const auto& [port, wanted] : states) {
      const chip::StpState* const state = trees.state(id, port);
      require(state != nullptr && static_cast<int>(*state) == wanted, "a port is in another state");
      require(trees.forwards(id, port) == (wanted == 4), "a port forwards, or not");
    }
  for (const auto& [vlan, wanted] : group_of) {
    const chip::Vlan* const found = vlans.find(vlan);
    require(found != nullptr && found->spanning_tree == wanted, "a VLAN is in another group");
  }
}

void fuzz_translations(Input& input) {
  using Table = chip::VlanTranslations;
  const chip::Ports ports(ethernet_ports);
  Table table(ports);
  std::map<std::pair<Port, int>, int> in;
  std::map<std::pair<Port, int>, int> out;
  std::map<std::pair<Port, int>, std::pair<int, int>> outer;  // high end and VLAN
  if (input.any<uint16_t>() == 0xFFFF)                        // seldom, as it takes long
    for (int i = 0; i < Table::capacity - 2; ++i) {
      const Port port = Port::of(1 + i / 4000);
      same(table.add(port, 95 + i % 4000, {5, 0}), Status::ok);
      in[{port, 95 + i % 4000}] = 5;
    }
  while (!input.is_empty()) {
    const int operation = input.from(0, 7);
    const Port port = Port::of(input.near(0, 4));
    const int vlan = input.near(1, 8);
    const int to = input.near(1, 8) & 0xFFFF;
    const chip::Translation translation{static_cast<uint16_t>(to), 0};
    const Status check = !is_port(port) ? Status::bad_port : is_vlan(vlan) ? Status::ok : Status::bad_parameter;
    const bool ingress = input.flag();
    auto& model = ingress ? in : out;
    if (operation < 3) {
      const std::size_t used = ingress ? in.size() + outer.size() : out.size();
      const Status expected = check != Status::ok            ? check
                              : !is_vlan(to)                 ? Status::bad_parameter
                              : model.contains({port, vlan}) ? Status::exists
                              : used == Table::capacity      ? Status::full
                                                             : Status::ok;
      same(ingress ? table.add(port, vlan, translation) : table.add_egress(port, vlan, translation), expected);
      if (expected == Status::ok) model[{port, vlan}] = to;
    } else if (operation < 5) {
      const bool present = model.erase({port, vlan}) == 1;
      same(ingress ? table.remove(port, vlan) : table.remove_egress(port, vlan),
           check == Status::ok && !present ? Status::not_found : check);
    } else {
      const int high = input.near(1, 8);
      const bool good = is_vlan(high) && high >= vlan;
      const bool overlaps = std::any_of(outer.begin(), outer.end(), [&](const auto& range) {
        return range.first.first == port && range.first.second <= high && vlan <= range.second.first;
      });
      if (operation < 7) {
        const Status expected = check != Status::ok                           ? check
                                : !good || !is_vlan(to)                       ? Status::bad_parameter
                                : overlaps                                    ? Status::exists
                                : in.size() + outer.size() == Table::capacity ? Status::full
                                                                              : Status::ok;
        same(table.add_outer(port, vlan, high, translation), expected);
        if (expected == Status::ok) outer[{port, vlan}] = {high, to};
      } else {
        const auto range = outer.find({port, vlan});
        const bool present = range != outer.end() && range->second.first == high;
        same(table.remove_outer(port, vlan, high), check != Status::ok ? check
                                                   : !good             ? Status::bad_parameter
                                                   : present           ? Status::ok
                                                                       : Status::not_found);
        if (check == Status::ok && good && present) outer.erase(range);
      }
    }
  }
  const auto check_table = [](const auto& table_entries, const auto& model) {
    require(table_entries.size() == model.size(), "there are more translations, or fewer");
    for (const auto& [key, to] : table_entries) {
      const auto wanted = model.find({key.port, key.vlan});
      require(wanted != model.end() && wanted->second == to.vlan, "a translation is not as it was set");
    }
  };
  check_table(table.ingress(), in);
  check_table(table.egress(), out);
  require(table.outer().size() == outer.size(), "there are more ranges, or fewer");
  for (const auto& [key, range] : table.outer())
    require(outer.contains({key.port, key.vlan}) &&
                outer[{key.port, key.vlan}] == std::pair<int, int>(range.high, range.outer.vlan),
            "a range is not as it was set");
}

}  // namespace fuzz
