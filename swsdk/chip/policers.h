// The policers: rates and bursts that meter what they are attached to.
#pragma once

#include <cstdint>

#include "chip/slots.h"

namespace chip {

/// Committed and peak rate in kbit/s; bursts in kbit and the bits beyond.
struct PolicerSettings {
  uint32_t flags = 0;
  int mode = 0;
  uint32_t committed_rate = 0;
  uint32_t committed_burst = 0;
  uint32_t committed_burst_bits = 0;
  uint32_t peak_rate = 0;
  uint32_t peak_burst = 0;
  uint32_t peak_burst_bits = 0;
  uint32_t action = 0;
  uint32_t sharing_mode = 0;

  bool operator==(const PolicerSettings&) const = default;
};

struct Policer {
  PolicerSettings settings;
  int users = 0;
};

class Policers {
 public:
  static constexpr int capacity = 2048;

  Status create(const PolicerSettings& settings, int& id) { return policers_.add({settings}, id); }
  /// Busy while something uses it.
  Status destroy(int id) {
    const Policer* const policer = policers_.find(id);
    return policer != nullptr && policer->users > 0 ? Status::busy : policers_.remove(id);
  }
  Status set(int id, const PolicerSettings& settings) {
    return with(*this, id, [&](Policer& policer) { policer.settings = settings; });
  }
  Status get(int id, PolicerSettings& settings) const {
    return with(*this, id, [&](const Policer& policer) { settings = policer.settings; });
  }
  void clear() { policers_.clear(); }

  /// What something uses stays until that lets go of it.
  Status use(int id) {
    return with(*this, id, [](Policer& policer) { ++policer.users; });
  }
  void release(int id) {
    with(*this, id, [](Policer& policer) { --policer.users; });
  }

  const std::map<int, Policer>& all() const { return policers_.all(); }

 private:
  template <class Self, class Body>
  static Status with(Self& self, int id, Body body) {
    auto* const policer = self.policers_.find(id);
    if (policer == nullptr) return Status::not_found;
    body(*policer);
    return Status::ok;
  }

  Slots<Policer> policers_{1, capacity};
};

}  // namespace chip
