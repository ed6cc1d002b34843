// Finds the entries of a stage that a frame matches. The cost hardly depends on their number: entries of a group that
// match the same bits of the same fields share a hash table, so one lookup covers all of them.
#pragma once

#include <cstddef>
#include <cstdint>
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
    for (std::size_t i = 0; i < used_.size(); ++i) values_[i] = field_of(frame, used_[i]);
    for (const Group& group : groups_)
      if (const Installed* const met = best_of(group, frame.readable)) take(group.id, *met);
  }

 private:
  struct Part {
    std::size_t field;  // index in `used_`
    FieldValue mask;
    bool operator==(const Part&) const = default;
  };

  class Table {
   public:
    struct Row {
      std::size_t rank;  // precedence of the entry in its group, 0 the highest
      Installed installed;
    };

    Table(const std::vector<Part>& parts, Layer layer) : parts_(parts), layer_(layer) {}

    /// The innermost header that its parts are in.
    Layer layer() const { return layer_; }
    bool matches(const std::vector<Part>& parts) const { return parts_ == parts; }
    /// The highest precedence of its rows.
    std::size_t first_rank() const { return rows_.front().rank; }

    /// Of entries with equal matches, the first one stays.
    void add(const std::vector<FieldValue>& values, const Row& row);
    /// The row that these values match, or null.
    const Row* find(const std::vector<FieldValue>& values) const;

   private:
    static constexpr uint32_t free = UINT32_MAX;

    bool meets(uint32_t row, const std::vector<FieldValue>& values) const;
    /// The slot at which the search for a key begins; `part_of(index)` returns the parts of the key.
    template <class PartOf>
    std::size_t first_slot(PartOf part_of) const;
    std::size_t next_slot(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
    void put_into_slot(uint32_t row);

    std::vector<Part> parts_;
    Layer layer_;
    std::vector<Row> rows_;
    std::vector<FieldValue> keys_;  // the masked values of each part, row by row
    std::vector<uint32_t> slots_;   // rows by hash; empty while a linear search is faster
  };

  struct Group {
    int id;
    std::vector<Table> tables;  // highest precedence first
  };

  const Installed* best_of(const Group& group, Layer readable) const;
  std::size_t place_of(FieldQualifier field);

  std::vector<Group> groups_;
  std::vector<FieldQualifier> used_;  // the fields that any entry matches
  std::vector<FieldValue> values_;    // of the frame being classified
};

}  // namespace chip
