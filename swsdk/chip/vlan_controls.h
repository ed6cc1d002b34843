// The chip's VLAN controls: numbered settings of the whole chip or of each port.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "chip/origin.h"
#include "chip/port_table.h"
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

  explicit VlanControls(const Ports& ports) : of_ports_(ports.all()) {}

  /// All controls are 0 after a reset.
  void reset() {
    translate_ = 0;
    of_ports_.fill({});
  }

  Status set(int control, int value) {
    if (control != static_cast<int>(VlanControlOfChip::translate)) return Status::unavailable;
    translate_ = value;
    return Status::ok;
  }
  const Setting<int>& translate() const { return translate_; }

  Status set_port(Port port, int control, int value) {
    if (find(port, control) == nullptr) return absent(port, control);
    OfPort& settings = of_ports_[port];
    settings.values[static_cast<std::size_t>(control)] = value;
    const bool set = value != 0;
    if (control == static_cast<int>(VlanControlOfPort::prefer_ip4)) settings.prefers_subnet = set;
    if (control == static_cast<int>(VlanControlOfPort::prefer_mac))
      settings.prefers_subnet = !set && of_port(port, VlanControlOfPort::prefer_ip4) != 0;
    return Status::ok;
  }
  const Setting<int>* find(Port port, int control) const {
    const OfPort* const settings = of_ports_.find(port);
    return settings != nullptr && has(control) ? &settings->values[static_cast<std::size_t>(control)] : nullptr;
  }
  /// Why the port has no such control.
  Status absent(Port port, int /*control*/) const {
    return of_ports_.find(port) == nullptr ? Status::bad_port : Status::unavailable;
  }

  /// Of a port that the chip has.
  const Setting<int>& of_port(Port port, VlanControlOfPort control) const {
    return of_ports_[port].values[static_cast<std::size_t>(control)];
  }
  /// Whether the subnet of a frame has precedence over its MAC address. Of both preferences, the one set last holds: a
  /// caller that sets one cannot clear the other.
  bool prefers_subnet(Port port) const { return of_ports_[port].prefers_subnet; }
  struct Info {
    VlanControlOfPort control;
    const char* name;
  };
  /// The controls of a port, with their names for people.
  static constexpr Info infos[] = {
      {VlanControlOfPort::prefer_ip4, "VLAN of the subnet preferred"},
      {VlanControlOfPort::prefer_mac, "VLAN of the MAC preferred"},
      {VlanControlOfPort::translate_ingress, "VLAN translation at ingress"},
      {VlanControlOfPort::translate_egress, "VLAN translation at egress"},
      {VlanControlOfPort::lookup_mac, "VLAN by MAC"},
      {VlanControlOfPort::lookup_ip, "VLAN by subnet"},
      {VlanControlOfPort::translate_first_key, "first key of virtual ports"},
      {VlanControlOfPort::translate_second_key, "second key of virtual ports"},
  };

  static const char* name(VlanControlOfPort control) {
    return std::find_if(std::begin(infos), std::end(infos), [&](const Info& info) { return info.control == control; })
        ->name;
  }

  /// Whether the port translates in one direction, which requires the chip's own control too.
  bool translates(Port port, VlanControlOfPort direction) const {
    return translate_ != 0 && of_port(port, direction) != 0;
  }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(translate_, of_ports_);
  }

 private:
  static bool has(int control) {
    return std::any_of(std::begin(infos), std::end(infos),
                       [&](const Info& info) { return static_cast<int>(info.control) == control; });
  }

  struct OfPort {
    std::array<Setting<int>, static_cast<std::size_t>(VlanControlOfPort::translate_second_key) + 1> values{};
    bool prefers_subnet = false;
  };

  Setting<int> translate_ = 0;
  PortTable<OfPort> of_ports_;
};

}  // namespace chip
