// A table of numbered slots: the mechanics that many of the chip's tables share.
#pragma once

#include <map>
#include <set>
#include <unordered_map>

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
    while (free_.empty() && find(fresh_) != nullptr) ++fresh_;
    id = free_.empty() ? fresh_ : *free_.begin();
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
    by_id_[id] = &items_.emplace(id, item).first->second;
    free_.erase(id);
    if (id == fresh_) ++fresh_;
    return Status::ok;
  }

  Status remove(int id) {
    if (items_.erase(id) == 0) return absent(id);
    by_id_.erase(id);
    if (id < fresh_) free_.insert(id);
    return Status::ok;
  }

  void clear() {
    items_.clear();
    free_.clear();
    by_id_.clear();
    fresh_ = first_;
  }

  const Item* find(int id) const { return found(*this, id); }
  Item* find(int id) { return found(*this, id); }

  const std::map<int, Item>& all() const { return items_; }

 private:
  template <class Self>
  static Item* found(Self& self, int id) {
    const auto present = self.by_id_.find(id);
    return present == self.by_id_.end() ? nullptr : present->second;
  }

  int first_;
  int capacity_;
  std::map<int, Item> items_;
  std::unordered_map<int, Item*> by_id_;  // the same, so that one is found at once
  int fresh_ = first_;                    // each slot below it is used, or free and in `free_`
  std::set<int> free_;
};

}  // namespace chip
