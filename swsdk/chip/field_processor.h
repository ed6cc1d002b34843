// The field processor: at each of its two stages slices of entries, which match fields of a frame and act on it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "chip/field_entry.h"
#include "chip/field_index.h"
#include "chip/field_qualifiers.h"
#include "chip/origin.h"
#include "chip/policers.h"
#include "chip/ports.h"
#include "chip/slots.h"
#include "chip/status.h"

namespace chip {

struct FieldGroup {
  static constexpr int any_priority = -std::numeric_limits<int>::max();  // below all others

  FieldStage stage{};
  std::set<int> qualifiers;
  int priority = any_priority;
  bool enabled = false;
  int entries = 0;
  Origin origin{};

  /// A group has one slice, and further ones as its entries need them.
  int slices() const;
};

/// The entries that a frame matches, at most one of each group; the group of highest priority first.
class FieldHits {
 public:
  static constexpr std::size_t capacity = 16;  // each group has at least one slice

  struct Hit {
    int group;
    int entry;
  };

  FieldHits() {}  // NOLINT(modernize-use-equals-default): the array past the count is never read, and clearing it costs
                  // time for each frame
  void add(const Hit& hit) { hits_[count_++] = hit; }
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  const Hit* begin() const { return hits_.data(); }
  const Hit* end() const { return begin() + count_; }

 private:
  std::array<Hit, capacity> hits_;
  std::size_t count_ = 0;
};

/// The combined effect of the entries that a frame matches.
struct FieldVerdict {
  FieldHits hits;

  bool dropped = false;
  bool drop_cancelled = false;  // overrides other drops, but not those by VLAN, spanning tree or rate
  bool red_dropped = false;     // dropped if its policer marks it red
  bool copied_to_cpu = false;
  std::optional<Port> redirect_port;  // the only destination
  std::optional<int> priority;
  std::array<int, FieldRule::policer_levels> policers{};
};

class FieldProcessor {
 public:
  static constexpr int ingress_slices = FieldHits::capacity;
  static constexpr int egress_slices = 4;
  static constexpr int slice_entries = 256;
  static constexpr int max_packet_priority = 7;

  /// The numbers that select a stage in a group's set of qualifiers.
  static constexpr int ingress_stage = 68;
  static constexpr int egress_stage = 72;

  FieldProcessor(const Ports& ports, Policers& policers) : ports_(ports), policers_(policers) {}

  void reset();

  /// Creates a disabled group with the qualifiers and the one stage in `qualifiers`.
  Status create_group(const std::set<int>& qualifiers, int priority, int& id);
  Status set_group_priority(int group, int priority);
  Status enable_group(int group, bool enabled);

  Status create_entry(int group, int& id);
  Status create_entry_with_id(int group, int id);
  /// Busy while the entry is installed. Its policers are detached.
  Status destroy_entry(int entry);

  /// Adds a match, which replaces an earlier one of the same qualifier. Like actions and policers, it takes effect when
  /// the entry is installed or reinstalled.
  Status qualify(int entry, FieldQualifier qualifier, const FieldMatch& match);
  Status qualify_ip_type(int entry, int type);
  Status clear_qualifiers(int entry);
  Status add_action(int entry, int action, uint32_t parameter0, uint32_t parameter1);

  /// Takes effect at once. Among entries of equal priority, the one installed first has precedence.
  Status set_priority(int entry, int priority);

  Status install(int entry);
  Status reinstall(int entry);
  /// An entry that is not installed stays as it is.
  Status remove(int entry);

  Status attach_policer(int entry, int level, int policer);
  /// Takes effect at once: the policer may be attached to another entry next.
  Status detach_policer(int entry, int level);
  /// The policer of an entry at a level; nothing where there is none.
  std::optional<int> policer(int entry, int level) const;
  Status absent_policer(int entry, int level) const;
  /// Detaches all policers everywhere.
  void forget_policers();

  /// Whether a stage has no entry that a frame could match.
  bool is_idle(FieldStage stage) { return index(stage).empty(); }
  /// Matches a frame, or so many alike, against the installed entries and counts the hits.
  FieldVerdict classify(FieldStage stage, const FrameFields& frame, std::size_t frames = 1);

  /// How often each entry was hit, in the order of their ids.
  using Hits = std::vector<uint64_t>;
  Hits hits() const;
  /// Of the same entries.
  void restore(const Hits& hits);

  const std::map<int, FieldGroup>& groups() const { return groups_.all(); }
  const std::map<int, FieldEntry>& entries() const { return entries_.all(); }
  const FieldEntry* find_entry(int id) const { return entries_.find(id); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(groups_, entries_, installations_);
    indexed_ = false;
  }

 private:
  template <class Body>
  Status with_entry(int id, Body body);
  static bool is_level(int level) { return level >= 0 && level < FieldRule::policer_levels; }
  template <class Body>
  static Status with_level(int level, Body body);
  template <class Create>
  Status create_entry(int group, Create create);

  int free_slices(FieldStage stage) const;

  /// The index of what is installed now.
  FieldIndex& index(FieldStage stage) {
    if (!indexed_) make_indexes();
    return stage == FieldStage::ingress ? ingress_ : egress_;
  }
  void make_indexes();

  const Ports& ports_;
  Policers& policers_;
  Slots<FieldGroup> groups_{1, ingress_slices + egress_slices};
  Slots<FieldEntry> entries_{1, std::numeric_limits<int>::max() - 1};
  uint64_t installations_ = 0;
  FieldIndex ingress_;
  FieldIndex egress_;
  bool indexed_ = false;  // indexes are rebuilt on first use after a change
};

}  // namespace chip
