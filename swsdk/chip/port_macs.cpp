#include "chip/port_macs.h"

#include <algorithm>
#include <span>

namespace chip {

namespace {

constexpr int gigabit_speeds[] = {10, 100, 1000};
constexpr int uplink_speeds[] = {1000, 10000};

std::span<const int> speeds(Port port) {
  if (Ports::is_uplink(port)) return uplink_speeds;
  return gigabit_speeds;
}

bool runs_at(Port port, int speed, int duplex) {
  const std::span<const int> possible = speeds(port);
  if (std::find(possible.begin(), possible.end(), speed) == possible.end()) return false;
  return duplex == static_cast<int>(Duplex::full) ||
         (duplex == static_cast<int>(Duplex::half) && !Ports::is_uplink(port));
}

/// Both ends agree on the highest speed, whatever they advertise: the partner is assumed to have all abilities.
void agree(Port port, PortMac& mac) {
  if (!mac.enabled || !mac.partner || !mac.negotiates) return;
  mac.speed = speeds(port).back();
  mac.duplex = Duplex::full;
}

}  // namespace

/// Runs `body` on the port's MAC; bad_port when it has none.
template <class Body>
Status PortMacs::with(Port port, Body body) {
  PortMac* const mac = macs_.find(port);
  return mac == nullptr ? Status::bad_port : body(*mac);
}

void PortMacs::reset() {
  // What the SDK calls GMII and XGMII.
  constexpr int gigabit_interface = 3;
  constexpr int uplink_interface = 6;
  for (const auto& [port, mac] : macs_)
    macs_[port] = {.partner = mac.partner,
                   .negotiates = !Ports::is_uplink(port),
                   .speed = speeds(port).back(),
                   .interface = Ports::is_uplink(port) ? uplink_interface : gigabit_interface,
                   .frame_max = max_frame_max,
                   .gaps = {}};
}

PortSet PortMacs::links() const {
  PortSet up;
  for (const auto& [port, mac] : macs_)
    if (mac.link()) up.add(port);
  return up;
}

Status PortMacs::enable(Port port, bool on) {
  return with(port, [&](PortMac& mac) {
    mac.enabled = on;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::set_partner(Port port, bool present) {
  return with(port, [&](PortMac& mac) {
    mac.partner = present;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::negotiate(Port port, bool on) {
  return with(port, [&](PortMac& mac) {
    mac.negotiates = on;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::set_speed(Port port, int speed) {
  return with(port, [&](PortMac& mac) {
    const int wanted = speed == 0 ? speeds(port).back() : speed;
    if (!runs_at(port, wanted, static_cast<int>(mac.duplex))) return Status::bad_parameter;
    mac.negotiates = false;
    mac.speed = wanted;
    return Status::ok;
  });
}

Status PortMacs::set_duplex(Port port, int duplex) {
  return with(port, [&](PortMac& mac) {
    if (!runs_at(port, mac.speed, duplex)) return Status::bad_parameter;
    mac.negotiates = false;
    mac.duplex = static_cast<Duplex>(duplex);
    return Status::ok;
  });
}

Status PortMacs::advertise(Port port, uint32_t abilities) {
  return with(port, [&](PortMac& mac) {
    mac.advertised = abilities;
    return Status::ok;
  });
}

Status PortMacs::set_interface(Port port, int interface) {
  return with(port, [&](PortMac& mac) {
    if (interface < 0) return Status::bad_parameter;
    mac.interface = interface;
    return Status::ok;
  });
}

Status PortMacs::set_loopback(Port port, int loopback) {
  return with(port, [&](PortMac& mac) {
    if (loopback < static_cast<int>(Loopback::none) || loopback > static_cast<int>(Loopback::phy))
      return Status::bad_parameter;
    mac.loopback = static_cast<Loopback>(loopback);
    return Status::ok;
  });
}

Status PortMacs::set_pause(Port port, bool tx, bool rx) {
  return with(port, [&](PortMac& mac) {
    mac.pause_tx = tx;
    mac.pause_rx = rx;
    return Status::ok;
  });
}

Status PortMacs::set_frame_max(Port port, int size) {
  return with(port, [&](PortMac& mac) {
    if (size < min_frame_max || size > max_frame_max) return Status::bad_parameter;
    mac.frame_max = size;
    return Status::ok;
  });
}

std::optional<int> PortMacs::gap(Port port, int speed, int duplex) const {
  const PortMac* const mac = macs_.find(port);
  if (mac == nullptr || !runs_at(port, speed, duplex)) return std::nullopt;
  const auto found = mac->gaps.find({speed, duplex});
  return found == mac->gaps.end() ? default_gap : found->second;
}

Status PortMacs::set_gap(Port port, int speed, int duplex, int bit_times) {
  return with(port, [&](PortMac& mac) {
    if (!runs_at(port, speed, duplex) || bit_times < min_gap || bit_times > max_gap) return Status::bad_parameter;
    mac.gaps[{speed, duplex}] = bit_times;
    return Status::ok;
  });
}

}  // namespace chip
