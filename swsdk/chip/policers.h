// The policers: meters with a committed and a peak rate, which entries of the field processor apply to their frames.
#pragma once

#include <algorithm>
#include <cstdint>

#include "chip/origin.h"
#include "chip/slots.h"

namespace chip {

/// A token bucket. The burst is the sum of its two parts.
struct Meter {
  uint32_t kilobits_per_second = 0;
  uint32_t burst_kilobits = 0;
  uint32_t burst_bits = 0;
};

struct Policer {
  uint32_t flags = 0;
  int mode = 0;
  Meter committed;
  Meter peak;
  int attached = 0;  // to how many entries
  Origin origin{};
};

class Policers {
 public:
  static constexpr int capacity = 2048;
  static constexpr int two_rates_three_colors = 3;
  static constexpr int max_mode = two_rates_three_colors;

  // The chip counts bursts in bytes and rates in multiples of 8 kbit/s.
  static constexpr uint32_t burst_granularity = 8;
  static constexpr uint32_t rate_granularity = 8;

  Status create(const Policer& policer, int& id) {
    return is_valid(policer) ? policers_.add(in_granularity(policer), id) : Status::bad_parameter;
  }

  /// Changes a policer; its attachments stay.
  Status set(int id, const Policer& policer) {
    if (!is_valid(policer)) return Status::bad_parameter;
    Policer* const present = policers_.find(id);
    if (present == nullptr) return policers_.absent(id);
    const int attached = present->attached;
    *present = in_granularity(policer);
    present->attached = attached;
    return Status::ok;
  }

  /// Busy while the policer is attached.
  Status destroy(int id) {
    const Policer* const policer = find(id);
    return policer != nullptr && policer->attached > 0 ? Status::busy : policers_.remove(id);
  }

  /// Counts one more, or one less, entry that the policer is attached to.
  Status attach(int id) { return count(id, 1); }
  Status detach(int id) { return count(id, -1); }

  void clear() { policers_.clear(); }

  /// Whether an entry has one.
  bool any_attached() const {
    const auto is_attached = [](const auto& policer) { return policer.second.attached > 0; };
    return std::any_of(all().begin(), all().end(), is_attached);
  }

  const Policer* find(int id) const { return policers_.find(id); }
  /// Why there is no policer of that id.
  Status absent(int id) const { return policers_.absent(id); }

  const std::map<int, Policer>& all() const { return policers_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(policers_);
  }

 private:
  static bool is_valid(const Policer& policer) { return policer.mode >= 0 && policer.mode <= max_mode; }

  /// Rounds up to the chip's granularity, so that no rate is lower than configured.
  static uint32_t rounded_up(uint32_t value, uint32_t granularity) {
    const uint32_t most = UINT32_MAX / granularity;
    return std::min(value / granularity + (value % granularity != 0), most) * granularity;
  }

  static Policer in_granularity(Policer policer) {
    for (Meter* const meter : {&policer.committed, &policer.peak}) {
      meter->kilobits_per_second = rounded_up(meter->kilobits_per_second, rate_granularity);
      meter->burst_bits = rounded_up(meter->burst_bits, burst_granularity);
    }
    policer.attached = 0;
    return policer;
  }

  Status count(int id, int change) {
    Policer* const policer = policers_.find(id);
    if (policer == nullptr) return policers_.absent(id);
    if (policer->attached + change < 0) return Status::not_found;
    policer->attached += change;
    return Status::ok;
  }

  Slots<Policer> policers_{1, capacity};
};

}  // namespace chip
