// The controls of the ports' PHYs: error correction and equalization.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The controls that the PHYs have, by number.
enum class PhyControl : int {
  error_correction = 74,
  rx_peak_filter = 100,
  rx_low_frequency_peak_filter = 101,
  rx_vga = 102,
  rx_tap1 = 103,
  rx_tap2 = 104,
  rx_tap3 = 105,
  rx_tap4 = 106,
  rx_tap5 = 107,
  tx_fir_pre = 232,
  tx_fir_main = 233,
  tx_fir_post = 234,
  tx_fir_post2 = 235,
  tx_fir_post3 = 236,
  dfe = 302,
  low_power_dfe = 303,
  br_dfe = 304,
  error_correction_cl91 = 319,
  rx_tap6 = 338,
  error_correction_cl108 = 353,
};

class PhyControls {
 public:
  explicit PhyControls(const Ports& ports) : ports_(ports) {}

  /// All controls are 0 after a reset.
  void clear() { values_.clear(); }

  Status set(Port port, int control, uint32_t value) {
    if (!has(port, control)) return absent(port, control);
    values_[{port, control}] = value;
    return Status::ok;
  }
  /// Nothing where there is no such control.
  std::optional<uint32_t> get(Port port, int control) const {
    if (!has(port, control)) return std::nullopt;
    const auto found = values_.find({port, control});
    return found == values_.end() ? 0 : found->second;
  }
  /// Why the port has no such control.
  Status absent(Port port, int /*control*/) const {
    return ports_.ethernet().contains(port) ? Status::unavailable : Status::bad_port;
  }

  /// What is set, by (port, control).
  const std::map<std::pair<Port, int>, uint32_t>& all() const { return values_; }

  /// The name of a control, null for a number that is none.
  static const char* name(int control);

  template <class Archive>
  void serialize(Archive& archive) {
    archive(values_);
  }

 private:
  bool has(Port port, int control) const { return ports_.ethernet().contains(port) && name(control) != nullptr; }

  const Ports& ports_;
  std::map<std::pair<Port, int>, uint32_t> values_;  // absent: 0
};

}  // namespace chip
