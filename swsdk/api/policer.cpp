#include <bcm/policer.h>

#include "api/call.h"

using api::Call;
using api::in;
using api::out;
using chip::Chip;
using chip::Status;

namespace {

chip::Policer to_chip(const bcm_policer_config_t& sdk) {
  return {.flags = sdk.flags,
          .mode = static_cast<int>(sdk.mode),
          .committed = {sdk.ckbits_sec, sdk.ckbits_burst, sdk.cbits_burst_lower},
          .peak = {sdk.pkbits_sec, sdk.pkbits_burst, sdk.pbits_burst_lower}};
}

bcm_policer_config_t to_sdk(const chip::Policer& own) {
  bcm_policer_config_t sdk;
  bcm_policer_config_t_init(&sdk);
  sdk.flags = own.flags;
  sdk.mode = static_cast<bcm_policer_mode_t>(own.mode);
  sdk.ckbits_sec = own.committed.kilobits_per_second;
  sdk.ckbits_burst = own.committed.burst_kilobits;
  sdk.cbits_burst_lower = own.committed.burst_bits;
  sdk.pkbits_sec = own.peak.kilobits_per_second;
  sdk.pkbits_burst = own.peak.burst_kilobits;
  sdk.pbits_burst_lower = own.peak.burst_bits;
  return sdk;
}

}  // namespace

int bcm_policer_create(int unit, bcm_policer_config_t* pol_cfg, bcm_policer_t* policer_id) {
  return Call(calls::bcm_policer_create(unit, pol_cfg, policer_id)).answer([&](Chip& chip) {
    return chip.policers.create(to_chip(*pol_cfg), *policer_id);
  });
}

int bcm_policer_destroy(int unit, bcm_policer_t policer_id) {
  return Call(calls::bcm_policer_destroy(unit, policer_id)).answer([&](Chip& chip) {
    return chip.policers.destroy(policer_id);
  });
}

int bcm_policer_get(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return Call(calls::bcm_policer_get(unit, policer_id, pol_cfg)).answer([&](const Chip& chip) {
    const chip::Policer* const found = chip.policers.find(policer_id);
    if (found == nullptr) return chip.policers.absent(policer_id);
    *pol_cfg = to_sdk(*found);
    return Status::ok;
  });
}

int bcm_policer_init(int unit) {
  return Call(calls::bcm_policer_init(unit)).answer([](Chip& chip) {
    chip.field_processor.forget_policers();
    chip.policers.clear();
    return Status::ok;
  });
}

int bcm_policer_set(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return Call(calls::bcm_policer_set(unit, policer_id, pol_cfg)).answer([&](Chip& chip) {
    return chip.policers.set(policer_id, to_chip(*pol_cfg));
  });
}
