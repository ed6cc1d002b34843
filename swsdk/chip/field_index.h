// Finds the entries of a stage that a frame meets. Their number hardly counts: the entries of a group that match the
// same bits of the same fields share a table, in which one look is enough for all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "chip/field_qualifiers.h"

namespace chip {

struct FieldEntry;

class FieldIndex {
 public:
  struct Installed {
    int id;
    FieldEntry* entry;
  };

  void clear();
  bool empty() const { return groups_.empty(); }

  /// Adds a group with its installed entries, the one that is met rather than all others first.
  void add_group(int id, const std::vector<Installed>& entries);

  /// Hands the entry that the frame meets in each group to `take(group, installed)`, in the order in which the groups
  /// were added. An entry that matches a field which cannot be read is not met.
  template <class Take>
  void find(const FrameFields& frame, Take take) {
    for (std::size_t i = 0; i < used_.size(); ++i) values_[i] = field_of(frame, used_[i]);
    for (const Group& group : groups_)
      if (const Installed* const met = best_of(group, frame.readable)) take(group.id, *met);
  }

 private:
  struct Part {
    std::size_t field;  // its place among those that entries match
    FieldValue mask;
    bool operator==(const Part&) const = default;
  };

  class Table {
   public:
    struct Row {
      std::size_t rank;  // of the entry in its group; 0 is met rather than all others
      Installed installed;
    };

    Table(const std::vector<Part>& parts, Layer layer) : parts_(parts), layer_(layer) {}

    /// The last header that its parts stand in.
    Layer layer() const { return layer_; }
    bool matches(const std::vector<Part>& parts) const { return parts_ == parts; }
    /// The best rank in it.
    std::size_t first_rank() const { return rows_.front().rank; }

    /// Of entries that match the same, the first one stays.
    void add(const std::vector<FieldValue>& values, const Row& row);
    /// The row that these values meet, or null.
    const Row* find(const std::vector<FieldValue>& values) const;

   private:
    static constexpr uint32_t free = UINT32_MAX;

    bool meets(uint32_t row, const std::vector<FieldValue>& values) const;
    /// The slot at which a search begins for the key whose parts `part_of(index)` tells.
    template <class PartOf>
    std::size_t first_slot(PartOf part_of) const;
    std::size_t next_slot(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
    void put_into_slot(uint32_t row);

    std::vector<Part> parts_;
    Layer layer_;
    std::vector<Row> rows_;
    std::vector<FieldValue> keys_;  // the masked values of each part, row by row
    std::vector<uint32_t> slots_;   // rows by hash; none while the rows are so few that each is looked at
  };

  struct Group {
    int id;
    std::vector<Table> tables;  // by their first rank
  };

  const Installed* best_of(const Group& group, Layer readable) const;
  std::size_t place_of(FieldQualifier field);

  std::vector<Group> groups_;
  std::vector<FieldQualifier> used_;  // the fields that entries match
  std::vector<FieldValue> values_;    // of the frame that is looked up
};

}  // namespace chip
