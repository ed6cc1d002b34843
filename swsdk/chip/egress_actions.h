// What happens to the tags of frames on the way out, by class of the port and by the tags that they have.
#pragma once

#include <compare>
#include <cstdint>

#include "chip/hashed_map.h"
#include "chip/origin.h"
#include "chip/place.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

namespace chip {

enum class TagAction : int { none, add, replace, remove, copy };

/// What happens to each part of one tag.
struct TagChange {
  TagAction vlan = TagAction::none;
  TagAction priority = TagAction::none;
  TagAction packet_priority = TagAction::none;
  TagAction cfi = TagAction::none;
};

struct TagsChange {
  TagChange outer;
  TagChange inner;
};

struct EgressAction {
  TagsChange double_tagged;
  TagsChange outer_tagged;
  TagsChange inner_tagged;
  TagsChange untagged;
  uint16_t outer_vlan = 0;
  uint16_t inner_vlan = 0;
  int priority = 0;
  int inner_packet_priority = 0;
  int outer_cfi = 0;
  int inner_cfi = 0;
  Origin origin{};
};

class EgressActions {
 public:
  static constexpr std::size_t capacity = 8192;

  struct Key {
    Place port_class;  // the port, or the virtual port, by which a frame leaves
    int outer;
    int inner;  // 0: any
    auto operator<=>(const Key&) const = default;
    std::size_t hash() const { return hash_of(number_of(port_class), outer, inner); }
  };

  /// An action takes the place of the one with its key.
  Status set(const Key& key, const EgressAction& action) {
    if (!is_valid(key)) return Status::bad_parameter;
    if (actions_.size() >= capacity && find(key) == nullptr) return Status::full;
    actions_.put(key, action);
    return Status::ok;
  }
  Status remove(const Key& key) {
    if (!is_valid(key)) return Status::bad_parameter;
    return actions_.remove(key) ? Status::ok : Status::not_found;
  }
  void clear() { actions_.clear(); }

  const EgressAction* find(const Key& key) const { return actions_.find(key); }
  const auto& all() const { return actions_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(actions_);
  }

 private:
  static bool is_valid(const Key& key) {
    return key.outer >= 0 && key.outer <= max_vlan && key.inner >= 0 && key.inner <= max_vlan;
  }

  HashedMap<Key, EgressAction> actions_;
};

}  // namespace chip
