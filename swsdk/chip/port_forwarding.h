// How each port takes part in switching: what it learns, where its frames may go and which VLAN the untagged ones get.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>

#include "chip/ports.h"
#include "chip/status.h"
#include "chip/vlans.h"

namespace chip {

struct PortForwarding {
  uint32_t learning = 0;  // what becomes of frames from unknown addresses
  PortSet destinations;   // where frames that come in may go out
  int untagged_vlan = 0;
};

class PortForwardings {
 public:
  // What becomes of frames from unknown addresses.
  static constexpr uint32_t learn = 0x1;
  static constexpr uint32_t to_cpu = 0x2;
  static constexpr uint32_t forward = 0x4;

  explicit PortForwardings(const Ports& ports) : ports_(ports) { reset(); }

  /// Every port learns and forwards, to every port, and has its untagged frames in the default VLAN.
  void reset() {
    for (int port = 0; port <= ports_.all().highest(); ++port)
      all_[port] = {.learning = learn | forward, .destinations = ports_.all(), .untagged_vlan = Vlans::default_id};
    for (const auto& [port, forwarding] : all_) by_port_[static_cast<std::size_t>(port)] = &forwarding;
  }

  /// Reads one setting, &PortForwarding::learning for one.
  template <class Setting, class Value>
  Status get(int port, Setting PortForwarding::*setting, Value& value) const {
    if (!ports_.has(port)) return Status::bad_port;
    value = static_cast<Value>(all_.at(port).*setting);
    return Status::ok;
  }

  Status set_learning(int port, uint32_t learning) {
    if (!ports_.has(port)) return Status::bad_port;
    if ((learning & ~(learn | to_cpu | forward)) != 0) return Status::bad_parameter;
    all_[port].learning = learning;
    return Status::ok;
  }
  Status set_destinations(int port, const PortSet& destinations) {
    if (!ports_.has(port) || !(destinations - ports_.all()).empty()) return Status::bad_port;
    all_[port].destinations = destinations;
    return Status::ok;
  }
  Status set_untagged_vlan(int port, int vlan) {
    if (!ports_.has(port)) return Status::bad_port;
    if (vlan < Vlans::lowest_id || vlan > Vlans::highest_id) return Status::bad_parameter;
    all_[port].untagged_vlan = vlan;
    return Status::ok;
  }

  const std::map<int, PortForwarding>& all() const { return all_; }
  const PortForwarding& of(int port) const { return *by_port_[static_cast<std::size_t>(port)]; }

 private:
  const Ports& ports_;
  std::map<int, PortForwarding> all_;  // of every port
  std::array<const PortForwarding*, PortSet::capacity> by_port_{};
};

}  // namespace chip
