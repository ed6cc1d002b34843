// A map that is iterated in key order and searched by hash.
#pragma once

#include <cstddef>
#include <map>

#include "chip/hash_index.h"

namespace chip {

/// A key as for HashIndex.
template <class Key, class Value>
class HashedMap {
 public:
  const Value* find(const Key& key) const {
    const Value* const* const found = found_.find(key);
    return found == nullptr ? nullptr : *found;
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

  template <class Archive>
  void save(Archive& archive) const {
    archive(all_);
  }
  template <class Archive>
  void load(Archive& archive) {
    archive(all_);
    found_.clear();
    for (const auto& [key, value] : all_) found_[key] = &value;
  }

 private:
  std::map<Key, Value> all_;
  HashIndex<Key, const Value*> found_;
};

}  // namespace chip
