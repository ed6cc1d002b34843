// A frame in the pipeline: its headers, its ingress port, and what the stages have decided so far.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "chip/field_processor.h"
#include "chip/field_qualifiers.h"
#include "chip/pipeline/drop.h"
#include "chip/pipeline/observer.h"
#include "chip/segments.h"

namespace chip {

struct Chip;

/// Why the CPU gets a frame; several bits can be set.
namespace cpu_reason {
constexpr uint32_t l2_cache = 0x1;
constexpr uint32_t protocol = 0x2;  // ARP, DHCP, neighbor discovery, reserved multicast
constexpr uint32_t l3_miss = 0x4;   // no route
constexpr uint32_t l3_error = 0x8;  // the router cannot forward it
constexpr uint32_t field_rule = 0x10;
constexpr uint32_t learning = 0x20;     // an unknown source
constexpr uint32_t mac_entry = 0x40;    // the MAC entry of its destination
constexpr uint32_t destination = 0x80;  // addressed to the CPU, or flooded
}  // namespace cpu_reason

/// The TPID of every port. Frames with any other are untagged.
constexpr uint16_t tpid = 0x8100;
constexpr uint16_t vlan_mask = 0xFFF;
constexpr int priority_shift = 13;
constexpr uint16_t priority_mask = 0xE000;

/// A tag with another priority; a priority out of range, such as -1, leaves it unchanged.
constexpr uint16_t with_priority(uint16_t tag, int priority) {
  constexpr int highest = priority_mask >> priority_shift;
  if (priority < 0 || priority > highest) return tag;
  return static_cast<uint16_t>((tag & ~priority_mask) | priority << priority_shift);
}
/// A tag with another VLAN.
constexpr uint16_t with_vlan(uint16_t tag, int vlan) {
  return static_cast<uint16_t>((tag & ~vlan_mask) | (vlan & vlan_mask));
}

/// How a frame carries its protocol: as an ether type, or after a length in an LLC header with or without SNAP. It is
/// unreadable where LLC is truncated.
enum class Framing { ethernet2, snap, llc, unreadable };

struct Packet {
  std::span<const uint8_t> bytes;  // as received, without checksum
  Segments segments;               // of an aggregate: its headers stand for those of all its frames
  bool has_header = false;         // a whole Ethernet header, tags included; otherwise nothing more is known

  Port port{};     // its ingress port
  Place source{};  // the port, or the virtual port that it belongs to

  /// Its header fields. The tags are those inside the chip; there is always an outer one.
  FrameFields fields;
  bool outer_tagged = false;  // it came with an outer tag, possibly a priority tag
  bool inner_tagged = false;  // it has an inner tag now
  Framing framing = Framing::ethernet2;
  uint16_t access_points = 0;     // LLC: the two service access points; there is no ether type then
  std::size_t ether_type_at = 0;  // offset of the ether type or length
  std::size_t payload_at = 0;     // offset of the IP or ARP header
  bool lengths_agree = true;      // the lengths in the IP header, with each other and with the frame

  int priority = 0;  // inside the chip, 0 to 7

  /// How many frames it is on the wire, and the bytes of the longest.
  std::size_t frames() const { return segments.count(bytes.size()); }
  std::size_t frame_size() const { return segments.is_aggregate() ? segments.frame_size() : bytes.size(); }

  int vlan() const { return fields.outer_tag & vlan_mask; }
  int inner_vlan() const { return inner_tagged ? fields.inner_tag & vlan_mask : 0; }
  void set_vlan(int vlan) { fields.outer_tag = with_vlan(fields.outer_tag, vlan); }
  bool is_multicast() const { return is_group(fields.destination_mac); }
  bool is_broadcast() const { return chip::is_broadcast(fields.destination_mac); }

  // Whether it has a readable header of that protocol. The ether type alone tells the kind of frame.
  bool is_ip4() const { return is_readable(ether_type::ip4); }
  bool is_ip6() const { return is_readable(ether_type::ip6); }
  bool is_arp() const { return is_readable(ether_type::arp); }
  /// An IGMP message; its type is in the ICMP type.
  bool is_igmp() const { return is_ip4() && fields.ip_protocol == ip_protocol::igmp; }

 private:
  bool is_readable(uint16_t type) const { return fields.ether_type == type && fields.can_read(Layer::network); }
};

/// The way out of the chip to a place; that of a trunk is one of its ports.
struct Exit {
  Place place;  // a port or a virtual port
  Port port;    // by which a frame leaves then
};

/// One copy of a frame on its way out.
struct Copy {
  explicit Copy(const Exit& exit) : place(exit.place), port(exit.port) {}

  Place place;
  Port port;
  std::optional<int> l3_interface;  // routed: through which it leaves
  Mac next_hop{};                   // routed to one destination: whom it is for
};

/// A frame that left a port in loopback, and so is received there again.
struct Looped {
  Port port{};
  std::vector<uint8_t> bytes;
};

/// One frame's passage through the pipeline, which the stages read and change in turn.
struct Passage {
  Passage(Chip& through, std::vector<Copy>& to, std::vector<Looped>& back) : chip(through), copies(to), looped(back) {}

  Chip& chip;
  Observer* observer = nullptr;  // null: nobody is told
  Packet packet;
  uint32_t cpu_reasons = 0;             // not 0: the CPU gets a copy
  bool unknown_destination = false;     // destination unknown, so the frame is flooded
  Drop nowhere = Drop::no_destination;  // why there are no copies, if there are none
  FieldVerdict verdict;                 // of the ingress stage
  std::vector<Copy>& copies;            // the copies to send
  std::vector<Looped>& looped;

  /// Names an entry that decides, whose key it has.
  template <class Which>
  void by(const Which& which) const {
    if (observer != nullptr) [[unlikely]]
      tell(which);
  }

  /// Why it is dropped, or none.
  Drop drop() const { return drop_; }
  bool dropped() const { return drop_ != Drop::none; }

  /// Drops the frame. Of several reasons the first one stays.
  void stop(Drop reason) {
    if (!dropped()) drop_ = reason;
  }
  /// Cancels the drop.
  void release() { drop_ = Drop::none; }
  /// Sends the frame only to the CPU, even if it was dropped before.
  void trap(uint32_t reason) {
    cpu_reasons |= reason;
    drop_ = Drop::trapped;
  }
  /// Drops the frame for the CPU too, even if it was trapped.
  void lose(Drop reason) {
    if (drop_ == Drop::trapped) release();
    stop(reason);
    cpu_reasons = 0;
    copies.clear();
  }

 private:
  // Out of line, so that the stages stay as short as without it.
  template <class Which>
  [[gnu::noinline, gnu::cold]] void tell(const Which& which) const {
    observer->decides(which);
  }

  Drop drop_ = Drop::none;
};

}  // namespace chip
