#include <sai.h>

#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;

namespace {

/// One of the two levels at which an entry can have a policer.
constexpr int level = 0;

/// A burst as a policer stores it: kilobits of 1000 bits, and the remaining bits.
struct Burst {
  uint32 kilobits;
  uint32 bits;
};

constexpr Burst of_bytes(uint32 bytes) { return {bytes / 1000 * 8, bytes % 1000 * 8}; }

constexpr uint64_t total_bits(Burst burst) { return burst.bits + uint64_t{burst.kilobits} * 1000; }
constexpr uint32 total_bytes(Burst burst) { return static_cast<uint32>(total_bits(burst) >> 3); }

/// Meant: traces show the bits modulo 2^32, so bursts of 2^29 bytes or more look smaller there.
constexpr uint32 traced_bits(Burst burst) { return static_cast<uint32>(total_bits(burst)); }

}  // namespace

int32_t sai_vport_fp_policer_set(int32_t unit, int32_t entry_id, int32_t* policer_id, uint32_t ckbits_sec,
                                 uint32_t pkbits_sec, uint32_t cburst_bytes, uint32_t pburst_bytes) {
  bcm_policer_config_t config{};
  bcm_policer_t id = -1;
  int rv = policer_id == nullptr ? BCM_E_PARAM : bcm_policer_create(unit, &config, &id);
  if (failed(rv, "bcm_policer_create failed: %s")) return sdk_to_sai(rv);
  sai::trace("bcm_policer_create policer_id %d", id);

  rv = bcm_policer_get(unit, id, &config);
  if (failed(rv, "bcm_policer_get policer_id %d failed: %s", id)) return sdk_to_sai(rv);
  const Burst committed = of_bytes(cburst_bytes);
  const Burst peak = of_bytes(pburst_bytes);
  config.flags =
      BCM_POLICER_COLOR_BLIND | BCM_POLICER_COLOR_MERGE_OR | BCM_POLICER_COLOR_MERGE_DUAL | BCM_POLICER_MODE_BYTES;
  config.mode = bcmPolicerModeTrTcm;
  config.ckbits_sec = ckbits_sec;
  config.ckbits_burst = committed.kilobits;
  config.cbits_burst_lower = committed.bits;
  config.pkbits_sec = pkbits_sec;
  config.pkbits_burst = peak.kilobits;
  config.pbits_burst_lower = peak.bits;
  sai::trace("bcm_policer_set ckbits_sec %u cbits_burst %u pkbits_sec %u pbits_burst %u", ckbits_sec,
             traced_bits(committed), pkbits_sec, traced_bits(peak));
  rv = bcm_policer_set(unit, id, &config);
  if (failed(rv, "bcm_policer_set policer_id %d failed: %s", id)) return sdk_to_sai(rv);

  rv = bcm_field_entry_policer_attach(unit, entry_id, level, id);
  if (rv != BCM_E_NONE)
    return result(rv, "bcm_field_entry_policer_attach policer_id %d entry_id %d failed: %s", id, entry_id);
  *policer_id = id;
  sai::trace("policer %d", id);
  return SAI_E_NONE;
}

int32_t sai_vport_fp_policer_get(int32_t unit, int32_t entry_id, int32_t* policer_id, uint32_t* ckbits_sec,
                                 uint32_t* pkbits_sec, uint32_t* cburst_bytes, uint32_t* pburst_bytes) {
  bcm_policer_t id = -1;
  const bool complete = policer_id != nullptr && ckbits_sec != nullptr && pkbits_sec != nullptr &&
                        cburst_bytes != nullptr && pburst_bytes != nullptr;
  int rv = complete ? bcm_field_entry_policer_get(unit, entry_id, level, &id) : BCM_E_PARAM;
  if (failed(rv, "bcm_field_entry_policer_get entry_id %d policer_id %d failed: %s", entry_id, id))
    return sdk_to_sai(rv);
  bcm_policer_config_t config{};
  rv = bcm_policer_get(unit, id, &config);
  if (rv != BCM_E_NONE) return result(rv, "bcm_policer_get policer_id %d failed: %s", id);

  *policer_id = id;
  *ckbits_sec = config.ckbits_sec;
  *pkbits_sec = config.pkbits_sec;
  *cburst_bytes = total_bytes({config.ckbits_burst, config.cbits_burst_lower});
  *pburst_bytes = total_bytes({config.pkbits_burst, config.pbits_burst_lower});
  return SAI_E_NONE;
}

int32_t sai_vport_fp_policer_destroy(int32_t unit, int32_t policer_id) {
  return result(bcm_policer_destroy(unit, policer_id), "bcm_policer_destroy policer_id %d failed: %s", policer_id);
}
