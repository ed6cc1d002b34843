#include <bcm/policer.h>

#include "api/call.h"

using api::in;
using api::out;
using api::unmodelled;

int bcm_policer_create(int unit, bcm_policer_config_t* pol_cfg, bcm_policer_t* policer_id) {
  return unmodelled(__func__, unit, in(pol_cfg), out(policer_id));
}

int bcm_policer_destroy(int unit, bcm_policer_t policer_id) { return unmodelled(__func__, unit, policer_id); }

int bcm_policer_get(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return unmodelled(__func__, unit, policer_id, out(pol_cfg));
}

/// There are no policers to forget yet: the calls that make them are not modelled.
int bcm_policer_init(int unit) {
  return api::Call(__func__, unit).answer([](const chip::Chip&) { return chip::Status::ok; });
}

int bcm_policer_set(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg) {
  return unmodelled(__func__, unit, policer_id, in(pol_cfg));
}
