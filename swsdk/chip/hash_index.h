// Values by key for what frames look up: a hash table with open addressing.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "chip/hash.h"

namespace chip {

/// A key is a number or an address, or has a `number()` or a `hash()`. Pointers to values are valid until the next
/// change.
template <class Key, class Value>
class HashIndex {
 public:
  const Value* find(const Key& key) const {
    if (size_ == 0) return nullptr;  // the common case
    const std::size_t slot = slot_of(key);
    return slots_[slot] ? &slots_[slot]->second : nullptr;
  }
  Value* find(const Key& key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

  /// The value of a key; a new one when there is none.
  Value& operator[](const Key& key) {
    if (slots_.size() < 2 * (size_ + 1)) grow();
    std::optional<Item>& item = slots_[slot_of(key)];
    if (!item) {
      item.emplace(key, Value());
      ++size_;
    }
    return item->second;
  }

  /// Returns whether there was one.
  bool erase(const Key& key) {
    if (find(key) == nullptr) return false;
    std::size_t hole = slot_of(key);
    slots_[hole].reset();
    --size_;
    // What follows without a gap may be there only because the slot was taken.
    for (std::size_t slot = next(hole); slots_[slot]; slot = next(slot)) {
      const std::size_t home = home_of(slots_[slot]->first);
      if (((slot - home) & mask()) < ((slot - hole) & mask())) continue;
      slots_[hole] = std::exchange(slots_[slot], std::nullopt);
      hole = slot;
    }
    return true;
  }

  void clear() {
    slots_.clear();
    size_ = 0;
  }

  std::size_t size() const { return size_; }

  /// Calls `take(key, value)` for each, always in the same order while no key is added or erased.
  template <class Take>
  void for_each(Take take) {
    for (std::optional<Item>& item : slots_)
      if (item) take(std::as_const(item->first), item->second);
  }
  template <class Take>
  void for_each(Take take) const {
    for (const std::optional<Item>& item : slots_)
      if (item) take(item->first, item->second);
  }

 private:
  using Item = std::pair<Key, Value>;

  static std::size_t hash_of_key(const Key& key) {
    if constexpr (requires { key.hash(); })
      return key.hash();
    else if constexpr (std::integral<Key>)
      return hash_of(key);
    else if constexpr (requires { key.number(); })
      return hash_of(key.number());
    else
      return hash_of(number_of(key));
  }

  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t next(std::size_t slot) const { return (slot + 1) & mask(); }
  std::size_t home_of(const Key& key) const { return hash_of_key(key) >> 32 & mask(); }
  /// The slot that has the key, or the free one that it would get.
  std::size_t slot_of(const Key& key) const {
    std::size_t slot = home_of(key);
    while (slots_[slot] && slots_[slot]->first != key) slot = next(slot);
    return slot;
  }

  void grow() {
    constexpr std::size_t smallest = 16;
    std::vector<std::optional<Item>> before(std::max(smallest, 2 * slots_.size()));
    before.swap(slots_);
    for (std::optional<Item>& item : before)
      if (item) slots_[slot_of(item->first)] = std::move(item);
  }

  std::vector<std::optional<Item>> slots_;  // a power of two, at least twice the size
  std::size_t size_ = 0;
};

}  // namespace chip
