// The chip's VLAN controls: numbered settings of the whole chip or of each port.
#pragma once

#include <array>
#include <cstddef>

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
  // Keys by which a port looks for virtual ports.
  static constexpr int key_port_double = 7;  // both tags
  static constexpr int key_port_outer = 8;

  explicit VlanControls(const Ports& ports) : ports_(ports) {}

  /// All controls are 0 after a reset.
  void reset() {
    translate_ = 0;
    of_ports_ = {};
  }

  Status set(int control, int value) {
    if (control != static_cast<int>(VlanControlOfChip::translate)) return Status::unavailable;
    translate_ = value;
    return Status::ok;
  }
  int translate() const { return translate_; }

  Status set_port(int port, int control, int value) {
    if (const Status status = check(port, control); status != Status::ok) return status;
    OfPort& settings = of_ports_[static_cast<std::size_t>(port)];
    settings.values[static_cast<std::size_t>(control)] = value;
    const bool set = value != 0;
    if (control == static_cast<int>(VlanControlOfPort::prefer_ip4)) settings.prefers_subnet = set;
    if (control == static_cast<int>(VlanControlOfPort::prefer_mac))
      settings.prefers_subnet = !set && of_port(port, VlanControlOfPort::prefer_ip4) != 0;
    return Status::ok;
  }
  Status get_port(int port, int control, int& value) const {
    if (const Status status = check(port, control); status != Status::ok) return status;
    value = of_port(port, static_cast<VlanControlOfPort>(control));
    return Status::ok;
  }

  /// Of a port that the chip has.
  int of_port(int port, VlanControlOfPort control) const {
    return of_ports_[static_cast<std::size_t>(port)].values[static_cast<std::size_t>(control)];
  }
  /// Whether the subnet of a frame counts before its MAC address. A port that was asked for both does what it was asked
  /// for last: whoever asks cannot take the other back.
  bool prefers_subnet(int port) const { return of_ports_[static_cast<std::size_t>(port)].prefers_subnet; }
  /// Whether the port translates in one direction; the chip has to translate at all.
  bool translates(int port, VlanControlOfPort direction) const {
    return translate_ != 0 && of_port(port, direction) != 0;
  }

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
  struct OfPort {
    std::array<int, static_cast<std::size_t>(VlanControlOfPort::translate_second_key) + 1> values{};
    bool prefers_subnet = false;
  };
  std::array<OfPort, PortSet::capacity> of_ports_{};
};

}  // namespace chip
