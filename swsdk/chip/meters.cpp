#include "chip/meters.h"

#include <algorithm>

#include "chip/port_macs.h"

namespace chip {

bool Meters::take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount) {
  constexpr uint64_t second = 1'000'000'000;
  constexpr uint64_t most = UINT64_MAX / second;  // 18 gigabits: larger bursts do not fit
  std::vector<Bucket>& buckets = buckets_[static_cast<std::size_t>(kind)];
  const auto index = static_cast<std::size_t>(number);
  if (index >= buckets.size()) buckets.resize(index + 1);
  Bucket& bucket = buckets[index];
  const uint64_t full = std::min(burst, most) * second;
  bucket.level = std::min(bucket.level, full);
  // A longer pause than fills the bucket makes no difference, and must not overflow.
  const uint64_t elapsed = now - bucket.refilled;
  const uint64_t missing = full - bucket.level;
  bucket.level = rate != 0 && elapsed > missing / rate ? full : bucket.level + elapsed * rate;
  bucket.refilled = now;
  if (amount > most || bucket.level < amount * second) return false;
  bucket.level -= amount * second;
  return true;
}

bool Meters::take_frame(Kind kind, Port port, uint64_t now, const PortRate& rate, std::size_t bytes) {
  const bool counts_packets = rate.unit == RateUnit::packets;
  const uint64_t unit = counts_packets ? 1 : 1000;
  // A burst of 0 would stop all frames: the minimum is one frame of maximum size.
  const uint64_t smallest = counts_packets ? 1 : bits_of(PortMacs::max_frame_max);
  const uint64_t burst = rate.burst == 0 ? smallest : rate.burst * unit;
  return take(kind, port.number(), now, rate.rate * unit, burst, counts_packets ? 1 : bits_of(bytes));
}

}  // namespace chip
