#include "chip/field_index.h"

#include <algorithm>
#include <bit>

#include "chip/hash.h"

namespace chip {

// ---------------------------------------------------------------------------------------------------- tables ----

bool FieldIndex::Table::meets(uint32_t row, const std::vector<FieldValue>& values) const {
  const FieldValue* key = keys_.data() + row * parts_.size();
  return std::all_of(parts_.begin(), parts_.end(),
                     [&](const Part& part) { return (values[part.field] & part.mask) == *key++; });
}

template <class PartOf>
std::size_t FieldIndex::Table::first_slot(PartOf part_of) const {
  std::size_t hash = 0;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const FieldValue part = part_of(i);
    hash = hash_of(hash ^ part.low ^ hash_of(part.high));
  }
  return hash >> 32 & (slots_.size() - 1);
}

const FieldIndex::Table::Row* FieldIndex::Table::find(const std::vector<FieldValue>& values) const {
  if (slots_.empty()) {
    for (uint32_t row = 0; row < rows_.size(); ++row)
      if (meets(row, values)) return &rows_[row];
    return nullptr;
  }
  const auto part_of = [&](std::size_t i) { return values[parts_[i].field] & parts_[i].mask; };
  for (std::size_t slot = first_slot(part_of); slots_[slot] != free; slot = next_slot(slot))
    if (meets(slots_[slot], values)) return &rows_[slots_[slot]];
  return nullptr;
}

void FieldIndex::Table::put_into_slot(uint32_t row) {
  std::size_t slot = first_slot([&](std::size_t i) { return keys_[row * parts_.size() + i]; });
  while (slots_[slot] != free) slot = next_slot(slot);
  slots_[slot] = row;
}

void FieldIndex::Table::add(const std::vector<FieldValue>& values, const Row& row) {
  constexpr std::size_t few = 4;  // rows: a linear search is faster than hashing
  if (find(values) != nullptr) return;
  const auto number = static_cast<uint32_t>(rows_.size());
  rows_.push_back(row);
  for (const Part& part : parts_) keys_.push_back(values[part.field] & part.mask);
  if (rows_.size() <= few) return;
  if (rows_.size() * 2 <= slots_.size()) return put_into_slot(number);
  slots_.assign(std::bit_ceil(rows_.size() * 4), free);
  for (uint32_t present = 0; present <= number; ++present) put_into_slot(present);
}

// ---------------------------------------------------------------------------------------------------- groups ----

void FieldIndex::clear() {
  groups_.clear();
  used_.clear();
  values_.clear();
}

/// The index of a field in `used_`; adds it when it is new.
std::size_t FieldIndex::place_of(FieldQualifier field) {
  const auto found = std::find(used_.begin(), used_.end(), field);
  const auto place = static_cast<std::size_t>(found - used_.begin());
  if (found == used_.end()) {
    used_.push_back(field);
    values_.emplace_back();
  }
  return place;
}

void FieldIndex::add_group(int id, const std::vector<Installed>& entries) {
  Group group{.id = id, .tables = {}};
  std::size_t rank = 0;
  for (const Installed& installed : entries) {
    std::vector<Part> parts;
    Layer layer = Layer::ethernet;
    for (const auto& [field, match] : installed.entry->installed->matches) {
      if (match.mask == FieldValue()) continue;
      const std::size_t place = place_of(field);
      parts.push_back({place, match.mask});
      layer = std::max(layer, layer_of(field));
      values_[place] = match.data;
    }
    auto table = std::find_if(group.tables.begin(), group.tables.end(),
                              [&](const Table& other) { return other.matches(parts); });
    if (table == group.tables.end()) table = group.tables.emplace(table, parts, layer);
    table->add(values_, {rank++, installed});
  }
  groups_.push_back(std::move(group));
}

const FieldIndex::Installed* FieldIndex::best_of(const Group& group, Layer readable) const {
  const Table::Row* best = nullptr;
  for (const Table& table : group.tables) {
    if (best != nullptr && best->rank < table.first_rank()) break;
    if (table.layer() > readable) continue;
    const Table::Row* const row = table.find(values_);
    if (row != nullptr && (best == nullptr || row->rank < best->rank)) best = row;
  }
  return best == nullptr ? nullptr : &best->installed;
}

}  // namespace chip
