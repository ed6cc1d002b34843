// Numbered slots whose items can also be found by content.
#pragma once

#include <cstddef>
#include <map>
#include <memory_resource>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "chip/slots.h"

namespace chip {

/// Slots of items with unique keys; `key_of` returns the key of an item, which has a `hash()`.
template <class Item, auto key_of, class SlotId = int>
class KeyedSlots {
 public:
  using Key = std::remove_cvref_t<std::invoke_result_t<decltype(key_of), const Item&>>;

  KeyedSlots(int first, int capacity) : slots_(first, capacity) { ids_.reserve(static_cast<std::size_t>(capacity)); }

  Status add(const Item& item, SlotId& id) {
    const auto [place, is_new] = ids_.try_emplace(key_of(item));
    if (!is_new) return Status::exists;
    const Status status = slots_.add(item, id);
    if (status == Status::ok)
      place->second = id;
    else
      ids_.erase(place);
    return status;
  }

  Status remove(SlotId id) {
    const Item* const item = slots_.find(id);
    if (item == nullptr) return slots_.absent(id);
    ids_.erase(key_of(*item));
    return slots_.remove(id);
  }

  void clear() {
    slots_.clear();
    ids_.clear();
  }

  const Item* find(SlotId id) const { return slots_.find(id); }
  Status absent(SlotId id) const { return slots_.absent(id); }

  /// The id of the item with that key.
  std::optional<SlotId> find_id(const Key& key) const {
    const auto found = ids_.find(key);
    return found == ids_.end() ? std::nullopt : std::optional(found->second);
  }

  const std::map<SlotId, Item>& all() const { return slots_.all(); }

  template <class Archive>
  void save(Archive& archive) const {
    archive(slots_);
  }
  template <class Archive>
  void load(Archive& archive) {
    archive(slots_);
    ids_.clear();
    for (const auto& [id, item] : all()) ids_.emplace(key_of(item), id);
  }

 private:
  struct Hash {
    std::size_t operator()(const Key& key) const { return key.hash(); }
  };

  Slots<Item, SlotId> slots_;
  std::pmr::unsynchronized_pool_resource pool_;  // keeps the keys close together
  std::pmr::unordered_map<Key, SlotId, Hash> ids_{&pool_};
};

/// The key of items that are compared as a whole.
template <class Item>
constexpr const Item& whole(const Item& item) {
  return item;
}

}  // namespace chip
