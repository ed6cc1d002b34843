#include "chip/port_macs.h"

#include <algorithm>
#include <span>

namespace chip {

namespace {

constexpr int gigabit_speeds[] = {10, 100, 1000};
constexpr int uplink_speeds[] = {1000, 10000};

std::span<const int> speeds(int port) {
  if (Ports::is_uplink(port)) return uplink_speeds;
  return gigabit_speeds;
}

bool runs_at(int port, int speed, int duplex) {
  const std::span<const int> possible = speeds(port);
  if (std::find(possible.begin(), possible.end(), speed) == possible.end()) return false;
  return duplex == static_cast<int>(Duplex::full) ||
         (duplex == static_cast<int>(Duplex::half) && !Ports::is_uplink(port));
}

/// The two ends agree on the best, whatever they advertise: they are taken to have all abilities in common.
void agree(int port, PortMac& mac) {
  if (!mac.enabled || !mac.partner || !mac.negotiates) return;
  mac.speed = speeds(port).back();
  mac.duplex = Duplex::full;
}

}  // namespace

/// Runs `body` on the port's MAC, or tells that it has none.
template <class Body>
Status PortMacs::with(int port, Body body) {
  const auto found = macs_.find(port);
  return found == macs_.end() ? Status::bad_port : body(found->second);
}

void PortMacs::reset() {
  // What the SDK calls GMII and XGMII.
  constexpr int gigabit_interface = 3;
  constexpr int uplink_interface = 6;
  for (int port = ports_.ethernet().lowest(); port <= ports_.ethernet().highest(); ++port) {
    PortMac& mac = macs_[port];
    mac = {.partner = mac.partner,
           .negotiates = !Ports::is_uplink(port),
           .speed = speeds(port).back(),
           .interface = Ports::is_uplink(port) ? uplink_interface : gigabit_interface,
           .frame_max = highest_frame_max,
           .gaps = {}};
  }
  for (const auto& [port, mac] : macs_) by_port_[static_cast<std::size_t>(port)] = &mac;
}

Status PortMacs::enable(int port, bool on) {
  return with(port, [&](PortMac& mac) {
    mac.enabled = on;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::set_partner(int port, bool present) {
  return with(port, [&](PortMac& mac) {
    mac.partner = present;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::negotiate(int port, bool on) {
  return with(port, [&](PortMac& mac) {
    mac.negotiates = on;
    agree(port, mac);
    return Status::ok;
  });
}

Status PortMacs::set_speed(int port, int speed) {
  return with(port, [&](PortMac& mac) {
    const int wanted = speed == 0 ? speeds(port).back() : speed;
    if (!runs_at(port, wanted, static_cast<int>(mac.duplex))) return Status::bad_parameter;
    mac.negotiates = false;
    mac.speed = wanted;
    return Status::ok;
  });
}

Status PortMacs::set_duplex(int port, int duplex) {
  return with(port, [&](PortMac& mac) {
    if (!runs_at(port, mac.speed, duplex)) return Status::bad_parameter;
    mac.negotiates = false;
    mac.duplex = static_cast<Duplex>(duplex);
    return Status::ok;
  });
}

Status PortMacs::advertise(int port, uint32_t abilities) {
  return with(port, [&](PortMac& mac) {
    mac.advertised = abilities;
    return Status::ok;
  });
}

Status PortMacs::set_interface(int port, int interface) {
  return with(port, [&](PortMac& mac) {
    if (interface < 0) return Status::bad_parameter;
    mac.interface = interface;
    return Status::ok;
  });
}

Status PortMacs::set_loopback(int port, int loopback) {
  return with(port, [&](PortMac& mac) {
    if (loopback < static_cast<int>(Loopback::none) || loopback > static_cast<int>(Loopback::phy))
      return Status::bad_parameter;
    mac.loopback = static_cast<Loopback>(loopback);
    return Status::ok;
  });
}

Status PortMacs::set_pause(int port, bool tx, bool rx) {
  return with(port, [&](PortMac& mac) {
    mac.pause_tx = tx;
    mac.pause_rx = rx;
    return Status::ok;
  });
}

Status PortMacs::set_frame_max(int port, int size) {
  return with(port, [&](PortMac& mac) {
    if (size < lowest_frame_max || size > highest_frame_max) return Status::bad_parameter;
    mac.frame_max = size;
    return Status::ok;
  });
}

Status PortMacs::gap(int port, int speed, int duplex, int& bit_times) const {
  const auto mac = macs_.find(port);
  if (mac == macs_.end()) return Status::bad_port;
  if (!runs_at(port, speed, duplex)) return Status::bad_parameter;
  const auto found = mac->second.gaps.find({speed, duplex});
  bit_times = found == mac->second.gaps.end() ? default_gap : found->second;
  return Status::ok;
}

Status PortMacs::set_gap(int port, int speed, int duplex, int bit_times) {
  return with(port, [&](PortMac& mac) {
    if (!runs_at(port, speed, duplex) || bit_times < lowest_gap || bit_times > highest_gap)
      return Status::bad_parameter;
    mac.gaps[{speed, duplex}] = bit_times;
    return Status::ok;
  });
}

}  // namespace chip
