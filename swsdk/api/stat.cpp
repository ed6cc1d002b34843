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
  return Call(__func__, unit, port).answer([&](Chip& chip) { return chip.counters.clear(port_of(port)); });
}

int bcm_stat_get(int unit, bcm_port_t port, bcm_stat_val_t type, uint64* value) {
  return Call(__func__, unit, port, type, out(value)).answer([&](Chip& chip) {
    return tell(chip.counters.find(port_of(port), type), chip.counters.absent(port_of(port), type), *value);
  });
}

int bcm_stat_multi_get(int unit, bcm_port_t port, int nstat, bcm_stat_val_t* stat_arr, uint64* value_arr) {
  return Call(__func__, unit, port, nstat, array(stat_arr, nstat), out_array(value_arr, nstat)).answer([&](Chip& chip) {
    Status status = nstat < 0 ? Status::bad_parameter : Status::ok;
    for (int i = 0; i < nstat && status == Status::ok; ++i)
      status = tell(chip.counters.find(port_of(port), stat_arr[i]), chip.counters.absent(port_of(port), stat_arr[i]),
                    value_arr[i]);
    return status;
  });
}

// The counters are never behind.
int bcm_stat_sync(int unit) {
  return Call(__func__, unit).answer([](Chip&) { return Status::ok; });
}
