// The chip's switch controls: numbered settings of the whole chip or of each port.
#pragma once

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
  void reset() { values_.clear(); }

  /// Sets a control of the whole chip, or one of each port on every port.
  Status set(int control, int value);
  /// Reads a control of the whole chip, or what set() last gave to every port.
  Status get(int control, int& value) const;

  /// Unavailable for a control of the whole chip.
  Status set_port(int port, int control, int value);
  Status get_port(int port, int control, int& value) const;

  /// The name of a control that the chip has.
  static const char* name(int control);
  static bool is_of_each_port(int control) { return scope(control) == Scope::port; }

  /// What is set, by (control, port or whole_chip).
  const std::map<std::pair<int, int>, int>& all() const { return values_; }

  static constexpr int whole_chip = -1;

 private:
  enum class Scope { none, port, chip };
  static Scope scope(int control);

  const Ports& ports_;
  std::map<std::pair<int, int>, int> values_;  // absent: 0
};

}  // namespace chip
