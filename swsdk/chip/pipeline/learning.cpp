#include "chip/pipeline/learning.h"

#include "chip/chip.h"

namespace chip {

namespace {

bool learns(const Chip& chip, const Source& source) {
  const Vlan* const vlan = chip.vlans.find(source.vlan);
  if (vlan == nullptr || (vlan->control.flags & VlanControl::learn_disable) != 0) return false;
  const Port* const port = std::get_if<Port>(&source.place);
  if (port == nullptr) return true;  // a virtual one has no state and no setting of its own
  if ((chip.port_forwarding.of(*port).learning & PortForwardings::learn) == 0) return false;
  if (chip.spanning_trees.forwards(vlan->spanning_tree, *port)) return true;
  return *chip.spanning_trees.state(vlan->spanning_tree, *port) == StpState::learn;
}

/// The place of the source's entry: the trunk rather than its member.
Place place_of(const Chip& chip, const Source& source) {
  const Port* const port = std::get_if<Port>(&source.place);
  const std::optional<TrunkId> trunk = port == nullptr ? std::nullopt : chip.trunks.trunk_of(*port);
  return trunk ? Place(*trunk) : source.place;
}

MacEntry entry_of(const Source& source, const Place& place) {
  return {.mac = source.mac, .vlan = source.vlan, .place = place, .tunnel = source.tunnel, .source_hit = true};
}

}  // namespace

Learned learn(Chip& chip, const Source& source) {
  return learn(chip, source, chip.mac_table.find(source.vlan, source.mac));
}

Learned learn(Chip& chip, const Source& source, const MacEntry* present) {
  if (is_group(source.mac) || number_of(source.mac) == 0) return Learned::no_host;
  if (!learns(chip, source)) return Learned::not_learning;
  const Place place = place_of(chip, source);
  if (present != nullptr && present->place == place && present->tunnel == source.tunnel) {
    chip.mac_table.hit(*present, &MacEntry::source_hit);
    return Learned::present;
  }
  if (present != nullptr && present->is(MacEntry::fixed)) return Learned::fixed;
  const MacEntry seen = entry_of(source, place);
  if (!chip.learn_limits.admit(seen, present)) return Learned::limited;
  return chip.mac_table.add(seen) == Status::ok ? Learned::added : Learned::full;
}

bool is_known(const Chip& chip, const Source& source) {
  const MacEntry* const present = chip.mac_table.find(source.vlan, source.mac);
  return present != nullptr && present->place == place_of(chip, source) && present->tunnel == source.tunnel;
}

uint32_t actions_beyond_limit(const Chip& chip, const Source& source) {
  const MacEntry seen = entry_of(source, place_of(chip, source));
  return chip.learn_limits.actions(seen, chip.mac_table.find(source.vlan, source.mac));
}

std::vector<MacScope> limits_exceeded(const Chip& chip, const Source& source) {
  const MacEntry seen = entry_of(source, place_of(chip, source));
  return chip.learn_limits.exceeded_by(seen, chip.mac_table.find(source.vlan, source.mac));
}

const MacEntry* look_up(Chip& chip, int vlan, const Mac& mac) {
  const MacEntry* const entry = chip.mac_table.find(vlan, mac);
  const bool hits = chip.switch_controls.is_on(SwitchControlOfChip::l2_destination_hit_enable);
  if (entry != nullptr && hits) chip.mac_table.hit(*entry, &MacEntry::destination_hit);
  return entry;
}

}  // namespace chip
