// Slots, and what is little more than slots.
#include <chip/field_processor.h>
#include <chip/keyed_slots.h>
#include <chip/policers.h>

#include <climits>
#include <cstdint>
#include <map>
#include <vector>

#include "chip_tables.h"

using chip::Status;

namespace fuzz {

namespace {

/// The lowest id from `first` on that is free, or -1 when `capacity` are used.
template <class Item>
int lowest_free(const std::map<int, Item>& model, int first, int capacity) {
  if (static_cast<int>(model.size()) == capacity) return -1;
  int id = first;
  while (model.contains(id)) ++id;
  return id;
}

}  // namespace

void fuzz_slots(Input& input) {
  const int first = input.from(0, 2);
  const int capacity = input.from(1, 12);
  chip::Slots<int> slots(first, capacity);
  std::map<int, int> model;
  const auto absent = [&](int id) {
    return id >= first && id < first + capacity ? Status::not_found : Status::bad_parameter;
  };
  while (!input.is_empty()) {
    const int operation = input.from(0, 15);
    int id = input.near(first, first + capacity - 1);
    const int item = input.any<uint8_t>();
    const bool present = model.contains(id);
    const bool valid = absent(id) == Status::not_found;
    if (operation < 5) {
      const int free = lowest_free(model, first, capacity);
      same(slots.add(item, id), free < 0 ? Status::full : Status::ok);
      if (free < 0) continue;
      require(id == free, "the id is not the lowest free one");
      model[id] = item;
    } else if (operation < 7) {
      same(slots.add_with_id(item, id), present ? Status::exists : valid ? Status::ok : Status::bad_parameter);
      if (valid) model.try_emplace(id, item);
    } else if (operation < 9) {
      same(slots.put(item, id), valid ? Status::ok : Status::bad_parameter);
      if (valid) model[id] = item;
    } else if (operation < 14) {
      same(slots.remove(id), present ? Status::ok : absent(id));
      model.erase(id);
    } else if (operation == 14) {
      slots.clear();
      model.clear();
    }
    require((slots.find(id) != nullptr) == model.contains(id), "an item is there, or not");
    same(slots.absent(id), absent(id));
    require(slots.full() == (static_cast<int>(model.size()) == capacity), "full, or not");
    require(slots.all() == model, "the slots hold something else");
  }
}

namespace {

struct KeyedItem {
  int key;
  int value;
  bool operator==(const KeyedItem&) const = default;
};
struct ItemKey {
  int key;
  bool operator==(const ItemKey&) const = default;
  std::size_t hash() const { return static_cast<std::size_t>(key % 2); }
};
ItemKey item_key(const KeyedItem& item) { return {item.key}; }

}  // namespace

void fuzz_keyed_slots(Input& input) {
  constexpr int first = 1;
  const int capacity = input.from(1, 12);
  chip::KeyedSlots<KeyedItem, item_key> slots(first, capacity);
  std::map<int, KeyedItem> model;
  const auto id_of = [&](int key) {
    for (const auto& [id, item] : model)
      if (item.key == key) return id;
    return -1;
  };
  while (!input.is_empty()) {
    const int operation = input.from(0, 15);
    const KeyedItem item{input.from(0, 15), input.any<uint8_t>()};
    int id = input.near(first, capacity);
    if (operation < 8) {
      const int free = lowest_free(model, first, capacity);
      const bool exists = id_of(item.key) >= 0;
      same(slots.add(item, id), exists ? Status::exists : free < 0 ? Status::full : Status::ok);
      if (!exists && free >= 0) {
        require(id == free, "the id is not the lowest free one");
        model[id] = item;
      }
    } else if (operation < 15) {
      const bool valid = id >= first && id < first + capacity;
      same(slots.remove(id), model.erase(id) == 1 ? Status::ok : valid ? Status::not_found : Status::bad_parameter);
    } else {
      slots.clear();
      model.clear();
    }
    require(slots.find_id({item.key}).value_or(-1) == id_of(item.key), "another item has the key");
    require(slots.all() == model, "the slots hold something else");
  }
}

namespace {

uint32_t up_to_eights(uint32_t value) {
  const uint64_t wide = (uint64_t{value} + 7) / 8 * 8;
  return wide > UINT32_MAX ? UINT32_MAX - 7 : static_cast<uint32_t>(wide);
}

chip::Policer policer_from(Input& input) {
  chip::Policer policer;
  policer.mode = input.near(0, 3);
  for (chip::Meter* const meter : {&policer.committed, &policer.peak})
    *meter = {.kilobits_per_second = input.any<uint32_t>(),
              .burst_kilobits = input.any<uint16_t>(),
              .burst_bits = input.any<uint32_t>()};
  policer.attached = input.any<uint8_t>();  // not the caller's to say
  return policer;
}

bool holds(const chip::Meter& meter, const chip::Meter& wanted) {
  return meter.kilobits_per_second == up_to_eights(wanted.kilobits_per_second) &&
         meter.burst_bits == up_to_eights(wanted.burst_bits) && meter.burst_kilobits == wanted.burst_kilobits;
}

}  // namespace

void fuzz_policers(Input& input) {
  constexpr int first = 1;
  chip::Policers policers;
  std::map<int, chip::Policer> model;
  if (input.any<uint16_t>() == 0xFFFF)  // seldom, as it takes long
    for (int id = first; id < first + chip::Policers::capacity - 2; ++id) {
      int made = 0;
      same(policers.create({}, made), Status::ok);
      require(made == id, "the id is not the lowest free one");
      model[id] = {};
    }
  while (!input.is_empty()) {
    const int operation = input.from(0, 4);
    int id = input.near(first, 8);
    const auto found = model.find(id);
    const Status absent =
        id >= first && id < first + chip::Policers::capacity ? Status::not_found : Status::bad_parameter;
    const bool present = found != model.end();
    if (operation < 2) {
      chip::Policer policer = policer_from(input);
      const bool valid = policer.mode >= 0 && policer.mode <= 3;
      if (operation == 0) {
        const int free = lowest_free(model, first, chip::Policers::capacity);
        same(policers.create(policer, id), !valid ? Status::bad_parameter : free < 0 ? Status::full : Status::ok);
        if (!valid || free < 0) continue;
        require(id == free, "the id is not the lowest free one");
        policer.attached = 0;
      } else {
        same(policers.set(id, policer), !valid ? Status::bad_parameter : present ? Status::ok : absent);
        if (!valid || !present) continue;
        policer.attached = found->second.attached;
      }
      model[id] = policer;
    } else if (operation == 2) {
      const bool busy = present && found->second.attached > 0;
      same(policers.destroy(id), !present ? absent : busy ? Status::busy : Status::ok);
      if (present && !busy) model.erase(found);
    } else if (operation == 3) {
      same(policers.attach(id), present ? Status::ok : absent);
      if (present) ++found->second.attached;
    } else {
      const bool attached = present && found->second.attached > 0;
      same(policers.detach(id), attached ? Status::ok : present ? Status::not_found : absent);
      if (attached) --found->second.attached;
    }
  }
  require(policers.all().size() == model.size(), "there are more policers, or fewer");
  for (const auto& [id, wanted] : model) {
    const chip::Policer* const policer = policers.find(id);
    require(policer != nullptr && policer->attached == wanted.attached && policer->mode == wanted.mode &&
                holds(policer->committed, wanted.committed) && holds(policer->peak, wanted.peak),
            "a policer is not as it was set");
  }
}

namespace {

/// A group, and an entry, of the model. One qualifier stands for all: they differ in their widths alone.
struct GroupModel {
  bool ingress;
  bool enabled = false;
  int priority = 0;
};
struct EntryModel {
  int group;
  int priority = -1;
  bool matches_type = false;
  unsigned type = 0;
  unsigned mask = 0;
  bool installed = false;
  bool installed_matches = false;
  unsigned installed_type = 0;
  unsigned installed_mask = 0;
  int installation = 0;
};

}  // namespace

void fuzz_field_processor(Input& input) {
  using Fields = chip::FieldProcessor;
  constexpr int ether_type = static_cast<int>(chip::FieldQualifier::ether_type);
  const chip::Ports ports(ethernet_ports);
  chip::Policers policers;
  Fields fields(ports, policers);
  std::map<int, GroupModel> groups;
  std::map<int, EntryModel> entries;
  int installations = 0;
  const auto entries_of = [&](int group) {
    return static_cast<int>(
        std::count_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.second.group == group; }));
  };
  const auto free_slices = [&](bool ingress) {
    int free = ingress ? Fields::ingress_slices : Fields::egress_slices;
    for (const auto& [id, group] : groups)
      if (group.ingress == ingress) free -= std::max(1, (entries_of(id) + 255) / 256);
    return free;
  };

  while (!input.is_empty()) {
    const int operation = input.from(0, 11);
    int id = input.near(1, 12);
    const auto group = groups.find(id);
    const auto entry = entries.find(id);
    const Status entry_status = entry == entries.end() ? Status::not_found : Status::ok;
    const bool has_entry = entry_status == Status::ok;
    if (operation == 0) {
      const bool ingress = input.flag();
      const bool room = free_slices(ingress) > 0;
      const int stage = ingress ? Fields::ingress_stage : Fields::egress_stage;
      const int priority = input.from(0, 7);
      int made = 0;
      same(fields.create_group({stage, ether_type}, priority, made), room ? Status::ok : Status::no_resource);
      if (!room) continue;
      require(made == lowest_free(groups, 1, Fields::ingress_slices + Fields::egress_slices), "another id");
      groups[made] = {.ingress = ingress, .priority = priority};
    } else if (operation == 1) {
      const bool on = input.flag();
      same(fields.enable_group(id, on), group == groups.end() ? Status::not_found : Status::ok);
      if (group != groups.end()) group->second.enabled = on;
    } else if (operation < 4) {
      // A whole slice at once now and then, so that groups run out of them.
      const int count = input.any<uint8_t>() == 0xFF ? Fields::slice_entries : 1;
      for (int i = 0; i < count; ++i) {
        const int used = group == groups.end() ? 0 : entries_of(id);
        const bool is_full = used > 0 && used % 256 == 0 && free_slices(group->second.ingress) == 0;
        const Status expected = group == groups.end() ? Status::not_found : is_full ? Status::full : Status::ok;
        int made = 0;
        same(fields.create_entry(id, made), expected);
        if (expected != Status::ok) break;
        require(made == lowest_free(entries, 1, INT_MAX), "another id");
        entries[made] = {.group = id};
      }
    } else if (operation == 4) {
      const bool busy = has_entry && entry->second.installed;
      same(fields.destroy_entry(id), busy ? Status::busy : entry_status);
      if (has_entry && !busy) entries.erase(entry);
    } else if (operation == 5) {
      const unsigned type = 0x800 + input.any<uint8_t>() % 4u;
      const unsigned mask = input.flag() ? 0xFFFF : 0xFFFE;
      same(fields.qualify(id, chip::FieldQualifier::ether_type, {uint64_t{type}, uint64_t{mask}}), entry_status);
      if (!has_entry) continue;
      entry->second.matches_type = true;
      entry->second.type = type;
      entry->second.mask = mask;
    } else if (operation == 6) {
      same(fields.clear_qualifiers(id), entry_status);
      if (has_entry) entry->second.matches_type = false;
    } else if (operation == 7) {
      const int priority = input.near(-1, 3);
      same(fields.set_priority(id, priority), !has_entry      ? Status::not_found
                                              : priority < -1 ? Status::bad_parameter
                                                              : Status::ok);
      if (has_entry && priority >= -1) entry->second.priority = priority;
    } else if (operation < 10) {
      const bool again = operation == 9;
      const bool installed = has_entry && entry->second.installed;
      const Status expected = !has_entry           ? Status::not_found
                              : again == installed ? Status::ok
                              : again              ? Status::not_found
                                                   : Status::exists;
      same(again ? fields.reinstall(id) : fields.install(id), expected);
      if (expected != Status::ok) continue;
      EntryModel& model = entry->second;
      model.installed = true;
      model.installed_matches = model.matches_type;
      model.installed_type = model.type;
      model.installed_mask = model.mask;
      if (!again) model.installation = ++installations;
    } else if (operation == 10) {
      same(fields.remove(id), entry_status);
      if (has_entry) entry->second.installed = false;
    } else {
      chip::FrameFields frame;
      frame.ether_type = static_cast<uint16_t>(0x800 + input.any<uint8_t>() % 4);
      const bool ingress = input.flag();
      std::map<int, int> met;  // by group
      for (const auto& [number, one] : entries) {
        const GroupModel& of = groups.at(one.group);
        if (!one.installed || !of.enabled || of.ingress != ingress) continue;
        if (one.installed_matches && ((frame.ether_type ^ one.installed_type) & one.installed_mask) != 0) continue;
        const auto [best, is_first] = met.try_emplace(one.group, number);
        const EntryModel& other = entries.at(best->second);
        const bool wins =
            one.priority > other.priority || (one.priority == other.priority && one.installation < other.installation);
        if (!is_first && wins) best->second = number;
      }
      const auto stage = ingress ? chip::FieldStage::ingress : chip::FieldStage::egress;
      const chip::FieldVerdict verdict = fields.classify(stage, frame);
      require(verdict.hits.size() == met.size(), "the frame meets more groups, or fewer");
      int priority = INT_MAX;
      for (const auto& hit : verdict.hits) {
        require(met.contains(hit.group) && met[hit.group] == hit.entry, "the frame meets another entry");
        require(groups.at(hit.group).priority <= priority, "the groups are not in order");
        priority = groups.at(hit.group).priority;
      }
    }
  }
  require(fields.groups().size() == groups.size() && fields.entries().size() == entries.size(),
          "there are more groups or entries, or fewer");
}

}  // namespace fuzz
