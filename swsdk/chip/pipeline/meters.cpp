#include "chip/pipeline/meters.h"

#include <algorithm>

#include "chip/port_macs.h"

namespace chip {

bool Meters::take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount) {
  constexpr uint64_t second = 1'000'000'000;
  constexpr uint64_t most = UINT64_MAX / second;  // 18 gigabits: beyond, a burst is none any more
  std::vector<Bucket>& buckets = buckets_[static_cast<std::size_t>(kind)];
  const auto index = static_cast<std::size_t>(number);
  if (index >= buckets.size()) buckets.resize(index + 1);
  Bucket& bucket = buckets[index];
  const uint64_t full = std::min(burst, most) * second;
  bucket.level = std::min(bucket.level, full);
  // A pause that fills the bucket is as good as a longer one, and does not overflow.
  const uint64_t elapsed = now - bucket.refilled;
  const uint64_t missing = full - bucket.level;
  bucket.level = rate != 0 && elapsed > missing / rate ? full : bucket.level + elapsed * rate;
  bucket.refilled = now;
  if (amount > most || bucket.level < amount * second) return false;
  bucket.level -= amount * second;
  return true;
}

bool Meters::take_frame(Kind kind, int port, uint64_t now, const PortRate& rate, std::size_t bytes) {
  const bool counts_packets = rate.unit == RateUnit::packets;
  const uint64_t unit = counts_packets ? 1 : 1000;
  // Without a burst nothing would ever pass: the smallest one is the longest frame.
  const uint64_t smallest = counts_packets ? 1 : bits_of(PortMacs::highest_frame_max);
  const uint64_t burst = rate.burst == 0 ? smallest : rate.burst * unit;
  return take(kind, port, now, rate.rate * unit, burst, counts_packets ? 1 : bits_of(bytes));
}

}  // namespace chip
