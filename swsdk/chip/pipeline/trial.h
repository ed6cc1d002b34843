// A trial: what frames change in a chip is put back at its end.
#pragma once

#include <utility>

#include "chip/chip.h"

namespace chip {

class Trial {
 public:
  explicit Trial(Chip& chip)
      : chip_(chip),
        counters_(chip.counters),
        drops_(chip.drops),
        meters_(chip.meters),
        macs_(chip.mac_table),
        hosts_(chip.hosts.hits()),
        routes_(chip.routes.hits()),
        rules_(chip.field_processor.hits()) {}
  ~Trial() {
    chip_.counters = std::move(counters_);
    chip_.drops = std::move(drops_);
    chip_.meters = std::move(meters_);
    chip_.hosts.restore(hosts_);
    chip_.routes.restore(routes_);
    chip_.field_processor.restore(rules_);
  }
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

 private:
  Chip& chip_;
  Counters counters_;
  DropCounts drops_;
  Meters meters_;
  MacTable::Undo macs_;
  Hosts::Hits hosts_;
  Routes::Hits routes_;
  FieldProcessor::Hits rules_;
};

}  // namespace chip
