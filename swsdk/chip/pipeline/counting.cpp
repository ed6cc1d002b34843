#include "chip/pipeline/counting.h"

#include "chip/counter_numbers.h"

namespace chip {

namespace {

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

/// By ether type: packets with a malformed header count too.
bool says_ip4(const Packet& packet) { return packet.fields.ether_type == ether_type::ip4; }
bool says_ip6(const Packet& packet) { return packet.fields.ether_type == ether_type::ip6; }

uint64_t& counter_of(Counters& counters, Port port, int number) {
  return counters.of(port)[static_cast<std::size_t>(number)];
}

}  // namespace

void count_received(Counters& counters, const Packet& packet) {
  constexpr int both = 3;
  if (says_ip6(packet) && packet.is_multicast())
    counter_of(counters, packet.port, counter::ip6_multicast_in) += packet.frames();
  const int format = packet.fields.vlan_format;
  const int tags = format == both ? 2 : format != 0 ? 1 : 0;
  for_each_length(packet.segments, packet.bytes.size(), [&](std::size_t length, std::size_t frames) {
    counters.received(packet.port).add(packet.fields.destination_mac, length, tags, frames);
  });
}

void count_discarded(Counters& counters, const Packet& packet, Drop reason) {
  Counters::Values& values = counters.of(packet.port);
  // A port without link receives nothing, and a frame trapped to the CPU has arrived.
  if (reason == Drop::none || reason == Drop::port_down || reason == Drop::trapped) return;
  const std::size_t frames = packet.frames();
  if (reason == Drop::too_long) {
    for (const int number :
         {counter::in_errors, counter::too_long_frames, counter::ether_oversize, counter::ether_in_oversize})
      values[static_cast<std::size_t>(number)] += frames;
    return;
  }
  values[counter::in_discards] += frames;
  values[counter::bridge_in_discards] += frames;
}

void count_sent(Counters& counters, Port port, const EgressHeader& header, std::size_t length, std::size_t frames) {
  const int tags = (header.outer_tag ? 1 : 0) + (header.inner_tag ? 1 : 0);
  counters.sent(port).add(header.destination, length, tags, frames);
}

void count_ip(Counters& counters, const Packet& packet, IpEvent event) {
  if (!says_ip4(packet) && !says_ip6(packet)) return;
  const IpCounter& numbers = ip_counters[static_cast<std::size_t>(event)];
  const int number = says_ip4(packet) ? numbers.ip4 : numbers.ip6;
  if (number != no_counter) counter_of(counters, packet.port, number) += packet.frames();
}

void count_sent_ip(Counters& counters, Port port, const Packet& packet, bool routed, std::size_t frames) {
  if (!says_ip6(packet)) return;
  if (routed) counter_of(counters, port, counter::ip6_forwarded) += frames;
  if (packet.is_multicast()) counter_of(counters, port, counter::ip6_multicast_out) += frames;
}

void count_not_sent(Counters& counters, Port port, Drop reason, std::size_t frames) {
  const bool is_discard = reason == Drop::egress_rate || reason == Drop::egress_too_long ||
                          reason == Drop::egress_field_rule || reason == Drop::egress_policer;
  if (!is_discard) return;
  Counters::Values& values = counters.of(port);
  values[counter::out_discards] += frames;
  if (reason != Drop::egress_too_long) return;
  values[counter::mtu_discards] += frames;
  values[counter::ether_out_oversize] += frames;
}

}  // namespace chip
