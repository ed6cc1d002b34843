#include <bcm/knet.h>

#include "api/call.h"

using api::inout;
using api::unmodelled;

int bcm_knet_netif_create(int unit, bcm_knet_netif_t* netif) { return unmodelled(__func__, unit, inout(netif)); }
