// VLAN translation and double tagging, by port, on the way in and on the way out.
#pragma once

#include <compare>
#include <cstdint>
#include <map>

#include "chip/hashed_map.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// What a translation gives a frame.
struct Translation {
  uint16_t vlan = 0;
  int priority = 0;
};

class VlanTranslations {
 public:
  /// Entries of the two ways in, and of the two ways out, together.
  static constexpr int capacity = 8192;
  static constexpr int highest_vlan = 4095;

  explicit VlanTranslations(const Ports& ports) : ports_(ports) {}

  void reset();

  /// Way in: the tag `vlan` of a frame is replaced.
  Status add(int port, int vlan, const Translation& to);
  Status find(int port, int vlan, Translation& found) const;
  Status remove(int port, int vlan);

  /// Way out: the tag `vlan` of a frame is replaced.
  Status add_egress(int port, int vlan, const Translation& to);
  Status find_egress(int port, int vlan, Translation& found) const;
  Status remove_egress(int port, int vlan);

  /// Way in: a frame with a tag from `low` to `high` gains an outer one. The ranges of a port do not overlap.
  Status add_outer(int port, int low, int high, const Translation& outer);
  Status remove_outer(int port, int low, int high);

  /// What a frame with the tag `vlan` gets on either way, or gains as an outer tag; null when it gets nothing.
  const Translation* find(int port, int vlan) const { return ingress_.find({port, vlan}); }
  const Translation* find_egress(int port, int vlan) const { return egress_.find({port, vlan}); }
  const Translation* find_outer(int port, int vlan) const { return outer_.empty() ? nullptr : find_range(port, vlan); }

  struct Key {
    int port;
    int vlan;
    auto operator<=>(const Key&) const = default;
    std::size_t hash() const { return hash_of(port, vlan); }
  };
  struct Range {
    int high;
    Translation outer;
  };

  const std::map<Key, Translation>& ingress() const { return ingress_.all(); }
  const std::map<Key, Translation>& egress() const { return egress_.all(); }
  const std::map<Key, Range>& outer() const { return outer_; }

 private:
  using Table = HashedMap<Key, Translation>;

  Status check(int port, int vlan) const;
  Status add(Table& table, std::size_t used, int port, int vlan, const Translation& to);
  Status find(const Table& table, int port, int vlan, Translation& found) const;
  Status remove(Table& table, int port, int vlan);
  const Translation* find_range(int port, int vlan) const;

  const Ports& ports_;
  Table ingress_;
  Table egress_;
  std::map<Key, Range> outer_;  // by port and low end
};

}  // namespace chip
