// A table of numbered slots: the mechanics that many of the chip's tables share.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "chip/status.h"

namespace chip {

/// Holds at most `capacity` items under ids from `first` on; the ids it gives out itself are the lowest free ones.
template <class Item>
class Slots {
 public:
  Slots(int first, int capacity) : first_(first), capacity_(capacity) {}
  Slots(const Slots&) = delete;
  Slots& operator=(const Slots&) = delete;

  bool is_valid(int id) const { return id >= first_ && id < first_ + capacity_; }
  bool full() const { return static_cast<int>(items_.size()) == capacity_; }

  /// Why there is nothing in the slot `id`.
  Status absent(int id) const { return is_valid(id) ? Status::not_found : Status::bad_parameter; }

  /// Puts an item into the lowest free slot and tells its id.
  Status add(const Item& item, int& id) {
    if (full()) return Status::full;
    id = free_.empty() ? fresh() : *free_.begin();
    return put(item, id);
  }

  /// Puts an item into the slot `id`, which has to be free.
  Status add_with_id(const Item& item, int id) { return find(id) != nullptr ? Status::exists : put(item, id); }

  /// Puts an item into the slot `id`, in place of what is there.
  Status put(const Item& item, int id) {
    if (!is_valid(id)) return Status::bad_parameter;
    if (Item* const present = find(id)) {
      *present = item;
      return Status::ok;
    }
    while (fresh() < id) {
      free_.insert(free_.end(), fresh());
      by_id_.push_back(nullptr);
    }
    if (id == fresh())
      by_id_.push_back(&items_.emplace_hint(items_.end(), id, item)->second);
    else {
      free_.erase(id);
      by_id_[index(id)] = &items_.emplace(id, item).first->second;
    }
    return Status::ok;
  }

  Status remove(int id) {
    if (items_.erase(id) == 0) return absent(id);
    by_id_[index(id)] = nullptr;
    free_.insert(id);
    return Status::ok;
  }

  void clear() {
    items_.clear();
    free_.clear();
    by_id_.clear();
  }

  const Item* find(int id) const { return id >= first_ && id < fresh() ? by_id_[index(id)] : nullptr; }
  Item* find(int id) { return id >= first_ && id < fresh() ? by_id_[index(id)] : nullptr; }

  const std::map<int, Item>& all() const { return items_; }

 private:
  /// No slot from here on was ever used.
  int fresh() const { return first_ + static_cast<int>(by_id_.size()); }
  std::size_t index(int id) const { return static_cast<std::size_t>(id - first_); }

  int first_;
  int capacity_;
  std::map<int, Item> items_;
  std::vector<Item*> by_id_;  // the same, so that one is found at once; null for a slot that is free
  std::set<int> free_;        // the slots before the fresh ones that are free, so that the lowest is at hand
};

}  // namespace chip
