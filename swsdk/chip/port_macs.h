// The Ethernet ports' MACs: link, speed, duplex, pause and the sizes of frames and of the gaps between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

enum class Loopback : int { none, mac, phy };
enum class Duplex : int { half, full };

struct PortMac {
  Setting<bool> enabled = true;
  bool partner = false;  // a link partner is connected
  bool negotiates = false;
  int speed = 0;  // Mbit/s
  Duplex duplex = Duplex::full;
  uint32_t advertised = 0;
  int interface = 0;
  Loopback loopback = Loopback::none;
  bool pause_tx = false;
  bool pause_rx = false;
  Setting<int> frame_max = 0;               // bytes
  std::map<std::pair<int, int>, int> gaps;  // bit times, by speed and duplex; absent: PortMacs::default_gap

  /// A port that is looped back needs no link partner.
  bool link() const { return enabled && (partner || loopback != Loopback::none); }
  /// Whether a frame of that many bytes, without checksum, is short enough; a tag does not count.
  bool takes(std::size_t bytes, bool tagged) const {
    constexpr std::size_t checksum = 4;
    constexpr std::size_t tag = 4;
    return bytes + checksum <= static_cast<std::size_t>(frame_max) + (tagged ? tag : 0);
  }
};

class PortMacs {
 public:
  static constexpr int min_frame_max = 64;
  static constexpr int max_frame_max = 9216;
  static constexpr int min_gap = 64;
  static constexpr int max_gap = 248;
  static constexpr int default_gap = 96;

  explicit PortMacs(const Ports& ports) : macs_(ports.ethernet()) { reset(); }

  /// Every port enabled, at its highest speed and maximum frame size; gigabit ports negotiate. Link partners stay.
  void reset();

  Status enable(Port port, bool on);
  /// Connects or disconnects the link partner.
  Status set_partner(Port port, bool present);
  Status negotiate(Port port, bool on);
  /// Forces a speed, 0 for the highest, and ends negotiation.
  Status set_speed(Port port, int speed);
  /// Forces a duplex mode and ends negotiation.
  Status set_duplex(Port port, int duplex);
  Status advertise(Port port, uint32_t abilities);
  Status set_interface(Port port, int interface);
  Status set_loopback(Port port, int loopback);
  Status set_pause(Port port, bool tx, bool rx);
  Status set_frame_max(Port port, int size);

  /// The gap while the port runs at that speed and duplex; nothing when it cannot run at them.
  std::optional<int> gap(Port port, int speed, int duplex) const;
  Status absent_gap(Port port) const { return find(port) == nullptr ? Status::bad_port : Status::bad_parameter; }
  Status set_gap(Port port, int speed, int duplex, int bit_times);

  const PortTable<PortMac>& all() const { return macs_; }
  /// The ports whose links are up.
  PortSet links() const;
  /// The port's MAC, or null for one that has none: the CPU port.
  const PortMac* find(Port port) const { return macs_.find(port); }
  /// Of an Ethernet port of the chip.
  const PortMac& of(Port port) const { return macs_[port]; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(macs_);
  }

 private:
  template <class Body>
  Status with(Port port, Body body);

  PortTable<PortMac> macs_;  // of every Ethernet port
};

}  // namespace chip
