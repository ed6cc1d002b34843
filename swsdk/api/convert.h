// The SDK's records as the chip's and back, by pairs of a field of one and the field of the other that it is.
#pragma once

#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "api/records.h"

namespace api {

/// Plain fields convert, and arrays of bytes are copied.
template <class To, class From>
void assign(To& to, const From& from) {
  if constexpr (std::is_array_v<To> || std::is_array_v<From>) {
    static_assert(sizeof to == sizeof from);
    std::memcpy(&to, &from, sizeof to);
  } else {
    to = static_cast<To>(from);
  }
}

/// The chip's record of an SDK one.
template <class Own, class Sdk, class... Pair>
Own to_own(const Sdk& sdk, const std::tuple<Pair...>& pairs) {
  Own own{};
  std::apply([&](const auto&... pair) { (assign(own.*pair.second, sdk.*pair.first), ...); }, pairs);
  return own;
}

/// Writes the fields of the chip's record into an SDK one. What the chip does not model reads as 0 there; the keys, by
/// which the record was found, stay.
template <class Own, class Sdk, class... Pair>
void write(const Own& own, const std::tuple<Pair...>& pairs, Sdk& sdk) {
  clear_unmodeled(fields(&sdk), &sdk);
  std::apply([&](const auto&... pair) { (assign(sdk.*pair.first, own.*pair.second), ...); }, pairs);
}

}  // namespace api
