// The network groups of virtual ports (split horizon).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chip/origin.h"
#include "chip/status.h"

namespace chip {

class NetworkGroups {
 public:
  static constexpr int count = 64;

  // Settings of a group, toward all others.
  static constexpr uint32_t remap_multicast = 0x1;
  static constexpr uint32_t prune_ingress = 0x2;
  static constexpr uint32_t prune_egress = 0x4;

  /// No group is isolated after a reset.
  void reset() { settings_.fill({}); }

  static bool is_valid(int group) { return group >= 0 && group < count; }

  Status set(int group, uint32_t settings) {
    if (!is_valid(group) || (settings & ~(remap_multicast | prune_ingress | prune_egress)) != 0)
      return Status::bad_parameter;
    settings_[static_cast<std::size_t>(group)] = settings;
    return Status::ok;
  }
  /// The settings of a group, or null when there is no such group.
  const Setting<uint32_t>* find(int group) const {
    return is_valid(group) ? &settings_[static_cast<std::size_t>(group)] : nullptr;
  }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(settings_);
  }

 private:
  std::array<Setting<uint32_t>, count> settings_{};
};

}  // namespace chip
