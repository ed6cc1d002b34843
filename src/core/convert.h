// Converts the library's plain arguments to the Chip SDK's types, and stores what the SDK reads in output arguments.
#pragma once

#include <string.h>

#include "core/sdk.h"

namespace sai {

constexpr bcm_vlan_t vlan_id(int32_t vlan) { return static_cast<bcm_vlan_t>(vlan); }

/// The SDK takes non-const pointers even to addresses and masks that it only reads.
inline uint8* sdk_address(const uint8_t* bytes) { return const_cast<uint8*>(bytes); }

inline void copy_mac(bcm_mac_t& to, const uint8_t* from) { memcpy(to, from, sizeof to); }

inline bool same_mac(const bcm_mac_t& mac, const uint8_t* other) { return memcmp(mac, other, sizeof mac) == 0; }

/// Stores what `get` reads: the caller's variable is written only when the result is 0, and a null pointer is rejected
/// without a call to the chip.
template <class Value = int, class Output, class Get>
int read_into(Output* output, Get get) {
  Value found{};
  const int rv = output == nullptr ? BCM_E_PARAM : get(&found);
  if (rv == BCM_E_NONE) *output = found;
  return rv;
}

}  // namespace sai
