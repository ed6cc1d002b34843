// Limits on learned addresses: of the chip, a VLAN, a port or trunk, or a tunnel.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "chip/mac_table.h"
#include "chip/origin.h"
#include "chip/trunks.h"

namespace chip {

/// What happens to a frame whose source exceeds the limit, in addition to not being learned.
struct LearnLimit {
  static constexpr uint32_t drop = 0x10;
  static constexpr uint32_t to_cpu = 0x20;
  static constexpr uint32_t prefer = 0x40;
  static constexpr int unlimited = -1;

  int limit = unlimited;
  uint32_t actions = 0;
  Origin origin{};
};

class LearnLimits {
 public:
  LearnLimits(const Trunks& trunks, const MacTable& table) : trunks_(trunks), table_(table) {}

  /// No limits; enforcement is off.
  void reset();

  /// Turns enforcement on or off.
  void enable(bool on) { enabled_ = on; }
  bool enabled() const { return enabled_; }

  /// Limits each of the scopes. A limit may be below the current number of addresses; none is removed then.
  Status set(const std::vector<MacScope>& scopes, const LearnLimit& limit);
  /// The limit of a scope; nothing where there is no such scope.
  std::optional<LearnLimit> get(const MacScope& scope) const;
  /// Why there is no such scope.
  Status absent(const MacScope& scope) const { return check(scope); }

  /// Whether an entry may be learned. `present`: the entry that it replaces, or null.
  bool admit(const MacEntry& entry, const MacEntry* present) const;
  /// The actions of the limits that it exceeds.
  uint32_t actions(const MacEntry& entry, const MacEntry* present) const;

  /// The scopes of those limits.
  std::vector<MacScope> exceeded_by(const MacEntry& entry, const MacEntry* present) const;

  const std::map<MacScope, LearnLimit>& all() const { return limits_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(limits_, enabled_);
  }

 private:
  /// Why there is no such scope, or ok.
  Status check(const MacScope& scope) const;
  /// Calls `found` with each limit, and its scope, that the entry would exceed.
  template <class Found>
  void exceeded(const MacEntry& entry, const MacEntry* present, Found found) const;

  const Trunks& trunks_;
  const MacTable& table_;
  std::map<MacScope, LearnLimit> limits_;
  bool enabled_ = false;
};

}  // namespace chip
