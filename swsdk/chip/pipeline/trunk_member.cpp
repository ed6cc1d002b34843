#include "chip/pipeline/trunk_member.h"

#include "chip/chip.h"
#include "chip/hash.h"

namespace chip {

namespace {

uint64_t address_of(const Ip6& address) {
  const FieldValue value(address);
  return value.high ^ value.low;
}

/// What of a frame its way depends on. A frame without IP addresses goes by the MAC addresses in their place.
uint64_t key_of(int criterion, const Packet& packet) {
  enum { own_choice, source_mac, destination_mac, both_macs, source_ip, destination_ip, both_ips };
  const FrameFields& fields = packet.fields;
  const bool has_ip = packet.is_ip4() || packet.is_ip6();
  const auto of_ip = [&](uint32_t ip4, const Ip6& ip6, const Mac& mac) {
    if (!has_ip) return number_of(mac);
    return packet.is_ip4() ? uint64_t{ip4} : address_of(ip6);
  };
  const uint64_t from_mac = number_of(fields.source_mac);
  const uint64_t to_mac = number_of(fields.destination_mac);
  const uint64_t from_ip = of_ip(fields.source_ip, fields.source_ip6, fields.source_mac);
  const uint64_t to_ip = of_ip(fields.destination_ip, fields.destination_ip6, fields.destination_mac);
  // Both of two are mixed so that the way back need not be the way there, but each is always the same.
  switch (criterion) {
    case source_mac:
      return from_mac;
    case destination_mac:
      return to_mac;
    case source_ip:
      return from_ip;
    case destination_ip:
      return to_ip;
    case both_ips:
      return hash_of(from_ip, to_ip);
    case own_choice:
    case both_macs:
    default:
      return hash_of(from_mac, to_mac);
  }
}

}  // namespace

std::optional<int> pick_member(const Chip& chip, const Trunk& trunk, const Packet& packet) {
  std::array<int, Trunks::most_members> alive{};
  std::size_t count = 0;
  for (const int member : trunk.members) {
    const PortMac* const mac = chip.port_macs.find(member);
    if (mac != nullptr && mac->link()) alive[count++] = member;
  }
  if (count == 0) return std::nullopt;
  return alive[(hash_of(key_of(trunk.criterion, packet)) >> 32) % count];
}

}  // namespace chip
