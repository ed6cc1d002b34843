#include <bcm/stat.h>

#include "api/call.h"
#include "api/convert.h"
#include "api/gports.h"

using api::array;
using api::Call;
using api::out;
using api::out_array;
using api::port_of;
using api::tell;
using chip::Chip;
using chip::Status;

static_assert(chip::Counters::count == snmpValCount);

int bcm_stat_clear(int unit, bcm_port_t port) {
  return Call(calls::bcm_stat_clear(unit, port)).answer([&](Chip& chip) { return chip.counters.clear(port_of(port)); });
}

int bcm_stat_get(int unit, bcm_port_t port, bcm_stat_val_t type, uint64* value) {
  return Call(calls::bcm_stat_get(unit, port, type, value)).answer([&](Chip& chip) {
    return tell(chip.counters.find(port_of(port), type), chip.counters.absent(port_of(port), type), *value);
  });
}

int bcm_stat_multi_get(int unit, bcm_port_t port, int nstat, bcm_stat_val_t* stat_arr, uint64* value_arr) {
  return Call(calls::bcm_stat_multi_get(unit, port, nstat, stat_arr, value_arr)).answer([&](Chip& chip) {
    Status status = nstat < 0 ? Status::bad_parameter : Status::ok;
    for (int i = 0; i < nstat && status == Status::ok; ++i)
      status = tell(chip.counters.find(port_of(port), stat_arr[i]), chip.counters.absent(port_of(port), stat_arr[i]),
                    value_arr[i]);
    return status;
  });
}

// The counters are never behind.
int bcm_stat_sync(int unit) {
  return Call(calls::bcm_stat_sync(unit)).answer([](Chip&) { return Status::ok; });
}
