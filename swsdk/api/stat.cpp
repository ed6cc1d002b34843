#include <bcm/stat.h>

#include "api/call.h"

using api::array;
using api::out;
using api::out_array;
using api::unmodelled;

int bcm_stat_clear(int unit, bcm_port_t port) { return unmodelled(__func__, unit, port); }

int bcm_stat_get(int unit, bcm_port_t port, bcm_stat_val_t type, uint64* value) {
  return unmodelled(__func__, unit, port, type, out(value));
}

int bcm_stat_multi_get(int unit, bcm_port_t port, int nstat, bcm_stat_val_t* stat_arr, uint64* value_arr) {
  return unmodelled(__func__, unit, port, nstat, array(stat_arr, nstat), out_array(value_arr, nstat));
}

int bcm_stat_sync(int unit) { return unmodelled(__func__, unit); }
