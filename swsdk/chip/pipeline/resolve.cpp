#include "chip/pipeline/resolve.h"

#include "chip/chip.h"
#include "chip/hash.h"

namespace chip {

namespace {

uint64_t address_of(const Ip6& address) {
  const FieldValue value(address);
  return value.high ^ value.low;
}

/// The fields that select the trunk member. Frames without IP addresses use MAC addresses instead.
uint64_t key_of(TrunkCriterion criterion, const Packet& packet) {
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
  // Hashing both addresses in order: the two directions may take different members, each always the same one.
  switch (criterion) {
    using enum TrunkCriterion;
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
      break;
  }
  return hash_of(from_mac, to_mac);
}

std::optional<Port> pick_member(const Chip& chip, const Trunk& trunk, const Packet& packet) {
  std::array<Port, Trunks::max_members> alive{};
  std::size_t count = 0;
  for (const Port member : trunk.members) {
    const PortMac* const mac = chip.port_macs.find(member);
    if (mac != nullptr && mac->link()) alive[count++] = member;
  }
  if (count == 0) return std::nullopt;
  return alive[(hash_of(key_of(trunk.criterion, packet)) >> 32) % count];
}

}  // namespace

std::optional<Exit> exit_to(const Passage& frame, const Place& place) {
  const Chip& chip = frame.chip;
  if (const Port* const port = std::get_if<Port>(&place)) return Exit{place, *port};
  if (const VirtualPortId* const id = std::get_if<VirtualPortId>(&place)) {
    frame.by(decider::OfVirtualPort{*id});
    const VirtualPort* const found = chip.virtual_ports.find(*id);
    return found == nullptr ? std::nullopt : std::optional(Exit{place, found->port});
  }
  const auto id = std::get<TrunkId>(place);
  frame.by(decider::OfTrunk{id});
  const Trunk* const trunk = chip.trunks.find(id);
  const std::optional<Port> member = trunk == nullptr ? std::nullopt : pick_member(chip, *trunk, frame.packet);
  return member ? std::optional(Exit{*member, *member}) : std::nullopt;
}

}  // namespace chip
