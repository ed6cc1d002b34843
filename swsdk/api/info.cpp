#include <bcm/init.h>
#include <soc/drv.h>

#include "api/call.h"

using api::Call;
using api::out;
using chip::Status;

int bcm_info_get(int unit, bcm_info_t* info) {
  return Call(calls::bcm_info_get(unit, info)).answer([&](const chip::Chip&) {
    *info = {};  // a virtual chip has no vendor
    info->device = static_cast<uint32>(SOC_CHIP_TYPE(unit));
    return Status::ok;
  });
}
