// The hash of keys of several fields, for the model's own use; what a chip's hash table does shows, so that has its
// own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "chip/addresses.h"

namespace chip {

/// Mixes numbers so that every bit of each counts.
template <class... Numbers>
constexpr std::size_t hash_of(Numbers... numbers) {
  constexpr uint64_t spread = 0x9E3779B97F4A7C15;  // an odd number without a pattern carries every bit upwards
  uint64_t result = 0;
  ((result = (result ^ result >> 32 ^ static_cast<uint64_t>(numbers)) * spread), ...);
  return result;
}

/// An address as a number.
inline uint64_t number_of(const Mac& mac) {
  uint64_t result = 0;
  for (const uint8_t byte : mac) result = result << 8 | byte;
  return result;
}

}  // namespace chip
