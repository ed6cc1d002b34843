// The chip's switch controls: numbered settings of the whole chip or of each port.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <utility>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The controls that the chip has, by number.
enum class SwitchControl : int {
  // of each port
  non_ip_l3_error_to_cpu = 22,
  ip6_l3_destination_miss_to_cpu = 40,
  ip4_l3_destination_miss_to_cpu = 43,
  arp_reply_to_cpu = 84,
  arp_request_to_cpu = 86,
  neighbour_discovery_to_cpu = 89,
  dhcp_to_cpu = 94,
  dhcp_drop = 95,
  ip4_reserved_multicast_flood = 100,
  ip6_reserved_multicast_to_cpu = 101,
  ip6_reserved_multicast_flood = 103,
  // of the whole chip
  directed_mirroring = 125,
  mld_reserved_multicast_enable = 216,
  l3_egress_mode = 230,
  ipmc_same_vlan_l3_route = 364,
  l2_destination_hit_enable = 611,
  flexible_mirror_destinations = 781,
};

class SwitchControls {
 public:
  explicit SwitchControls(const Ports& ports) : ports_(ports) {}

  /// All controls are 0 after a reset.
  void reset() {
    values_.clear();
    on_ = {};
  }

  /// Sets a control of the whole chip, or one of each port on every port.
  Status set(int control, int value);
  /// Reads a control of the whole chip, or what set() last gave to every port.
  Status get(int control, int& value) const;

  /// Unavailable for a control of the whole chip.
  Status set_port(int port, int control, int value);
  Status get_port(int port, int control, int& value) const;

  /// Whether a control of the whole chip, or one of a port of the chip, is not 0.
  bool is_on(SwitchControl control) const { return on_[index(control)].contains(0); }
  bool is_on(SwitchControl control, int port) const { return on_[index(control)].contains(port); }

  /// The name of a control that the chip has.
  static const char* name(int control);
  static bool is_of_each_port(int control) { return scope(control) == Scope::port; }

  /// What is set, by (control, port or whole_chip).
  const std::map<std::pair<int, int>, int>& all() const { return values_; }

  static constexpr int whole_chip = -1;

 private:
  enum class Scope { none, port, chip };
  static Scope scope(int control);
  static std::size_t index(SwitchControl control);
  /// Writes a value, for `port` or whole_chip.
  void write(int control, int port, int value);

  const Ports& ports_;
  static constexpr std::size_t count = 17;
  std::map<std::pair<int, int>, int> values_;  // absent: 0
  std::array<PortSet, count> on_;              // where a control is not 0; one of the whole chip is so at 0
};

}  // namespace chip
