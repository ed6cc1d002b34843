// What a port keeps back: frames of VLANs that it is no member of, and floods towards other ports.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

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

  explicit PortFilters(const Ports& ports) : ports_(ports) {}

  /// Nothing is kept back after a reset.
  void reset() {
    checks_ = {};
    blocks_.clear();
  }

  Status set_membership_checks(int port, uint32_t checks) {
    if (!ports_.has(port)) return Status::bad_port;
    if ((checks & ~(check_ingress | check_egress)) != 0) return Status::bad_parameter;
    checks_[static_cast<std::size_t>(port)] = checks;
    return Status::ok;
  }
  uint32_t membership_checks(int port) const { return checks_[static_cast<std::size_t>(port)]; }

  /// Keeps floods of these kinds that come in at `from` away from `to`; takes the place of what was set before.
  Status block_floods(int from, int to, uint32_t kinds) {
    if (!ports_.has(from) || !ports_.has(to)) return Status::bad_port;
    if ((kinds & ~(broadcast | unknown_unicast | unknown_multicast)) != 0) return Status::bad_parameter;
    blocks_[{from, to}] = kinds;
    return Status::ok;
  }
  uint32_t blocked_floods(int from, int to) const {
    const auto found = blocks_.find({from, to});
    return found == blocks_.end() ? 0 : found->second;
  }

 private:
  const Ports& ports_;
  std::array<uint32_t, PortSet::capacity> checks_{};  // by port
  std::map<std::pair<int, int>, uint32_t> blocks_;    // by (from, to)
};

}  // namespace chip
