// What each port counts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "chip/pipeline/drop.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class Counters {
 public:
  static constexpr int count = 312;
  using Values = std::array<uint64_t, count>;

  explicit Counters(const Ports& ports) : counters_(ports.all()) {}

  /// All counters are 0 after a reset.
  void reset() { counters_.fill({}); }

  const uint64_t* find(Port port, int counter) const {
    const Values* const values = counters_.find(port);
    return values != nullptr && has(counter) ? &(*values)[static_cast<std::size_t>(counter)] : nullptr;
  }
  /// Why there is no such counter of the port.
  Status absent(Port port, int /*counter*/) const {
    return counters_.find(port) == nullptr ? Status::bad_port : Status::bad_parameter;
  }

  Status set(Port port, int counter, uint64_t value) {
    if (find(port, counter) == nullptr) return absent(port, counter);
    counters_[port][static_cast<std::size_t>(counter)] = value;
    return Status::ok;
  }
  Status clear(Port port) {
    Values* const values = counters_.find(port);
    if (values == nullptr) return Status::bad_port;
    *values = {};
    return Status::ok;
  }

  /// The counters of a port of the chip, to add to.
  Values& of(Port port) { return counters_[port]; }
  const PortTable<Values>& all() const { return counters_; }

 private:
  static bool has(int counter) { return counter >= 0 && counter < count; }

  PortTable<Values> counters_;
};

/// How many frames, or copies, each port has lost, by reason.
using DropCounts = PortTable<std::array<uint64_t, drop_count>>;

}  // namespace chip
