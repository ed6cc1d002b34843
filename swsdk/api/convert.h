// Converts the SDK's records to the chip's and back, by pairs of corresponding fields.
#pragma once

#include <cstring>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "api/calls/records.h"
#include "api/gports.h"
#include "chip/status.h"

namespace api {

// What the SDK has as a number and the chip as a type of its own. A group of 0 is none. The port of a virtual port is
// read back as a LOCAL gport, which is what the library writes.
inline void assign(chip::Place& to, int from) { to = place_of(from); }
inline void assign(int& to, const chip::Place& from) { to = sdk_port(from); }
inline void assign(chip::Port& to, int from) { to = port_of(from); }
inline void assign(int& to, chip::Port from) { to = local_gport_of(from); }
inline void assign(chip::GroupId& to, int from) { to = chip::GroupId::of(from); }
inline void assign(int& to, chip::GroupId from) { to = from.number(); }
inline void assign(std::optional<chip::GroupId>& to, int from) {
  to = from == 0 ? std::nullopt : std::optional(chip::GroupId::of(from));
}
inline void assign(int& to, const std::optional<chip::GroupId>& from) { to = from ? from->number() : 0; }

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

/// Returns what was found, a pointer or an optional, to the caller. `absent`: the status when nothing was found.
template <class Found, class Value>
chip::Status tell(const Found& found, chip::Status absent, Value& value) {
  if (!found) return absent;
  value = static_cast<Value>(*found);
  return chip::Status::ok;
}

}  // namespace api
