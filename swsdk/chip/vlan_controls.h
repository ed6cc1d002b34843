// The chip's VLAN controls: numbered settings of the whole chip or of each port.
#pragma once

#include <map>
#include <utility>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The control of the whole chip.
enum class VlanControlOfChip : int { translate = 5 };

/// The controls of each port.
enum class VlanControlOfPort : int {
  prefer_ip4 = 0,
  prefer_mac = 1,
  translate_ingress = 2,
  translate_egress = 5,
  lookup_mac = 8,
  lookup_ip = 9,
  translate_first_key = 14,
  translate_second_key = 15,
};

class VlanControls {
 public:
  explicit VlanControls(const Ports& ports) : ports_(ports) {}

  /// All controls are 0 after a reset.
  void reset() {
    translate_ = 0;
    of_ports_.clear();
  }

  Status set(int control, int value) {
    if (control != static_cast<int>(VlanControlOfChip::translate)) return Status::unavailable;
    translate_ = value;
    return Status::ok;
  }
  int translate() const { return translate_; }

  Status set_port(int port, int control, int value) {
    if (const Status status = check(port, control); status != Status::ok) return status;
    of_ports_[{port, control}] = value;
    return Status::ok;
  }
  Status get_port(int port, int control, int& value) const {
    if (const Status status = check(port, control); status != Status::ok) return status;
    const auto found = of_ports_.find({port, control});
    value = found == of_ports_.end() ? 0 : found->second;
    return Status::ok;
  }

  /// What is set, by (port, control).
  const std::map<std::pair<int, int>, int>& of_ports() const { return of_ports_; }

 private:
  Status check(int port, int control) const {
    if (!ports_.has(port)) return Status::bad_port;
    switch (static_cast<VlanControlOfPort>(control)) {
      using enum VlanControlOfPort;
      case prefer_ip4:
      case prefer_mac:
      case translate_ingress:
      case translate_egress:
      case lookup_mac:
      case lookup_ip:
      case translate_first_key:
      case translate_second_key:
        return Status::ok;
    }
    return Status::unavailable;
  }

  const Ports& ports_;
  int translate_ = 0;
  std::map<std::pair<int, int>, int> of_ports_;  // absent: 0
};

}  // namespace chip
