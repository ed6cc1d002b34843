#include "chip/trunks.h"

namespace chip {

void Trunks::reset() {
  detach();
  attached_ = true;
}

void Trunks::detach() {
  trunks_.clear();
  trunk_of_.fill({});
  attached_ = false;
}

Status Trunks::create(uint32_t flags, TrunkId& id) {
  if (!attached_) return Status::not_initialized;
  if ((flags & ~with_id) != 0) return Status::bad_parameter;
  return flags & with_id ? trunks_.add_with_id({}, id) : trunks_.add({}, id);
}

Status Trunks::destroy(TrunkId id) {
  if (find(id) == nullptr) return absent(id);
  release_members(id);
  return trunks_.remove(id);
}

Status Trunks::set(TrunkId id, int criterion, const std::vector<Port>& members) {
  Trunk* const trunk = trunks_.find(id);
  if (trunk == nullptr) return absent(id);
  if (!is_criterion(criterion)) return Status::bad_parameter;
  if (members.size() > max_members) return Status::full;
  for (const Port port : members) {
    if (trunk_of_.find(port) == nullptr) return Status::bad_port;
    if (trunk_of(port).value_or(id) != id) return Status::exists;
  }
  release_members(id);
  for (const Port port : members) trunk_of_[port] = id;
  *trunk = {static_cast<TrunkCriterion>(criterion), members, {}};
  return Status::ok;
}

Status Trunks::set_criterion(TrunkId id, int criterion) {
  Trunk* const trunk = trunks_.find(id);
  if (trunk == nullptr) return absent(id);
  if (!is_criterion(criterion)) return Status::bad_parameter;
  trunk->criterion = static_cast<TrunkCriterion>(criterion);
  trunk->origin = {};
  return Status::ok;
}

void Trunks::release_members(TrunkId id) {
  for (const Port port : trunks_.find(id)->members) trunk_of_[port].reset();
}

}  // namespace chip
