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

#include "chip/field_index.h"
#include "chip/field_qualifiers.h"
#include "chip/policers.h"
#include "chip/ports.h"
#include "chip/slots.h"
#include "chip/status.h"

namespace chip {

/// What entries can do, by number. The way out knows the three kinds of drop alone.
enum class FieldAction : int {
  packet_priority = 10,
  copy_to_cpu = 23,
  redirect_port = 29,
  drop = 39,
  drop_cancel = 40,
  drop_red = 52,
};

/// What of an entry is written to hardware.
struct FieldRule {
  static constexpr int policer_levels = 2;
  static constexpr int no_policer = 0;

  std::map<FieldQualifier, FieldMatch> matches;
  std::map<FieldAction, std::array<uint32_t, 2>> actions;  // with their parameters
  std::array<int, policer_levels> policers{};

  bool operator==(const FieldRule&) const = default;
};

struct FieldEntry {
  static constexpr int default_priority = -1;  // below all others

  int group = 0;
  int priority = default_priority;
  FieldRule rule;                      // as the calls have made it so far
  std::optional<FieldRule> installed;  // as it is in hardware
  uint64_t installation = 0;           // number of the one that brought it there
  uint64_t hits = 0;                   // frames since then
};

struct FieldGroup {
  static constexpr int any_priority = -std::numeric_limits<int>::max();  // below all others

  FieldStage stage{};
  std::set<int> qualifiers;
  int priority = any_priority;
  bool enabled = false;
  int entries = 0;

  /// A group has one slice, and further ones as its entries need them.
  int slices() const;
};

/// The entries that a frame meets, one of each group at most; the group of highest priority first.
class FieldHits {
 public:
  static constexpr std::size_t capacity = 16;  // a group has a slice at least

  struct Hit {
    int group;
    int entry;
  };

  FieldHits() {}  // NOLINT(modernize-use-equals-default): what is not counted need not be 0, for each frame
  void add(const Hit& hit) { hits_[count_++] = hit; }
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  const Hit* begin() const { return hits_.data(); }
  const Hit* end() const { return begin() + count_; }

 private:
  std::array<Hit, capacity> hits_;
  std::size_t count_ = 0;
};

/// What the entries that a frame meets do to it together.
struct FieldVerdict {
  FieldHits hits;

  bool dropped = false;
  bool drop_cancelled = false;  // nor do other parts of the chip drop the frame, but its VLAN, spanning tree and rates
  bool red_dropped = false;     // dropped if its policer finds it red
  bool copied_to_cpu = false;
  std::optional<int> redirect_port;  // goes there alone
  std::optional<int> priority;
  std::array<int, FieldRule::policer_levels> policers{};
};

class FieldProcessor {
 public:
  static constexpr int ingress_slices = FieldHits::capacity;
  static constexpr int egress_slices = 4;
  static constexpr int slice_entries = 256;
  static constexpr int highest_packet_priority = 7;

  /// The numbers that stand for a stage in a group's set of qualifiers.
  static constexpr int ingress_stage = 68;
  static constexpr int egress_stage = 72;

  FieldProcessor(const Ports& ports, Policers& policers) : ports_(ports), policers_(policers) {}

  void reset();

  /// Makes a group, which is disabled, of the qualifiers and the one stage in `qualifiers`.
  Status create_group(const std::set<int>& qualifiers, int priority, int& id);
  Status set_group_priority(int group, int priority);
  Status enable_group(int group, bool enabled);

  Status create_entry(int group, int& id);
  Status create_entry_with_id(int group, int id);
  /// Busy while the entry is installed. Its policers are detached.
  Status destroy_entry(int entry);

  /// Adds a match, in place of what the entry matched there before. Like actions and policers, it is in force once the
  /// entry is installed, or installed again.
  Status qualify(int entry, FieldQualifier qualifier, const FieldMatch& match);
  Status qualify_ip_type(int entry, int type);
  Status clear_qualifiers(int entry);
  Status add_action(int entry, int action, uint32_t parameter0, uint32_t parameter1);

  /// In force at once. Of entries of equal priority, the one that was installed first is met first.
  Status set_priority(int entry, int priority);

  Status install(int entry);
  Status reinstall(int entry);
  /// An entry that is not installed is left alone.
  Status remove(int entry);

  Status attach_policer(int entry, int level, int policer);
  /// In force at once: a meter that another entry may get next is no longer this one's.
  Status detach_policer(int entry, int level);
  Status policer(int entry, int level, int& policer) const;
  /// Detaches all policers everywhere.
  void forget_policers();

  /// Whether a stage has no entry that a frame could meet.
  bool is_idle(FieldStage stage) { return index(stage).empty(); }
  /// Looks a frame up and counts the hits.
  FieldVerdict classify(FieldStage stage, const FrameFields& frame);

  const std::map<int, FieldGroup>& groups() const { return groups_.all(); }
  const std::map<int, FieldEntry>& entries() const { return entries_.all(); }

 private:
  template <class Self, class Body>
  static Status with_entry(Self& self, int id, Body body);
  template <class Body>
  static Status with_level(int level, Body body);
  template <class Create>
  Status create_entry(int group, Create create);

  int free_slices(FieldStage stage) const;

  /// Of what is installed now.
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
  bool indexed_ = false;  // the indexes are made anew when they are needed after a change
};

}  // namespace chip
