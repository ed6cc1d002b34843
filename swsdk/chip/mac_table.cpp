#include "chip/mac_table.h"

#include <algorithm>

#include "chip/hash.h"

namespace chip {

std::vector<MacScope> scopes_of(const MacEntry& entry) {
  std::vector<MacScope> result{AllAddresses{}, VlanAddresses{entry.vlan}, entry.place};
  if (entry.tunnel != 0) result.emplace_back(TunnelAddresses{entry.tunnel});
  return result;
}

void MacTable::reset() {
  contents_.keys.assign(capacity, 0);
  contents_.entries.assign(capacity, MacEntry{.origin = Origin::none()});
  contents_.size = 0;
  contents_.learned.clear();
  age_time_ = default_age_time;
  since_aging_ = 0;
}

Status MacTable::add(const MacEntry& entry) {
  if (!is_vlan(entry.vlan) || (entry.flags & ~MacEntry::all_flags) != 0) return Status::bad_parameter;
  if (!is_place(entry.place)) return Status::bad_port;
  std::size_t slot = slot_of(entry.vlan, entry.mac);
  if (slot != none)
    take_out(slot, false);
  else if (slot = slot_in(bucket_of(key_of(entry.vlan, entry.mac)), 0); slot == none)
    return Status::full;
  put_in(slot, entry);
  return Status::ok;
}

Status MacTable::remove(int vlan, const Mac& mac) {
  const std::size_t slot = slot_of(vlan, mac);
  if (slot == none) return absent(vlan);
  take_out(slot, false);
  return Status::ok;
}

Status MacTable::set_age_time(int seconds) {
  if (seconds < 0 || seconds > max_age_time) return Status::bad_parameter;
  age_time_ = seconds;
  since_aging_ = 0;
  return Status::ok;
}

void MacTable::pass(int seconds) {
  if (age_time_ == 0) return;
  const int64_t passed = int64_t{since_aging_} + seconds;
  since_aging_ = static_cast<int>(passed % age_time_);
  // After two aging runs without a frame in between nothing is left to age.
  for (int64_t runs = std::min<int64_t>(passed / age_time_, 2); runs > 0; --runs) age();
}

int MacTable::learned(const MacScope& scope) const {
  const auto found = contents_.learned.find(scope);
  return found == contents_.learned.end() ? 0 : found->second;
}

std::vector<MacEntry> MacTable::all() const {
  std::vector<MacEntry> result;
  result.reserve(static_cast<std::size_t>(contents_.size));
  for (std::size_t slot = 0; slot < capacity; ++slot)
    if (contents_.keys[slot] != 0) result.push_back(contents_.entries[slot]);
  return result;
}

bool MacTable::is_place(const Place& place) const {
  const Port* const port = std::get_if<Port>(&place);
  return port == nullptr || ports_.has(*port);
}

std::size_t MacTable::Contents::ScopeHash::operator()(const MacScope& scope) const {
  const auto number = std::visit(ByKind{
                                     [](AllAddresses) { return uint64_t{0}; },
                                     [](VlanAddresses of) { return static_cast<uint64_t>(of.vlan); },
                                     [](const Place& place) { return number_of(place); },
                                     [](TunnelAddresses of) { return uint64_t{of.tunnel}; },
                                 },
                                 scope);
  return hash_of(scope.index(), number);
}

void MacTable::put_in(std::size_t slot, const MacEntry& entry) {
  contents_.keys[slot] = key_of(entry.vlan, entry.mac);
  contents_.entries[slot] = entry;
  ++contents_.size;
  count(entry, 1);
  if (observer_) observer_(Change::added, entry);
}

void MacTable::take_out(std::size_t slot, bool silent) {
  contents_.keys[slot] = 0;
  --contents_.size;
  count(contents_.entries[slot], -1);
  if (observer_ && !silent) observer_(Change::removed, contents_.entries[slot]);
}

void MacTable::count(const MacEntry& entry, int change) {
  if (entry.is(MacEntry::fixed)) return;
  for (const MacScope& scope : scopes_of(entry)) contents_.learned[scope] += change;
}

void MacTable::age() {
  for (std::size_t slot = 0; slot < capacity; ++slot) {
    MacEntry& entry = contents_.entries[slot];
    if (contents_.keys[slot] == 0 || entry.is(MacEntry::fixed)) continue;
    if (!entry.source_hit && !entry.destination_hit) take_out(slot, false);
    entry.source_hit = entry.destination_hit = false;
  }
}

}  // namespace chip
