#include "chip/vlans.h"

namespace chip {

/// Runs `body` on VLAN `id`; absent(id) when there is none.
template <class Body>
Status Vlans::with(int id, Body body) {
  if (find(id) == nullptr) return absent(id);
  Vlan& vlan = *by_id_[static_cast<std::size_t>(id)];
  const Status status = body(vlan);
  if (status == Status::ok) vlan.origin = {};
  return status;
}

bool Vlans::insert(int id, const Vlan& vlan) {
  const auto [place, is_new] = vlans_.try_emplace(id, vlan);
  by_id_[static_cast<std::size_t>(id)] = &place->second;
  return is_new;
}

void Vlans::reset() {
  vlans_.clear();
  by_id_ = {};
  insert(
      default_id,
      {.members = ports_.all(), .untagged = ports_.ethernet(), .control = {}, .spanning_tree = default_spanning_tree_});
}

Status Vlans::create(int id) {
  if (!is_vlan(id)) return Status::bad_parameter;
  const Vlan fresh{.members = {}, .untagged = {}, .control = {}, .spanning_tree = default_spanning_tree_};
  return insert(id, fresh) ? Status::ok : Status::exists;
}

Status Vlans::destroy(int id) {
  if (id == default_id) return Status::bad_id;
  if (find(id) == nullptr) return absent(id);
  vlans_.erase(id);
  by_id_[static_cast<std::size_t>(id)] = nullptr;
  return Status::ok;
}

Status Vlans::destroy_all() {
  std::erase_if(vlans_, [](const auto& vlan) { return vlan.first != default_id; });
  by_id_ = {};
  by_id_[default_id] = &vlans_.at(default_id);
  return Status::ok;
}

Status Vlans::add_ports(int id, const PortSet& members, const PortSet& untagged) {
  return with(id, [&](Vlan& vlan) {
    if (!(members - ports_.all()).empty()) return Status::bad_port;
    vlan.members |= members;
    vlan.untagged -= members;
    vlan.untagged |= members & untagged;
    return Status::ok;
  });
}

Status Vlans::remove_ports(int id, const PortSet& members) {
  return with(id, [&](Vlan& vlan) {
    if (!(members - ports_.all()).empty()) return Status::bad_port;
    vlan.members -= members;
    vlan.untagged -= members;
    return Status::ok;
  });
}

Status Vlans::add_virtual_port(int id, VirtualPortId virtual_port) {
  return with(id, [&](Vlan& vlan) {
    vlan.virtual_members.insert(virtual_port);
    return Status::ok;
  });
}

Status Vlans::remove_virtual_port(int id, VirtualPortId virtual_port) {
  return with(
      id, [&](Vlan& vlan) { return vlan.virtual_members.erase(virtual_port) == 1 ? Status::ok : Status::not_found; });
}

Status Vlans::set_multicast_flood(int id, std::initializer_list<int VlanControl::*> kinds, int mode) {
  return with(id, [&](Vlan& vlan) {
    if (mode < 0 || mode > VlanControl::flood_nowhere) return Status::bad_parameter;
    for (int VlanControl::*const kind : kinds) vlan.control.*kind = mode;
    return Status::ok;
  });
}

Status Vlans::set_control(int id, const VlanControl& control) {
  return with(id, [&](Vlan& vlan) {
    vlan.control = control;
    return Status::ok;
  });
}

Status Vlans::set_spanning_tree(int id, int group) {
  return with(id, [&](Vlan& vlan) {
    vlan.spanning_tree = group;
    return Status::ok;
  });
}

}  // namespace chip
