#include <bcm/ipmc.h>

#include "api/call.h"

using api::Call;
using api::in;
using api::inout;
using api::unmodelled;
using chip::Chip;

int bcm_ipmc_add(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, in(data)); }

int bcm_ipmc_enable(int unit, int enable) {
  return Call(__func__, unit, enable).answer([&](Chip& chip) {
    chip.multicast_routing = enable != 0;
    return chip::Status::ok;
  });
}

int bcm_ipmc_find(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, inout(data)); }

/// There are no routes to forget yet: the calls that add them are not modelled.
int bcm_ipmc_init(int unit) {
  return Call(__func__, unit).answer([](const Chip&) { return chip::Status::ok; });
}

int bcm_ipmc_remove(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, in(data)); }
