#include <bcm/init.h>

#include "api/call.h"

using api::out;
using api::unmodelled;

int bcm_info_get(int unit, bcm_info_t* info) { return unmodelled(__func__, unit, out(info)); }
