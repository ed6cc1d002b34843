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
  keys_.assign(capacity, 0);
  entries_.assign(capacity, MacEntry{.origin = Origin::none()});
  size_ = 0;
  learned_.clear();
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
  const auto found = learned_.find(scope);
  return found == learned_.end() ? 0 : found->second;
}

std::vector<MacEntry> MacTable::all() const {
  std::vector<MacEntry> result;
  result.reserve(static_cast<std::size_t>(size_));
  for (std::size_t slot = 0; slot < capacity; ++slot)
    if (keys_[slot] != 0) result.push_back(entries_[slot]);
  return result;
}

bool MacTable::is_place(const Place& place) const {
  const Port* const port = std::get_if<Port>(&place);
  return port == nullptr || ports_.has(*port);
}

std::size_t MacTable::ScopeHash::operator()(const MacScope& scope) const {
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
  if (undo_ != nullptr) keep_for_undo(slot);
  keys_[slot] = key_of(entry.vlan, entry.mac);
  entries_[slot] = entry;
  ++size_;
  count(entry, 1);
  if (observer_) observer_(Change::added, entry);
}

void MacTable::take_out(std::size_t slot, bool silent) {
  if (undo_ != nullptr) keep_for_undo(slot);
  keys_[slot] = 0;
  --size_;
  count(entries_[slot], -1);
  if (observer_ && !silent) observer_(Change::removed, entries_[slot]);
}

void MacTable::count(const MacEntry& entry, int change) {
  if (entry.is(MacEntry::fixed)) return;
  for (const MacScope& scope : scopes_of(entry)) learned_[scope] += change;
}

void MacTable::keep_for_undo(std::size_t slot) { undo_->saved_.push_back({slot, keys_[slot] == 0, entries_[slot]}); }

MacTable::Undo::~Undo() {
  table_.undo_ = nullptr;
  for (auto saved = saved_.rbegin(); saved != saved_.rend(); ++saved) {
    if (table_.keys_[saved->slot] != 0) table_.take_out(saved->slot, true);
    if (!saved->was_free) table_.put_in(saved->slot, saved->entry);
  }
  table_.observe(std::move(observer_));
}

void MacTable::age() {
  for (std::size_t slot = 0; slot < capacity; ++slot) {
    MacEntry& entry = entries_[slot];
    if (keys_[slot] == 0 || entry.is(MacEntry::fixed)) continue;
    if (!entry.source_hit && !entry.destination_hit) take_out(slot, false);
    entry.source_hit = entry.destination_hit = false;
  }
}

}  // namespace chip
