// A table of numbered slots: the mechanics that many of the chip's tables share.
#pragma once

#include <map>
#include <set>

#include "chip/status.h"

namespace chip {

/// Holds at most `capacity` items under ids from `first` on; the ids it gives out itself are the lowest free ones.
template <class Item>
class Slots {
 public:
  Slots(int first, int capacity) : first_(first), capacity_(capacity), fresh_(first) {}

  bool is_valid(int id) const { return id >= first_ && id < first_ + capacity_; }
  bool full() const { return static_cast<int>(items_.size()) == capacity_; }

  /// Why there is nothing in the slot `id`.
  Status absent(int id) const { return is_valid(id) ? Status::not_found : Status::bad_parameter; }

  /// Puts an item into the lowest free slot and tells its id.
  Status add(const Item& item, int& id) {
    if (full()) return Status::full;
    id = free_.empty() ? fresh_ : *free_.begin();
    return put(item, id);
  }

  /// Puts an item into the slot `id`, which has to be free.
  Status add_with_id(const Item& item, int id) { return items_.contains(id) ? Status::exists : put(item, id); }

  /// Puts an item into the slot `id`, in place of what is there.
  Status put(const Item& item, int id) {
    if (!is_valid(id)) return Status::bad_parameter;
    items_.insert_or_assign(id, item);
    for (; fresh_ <= id; ++fresh_) free_.insert(free_.end(), fresh_);
    free_.erase(id);
    return Status::ok;
  }

  Status remove(int id) {
    if (items_.erase(id) == 0) return absent(id);
    free_.insert(id);
    return Status::ok;
  }

  void clear() {
    items_.clear();
    free_.clear();
    fresh_ = first_;
  }

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
  int fresh_;           // no slot from here on was ever used
  std::set<int> free_;  // those before that are free, so that the lowest is found without a search
};

}  // namespace chip
