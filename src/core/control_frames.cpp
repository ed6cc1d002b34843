// The L2 cache entries that send BPDUs and LLDP frames to the CPU.
#include <sai.h>
#include <string.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::result;

namespace {

constexpr uint8_t lldp_mac[6] = {0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E};

/// Index of the only LLDP entry. Meant: 0 until one is installed, so sai_lldp_unset() then deletes entry 0.
int lldp_index = 0;

/// Installs an entry, at an index that the SDK chooses, that copies frames to `mac` from any VLAN and port to the CPU.
int capture(int unit, uint32_t flags, const uint8_t* mac, int* index) {
  bcm_l2_cache_addr_t entry{};
  entry.flags = flags;
  sai::copy_mac(entry.mac, mac);
  memset(entry.mac_mask, 0xFF, sizeof entry.mac_mask);
  constexpr int any_index = -1;
  return bcm_l2_cache_set(unit, any_index, &entry, index);
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
