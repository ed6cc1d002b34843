// The controls of the ports' PHYs: error correction and equalisation.
#pragma once

#include <cstdint>
#include <map>
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

  Status set(int port, int control, uint32_t value) {
    if (const Status status = check(port, control); status != Status::ok) return status;
    values_[{port, control}] = value;
    return Status::ok;
  }
  Status get(int port, int control, uint32_t& value) const {
    if (const Status status = check(port, control); status != Status::ok) return status;
    const auto found = values_.find({port, control});
    value = found == values_.end() ? 0 : found->second;
    return Status::ok;
  }

  /// What is set, by (port, control).
  const std::map<std::pair<int, int>, uint32_t>& all() const { return values_; }

  /// The name of a control, null for a number that is none.
  static const char* name(int control);

 private:
  Status check(int port, int control) const {
    if (!ports_.ethernet().contains(port)) return Status::bad_port;
    return name(control) != nullptr ? Status::ok : Status::unavailable;
  }

  const Ports& ports_;
  std::map<std::pair<int, int>, uint32_t> values_;  // absent: 0
};

}  // namespace chip
