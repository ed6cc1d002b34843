#include <bcm/rate.h>

#include "api/call.h"
#include "api/gports.h"

using api::Call;
using api::hex;
using api::port_of;
using chip::Chip;
using chip::StormRates;

int bcm_rate_bcast_set(int unit, int pps, int flags, int port) {
  const auto given = static_cast<uint32>(flags);
  return Call(__func__, unit, pps, hex(given), port).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::broadcast}, given, pps);
  });
}

int bcm_rate_dlfbc_set(int unit, int pps, int flags, int port) {
  const auto given = static_cast<uint32>(flags);
  return Call(__func__, unit, pps, hex(given), port).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::unknown_destination}, given, pps);
  });
}

int bcm_rate_mcast_set(int unit, int pps, int flags, int port) {
  const auto given = static_cast<uint32>(flags);
  return Call(__func__, unit, pps, hex(given), port).answer([&](Chip& chip) {
    return chip.storm_rates.set({port_of(port), StormRates::multicast}, given, pps);
  });
}
