#include "chip/counters.h"

#include "chip/counter_numbers.h"

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
constexpr Direction received_frames{.octets = counter::in_octets,
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
constexpr Direction sent_frames{.octets = counter::out_octets,
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

/// By the index of a range of sizes in Traffic. Only the counters of both directions tell sizes up to 1522 from those
/// up to 2047.
constexpr std::size_t up_to_1522 = 6;
int size_counter(const Direction& to, std::size_t size) {
  return to.first_size + static_cast<int>(size <= up_to_1522 ? size : size - 1);
}
int ether_size_counter(std::size_t size) {
  return size < up_to_1522 ? counter::ether_first_size + static_cast<int>(size)
                           : counter::ether_first_large_size + static_cast<int>(size - up_to_1522);
}

void settle_direction(Traffic& traffic, const Direction& to, Counters::Values& values) {
  if (traffic.empty()) return;
  const auto add = [&](int number, uint64_t amount) { values[static_cast<std::size_t>(number)] += amount; };
  for (const int octets : {to.octets, to.all_octets, counter::ether_octets}) add(octets, traffic.octets());
  traffic.for_each([&](std::size_t kind, std::size_t tags, std::size_t size, uint64_t count) {
    add(kind == Traffic::unicast ? to.unicast : to.non_unicast, count);
    if (kind == Traffic::unicast) {
      add(to.all_unicast, count);
    } else if (kind == Traffic::multicast) {
      for (const int number : {to.all_multicast, to.multicast, counter::ether_multicast}) add(number, count);
    } else {
      for (const int number : {to.all_broadcast, to.broadcast, counter::ether_broadcast}) add(number, count);
    }
    for (const int number : {to.frames, to.good_frames, counter::ether_frames}) add(number, count);
    if (tags > 0) add(tags > 1 ? to.double_tagged : to.tagged, count);
    add(size_counter(to, size), count);
    add(ether_size_counter(size), count);
  });
  traffic = {};
}

}  // namespace

void Counters::settle(Port port) const {
  settle_direction(received_[port], received_frames, counters_[port]);
  settle_direction(sent_[port], sent_frames, counters_[port]);
}

}  // namespace chip
