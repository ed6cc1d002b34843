// An entry of the field processor: what it matches, what it does, and whether it is installed.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "chip/field_qualifiers.h"
#include "chip/origin.h"

namespace chip {

/// The actions of entries, by number. The egress stage has only the three kinds of drop.
enum class FieldAction : int {
  packet_priority = 10,
  copy_to_cpu = 23,
  redirect_port = 29,
  drop = 39,
  drop_cancel = 40,
  drop_red = 52,
};

/// The part of an entry that is written to hardware.
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
  FieldRule rule;                      // as configured so far
  std::optional<FieldRule> installed;  // as written to hardware
  uint64_t installation = 0;           // sequence number of its installation
  uint64_t hits = 0;                   // frames that matched since then
  Origin origin{};                     // of what is installed
};

}  // namespace chip
