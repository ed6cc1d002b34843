#include "chip/mac_table.h"

#include <algorithm>

#include "chip/hash.h"

namespace chip {

std::vector<MacScope> scopes_of(const MacEntry& entry) {
  std::vector<MacScope> result{AllAddresses{}, VlanAddresses{entry.vlan}, entry.place};
  if (entry.tunnel != 0) result.emplace_back(TunnelAddresses{entry.tunnel});
  return result;
}

namespace {

/// VLAN and address in one number.
uint64_t bits_of(int vlan, const Mac& mac) { return static_cast<uint64_t>(vlan) << 48 | number_of(mac); }

/// The key of an entry; never 0.
uint64_t key_of(int vlan, const Mac& mac) {
  constexpr uint64_t used = uint64_t{1} << 63;
  return used | bits_of(vlan, mac);
}

}  // namespace

int MacTable::bucket_of(int vlan, const Mac& mac) {
  constexpr uint64_t spread = 0x9E3779B97F4A7C15;  // an odd number without a pattern spreads every bit upward
  static_assert(buckets == 1 << 13);
  return static_cast<int>((bits_of(vlan, mac) * spread) >> (64 - 13));
}

void MacTable::reset() {
  slots_.assign(capacity, {});
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
    take_out(slots_[slot], false);
  else if (slot = slot_in(bucket_of(entry.vlan, entry.mac), 0); slot == none)
    return Status::full;
  put_in(slots_[slot], entry);
  return Status::ok;
}

const MacEntry* MacTable::find(int vlan, const Mac& mac) const {
  const std::size_t slot = slot_of(vlan, mac);
  return slot == none ? nullptr : &slots_[slot].entry;
}

Status MacTable::remove(int vlan, const Mac& mac) {
  const std::size_t slot = slot_of(vlan, mac);
  if (slot == none) return absent(vlan);
  take_out(slots_[slot], false);
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
  for (const Slot& slot : slots_)
    if (slot.key != 0) result.push_back(slot.entry);
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

std::size_t MacTable::slot_of(int vlan, const Mac& mac) const {
  return slot_in(bucket_of(vlan, mac), key_of(vlan, mac));
}

std::size_t MacTable::slot_in(int bucket, uint64_t key) const {
  const std::size_t first = static_cast<std::size_t>(bucket) * ways;
  for (std::size_t i = first; i < first + ways; ++i)
    if (slots_[i].key == key) return i;
  return none;
}

void MacTable::put_in(Slot& slot, const MacEntry& entry) {
  if (undo_ != nullptr) save(slot);
  slot = {key_of(entry.vlan, entry.mac), entry};
  ++size_;
  count(entry, 1);
  if (observer_) observer_(Change::added, entry);
}

void MacTable::take_out(Slot& slot, bool silent) {
  if (undo_ != nullptr) save(slot);
  slot.key = 0;
  --size_;
  count(slot.entry, -1);
  if (observer_ && !silent) observer_(Change::removed, slot.entry);
}

void MacTable::count(const MacEntry& entry, int change) {
  if (entry.is(MacEntry::fixed)) return;
  for (const MacScope& scope : scopes_of(entry)) learned_[scope] += change;
}

void MacTable::save(const Slot& slot) {
  undo_->saved_.emplace_back(static_cast<std::size_t>(&slot - slots_.data()), slot);
}

MacTable::Undo::~Undo() {
  table_.undo_ = nullptr;
  for (auto saved = saved_.rbegin(); saved != saved_.rend(); ++saved) {
    auto& [index, before] = *saved;
    Slot& slot = table_.slots_[index];
    if (slot.key != 0) table_.take_out(slot, true);
    if (before.key != 0) table_.put_in(slot, before.entry);
  }
  table_.observe(std::move(observer_));
}

void MacTable::age() {
  for (Slot& slot : slots_) {
    if (slot.key == 0 || slot.entry.is(MacEntry::fixed)) continue;
    if (!slot.entry.source_hit && !slot.entry.destination_hit) take_out(slot, false);
    slot.entry.source_hit = slot.entry.destination_hit = false;
  }
}

}  // namespace chip
