// How fast each port lets frames in (policing) and out (shaping).
#pragma once

#include <cstdint>
#include <map>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

enum class RateUnit { kilobits, packets };

struct PortRate {
  RateUnit unit = RateUnit::kilobits;
  uint32_t rate = 0;  // per second; 0: no limit
  uint32_t burst = 0;
};

class PortRates {
 public:
  explicit PortRates(const Ports& ports) : ports_(ports) {}

  /// No limits after a reset.
  void clear() {
    ingress_.clear();
    egress_.clear();
  }

  Status police(int port, const PortRate& rate) { return set(ingress_, port, rate); }
  Status policing(int port, uint32_t& rate, uint32_t& burst) const {
    return get(ingress_, port, RateUnit::kilobits, rate, burst);
  }

  Status shape(int port, const PortRate& rate) { return set(egress_, port, rate); }
  /// A port that is shaped in one unit cannot tell its rate in the other.
  Status shaping(int port, RateUnit unit, uint32_t& rate, uint32_t& burst) const {
    return get(egress_, port, unit, rate, burst);
  }

  /// By port; one that is absent has no limit.
  const std::map<int, PortRate>& ingress() const { return ingress_; }
  const std::map<int, PortRate>& egress() const { return egress_; }

 private:
  using Table = std::map<int, PortRate>;

  Status set(Table& table, int port, const PortRate& rate) {
    if (!ports_.has(port)) return Status::bad_port;
    if (rate.rate == 0)
      table.erase(port);
    else
      table[port] = rate;
    return Status::ok;
  }
  Status get(const Table& table, int port, RateUnit unit, uint32_t& rate, uint32_t& burst) const {
    if (!ports_.has(port)) return Status::bad_port;
    const auto found = table.find(port);
    const PortRate present = found == table.end() ? PortRate{.unit = unit} : found->second;
    if (present.unit != unit) return Status::bad_configuration;
    rate = present.rate;
    burst = present.burst;
    return Status::ok;
  }

  const Ports& ports_;
  Table ingress_;
  Table egress_;
};

}  // namespace chip
