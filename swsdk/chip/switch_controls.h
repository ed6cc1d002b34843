// The chip's switch controls: numbered settings of the whole chip or of each port.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The controls of each port.
enum class SwitchControlOfPort : int {
  non_ip_l3_error_to_cpu = 22,
  ip6_l3_destination_miss_to_cpu = 40,
  ip4_l3_destination_miss_to_cpu = 43,
  arp_reply_to_cpu = 84,
  arp_request_to_cpu = 86,
  neighbor_discovery_to_cpu = 89,
  dhcp_to_cpu = 94,
  dhcp_drop = 95,
  ip4_reserved_multicast_flood = 100,
  ip6_reserved_multicast_to_cpu = 101,
  ip6_reserved_multicast_flood = 103,
};

/// The controls of the whole chip.
enum class SwitchControlOfChip : int {
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
    values_ = {};
    on_ports_ = {};
    origins_ = {};
  }

  /// Sets a control of the whole chip, or one of each port on every port.
  Status set(int control, int value);
  /// A control of the whole chip, or what set() last gave to every port; nothing when there is no such control.
  std::optional<int> get(int control) const;
  /// Unavailable for a control of the whole chip.
  Status set_port(Port port, int control, int value);

  /// Whether a control is not 0.
  bool is_on(SwitchControlOfChip control) const { return values_[row_of(static_cast<int>(control))] != 0; }
  bool is_on(SwitchControlOfPort control, Port port) const { return ports_with(control).contains(port); }
  /// Where it is not 0.
  const PortSet& ports_with(SwitchControlOfPort control) const { return on_ports_[row_of(static_cast<int>(control))]; }

  /// Which call set a control of the chip, or one on a port, last.
  Origin origin(SwitchControlOfChip control) const {
    const std::vector<Origin>& of_chip = origins_[row_of(static_cast<int>(control))];
    return of_chip.empty() ? Origin::none() : of_chip.front();
  }
  Origin origin(SwitchControlOfPort control, Port port) const {
    const std::vector<Origin>& of_ports = origins_[row_of(static_cast<int>(control))];
    return of_ports.empty() ? Origin::none() : of_ports[port.index()];
  }

  struct Info {
    int control;
    bool of_each_port;
    const char* name;
  };
  /// The controls that the chip has, by number.
  static std::span<const Info> infos();
  /// The name of one of those, for people.
  static const char* name(int control) { return infos()[row_of(control)].name; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(values_, on_ports_, origins_);
  }

 private:
  static constexpr std::size_t count = 17;
  std::vector<Origin>& origins(int control);
  /// The place of a control that the chip has among the others.
  static std::size_t row_of(int control);

  const Ports& ports_;
  std::array<int, count> values_{};
  std::array<PortSet, count> on_ports_;
  std::array<std::vector<Origin>, count> origins_;  // by port, or one; empty where it was never set
};

}  // namespace chip
