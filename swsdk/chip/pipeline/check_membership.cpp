#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void check_membership(Passage& frame) {
  const Packet& packet = frame.packet;
  const Vlan* const vlan = frame.chip.vlans.find(packet.vlan());
  if (vlan == nullptr) return frame.stop(Drop::no_vlan);
  frame.by(decider::OfVlan{packet.vlan()});
  const bool checks = (frame.chip.port_filters.membership_checks(packet.port) & PortFilters::check_ingress) != 0;
  const VirtualPortId* const virtual_port = std::get_if<VirtualPortId>(&packet.source);
  const bool is_member =
      virtual_port == nullptr ? vlan->members.contains(packet.port) : vlan->virtual_members.contains(*virtual_port);
  if (checks && !is_member) {
    frame.by(decider::MembershipChecks{packet.port});
    frame.stop(Drop::not_member);
  }
  if (frame.chip.spanning_trees.forwards(vlan->spanning_tree, packet.port)) return;
  frame.by(decider::SpanningTreeState{vlan->spanning_tree, packet.port});
  frame.stop(Drop::spanning_tree);
}

}  // namespace chip
