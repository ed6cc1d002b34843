#include "chip/pipeline/counting.h"

#include <algorithm>

#include "chip/pipeline/counter_numbers.h"
#include "chip/pipeline/meters.h"

namespace chip {

namespace {

/// The counters that each frame of one direction updates.
struct Direction {
  int octets, unicast, non_unicast;
  int all_octets, all_unicast, all_multicast, all_broadcast;
  int multicast, broadcast;
  int frames, good_frames;
  int first_size;
  int tagged, double_tagged;
};
constexpr Direction received{.octets = counter::in_octets,
                             .unicast = counter::in_unicast,
                             .non_unicast = counter::in_non_unicast,
                             .all_octets = counter::all_in_octets,
                             .all_unicast = counter::all_in_unicast,
                             .all_multicast = counter::all_in_multicast,
                             .all_broadcast = counter::all_in_broadcast,
                             .multicast = counter::in_multicast,
                             .broadcast = counter::in_broadcast,
                             .frames = counter::bridge_in_frames,
                             .good_frames = counter::ether_good_in,
                             .first_size = counter::in_first_size,
                             .tagged = counter::in_tagged,
                             .double_tagged = counter::in_double_tagged};
constexpr Direction sent{.octets = counter::out_octets,
                         .unicast = counter::out_unicast,
                         .non_unicast = counter::out_non_unicast,
                         .all_octets = counter::all_out_octets,
                         .all_unicast = counter::all_out_unicast,
                         .all_multicast = counter::all_out_multicast,
                         .all_broadcast = counter::all_out_broadcast,
                         .multicast = counter::out_multicast,
                         .broadcast = counter::out_broadcast,
                         .frames = counter::bridge_out_frames,
                         .good_frames = counter::ether_good_out,
                         .first_size = counter::out_first_size,
                         .tagged = counter::out_tagged,
                         .double_tagged = counter::out_double_tagged};

/// By IpEvent.
struct IpCounter {
  int ip4, ip6;
};
constexpr int no_counter = -1;
constexpr IpCounter ip_counters[] = {
    {counter::ip4_received, counter::ip6_received},            // received
    {counter::ip4_header_errors, counter::ip6_header_errors},  // header_error
    {counter::ip4_discards, counter::ip6_discards},            // discarded
    {counter::ip4_forwarded, no_counter},                      // forwarded
    {counter::group_bridged, counter::group_bridged},          // group_bridged
    {counter::group_routed, counter::group_routed},            // group_routed
    {counter::group_dropped, counter::group_dropped},          // group_dropped
};

/// The upper bounds of the frame size counters.
constexpr std::size_t sizes[] = {64, 127, 255, 511, 1023, 1518, 2047, 4095, 9216};
/// The same for the counters of both directions, which divide the sizes above 1518 differently.
constexpr std::size_t ether_sizes[] = {64, 127, 255, 511, 1023, 1518, 1522, 2047, 4095, 9216};
constexpr std::size_t small_ether_sizes = 6;

int ether_size_counter(std::size_t size) {
  return size < small_ether_sizes ? counter::ether_first_size + static_cast<int>(size)
                                  : counter::ether_first_large_size + static_cast<int>(size - small_ether_sizes);
}

template <std::size_t Count>
std::size_t size_of(const std::size_t (&bounds)[Count], std::size_t length) {
  const auto* const bound = std::find_if(bounds, bounds + Count - 1, [&](std::size_t most) { return length <= most; });
  return static_cast<std::size_t>(bound - bounds);
}

/// By ether type: packets with a malformed header count too.
bool says_ip4(const Packet& packet) { return packet.fields.ether_type == ether_type::ip4; }
bool says_ip6(const Packet& packet) { return packet.fields.ether_type == ether_type::ip6; }

uint64_t& counter_of(Counters& counters, Port port, int number) {
  return counters.of(port)[static_cast<std::size_t>(number)];
}

void count(Counters::Values& values, const Direction& to, const Mac& destination, std::size_t bytes, int tags) {
  const auto add = [&](int number, uint64_t amount = 1) { values[static_cast<std::size_t>(number)] += amount; };
  const std::size_t length = size_on_wire(bytes);
  const bool is_multicast = is_group(destination);
  const bool is_broadcast = std::all_of(destination.begin(), destination.end(), [](int byte) { return byte == 0xFF; });
  add(to.octets, length);
  add(to.all_octets, length);
  add(is_multicast ? to.non_unicast : to.unicast);
  if (is_broadcast) {
    add(to.all_broadcast);
    add(to.broadcast);
    add(counter::ether_broadcast);
  } else if (is_multicast) {
    add(to.all_multicast);
    add(to.multicast);
    add(counter::ether_multicast);
  } else {
    add(to.all_unicast);
  }
  add(to.frames);
  add(to.good_frames);
  add(to.first_size + static_cast<int>(size_of(sizes, length)));
  if (tags > 0) add(tags > 1 ? to.double_tagged : to.tagged);
  add(counter::ether_octets, length);
  add(counter::ether_frames);
  add(ether_size_counter(size_of(ether_sizes, length)));
}

}  // namespace

void count_received(Counters& counters, const Packet& packet) {
  constexpr int both = 3;
  if (says_ip6(packet) && packet.is_multicast()) ++counter_of(counters, packet.port, counter::ip6_multicast_in);
  const int format = packet.fields.vlan_format;
  const int tags = format == both ? 2 : format != 0 ? 1 : 0;
  count(counters.of(packet.port), received, packet.fields.destination_mac, packet.bytes.size(), tags);
}

void count_discarded(Counters& counters, const Packet& packet, Drop reason) {
  Counters::Values& values = counters.of(packet.port);
  // A port without link receives nothing, and a frame trapped to the CPU has arrived.
  if (reason == Drop::none || reason == Drop::port_down || reason == Drop::trapped) return;
  if (reason == Drop::too_long) {
    for (const int number :
         {counter::in_errors, counter::too_long_frames, counter::ether_oversize, counter::ether_in_oversize})
      ++values[static_cast<std::size_t>(number)];
    return;
  }
  ++values[counter::in_discards];
  ++values[counter::bridge_in_discards];
}

void count_sent(Counters& counters, Port port, const EgressHeader& header, std::size_t length) {
  const int tags = (header.outer_tag ? 1 : 0) + (header.inner_tag ? 1 : 0);
  count(counters.of(port), sent, header.destination, length, tags);
}

void count_ip(Counters& counters, const Packet& packet, IpEvent event) {
  if (!says_ip4(packet) && !says_ip6(packet)) return;
  const IpCounter& numbers = ip_counters[static_cast<std::size_t>(event)];
  const int number = says_ip4(packet) ? numbers.ip4 : numbers.ip6;
  if (number != no_counter) ++counter_of(counters, packet.port, number);
}

void count_sent_ip(Counters& counters, Port port, const Packet& packet, bool routed) {
  if (!says_ip6(packet)) return;
  if (routed) ++counter_of(counters, port, counter::ip6_forwarded);
  if (packet.is_multicast()) ++counter_of(counters, port, counter::ip6_multicast_out);
}

void count_not_sent(Counters& counters, Port port, Drop reason) {
  const bool is_discard = reason == Drop::egress_rate || reason == Drop::egress_too_long ||
                          reason == Drop::egress_field_rule || reason == Drop::egress_policer;
  if (!is_discard) return;
  Counters::Values& values = counters.of(port);
  ++values[counter::out_discards];
  if (reason != Drop::egress_too_long) return;
  ++values[counter::mtu_discards];
  ++values[counter::ether_out_oversize];
}

}  // namespace chip
