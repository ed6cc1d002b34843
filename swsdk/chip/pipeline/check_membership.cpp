#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void check_membership(Passage& frame) {
  const Packet& packet = frame.packet;
  const auto vlan = frame.chip.vlans.all().find(packet.vlan());
  if (vlan == frame.chip.vlans.all().end()) return frame.stop(Drop::no_vlan);
  const bool checks = (frame.chip.port_filters.membership_checks(packet.port) & PortFilters::check_ingress) != 0;
  const bool is_member = packet.source == packet.port ? vlan->second.members.contains(packet.port)
                                                      : vlan->second.virtual_members.contains(packet.source);
  if (checks && !is_member) frame.stop(Drop::not_member);
  if (!frame.chip.spanning_trees.forwards(vlan->second.spanning_tree, packet.port)) frame.stop(Drop::spanning_tree);
}

}  // namespace chip
