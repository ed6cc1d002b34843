#include <bcm/rate.h>

#include "api/call.h"
#include "api/gports.h"

using api::Call;
using api::hex;
using api::port_of;
using chip::Chip;
using chip::StormRates;

int bcm_rate_bcast_set(int unit, int pps, int flags, int port) {
  return Call(calls::bcm_rate_bcast_set(unit, pps, flags, port)).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::broadcast}, static_cast<uint32>(flags), pps);
  });
}

int bcm_rate_dlfbc_set(int unit, int pps, int flags, int port) {
  return Call(calls::bcm_rate_dlfbc_set(unit, pps, flags, port)).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::unknown_destination}, static_cast<uint32>(flags), pps);
  });
}

int bcm_rate_mcast_set(int unit, int pps, int flags, int port) {
  return Call(calls::bcm_rate_mcast_set(unit, pps, flags, port)).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::multicast}, static_cast<uint32>(flags), pps);
  });
}
