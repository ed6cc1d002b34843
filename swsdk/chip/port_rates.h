// How fast each port lets frames in (policing) and out (shaping).
#pragma once

#include <cstdint>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

enum class RateUnit { kilobits, packets };

struct PortRate {
  RateUnit unit = RateUnit::kilobits;
  uint32_t rate = 0;  // per second; 0: no limit
  uint32_t burst = 0;
  Origin origin{};

  bool is_limit() const { return rate != 0; }
};

class PortRates {
 public:
  explicit PortRates(const Ports& ports) : ingress_(ports.all()), egress_(ports.all()) {}

  /// No limits after a reset.
  void reset() {
    ingress_.fill({});
    egress_.fill({});
  }

  Status police(Port port, const PortRate& rate) { return set(ingress_, port, rate); }
  Status shape(Port port, const PortRate& rate) { return set(egress_, port, rate); }

  const PortTable<PortRate>& ingress() const { return ingress_; }
  const PortTable<PortRate>& egress() const { return egress_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(ingress_, egress_);
  }

 private:
  static Status set(PortTable<PortRate>& table, Port port, const PortRate& rate) {
    PortRate* const present = table.find(port);
    if (present == nullptr) return Status::bad_port;
    *present = rate.is_limit() ? rate : PortRate{};
    return Status::ok;
  }

  PortTable<PortRate> ingress_;
  PortTable<PortRate> egress_;
};

}  // namespace chip
