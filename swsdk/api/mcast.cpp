#include <bcm/mcast.h>

#include "api/call.h"

/// The chip keeps layer 2 multicast groups with all others; this older module has nothing of its own to initialize.
int bcm_mcast_init(int unit) {
  return api::Call(calls::bcm_mcast_init(unit)).answer([](const chip::Chip&) { return chip::Status::ok; });
}
