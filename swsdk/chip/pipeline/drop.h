// Why a frame, or a copy of one, is lost.
#pragma once

namespace chip {

enum class Drop : int {
  none,
  malformed,       // its Ethernet header is truncated
  port_down,       // the port has no link
  too_long,        // longer than the port's maximum
  rate,            // over the ingress rate of the port
  no_vlan,         // its VLAN does not exist
  not_member,      // the port is not a member of its VLAN
  spanning_tree,   // the port does not forward in its VLAN
  trapped,         // sent only to the CPU
  switch_control,  // a switch control of its port
  source_discard,  // the MAC entry of its source
  learn_limit,     // its source exceeds a learn limit
  unknown_source,  // its port does not forward from unknown addresses
  field_rule,      // an entry of the field processor
  policer,         // marked red, and red frames are dropped
  storm,           // over a storm-control rate
  discard,         // the MAC entry of its destination
  no_route,        // neither a host nor a route has its IP destination
  no_destination,  // no port to send it to
  group_source,    // its source is a multicast address
  // In the order in which they were added, because recordings contain their numbers.
  not_ip,               // for the router, but not a readable IP packet
  ip_length,            // the lengths in its IP header contradict each other or the frame
  ip_options,           // its IPv4 header has options
  ip_checksum,          // of its IPv4 header
  martian_source,       // no host has its IP source
  martian_destination,  // no host has its IP destination
  ttl_expired,          // 0 or 1 before the hop
  no_next_hop,          // the trunk or virtual port of its next hop does not exist or has no link
  wrong_ingress_port,   // a multicast packet from another port than its route's
  no_group_member,      // nobody in its multicast group gets it
  multicast_flood,      // its VLAN does not flood unknown multicasts
  own_port,             // its destination is where it came from
  isolated,             // its port may not send to the destination's
  split_horizon,        // its virtual port may not send to the destination's
  flood_blocked,        // floods from its port to all others are blocked
  no_exit,              // the trunk or virtual port of its destination does not exist or has no link
  // Of copies.
  no_interface,          // its layer 3 interface does not exist
  ttl_threshold,         // less than the layer 3 interface requires
  egress_no_vlan,        // the VLAN in which it would leave does not exist
  egress_not_member,     // its port is not a member of that VLAN
  egress_spanning_tree,  // its port does not forward in that VLAN
  egress_port_down,      // its port does not exist or has no link
  egress_field_rule,     // an egress entry of the field processor
  egress_policer,        // marked red by an egress entry
  egress_too_long,       // longer than the port's maximum
  egress_rate,           // over the egress rate of the port
  egress_no_exit,        // the trunk or virtual port to which it goes does not exist or has no link
  egress_loop,           // it has come back by ports in loopback too often
};
constexpr int drop_count = static_cast<int>(Drop::egress_loop) + 1;

/// In lower case, for people.
const char* name(Drop drop);
/// What would have let the frame pass: a sentence in lower case without its full stop.
const char* remedy(Drop drop);

}  // namespace chip
