// The hash of keys with several fields, for internal use. The chip's own hash tables, whose collisions are visible,
// have hashes of their own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "chip/addresses.h"
#include "chip/place.h"

namespace chip {

/// Mixes numbers so that every bit of each counts.
template <class... Numbers>
constexpr std::size_t hash_of(Numbers... numbers) {
  constexpr uint64_t spread = 0x9E3779B97F4A7C15;  // an odd number without a pattern spreads every bit upward
  uint64_t result = 0;
  ((result = (result ^ result >> 32 ^ static_cast<uint64_t>(numbers)) * spread), ...);
  return result;
}

/// A place as a number.
inline uint64_t number_of(const Place& place) {
  const int number = std::visit([](auto id) { return id.number(); }, place);
  return static_cast<uint64_t>(place.index()) << 32 | static_cast<uint32_t>(number);
}

}  // namespace chip
