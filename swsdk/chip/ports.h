// The chip's ports: the CPU port 0 and the Ethernet ports from 1 on.
#pragma once

#include "chip/port_set.h"

namespace chip {

class Ports {
 public:
  static constexpr Port cpu = 0;
  static constexpr Port last_front_panel = 8;  // gigabit ports; the ones above are uplinks

  explicit Ports(int ethernet_ports);

  const PortSet& all() const { return all_; }
  const PortSet& ethernet() const { return ethernet_; }
  bool has(Port port) const { return all_.contains(port); }

  static bool is_uplink(Port port) { return port > last_front_panel; }
  /// "cpu", "gigabit" or "uplink".
  static const char* kind(Port port);

 private:
  PortSet ethernet_;
  PortSet all_;
};

}  // namespace chip
