// Port filters: VLAN membership checks, and floods that are blocked between ports.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class PortFilters {
 public:
  // VLAN membership checks of a port.
  static constexpr uint32_t check_ingress = 0x1;
  static constexpr uint32_t check_egress = 0x2;
  // Kinds of floods.
  static constexpr uint32_t broadcast = 0x1;
  static constexpr uint32_t unknown_unicast = 0x2;
  static constexpr uint32_t unknown_multicast = 0x4;

  explicit PortFilters(const Ports& ports) : ports_(ports), checks_(ports.all()) {}

  /// Nothing is filtered after a reset.
  void reset() {
    checks_.fill({});
    blocks_.clear();
  }

  Status set_membership_checks(Port port, uint32_t checks) {
    if (!ports_.has(port)) return Status::bad_port;
    if ((checks & ~(check_ingress | check_egress)) != 0) return Status::bad_parameter;
    checks_[port] = checks;
    return Status::ok;
  }
  /// Of a port of the chip.
  uint32_t membership_checks(Port port) const { return checks_[port]; }

  /// Blocks floods of these kinds from port `from` to port `to`; replaces the earlier setting.
  Status block_floods(Port from, Port to, uint32_t kinds) {
    if (!ports_.has(from) || !ports_.has(to)) return Status::bad_port;
    if ((kinds & ~(broadcast | unknown_unicast | unknown_multicast)) != 0) return Status::bad_parameter;
    blocks_[{from, to}] = kinds;
    return Status::ok;
  }
  uint32_t blocked_floods(Port from, Port to) const {
    const auto found = blocks_.find({from, to});
    return found == blocks_.end() ? 0 : found->second.value;
  }

  /// Which calls made them so.
  Origin origin_of_checks(Port port) const { return checks_[port].origin; }
  Origin origin_of_blocks(Port from, Port to) const { return blocks_.at({from, to}).origin; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(checks_, blocks_);
  }

 private:
  const Ports& ports_;
  PortTable<Setting<uint32_t>> checks_;
  std::map<std::pair<Port, Port>, Setting<uint32_t>> blocks_;  // by (from, to)
};

}  // namespace chip
