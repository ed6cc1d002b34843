// The network groups of virtual ports, and what each keeps from going out through the others.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chip/status.h"

namespace chip {

class NetworkGroups {
 public:
  static constexpr int count = 64;

  // Settings of a group towards all others.
  static constexpr uint32_t remap_multicast = 0x1;
  static constexpr uint32_t prune_ingress = 0x2;
  static constexpr uint32_t prune_egress = 0x4;

  /// No group keeps anything back after a reset.
  void reset() { settings_ = {}; }

  static bool is_valid(int group) { return group >= 0 && group < count; }

  Status set(int group, uint32_t settings) {
    if (!is_valid(group) || (settings & ~(remap_multicast | prune_ingress | prune_egress)) != 0)
      return Status::bad_parameter;
    settings_[static_cast<std::size_t>(group)] = settings;
    return Status::ok;
  }
  Status get(int group, uint32_t& settings) const {
    if (!is_valid(group)) return Status::bad_parameter;
    settings = settings_[static_cast<std::size_t>(group)];
    return Status::ok;
  }

 private:
  std::array<uint32_t, count> settings_{};
};

}  // namespace chip
