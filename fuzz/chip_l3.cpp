// Hosts, routes, interfaces, multicast groups and virtual ports.
#include <chip/hosts.h>
#include <chip/l3_interfaces.h>
#include <chip/multicast_groups.h>
#include <chip/routes.h>
#include <chip/virtual_ports.h>

#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "chip_tables.h"

using chip::GroupId;
using chip::Port;
using chip::Status;
using chip::VirtualPortId;

namespace fuzz {

namespace {

/// Hosts and routes answer alike; what differs is the key and when there is no room.
template <class Table, class Key, class IsFull>
void fuzz_entries(Table& table, std::map<Key, chip::L3Entry>& model, Input& input, const Key& key, IsFull is_full) {
  const int operation = input.from(0, 7);
  const auto found = model.find(key);
  const bool present = found != model.end();
  const Status expected = present ? Status::ok : Status::not_found;
  if (operation < 4) {
    chip::L3Entry entry;
    entry.interface = input.from(0, 5);
    const bool replace = input.flag();
    const Status of_add = present ? (replace ? Status::ok : Status::exists) : is_full() ? Status::full : Status::ok;
    same(table.add(key, entry, replace), of_add);
    if (of_add == Status::ok) model[key] = entry;
  } else if (operation == 4) {
    same(table.remove(key), expected);
    if (present) model.erase(found);
  } else if (operation == 5) {
    const auto hits = input.any<uint8_t>();
    same(table.hit(key, hits), expected);
    if (present) found->second.hit |= hits & chip::L3Entry::any_hit;
  } else if (operation == 6) {
    const bool clear = input.flag();
    chip::L3Entry* const entry = table.find(key);
    require((entry != nullptr) == present, "an entry is there, or not");
    if (!present) return;
    require(entry->hit == found->second.hit && entry->interface == found->second.interface, "the entry is another one");
    if (clear) entry->hit = found->second.hit = 0;
  } else if (input.any<uint8_t>() < 8) {
    table.clear();
    model.clear();
  }
  require(table.size() == model.size(), "there are more entries, or fewer");
  for (int interface = 0; interface <= 5; ++interface)
    require(table.uses(interface) == std::count_if(model.begin(), model.end(),
                                                   [&](const auto& one) { return one.second.interface == interface; }),
            "an interface has more entries, or fewer");
}

}  // namespace

void fuzz_hosts(Input& input) {
  chip::Hosts hosts;
  std::map<chip::HostKey, chip::L3Entry> model;
  static const std::vector<uint32_t> crowded = [] {
    std::vector<uint32_t> result;
    for (uint32_t address = 0; result.size() < 16; ++address)
      if (chip::Hosts::bucket_of({0, address}) == 0) result.push_back(address);
    return result;
  }();
  while (!input.is_empty()) {
    const auto number = input.any<uint8_t>();
    const chip::HostKey key{number < 200 ? 0 : number % 2, number < 160 ? crowded[number % crowded.size()] : number};
    const int bucket = chip::Hosts::bucket_of(key);
    fuzz_entries(hosts, model, input, key, [&] {
      return std::count_if(model.begin(), model.end(), [&](const auto& one) {
               return chip::Hosts::bucket_of(one.first) == bucket;
             }) == chip::Hosts::ways;
    });
  }
}

void fuzz_routes(Input& input) {
  chip::Routes routes;
  std::map<chip::RouteKey, chip::L3Entry> model;
  const bool many = input.any<uint16_t>() == 0xFFFF;  // seldom, as it takes long
  if (many)
    for (uint32_t i = 0; i < chip::Routes::capacity - 2; ++i) {
      const chip::RouteKey key{7, i, 32};
      same(routes.add(key, {.interface = 9}, false), Status::ok);
      model[key] = {.interface = 9};
    }
  for (int steps = 0; !input.is_empty() && steps < (many ? 20 : 1000); ++steps) {
    const int length = input.near(0, 32);
    const uint32_t mask_bits = length >= 0 && length <= 32 ? chip::Routes::mask(length) : static_cast<uint32_t>(length);
    const uint32_t address = 0x0A000000U | input.any<uint8_t>();
    // Ones first and then zeros: the complement is one less than a power of two.
    const bool good = (~mask_bits & (~mask_bits + 1)) == 0;
    const std::optional<chip::RouteKey> key = chip::Routes::key_of(0, address, mask_bits);
    require(key.has_value() == good, "a mask is taken, or not");
    if (good) fuzz_entries(routes, model, input, *key, [&] { return model.size() == chip::Routes::capacity; });

    const uint32_t target = 0x0A000000U | input.any<uint8_t>();
    const chip::L3Entry* const entry = routes.lookup(0, target);
    int best = -1;
    const chip::L3Entry* wanted = nullptr;
    for (const auto& [route, one] : model)
      if (route.vrf == 0 && route.length > best && (target & chip::Routes::mask(route.length)) == route.subnet) {
        best = route.length;
        wanted = &one;
      }
    require((entry == nullptr) == (wanted == nullptr), "an address has a route, or not");
    require(entry == nullptr || entry->interface == wanted->interface, "an address takes another route");
  }
}

void fuzz_interfaces(Input& input) {
  chip::L3Interfaces interfaces;
  using Identity = std::tuple<int, uint8_t, int, int>;
  std::map<Identity, int> model;
  while (!input.is_empty()) {
    chip::L3Interface interface;
    interface.vrf = input.from(0, 1);
    interface.mac[5] = static_cast<uint8_t>(input.from(0, 2));
    interface.vlan = static_cast<uint16_t>(input.near(1, 4));
    interface.inner_vlan = static_cast<uint16_t>(input.near(0, 2));
    const Identity identity{interface.vrf, interface.mac[5], interface.vlan, interface.inner_vlan};
    const bool good = interface.vlan >= 1 && interface.vlan <= 4095 && interface.inner_vlan <= 4095;
    const auto found = model.find(identity);
    int id = input.near(1, 6);
    if (input.flag()) {
      std::set<int> used;
      for (const auto& [ignored, one] : model) used.insert(one);
      int free = 1;
      while (used.contains(free)) ++free;
      same(interfaces.create(interface, id), !good                  ? Status::bad_parameter
                                             : found != model.end() ? Status::exists
                                                                    : Status::ok);
      if (!good || found != model.end()) continue;
      require(id == free, "the id is not the lowest free one");
      model[identity] = id;
    } else if (input.flag()) {
      const bool present = std::erase_if(model, [&](const auto& one) { return one.second == id; }) == 1;
      const bool valid = id >= 1 && id <= chip::L3Interfaces::capacity;
      same(interfaces.remove(id), present ? Status::ok : valid ? Status::not_found : Status::bad_parameter);
    } else {
      const std::optional<int> same_one = interfaces.find_same(interface);
      require(same_one == (found == model.end() ? std::nullopt : std::optional(found->second)),
              "another interface is the same");
      int lowest = INT_MAX;
      for (const auto& [other, one] : model)
        if (std::get<2>(other) == interface.vlan) lowest = std::min(lowest, one);
      require(interfaces.find_by_vlan(interface.vlan).value_or(INT_MAX) == lowest,
              "another interface is the VLAN's first");
    }
    require(interfaces.all().size() == model.size(), "there are more interfaces, or fewer");
  }
}

void fuzz_multicast_groups(Input& input) {
  using Groups = chip::MulticastGroups;
  constexpr uint32_t types[] = {Groups::l2, Groups::l3, Groups::vlan, 0, Groups::l2 | Groups::l3};
  const chip::Ports ports(ethernet_ports);
  Groups groups(ports);
  struct Group {
    uint32_t type;
    std::set<std::pair<Port, int>> members{};
  };
  std::map<GroupId, Group> model;
  if (input.any<uint16_t>() == 0xFFFF)  // seldom, as it takes long
    for (int number = 1; number < Groups::capacity - 1; ++number) {
      GroupId made;
      same(groups.create(Groups::l2, made), Status::ok);
      require(made.number() == number, "the id is not the lowest free one");
      model[made] = {Groups::l2};
    }
  while (!input.is_empty()) {
    const int operation = input.from(0, 7);
    GroupId id = GroupId::of(input.near(1, 6));
    const bool valid = id.number() >= 1 && id.number() <= Groups::capacity;
    const auto found = model.find(id);
    const bool present = found != model.end();
    const Status expected = present ? Status::ok : valid ? Status::not_found : Status::bad_parameter;
    if (operation < 3) {
      const int kind = input.from(0, 4);
      const bool with_id = input.flag();
      const bool good = kind < 3;
      const bool is_full = !with_id && model.size() == Groups::capacity;
      const Status of_create = !good                ? Status::bad_parameter
                               : with_id && present ? Status::exists
                               : with_id && !valid  ? Status::bad_parameter
                               : is_full            ? Status::full
                                                    : Status::ok;
      same(groups.create(types[kind] | (with_id ? 1U : 0U), id), of_create);
      if (of_create != Status::ok) continue;
      if (!with_id) {
        int free = 1;
        while (model.contains(GroupId::of(free))) ++free;
        require(id.number() == free, "the id is not the lowest free one");
      }
      model[id] = {types[kind]};
    } else if (operation == 3) {
      same(groups.destroy(id), expected);
      if (present) model.erase(found);
    } else {
      const Port port = Port::of(input.near(0, ethernet_ports));
      constexpr int encapsulations[] = {-1, 1, 2, 0x100001, 0x100002, 0, 0x100000};
      const int kind = input.from(0, 6);
      const chip::MulticastMember member{port, encapsulations[kind]};
      const auto takes = [&](uint32_t type) {
        return kind == 0 ? type != Groups::l3 : kind < 3 ? type == Groups::l3 : kind < 5 && type == Groups::vlan;
      };
      Status of_member = expected;
      if (present)
        of_member = !takes(found->second.type) ? Status::bad_parameter : !is_port(port) ? Status::bad_port : Status::ok;
      const bool is_member = present && found->second.members.contains({port, member.encapsulation});
      if (operation < 7) {
        same(groups.add_member(id, member), of_member == Status::ok && is_member ? Status::exists : of_member);
        if (of_member == Status::ok) found->second.members.insert({port, member.encapsulation});
      } else {
        same(groups.remove_member(id, member), of_member == Status::ok && !is_member ? Status::not_found : of_member);
        if (of_member == Status::ok) found->second.members.erase({port, member.encapsulation});
      }
    }
  }
  require(groups.all().size() == model.size(), "there are more groups, or fewer");
  for (const auto& [id, group] : groups.all()) {
    std::set<std::pair<Port, int>> members;
    for (const chip::MulticastMember& member : group.members) members.insert({member.port, member.encapsulation});
    require(model.contains(id) && model.at(id).type == group.type && model.at(id).members == members,
            "a group is not as it was made");
  }
}

void fuzz_virtual_ports(Input& input) {
  using Virtual = chip::VirtualPort;
  const chip::Ports ports(ethernet_ports);
  chip::VirtualPorts table(ports);
  using Match = std::tuple<Port, int, int>;
  std::map<VirtualPortId, Match> model;
  const auto id_of = [&](const Match& match) -> std::optional<VirtualPortId> {
    for (const auto& [id, one] : model)
      if (one == match) return id;
    return std::nullopt;
  };
  while (!input.is_empty()) {
    Virtual wanted;
    wanted.criteria = input.near(Virtual::match_port_vlan, Virtual::match_port_vlan_stacked);
    wanted.port = Port::of(input.near(0, ethernet_ports));
    const bool takes_frames = is_port(wanted.port) && input.flag();
    wanted.match_vlan = static_cast<uint16_t>(input.near(1, 3));
    wanted.match_inner_vlan = static_cast<uint16_t>(input.near(1, 3));
    wanted.egress_vlan = static_cast<uint16_t>(input.near(0, 3));
    const bool stacked = wanted.criteria == Virtual::match_port_vlan_stacked;
    const bool good = (stacked || wanted.criteria == Virtual::match_port_vlan) && is_vlan(wanted.match_vlan) &&
                      (!stacked || is_vlan(wanted.match_inner_vlan));
    const Status check = !good ? Status::bad_parameter : is_port(wanted.port) ? Status::ok : Status::bad_port;
    const Match match{wanted.port, wanted.match_vlan, stacked ? wanted.match_inner_vlan : 0};
    const std::optional<VirtualPortId> present = id_of(match);
    if (takes_frames && good)
      require(present == (stacked ? table.matching(wanted.port, wanted.match_vlan, wanted.match_inner_vlan)
                                  : table.matching(wanted.port, wanted.match_vlan)),
              "another virtual port takes the frames");
    const int operation = input.from(0, 3);
    if (operation < 2) {
      VirtualPortId id;
      const Status expected = check != Status::ok         ? check
                              : wanted.egress_vlan > 4095 ? Status::bad_parameter
                              : present                   ? Status::exists
                                                          : Status::ok;
      same(table.create(wanted, id), expected);
      if (expected != Status::ok) continue;
      int free = 1;
      while (model.contains(VirtualPortId::of(free))) ++free;
      require(id.number() == free, "the number is not the lowest free one");
      model[id] = match;
    } else if (operation == 2) {
      const VirtualPortId id = VirtualPortId::of(input.near(1, 6));
      const bool valid = id.number() >= 1 && id.number() <= chip::VirtualPorts::capacity;
      const Status absent = valid ? Status::not_found : Status::bad_parameter;
      require((table.find(id) != nullptr) == model.contains(id), "a virtual port is there, or not");
      if (!model.contains(id)) same(table.absent(id), absent);
      same(table.destroy(id), model.erase(id) == 1 ? Status::ok : absent);
    } else {
      const bool found = check == Status::ok && present;
      require(table.find_match(wanted) == (found ? present : std::nullopt), "another virtual port matches");
      if (!found) same(table.absent_match(wanted), check != Status::ok ? check : Status::not_found);
    }
    require(table.all().size() == model.size(), "there are more virtual ports, or fewer");
  }
}

}  // namespace fuzz
