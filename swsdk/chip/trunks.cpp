#include "chip/trunks.h"

namespace chip {

void Trunks::reset() {
  detach();
  attached_ = true;
}

void Trunks::detach() {
  trunks_.clear();
  trunk_of_.clear();
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
  std::erase_if(trunk_of_, [&](const auto& port) { return port.second == id; });
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
  std::erase_if(trunk_of_, [&](const auto& port) { return port.second == id; });
  for (const int port : members) trunk_of_[port] = id;
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

std::optional<int> Trunks::trunk_of(int port) const {
  const auto found = trunk_of_.find(port);
  return found == trunk_of_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace chip
