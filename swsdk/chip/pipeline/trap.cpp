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
        ((entry.source_port ^ packet.port) & entry.source_port_mask) == 0)
      return &entry;
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

bool is_neighbour_discovery(const Packet& packet) {
  constexpr int router_solicitation = 133;
  constexpr int redirect = 137;
  const int type = packet.fields.icmp_type;
  return packet.fields.ip_protocol == ip_protocol::icmp6 && type >= router_solicitation && type <= redirect;
}

/// What the controls of the port say about protocols.
void obey_controls(Passage& frame) {
  const Packet& packet = frame.packet;
  const auto says = [&](SwitchControl control) {
    int value = 0;
    frame.chip.switch_controls.get_port(packet.port, static_cast<int>(control), value);
    return value != 0;
  };
  bool to_cpu = false;
  if (packet.is_arp()) {
    to_cpu = says(is_arp_request(packet) ? SwitchControl::arp_request_to_cpu : SwitchControl::arp_reply_to_cpu);
  } else if (is_dhcp(packet)) {
    to_cpu = says(SwitchControl::dhcp_to_cpu);
    if (says(SwitchControl::dhcp_drop)) frame.stop(Drop::switch_control);
  } else if (packet.is_ip6()) {
    to_cpu =
        (is_neighbour_discovery(packet) && says(SwitchControl::neighbour_discovery_to_cpu)) ||
        (is_reserved(frame.chip, packet.fields.destination_ip6) && says(SwitchControl::ip6_reserved_multicast_to_cpu));
  }
  if (to_cpu) frame.cpu_reasons |= cpu_reason::protocol;
}

}  // namespace

void trap(Passage& frame) {
  if (frame.packet.port == Ports::cpu) return;  // the host does not want its own frames back
  if (const L2CacheEntry* const entry = find_entry(frame)) {
    // The destination of such an entry takes the place of all others; the library's entries leave it at the CPU.
    const bool is_bpdu = (entry->flags & L2CacheEntry::bpdu) != 0;
    if (frame.dropped() && !(is_bpdu && frame.drop() == Drop::spanning_tree)) return;
    frame.trap(cpu_reason::l2_cache);
  } else if (!frame.dropped()) {
    obey_controls(frame);
  }
}

}  // namespace chip
