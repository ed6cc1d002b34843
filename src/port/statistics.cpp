#include <sai.h>
#include <stdio.h>

#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::failed;
using sai::log_if_failed;
using sai::Ports;

// Meant: the last value read of each counter, from any port; a counter that cannot be read returns it again.
sai_hw_counter hw_counters_table[18] = {
    {0, snmpIfHCInOctets, 0},
    {1, snmpDot1dTpPortInFrames, 0},
    {2, snmpIfHCInUcastPkts, 0},
    {3, snmpIfHCInMulticastPkts, 0},
    {4, snmpIfHCInBroadcastPkts, 0},
    {5, snmpIfInDiscards, 0},
    {6, snmpIfInErrors, 0},
    {7, snmpDot3InPauseFrames, 0},
    {8, snmpIfHCOutOctets, 0},
    {9, snmpDot1dTpPortOutFrames, 0},
    {10, snmpIfHCOutUcastPkts, 0},
    {11, snmpIfHCOutMulticastPkts, 0},
    {12, snmpIfHCOutBroadcastPckts, 0},
    {13, snmpIfOutDiscards, 0},
    {14, snmpIfOutErrors, 0},
    {15, snmpDot3OutPauseFrames, 0},
    {16, snmpEtherStatsCRCAlignErrors, 0},
    {17, snmpEtherStatsCollisions, 0},
};

namespace {

const char* stat_names[snmpValCount] = BCM_STAT_NAME_INITIALIZER;

void print(int stat, const char* name, uint64 value) {
  if (value <= UINT32_MAX)
    printf("%8u\t%s (stat %d)\r\n", static_cast<uint32_t>(value), name, stat);
  else
    printf("0x%08x%08x\t%s (stat %d)\r\n", static_cast<uint32_t>(value >> 32), static_cast<uint32_t>(value), name,
           stat);
}

int clear(int unit, int port, const char* caller) {
  const int rv = bcm_stat_clear(unit, port);
  log_if_failed(rv, "%s bcm_stat_clear port %d failed: %s", caller, port);
  return rv;
}

}  // namespace

int32_t sai_port_stat_show(int32_t unit, int32_t port) {
  int rv = bcm_stat_sync(unit);
  if (failed(rv, "%s bcm_stat_get failed: %s", __func__)) return sdk_to_sai(rv);  // Meant: "get".
  for (int stat = 0; stat < snmpValCount; ++stat) {
    if (stat_names[stat] == nullptr) continue;
    uint64 value = 0;
    rv = bcm_stat_get(unit, port, static_cast<bcm_stat_val_t>(stat), &value);
    if (rv == BCM_E_NONE) print(stat, stat_names[stat], value);
  }
  return sdk_to_sai(rv);  // Meant: the result of the last counter, and no failure is logged.
}

int32_t sai_port_stat_clean(int32_t unit, int32_t port) { return sdk_to_sai(clear(unit, port, __func__)); }

int32_t sai_stat_clean(int32_t unit) {
  const bcm_pbmp_t ports = sai::ports(unit, Ports::ethernet);
  int rv = BCM_E_NONE;
  int port;
  BCM_PBMP_ITER(ports, port) { rv = clear(unit, port, __func__); }
  return sdk_to_sai(rv);  // Meant: the result of the last port only.
}

int32_t sai_port_mib_read(int32_t unit, int32_t port, uint64_t* values) {
  if (values == nullptr) return SAI_E_PARAM;
  for (sai_hw_counter& row : hw_counters_table) {
    uint64 value = 0;
    if (bcm_stat_get(unit, port, static_cast<bcm_stat_val_t>(row.stat), &value) == BCM_E_NONE) row.value = value;
  }
  for (const sai_hw_counter& row : hw_counters_table) *values++ = row.value;
  return SAI_E_NONE;  // Meant: even if a counter failed, and no failure is logged.
}
