// The library's plain arguments as the Chip SDK takes them.
#pragma once

#include <string.h>

#include "core/sdk.h"

namespace sai {

constexpr bcm_vlan_t vlan_id(int32_t vlan) { return static_cast<bcm_vlan_t>(vlan); }

/// The SDK takes addresses and masks that it only reads through pointers to what it could write.
inline uint8* sdk_address(const uint8_t* bytes) { return const_cast<uint8*>(bytes); }

inline void copy_mac(bcm_mac_t& to, const uint8_t* from) { memcpy(to, from, sizeof to); }

inline bool same_mac(const bcm_mac_t& mac, const uint8_t* other) { return memcmp(mac, other, sizeof mac) == 0; }

}  // namespace sai
