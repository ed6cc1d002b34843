// Forwarding settings of each port: learning, permitted egress ports, and the VLAN of untagged frames.
#pragma once

#include <cstdint>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"
#include "chip/vlan_id.h"
#include "chip/vlans.h"

namespace chip {

struct PortForwarding {
  Setting<uint32_t> learning;     // what happens to frames from unknown addresses
  Setting<PortSet> destinations;  // ports to which its frames may be forwarded
  Setting<int> untagged_vlan;
};

class PortForwardings {
 public:
  // What happens to frames from unknown addresses.
  static constexpr uint32_t learn = 0x1;
  static constexpr uint32_t to_cpu = 0x2;
  static constexpr uint32_t forward = 0x4;

  explicit PortForwardings(const Ports& ports) : ports_(ports), all_(ports.all()) { reset(); }

  /// Every port learns, forwards to every port, and puts untagged frames into the default VLAN.
  void reset() {
    all_.fill({.learning = learn | forward, .destinations = ports_.all(), .untagged_vlan = Vlans::default_id});
  }

  Status set_learning(Port port, uint32_t learning) {
    if (!ports_.has(port)) return Status::bad_port;
    if ((learning & ~(learn | to_cpu | forward)) != 0) return Status::bad_parameter;
    all_[port].learning = learning;
    return Status::ok;
  }
  Status set_destinations(Port port, const PortSet& destinations) {
    if (!ports_.has(port) || !(destinations - ports_.all()).empty()) return Status::bad_port;
    all_[port].destinations = destinations;
    return Status::ok;
  }
  Status set_untagged_vlan(Port port, int vlan) {
    if (!ports_.has(port)) return Status::bad_port;
    if (!is_vlan(vlan)) return Status::bad_parameter;
    all_[port].untagged_vlan = vlan;
    return Status::ok;
  }

  const PortForwarding* find(Port port) const { return all_.find(port); }
  /// Of a port of the chip.
  const PortForwarding& of(Port port) const { return all_[port]; }
  const PortTable<PortForwarding>& all() const { return all_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(all_);
  }

 private:
  const Ports& ports_;
  PortTable<PortForwarding> all_;
};

}  // namespace chip
