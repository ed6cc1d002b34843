// The Ethernet ports' MACs: link, speed, duplex, pause and the sizes of frames and of the gaps between them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

enum class Loopback : int { none, mac, phy };
enum class Duplex : int { half, full };

struct PortMac {
  bool enabled = true;
  bool partner = false;  // somebody is at the other end of the cable
  bool negotiates = false;
  int speed = 0;  // Mbit/s
  Duplex duplex = Duplex::full;
  uint32_t advertised = 0;
  int interface = 0;
  Loopback loopback = Loopback::none;
  bool pause_tx = false;
  bool pause_rx = false;
  int frame_max = 0;                        // bytes
  std::map<std::pair<int, int>, int> gaps;  // bit times, by speed and duplex; absent: PortMacs::default_gap

  /// A port that is looped back needs nobody at the other end.
  bool link() const { return enabled && (partner || loopback != Loopback::none); }
  /// Whether a frame of that many bytes, checksum not counted, is short enough; a tag makes it no longer.
  bool takes(std::size_t bytes, bool tagged) const {
    constexpr std::size_t checksum = 4;
    constexpr std::size_t tag = 4;
    return bytes + checksum <= static_cast<std::size_t>(frame_max) + (tagged ? tag : 0);
  }
};

class PortMacs {
 public:
  static constexpr int lowest_frame_max = 64;
  static constexpr int highest_frame_max = 9216;
  static constexpr int lowest_gap = 64;
  static constexpr int highest_gap = 248;
  static constexpr int default_gap = 96;

  explicit PortMacs(const Ports& ports) : ports_(ports) { reset(); }

  /// Every port enabled, at its fastest and with frames of any length; gigabit ports negotiate. Partners stay: a reset
  /// of the chip pulls no cable.
  void reset();

  /// Reads one member, &PortMac::speed for one. The CPU port has no MAC.
  template <class Member, class Value>
  Status get(int port, Member member, Value& value) const {
    const auto found = macs_.find(port);
    if (found == macs_.end()) return Status::bad_port;
    value = static_cast<Value>(std::invoke(member, found->second));
    return Status::ok;
  }

  Status enable(int port, bool on);
  /// Somebody appears at the other end, or leaves.
  Status set_partner(int port, bool present);
  Status negotiate(int port, bool on);
  /// Forces a speed, 0 for the port's fastest, and with it ends negotiation.
  Status set_speed(int port, int speed);
  /// Forces a duplex mode, and with it ends negotiation.
  Status set_duplex(int port, int duplex);
  Status advertise(int port, uint32_t abilities);
  Status set_interface(int port, int interface);
  Status set_loopback(int port, int loopback);
  Status set_pause(int port, bool tx, bool rx);
  Status set_frame_max(int port, int size);

  /// The gap that is in force while the port runs at that speed and duplex.
  Status gap(int port, int speed, int duplex, int& bit_times) const;
  Status set_gap(int port, int speed, int duplex, int bit_times);

  const std::map<int, PortMac>& all() const { return macs_; }
  /// The port's MAC, or null for one that has none.
  const PortMac* find(int port) const {
    return port >= 0 && port < PortSet::capacity ? by_port_[static_cast<std::size_t>(port)] : nullptr;
  }

 private:
  template <class Body>
  Status with(int port, Body body);

  const Ports& ports_;
  std::map<int, PortMac> macs_;  // of every Ethernet port
  std::array<const PortMac*, PortSet::capacity> by_port_{};
};

}  // namespace chip
