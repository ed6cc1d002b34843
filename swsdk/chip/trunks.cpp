#include "chip/trunks.h"

#include <algorithm>

namespace chip {

void Trunks::reset() {
  detach();
  attached_ = true;
}

void Trunks::detach() {
  trunks_.clear();
  trunk_of_.fill(none);
  attached_ = false;
}

Status Trunks::create(uint32_t flags, int& id) {
  constexpr uint32_t with_id = 0x10;
  if (!attached_) return Status::not_initialised;
  if ((flags & ~with_id) != 0) return Status::bad_parameter;
  return flags & with_id ? trunks_.add_with_id({}, id) : trunks_.add({}, id);
}

Status Trunks::destroy(int id) {
  if (!attached_) return Status::not_initialised;
  std::replace(trunk_of_.begin(), trunk_of_.end(), id, none);
  return trunks_.remove(id);
}

Status Trunks::set(int id, int criterion, const std::vector<int>& members) {
  if (const Status status = check(id); status != Status::ok) return status;
  if (!is_criterion(criterion)) return Status::bad_parameter;
  if (members.size() > most_members) return Status::full;
  for (const int port : members) {
    if (!ports_.has(port)) return Status::bad_port;
    if (trunk_of(port).value_or(id) != id) return Status::exists;
  }
  std::replace(trunk_of_.begin(), trunk_of_.end(), id, none);
  for (const int port : members) trunk_of_[static_cast<std::size_t>(port)] = id;
  *trunks_.find(id) = {criterion, members};
  return Status::ok;
}

Status Trunks::set_criterion(int id, int criterion) {
  if (const Status status = check(id); status != Status::ok) return status;
  if (!is_criterion(criterion)) return Status::bad_parameter;
  trunks_.find(id)->criterion = criterion;
  return Status::ok;
}

Status Trunks::check(int id) const {
  if (!attached_) return Status::not_initialised;
  if (!trunks_.is_valid(id)) return Status::bad_parameter;
  return trunks_.find(id) == nullptr ? Status::not_found : Status::ok;
}

}  // namespace chip
