#include <bcm/rate.h>

#include "api/call.h"

using api::hex;
using api::unmodelled;

int bcm_rate_bcast_set(int unit, int pps, int flags, int port) {
  return unmodelled(__func__, unit, pps, hex(static_cast<uint32>(flags)), port);
}

int bcm_rate_dlfbc_set(int unit, int pps, int flags, int port) {
  return unmodelled(__func__, unit, pps, hex(static_cast<uint32>(flags)), port);
}

int bcm_rate_mcast_set(int unit, int pps, int flags, int port) {
  return unmodelled(__func__, unit, pps, hex(static_cast<uint32>(flags)), port);
}
