#include <sai.h>
#include <string.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::result;

namespace {

constexpr uint8_t lldp_mac[6] = {0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E};

/// Index of the one LLDP entry. Meant: 0 until there was one, and it is what sai_lldp_unset() deletes then.
int lldp_index = 0;

/// Installs an entry that copies frames to `mac` from any VLAN and port to the CPU, where the SDK has room for it.
int capture(int unit, uint32_t flags, const uint8_t* mac, int* index) {
  bcm_l2_cache_addr_t entry{};
  entry.flags = flags;
  sai::copy_mac(entry.mac, mac);
  memset(entry.mac_mask, 0xFF, sizeof entry.mac_mask);
  constexpr int any_index = -1;
  return bcm_l2_cache_set(unit, any_index, &entry, index);
}

int sdk_mode(int mode) {
  switch (mode) {
    case SAI_COSQ_STRICT:
      return BCM_COSQ_STRICT;
    case SAI_COSQ_WEIGHTED_ROUND_ROBIN:
      return BCM_COSQ_WEIGHTED_ROUND_ROBIN;
    case SAI_COSQ_DEFICIT_ROUND_ROBIN:
      return BCM_COSQ_DEFICIT_ROUND_ROBIN;
    default:
      return mode;  // Meant: an SDK mode may be given as it is.
  }
}

}  // namespace

int32_t sai_bpdu_set(int32_t unit, const uint8_t* mac, int32_t* index) {
  const auto get = [&](int* found) {
    return mac == nullptr ? BCM_E_PARAM : capture(unit, BCM_L2_CACHE_CPU | BCM_L2_CACHE_BPDU, mac, found);
  };
  return result(sai::read_into(index, get), "bcm_l2_cache_set failed: %s");
}

int32_t sai_bpdu_unset(int32_t unit, int32_t index) {
  return result(bcm_l2_cache_delete(unit, index), "bcm_l2_cache_delete failed: %s");
}

int32_t sai_lldp_set(int32_t unit) {
  return result(capture(unit, BCM_L2_CACHE_CPU, lldp_mac, &lldp_index), "bcm_l2_cache_set failed: %s");
}

int32_t sai_lldp_unset(int32_t unit) {
  return result(bcm_l2_cache_delete(unit, lldp_index), "bcm_l2_cache_delete failed: %s");
}

int32_t sai_cosq_sched_set(int32_t unit, int32_t mode, const int32_t* weights, int32_t delay) {
  const int sdk = sdk_mode(mode);  // Meant: the message shows this one, and says "dealy".
  return result(bcm_cosq_sched_set(unit, sdk, weights, delay), "Failed to set cosq mode [%d] dealy [%d]: %s", sdk,
                delay);
}
