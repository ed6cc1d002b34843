// A frame on its way through the chip: what it says, where it came in, and what the stages have decided so far.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "chip/field_processor.h"
#include "chip/field_qualifiers.h"

namespace chip {

struct Chip;
class Meters;

/// Why a frame goes no further.
enum class Drop : int {
  none,
  malformed,       // its Ethernet header is cut short
  port_down,       // the port has no link
  too_long,        // longer than the port takes
  rate,            // more than the port lets in
  no_vlan,         // its VLAN does not exist
  not_member,      // the port is no member of its VLAN
  spanning_tree,   // the port does not forward in its VLAN
  trapped,         // for the CPU alone
  switch_control,  // a control of its port says so
  source_discard,  // its source is not to be heard
  learn_limit,     // its source is one address too many
  unknown_source,  // its port forwards nothing from unknown addresses
  field_rule,      // an entry of the field processor says so
  policer,         // red, and to be dropped then
  storm,           // one flood too many
  discard,         // its destination is not to be reached
  router,          // the router does not pass it on
  no_destination,  // nowhere to go
  // Behind the others, whose numbers recordings keep.
  group_source,  // its source is a group, which no host is
};
constexpr int drop_count = static_cast<int>(Drop::group_source) + 1;

/// In lower case, for people.
const char* name(Drop drop);

/// Why the CPU gets a frame; several can hold.
namespace cpu_reason {
constexpr uint32_t l2_cache = 0x1;
constexpr uint32_t protocol = 0x2;  // ARP, DHCP, neighbour discovery, reserved multicast
constexpr uint32_t l3_miss = 0x4;   // nobody knows the way
constexpr uint32_t l3_error = 0x8;  // the router cannot pass it on
constexpr uint32_t field_rule = 0x10;
constexpr uint32_t learning = 0x20;     // an unknown source
constexpr uint32_t mac_entry = 0x40;    // its entry in the MAC table says so
constexpr uint32_t destination = 0x80;  // it is for the CPU, or flooded
}  // namespace cpu_reason

constexpr uint16_t vlan_mask = 0xFFF;
constexpr int priority_shift = 13;
constexpr uint16_t priority_mask = 0xE000;

/// A tag with another priority; one that is none, -1 for one, leaves it as it is.
constexpr uint16_t with_priority(uint16_t tag, int priority) {
  constexpr int highest = priority_mask >> priority_shift;
  if (priority < 0 || priority > highest) return tag;
  return static_cast<uint16_t>((tag & ~priority_mask) | priority << priority_shift);
}
/// A tag with another VLAN.
constexpr uint16_t with_vlan(uint16_t tag, int vlan) {
  return static_cast<uint16_t>((tag & ~vlan_mask) | (vlan & vlan_mask));
}

/// How the protocol stands in a frame: as an ether type, behind a length and LLC with it or without, or, where LLC is
/// cut short, not at all.
enum class Framing { ethernet2, snap, llc, unreadable };

struct Packet {
  std::span<const uint8_t> bytes;  // as it came in, without checksum

  int port = 0;    // where it came in
  int source = 0;  // the port, or the gport of the virtual port that it belongs to

  /// What it says. The tags are those that it has now; it always has an outer one.
  FrameFields fields;
  bool outer_tagged = false;  // it came with an outer tag, be it of priority alone
  bool inner_tagged = false;  // it has an inner tag now
  Framing framing = Framing::ethernet2;
  uint16_t access_points = 0;     // LLC: the two service access points; there is no ether type then
  std::size_t ether_type_at = 0;  // where the ether type stands, or the length
  std::size_t payload_at = 0;     // where IP or ARP begins
  bool lengths_agree = true;      // those that an IP header tells, with each other and with the frame

  int priority = 0;  // inside the chip, 0 to 7

  int vlan() const { return fields.outer_tag & vlan_mask; }
  int inner_vlan() const { return inner_tagged ? fields.inner_tag & vlan_mask : 0; }
  void set_vlan(int vlan) { fields.outer_tag = with_vlan(fields.outer_tag, vlan); }
  bool is_multicast() const { return is_group(fields.destination_mac); }
  bool is_broadcast() const { return fields.destination_mac == Mac{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}; }

  // What has a header of that protocol which can be read. Where the kind of frame is enough, the ether type tells it.
  bool is_ip4() const { return is_readable(ether_type::ip4); }
  bool is_ip6() const { return is_readable(ether_type::ip6); }
  bool is_arp() const { return is_readable(ether_type::arp); }
  /// An IGMP message; its type is in the ICMP type.
  bool is_igmp() const { return is_ip4() && fields.ip_protocol == ip_protocol::igmp; }

 private:
  bool is_readable(uint16_t type) const { return fields.ether_type == type && fields.can_read(Layer::network); }
};

/// One copy of a frame on its way out.
struct Copy {
  int port = 0;          // a port of the chip; trunks are resolved
  int virtual_port = 0;  // the gport of the virtual port through which it leaves, or 0
  int l3_interface = 0;  // routed: the interface through which it leaves, or 0
  Mac next_hop{};        // routed to one destination: whom it is for
};

/// A frame that left a port which is looped back, and so comes in there again.
struct Looped {
  int port;
  std::vector<uint8_t> bytes;
};

/// One frame's way through the chip, which the stages read and change in turn.
struct Passage {
  Passage(Chip& through, Meters& with, std::vector<Copy>& to, std::vector<Looped>& back)
      : chip(through), meters(with), copies(to), looped(back) {}

  Chip& chip;
  Meters& meters;
  Packet packet;
  uint32_t cpu_reasons = 0;          // not 0: the CPU gets a copy
  bool unknown_destination = false;  // it is flooded because nobody knows where the one is whom it is for
  FieldVerdict verdict;              // of the way in
  std::vector<Copy>& copies;         // where it goes
  std::vector<Looped>& looped;

  /// Why it goes no further.
  Drop drop() const { return drop_; }
  bool dropped() const { return drop_ != Drop::none; }

  /// It goes no further. Of several reasons the first one stays.
  void stop(Drop reason) {
    if (!dropped()) drop_ = reason;
  }
  /// It goes on: what stopped it before counts no more.
  void release() { drop_ = Drop::none; }
  /// It is for the CPU alone, whatever stopped it before.
  void trap(uint32_t reason) {
    cpu_reasons |= reason;
    drop_ = Drop::trapped;
  }
  /// Nobody gets it, nor does the CPU, for which alone it may have been.
  void lose(Drop reason) {
    if (drop_ == Drop::trapped) release();
    stop(reason);
    cpu_reasons = 0;
    copies.clear();
  }

 private:
  Drop drop_ = Drop::none;
};

}  // namespace chip
