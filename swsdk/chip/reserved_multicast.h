// The IPv6 addresses that count as reserved multicast, in the outer and in the inner header of a frame.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "chip/addresses.h"
#include "chip/origin.h"
#include "chip/status.h"

namespace chip {

struct Ip6Match {
  Ip6 address{};
  Ip6 mask{};
  bool operator==(const Ip6Match&) const = default;
};

class ReservedMulticast {
 public:
  static constexpr std::size_t capacity = 2;  // of each header

  void reset() { matches_.fill({}); }

  /// Writes a whole table: `inner` 0 for the outer header, 1 for the inner one.
  Status set(int inner, std::vector<Ip6Match> matches) {
    if (inner != 0 && inner != 1) return Status::bad_parameter;
    if (matches.size() > capacity) return Status::bad_parameter;
    matches_[static_cast<std::size_t>(inner)] = std::move(matches);
    return Status::ok;
  }
  /// Whether the outer destination address is one of them.
  bool contains(const Ip6& address) const {
    const std::vector<Ip6Match>& matches = of_outer_header();
    return std::any_of(matches.begin(), matches.end(), [&](const Ip6Match& match) {
      for (std::size_t i = 0; i < address.size(); ++i)
        if (((address[i] ^ match.address[i]) & match.mask[i]) != 0) return false;
      return true;
    });
  }
  const std::vector<Ip6Match>& of_outer_header() const { return matches_[0]; }
  const std::vector<Ip6Match>& of_inner_header() const { return matches_[1]; }
  /// Which call wrote the addresses of the outer header.
  Origin origin() const { return matches_[0].origin; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(matches_);
  }

 private:
  std::array<Setting<std::vector<Ip6Match>>, 2> matches_;
};

}  // namespace chip
