// Storm control: how many broadcasts, multicasts and frames to unknown destinations each port accepts.
#pragma once

#include <compare>
#include <cstdint>
#include <map>

#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class StormRates {
 public:
  // Kinds of storms, by the flag that enables their control.
  static constexpr uint32_t unknown_destination = 0x1;
  static constexpr uint32_t multicast = 0x2;
  static constexpr uint32_t broadcast = 0x4;

  struct Key {
    Port port;
    uint32_t kind;
    auto operator<=>(const Key&) const = default;
  };

  explicit StormRates(const Ports& ports) : ports_(ports) {}

  /// No control after a reset.
  void clear() { rates_.clear(); }

  /// Limits one kind to `rate` packets per second; flags 0 removes the limit.
  Status set(const Key& key, uint32_t flags, int rate) {
    if (!ports_.has(key.port)) return Status::bad_port;
    if ((flags & ~key.kind) != 0 || (flags != 0 && rate < 0)) return Status::bad_parameter;
    if (flags == 0)
      rates_.erase(key);
    else
      rates_[key] = rate;
    return Status::ok;
  }

  /// In packets per second; null for a kind that has no limit.
  const Setting<int>* find(const Key& key) const {
    const auto found = rates_.find(key);
    return found == rates_.end() ? nullptr : &found->second;
  }
  bool empty() const { return rates_.empty(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(rates_);
  }

 private:
  const Ports& ports_;
  std::map<Key, Setting<int>> rates_;
};

}  // namespace chip
