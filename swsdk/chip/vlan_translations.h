// VLAN translation and double tagging, by port, at ingress and egress.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>

#include "chip/hashed_map.h"
#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The result of a translation.
struct Translation {
  uint16_t vlan = 0;
  int priority = 0;
  Origin origin{};
};

class VlanTranslations {
 public:
  /// Of both ingress tables together, and of the egress table.
  static constexpr int capacity = 8192;

  explicit VlanTranslations(const Ports& ports) : ports_(ports) {}

  void reset();

  /// Ingress: the tag `vlan` of a frame is replaced.
  Status add(Port port, int vlan, const Translation& to);
  Status remove(Port port, int vlan);

  /// Egress: the tag `vlan` of a frame is replaced.
  Status add_egress(Port port, int vlan, const Translation& to);
  Status remove_egress(Port port, int vlan);

  /// Ingress: a frame with a tag from `low` to `high` gains an outer one. The ranges of a port do not overlap.
  Status add_outer(Port port, int low, int high, const Translation& outer);
  Status remove_outer(Port port, int low, int high);

  /// The translation of the tag `vlan` at ingress or egress, or its added outer tag; null when there is none.
  const Translation* find(Port port, int vlan) const { return ingress_.find({port, vlan}); }
  const Translation* find_egress(Port port, int vlan) const { return egress_.find({port, vlan}); }
  const Translation* find_outer(Port port, int vlan) const { return outer_.empty() ? nullptr : find_range(port, vlan); }
  /// Why there is no translation, at ingress or egress.
  Status absent(Port port, int vlan) const;

  struct Key {
    Port port;
    int vlan;
    auto operator<=>(const Key&) const = default;
    std::size_t hash() const { return hash_of(port.number(), vlan); }
  };
  struct Range {
    int high;
    Translation outer;
  };

  const std::map<Key, Translation>& ingress() const { return ingress_.all(); }
  const std::map<Key, Translation>& egress() const { return egress_.all(); }
  const std::map<Key, Range>& outer() const { return outer_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(ingress_, egress_, outer_);
  }

 private:
  using Table = HashedMap<Key, Translation>;

  Status check(Port port, int vlan) const;
  Status add(Table& table, std::size_t used, Port port, int vlan, const Translation& to);
  Status remove(Table& table, Port port, int vlan);
  const Translation* find_range(Port port, int vlan) const;

  const Ports& ports_;
  Table ingress_;
  Table egress_;
  std::map<Key, Range> outer_;  // by port and low end
};

}  // namespace chip
