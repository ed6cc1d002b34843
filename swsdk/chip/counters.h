// What each port counts.
#pragma once

#include <array>
#include <cstdint>
#include <map>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class Counters {
 public:
  static constexpr int count = 312;
  using Values = std::array<uint64_t, count>;

  explicit Counters(const Ports& ports) : ports_(ports) {}

  /// All counters are 0 after a reset.
  void reset() {
    counters_.clear();
    by_port_ = {};
  }

  Status get(int port, int counter, uint64_t& value) const {
    if (const Status status = check(port, counter); status != Status::ok) return status;
    const auto found = counters_.find(port);
    value = found == counters_.end() ? 0 : found->second[static_cast<std::size_t>(counter)];
    return Status::ok;
  }
  Status set(int port, int counter, uint64_t value) {
    if (const Status status = check(port, counter); status != Status::ok) return status;
    of(port)[static_cast<std::size_t>(counter)] = value;
    return Status::ok;
  }
  Status clear(int port) {
    if (!ports_.has(port)) return Status::bad_port;
    counters_.erase(port);
    by_port_[static_cast<std::size_t>(port)] = nullptr;
    return Status::ok;
  }

  /// The counters of a port of the chip, to add to.
  Values& of(int port) {
    Values*& values = by_port_[static_cast<std::size_t>(port)];
    if (values == nullptr) values = &counters_[port];
    return *values;
  }
  /// By port; the counters of one that is absent are 0.
  const std::map<int, Values>& all() const { return counters_; }

 private:
  Status check(int port, int counter) const {
    if (!ports_.has(port)) return Status::bad_port;
    return counter >= 0 && counter < count ? Status::ok : Status::bad_parameter;
  }

  const Ports& ports_;
  std::map<int, Values> counters_;
  std::array<Values*, PortSet::capacity> by_port_{};  // the same, so that one is found at once
};

}  // namespace chip
