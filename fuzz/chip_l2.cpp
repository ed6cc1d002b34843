// Addresses, trunks, mirrors.
#include <chip/mac_table.h>
#include <chip/mirrors.h>
#include <chip/trunks.h>

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "chip_tables.h"

using chip::MirrorId;
using chip::Place;
using chip::Port;
using chip::Status;
using chip::TrunkId;

namespace fuzz {

namespace {

constexpr int max_criterion = static_cast<int>(chip::TrunkCriterion::both_ips);

/// Addresses of which many share a bucket with others, because the last two bytes are few.
chip::MacEntry mac_entry_from(Input& input) {
  chip::MacEntry entry;
  entry.vlan = static_cast<uint16_t>(input.near(1, 3));
  const auto number = input.any<uint8_t>();
  // Steps that keep the bucket: found once, by trial, for whichever hash the table has.
  static const std::vector<chip::Mac> crowded = [] {
    std::vector<chip::Mac> result;
    for (uint32_t i = 0; result.size() < 8; ++i) {
      const chip::Mac mac{
          2, 0, 0, static_cast<uint8_t>(i >> 16), static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
      if (chip::MacTable::bucket_of(1, mac) == 0) result.push_back(mac);
    }
    return result;
  }();
  entry.mac = number < 128 ? crowded[number % crowded.size()] : chip::Mac{0, 0, 0, 0, 0, number};
  return entry;
}

using MacKey = std::pair<int, chip::Mac>;

}  // namespace

void fuzz_mac_table(Input& input) {
  using Entry = chip::MacEntry;
  const chip::Ports ports(ethernet_ports);
  chip::MacTable table(ports);
  std::map<MacKey, Entry> model;
  int added = 0;
  int removed = 0;
  table.observe([&](chip::MacTable::Change change, const Entry&) {
    ++(change == chip::MacTable::Change::added ? added : removed);
  });
  int expected_added = 0;
  int expected_removed = 0;
  int age_time = chip::MacTable::default_age_time;
  int64_t since = 0;
  const auto used = [&](int bucket) {
    return std::count_if(model.begin(), model.end(), [&](const auto& one) {
      return chip::MacTable::bucket_of(one.first.first, one.first.second) == bucket;
    });
  };
  while (!input.is_empty()) {
    const int operation = input.from(0, 9);
    Entry entry = mac_entry_from(input);
    const MacKey key{entry.vlan, entry.mac};
    const auto found = model.find(key);
    const bool present = found != model.end();
    const Entry* const stored = table.find(entry.vlan, entry.mac);
    require(stored == nullptr ? !present : present && *stored == found->second, "an entry is there, or not");
    const Status of_key = !is_vlan(entry.vlan) ? Status::bad_parameter : present ? Status::ok : Status::not_found;
    if (!present) same(table.absent(entry.vlan), of_key);
    if (operation < 5) {
      constexpr int on_trunk = 2;
      constexpr uint32_t flags[] = {0, Entry::fixed, 0, Entry::fixed | Entry::discard_source, 0x1};
      const int kind = input.from(0, 4);
      entry.flags = flags[kind];
      if (kind == on_trunk)
        entry.place = TrunkId::of(input.from(0, 3));
      else if (input.flag())
        entry.place = Port::of(input.near(0, ethernet_ports));
      else
        entry.place = chip::VirtualPortId::of(input.from(1, 3));
      entry.tunnel = input.flag() ? 7 : 0;
      entry.source_hit = input.flag();
      const Port* const port = std::get_if<Port>(&entry.place);
      const bool is_place = port == nullptr || is_port(*port);
      const bool is_full = !present && used(chip::MacTable::bucket_of(entry.vlan, entry.mac)) == chip::MacTable::ways;
      const Status expected = !is_vlan(entry.vlan) || entry.flags == 0x1 ? Status::bad_parameter
                              : !is_place                                ? Status::bad_port
                              : is_full                                  ? Status::full
                                                                         : Status::ok;
      same(table.add(entry), expected);
      if (expected != Status::ok) continue;
      ++expected_added;
      expected_removed += present;
      model[key] = entry;
    } else if (operation == 5) {
      same(table.remove(entry.vlan, entry.mac), of_key);
      expected_removed += present;
      model.erase(key);
    } else if (operation == 6) {
      const auto flags = static_cast<uint32_t>(input.near(0, 7));
      const Place place = Port::of(input.from(0, ethernet_ports));
      const bool good = flags <= 7;
      same(table.remove_if(flags, [&](const Entry& one) { return one.place == place; }),
           good ? Status::ok : Status::bad_parameter);
      if (!good) continue;
      const auto count = static_cast<int>(std::erase_if(model, [&](const auto& one) {
        return one.second.place == place && (!one.second.is(Entry::fixed) || (flags & chip::MacTable::fixed_too) != 0);
      }));
      if ((flags & chip::MacTable::silently) == 0) expected_removed += count;
    } else if (operation == 7) {
      if (present) {
        table.hit(*table.find(key.first, key.second), &Entry::destination_hit);
        found->second.destination_hit = true;
      }
    } else if (operation == 8) {
      const int seconds = input.near(0, 100);
      const bool good = seconds >= 0 && seconds <= chip::MacTable::max_age_time;
      same(table.set_age_time(seconds), good ? Status::ok : Status::bad_parameter);
      if (good) {
        age_time = seconds;
        since = 0;
      }
    } else {
      const int seconds = input.from(0, 399);
      table.pass(seconds);
      if (age_time == 0) continue;
      for (since += seconds; since >= age_time; since -= age_time) {
        expected_removed += static_cast<int>(std::erase_if(model, [](const auto& one) {
          const Entry& old = one.second;
          return !old.is(Entry::fixed) && !old.source_hit && !old.destination_hit;
        }));
        for (auto& [ignored, old] : model)
          if (!old.is(Entry::fixed)) old.source_hit = old.destination_hit = false;
      }
    }
    require(added == expected_added && removed == expected_removed, "the observer was told something else");
  }
  require(table.size() == static_cast<int>(model.size()), "there are more addresses, or fewer");
  std::map<chip::MacScope, int> learned{{chip::AllAddresses{}, 0}};
  for (const auto& [key, wanted] : model) {
    const Entry* const entry = table.find(key.first, key.second);
    require(entry != nullptr && *entry == wanted, "an entry is not as it was set");
    if (!wanted.is(Entry::fixed))
      for (const chip::MacScope& scope : chip::scopes_of(wanted)) ++learned[scope];
  }
  for (const auto& [scope, count] : learned) require(table.learned(scope) == count, "a scope counts otherwise");
}

void fuzz_trunks(Input& input) {
  const chip::Ports ports(ethernet_ports);
  chip::Trunks trunks(ports);
  std::map<TrunkId, chip::Trunk> model;
  bool attached = true;
  const auto trunk_of = [&](Port port) -> std::optional<TrunkId> {
    for (const auto& [id, trunk] : model)
      if (std::find(trunk.members.begin(), trunk.members.end(), port) != trunk.members.end()) return id;
    return std::nullopt;
  };
  if (input.any<uint16_t>() == 0xFFFF)  // seldom, as it takes long
    for (int number = 0; number < chip::Trunks::capacity - 1; ++number) {
      TrunkId made = -1;
      same(trunks.create(0, made), Status::ok);
      require(made.number() == number, "the id is not the lowest free one");
      model[made] = {};
    }
  while (!input.is_empty()) {
    const int operation = input.from(0, 9);
    TrunkId id = TrunkId::of(input.near(0, 6));
    const bool valid = id.number() >= 0 && id.number() < chip::Trunks::capacity;
    const bool present = model.contains(id);
    const Status expected = !attached  ? Status::not_initialized
                            : !valid   ? Status::bad_parameter
                            : !present ? Status::not_found
                                       : Status::ok;
    if (operation < 3) {
      constexpr uint32_t flags[] = {0, 0x10, 0x1};
      const uint32_t how = flags[input.from(0, 2)];
      const bool is_full = model.size() == chip::Trunks::capacity;
      if (how == 0) {
        same(trunks.create(how, id), !attached ? Status::not_initialized : is_full ? Status::full : Status::ok);
        if (!attached || is_full) continue;
        int free = 0;
        while (model.contains(TrunkId::of(free))) ++free;
        require(id.number() == free, "the id is not the lowest free one");
        model[id] = {};
      } else {
        same(trunks.create(how, id), !attached     ? Status::not_initialized
                                     : how != 0x10 ? Status::bad_parameter
                                     : present     ? Status::exists
                                     : valid       ? Status::ok
                                                   : Status::bad_parameter);
        if (attached && how == 0x10 && valid) model.try_emplace(id);
      }
    } else if (operation == 3) {
      same(trunks.destroy(id), expected);
      if (attached) model.erase(id);
    } else if (operation < 7) {
      const int criterion = input.near(0, max_criterion);
      const bool is_criterion = criterion >= 0 && criterion <= max_criterion;
      std::vector<Port> members(static_cast<std::size_t>(input.from(0, 9)));
      Status of_members = members.size() > chip::Trunks::max_members ? Status::full : Status::ok;
      for (Port& port : members) {
        port = Port::of(input.near(0, ethernet_ports));
        const std::optional<TrunkId> other = trunk_of(port);
        if (of_members == Status::ok && !is_port(port)) of_members = Status::bad_port;
        if (of_members == Status::ok && other && other != id) of_members = Status::exists;
      }
      const Status result = expected != Status::ok ? expected : !is_criterion ? Status::bad_parameter : of_members;
      same(trunks.set(id, criterion, members), result);
      if (result == Status::ok) model[id] = {static_cast<chip::TrunkCriterion>(criterion), members};
    } else if (operation == 7) {
      const int criterion = input.near(0, max_criterion);
      const bool good = criterion >= 0 && criterion <= max_criterion;
      same(trunks.set_criterion(id, criterion), expected == Status::ok && !good ? Status::bad_parameter : expected);
      if (expected == Status::ok && good) model[id].criterion = static_cast<chip::TrunkCriterion>(criterion);
    } else if (input.any<uint8_t>() < 16) {
      attached = operation == 8;
      model.clear();
      if (attached)
        trunks.reset();
      else
        trunks.detach();
    }
    for (const Port port : ports.all()) require(trunks.trunk_of(port) == trunk_of(port), "a port is in another trunk");
    require((trunks.find(id) != nullptr) == model.contains(id), "a trunk is there, or not");
    if (!model.contains(id))
      same(trunks.absent(id), !attached ? Status::not_initialized : valid ? Status::not_found : Status::bad_parameter);
  }
  require(trunks.all().size() == model.size(), "there are more trunks, or fewer");
  for (const auto& [id, trunk] : trunks.all())
    require(model.contains(id) && model[id].criterion == trunk.criterion && model[id].members == trunk.members,
            "a trunk is not as it was set");
}

void fuzz_mirrors(Input& input) {
  const chip::Ports ports(ethernet_ports);
  chip::Mirrors mirrors(ports);
  std::map<MirrorId, Place> destinations;
  std::map<std::pair<Port, MirrorId>, uint32_t> sources;
  while (!input.is_empty()) {
    const int operation = input.from(0, 9);
    MirrorId id = MirrorId::of(input.from(0, 5));
    if (input.any<uint8_t>() < 8) id = MirrorId::of(input.any<int>());
    const bool present = destinations.contains(id);
    if (operation < 4) {
      const auto flags = static_cast<uint32_t>(input.near(0, 3));
      const Port port = Port::of(input.near(0, ethernet_ports));
      const bool of_other_kind = input.any<uint8_t>() < 8;
      const Place to = of_other_kind ? Place(TrunkId::of(port.number())) : port;
      const bool with_id = (flags & 2) != 0;
      const bool replaces = with_id && present && (flags & 1) != 0;
      const Status expected = flags > 3 || flags == 1                 ? Status::bad_parameter
                              : of_other_kind || !is_port(port)       ? Status::bad_port
                              : with_id && id.number() < 0            ? Status::bad_id
                              : with_id && present && !replaces       ? Status::exists
                              : destinations.size() == 4 && !replaces ? Status::full
                                                                      : Status::ok;
      same(mirrors.create(flags, to, id), expected);
      if (expected != Status::ok) continue;
      if (!with_id) {
        int free = 0;
        while (destinations.contains(MirrorId::of(free))) ++free;
        require(id.number() == free, "the id is not the lowest free one");
      }
      destinations[id] = to;
    } else if (operation < 6) {
      const bool busy =
          std::any_of(sources.begin(), sources.end(), [&](const auto& one) { return one.first.second == id; });
      same(mirrors.destroy(id), busy ? Status::busy : present ? Status::ok : Status::not_found);
      if (!busy) destinations.erase(id);
    } else {
      const Port port = Port::of(input.near(0, ethernet_ports));
      const auto flags = static_cast<uint32_t>(input.near(0, 7));
      const uint32_t directions = flags & 6;
      const Status check = !is_port(port)                  ? Status::bad_port
                           : flags > 7 || (flags & 1) == 0 ? Status::bad_parameter
                           : !present                      ? Status::not_found
                                                           : Status::ok;
      const auto source = sources.find({port, id});
      const bool is_source = source != sources.end();
      if (operation < 8) {
        const bool new_one = !is_source || (directions & ~source->second) != 0;
        same(mirrors.add_source(port, flags, id), check == Status::ok && !new_one ? Status::exists : check);
        if (check == Status::ok) sources[{port, id}] |= directions;
      } else {
        const bool there = is_source && (directions == 0 || (source->second & directions) != 0);
        same(mirrors.remove_source(port, flags, id), check == Status::ok && !there ? Status::not_found : check);
        if (check != Status::ok || !there) continue;
        source->second &= ~directions;
        if (source->second == 0) sources.erase(source);
      }
    }
  }
  const auto is_same = [](const auto& one, const auto& other) {
    return one.first == other.first && one.second.value == other.second;
  };
  require(std::ranges::equal(mirrors.destinations(), destinations, is_same) &&
              std::ranges::equal(mirrors.sources(), sources, is_same),
          "other mirrors are there");
}

}  // namespace fuzz
