// What passes per second: token buckets that fill as the chip's clock goes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "chip/port_rates.h"

namespace chip {

class Meters {
 public:
  /// Who is metered, beside the number of the port or the policer.
  enum class Kind { port_ingress, port_egress, storm_broadcast, storm_multicast, storm_unknown, committed, peak };

  /// Every bucket full.
  void reset() { buckets_ = {}; }

  /// Takes `amount` out of a bucket that fills by `rate` a second up to `burst`; false, and nothing is taken, when
  /// there is less in it. Bits or packets, as the rate is. `now` is in nanoseconds.
  bool take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount);

  /// Takes a frame of that many bytes, checksum not counted, out of the bucket of a port.
  bool take_frame(Kind kind, int port, uint64_t now, const PortRate& rate, std::size_t bytes);

 private:
  struct Bucket {
    uint64_t level = UINT64_MAX;  // in billionths, so that no fraction is lost; more than the burst does not count
    uint64_t refilled = 0;        // when
  };
  static constexpr std::size_t kinds = static_cast<std::size_t>(Kind::peak) + 1;

  std::array<std::vector<Bucket>, kinds> buckets_;  // by number
};

/// How long a frame, checksum not counted, is on the wire: with its checksum, and padded where it is too short.
constexpr std::size_t size_on_wire(std::size_t bytes) { return std::max<std::size_t>(bytes + 4, 64); }

/// What a frame, checksum not counted, takes out of a bucket of bits.
constexpr uint64_t bits_of(std::size_t bytes) { return size_on_wire(bytes) * 8; }

}  // namespace chip
