// Finds the entries of a stage that a frame matches. The cost hardly depends on their masks: the entries of a slice are
// bits, and each four bits of a frame's fields select the set of entries that they agree with. What is left when all
// these sets have been intersected is matched; mostly nothing is left after a few of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "chip/field_entry.h"
#include "chip/field_qualifiers.h"

namespace chip {

class FieldIndex {
 public:
  struct Installed {
    int id;
    FieldEntry* entry;
  };

  void clear();
  bool empty() const { return groups_.empty(); }

  /// Adds a group with its installed entries, highest precedence first.
  void add_group(int id, const std::vector<Installed>& entries);

  /// Calls `take(group, installed)` with the entry that the frame matches in each group, in the order in which the
  /// groups were added. A field that cannot be read matches nothing.
  template <class Take>
  void find(const FrameFields& frame, Take take) {
    for (std::size_t i = 0; i < used_.size(); ++i) {
      const FieldValue value = field_of(frame, used_[i]);
      words_[2 * i] = value.low;
      words_[2 * i + 1] = value.high;
    }
    for (const Group& group : groups_)
      for (const Slice& slice : group.slices)
        if (const Installed* const met = first_of(slice, frame.readable)) {
          take(group.id, *met);
          break;
        }
  }

 private:
  /// A set of entries of a slice, by their place in it.
  struct Entries {
    static constexpr std::size_t capacity = 256;

    std::array<uint64_t, capacity / 64> words{};

    void add(std::size_t entry) { words[entry / 64] |= uint64_t{1} << entry % 64; }
    std::size_t size() const;
    bool empty() const { return (words[0] | words[1] | words[2] | words[3]) == 0; }
    std::size_t first() const;
    Entries& operator&=(const Entries& other) {
      for (std::size_t i = 0; i < words.size(); ++i) words[i] &= other.words[i];
      return *this;
    }
  };

  /// Four bits of a field, and for each of their values the entries that match it.
  struct Digit {
    static constexpr unsigned bits = 4;

    std::size_t word;  // index in `words_`
    unsigned shift;    // of the lowest bit
    std::array<Entries, 1 << bits> matching{};

    unsigned of(uint64_t value) const { return value >> shift & ((1U << bits) - 1); }
    /// The most entries that it can leave.
    std::size_t most() const;
  };

  /// Entries of a group that follow each other in precedence.
  struct Slice {
    std::vector<Installed> installed;
    std::array<Entries, 3> readable;  // by the innermost readable header: those that match nothing behind it
    std::vector<Digit> digits;        // only those that an entry matches
  };

  struct Group {
    int id;
    std::vector<Slice> slices;  // highest precedence first
  };

  Slice make_slice(std::span<const Installed> installed);
  void add_digits(Slice& slice, FieldQualifier field);
  const Installed* first_of(const Slice& slice, Layer readable) const;
  std::size_t place_of(FieldQualifier field);

  std::vector<Group> groups_;
  std::vector<FieldQualifier> used_;  // the fields that any entry matches
  std::vector<uint64_t> words_;       // of the frame being classified: the lower and the higher word of each field
};

}  // namespace chip
