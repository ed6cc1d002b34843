// A map that is iterated in key order and searched by hash.
#pragma once

#include <cstddef>
#include <map>
#include <unordered_map>

#include "chip/hash.h"

namespace chip {

/// A key has a `hash()`, or is an address.
template <class Key, class Value>
class HashedMap {
 public:
  const Value* find(const Key& key) const {
    if (found_.empty()) return nullptr;  // the common case
    const auto found = found_.find(key);
    return found == found_.end() ? nullptr : found->second;
  }

  /// Replaces the entry with that key, if there is one.
  void put(const Key& key, const Value& value) {
    Value& place = all_[key];
    place = value;
    found_[key] = &place;
  }

  /// Returns whether there was one.
  bool remove(const Key& key) {
    found_.erase(key);
    return all_.erase(key) == 1;
  }

  void clear() {
    found_.clear();
    all_.clear();
  }

  std::size_t size() const { return all_.size(); }
  const std::map<Key, Value>& all() const { return all_; }

 private:
  struct Hash {
    std::size_t operator()(const Key& key) const {
      if constexpr (requires { key.hash(); })
        return key.hash();
      else
        return hash_of(number_of(key));
    }
  };

  std::map<Key, Value> all_;
  std::unordered_map<Key, const Value*, Hash> found_;
};

}  // namespace chip
