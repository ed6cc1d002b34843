// One switching chip: its ports and its tables.
#pragma once

#include "chip/ports.h"
#include "chip/switch_controls.h"
#include "chip/vlans.h"

namespace chip {

struct Chip {
  explicit Chip(int ethernet_ports) : ports(ethernet_ports), vlans(ports), switch_controls(ports) {}

  // The tables refer to the ports.
  Chip(const Chip&) = delete;
  Chip& operator=(const Chip&) = delete;

  /// Every table as after power-on.
  void reset() {
    vlans.reset();
    switch_controls.reset();
  }

  Ports ports;
  Vlans vlans;
  SwitchControls switch_controls;
};

}  // namespace chip
