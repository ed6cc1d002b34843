// How many addresses the chip may learn: in all, in a VLAN, on a port or trunk, through a tunnel.
#pragma once

#include "chip/mac_table.h"
#include "chip/trunks.h"

namespace chip {

/// What becomes of a frame whose address is one too many, beside that the address is not learned.
struct LearnLimit {
  static constexpr uint32_t drop = 0x10;
  static constexpr uint32_t to_cpu = 0x20;
  static constexpr uint32_t prefer = 0x40;
  static constexpr int unlimited = -1;

  int limit = unlimited;
  uint32_t actions = 0;
};

class LearnLimits {
 public:
  LearnLimits(const Trunks& trunks, const MacTable& table) : trunks_(trunks), table_(table) {}

  /// No limits, and none is heeded.
  void reset();

  /// Whether the limits are heeded.
  void enable(bool on) { enabled_ = on; }
  bool enabled() const { return enabled_; }

  /// Limits each of the scopes. A limit may be below what is learned already; nothing is forgotten then.
  Status set(const std::vector<MacScope>& scopes, const LearnLimit& limit);
  Status get(const MacScope& scope, LearnLimit& limit) const;

  /// Whether an address may be learned that takes the place of `present`, or of none.
  bool admit(const MacEntry& entry, const MacEntry* present) const;
  /// What the limits that do not admit it want done.
  uint32_t actions(const MacEntry& entry, const MacEntry* present) const;

  const std::map<MacScope, LearnLimit>& all() const { return limits_; }

 private:
  /// Why there is no such scope, or ok.
  Status check(const MacScope& scope) const;
  /// Calls `found` with each limit that the entry would exceed.
  template <class Found>
  void exceeded(const MacEntry& entry, const MacEntry* present, Found found) const;

  const Trunks& trunks_;
  const MacTable& table_;
  std::map<MacScope, LearnLimit> limits_;
  bool enabled_ = false;
};

}  // namespace chip
