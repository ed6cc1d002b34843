// Meters: token buckets, which the chip's clock fills.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "chip/counters.h"
#include "chip/port_rates.h"

namespace chip {

class Meters {
 public:
  /// What is metered; each has a bucket for each port or policer.
  enum class Kind { port_ingress, port_egress, storm_broadcast, storm_multicast, storm_unknown, committed, peak };

  /// Every bucket full.
  void reset() { buckets_ = {}; }

  /// Takes `amount` out of a bucket that fills by `rate` per second up to `burst`, all in bits or all in packets.
  /// False, and nothing is taken, when the level is too low. `now` is in nanoseconds.
  bool take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount);

  /// Takes a frame of that many bytes, without checksum, out of the bucket of a port.
  bool take_frame(Kind kind, Port port, uint64_t now, const PortRate& rate, std::size_t bytes);

  /// Calls `take(kind, number, level, since)` for each bucket that is not full: what was in it, in billionths, and
  /// when.
  template <class Take>
  void for_each(Take take) const {
    for (std::size_t kind = 0; kind < kinds; ++kind)
      for (std::size_t number = 0; number < buckets_[kind].size(); ++number)
        if (const Bucket& bucket = buckets_[kind][number]; bucket.level != UINT64_MAX)
          take(static_cast<Kind>(kind), static_cast<int>(number), bucket.level, bucket.refilled);
  }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(buckets_);
  }

 private:
  struct Bucket {
    uint64_t level = UINT64_MAX;  // in billionths, so that no fraction is lost; capped at the burst
    uint64_t refilled = 0;        // when
  };
  static constexpr std::size_t kinds = static_cast<std::size_t>(Kind::peak) + 1;

  std::array<std::vector<Bucket>, kinds> buckets_;  // by number
};

/// The bits that a frame without checksum takes out of a bucket.
constexpr uint64_t bits_of(std::size_t bytes) { return size_on_wire(bytes) * 8; }

}  // namespace chip
