#include "chip/pipeline/counting.h"

#include <algorithm>

#include "chip/pipeline/meters.h"

namespace chip {

namespace {

/// The counters, by number, that each frame of one direction adds to.
struct Direction {
  int octets, unicast, non_unicast;
  int all_octets, all_unicast, all_multicast, all_broadcast;  // of 64 bits
  int multicast, broadcast;
  int frames, good_frames;
  int first_size;
  int tagged, double_tagged;
};
constexpr Direction received{.octets = 0,
                             .unicast = 1,
                             .non_unicast = 2,
                             .all_octets = 58,
                             .all_unicast = 59,
                             .all_multicast = 60,
                             .all_broadcast = 61,
                             .multicast = 75,
                             .broadcast = 74,
                             .frames = 18,
                             .good_frames = 41,
                             .first_size = 90,
                             .tagged = 176,
                             .double_tagged = 177};
constexpr Direction sent{.octets = 6,
                         .unicast = 7,
                         .non_unicast = 8,
                         .all_octets = 62,
                         .all_unicast = 63,
                         .all_multicast = 64,
                         .all_broadcast = 65,
                         .multicast = 77,
                         .broadcast = 76,
                         .frames = 19,
                         .good_frames = 40,
                         .first_size = 99,
                         .tagged = 178,
                         .double_tagged = 179};

constexpr int in_discards = 3;
constexpr int in_errors = 4;
constexpr int out_discards = 9;
constexpr int mtu_discards = 17;
constexpr int bridge_in_discards = 20;
constexpr int ether_multicast = 22;
constexpr int ether_broadcast = 23;
constexpr int ether_oversize = 32;
constexpr int ether_rx_oversize = 33;
constexpr int ether_tx_oversize = 34;
constexpr int ether_octets = 36;
constexpr int ether_frames = 37;
constexpr int too_long_frames = 52;

/// By IpEvent.
struct IpCounter {
  int ip4, ip6;
};
constexpr int no_counter = -1;
constexpr IpCounter ip_counters[] = {
    {12, 66},          // received
    {13, 67},          // header_error
    {15, 69},          // discarded
    {14, no_counter},  // forwarded
    {82, 82},          // group_bridged
    {83, 83},          // group_routed
    {84, 84},          // group_dropped
};
constexpr int ip6_forwarded = 70;  // where packets leave, unlike that of IPv4
constexpr int ip6_multicast_received = 72;
constexpr int ip6_multicast_sent = 73;

/// The longest frame of each size that is counted apart.
constexpr std::size_t sizes[] = {64, 127, 255, 511, 1023, 1518, 2047, 4095, 9216};
/// The same for both directions together, where the sizes beyond 1518 are divided otherwise.
constexpr std::size_t ether_sizes[] = {64, 127, 255, 511, 1023, 1518, 1522, 2047, 4095, 9216};
constexpr int ether_size_counters[] = {26, 27, 28, 29, 30, 31, 86, 87, 88, 89};

template <std::size_t Count>
std::size_t size_of(const std::size_t (&bounds)[Count], std::size_t length) {
  const auto* const bound = std::find_if(bounds, bounds + Count - 1, [&](std::size_t most) { return length <= most; });
  return static_cast<std::size_t>(bound - bounds);
}

/// What the ether type says: a packet whose header is malformed counts too.
bool says_ip4(const Packet& packet) { return packet.fields.ether_type == ether_type::ip4; }
bool says_ip6(const Packet& packet) { return packet.fields.ether_type == ether_type::ip6; }

uint64_t& counter(Counters& counters, int port, int number) {
  return counters.of(port)[static_cast<std::size_t>(number)];
}

void count(Counters::Values& values, const Direction& to, const Mac& destination, std::size_t bytes, int tags) {
  const auto add = [&](int counter, uint64_t amount = 1) { values[static_cast<std::size_t>(counter)] += amount; };
  const std::size_t length = size_on_wire(bytes);
  const bool is_multicast = is_group(destination);
  const bool is_broadcast = std::all_of(destination.begin(), destination.end(), [](int byte) { return byte == 0xFF; });
  add(to.octets, length);
  add(to.all_octets, length);
  add(is_multicast ? to.non_unicast : to.unicast);
  if (is_broadcast) {
    add(to.all_broadcast);
    add(to.broadcast);
    add(ether_broadcast);
  } else if (is_multicast) {
    add(to.all_multicast);
    add(to.multicast);
    add(ether_multicast);
  } else {
    add(to.all_unicast);
  }
  add(to.frames);
  add(to.good_frames);
  add(to.first_size + static_cast<int>(size_of(sizes, length)));
  if (tags > 0) add(tags > 1 ? to.double_tagged : to.tagged);
  add(ether_octets, length);
  add(ether_frames);
  add(ether_size_counters[size_of(ether_sizes, length)]);
}

}  // namespace

void count_received(Counters& counters, const Packet& packet) {
  constexpr int both = 3;
  if (says_ip6(packet) && packet.is_multicast()) ++counter(counters, packet.port, ip6_multicast_received);
  const int format = packet.fields.vlan_format;
  const int tags = format == both ? 2 : format != 0 ? 1 : 0;
  count(counters.of(packet.port), received, packet.fields.destination_mac, packet.bytes.size(), tags);
}

void count_discarded(Counters& counters, const Packet& packet, Drop reason) {
  Counters::Values& values = counters.of(packet.port);
  // A port without a link hears nothing, and what is for the CPU alone has arrived.
  if (reason == Drop::none || reason == Drop::port_down || reason == Drop::trapped) return;
  if (reason == Drop::too_long) {
    for (const int counter : {in_errors, too_long_frames, ether_oversize, ether_rx_oversize})
      ++values[static_cast<std::size_t>(counter)];
    return;
  }
  ++values[in_discards];
  ++values[bridge_in_discards];
}

void count_sent(Counters& counters, int port, const EgressHeader& header, std::size_t length) {
  const int tags = (header.outer_tag ? 1 : 0) + (header.inner_tag ? 1 : 0);
  count(counters.of(port), sent, header.destination, length, tags);
}

void count_ip(Counters& counters, const Packet& packet, IpEvent event) {
  if (!says_ip4(packet) && !says_ip6(packet)) return;
  const IpCounter& numbers = ip_counters[static_cast<std::size_t>(event)];
  const int number = says_ip4(packet) ? numbers.ip4 : numbers.ip6;
  if (number != no_counter) ++counter(counters, packet.port, number);
}

void count_sent_ip(Counters& counters, int port, const Packet& packet, bool routed) {
  if (!says_ip6(packet)) return;
  if (routed) ++counter(counters, port, ip6_forwarded);
  if (packet.is_multicast()) ++counter(counters, port, ip6_multicast_sent);
}

void count_not_sent(Counters& counters, int port, NotSent reason) {
  Counters::Values& values = counters.of(port);
  ++values[out_discards];
  if (reason != NotSent::too_long) return;
  ++values[mtu_discards];
  ++values[ether_tx_oversize];
}

}  // namespace chip
