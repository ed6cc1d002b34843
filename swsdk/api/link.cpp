#include <bcm/link.h>

#include "api/call.h"

using api::unmodelled;

int bcm_linkscan_enable_set(int unit, int us) { return unmodelled(__func__, unit, us); }

int bcm_linkscan_register(int unit, bcm_linkscan_handler_t f) { return unmodelled(__func__, unit, f); }

int bcm_linkscan_unregister(int unit, bcm_linkscan_handler_t f) { return unmodelled(__func__, unit, f); }
