#include "chip/field_index.h"

#include <algorithm>
#include <bit>
#include <set>

namespace chip {

std::size_t FieldIndex::Entries::size() const {
  std::size_t result = 0;
  for (const uint64_t word : words) result += static_cast<std::size_t>(std::popcount(word));
  return result;
}

/// Of a set that is not empty.
std::size_t FieldIndex::Entries::first() const {
  std::size_t word = 0;
  while (words[word] == 0) ++word;
  return word * 64 + static_cast<std::size_t>(std::countr_zero(words[word]));
}

std::size_t FieldIndex::Digit::most() const {
  std::size_t result = 0;
  for (const Entries& entries : matching) result = std::max(result, entries.size());
  return result;
}

void FieldIndex::clear() {
  groups_.clear();
  used_.clear();
  words_.clear();
}

/// The index of a field in `used_`; adds it when it is new.
std::size_t FieldIndex::place_of(FieldQualifier field) {
  const auto found = std::find(used_.begin(), used_.end(), field);
  const auto place = static_cast<std::size_t>(found - used_.begin());
  if (found == used_.end()) {
    used_.push_back(field);
    words_.resize(2 * used_.size());
  }
  return place;
}

void FieldIndex::add_group(int id, const std::vector<Installed>& entries) {
  Group group{.id = id, .slices = {}};
  const std::span<const Installed> all = entries;
  for (std::size_t first = 0; first < all.size(); first += Entries::capacity)
    group.slices.push_back(make_slice(all.subspan(first, std::min(Entries::capacity, all.size() - first))));
  groups_.push_back(std::move(group));
}

FieldIndex::Slice FieldIndex::make_slice(std::span<const Installed> installed) {
  Slice slice{.installed = {installed.begin(), installed.end()}, .readable = {}, .digits = {}};
  std::set<FieldQualifier> fields;
  for (std::size_t entry = 0; entry < installed.size(); ++entry) {
    Layer innermost = Layer::ethernet;
    for (const auto& [field, match] : installed[entry].entry->installed->matches) {
      if (match.mask == FieldValue()) continue;
      fields.insert(field);
      innermost = std::max(innermost, layer_of(field));
    }
    for (auto layer = static_cast<std::size_t>(innermost); layer < slice.readable.size(); ++layer)
      slice.readable[layer].add(entry);
  }
  for (const FieldQualifier field : fields) add_digits(slice, field);
  std::stable_sort(slice.digits.begin(), slice.digits.end(),
                   [](const Digit& left, const Digit& right) { return left.most() < right.most(); });
  return slice;
}

void FieldIndex::add_digits(Slice& slice, FieldQualifier field) {
  std::vector<FieldMatch> matches;
  for (const Installed& installed : slice.installed) {
    const auto& of_entry = installed.entry->installed->matches;
    const auto match = of_entry.find(field);
    matches.push_back(match == of_entry.end() ? FieldMatch{} : match->second);
  }
  const std::size_t place = place_of(field);
  for (const bool lower : {true, false}) {
    uint64_t FieldValue::*const part = lower ? &FieldValue::low : &FieldValue::high;
    constexpr unsigned width = 64;
    for (unsigned shift = 0; shift < width; shift += Digit::bits) {
      Digit digit{.word = 2 * place + (lower ? 0 : 1), .shift = shift};
      const auto is_matched = [&](const FieldMatch& match) { return digit.of(match.mask.*part) != 0; };
      if (std::none_of(matches.begin(), matches.end(), is_matched)) continue;
      for (std::size_t entry = 0; entry < matches.size(); ++entry) {
        const unsigned mask = digit.of(matches[entry].mask.*part);
        const unsigned data = digit.of(matches[entry].data.*part) & mask;
        for (unsigned value = 0; value < digit.matching.size(); ++value)
          if ((value & mask) == data) digit.matching[value].add(entry);
      }
      slice.digits.push_back(digit);
    }
  }
}

const FieldIndex::Installed* FieldIndex::first_of(const Slice& slice, Layer readable) const {
  Entries left = slice.readable[static_cast<std::size_t>(readable)];
  for (const Digit& digit : slice.digits) {
    left &= digit.matching[digit.of(words_[digit.word])];
    if (left.empty()) return nullptr;
  }
  return left.empty() ? nullptr : &slice.installed[left.first()];
}

}  // namespace chip
