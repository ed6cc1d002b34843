// What passes per second: token buckets that fill as the chip's clock goes.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

namespace chip {

class Meters {
 public:
  /// Who is metered, beside the number of the port or the policer.
  enum class Kind { port_ingress, port_egress, storm_broadcast, storm_multicast, storm_unknown, committed, peak };

  /// Every bucket full.
  void reset() { buckets_.clear(); }

  /// Takes `amount` out of a bucket that fills by `rate` a second up to `burst`; false, and nothing is taken, when
  /// there is less in it. Bits or packets, as the rate is. `now` is in nanoseconds.
  bool take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount);

 private:
  struct Bucket {
    uint64_t level;     // in billionths, so that no fraction is lost
    uint64_t refilled;  // when
  };
  std::map<std::pair<Kind, int>, Bucket> buckets_;
};

}  // namespace chip
