#include <bcm/policer.h>

#include "api/call.h"

using api::Call;
using api::in;
using api::out;
using chip::Chip;
using chip::PolicerSettings;
using chip::Status;

namespace {

PolicerSettings to_chip(const bcm_policer_config_t& config) {
  return {
      .flags = config.flags,
      .mode = config.mode,
      .committed_rate = config.ckbits_sec,
      .committed_burst = config.ckbits_burst,
      .committed_burst_bits = config.cbits_burst_lower,
      .peak_rate = config.pkbits_sec,
      .peak_burst = config.pkbits_burst,
      .peak_burst_bits = config.pbits_burst_lower,
      .action = config.action_id,
      .sharing_mode = config.sharing_mode,
  };
}

bcm_policer_config_t to_sdk(const PolicerSettings& settings) {
  bcm_policer_config_t config;
  bcm_policer_config_t_init(&config);
  config.flags = settings.flags;
  config.mode = static_cast<bcm_policer_mode_t>(settings.mode);
  config.ckbits_sec = settings.committed_rate;
  config.ckbits_burst = settings.committed_burst;
  config.cbits_burst_lower = settings.committed_burst_bits;
  config.pkbits_sec = settings.peak_rate;
  config.pkbits_burst = settings.peak_burst;
  config.pbits_burst_lower = settings.peak_burst_bits;
  config.action_id = settings.action;
  config.sharing_mode = settings.sharing_mode;
  return config;
}

}  // namespace

int bcm_policer_create(int unit, bcm_policer_config_t* pol_cfg, bcm_policer_t* policer_id) {
  return Call(__func__, unit, in(pol_cfg), out(policer_id)).answer([&](Chip& chip) {
    return chip.policers.create(to_chip(*pol_cfg), *policer_id);
  });
}

int bcm_policer_destroy(int unit, bcm_policer_t policer_id) {
  return Call(__func__, unit, policer_id).answer([&](Chip& chip) { return chip.policers.destroy(policer_id); });
}

int bcm_policer_get(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return Call(__func__, unit, policer_id, out(pol_cfg)).answer([&](Chip& chip) {
    PolicerSettings found;
    const Status status = chip.policers.get(policer_id, found);
    if (status == Status::ok) *pol_cfg = to_sdk(found);
    return status;
  });
}

int bcm_policer_init(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.field_processor.forget_policers();
    chip.policers.clear();
    return Status::ok;
  });
}

int bcm_policer_set(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return Call(__func__, unit, policer_id, in(pol_cfg)).answer([&](Chip& chip) {
    return chip.policers.set(policer_id, to_chip(*pol_cfg));
  });
}
