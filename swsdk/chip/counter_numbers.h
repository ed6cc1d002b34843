// The counters that frames update, by number.
#pragma once

namespace chip::counter {

constexpr int in_octets = 0;
constexpr int in_unicast = 1;
constexpr int in_non_unicast = 2;
constexpr int in_discards = 3;
constexpr int in_errors = 4;
constexpr int out_octets = 6;
constexpr int out_unicast = 7;
constexpr int out_non_unicast = 8;
constexpr int out_discards = 9;
constexpr int ip4_received = 12;
constexpr int ip4_header_errors = 13;
constexpr int ip4_forwarded = 14;
constexpr int ip4_discards = 15;
constexpr int mtu_discards = 17;
constexpr int bridge_in_frames = 18;
constexpr int bridge_out_frames = 19;
constexpr int bridge_in_discards = 20;
constexpr int ether_multicast = 22;
constexpr int ether_broadcast = 23;
constexpr int ether_first_size = 26;  // of six, up to 1518 bytes
constexpr int ether_oversize = 32;
constexpr int ether_in_oversize = 33;
constexpr int ether_out_oversize = 34;
constexpr int ether_octets = 36;
constexpr int ether_frames = 37;
constexpr int ether_good_out = 40;
constexpr int ether_good_in = 41;
constexpr int too_long_frames = 52;
constexpr int all_in_octets = 58;  // 64 bits, as the following seven
constexpr int all_in_unicast = 59;
constexpr int all_in_multicast = 60;
constexpr int all_in_broadcast = 61;
constexpr int all_out_octets = 62;
constexpr int all_out_unicast = 63;
constexpr int all_out_multicast = 64;
constexpr int all_out_broadcast = 65;
constexpr int ip6_received = 66;
constexpr int ip6_header_errors = 67;
constexpr int ip6_discards = 69;
constexpr int ip6_forwarded = 70;  // counted at egress, unlike that of IPv4
constexpr int ip6_multicast_in = 72;
constexpr int ip6_multicast_out = 73;
constexpr int in_broadcast = 74;
constexpr int in_multicast = 75;
constexpr int out_broadcast = 76;
constexpr int out_multicast = 77;
constexpr int group_bridged = 82;
constexpr int group_routed = 83;
constexpr int group_dropped = 84;
constexpr int ether_first_large_size = 86;  // of four, up to 9216 bytes
constexpr int in_first_size = 90;           // of nine
constexpr int out_first_size = 99;          // of nine
constexpr int in_tagged = 176;
constexpr int in_double_tagged = 177;
constexpr int out_tagged = 178;
constexpr int out_double_tagged = 179;

}  // namespace chip::counter
