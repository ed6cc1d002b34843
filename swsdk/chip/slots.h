// A table of numbered slots: the mechanics that many of the chip's tables share.
#pragma once

#include <map>

#include "chip/status.h"

namespace chip {

/// Holds at most `capacity` items under ids from `first` on; the ids it gives out itself are the lowest free ones.
template <class Item>
class Slots {
 public:
  Slots(int first, int capacity) : first_(first), capacity_(capacity) {}

  bool is_valid(int id) const { return id >= first_ && id < first_ + capacity_; }
  bool full() const { return static_cast<int>(items_.size()) == capacity_; }

  /// Puts an item into the lowest free slot and tells its id.
  Status add(const Item& item, int& id) {
    if (full()) return Status::full;
    int free = first_;
    for (const auto& [taken, ignored] : items_) {
      if (taken != free) break;
      ++free;
    }
    items_.emplace(free, item);
    id = free;
    return Status::ok;
  }

  /// Puts an item into the slot `id`, which has to be free.
  Status add_with_id(const Item& item, int id) {
    if (!is_valid(id)) return Status::bad_parameter;
    return items_.emplace(id, item).second ? Status::ok : Status::exists;
  }

  /// Puts an item into the slot `id`, in place of what is there.
  Status put(const Item& item, int id) {
    if (!is_valid(id)) return Status::bad_parameter;
    items_.insert_or_assign(id, item);
    return Status::ok;
  }

  Status remove(int id) {
    if (!is_valid(id)) return Status::bad_parameter;
    return items_.erase(id) == 1 ? Status::ok : Status::not_found;
  }

  void clear() { items_.clear(); }

  const Item* find(int id) const {
    const auto found = items_.find(id);
    return found == items_.end() ? nullptr : &found->second;
  }
  Item* find(int id) {
    const auto found = items_.find(id);
    return found == items_.end() ? nullptr : &found->second;
  }

  const std::map<int, Item>& all() const { return items_; }

 private:
  int first_;
  int capacity_;
  std::map<int, Item> items_;
};

}  // namespace chip
