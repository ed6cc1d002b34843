// A table of numbered slots: the mechanics that many of the chip's tables share.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <type_traits>

#include "chip/hash_index.h"
#include "chip/status.h"

namespace chip {

/// While it lives, the slot that an item of this thread gets when it is free and the item comes without an id: a replay
/// has the chip choose as the recorded one did.
class WantedSlot {
 public:
  explicit WantedSlot(std::optional<int> slot) { present_ = slot; }
  ~WantedSlot() { present_ = {}; }
  WantedSlot(const WantedSlot&) = delete;
  WantedSlot& operator=(const WantedSlot&) = delete;

  static std::optional<int> present() { return present_; }

 private:
  static inline constinit thread_local std::optional<int> present_;
};

/// Holds at most `capacity` items under ids from `first` on, and assigns the lowest free id.
/// `SlotId`: a plain number, or an Id.
template <class Item, class SlotId = int>
class Slots {
 public:
  Slots(int first, int capacity) : first_(first), capacity_(capacity) {}
  Slots(const Slots&) = delete;
  Slots& operator=(const Slots&) = delete;

  bool is_valid(SlotId id) const { return number(id) >= first_ && number(id) < first_ + capacity_; }
  bool full() const { return static_cast<int>(items_.size()) == capacity_; }

  /// Why there is nothing in the slot `id`.
  Status absent(SlotId id) const { return is_valid(id) ? Status::not_found : Status::bad_parameter; }

  /// Puts an item into the lowest free slot; `id` is set to it.
  Status add(const Item& item, SlotId& id) {
    if (full()) return Status::full;
    if (const std::optional<int> wanted = WantedSlot::present();
        wanted && is_valid(to_id(*wanted)) && find(to_id(*wanted)) == nullptr)
      return put(item, id = to_id(*wanted));
    while (free_.empty() && find(to_id(fresh_)) != nullptr) ++fresh_;
    id = to_id(free_.empty() ? fresh_ : *free_.begin());
    return put(item, id);
  }

  /// Puts an item into the slot `id`, which has to be free.
  Status add_with_id(const Item& item, SlotId id) { return find(id) != nullptr ? Status::exists : put(item, id); }

  /// Puts an item into the slot `id`, and replaces what is there.
  Status put(const Item& item, SlotId id) {
    if (!is_valid(id)) return Status::bad_parameter;
    if (Item* const present = find(id)) {
      *present = item;
      return Status::ok;
    }
    by_id_[id] = &items_.emplace(id, item).first->second;
    free_.erase(number(id));
    if (number(id) == fresh_) ++fresh_;
    return Status::ok;
  }

  Status remove(SlotId id) {
    if (items_.erase(id) == 0) return absent(id);
    by_id_.erase(id);
    if (number(id) < fresh_) free_.insert(number(id));
    return Status::ok;
  }

  void clear() {
    items_.clear();
    free_.clear();
    by_id_.clear();
    fresh_ = first_;
  }

  const Item* find(SlotId id) const { return found(*this, id); }
  Item* find(SlotId id) { return found(*this, id); }

  const std::map<SlotId, Item>& all() const { return items_; }

  template <class Archive>
  void save(Archive& archive) const {
    archive(items_);
  }
  template <class Archive>
  void load(Archive& archive) {
    std::map<SlotId, Item> items;
    archive(items);
    clear();
    for (const auto& [id, item] : items) put(item, id);
  }

 private:
  static constexpr bool has_plain_numbers = std::is_same_v<SlotId, int>;
  static int number(SlotId id) {
    if constexpr (has_plain_numbers)
      return id;
    else
      return id.number();
  }
  static SlotId to_id(int number) {
    if constexpr (has_plain_numbers)
      return number;
    else
      return SlotId::of(number);
  }

  template <class Self>
  static Item* found(Self& self, SlotId id) {
    Item* const* const present = self.by_id_.find(id);
    return present == nullptr ? nullptr : *present;
  }

  int first_;
  int capacity_;
  std::map<SlotId, Item> items_;
  HashIndex<SlotId, Item*> by_id_;  // the same items, for lookup in constant time
  int fresh_ = first_;              // each slot below it is used, or free and in `free_`
  std::set<int> free_;
};

}  // namespace chip
