// The registers of the PHYs on the management bus.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>

#include "chip/status.h"

namespace chip {

class PhyRegisters {
 public:
  static constexpr uint32_t max_phy = 255;
  static constexpr int clause22 = -1;  // in place of a device
  static constexpr int max_device = 31;
  static constexpr uint32_t max_clause22_register = 31;
  static constexpr uint32_t max_value = 0xFFFF;

  struct Key {
    uint32_t phy;  // a port's PHY has the port's number
    int device;
    uint32_t number;
    auto operator<=>(const Key&) const = default;
  };

  /// All registers are 0 after a reset.
  void clear() { registers_.clear(); }

  Status write(const Key& key, uint32_t value) {
    if (!is_valid(key) || value > max_value) return Status::bad_parameter;
    registers_[key] = static_cast<uint16_t>(value);
    return Status::ok;
  }
  /// Nothing when there is no such register.
  std::optional<uint16_t> read(const Key& key) const {
    if (!is_valid(key)) return std::nullopt;
    const auto found = registers_.find(key);
    return found == registers_.end() ? uint16_t{0} : found->second;
  }

  /// What was written.
  const std::map<Key, uint16_t>& all() const { return registers_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(registers_);
  }

 private:
  static bool is_valid(const Key& key) {
    if (key.phy > max_phy) return false;
    if (key.device == clause22) return key.number <= max_clause22_register;
    return key.device >= 0 && key.device <= max_device && key.number <= 0xFFFF;
  }

  std::map<Key, uint16_t> registers_;  // absent: 0
};

}  // namespace chip
