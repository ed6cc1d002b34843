#include "chip/spanning_trees.h"

#include <vector>

namespace chip {

void SpanningTrees::reset() {
  groups_.clear();
  groups_.put(states(StpState::forward), first_id);
  note_new(first_id);
  vlans_.set_default_spanning_tree(first_id);
  for (const auto& [vlan, ignored] : vlans_.all()) vlans_.set_spanning_tree(vlan, first_id);
}

Status SpanningTrees::set_default(int id) {
  const Status status = check(id);
  if (status == Status::ok) vlans_.set_default_spanning_tree(id);
  return status;
}

Status SpanningTrees::create(int id) {
  const Status status = groups_.add_with_id(states(StpState::disable), id);
  if (status == Status::ok) note_new(id);
  return status;
}

Status SpanningTrees::destroy(int id) {
  if (id == default_id()) return Status::bad_id;
  if (const Status status = remove_vlans(id); status != Status::ok) return status;
  return groups_.remove(id);
}

void SpanningTrees::destroy_all() {
  for (int id = first_id; id < first_id + capacity; ++id) destroy(id);
}

Status SpanningTrees::add_vlan(int id, int vlan) {
  const Status status = check(id);
  return status == Status::ok ? vlans_.set_spanning_tree(vlan, id) : status;
}

Status SpanningTrees::remove_vlan(int id, int vlan) {
  if (const Status status = check(id); status != Status::ok) return status;
  const Vlan* const present = vlans_.find(vlan);
  if (present == nullptr) return Vlans::absent(vlan);
  return present->spanning_tree == id ? vlans_.set_spanning_tree(vlan, default_id()) : Status::not_found;
}

Status SpanningTrees::remove_vlans(int id) {
  if (const Status status = check(id); status != Status::ok) return status;
  for (const auto& [vlan, record] : vlans_.all())
    if (record.spanning_tree == id) vlans_.set_spanning_tree(vlan, default_id());
  return Status::ok;
}

Status SpanningTrees::set_state(int id, Port port, int state) {
  if (const Status status = check(id); status != Status::ok) return status;
  if (!ports_.has(port)) return Status::bad_port;
  if (state < static_cast<int>(StpState::disable) || state > static_cast<int>(StpState::forward))
    return Status::bad_parameter;
  (*groups_.find(id))[port] = static_cast<StpState>(state);
  origins_[static_cast<std::size_t>(id)][port.index()] = {};
  note_forwarding(id);
  return Status::ok;
}

void SpanningTrees::note_new(int id) {
  origins_[static_cast<std::size_t>(id)].assign(static_cast<std::size_t>(ports_.all().highest()) + 1, Origin());
  note_forwarding(id);
}

void SpanningTrees::note_forwarding(int id) {
  PortSet& forwarding = forwarding_[static_cast<std::size_t>(id)];
  forwarding = {};
  for (const auto& [port, state] : *groups_.find(id))
    if (state == StpState::forward) forwarding.add(port);
}

PortTable<StpState> SpanningTrees::states(StpState of_ethernet) const {
  PortTable<StpState> result(ports_.all());
  result.fill(of_ethernet);
  result[Ports::cpu] = StpState::forward;
  return result;
}

Status SpanningTrees::check(int id) const {
  if (!groups_.is_valid(id)) return Status::bad_parameter;
  return groups_.find(id) == nullptr ? Status::not_found : Status::ok;
}

}  // namespace chip
