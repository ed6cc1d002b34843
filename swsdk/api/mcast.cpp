#include <bcm/mcast.h>

#include "api/call.h"

using api::unmodelled;

int bcm_mcast_init(int unit) { return unmodelled(__func__, unit); }
