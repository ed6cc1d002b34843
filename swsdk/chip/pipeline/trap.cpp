#include "chip/chip.h"
#include "chip/hash.h"
#include "chip/pipeline/reserved_ip6.h"
#include "chip/pipeline/stages.h"

namespace chip {

namespace {

const L2CacheEntry* find_entry(const Passage& frame) {
  const Packet& packet = frame.packet;
  const uint64_t destination = number_of(packet.fields.destination_mac);
  for (const auto& [index, entry] : frame.chip.l2_cache.all())
    if (((number_of(entry.mac) ^ destination) & number_of(entry.mac_mask)) == 0 &&
        ((entry.vlan ^ packet.vlan()) & entry.vlan_mask) == 0 &&
        ((entry.source_port.number() ^ packet.port.number()) & entry.source_port_mask) == 0) {
      frame.by(decider::L2CacheSlot{index});
      return &entry;
    }
  return nullptr;
}

bool is_arp_request(const Packet& packet) {
  constexpr std::size_t operation = 7;  // its lower byte
  constexpr uint8_t request = 1;
  return packet.bytes[packet.payload_at + operation] == request;
}

bool is_dhcp(const Packet& packet) {
  const int port = packet.fields.l4_destination_port;
  if (packet.fields.ip_protocol != ip_protocol::udp) return false;
  return packet.is_ip4() ? port == 67 || port == 68 : packet.is_ip6() && (port == 546 || port == 547);
}

bool is_neighbor_discovery(const Packet& packet) {
  constexpr int router_solicitation = 133;
  constexpr int redirect = 137;
  const int type = packet.fields.icmp_type;
  return packet.fields.ip_protocol == ip_protocol::icmp6 && type >= router_solicitation && type <= redirect;
}

/// Applies the protocol controls of the port.
void obey_controls(Passage& frame) {
  const Packet& packet = frame.packet;
  const auto is_on = [&](SwitchControlOfPort control) {
    const bool on = frame.chip.switch_controls.is_on(control, packet.port);
    if (on) frame.by(decider::Control{control, packet.port});
    return on;
  };
  bool to_cpu = false;
  if (packet.is_arp()) {
    to_cpu =
        is_on(is_arp_request(packet) ? SwitchControlOfPort::arp_request_to_cpu : SwitchControlOfPort::arp_reply_to_cpu);
  } else if (is_dhcp(packet)) {
    to_cpu = is_on(SwitchControlOfPort::dhcp_to_cpu);
    if (is_on(SwitchControlOfPort::dhcp_drop)) frame.stop(Drop::switch_control);
  } else if (packet.is_ip6()) {
    to_cpu = (is_neighbor_discovery(packet) && is_on(SwitchControlOfPort::neighbor_discovery_to_cpu)) ||
             (is_reserved_ip6(frame) && is_on(SwitchControlOfPort::ip6_reserved_multicast_to_cpu));
  }
  if (to_cpu) frame.cpu_reasons |= cpu_reason::protocol;
}

}  // namespace

void trap(Passage& frame) {
  if (frame.packet.port == Ports::cpu) return;  // the CPU does not get its own frames back
  if (const L2CacheEntry* const entry = find_entry(frame)) {
    // A matching entry replaces all other destinations by its own, which is the CPU for every entry of the library.
    const bool is_bpdu = (entry->flags & L2CacheEntry::bpdu) != 0;
    if (frame.dropped() && !(is_bpdu && frame.drop() == Drop::spanning_tree)) return;
    frame.trap(cpu_reason::l2_cache);
  } else if (!frame.dropped()) {
    obey_controls(frame);
  }
}

}  // namespace chip
