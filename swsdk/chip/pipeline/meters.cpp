#include "chip/pipeline/meters.h"

#include <algorithm>

namespace chip {

bool Meters::take(Kind kind, int number, uint64_t now, uint64_t rate, uint64_t burst, uint64_t amount) {
  constexpr uint64_t second = 1'000'000'000;
  const uint64_t full = burst * second;
  Bucket& bucket = buckets_.try_emplace({kind, number}, Bucket{full, now}).first->second;
  // A pause that fills the bucket is as good as a longer one, and does not overflow.
  const uint64_t elapsed = now - bucket.refilled;
  const uint64_t missing = full - std::min(bucket.level, full);
  bucket.level = rate != 0 && elapsed >= missing / rate ? full : std::min(full, bucket.level + elapsed * rate);
  bucket.refilled = now;
  if (bucket.level < amount * second) return false;
  bucket.level -= amount * second;
  return true;
}

}  // namespace chip
