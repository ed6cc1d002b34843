// Entries of the MAC table as the SDK's records.
#pragma once

#include <bcm/l2.h>

#include "chip/mac_table.h"

namespace api {

bcm_l2_addr_t to_sdk(const chip::MacEntry& own);

}  // namespace api
