#include <bcm/ipmc.h>

#include "api/call.h"

using api::in;
using api::inout;
using api::unmodelled;

int bcm_ipmc_add(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, in(data)); }

int bcm_ipmc_enable(int unit, int enable) { return unmodelled(__func__, unit, enable); }

int bcm_ipmc_find(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, inout(data)); }

int bcm_ipmc_init(int unit) { return unmodelled(__func__, unit); }

int bcm_ipmc_remove(int unit, bcm_ipmc_addr_t* data) { return unmodelled(__func__, unit, in(data)); }
