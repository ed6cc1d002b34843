// The registers of the PHYs on the management bus.
#pragma once

#include <compare>
#include <cstdint>
#include <map>

#include "chip/status.h"

namespace chip {

class PhyRegisters {
 public:
  static constexpr uint32_t highest_phy = 255;
  static constexpr int clause22 = -1;  // in place of a device
  static constexpr int highest_device = 31;
  static constexpr uint32_t highest_clause22_register = 31;
  static constexpr uint32_t highest_value = 0xFFFF;

  struct Key {
    uint32_t phy;  // a port's PHY has the port's number
    int device;
    uint32_t number;
    auto operator<=>(const Key&) const = default;
  };

  /// All registers are 0 after a reset.
  void clear() { registers_.clear(); }

  Status write(const Key& key, uint32_t value) {
    if (!is_valid(key) || value > highest_value) return Status::bad_parameter;
    registers_[key] = static_cast<uint16_t>(value);
    return Status::ok;
  }
  template <class Value>
  Status read(const Key& key, Value& value) const {
    if (!is_valid(key)) return Status::bad_parameter;
    const auto found = registers_.find(key);
    value = found == registers_.end() ? Value{} : Value{found->second};
    return Status::ok;
  }

  /// What was written.
  const std::map<Key, uint16_t>& all() const { return registers_; }

 private:
  static bool is_valid(const Key& key) {
    if (key.phy > highest_phy) return false;
    if (key.device == clause22) return key.number <= highest_clause22_register;
    return key.device >= 0 && key.device <= highest_device && key.number <= 0xFFFF;
  }

  std::map<Key, uint16_t> registers_;  // absent: 0
};

}  // namespace chip
