#include "chip/learning.h"

namespace chip {

namespace {

bool learns(const Chip& chip, int vlan, int port) {
  const Vlan* const found = chip.vlans.find(vlan);
  if (found == nullptr || (found->control.flags & VlanControl::learn_disable) != 0) return false;
  if (!chip.ports.has(port)) return true;  // a virtual one has no state and no setting of its own
  if ((chip.port_forwarding.of(port).learning & PortForwardings::learn) == 0) return false;
  if (chip.spanning_trees.forwards(found->spanning_tree, port)) return true;
  StpState state = StpState::disable;
  chip.spanning_trees.state(found->spanning_tree, port, state);
  return state == StpState::learn;
}

MacEntry entry_of(const Chip& chip, const Source& source) {
  MacEntry seen{.mac = source.mac, .vlan = source.vlan, .port = source.port, .tunnel = source.tunnel};
  if (const std::optional<int> trunk = chip.trunks.trunk_of(source.port)) {
    seen.flags = MacEntry::on_trunk;
    seen.port = 0;
    seen.trunk = *trunk;
  }
  seen.source_hit = true;
  return seen;
}

}  // namespace

Learned learn(Chip& chip, const Source& source) {
  return learn(chip, source, chip.mac_table.find(source.vlan, source.mac));
}

Learned learn(Chip& chip, const Source& source, const MacEntry* present) {
  if (is_group(source.mac) || source.mac == Mac{}) return Learned::no_host;
  if (!learns(chip, source.vlan, source.port)) return Learned::not_learning;
  const MacEntry seen = entry_of(chip, source);
  if (present != nullptr && present->same_place(seen)) {
    chip.mac_table.hit(*present, &MacEntry::source_hit);
    return Learned::present;
  }
  if (present != nullptr && present->is(MacEntry::fixed)) return Learned::fixed;
  if (!chip.learn_limits.admit(seen, present)) return Learned::limited;
  return chip.mac_table.add(seen) == Status::ok ? Learned::added : Learned::full;
}

uint32_t actions_beyond_limit(const Chip& chip, const Source& source) {
  return chip.learn_limits.actions(entry_of(chip, source), chip.mac_table.find(source.vlan, source.mac));
}

const MacEntry* look_up(Chip& chip, int vlan, const Mac& mac) {
  const MacEntry* const entry = chip.mac_table.find(vlan, mac);
  const bool hits = chip.switch_controls.is_on(SwitchControl::l2_destination_hit_enable);
  if (entry != nullptr && hits) chip.mac_table.hit(*entry, &MacEntry::destination_hit);
  return entry;
}

}  // namespace chip
